#include "core/Liveupdate.h"

#include <utility>

#include "core/Datenbestand.h"
#include "core/Fehlermeldung.h"
#include "core/Liveupdatetext.h"
#include "platform/Datumstext.h"
#include "platform/Fehler.h"
#include "platform/ModulDFUEConnect.h"
#include "platform/ModulProzessliste.h"
#include "platform/Text.h"
#include "recording/ModulDateiStarten.h"

namespace wendel {

namespace {

constexpr std::int16_t kAbgeschaltet = -1;
constexpr std::int16_t kTaeglichBeiEinwahl = 0;
constexpr std::int16_t kBeiJederEinwahl = 1;
constexpr std::int16_t kZeitplan = 2;
constexpr std::int16_t kStundenabstand = 3;
constexpr int kCountdownTicks = 60;
constexpr int kWegTicks = 10;
constexpr int kStummTicks = 30 * 60;
constexpr std::int64_t kMinuteMs = 60'000;
constexpr std::int64_t kVersuchsabstandMs = 60 * kMinuteMs;
constexpr std::int64_t kNachholenMs = 5 * kMinuteMs;
constexpr std::int64_t kStatustextMs = 24 * 60 * kMinuteMs;
constexpr std::int64_t kTageSekunden = 86400;
constexpr std::int64_t kWoche = 7;
constexpr std::size_t kMaske = 7;
constexpr std::size_t kStatuszeichen = 500;
constexpr int kFensterVersteckt = 0;
constexpr int kFensterNormal = 1;
constexpr const char* kGestartet = "Live-Update gestartet";
constexpr std::string_view kCodeBeendet = "-99";
constexpr std::string_view kCodeAbgebrochen = "-98";

std::optional<Datum> planzeit(std::string_view zeitplan) {
    const std::string zeit = Trim(Mid(zeitplan, kMaske + 1));
    if (InStr(zeit, ":") == 0) return std::nullopt;  // a date at best
    try {
        return datumAusText(zeit).uhrzeitteil().aufMinute();
    } catch (const Fehler&) {
        return std::nullopt;  // the label shows the text as it is; the user sees what is wrong with it
    }
}

bool gleicherTag(Datum a, Datum b) { return a.datumsteil() == b.datumsteil(); }

bool istBeiEinwahl(std::int16_t modus) { return modus == kTaeglichBeiEinwahl || modus == kBeiJederEinwahl; }

// What a status may hold at its ends besides blanks.
std::string getrimmt(std::string_view text) {
    constexpr std::string_view kRand(" \t\r\n\0", 5);
    const std::size_t anfang = text.find_first_not_of(kRand);
    if (anfang == std::string_view::npos) return {};
    return std::string(text.substr(anfang, text.find_last_not_of(kRand) - anfang + 1));
}

}  // namespace

std::optional<Datum> letzterPlanmoment(std::string_view zeitplan, Datum von, Datum bis) {
    const std::string maske = Left(zeitplan, kMaske);
    const std::optional<Datum> zeit = planzeit(zeitplan);
    if (!zeit || maske.size() < kMaske) return std::nullopt;
    for (std::int64_t zurueck = 0; zurueck <= kWoche; ++zurueck) {
        const Datum tag = bis.datumsteil().plusSekunden(-zurueck * kTageSekunden);
        const Datum moment = tag + *zeit;
        if (moment <= von) return std::nullopt;
        const auto wochentag = static_cast<std::size_t>(Weekday(tag) - 1);
        if (moment <= bis && maske[wochentag] == '1') return moment;
    }
    return std::nullopt;
}

Liveupdate::Liveupdate(const Ports& ports, Einwahl& einwahl, Statusverbindung& verbindung,
                       Datenbestand& bestand)
    : ports_(ports), einwahl_(einwahl), verbindung_(verbindung), bestand_(bestand) {}

// The minute that has begun counts: the schedule compares hours and minutes.
void Liveupdate::starten(Datum jetzt) {
    letzterTick_ = jetzt.aufMinute().plusSekunden(-1);
    const Konfiguration& konfiguration = bestand_.konfiguration();
    const bool versaeumt =
        letzterPlanmoment(konfiguration.zeitplan, letztesUpdate(jetzt), letzterTick_).has_value();
    if (versaeumt && konfiguration.updateNachholen) nachholenAbMs_ = ports_.uhr.laufzeitMs() + kNachholenMs;
}

void Liveupdate::Timer(Datum jetzt) {
    const Datum letzterTick = std::exchange(letzterTick_, jetzt);
    if (!statustext_.empty() && ports_.uhr.laufzeitMs() >= statustextBisMs_) zeige({});
    if (schritt_ == Schritt::Beendet || schritt_ == Schritt::Abgebrochen) abschliessen(jetzt);
    if (schritt_ == Schritt::Laeuft) ueberwachen();
    const Konfiguration& konfiguration = bestand_.konfiguration();
    const std::int16_t modus = konfiguration.liveUpdate ? konfiguration.liveUpdateModus : kAbgeschaltet;
    if (modus != kZeitplan) nachholenAbMs_.reset();
    verbindungPruefen(modus);
    if (schritt_ == Schritt::Countdown) {
        if (--countdown_ <= 0) programmStarten(jetzt);
    } else {
        ausloesen(modus, letzterTick, jetzt);
    }
}

// A countdown belongs to the connection that has begun it.
void Liveupdate::verbindungPruefen(std::int16_t modus) {
    verbindungBesteht_ = istBeiEinwahl(modus) && !ModulDFUEConnect::GetActiveConnectionName(einwahl_).empty();
    if (verbindungBesteht_) return;
    verbindungGesehen_ = false;
    if (schritt_ == Schritt::Countdown) schritt_ = Schritt::Ruhe;
}

void Liveupdate::ausloesen(std::int16_t modus, Datum letzterTick, Datum jetzt) {
    if (verbindungBesteht_) beiVerbindung(jetzt, modus == kBeiJederEinwahl);
    if (modus == kZeitplan) nachZeitplan(letzterTick, jetzt);
    if (modus == kStundenabstand) nachStunden(jetzt);
}

void Liveupdate::beiVerbindung(Datum jetzt, bool jedesMal) {
    if (verbindungGesehen_ || schritt_ != Schritt::Ruhe) return;
    verbindungGesehen_ = true;
    const bool heuteSchon = gleicherTag(letztesUpdate(jetzt), jetzt) || gleicherTag(letzterStart_, jetzt);
    if (!jedesMal && heuteSchon) return;
    countdown_ = kCountdownTicks;
    schritt_ = Schritt::Countdown;
}

// Once for each moment of the schedule, also for one that a late tick or a sleep has passed over; a start of
// the program in the same minute finds that it has succeeded.
void Liveupdate::nachZeitplan(Datum letzterTick, Datum jetzt) {
    const bool nachholen = nachholenAbMs_ && *nachholenAbMs_ <= ports_.uhr.laufzeitMs();
    if (nachholen) nachholenAbMs_.reset();
    const auto moment = letzterPlanmoment(bestand_.konfiguration().zeitplan, letzterTick, jetzt);
    const bool neu = moment && moment != gestarteterPlanmoment_ && *moment > letztesUpdate(jetzt);
    if (schritt_ != Schritt::Ruhe || (!neu && !nachholen)) return;
    if (neu) gestarteterPlanmoment_ = moment;
    nachholenAbMs_.reset();
    programmStarten(jetzt);
}

void Liveupdate::nachStunden(Datum jetzt) {
    const Konfiguration& konfiguration = bestand_.konfiguration();
    const bool faellig =
        konfiguration.liveUpdateStunden > 0 &&
        DateDiff(Einheit::Stunde, letztesUpdate(jetzt), jetzt) >= konfiguration.liveUpdateStunden;
    const bool geradeVersucht =
        letzterVersuchMs_ && ports_.uhr.laufzeitMs() - *letzterVersuchMs_ < kVersuchsabstandMs;
    if (faellig && !geradeVersucht && schritt_ == Schritt::Ruhe) programmStarten(jetzt);
}

void Liveupdate::programmStarten(Datum jetzt) {
    const bool versteckt = bestand_.konfiguration().liveUpdateVersteckt;
    const std::string datei = bestand_.werte().programmordner + kLiveUpdateProgramm;
    letzterStart_ = jetzt;
    letzterVersuchMs_ = ports_.uhr.laufzeitMs();
    weg_ = stumm_ = 0;
    abbruchgrund_.clear();
    statuslabel_ = kGestartet;
    zeige("Das Live-Update wird gestartet.");
    try {
        ModulDateiStarten::DateiStarten(
            ports_.starter, datei,
            std::string(versteckt ? "/hidden " : "") + "/liveupdate /onlyuseWinConnection",
            versteckt ? kFensterVersteckt : kFensterNormal);
        schritt_ = Schritt::Laeuft;
    } catch (const Fehler& fehler) {
        schritt_ = Schritt::Ruhe;
        zeige("Das Live-Update konnte nicht gestartet werden.");
        const std::string anzeige = ports_.dateien.pfadAnzeige(datei);
        zeigeFehler(ports_.meldungen, "Das Live-Update konnte nicht gestartet werden:\r\n\"" + anzeige + "\"",
                    "Live-Update", &fehler);
    }
}

// The update program may end without a word, or never say one.
void Liveupdate::ueberwachen() {
    if (!verbunden_) {
        verbunden_ = verbindung_.verbinden(
            {[this](const std::string& text) { ReceivedDrumletStatuslabel_Change(text); },
             [this](const std::string& text) { ReceivedDrumletStatusCode_Change(text); }});
        if (verbunden_) anzeige_->liveupdateStatusGeaendert();
    }
    const bool da = ModulProzessliste::IsProcessRunning(ports_.prozesse, kLiveUpdateProgramm);
    weg_ = da ? 0 : weg_ + 1;
    if (weg_ >= kWegTicks) {
        abbrechen("Das Programm wurde beendet, ohne ein Ergebnis zu melden.");
    } else if (++stumm_ >= kStummTicks) {
        abbrechen("Das Programm hat seit 30 Minuten nichts gemeldet.");
    }
}

void Liveupdate::abbrechen(const std::string& grund) {
    abbruchgrund_ = grund;
    schritt_ = Schritt::Abgebrochen;
}

void Liveupdate::abschliessen(Datum jetzt) {
    const bool gelungen = schritt_ == Schritt::Beendet;
    verbindung_.trennen();
    verbunden_ = false;
    countdown_ = kCountdownTicks;
    schritt_ = Schritt::Ruhe;
    if (gelungen) bestand_.letztesUpdateMerken(jetzt);
    zeige(abschlusstext(gelungen));
    anzeige_->liveupdateBeendet(gelungen);
}

// A program that breaks off says why in its last words.
std::string Liveupdate::abschlusstext(bool gelungen) const {
    if (gelungen) return "Das Live-Update ist abgeschlossen.";
    constexpr std::string_view kAbgebrochen = "Das Live-Update ist abgebrochen";
    const std::string& grund = abbruchgrund_.empty() ? statuslabel_ : abbruchgrund_;
    const bool sagtNichts = grund.empty() || grund == kGestartet || grund.starts_with(kAbgebrochen);
    return std::string(kAbgebrochen) + (sagtNichts ? "." : ". " + grund);
}

void Liveupdate::ReceivedDrumletStatuslabel_Change(const std::string& text) {
    stumm_ = 0;
    // Whatever the program sends, the status bar has one line.
    std::string label = Left(getrimmt(text), kStatuszeichen);
    if (label.empty() || label == statuslabel_) return;
    statuslabel_ = std::move(label);
    anzeige_->liveupdateStatusGeaendert();
}

void Liveupdate::ReceivedDrumletStatusCode_Change(const std::string& text) {
    stumm_ = 0;
    const std::string code = getrimmt(text);
    if (code == kCodeBeendet) schritt_ = Schritt::Beendet;
    if (code == kCodeAbgebrochen) schritt_ = Schritt::Abgebrochen;
    anzeige_->liveupdateIconAuffrischen();
}

// A moment that is still to come was written while the clock was wrong: it would keep the next update off.
Datum Liveupdate::letztesUpdate(Datum jetzt) const {
    const Datum letztes = bestand_.konfiguration().letztesUpdate;
    return letztes <= jetzt ? letztes : Datum();
}

void Liveupdate::zeige(std::string text) {
    statustext_ = std::move(text);
    statustextBisMs_ = ports_.uhr.laufzeitMs() + kStatustextMs;
    anzeige_->liveupdateStatusGeaendert();
}

}  // namespace wendel
