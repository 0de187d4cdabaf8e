#include "traymenu/Menueinhalt.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "traymenu/Menuebefehle.h"
#include "traymenu/Menuemasse.h"

namespace wendel::Menueinhalt {

namespace {

using namespace Menuemasse;

constexpr std::size_t kFesteEintraege = 7;  // of the top window

std::unique_ptr<cMenuePunkt> punkt(std::int16_t art, std::string_view text, std::string_view name) {
    auto neu = std::make_unique<cMenuePunkt>();
    neu->Art = art;
    neu->Name = name;
    neu->Text = text;
    return neu;
}

std::unique_ptr<cMenuePunkt> kopf(const Menuekontext& kontext, std::int16_t art, std::string_view text) {
    auto neu = punkt(art, text, "");
    neu->UnterMenue = std::make_unique<FormBrannikMenue>(kontext, neu.get());
    return neu;
}

// Made of a copy: the lists change while the menu stands.
std::unique_ptr<cMenuePunkt> sendungspunkt(cSendung sendung) {
    auto neu = punkt(menueart::kSendung, sendung.Titel,
                     std::string(Menuebefehle::kSendung) + std::to_string(sendung.Pos));
    neu->Zeit = sendung.Beginn;
    neu->Star = sendung.Bewertung;
    neu->Beschreibung = std::move(sendung.Genre.empty() ? sendung.Kurzbeschreibung : sendung.Genre);
    neu->SenderKennung = std::move(sendung.SenderKennung);
    neu->DBPos = sendung.Pos;
    neu->Tooltiptext = std::move(sendung.Titel);
    if (!neu->Beschreibung.empty()) neu->Tooltiptext += "\n" + neu->Beschreibung;
    return neu;
}

void haengeAn(FormBrannikMenue& menue, const Sendungsliste& liste, std::size_t hoechstens) {
    for (std::size_t i = 0; i < std::min(liste.size(), hoechstens); ++i)
        menue.anhaengen(sendungspunkt(liste[i].GenerateCopy()));
}

void programmAnhaengen(const Menuekontext& kontext, FormBrannikMenue& oben, std::string_view text,
                       const Sendungsliste& liste, int freieHoehe) {
    cMenuePunkt& neu = oben.anhaengen(kopf(kontext, menueart::kProgrammkopf, text));
    haengeAn(*neu.UnterMenue, liste, static_cast<std::size_t>(hoechstzahl(freieHoehe)));
}

void kurzzeitAnhaengen(const Menuekontext& kontext, FormBrannikMenue& oben) {
    cMenuePunkt& neu = oben.anhaengen(kopf(kontext, menueart::kErinnernkopf, "Erinnern in .."));
    for (const Kurzzeitpunkt& kurz : kKurzzeitpunkte)
        neu.UnterMenue->anhaengen(punkt(menueart::kAktion, kurz.text, kurz.schluessel));
}

// What is left of the screen's height below panel and fixed entries.
std::size_t hoechstzahlLaufender(const Menuedaten& daten) {
    const int fest = 2 * (kRand + kInnenrand) + (daten.tagestipp ? kTippHoehe : 0);
    const int zeilen = (daten.freieHoehe - fest) / kZeilenhoehe - static_cast<int>(kFesteEintraege);
    return static_cast<std::size_t>(std::max(zeilen, 0));
}

void fuelle(const Menuekontext& kontext, const Menuedaten& daten, FormBrannikMenue& oben) {
    programmAnhaengen(kontext, oben, "heute ab 22:00..", daten.sendung2200, daten.freieHoehe);
    programmAnhaengen(kontext, oben, "heute um 20:15..", daten.sendung2015, daten.freieHoehe);
    programmAnhaengen(kontext, oben, "als nächstes beginnend..", daten.sendungGleich, daten.freieHoehe);
    haengeAn(oben, daten.sendungAktuell, hoechstzahlLaufender(daten));
    oben.anhaengen(
        punkt(menueart::kAktion, daten.hauptanwendung + " starten ..", Menuebefehle::kFennowStarten));
    oben.anhaengen(punkt(menueart::kAktion, "Wiederherstellen ..", Menuebefehle::kWendelAnzeigen));
    kurzzeitAnhaengen(kontext, oben);
    oben.anhaengen(punkt(menueart::kAktion, "Beenden ..", Menuebefehle::kBeenden));
}

}  // namespace

int hoechstzahl(int freieHoehe) {
    const int zeilen = std::max(freieHoehe, 0) / kZeilenhoehe;
    return zeilen >= 2 ? zeilen - 1 : zeilen;
}

FormBrannikMenue& BuildTrayMenu(const Menuekontext& kontext, const Menuedaten& daten) {
    ModulBrannikMenue::UnloadAllMenues(kontext.geladene);
    auto oben = std::make_unique<FormBrannikMenue>(kontext);
    FormBrannikMenue& ergebnis = *oben;
    ergebnis.TagesTippAnzeigen = daten.tagestipp != nullptr;
    if (daten.tagestipp) ergebnis.tagestipp = *daten.tagestipp;
    fuelle(kontext, daten, ergebnis);
    kontext.geladene.setzeObermenue(std::move(oben));
    return ergebnis;
}

}  // namespace wendel::Menueinhalt
