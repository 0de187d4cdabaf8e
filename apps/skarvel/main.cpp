// skarvel: the live update of the suite, from an XMLTV source into tvdaten.mdb, and the window of its
// settings. Exit codes: 0 done, 1 error or broken off, 2 wrong usage, 3 no display for the settings.

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Befehlszeile.h"
#include "Einstellungsfenster.h"
#include "Fortschrittsfenster.h"
#include "TvStatus.h"
#include "Updateeinstellungen.h"
#include "Updatelauf.h"
#include "desktop/Anzeigepruefung.h"
#include "desktop/DeutscheTexte.h"
#include "desktop/Einzelinstanz.h"
#include "desktop/EndeSignal.h"
#include "desktop/Farbschema.h"
#include "desktop/Fensterrolle.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/LinuxUhr.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "desktop/QtText.h"
#include "platform/Fehler.h"

namespace wendel::skarvel {
namespace {

enum Endecode : int { kFertig = 0, kFehler = 1, kFalscherGebrauch = 2, kOhneBildschirm = 3 };

// Whoever listens late still reads how it ended. After a signal there is less time: the next one would kill.
constexpr int kNachlaufMs = 2000, kNachlaufNachSignalMs = 1000;
// The resident program takes a running update for one that works: an unread failure must not last for ever.
constexpr int kFehlerLesbarMs = 5 * 60 * 1000;

int sage(int code, const std::string& text) {
    std::fprintf(stderr, "%s\n", text.c_str());
    return code;
}

// One update with all that shows it. Ends the event loop.
class Vorgang {
  public:
    Vorgang(Uhr& uhr, const std::string& programmordner, bool mitFenster)
        : lauf_(uhr, programmordner,
                {.stand = [this](const std::string& text, int prozent) { zeige(text, prozent); },
                 .ende = [this](const Updateergebnis& ergebnis) { beende(ergebnis); }}) {
        if (mitFenster) fenster_ = std::make_unique<Fortschrittsfenster>([this] { willEnden(); });
    }

    void starte() {
        if (fenster_) fenster_->show();
        // The running one has the name on the bus, and its listeners must not hear of this one's end.
        if (einzelinstanz_.ergebnis() == Einzelinstanz::Ergebnis::Zweite)
            return beende({.text = "Ein Live-Update läuft bereits."});
        status_.veroeffentliche();
        lauf_.start();
    }

    void signal() {
        if (zuEnde_) return QCoreApplication::exit(kFehler);
        nachlaufMs_ = kNachlaufNachSignalMs;
        signalisiert_ = true;
        brichAb();
    }

  private:
    static std::string sperrdatei() { return elternordner(sperrdateipfad()) + "/skarvel.lock"; }

    void zeige(const std::string& text, int prozent) {
        if (wirdAbgebrochen_) return;  // what was on its way
        prozent_ = prozent;
        status_.setze(text, std::to_string(prozent));
        if (fenster_) fenster_->zeigeStand(text, prozent);
    }

    void beende(const Updateergebnis& ergebnis) {
        zuEnde_ = true;
        // Before the end is told, so that the marks are in order when it acts on the end.
        if (ergebnis.geschrieben) sendeSteuerzeile("terminupdate");
        status_.setze(ergebnis.text, ergebnis.fertig ? TvStatus::kFertig : TvStatus::kAbgebrochen);
        const int code = ergebnis.fertig ? kFertig : kFehler;
        if (!ergebnis.fertig) sage(code, ergebnis.text);
        int nochMs = status_.istVeroeffentlicht() || fenster_ ? nachlaufMs_ : 0;
        if (fenster_ && ergebnis.fertig) fenster_->zeigeStand(ergebnis.text, 100);
        if (fenster_ && !ergebnis.fertig && !vomBenutzer_ && !signalisiert_) {
            fenster_->zeigeFehler(ergebnis.text);
            nochMs = kFehlerLesbarMs;
        }
        QTimer::singleShot(nochMs, QCoreApplication::instance(), [code] { QCoreApplication::exit(code); });
    }

    void willEnden() {
        if (zuEnde_) {
            fenster_->hide();
            return QTimer::singleShot(nachlaufMs_, QCoreApplication::instance(),
                                      [] { QCoreApplication::exit(kFehler); });
        }
        vomBenutzer_ = true;
        brichAb();
    }

    // A try that waits for the lock of another program is not interrupted.
    void brichAb() {
        if (wirdAbgebrochen_) return;
        zeige("Das Live-Update wird abgebrochen. Ist die Datenbank gesperrt, dauert das einige Sekunden ..",
              prozent_);
        wirdAbgebrochen_ = true;
        lauf_.brichAb();
    }

