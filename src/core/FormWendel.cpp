#include "core/FormWendel.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "core/Aufzeichnungsablauf.h"
#include "core/Autostart.h"
#include "core/Datenbestand.h"
#include "core/FormAufzeichnungsverlauf.h"
#include "core/Laufend.h"
#include "core/Liveupdatetext.h"
#include "core/ModulInterneKommunikation.h"
#include "core/Traymenue.h"
#include "platform/Fehler.h"
#include "platform/ModulFenster.h"
#include "platform/Text.h"
#include "recording/ModulDateiStarten.h"
#include "reminders/FormHinweis.h"
#include "reminders/FormTermin.h"

namespace wendel {

namespace {

constexpr std::string_view kStarttipp = "Lomrick";
constexpr std::int16_t kDoppelklickHauptanwendung = 1;
constexpr int kFensterNormal = 1;

enum class Steuerwort { Unbekannt, Terminupdate, ShowWendel, RefreshTVDaten, RefreshKonfig, CreateTermin };

// In the order of the list; the first match counts. The 14 characters of "refreshkonfig", one more than it
// has, are meant: followed by anything it is another word. Only "terminupdate" must be the whole line.
Steuerwort steuerwort(std::string_view zeile) {
    if (zeile == "terminupdate") return Steuerwort::Terminupdate;
    if (zeile.starts_with("showwendel")) return Steuerwort::ShowWendel;
    if (zeile.starts_with("refreshtvdaten")) return Steuerwort::RefreshTVDaten;
    if (Left(zeile, 14) == "refreshkonfig") return Steuerwort::RefreshKonfig;
    if (zeile.starts_with("createtermin")) return Steuerwort::CreateTermin;
    return Steuerwort::Unbekannt;
}

}  // namespace

FormWendel::FormWendel(const Ports& ports, Datenbestand& bestand, const Ablaeufe& ablaeufe,
                       const Unterformen& formen, ModulInterneKommunikation& hauptanwendung, Traymenue& menue,
                       FormWendelView& view)
    : ports_(ports),
      bestand_(bestand),
      aufzeichnungen_(ablaeufe.aufzeichnungen),
      liveupdate_(ablaeufe.liveupdate),
      autostart_(ablaeufe.autostart),
      hinweis_(formen.hinweis),
      termin_(formen.termin),
      verlauf_(formen.verlauf),
      hauptanwendung_(hauptanwendung),
      menue_(menue),
      view_(view) {}

// ---- control lines, messages ----

void FormWendel::SteuerzeileEmpfangen(const std::string& text) {
    const Steuerwort wort = steuerwort(LCase(text));
    if (wort == Steuerwort::Unbekannt || beendet_) return;
    ports_.uhr.nachrichtenVerarbeiten();
    if (beendet_) return;
    // What reads the database may bring a box, which would hold the script up until somebody answers it.
    if (wort != Steuerwort::ShowWendel && aufzeichnungen_.skriptLaeuft())
        return vormerken(text, [this, text] { SteuerzeileEmpfangen(text); });
    switch (wort) {
        case Steuerwort::Terminupdate: terminupdate(); break;
        case Steuerwort::ShowWendel: zeigenUndNachVorn(); break;
        case Steuerwort::RefreshTVDaten: RefreshTVDaten(); break;
        case Steuerwort::RefreshKonfig: refreshKonfig(); break;
        case Steuerwort::CreateTermin: createTermin(); break;
        case Steuerwort::Unbekannt: break;
    }
}

void FormWendel::terminupdate() {
    bestand_.markierungenPflegenUndAbfragen();
    RefreshTVDaten();
}

// Called from inside a tick: what may bring a box waits for its end. One that was broken off may have changed
// half of the broadcasts.
void FormWendel::liveupdateBeendet(bool neueDaten) {
    neueDaten ? RefreshTVDaten() : auffrischen();
    vormerken("LiveUpdateBeendet", [this] { markierungenNachlesen(); });
}

void FormWendel::markierungenNachlesen() {
    bestand_.markierungenPflegenUndAbfragen();
    auffrischen();
}

void FormWendel::createTermin() {
    if (!termin_.offen()) {
        zeigen();
        ModulFenster::ForceForeground(ports_.fenster, view_.hwnd());
        ports_.uhr.nachrichtenVerarbeiten();
    }
    TerminNeu();
}

void FormWendel::RefreshTVDaten() {
    bestand_.menueVeraltet();
    bestand_.tippLesenOhneKaesten();
    menue_.verwerfen();
    auffrischen();
}

// Its boxes let further lines in, whose boxes would pile up on top: they are one more pass afterwards.
void FormWendel::refreshKonfig() {
    konfigVeraltet_ = true;
    if (konfigLaeuft_) return;
    const Laufend laufend(konfigLaeuft_);
    while (std::exchange(konfigVeraltet_, false) && !beendet_)
        konfigNeuLesen();
}

void FormWendel::konfigNeuLesen() {
    static_cast<void>(bestand_.speichernWennNoetig());
    menue_.verwerfen();
    bestand_.einstellungenLesen();
    bestand_.pfadeBestimmen();
    bestand_.hauptanwendungTitelLesen();
    aufzeichnungen_.skriptLaden();
    try {
        bestand_.senderLaden();
    } catch (const std::exception&) {
        // Told by the database access; the channels known before stay.
    }
    // Appointments that could not be stored must not be replaced by older ones. Stored once more, since the
    // boxes before may have let a notice be answered.
    if (bestand_.speichernWennNoetig()) bestand_.termine().laden();
    bestand_.markierungenPflegenUndAbfragen();
    bestand_.termine().nachholen();
    static_cast<void>(bestand_.speichernWennNoetig());
    Ausfüllen();
    bestand_.menueVeraltet();
    menueAufbauen();
    TaskBarIconAktualisieren();
}

bool FormWendel::fensterNachricht(std::uint32_t nachricht, std::uintptr_t, std::uintptr_t lParam) {
    if (nachricht != kIconNachricht || !mausreaktion_) return false;
    // With a notice on the screen the user answers that first.
    if (hinweis_.offen()) return true;
    if (lParam == kMausLinksDoppelklick) iconDoppelklick();
    if (lParam == kMausRechtsLos) iconRechtsklick();
    return true;
}

void FormWendel::iconDoppelklick() {
    if (bestand_.konfiguration().doppelklick == kDoppelklickHauptanwendung) {
        hauptanwendungRufen(Menuebefehle::kAktivieren);
    } else {
        zeigenUndNachVorn();
    }
}

// What would have to wait for the answer to a box opens the menu with what is known; so does what has no
// time for a query. The box of this very call is answered first.
void FormWendel::iconRechtsklick() {
    if (menueOeffnet_) return;
    const Laufend laufend(menueOeffnet_);
    if (!wuerdeAufhalten()) bestand_.menueLesen();
    if (!beendet_ && !hinweis_.offen()) menue_.zeigen();
}

// ---- the tray menu ----

void FormWendel::menueAufbauen() {
    if (beendet_) return;
    bestand_.menueLesenOhneKaesten();
    menue_.bauen();
}

std::vector<EinfacherEintrag> FormWendel::einfachesMenue(bool frisch) {
    if (!mausreaktion_) return {};
    if (frisch && !wuerdeAufhalten()) bestand_.menueLesenOhneKaesten();
    return menue_.einfach(tooltip());
}

void FormWendel::menuebefehlAusfuehren(const Menuebefehl& befehl) {
    if (mausreaktion_) menue_.ausfuehren(befehl);
}

void FormWendel::hauptanwendungRufen(const std::string& befehlstext) {
    if (beendet_) return;
    if (wuerdeAufhalten() || ruftHauptanwendung_)
        return vormerken(befehlstext, [this, befehlstext] { hauptanwendungRufen(befehlstext); });
    const Laufend laufend(ruftHauptanwendung_);
    hauptanwendung_.StartMainApplication(befehlstext);
}

void FormWendel::imTVZeigen(const std::string& senderkennung) {
    if (beendet_) return;
    if (wuerdeAufhalten())
        return vormerken("imTVZeigen", [this, senderkennung] { imTVZeigen(senderkennung); });
    aufzeichnungen_.imTVZeigen(senderkennung);
}

void FormWendel::nachErinnern() {
    if (beendet_) return;
    if (wuerdeAufhalten() || ruftHauptanwendung_)
        return vormerken("nachErinnern", [this] { nachErinnern(); });
    bestand_.abfragen();
    auffrischen();
}

// ---- the window ----

void FormWendel::zeigen() { view_.zeigen(); }

// The editor is modal to the list: it would be left behind it.
void FormWendel::zeigenUndNachVorn() {
    view_.zeigen();
    view_.nachVorn();
    if (termin_.offen()) termin_.nachVorn();
}

void FormWendel::verstecken() { view_.verstecken(); }

// Without the list the editor would have no owner on the screen.
void FormWendel::fensterSchliessen() {
    if (termin_.offen()) return termin_.nachVorn();
    verstecken();
}

void FormWendel::cmdAusblenden_Click() { fensterSchliessen(); }

void FormWendel::mnuBeenden_Click() {
    if (beendet_) return;
    if (termin_.offen()) return termin_.nachVorn();
    const bool fragt = !aufzeichnungen_.beendenFrage().empty() || !speicherfrage().empty() ||
                       autostart_.fragt(bestand_.konfiguration().autostart);
    if (fragt && wuerdeAufhalten()) return vormerken("mnuBeenden", [this] { mnuBeenden_Click(); });
    if (trotzdemBeenden(aufzeichnungen_.beendenFrage(), "Aufzeichnung") &&
        trotzdemBeenden(speicherfrage(), "Termine"))
        ExitProgram(true);
}

// Empty when all is stored.
std::string FormWendel::speicherfrage() {
    if (!geladen_ || bestand_.speichernWennNoetig() || !bestand_.termine().ungespeichert()) return {};
    return "Die Termine konnten nicht gespeichert werden:\r\n" + bestand_.termine().speicherfehler() +
           "\r\nMöchten Sie trotzdem beenden ?";
}

// Yes also to no question at all.
bool FormWendel::trotzdemBeenden(const std::string& frage, const std::string& titel) {
    return frage.empty() || fragen(frage, meldungsstil::kJaNeinAusrufezeichen, titel);
}

void FormWendel::LabelAnzLiveUpdateEinstellungenStartLink_Click() {
    if (wuerdeAufhalten())
        return vormerken("LiveUpdate", [this] { LabelAnzLiveUpdateEinstellungenStartLink_Click(); });
    const std::string datei = bestand_.werte().programmordner + kLiveUpdateProgramm;
    try {
        ModulDateiStarten::DateiStarten(ports_.starter, datei, bestand_.konfiguration().linkParameter,
                                        kFensterNormal);
    } catch (const Fehler&) {
        const Laufend laufend(frageOffen_);
        ports_.meldungen.meldung("Die folgende Datei kann nicht gestartet werden:\r\n\"" +
                                     ports_.dateien.pfadAnzeige(datei) + "\"",
                                 meldungsstil::kAusrufezeichen, "Fehler");
    }
}

// ---- the list and its menu ----

void FormWendel::zeileGewaehlt(std::optional<std::size_t> zeile) {
    auswahl_ = zeile && *zeile < zeilentermine_.size() ? zeile : std::nullopt;
    auswahltermin_ = auswahl_ ? zeilentermine_[*auswahl_] : nullptr;
    if (menuezustand_ != auswahl_.has_value()) menuezustandZeigen();
}

std::int32_t FormWendel::GetSelektierterIndex() const {
    return auswahl_ ? static_cast<std::int32_t>(*auswahl_) + 1 : 0;
}

void FormWendel::menuezustandZeigen() {
    menuezustand_ = GetSelektierterIndex() >= 1;
    view_.setzeMenuezustand(*menuezustand_);
}

void FormWendel::ListViewTermineListe_Click() { menuezustandZeigen(); }

void FormWendel::ListViewTermineListe_DblClick() {
    menuezustandZeigen();
    TerminBearbeiten();
}

bool FormWendel::ListViewTermineListe_KeyPress(int zeichencode) {
    if (zeichencode != kTasteEingabe) return false;
    TerminBearbeiten();
    return true;
}

bool FormWendel::ListViewTermineListe_KeyDown(int tastencode) {
    const bool loeschen = tastencode == kTasteEntf;
    if (loeschen) TerminLoeschen();
    if (!beendet_) menuezustandZeigen();
    return loeschen;
}

void FormWendel::ListViewTermineListe_MouseUp(int knopf) {
    if (knopf != kKnopfRechts) return;
    menuezustandZeigen();
    view_.zeigePopupTerminliste(GetSelektierterIndex() >= 1);
}

void FormWendel::mnuNeuTermin_Click() { TerminNeu(); }

void FormWendel::mnuEditieren_Click() { TerminBearbeiten(); }

void FormWendel::mnuLöschen_Click() { TerminLoeschen(); }

void FormWendel::mnuAufzeichnungen_Click() { verlauf_.oeffnen(); }

void FormWendel::auffrischen() {
    Ausfüllen();
    TaskBarIconAktualisieren();
}

void FormWendel::Ausfüllen() {
    if (beendet_) return;
    aufzeichnungen_.abgleichen();
    const Datum jetzt = ports_.uhr.jetzt();
    Terminliste termine =
        zeilenreihenfolge(bestand_.eigene(), bestand_.erinnerungen(), aufzeichnungen_.termine());
    std::vector<Terminzeile> zeilen;
    zeilen.reserve(termine.size());
    for (const TerminZeiger& termin : termine) {
        const bool aufzeichnung = termin->Art == Terminart::Aufzeichnung;
        zeilen.push_back(
            terminzeile(*termin, jetzt, aufzeichnung ? aufzeichnungen_.ueberschneidung(*termin) : ""));
    }
    zeilenZeigen(std::move(zeilen), std::move(termine));

    liveUpdateZeigen();
    statusZeigen();
}

void FormWendel::liveUpdateZeigen() {
    const Konfiguration& konfiguration = bestand_.konfiguration();
    std::string text = liveUpdateEinstellungenText(konfiguration.liveUpdate, konfiguration.liveUpdateModus,
                                                   konfiguration.zeitplan);
    if (liveUpdateText_ == text) return;
    liveUpdateText_ = std::move(text);
    view_.setzeLiveUpdateEinstellungen(*liveUpdateText_);
}

void FormWendel::statusZeigen() {
    const bool gescheitert = !bestand_.termine().speicherfehler().empty();
    if (!gescheitert) speicherfehlerGemeldet_ = speicherfehlerZuMelden_ = false;
    std::string text = gescheitert ? "Noch nicht gespeichert, neuer Versuch jede Minute: " +
                                         bestand_.termine().speicherfehler()
                                   : "";
    const std::string& liveupdate = liveupdate_.statustext();
    if (!text.empty() && !liveupdate.empty()) text += " – ";
    text += liveupdate;
    if (statustext_ == text || beendet_) return;
    statustext_ = std::move(text);
    view_.setzeStatustext(statustext_);
}

// The selection belongs to the record, not to the place that it had.
void FormWendel::zeilenZeigen(std::vector<Terminzeile> zeilen, Terminliste termine) {
    std::optional<std::size_t> auswahl;
    if (auswahltermin_) {
        const auto gefunden = std::find(termine.begin(), termine.end(), auswahltermin_);
        if (gefunden != termine.end()) auswahl = static_cast<std::size_t>(gefunden - termine.begin());
    }
    const bool gleich = zeilen == zeilen_ && auswahl == auswahl_;
    zeilen_ = std::move(zeilen);
    zeilentermine_ = std::move(termine);
    auswahl_ = auswahl;
    if (!auswahl_) auswahltermin_ = nullptr;
    if (!gleich) view_.setzeZeilen(zeilen_, auswahl_);
    if (menuezustand_ != auswahl_.has_value()) menuezustandZeigen();
}

// ---- the icon ----

void FormWendel::iconHinzufuegen() {
    icon_ = datensatz(kStarttipp);
    ports_.symbol.hinzufuegen(*icon_);
}

void FormWendel::TaskBarIconAktualisieren() { TaskbarUpdateIcon(tooltip()); }

std::string FormWendel::tooltip() const {
    return tooltipText(bestand_.eigene(), bestand_.erinnerungen(), aufzeichnungen_.termine(),
                       ports_.uhr.jetzt());
}

void FormWendel::TaskbarUpdateIcon(std::string_view tipp) {
    if (!icon_ || beendet_) return;
    const IconDatensatz neu = datensatz(tipp);
    if (neu == *icon_) return;
    icon_ = neu;
    ports_.symbol.aendern(*icon_);
}

IconDatensatz FormWendel::datensatz(std::string_view tipp) {
    return iconDatensatz(static_cast<std::uint32_t>(view_.hwnd()), kIconProgrammbild, tipp);
}

// ---- the user's appointments ----

bool FormWendel::wuerdeAufhalten() const {
    return !bereit_ || beschaeftigt_ || frageOffen_ || konfigLaeuft_ || bestand_.zugriffLaeuft();
}

// What waits inside a tick silences all reminders, and inside an access to the database those of broadcasts:
// nobody knows how long the user lets a window or a box stand.
void FormWendel::vormerken(const std::string& was, std::function<void()> tun) {
    std::erase_if(vorgemerkt_, [&](const Vorgemerktes& frueher) { return frueher.was == was; });
    vorgemerkt_.push_back({was, std::move(tun)});
}

bool FormWendel::aktionMoeglich(void (FormWendel::*aktion)()) {
    if (beendet_) return false;
    if (termin_.offen()) {
        termin_.nachVorn();
        return false;
    }
    if (!wuerdeAufhalten()) return true;
    vormerken("Termin", [this, aktion] { (this->*aktion)(); });
    return false;
}

void FormWendel::vorgemerktesAnstossen() {
    if ((!vorgemerkt_.empty() || speicherfehlerZuMelden_) && !beendet_ && !wuerdeAufhalten())
        view_.rufeVorgemerktesBald();
}

// One at a time, the others from the event loop: they do not wait until the editor is closed again.
void FormWendel::VorgemerktesAusfuehren() {
    if (beendet_ || wuerdeAufhalten()) return;
    if (speicherfehlerZuMelden_) speicherfehlerMelden();
    if (vorgemerkt_.empty()) return;
    const std::function<void()> tun = std::move(vorgemerkt_.front().tun);
    vorgemerkt_.erase(vorgemerkt_.begin());
    vorgemerktesAnstossen();
    tun();
}

void FormWendel::TerminNeu() {
    if (!aktionMoeglich(&FormWendel::TerminNeu)) return;
    TerminZeiger neu;
    termin_.ShowAndGetTermin(neu, [&] {
        bestand_.termine().anhaengen(neu);
        auswahltermin_ = neu;
        nachTerminaenderung();
    });
}

void FormWendel::TerminBearbeiten() {
    if (!aktionMoeglich(&FormWendel::TerminBearbeiten)) return;
    const TerminZeiger termin = GetSelektierterIndex() ? auswahltermin_ : nullptr;
    if (!termin) return;
    if (termin->Art != Terminart::Eigener) return wechselAnbieten(termin->Art);
    const cTermin vorher = *termin;
    TerminZeiger kopie = std::make_shared<cTermin>(vorher);
    termin_.ShowAndGetTermin(kopie, [&] {
        auswahltermin_ = bestand_.termine().uebernehmen(termin, vorher, *kopie);
        nachTerminaenderung();
    });
}

void FormWendel::TerminLoeschen() {
    if (!aktionMoeglich(&FormWendel::TerminLoeschen)) return;
    const TerminZeiger termin = GetSelektierterIndex() ? auswahltermin_ : nullptr;
    if (!termin) return;
    if (termin->Art != Terminart::Eigener) return wechselAnbieten(termin->Art);
    if (!fragen("Möchten Sie den markierten Termin wirklich löschen ?", meldungsstil::kJaNeinFrage,
                "Termin löschen"))
        return;
    if (bestand_.termine().entfernen(*termin) == auswahltermin_) auswahltermin_ = nachbar();
    nachTerminaenderung();
}

// The record whose row takes the place of the selected one when that goes: who works with the keyboard goes
// on from there.
TerminZeiger FormWendel::nachbar() const {
    if (!auswahl_ || zeilentermine_.size() < 2) return nullptr;
    const bool letzte = *auswahl_ + 1 == zeilentermine_.size();
    return zeilentermine_[letzte ? *auswahl_ - 1 : *auswahl_ + 1];
}

void FormWendel::wechselAnbieten(Terminart art) {
    const bool aufzeichnung = art == Terminart::Aufzeichnung;
    const std::string text = (aufzeichnung ? "Diese Aufzeichnung wird über die Favoritenliste im "
                                           : "Dieser Termin wird über die Favoritenliste im ") +
                             bestand_.werte().hauptanwendungTitel +
                             " gesteuert.\r\nMöchten Sie jetzt dorthin wechseln ?";
    if (fragen(text, meldungsstil::kJaNeinInformation, aufzeichnung ? "Aufzeichnung" : "Termin"))
        hauptanwendungRufen("ShowFavoritenliste");
}

// False also when the program was told to end meanwhile.
bool FormWendel::fragen(const std::string& text, int stil, const std::string& titel) {
    const Laufend laufend(frageOffen_);
    return ports_.meldungen.meldung(text, stil, titel) == Antwort::Ja && !beendet_;
}

void FormWendel::KurzZeitWeckerAktivieren(std::int16_t minuten) {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = DateAdd(Einheit::Minute, std::max<std::int16_t>(minuten, 0), ports_.uhr.jetzt());
    termin->WeckText = kKurzzeittext;
    termin->Aktiv = true;
    bestand_.termine().anhaengen(termin);
    auffrischen();
}

void FormWendel::terminHinzufuegen(const TerminZeiger& termin) {
    bestand_.termine().anhaengen(termin);
    nachTerminaenderung();
}

// Shown once more after the storing, which takes over what others have changed.
void FormWendel::nachTerminaenderung() {
    Ausfüllen();
    static_cast<void>(bestand_.speichernWennNoetig());
    auffrischen();
    speicherfehlerZuMelden_ = !bestand_.termine().speicherfehler().empty() && !speicherfehlerGemeldet_;
    if (speicherfehlerZuMelden_ && !wuerdeAufhalten()) speicherfehlerMelden();
}

void FormWendel::speicherfehlerMelden() {
    speicherfehlerZuMelden_ = false;
    speicherfehlerGemeldet_ = true;
    const Laufend laufend(frageOffen_);
    ports_.meldungen.meldung("Die Termine konnten nicht gespeichert werden:\r\n" +
                                 bestand_.termine().speicherfehler() +
                                 "\r\nDas Speichern wird jede Minute erneut versucht.",
                             meldungsstil::kAusrufezeichen, "Termine");
}

// ---- the way out ----

void FormWendel::autostarteintragSetzen() {
    if (beendet_) return;
    if (wuerdeAufhalten()) return vormerken("Autostart", [this] { autostarteintragSetzen(); });
    const Laufend laufend(frageOffen_);
    autostart_.SetAutostartEntry(kVbTrue);
}

// False when the program goes on, and when it was told to end meanwhile.
bool FormWendel::autostartKlaeren() {
    const Laufend laufend(frageOffen_);
    return autostart_.AskAutostartOnClose(bestand_.konfiguration().autostart) && !beendet_;
}

void FormWendel::ExitProgram(bool mitFrage) {
    if (beendet_ || (mitFrage && !autostartKlaeren())) return;
    beendet_ = true;
    if (geladen_) static_cast<void>(bestand_.speichernWennNoetig());
    aufzeichnungen_.beenden();
    liveupdate_.beenden();
    if (icon_) ports_.symbol.entfernen(kIconKennung);
    mausreaktion_ = false;
    view_.entladen();
    menue_.verwerfen();
}

}  // namespace wendel
