#pragma once
// A button that looks like a link of a page: for an action that leads to another program.

#include <QPushButton>

namespace wendel {

class Linkschalter final : public QPushButton {
  public:
    static constexpr int kRand = 2;  // around the text, for the focus frame; device-independent pixels

    Linkschalter(const QString& text, QWidget* eltern);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* ereignis) override;
};

}  // namespace wendel