    Einzelinstanz einzelinstanz_{sperrdatei()};
    TvStatus status_;
    std::unique_ptr<Fortschrittsfenster> fenster_;
    int nachlaufMs_ = kNachlaufMs, prozent_ = 0;
    bool wirdAbgebrochen_ = false, zuEnde_ = false, vomBenutzer_ = false, signalisiert_ = false;
    Updatelauf lauf_;  // the first to go
};

// The window of the settings, and the update that is wanted from it.
class Einrichtung {
  public:
    Einrichtung(Uhr& uhr, const std::string& programmordner)
        : uhr_(uhr),
          programmordner_(programmordner),
          einstellungen_(dateien_, programmordner),
          bisher_(liesUpdateeinstellungen(einstellungen_, programmordner)),
          fenster_(bisher_,
                   [this](const Updateeinstellungen& neu, bool gleich) { return uebernimm(neu, gleich); }) {}

    void starte() { fenster_.show(); }
    void signal() {
        if (vorgang_)
            vorgang_->signal();
        else
            QCoreApplication::exit(kFertig);
    }

  private:
    bool uebernimm(const Updateeinstellungen& neu, bool gleich) {
        try {
            if (schreibeUpdateeinstellungen(einstellungen_, bisher_, neu)) sendeSteuerzeile("refreshkonfig");
        } catch (const Fehler& fehler) {
            QMessageBox::warning(&fenster_, QStringLiteral("Drumlet"), qtZeilen(fehler.beschreibung()));
            return false;
        }
        if (!gleich) return true;
        vorgang_ = std::make_unique<Vorgang>(uhr_, programmordner_, true);
        vorgang_->starte();
        return true;
    }

    Uhr& uhr_;
    std::string programmordner_;
    LinuxDateisystem dateien_;
    Einstellungen einstellungen_;
    Updateeinstellungen bisher_;
    std::unique_ptr<Vorgang> vorgang_;
    Einstellungsfenster fenster_;
};

int aktualisiere(QCoreApplication&, Uhr& uhr, const std::string& ordner, bool mitFenster) {
    Vorgang vorgang(uhr, ordner, mitFenster);
    EndeSignal ende([&vorgang] { vorgang.signal(); });
    QTimer::singleShot(0, QCoreApplication::instance(), [&vorgang] { vorgang.starte(); });
    return QCoreApplication::exec();
}

int richteEin(Uhr& uhr, const std::string& ordner) {
    Einrichtung einrichtung(uhr, ordner);
    EndeSignal ende([&einrichtung] { einrichtung.signal(); });
    einrichtung.starte();
    return QCoreApplication::exec();
}

int starte(int argc, char** argv) {
    // Ignored, as some launchers leave it, a command that has failed would seem to have succeeded.
    std::signal(SIGCHLD, SIG_DFL);
    std::string meldung;
    const std::vector<std::string> argumente(argv + (argc > 0), argv + argc);
    const auto schalter = schalterAus(argumente, meldung);
    if (!schalter) return sage(kFalscherGebrauch, meldung);
    if (schalter->hilfe) {
        std::fputs(hilfetext().c_str(), stdout);
        return kFertig;
    }
    ::tzset();
    const auto uhr = LinuxUhr::ausUmgebung(meldung);
    if (!uhr) return sage(kFalscherGebrauch, meldung);
    const auto ordner = programmordner();
    if (!ordner) return sage(kFehler, "Der Programmordner kann nicht angelegt werden.");
    (void)LinuxDateisystem().ordnerWechseln(*ordner);

    // A scheduled update does not need a display.
    const bool mitFenster = !(schalter->liveUpdate && schalter->versteckt) && anzeigeErreichbar();
    if (!mitFenster && !schalter->liveUpdate) return sage(kOhneBildschirm, kKeinBildschirm);
    if (!mitFenster) {
        QCoreApplication anwendung(argc, argv);
        return aktualisiere(anwendung, *uhr, *ordner, false);
    }
    QApplication anwendung(argc, argv);
    DeutscheTexte texte;
    QCoreApplication::installTranslator(&texte);
    const Farbschema farben(Farbschema::Beginn::MitFenster);
    Fensterrolle::bekanntmachen();
    QCoreApplication::setApplicationName(QStringLiteral("Drumlet"));
    // A window of settings ends the program with it; that of an update does not close before the end.
    return schalter->liveUpdate ? aktualisiere(anwendung, *uhr, *ordner, true) : richteEin(*uhr, *ordner);
}

}  // namespace
}  // namespace wendel::skarvel

int main(int argc, char** argv) { return wendel::skarvel::starte(argc, argv); }
