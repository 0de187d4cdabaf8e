#pragma once
// The window of the appointment editor: shows what FormTermin says and forwards what the user does. Modal to
// the list window only, so that notices can be answered meanwhile. Return confirms from every field, Esc and
// the close box cancel. Its controls come into being with the first appointment that is edited.

#include <QDialog>
#include <functional>
#include <utility>

#include "reminders/FormTermin.h"

class QButtonGroup;
class QEventLoop;
class QGridLayout;
class QGroupBox;
class QLabel;

namespace wendel {

class Kalenderblatt;
class Textfeld;
class Zeitfeld;

class FormTerminFenster final : public QDialog, public FormTerminView {
  public:
    // The dialog stands in the middle of that window, when it is visible, and above it. It outlives the
    // dialog.
    explicit FormTerminFenster(QWidget& liste);

    // Whom the user's actions go to; must be set before the window is shown and outlive it.
    void setzeForm(FormTermin& form) { form_ = &form; }

    // Called with true when the dialog opens and with false when it is gone: whoever owns the list window
    // locks it meanwhile.
    void setzeSperre(std::function<void(bool)> sperre) { sperre_ = std::move(sperre); }

    void setzeEingabe(const Termineingabe& eingabe) override;
    Termineingabe eingabe() const override;
    void zeigenModal(Terminfeld anfang) override;
    void verbergen() override;
    // Or the box that waits for an answer, if there is one.
    void nachVorn() override;
    void zumFeld(Terminfeld feld) override;

  protected:
    void reject() override;

  private:
    void baueAuf();
    void baueFelder(QGridLayout& gitter);
    QWidget* baueTag();
    QWidget* baueUhrzeit();
    QGroupBox* baueWiederholung();
    QWidget* baueKnoepfe();
    void zeigeWochentag();
    void oeffneKalender();
    void warteAufListe();
    void stelleHin();

    QWidget& liste_;
    FormTermin* form_ = nullptr;
    std::function<void(bool)> sperre_ = [](bool) {};
    QEventLoop* schleife_ = nullptr;  // while shown

    Zeitfeld* textDatum_ = nullptr;  // until the controls are there
    QLabel* labelWochentag_;
    Zeitfeld* textUhrzeit_;
    Textfeld* textInhalt_;
    QButtonGroup* wiederholung_;
    Kalenderblatt* kalender_;

    std::string inhalt_;    // as given
    QString inhaltImFeld_;  // what the field made of it
};

}  // namespace wendel
