#pragma once
// The status bar of a window: one line, cut where the window is too narrow. A hint steps back before a
// report.

#include <QStatusBar>

class QLabel;

namespace wendel {

class Statuszeile final : public QStatusBar {
  public:
    explicit Statuszeile(QWidget* eltern);

    void melde(const QString& text);
    void weiseHin(const QString& text);

  private:
    void setze(const QString& text);

    QLabel* label_;
};

}  // namespace wendel
