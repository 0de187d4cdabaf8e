#pragma once
// The status window of a script run: one line at the lower right of the screen, and a menu with what came
// before it. It is never activated, not by a click either: the keys of the script belong to the TV
// application.

#include <QMenu>
#include <QWidget>

#include "recording/FormAufzeichnungsskript.h"

namespace wendel {

class Aktionszeile;

class FormAufzeichnungsskriptFenster final : public QWidget, public FormAufzeichnungsskriptView {
  public:
    FormAufzeichnungsskriptFenster();

    // Must be set before the window is shown and outlive it.
    void setzeForm(FormAufzeichnungsskript& form) { form_ = &form; }

    void zeigen() override;
    void verbergen() override;
    void setzeAktuelleAktion(const std::string& text) override;
    void zeigePopupVerlauf(const std::vector<std::string>& verlauf) override;

  protected:
    void closeEvent(QCloseEvent* ereignis) override;
    void paintEvent(QPaintEvent* ereignis) override;

  private:
    void baueAuf();

    FormAufzeichnungsskript* form_ = nullptr;
    Aktionszeile* labelAktuelleAktion_ = nullptr;  // until the first step of the first recording
    QMenu mnuPopupVerlauf_{this};
};

}  // namespace wendel
