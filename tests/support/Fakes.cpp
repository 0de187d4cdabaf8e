#include "support/Fakes.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "platform/Text.h"

namespace wendel {

// ---- journal ----

void Aufrufe::notiere(Portart art, std::string_view vorgang, std::string_view argumente) {
    zaehle(art);
    if (!mitschreiben) return;
    static constexpr std::array<std::string_view, kPortarten> kNamen = {
        "Uhr",          "Dateisystem",   "Meldungen",         "Fenstersystem",   "Klang",     "Prozesse",
        "Dateistarter", "Automation",    "TaskleistenSymbol", "Rechner",         "Datenbank", "Fernsteuerung",
        "Energie",      "Registrierung", "Einwahl",           "Statusverbindung"};
    std::string zeile(kNamen[static_cast<std::size_t>(art)]);
    zeile.append(".").append(vorgang).append("(").append(argumente).append(")");
    zeilen.push_back(std::move(zeile));
}

std::int64_t Aufrufe::anzahlOhneUhr() const {
    return std::accumulate(anzahl_.begin(), anzahl_.end(), std::int64_t{0}) - anzahl(Portart::Uhr);
}

void Aufrufe::leeren() {
    anzahl_.fill(0);
    zeilen.clear();
}

// ---- clock ----

void FakeUhr::vorMs(std::int64_t ms) {
    wanduhrMs_ += ms;
    laufzeitMs_ += ms;
}

Datum FakeUhr::jetzt() {
    aufrufe().zaehle(Portart::Uhr);
    return Datum::ausSekunden(wanduhrMs_ / 1000);
}

std::int64_t FakeUhr::laufzeitMs() {
    aufrufe().zaehle(Portart::Uhr);
    return laufzeitMs_;
}

void FakeUhr::schlafe(int ms) {
    aufrufe().notiere(Portart::Uhr, "schlafe", std::to_string(ms));
    schlafdauern.push_back(ms);
    vorMs(ms);
    if (beimSchlafen) beimSchlafen(ms);
}

void FakeUhr::nachrichtenVerarbeiten() {
    aufrufe().notiere(Portart::Uhr, "nachrichtenVerarbeiten");
    ++nachrichtenlaeufe;
    if (beiNachrichten) beiNachrichten();
}

// ---- boxes ----

namespace {

// What closing the box means to each kind of buttons.
Antwort ablehnung(int stil) {
    const int knoepfe = stil & 15;
    return knoepfe == 0 ? Antwort::Ok : knoepfe == 4 ? Antwort::Nein : Antwort::Abbrechen;
}

}  // namespace

Antwort FakeMeldungen::meldung(const std::string& text, int stil, const std::string& titel) {
    aufrufe().notiere(Portart::Meldungen, "meldung", titel);
    gezeigt.push_back({text, stil, titel});
    if (imKasten) imKasten(Kasten{text, stil, titel});
    if (antworten.empty()) return ablehnung(stil);
    const Antwort antwort = antworten.front();
    antworten.pop_front();
    return antwort;
}

void FakeMeldungen::zeigeFehlerOhneWarten(const std::string& text, int, const std::string&,
                                          const std::string&, const std::string&) {
    aufrufe().notiere(Portart::Meldungen, "zeigeFehlerOhneWarten", text);
    fehler.push_back(text);
}

// ---- windows ----

Fensterhandle FakeFenstersystem::vordergrundfenster() {
    aufrufe().notiere(Portart::Fenstersystem, "vordergrundfenster");
    return vordergrund;
}

std::uint64_t FakeFenstersystem::fensterThread(Fensterhandle handle) {
    aufrufe().notiere(Portart::Fenstersystem, "fensterThread", std::to_string(handle));
    return fenster[handle].thread;
}

void FakeFenstersystem::eingabeVerbinden(std::uint64_t vonThread, std::uint64_t zuThread, bool verbinden) {
    aufrufe().notiere(
        Portart::Fenstersystem, "eingabeVerbinden",
        std::to_string(vonThread) + ", " + std::to_string(zuThread) + (verbinden ? ", an" : ", aus"));
}

bool FakeFenstersystem::vordergrundSetzen(Fensterhandle handle) {
    aufrufe().notiere(Portart::Fenstersystem, "vordergrundSetzen", std::to_string(handle));
    if (vordergrundErlaubt) vordergrund = handle;
    return vordergrund == handle;
}

bool FakeFenstersystem::istMinimiert(Fensterhandle handle) {
    aufrufe().notiere(Portart::Fenstersystem, "istMinimiert", std::to_string(handle));
    return fenster[handle].minimiert;
}

void FakeFenstersystem::wiederherstellen(Fensterhandle handle) {
    aufrufe().notiere(Portart::Fenstersystem, "wiederherstellen", std::to_string(handle));
    fenster[handle].minimiert = false;
    fenster[handle].sichtbar = true;
}

void FakeFenstersystem::zeigen(Fensterhandle handle) {
    aufrufe().notiere(Portart::Fenstersystem, "zeigen", std::to_string(handle));
    fenster[handle].sichtbar = true;
}

bool FakeFenstersystem::aktivierenNachTitel(const std::string& titel) {
    aufrufe().notiere(Portart::Fenstersystem, "aktivierenNachTitel", titel);
    for (const auto& [handle, eintrag] : fenster) {
        if (eintrag.titel != titel) continue;
        vordergrund = handle;
        return true;
    }
    return false;
}

void FakeFenstersystem::sanduhr(bool an) {
    aufrufe().notiere(Portart::Fenstersystem, "sanduhr", an ? "an" : "aus");
    sanduhrAn = an;
}

// ---- sound, processes, starts, automation ----

int FakeKlang::ausgabegeraete() {
    aufrufe().notiere(Portart::Klang, "ausgabegeraete");
    return geraete;
}

void FakeKlang::spieleAsynchron(const std::string& pfad) {
    aufrufe().notiere(Portart::Klang, "spieleAsynchron", pfad);
    gespielt.push_back(pfad);
}

std::vector<Prozess> FakeProzesse::liste() {
    aufrufe().notiere(Portart::Prozesse, "liste");
    return laufende;
}

bool FakeProzesse::beenden(std::uint32_t id) {
    aufrufe().notiere(Portart::Prozesse, "beenden", std::to_string(id));
    const auto treffer = std::find_if(laufende.begin(), laufende.end(),
                                      [id](const Prozess& prozess) { return prozess.id == id; });
    if (treffer == laufende.end() || id == kEigene) return false;
    laufende.erase(treffer);
    beendet.push_back(id);
    return true;
}

int FakeStarter::ausfuehren(const std::string& datei, const std::string& parameter, const std::string& ordner,
                            int fensterstil) {
    aufrufe().notiere(Portart::Dateistarter, "ausfuehren", datei);
    gestartet.push_back({datei, parameter, ordner, fensterstil});
    return ergebnis;
}

bool FakeAutomation::rufeDoThis(const std::string& klasse, const std::string& text) {
    aufrufe().notiere(Portart::Automation, "rufeDoThis", klasse + ", " + text);
    rufe.push_back({klasse, text});
    return true;
}

void FakeAutomation::setzeWartemeldung(const std::string& titel, const std::string& text, int zeitMs) {
    aufrufe().notiere(Portart::Automation, "setzeWartemeldung",
                      titel + ", " + text + ", " + std::to_string(zeitMs));
}

// ---- tray ----

std::string FakeSymbol::tooltip() const {
    if (symbole.empty()) return {};
    const Datensatz& satz = symbole.begin()->second;
    return ausWindows1252(std::string(satz.begin() + 24, std::find(satz.begin() + 24, satz.end(), 0)));
}

void FakeSymbol::merke(std::span<const std::uint8_t, 88> datensatz, bool neu) {
    std::uint32_t kennung = 0;
    for (std::size_t i = 12; i-- > 8;)
        kennung = kennung << 8 | datensatz[i];
    if (neu != symbole.contains(kennung))
        std::copy(datensatz.begin(), datensatz.end(), symbole[kennung].begin());
}

void FakeSymbol::hinzufuegen(std::span<const std::uint8_t, 88> datensatz) {
    aufrufe().notiere(Portart::TaskleistenSymbol, "hinzufuegen");
    merke(datensatz, true);
}

void FakeSymbol::aendern(std::span<const std::uint8_t, 88> datensatz) {
    aufrufe().notiere(Portart::TaskleistenSymbol, "aendern");
    merke(datensatz, false);
}

void FakeSymbol::entfernen(std::uint32_t kennung) {
    aufrufe().notiere(Portart::TaskleistenSymbol, "entfernen", std::to_string(kennung));
    symbole.erase(kennung);
}

// ---- computer ----

bool FakeRechner::rechnername(std::string& puffer) {
    aufrufe().notiere(Portart::Rechner, "rechnername");
    if (nameBekannt) puffer = name;
    return nameBekannt;
}

double FakeRechner::zufall() {
    aufrufe().notiere(Portart::Rechner, "zufall");
    if (zufallszahlen.empty()) return 0.5;
    const double naechste = zufallszahlen.front();
    zufallszahlen.pop_front();
    return naechste;
}

std::optional<std::string> FakeRechner::spezialordner(int nummer) {
    aufrufe().notiere(Portart::Rechner, "spezialordner", std::to_string(nummer));
    const auto pfad = spezialordnerpfade.find(nummer);
    return pfad == spezialordnerpfade.end() ? std::nullopt : std::optional(pfad->second);
}

// ---- other programs, energy ----

bool FakeFernsteuerung::starteBefehlszeile(const std::string& befehlszeile) {
    aufrufe().notiere(Portart::Fernsteuerung, "starteBefehlszeile", befehlszeile);
    if (beimStart && !beimStart(befehlszeile)) return false;
    return !fehlendeProgramme.contains(befehlszeile);
}

Fensterhandle FakeFernsteuerung::fensterNachTitel(const std::string& titel) {
    aufrufe().notiere(Portart::Fernsteuerung, "fensterNachTitel", titel);
    const auto offen = std::find(fenster.begin(), fenster.end(), titel);
    if (offen != fenster.end()) return static_cast<Fensterhandle>(offen - fenster.begin()) + 1;
    const auto spaeter = oeffnetUm.find(titel);
    if (spaeter == oeffnetUm.end() || !uhr_ || uhr_->laufzeitMs() < spaeter->second) return 0;
    fenster.push_back(titel);
    return fenster.size();
}

void FakeFernsteuerung::zeigeNormal(Fensterhandle handle) {
    aufrufe().notiere(Portart::Fernsteuerung, "zeigeNormal", std::to_string(handle));
}

bool FakeFernsteuerung::aktivieren(const std::string& titel) {
    aufrufe().notiere(Portart::Fernsteuerung, "aktivieren", titel);
    return fensterNachTitel(titel) != 0;
}

bool FakeFernsteuerung::sendeTasten(std::span<const Tastenereignis> ereignisse) {
    aufrufe().notiere(Portart::Fernsteuerung, "sendeTasten", std::to_string(ereignisse.size()));
    gesendet.emplace_back(ereignisse.begin(), ereignisse.end());
    return nimmtTasten;
}

void FakeFernsteuerung::signalton() { aufrufe().notiere(Portart::Fernsteuerung, "signalton"); }

void FakeEnergie::wachhalten(const std::string& grund) {
    aufrufe().notiere(Portart::Energie, "wachhalten", grund);
    wach = true;
}

void FakeEnergie::schlafErlauben() {
    aufrufe().notiere(Portart::Energie, "schlafErlauben");
    wach = false;
}

bool FakeEnergie::weckenUm(std::optional<Datum> moment) {
    aufrufe().notiere(Portart::Energie, "weckenUm", moment ? datumKompakt(*moment) : "");
    weckzeit = weckenErlaubt ? moment : std::nullopt;
    return weckenErlaubt;
}

Registrierung::Schluessel FakeRegistrierung::oeffnen(Registrierungswurzel wurzel, const std::string& pfad,
                                                     std::uint32_t) {
    const std::string ganzer = (wurzel == Registrierungswurzel::Rechner ? "HKLM\\" : "HKCU\\") + pfad;
    aufrufe().notiere(Portart::Registrierung, "oeffnen", ganzer);
    if (!schluessel.contains(ganzer)) return 0;
    const Schluessel neu = offene_.empty() ? 1 : offene_.rbegin()->first + 1;
    offene_[neu] = ganzer;
    return neu;
}

Registrierung::Schluessel FakeRegistrierung::anlegen(Registrierungswurzel wurzel, const std::string& pfad,
                                                     std::uint32_t rechte) {
    if (anlegbar && wurzel == Registrierungswurzel::AktuellerBenutzer) schluessel.insert("HKCU\\" + pfad);
    return oeffnen(wurzel, pfad, rechte);
}

bool FakeRegistrierung::setzeWert(Schluessel offen, const std::string& name, const Registrierungswert& wert) {
    if (!vergesslich) werte[offene_.at(offen) + "\\" + name] = wert;
    return true;
}

std::optional<Registrierungswert> FakeRegistrierung::frageWert(Schluessel offen, const std::string& name) {
    const auto wert = werte.find(offene_.at(offen) + "\\" + name);
    return wert == werte.end() ? std::nullopt : std::optional(wert->second);
}

bool FakeRegistrierung::loescheWert(Schluessel offen, const std::string& name) {
    return werte.erase(offene_.at(offen) + "\\" + name) > 0;
}

void FakeStatusverbindung::sage(const std::string& label, const std::string& code) {
    if (verbunden) empfaenger_.statusLabel(label);
    if (verbunden) empfaenger_.statusCode(code);
}

bool FakeStatusverbindung::verbinden(const Empfaenger& empfaenger) {
    aufrufe().notiere(Portart::Statusverbindung, "verbinden");
    empfaenger_ = empfaenger;
    return verbunden = bedient;
}

// ---- all of them ----

FakePorts::FakePorts() {
    dateien.legeOrdner(kTestordner);
    if (dateien.ordnerWechseln(kTestordner)) aufrufe.leeren();
}

Ports FakePorts::ports() {
    Datenbankmaschinen& maschinen = echteDatenbanken ? *echteDatenbanken : datenbanken;
    return {uhr,        dateien, meldungen, fenster,   klang,         prozesse, starter,
            automation, symbol,  rechner,   maschinen, fernsteuerung, energie};
}

}  // namespace wendel
