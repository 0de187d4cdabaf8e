#pragma once
// The window of the reminder notice: shows what FormHinweis says and forwards what the user does. How it
// comes up and stays is Hinweisrahmen's business.

#include <QTimer>

#include "desktop/Hinweisrahmen.h"
#include "reminders/FormHinweis.h"

class QComboBox;

namespace wendel {

class FormHinweisFenster final : public Hinweisrahmen, public FormHinweisView {
  public:
    FormHinweisFenster();

    // Whom the user's actions go to; must be set before the window is shown and outlive it.
    void setzeForm(FormHinweis& form) { form_ = &form; }

    void setzeTitel(const std::string& titel) override;
    void setzeText(const std::string& text) override;
    void setzeFunktionen(const std::vector<std::string>& zeilen) override;
    void setzeAuswahl(int index) override;
    void anpassen() override;
    void zeigen() override;
    void verbergen() override;
    void starteOKTimer(int ms) override;
    Fensterhandle fensterhandle() override;

  protected:
    void baueInhalt() override;
    void willSchliessen() override;
    void keyPressEvent(QKeyEvent* ereignis) override;
    bool eventFilter(QObject* objekt, QEvent* ereignis) override;

  private:
    void baueComboFunktion();
    bool leertasteInListe(int taste);

    FormHinweis* form_ = nullptr;
    QLabel* labelHinweisTitel_;
    QComboBox* comboFunktion_;
    QTimer timerOKErlaubt_;
};

}  // namespace wendel
