#pragma once
// The surface that the entries of a menu window are painted on, with mouse and keyboard over it. It shows the
// rows that it is given and tells the form what the user does; colours and shapes are left to Menuemaler,
// screen readers to Menuezugang.

#include <QWidget>
#include <vector>

#include "desktop/Menuebilder.h"
#include "traymenu/FormBrannikMenueView.h"

class QHelpEvent;

namespace wendel {

class PicPaint final : public QWidget {
  public:
    // The pictures must outlive the surface.
    PicPaint(QWidget& fenster, Menuebilder& bilder);

    // Whom the user's actions go to; null from the moment on when the form is gone.
    void setzeForm(FormBrannikMenue* form) { form_ = form; }

    void setzeZeilen(std::vector<Zeilenbild> zeilen, const Menuefarben& farben);
    // Takes the place of the row with the same index, if there is one.
    void setzeZeile(const Zeilenbild& zeile);
    const std::vector<Zeilenbild>& zeilen() const { return zeilen_; }
    // Null where there is no entry.
    const Zeilenbild* zeileBei(const QPoint& ort) const;

    // As if that entry had been clicked.
    void waehle(int index);

  protected:
    bool event(QEvent* ereignis) override;
    bool eventFilter(QObject* objekt, QEvent* ereignis) override;
    void focusInEvent(QFocusEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;
    void mouseMoveEvent(QMouseEvent* ereignis) override;
    void mouseReleaseEvent(QMouseEvent* ereignis) override;
    void paintEvent(QPaintEvent* ereignis) override;

  private:
    void zeigeTooltip(const QHelpEvent& ereignis);

    Menuebilder& bilder_;
    FormBrannikMenue* form_ = nullptr;
    Menuefarben farben_;
    std::vector<Zeilenbild> zeilen_;
};

}  // namespace wendel
