#pragma once
// The panel of the day's tip above the rows of the top menu window: a button without the looks of one. What
// is in it is a Menuebild, how it is painted is left to Menuemaler.

#include <QAbstractButton>

#include "desktop/Menuebilder.h"
#include "traymenu/FormBrannikMenueView.h"

namespace wendel {

class PictureTagestipp final : public QAbstractButton {
  public:
    // The pictures must outlive the panel.
    PictureTagestipp(QWidget& fenster, Menuebilder& bilder);

    // Whom the mouse's moves go to; null from the moment on when the form is gone.
    void setzeForm(FormBrannikMenue* form) { form_ = form; }
    void setzeBild(const Menuebild& bild);
    void setzeHervorgehoben(bool hervorgehoben);

  protected:
    void mouseMoveEvent(QMouseEvent* ereignis) override;
    void paintEvent(QPaintEvent* ereignis) override;

  private:
    Menuebilder& bilder_;
    FormBrannikMenue* form_ = nullptr;
    Menuebild bild_;  // without rows
};

}  // namespace wendel
