#pragma once
// The window of the notice before a recording: shows what FormAufzeichnungsHinweis says and forwards that the
// user has read it. How it comes up and stays is Hinweisrahmen's business.

#include "desktop/Hinweisrahmen.h"
#include "recording/FormAufzeichnungsHinweis.h"

namespace wendel {

class FormAufzeichnungsHinweisFenster final : public Hinweisrahmen, public FormAufzeichnungsHinweisView {
  public:
    FormAufzeichnungsHinweisFenster();

    // Must be set before the window is shown and outlive it.
    void setzeForm(FormAufzeichnungsHinweis& form) { form_ = &form; }

    Fensterhandle hwnd() override;
    void setzeText(const std::string& text) override;
    void zeigen() override;
    void verbergen() override;

  protected:
    void baueInhalt() override;
    void willSchliessen() override;
    void keyPressEvent(QKeyEvent* ereignis) override;

  private:
    FormAufzeichnungsHinweis* form_ = nullptr;
};

}  // namespace wendel
