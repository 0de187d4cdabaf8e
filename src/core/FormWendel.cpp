#include "core/FormWendel.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "core/Datenbestand.h"
#include "core/Laufend.h"
#include "core/Liveupdatetext.h"
#include "core/ModulInterneKommunikation.h"
#include "platform/ModulFenster.h"
#include "platform/Text.h"
#include "reminders/FormHinweis.h"

namespace wendel {

namespace {

constexpr std::string_view kStarttipp = "Lomrick";
constexpr std::int16_t kDoppelklickHauptanwendung = 1;

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

FormWendel::FormWendel(const Ports& ports, Datenbestand& bestand, FormHinweis& hinweis,
                       ModulInterneKommunikation& hauptanwendung, FormWendelView& view)
    : ports_(ports), bestand_(bestand), hinweis_(hinweis), hauptanwendung_(hauptanwendung), view_(view) {}

// ---- control lines, messages ----

void FormWendel::SteuerzeileEmpfangen(const std::string& text) {
    const Steuerwort wort = steuerwort(LCase(text));
    if (wort == Steuerwort::Unbekannt || beendet_) return;
    ports_.uhr.nachrichtenVerarbeiten();
    if (beendet_) return;
    switch (wort) {
        case Steuerwort::Terminupdate: terminupdate(); break;
        case Steuerwort::ShowWendel: zeigenUndNachVorn(); break;
        case Steuerwort::RefreshTVDaten: RefreshTVDaten(); break;
        case Steuerwort::RefreshKonfig: refreshKonfig(); break;
        case Steuerwort::CreateTermin:
            zeigen();
            ModulFenster::ForceForeground(ports_.fenster, view_.hwnd());
            ports_.uhr.nachrichtenVerarbeiten();
            break;
        case Steuerwort::Unbekannt: break;
    }
}

void FormWendel::terminupdate() {
    bestand_.markierungenPflegenUndAbfragen();
    RefreshTVDaten();
}

void FormWendel::RefreshTVDaten() {
    Ausfüllen();
    TaskBarIconAktualisieren();
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
    bestand_.einstellungenLesen();
    bestand_.pfadeBestimmen();
    bestand_.hauptanwendungTitelLesen();
    try {
        bestand_.senderLaden();
    } catch (const std::exception&) {
        // Told by the database access; the channels known before stay.
    }
    // Appointments that could not be stored must not be replaced by older ones. Stored once more, since the
    // boxes before may have let a notice be answered.
    if (bestand_.speichernWennNoetig()) bestand_.termineLaden();
    bestand_.markierungenPflegenUndAbfragen();
    nachholen(bestand_.eigene(), ports_.uhr.jetzt());
    Ausfüllen();
    TaskBarIconAktualisieren();
}

bool FormWendel::fensterNachricht(std::uint32_t nachricht, std::uintptr_t, std::uintptr_t lParam) {
    if (nachricht != kIconNachricht || !mausreaktion_) return false;
    // With a notice on the screen the user answers that first.
    if (!hinweis_.offen() && lParam == kMausLinksDoppelklick) iconDoppelklick();
    return true;
}

void FormWendel::iconDoppelklick() {
    if (bestand_.konfiguration().doppelklick == kDoppelklickHauptanwendung) {
        hauptanwendung_.StartMainApplication("Aktivieren");
    } else {
        zeigenUndNachVorn();
    }
}

// ---- the window ----

void FormWendel::zeigen() { view_.zeigen(); }

void FormWendel::zeigenUndNachVorn() {
    view_.zeigen();
    view_.nachVorn();
}

void FormWendel::verstecken() { view_.verstecken(); }

void FormWendel::fensterSchliessen() { verstecken(); }

void FormWendel::cmdAusblenden_Click() { verstecken(); }

void FormWendel::mnuBeenden_Click() { ExitProgram(); }

void FormWendel::zeileGewaehlt(std::optional<std::size_t> zeile) {
    auswahl_ = zeile && *zeile < zeilentermine_.size() ? zeile : std::nullopt;
}

void FormWendel::Ausfüllen() {
    if (beendet_) return;
    const Datum jetzt = ports_.uhr.jetzt();
    Terminliste termine =
        zeilenreihenfolge(bestand_.eigene(), bestand_.erinnerungen(), bestand_.aufzeichnungen());
    std::vector<Terminzeile> zeilen;
    zeilen.reserve(termine.size());
    for (const TerminZeiger& termin : termine)
        zeilen.push_back(terminzeile(*termin, jetzt));
    zeilenZeigen(std::move(zeilen), std::move(termine));

    const Konfiguration& konfiguration = bestand_.konfiguration();
    std::string text = liveUpdateEinstellungenText(konfiguration.liveUpdate, konfiguration.liveUpdateModus,
                                                   konfiguration.zeitplan);
    if (liveUpdateText_ == text) return;
    liveUpdateText_ = std::move(text);
    view_.setzeLiveUpdateEinstellungen(*liveUpdateText_);
}

// The selection belongs to the record, not to the place that it had.
void FormWendel::zeilenZeigen(std::vector<Terminzeile> zeilen, Terminliste termine) {
    std::optional<std::size_t> auswahl;
    if (auswahl_) {
        const auto gefunden = std::find(termine.begin(), termine.end(), zeilentermine_[*auswahl_]);
        if (gefunden != termine.end()) auswahl = static_cast<std::size_t>(gefunden - termine.begin());
    }
    const bool gleich = zeilen == zeilen_ && auswahl == auswahl_;
    zeilen_ = std::move(zeilen);
    zeilentermine_ = std::move(termine);
    auswahl_ = auswahl;
    if (!gleich) view_.setzeZeilen(zeilen_, auswahl_);
}

// ---- the icon ----

void FormWendel::iconHinzufuegen() {
    icon_ = datensatz(kStarttipp);
    ports_.symbol.hinzufuegen(*icon_);
}

void FormWendel::TaskBarIconAktualisieren() {
    TaskbarUpdateIcon(tooltipText(bestand_.eigene(), bestand_.erinnerungen(), bestand_.aufzeichnungen(),
                                  ports_.uhr.jetzt()));
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

// ---- entries, the way out ----

void FormWendel::terminHinzufuegen(const TerminZeiger& termin) {
    bestand_.terminAnhaengen(termin);
    Ausfüllen();
    static_cast<void>(bestand_.speichernWennNoetig());
    TaskBarIconAktualisieren();
}

void FormWendel::ExitProgram() {
    if (beendet_) return;
    beendet_ = true;
    if (geladen_) static_cast<void>(bestand_.speichernWennNoetig());
    if (icon_) ports_.symbol.entfernen(kIconKennung);
    mausreaktion_ = false;
    view_.entladen();
}

}  // namespace wendel
