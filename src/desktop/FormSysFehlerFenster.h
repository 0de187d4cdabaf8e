#pragma once
// The window of the technical-error dialog: shows what FormSysFehler says and forwards what the user does.
// Modal it waits in an event loop of its own; left standing it comes up without taking the keyboard from
// anybody.

#include <QDialog>
#include <functional>
#include <utility>

#include "platform/FormSysFehler.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;

namespace wendel {

class FormSysFehlerFenster final : public QDialog, public FormSysFehlerView {
  public:
    FormSysFehlerFenster();

    // Must be set before the window is shown and outlive it.
    void setzeForm(FormSysFehler& form) { form_ = &form; }

    // Called with true when it opens modal and with false when it has its answer, as that of Meldungsfenster.
    void setzeSperre(std::function<void(bool)> sperre) { sperre_ = std::move(sperre); }

    void setzeCaption(const std::string& titel) override;
    void setzeLabelText(const std::string& text) override;
    void setzeTextDetails(const std::string& text) override;
    void setzeCmdDetailsCaption(const std::string& text) override;
    void setzeCmdWiederholenSichtbar(bool sichtbar) override;
    SysFehlerMasse masse() override;
    void setzeHoehe(int twips) override;
    void zeigenModal() override;
    void zeigen() override;
    void verbergen() override;

  protected:
    void reject() override;

  private:
    QWidget* baueMeldung();
    QWidget* baueKnoepfe();
    QWidget* baueDetails();
    int breite() const;
    int kopfhoehe() const;
    void bleibeImBild();

    FormSysFehler* form_ = nullptr;
    std::function<void(bool)> sperre_ = [](bool) {};
    QWidget* meldung_;
    QScrollArea* textbereich_;
    QLabel* labelText_;
    QWidget* knoepfe_;
    QPushButton* cmdWiederholen_;
    QPushButton* cmdDetails_;
    QPushButton* cmdOK_;
    QWidget* details_;
    QPlainTextEdit* textDetails_;
};

}  // namespace wendel
