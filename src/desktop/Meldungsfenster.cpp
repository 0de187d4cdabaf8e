#include "desktop/Meldungsfenster.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <vector>

#include "desktop/QtText.h"
#include "desktop/Symbole.h"

namespace wendel {
namespace {

// The parts of a style number: buttons in the lowest digit, icon and default button in the next two.
constexpr int kKnopfmaske = 0x0F;
constexpr int kSymbolmaske = 0xF0;
constexpr int kVorgabemaske = 0xF00;
constexpr int kVordergrund = 0x10000;

struct Knopf {
    Antwort antwort;
    const char* aufschrift;
    QMessageBox::ButtonRole rolle;
};
const Knopf kOk{Antwort::Ok, "&OK", QMessageBox::AcceptRole};
const Knopf kAbbrechen{Antwort::Abbrechen, "&Abbrechen", QMessageBox::RejectRole};
const Knopf kWiederholen{Antwort::Wiederholen, "&Wiederholen", QMessageBox::AcceptRole};
const Knopf kJa{Antwort::Ja, "&Ja", QMessageBox::YesRole};
const Knopf kNein{Antwort::Nein, "&Nein", QMessageBox::NoRole};

std::vector<Knopf> knoepfe(int stil) {
    switch (stil & kKnopfmaske) {
        case 1: return {kOk, kAbbrechen};
        case 3: return {kJa, kNein, kAbbrechen};
        case 4: return {kJa, kNein};
        case 5: return {kWiederholen, kAbbrechen};
        default: return {kOk};
    }
}

QMessageBox::Icon symbol(int stil) {
    // It asks for no more than a choice, whatever its digits say.
    if (stil == meldungsstil::kJaNeinAbbrechenFrage) return QMessageBox::Question;
    switch (stil & kSymbolmaske) {
        case 16: return QMessageBox::Critical;
        case 32: return QMessageBox::Question;
        case 48: return QMessageBox::Warning;
        case 64: return QMessageBox::Information;
        default: return QMessageBox::NoIcon;
    }
}

QString symbolname(QMessageBox::Icon symbol) {
    switch (symbol) {
        case QMessageBox::Critical: return QStringLiteral("Fehler");
        case QMessageBox::Question: return QStringLiteral("Frage");
        case QMessageBox::Warning: return QStringLiteral("Warnung");
        default: return QStringLiteral("Information");
    }
}

const char* objektname(Antwort antwort) {
    switch (antwort) {
        case Antwort::Ok: return "cmdOK";
        case Antwort::Abbrechen: return "cmdAbbrechen";
        case Antwort::Wiederholen: return "cmdWiederholen";
        case Antwort::Ja: return "cmdJa";
        case Antwort::Nein: return "cmdNein";
    }
    return "";
}

// Boxes may name files: nothing in them is markup.
void beschrifte(QMessageBox& box, const QString& titel, const QString& text) {
    box.setTextFormat(Qt::PlainText);
    // As a plain label the text has tab stops eight characters apart, which the help box counts on; as
    // selectable text they would be wider. Ctrl+C copies the box in any case.
    box.setTextInteractionFlags(Qt::NoTextInteraction);
    box.setWindowTitle(titel);
    box.setText(text);
    box.setAccessibleName(titel);
    auto* bild = box.findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"));
    if (bild != nullptr) bild->setAccessibleName(symbolname(box.icon()));
    box.setWindowIcon(Symbole::symbol("wendel"));
}

}  // namespace

Antwort Meldungsfenster::meldung(const std::string& text, int stil, const std::string& titel) {
    QMessageBox box;
    box.setObjectName(QStringLiteral("Meldung"));
    box.setIcon(symbol(stil));
    beschrifte(box, qtText(titel), qtZeilen(text));

    const std::vector<Knopf> liste = knoepfe(stil);
    const std::size_t vorgabe = static_cast<std::size_t>(stil & kVorgabemaske) >> 8;
    std::vector<QPushButton*> widgets;
    for (const Knopf& knopf : liste) {
        QPushButton* widget = box.addButton(QString::fromUtf8(knopf.aufschrift), knopf.rolle);
        widget->setObjectName(QString::fromLatin1(objektname(knopf.antwort)));
        widget->setAccessibleName(QString::fromUtf8(knopf.aufschrift).remove(u'&'));
        if (knopf.antwort == Antwort::Abbrechen || liste.size() == 1) box.setEscapeButton(widget);
        widgets.push_back(widget);
    }
    box.setDefaultButton(widgets[vorgabe < widgets.size() ? vorgabe : 0]);

    if ((stil & kVordergrund) != 0) {
        // Asked for by work in the background: in front of everything, but a Return that was meant for the
        // program being typed into must not answer it.
        box.setWindowFlag(Qt::WindowStaysOnTopHint);
        const Fensterhandle vorn = fenster_.vordergrundfenster();
        const bool fremd = vorn != 0 && QApplication::activeWindow() == nullptr;
        box.setAttribute(Qt::WA_ShowWithoutActivating, fremd);
    }
    frage(box);
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        if (box.clickedButton() == widgets[i]) return liste[i].antwort;
    }
    return liste.back().antwort;
}

// Modal to its own window only: the toolkit's application-wide modality would take the mouse from notices
// too.
void Meldungsfenster::frage(QMessageBox& box) {
    box.setWindowModality(Qt::WindowModal);
    sperre_(true);
    box.exec();
    sperre_(false);
}

void Meldungsfenster::zeigeFehlerOhneWarten(const std::string& text, int nummer, const std::string& quelle,
                                            const std::string& beschreibung, const std::string& titel) {
    if (!fehleranzeige_) fehleranzeige_ = std::make_unique<Fehleranzeige>();
    fehleranzeige_->form.ShowFehler({.Fehlertext = text,
                                     .ErrNumber = nummer,
                                     .ErrSource = quelle,
                                     .ErrDescription = beschreibung,
                                     .FensterCaption = titel,
                                     .NurAnzeigenUndStehenLassen = true});
}

}  // namespace wendel
