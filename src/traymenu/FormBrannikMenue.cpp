#include "traymenu/FormBrannikMenue.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/Text.h"
#include "traymenu/Menuetexte.h"

namespace wendel {

namespace {

using namespace Menuemasse;

constexpr int kRuhe = -1;      // EinblendungsCounter: no countdown
constexpr int kTippZiel = -1;  // the panel of the tip among the entries that keys reach

Zeilentext zeilentext(int x, int breite, std::string text) { return {x, breite, std::move(text)}; }

bool istKopf(const cMenuePunkt& punkt) { return punkt.UnterMenue != nullptr; }

bool oeffnetSich(const cMenuePunkt& punkt) { return istKopf(punkt) && !punkt.UnterMenue->leer(); }

// What opens nothing is highlighted just enough to show where keys and mouse are.
Farbe schwach(Farbe flaeche, Farbe hervorhebung) { return Farbverlauf::verlauf(flaeche, hervorhebung, 6)[1]; }

void faerbe(Zeilenbild& bild, const Menuefarben& f) {
    bild.oben = f.flaecheOben;
    bild.unten = f.flaecheUnten;
    bild.schrift = bild.freigegeben ? f.schrift : f.schriftGesperrt;
    if (!bild.hervorgehoben) return;
    bild.oben = bild.freigegeben ? f.hervorhebungOben : schwach(f.flaecheOben, f.hervorhebungOben);
    bild.unten = bild.freigegeben ? f.hervorhebungUnten : schwach(f.flaecheUnten, f.hervorhebungUnten);
    if (bild.freigegeben) bild.schrift = f.hervorhebungSchrift;
}

std::string tippname(const Tagestippfelder& tipp) {
    if (tipp.TagesTippPos == 0) return tipp.TagesTippGenre;
    return "Tagestipp: " + tipp.TagesTippUhrzeit + " " + tipp.TagesTippSender + ", " + tipp.TagesTippTitel;
}

}  // namespace

FormBrannikMenue::FormBrannikMenue(const Menuekontext& kontext, cMenuePunkt* kopf)
    : kontext_(kontext), kopf_(kopf), view_(kontext.umgebung.neueView(*this)) {
    kontext_.geladene.aufnehmen(*this);
}

FormBrannikMenue::~FormBrannikMenue() { kontext_.geladene.streichen(*this); }

cMenuePunkt& FormBrannikMenue::anhaengen(std::unique_ptr<cMenuePunkt> punkt) {
    punkt->ParentForm = this;
    return *menuePunkte_.emplace_back(std::move(punkt));
}

// ---- layout ----

void FormBrannikMenue::ausmessen(const Arbeitsbereich& frei) {
    view_->setzeSchrift(kSchrift, kSchriftgrad);
    spalten_ = menuespalten(
        menuePunkte_, kontext_.sender, [this](const std::string& text) { return view_->textbreite(text); },
        TagesTippAnzeigen ? kTippBreite : kMindestbreite, Menueplatzierung::hoechstbreite(frei) - 2 * kRand);
}

Rechteck FormBrannikMenue::picPaint() const {
    const auto zeilen = std::count_if(menuePunkte_.begin(), menuePunkte_.end(),
                                      [](const auto& punkt) { return punkt->Visible; });
    return {kRand, kRand + (TagesTippAnzeigen ? kTippHoehe : 0), spalten_.breite,
            static_cast<int>(zeilen) * kZeilenhoehe + 2 * kInnenrand};
}

Groesse FormBrannikMenue::fenstergroesse() const {
    const Rechteck flaeche = picPaint();
    return {flaeche.rechts() + kRand, flaeche.unten() + kRand};
}

cMenuePunkt* FormBrannikMenue::punkt(int index) const {
    const bool vorhanden = index >= 1 && static_cast<std::size_t>(index) <= menuePunkte_.size();
    return vorhanden ? menuePunkte_[static_cast<std::size_t>(index) - 1].get() : nullptr;
}

bool FormBrannikMenue::waehlbar(int index) const {
    const cMenuePunkt* gesucht = punkt(index);
    return gesucht && gesucht->Visible && !gesucht->Trenner;
}

Rechteck FormBrannikMenue::zeilenrechteck(int index) const {
    const auto davor = std::count_if(menuePunkte_.begin(), menuePunkte_.begin() + index - 1,
                                     [](const auto& punkt) { return punkt->Visible; });
    return {0, StartPosY() + static_cast<int>(davor) * kZeilenhoehe, spalten_.breite, kZeilenhoehe};
}

int FormBrannikMenue::indexBei(int x, int y) const {
    for (int index = 1; punkt(index); ++index) {
        if (waehlbar(index) && zeilenrechteck(index).enthaelt({x, y})) return index;
    }
    return 0;
}

int FormBrannikMenue::indexVon(const FormBrannikMenue& untermenue) const {
    for (int index = 1; punkt(index); ++index) {
        if (punkt(index)->UnterMenue.get() == &untermenue) return index;
    }
    return 0;
}

// ---- painting ----

void FormBrannikMenue::PaintMenue() {
    Menuebild bild;
    bild.fenster = fenstergroesse();
    bild.PicPaint = picPaint();
    if (TagesTippAnzeigen) bild.PictureTagestipp = {kRand, kRand, spalten_.breite, kTippHoehe};
    bild.tipp = tagestipp;
    bild.tippName = tippname(tagestipp);
    bild.tippHervorgehoben = tippGewaehlt_;
    bild.farben = view_->farben();
    for (int index = 1; punkt(index); ++index) {
        if (punkt(index)->Visible) bild.zeilen.push_back(zeilenbild(index));
    }
    view_->zeichne(bild);
}

void FormBrannikMenue::PaintMenueItem(int index) {
    if (punkt(index) && punkt(index)->Visible) view_->zeichneZeile(zeilenbild(index));
}

Zeilenbild FormBrannikMenue::zeilenbild(int index) const {
    const cMenuePunkt& dieser = *punkt(index);
    const Menuefarben farben = view_->farben();
    Zeilenbild bild;
    bild.index = index;
    bild.rechteck = zeilenrechteck(index);
    bild.trenner = dieser.Trenner;
    bild.hervorgehoben = index == isSelected_;
    bild.freigegeben = !istKopf(dieser) || oeffnetSich(dieser);
    bild.gruppenlinie = index > 1 && dieser.Art != punkt(index - 1)->Art;
    faerbe(bild, farben);
    bild.symbolX = spalten_.symbolX;
    bild.symbol = Menuetexte::symbol(dieser, kontext_.markierungen);
    const bool sendung = dieser.Art == menueart::kSendung;
    const int textX = sendung ? spalten_.textX : spalten_.zeitX;
    bild.zeit = zeilentext(spalten_.zeitX, spalten_.zeitbreite, Menuetexte::zeit(dieser));
    bild.sender =
        zeilentext(spalten_.senderX, spalten_.senderbreite, Menuetexte::sender(dieser, kontext_.sender));
    bild.text = zeilentext(textX, spalten_.rechts - textX, Menuetexte::text(dieser));
    bild.pfeil = oeffnetSich(dieser);
    bild.offen = istKopf(dieser) && dieser.UnterMenue->Visible();
    bild.name = Menuetexte::zugaenglicherName(dieser, kontext_.sender);
    bild.beschreibung = dieser.Beschreibung;
    bild.tooltip = dieser.Tooltiptext;
    return bild;
}

void FormBrannikMenue::hervorheben(int index, bool tipp) {
    if (tipp != tippGewaehlt_) {
        tippGewaehlt_ = tipp;
        view_->zeichneTipp(tipp);
    }
    if (index == isSelected_) return;
    const int bisher = std::exchange(isSelected_, index);
    PaintMenueItem(bisher);
    PaintMenueItem(index);
}

// ---- showing and hiding ----

void FormBrannikMenue::ShowObermenue(Punkt zeiger) {
    const Arbeitsbereich frei = kontext_.umgebung.freieFlaeche(zeiger);
    verbirgUntermenue();
    ausmessen(frei);
    zeige(Menueplatzierung::obermenue(zeiger, fenstergroesse(), frei));
}

// The area is that of the monitor with the row: the keyboard opens sub-menus wherever the pointer is.
void FormBrannikMenue::ShowNebenEltern(int y) {
    FormBrannikMenue* eltern = this->eltern();
    if (!eltern) return;
    eltern->schliesseUntermenue();
    const Rechteck& platz = eltern->fenster_;
    const Arbeitsbereich frei =
        kontext_.umgebung.freieFlaeche({platz.links + platz.breite / 2, platz.oben + y});
    ausmessen(frei);
    zeige(Menueplatzierung::untermenue(platz, y, fenstergroesse(), frei));
    eltern->childHwnd_ = hwnd();
    eltern->PaintMenueItem(eltern->indexVon(*this));
}

void FormBrannikMenue::zeige(Punkt linksOben) {
    const Groesse groesse = fenstergroesse();
    fenster_ = {linksOben.x, linksOben.y, groesse.breite, groesse.hoehe};
    isSelected_ = 0;
    tippGewaehlt_ = false;
    einblendungsCounter_ = kRuhe;
    mausX_ = mausY_ = -1;
    PaintMenue();
    setzeZeitgeber(kZeitgeberMs);
    sichtbar_ = true;
    kontext_.geladene.erwarteAktivierung();
    view_->zeigen(fenster_, eltern() ? eltern()->hwnd() : 0);
}

void FormBrannikMenue::setzeZeitgeber(int ms) {
    timerEinblendungInterval_ = timerUnloadInterval_ = ms;
    view_->setzeTimerEinblendung(ms);
    view_->setzeTimerUnload(ms);
}

void FormBrannikMenue::verbergen() {
    verbirgUntermenue();
    const bool war = std::exchange(sichtbar_, false);
    einblendungsCounter_ = 0;
    menueMenueOffen_ = false;
    setzeZeitgeber(0);
    if (!war) return;
    view_->verbergen();
    if (eltern() && eltern()->childHwnd_ == hwnd()) eltern()->childHwnd_ = 0;
}

FormBrannikMenue* FormBrannikMenue::offenesKind() const {
    for (const auto& punkt : menuePunkte_) {
        if (istKopf(*punkt) && punkt->UnterMenue->Visible()) return punkt->UnterMenue.get();
    }
    return nullptr;
}

void FormBrannikMenue::verbirgUntermenue() {
    if (FormBrannikMenue* kind = offenesKind()) kind->verbergen();
}

// The keyboard comes back before the window that has it goes: else the desktop would hand it to another
// program, and the closing watch would take that for the user's wish.
void FormBrannikMenue::schliesseUntermenue() {
    FormBrannikMenue* kind = offenesKind();
    if (!kind) return;
    view_->aktivieren();
    kontext_.geladene.erwarteAktivierung();
    kind->verbergen();
    PaintMenueItem(indexVon(*kind));
}

void FormBrannikMenue::ActivateParent(Fensterhandle hwnd) {
    const FormBrannikMenue* kind = offenesKind();
    if (kind && kind->hwnd() == hwnd) {
        childHwnd_ = hwnd;
        hervorheben(indexVon(*kind));
    }
    if (eltern()) eltern()->ActivateParent(this->hwnd());
}

// ---- hovering ----

void FormBrannikMenue::PicPaint_MouseMove(int x, int y) {
    if (!sichtbar_) return;
    if (eltern()) eltern()->ActivateParent(hwnd());
    // Toolkits report a resting mouse too; it must not take the highlight back from the keyboard.
    if (x == mausX_ && y == mausY_) return;
    mausX_ = x;
    mausY_ = y;
    if (FormBrannikMenue* kind = offenesKind()) kind->hervorheben(0);
    const int index = indexBei(x, y);
    if (index == isSelected_ && !tippGewaehlt_) return;
    hervorheben(index);
    einblendungsCounter_ = kEinblendungsticks;
}

void FormBrannikMenue::PictureTagestipp_MouseMove() {
    mausX_ = mausY_ = -1;
    if (isSelected_ == 0 && tippGewaehlt_ == hatTipp()) return;
    hervorheben(0, hatTipp());
    einblendungsCounter_ = kEinblendungsticks;
}

void FormBrannikMenue::TimerEinblendung_Timer() {
    if (einblendungsCounter_ < 0) return;
    --einblendungsCounter_;
    if (einblendungsCounter_ == 0) folgeDerAuswahl();
}

// Only one sub-menu is open at a time: that of the highlighted entry may stay.
void FormBrannikMenue::folgeDerAuswahl() {
    cMenuePunkt* gewaehlt = punkt(isSelected_);
    const FormBrannikMenue* kind = offenesKind();
    if (kind && (!gewaehlt || gewaehlt->UnterMenue.get() != kind)) schliesseUntermenue();
    if (!gewaehlt || !istKopf(*gewaehlt) || gewaehlt->UnterMenue->Visible()) return;
    gewaehlt->ShowUnterMenue((picPaint().oben + zeilenrechteck(isSelected_).oben) * kTwipsJePixel);
}

// ---- choosing ----

void FormBrannikMenue::PicPaint_MouseUp(int knopf, int x, int y) {
    const int index = indexBei(x, y);
    if (knopf == kMausLinks) waehlen(index);
    if (knopf == kMausRechts) oeffneMenueMenue(index, {x, y});
}

// A command may discard this window: afterwards only what outlives it is touched.
void FormBrannikMenue::waehlen(int index) {
    if (!waehlbar(index)) return;
    if (istKopf(*punkt(index))) {
        hervorheben(index);
        einblendungsCounter_ = kRuhe;
        folgeDerAuswahl();
        return;
    }
    const Menuekontext kontext = kontext_;
    const Menuebefehl befehl = Menuebefehl::von(*punkt(index));
    // The guide may take its time to answer, and the user open the menu again meanwhile: that one stays. A
    // window of our own comes up easier from an active one.
    const bool zuerst =
        punkt(index)->Art == menueart::kSendung || befehl.Name == Menuebefehle::kFennowStarten;
    if (zuerst) ModulBrannikMenue::HideAllMenues(kontext.geladene);
    Menuebefehle::ausfuehren(befehl, kontext.aktionen);
    if (!zuerst) ModulBrannikMenue::HideAllMenues(kontext.geladene);
}

void FormBrannikMenue::oeffneMenueMenue(int index, Punkt ort) {
    if (!waehlbar(index) || punkt(index)->Art != menueart::kSendung) return;
    hervorheben(index);
    // What the countdown would close later would raise this window above the context menu.
    einblendungsCounter_ = kRuhe;
    schliesseUntermenue();
    kontextbefehl_ = Menuebefehl::von(*punkt(index));
    menueMenueOffen_ = true;
    view_->zeigeMenueMenue({ort, Menuebefehle::imTVZeigenAngeboten(kontextbefehl_, kontext_.aktionen)});
}

void FormBrannikMenue::MenueMenue_Geschlossen() { menueMenueOffen_ = false; }

void FormBrannikMenue::MenueAnzeigen_Click() {
    ModulBrannikMenue::HideAllMenues(kontext_.geladene);
    Menuebefehle::anzeigen(kontextbefehl_.DBPos, kontext_.aktionen);
}

void FormBrannikMenue::MenueErinnern_Click() {
    ModulBrannikMenue::HideAllMenues(kontext_.geladene);
    Menuebefehle::erinnern(kontextbefehl_.DBPos, kontext_.aktionen);
}

void FormBrannikMenue::MenueImTVZeigen_Click() {
    const Menuebefehl befehl = kontextbefehl_;
    Menueaktionen& aktionen = kontext_.aktionen;
    ModulBrannikMenue::HideAllMenues(kontext_.geladene);
    if (Menuebefehle::imTVZeigenAngeboten(befehl, aktionen)) aktionen.imTVZeigen(befehl.SenderKennung);
}

void FormBrannikMenue::PictureTagestipp_Click() {
    ModulBrannikMenue::HideAllMenues(kontext_.geladene);
    Menuebefehle::anzeigen(tagestipp.TagesTippPos, kontext_.aktionen);
}

// ---- the closing watch ----

void FormBrannikMenue::TimerUnload_Timer() {
    const Fensterhandle aktiv = kontext_.umgebung.aktivesFenster();
    const auto& formen = kontext_.geladene.formen();
    const bool menueAktiv = std::any_of(formen.begin(), formen.end(), [aktiv](const FormBrannikMenue* form) {
        return form->Visible() && (form->hwnd() == aktiv || form->MenueMenueOffen());
    });
    // One tick of the tree, however many of its windows are open.
    if (kontext_.geladene.zuSchliessen(menueAktiv, eltern() == nullptr))
        ModulBrannikMenue::HideAllMenues(kontext_.geladene);
}

// ---- keyboard ----

void FormBrannikMenue::PicPaint_KeyDown(Menuetaste taste, const std::string& zeichen) {
    tastenziel().taste(taste, zeichen);
}

FormBrannikMenue& FormBrannikMenue::tastenziel() {
    FormBrannikMenue* form = this;
    while (form->eltern())
        form = form->eltern();
    for (FormBrannikMenue* kind = form->offenesKind(); kind && kind->isSelected_ > 0;
         kind = form->offenesKind())
        form = kind;
    return *form;
}

void FormBrannikMenue::taste(Menuetaste taste, const std::string& zeichen) {
    const std::vector<int> zeilen = tastenziele();
    if (zeilen.empty()) return;
    switch (taste) {
        case Menuetaste::Hoch: return schritt(-1);
        case Menuetaste::Runter: return schritt(1);
        case Menuetaste::Pos1: return tastenwahl(zeilen.front());
        case Menuetaste::Ende: return tastenwahl(zeilen.back());
        case Menuetaste::Rechts: return hinein();
        case Menuetaste::Links: return zurueck();
        case Menuetaste::Enter: return bestaetigen();
        case Menuetaste::Esc: return abbrechen();
        case Menuetaste::Menue: return kontextmenueDerZeile();
        case Menuetaste::Zeichen: return springeZu(zeichen);
    }
}

std::vector<int> FormBrannikMenue::tastenziele() const {
    std::vector<int> ziele;
    for (int index = 1; punkt(index); ++index) {
        if (waehlbar(index)) ziele.push_back(index);
    }
    return ziele;
}

// Moving on by key closes what the mouse has opened; sub-menus open by key only when asked.
void FormBrannikMenue::tastenwahl(int ziel) {
    einblendungsCounter_ = kRuhe;
    schliesseUntermenue();
    hervorheben(ziel == kTippZiel ? 0 : ziel, ziel == kTippZiel);
}

// Round and round, with the tip above the first row.
void FormBrannikMenue::schritt(int richtung) {
    std::vector<int> ziele = tastenziele();
    const int aktuell = tippGewaehlt_ ? kTippZiel : isSelected_;
    if (aktuell == 0) return tastenwahl(richtung > 0 ? ziele.front() : ziele.back());
    if (hatTipp()) ziele.insert(ziele.begin(), kTippZiel);
    const auto anzahl = static_cast<int>(ziele.size());
    const auto stelle = static_cast<int>(std::find(ziele.begin(), ziele.end(), aktuell) - ziele.begin());
    tastenwahl(ziele[static_cast<std::size_t>((stelle + richtung + anzahl) % anzahl)]);
}

// To the next row that begins with the character. It is never chosen by that alone: one letter must not end
// the program.
void FormBrannikMenue::springeZu(const std::string& zeichen) {
    std::vector<int> ziele = tastenziele();
    std::rotate(ziele.begin(), std::upper_bound(ziele.begin(), ziele.end(), isSelected_), ziele.end());
    const auto ziel = std::find_if(ziele.begin(), ziele.end(), [&](int index) {
        return gleichOhneGrossKlein(Left(punkt(index)->Text, 1), zeichen);
    });
    if (ziel != ziele.end()) tastenwahl(*ziel);
}

void FormBrannikMenue::hinein() {
    const cMenuePunkt* gewaehlt = punkt(isSelected_);
    if (!gewaehlt || !oeffnetSich(*gewaehlt)) return;
    einblendungsCounter_ = kRuhe;
    folgeDerAuswahl();
    gewaehlt->UnterMenue->tastenwahl(gewaehlt->UnterMenue->tastenziele().front());
}

// The innermost window goes: the one that is open beside this one, else this one.
void FormBrannikMenue::zurueck() {
    if (offenesKind() || !eltern()) return schliesseUntermenue();
    eltern()->schliesseUntermenue();
}

void FormBrannikMenue::abbrechen() {
    if (offenesKind() || eltern()) return zurueck();
    ModulBrannikMenue::HideAllMenues(kontext_.geladene);
}

void FormBrannikMenue::bestaetigen() {
    if (tippGewaehlt_) return PictureTagestipp_Click();
    const cMenuePunkt* gewaehlt = punkt(isSelected_);
    if (!gewaehlt) return;
    if (istKopf(*gewaehlt)) return hinein();
    waehlen(isSelected_);
}

void FormBrannikMenue::kontextmenueDerZeile() {
    if (!punkt(isSelected_)) return;
    oeffneMenueMenue(isSelected_, {spalten_.textX, zeilenrechteck(isSelected_).unten()});
}

}  // namespace wendel
