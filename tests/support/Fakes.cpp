#include "support/Fakes.h"

#include <algorithm>

#include "platform/Text.h"

namespace wendel {

// ---- journal ----

void FakeBasis::notiere(std::string_view vorgang, std::string_view argumente) {
    zaehle();
    if (!aufrufe_.mitschreiben) return;
    std::string& zeile = aufrufe_.zeilen.emplace_back(port_);
    zeile.append(".").append(vorgang).append("(").append(argumente).append(")");
}

std::int64_t Aufrufe::anzahlOhneUhr() const {
    std::int64_t summe = 0;
    for (const auto& [port, anzahl] : anzahl_)
        summe += port == "Uhr" ? 0 : anzahl;
    return summe;
}

void Aufrufe::leeren() {
    for (auto& [port, anzahl] : anzahl_)
        anzahl = 0;
    zeilen.clear();
}

// ---- clock ----

void FakeUhr::schlafe(int ms) {
    notiere("schlafe", std::to_string(ms));
    schlafdauern.push_back(ms);
    vorMs(ms);
    if (beimSchlafen) beimSchlafen(ms);
}

void FakeUhr::nachrichtenVerarbeiten() {
    notiere("nachrichtenVerarbeiten");
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
    notiere("meldung", titel);
    gezeigt.push_back({text, stil, titel});
    if (imKasten) imKasten(Kasten{text, stil, titel});
    if (antworten.empty()) return ablehnung(stil);
    const Antwort antwort = antworten.front();
    antworten.pop_front();
    return antwort;
}

void FakeMeldungen::zeigeFehlerOhneWarten(const std::string& text, int, const std::string&,
                                          const std::string&, const std::string&) {
    notiere("zeigeFehlerOhneWarten", text);
    fehler.push_back(text);
}

// ---- windows ----

void FakeFenstersystem::eingabeVerbinden(std::uint64_t vonThread, std::uint64_t zuThread, bool verbinden) {
    notiere("eingabeVerbinden",
            std::to_string(vonThread) + ", " + std::to_string(zuThread) + (verbinden ? ", an" : ", aus"));
}

bool FakeFenstersystem::vordergrundSetzen(Fensterhandle handle) {
    notiere("vordergrundSetzen", handle);
    if (vordergrundErlaubt) vordergrund = handle;
    return vordergrund == handle;
}

bool FakeFenstersystem::aktivierenNachTitel(const std::string& titel) {
    notiere("aktivierenNachTitel", titel);
    for (const auto& [handle, eintrag] : fenster) {
        if (eintrag.titel != titel) continue;
        vordergrund = handle;
        return true;
    }
    return false;
}

// ---- sound, processes, starts, automation ----

bool FakeProzesse::beenden(std::uint32_t id) {
    notiere("beenden", id);
    if (std::erase_if(laufende, [id](const Prozess& p) { return p.id == id; }) == 0) return false;
    beendet.push_back(id);
    return true;
}

int FakeStarter::ausfuehren(const std::string& datei, const std::string& parameter, const std::string& ordner,
                            int fensterstil) {
    notiere("ausfuehren", datei);
    gestartet.push_back({datei, parameter, ordner, fensterstil});
    return ergebnis;
}

bool FakeAutomation::rufeDoThis(const std::string& klasse, const std::string& text) {
    notiere("rufeDoThis", klasse + ", " + text);
    rufe.push_back({klasse, text});
    return true;
}

void FakeAutomation::setzeWartemeldung(const std::string& titel, const std::string& text, int zeitMs) {
    notiere("setzeWartemeldung", titel + ", " + text + ", " + std::to_string(zeitMs));
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

// ---- computer ----

bool FakeRechner::rechnername(std::string& puffer) {
    notiere("rechnername");
    if (nameBekannt) puffer = name;
    return nameBekannt;
}

double FakeRechner::zufall() {
    notiere("zufall");
    if (zufallszahlen.empty()) return 0.5;
    const double naechste = zufallszahlen.front();
    zufallszahlen.pop_front();
    return naechste;
}

std::optional<std::string> FakeRechner::spezialordner(int nummer) {
    notiere("spezialordner", std::to_string(nummer));
    const auto pfad = spezialordnerpfade.find(nummer);
    return pfad == spezialordnerpfade.end() ? std::nullopt : std::optional(pfad->second);
}

// ---- other programs, energy ----

bool FakeFernsteuerung::starteBefehlszeile(const std::string& befehlszeile) {
    notiere("starteBefehlszeile", befehlszeile);
    if (beimStart && !beimStart(befehlszeile)) return false;
    return !fehlendeProgramme.contains(befehlszeile);
}

Fensterhandle FakeFernsteuerung::fensterNachTitel(const std::string& titel) {
    notiere("fensterNachTitel", titel);
    const auto offen = std::find(fenster.begin(), fenster.end(), titel);
    if (offen != fenster.end()) return static_cast<Fensterhandle>(offen - fenster.begin()) + 1;
    const auto spaeter = oeffnetUm.find(titel);
    if (spaeter == oeffnetUm.end() || !uhr_ || uhr_->laufzeitMs() < spaeter->second) return 0;
    fenster.push_back(titel);
    return fenster.size();
}

bool FakeFernsteuerung::sendeTasten(std::span<const Tastenereignis> ereignisse) {
    notiere("sendeTasten", ereignisse.size());
    gesendet.emplace_back(ereignisse.begin(), ereignisse.end());
    return nimmtTasten;
}

bool FakeEnergie::weckenUm(std::optional<Datum> moment) {
    notiere("weckenUm", moment ? datumKompakt(*moment) : "");
    weckzeit = weckenErlaubt ? moment : std::nullopt;
    return weckenErlaubt;
}

Registrierung::Schluessel FakeRegistrierung::oeffnen(Registrierungswurzel wurzel, const std::string& pfad,
                                                     std::uint32_t) {
    const std::string ganzer = (wurzel == Registrierungswurzel::Rechner ? "HKLM\\" : "HKCU\\") + pfad;
    notiere("oeffnen", ganzer);
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

void FakeStatusverbindung::sage(const std::string& label, const std::string& code) {
    if (verbunden) empfaenger_.statusLabel(label);
    if (verbunden) empfaenger_.statusCode(code);
}

bool FakeStatusverbindung::verbinden(const Empfaenger& empfaenger) {
    notiere("verbinden");
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
