#pragma once
// The window of the reminder notice: shows what FormHinweis says and forwards what the user does. It comes up
// above everything without taking the focus, and no control has the focus at first, so that typing meant for
// another program answers nothing. It never closes by itself.

#include <QTimer>
#include <QWidget>

#include "reminders/FormHinweis.h"

class QComboBox;
class QFrame;
class QLabel;
class QPushButton;
class QScrollArea;

namespace wendel {

class FormHinweisFenster final : public QWidget, public FormHinweisView {
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
    void closeEvent(QCloseEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;
    bool eventFilter(QObject* objekt, QEvent* ereignis) override;
    void changeEvent(QEvent* ereignis) override;

  private:
    QWidget* baueNachricht();
    QWidget* baueFussleiste();
    void faerbe();
    void zentriere();
    bool leertasteInListe(int taste);

    FormHinweis* form_ = nullptr;
    QWidget* nachricht_;
    QLabel* hinweisPicture_;
    QLabel* labelHinweisTitel_;
    QScrollArea* textbereich_;
    QLabel* labelHinweisText_;
    QWidget* fussleiste_;
    QFrame* frameComboFunktion_;
    QComboBox* comboFunktion_;
    QPushButton* cmdOK_;
    QTimer timerOKErlaubt_;
};

}  // namespace wendel
