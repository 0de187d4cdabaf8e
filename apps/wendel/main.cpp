// The resident program: builds the adapters, hands them to the logic and runs the event loop. Decides nothing
// but whether the program can come up at all.

#include <QApplication>
#include <QSessionManager>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "core/Anwendung.h"
#include "core/FormWendel.h"
#include "desktop/Anzeigepruefung.h"
#include "desktop/Autostarteintrag.h"
#include "desktop/BusAutomation.h"
#include "desktop/BusStatusverbindung.h"
#include "desktop/Busklopfen.h"
#include "desktop/Desktopfenster.h"
#include "desktop/Desktopmenues.h"
#include "desktop/DeutscheTexte.h"
#include "desktop/Einzelinstanz.h"
#include "desktop/EndeSignal.h"
#include "desktop/Farbschema.h"
#include "desktop/Fensterrolle.h"
#include "desktop/Fenstersperre.h"
#include "desktop/FormAufzeichnungsHinweisFenster.h"
#include "desktop/FormAufzeichnungsskriptFenster.h"
#include "desktop/FormAufzeichnungsverlaufFenster.h"
#include "desktop/FormHinweisFenster.h"
#include "desktop/FormTerminFenster.h"
#include "desktop/FormWendelFenster.h"
#include "desktop/LinuxDateistarter.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/LinuxKlang.h"
#include "desktop/LinuxProzesse.h"
#include "desktop/LinuxRechner.h"
#include "desktop/LinuxUhr.h"
#include "desktop/LoginEnergie.h"
#include "desktop/Meldungsfenster.h"
#include "desktop/Netzverbindung.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "desktop/QtText.h"
#include "desktop/Registrierungsdatei.h"
#include "desktop/Sekundentakt.h"
#include "desktop/TrayIcon.h"
#include "desktop/Umgebung.h"
#include "desktop/WendelOpen.h"
#include "desktop/X11Fernsteuerung.h"
#include "jet/JetDatenbankmaschinen.h"
#include "platform/Text.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel {
namespace {

enum Endecode : int {
    kNormal = 0,
    kFehler = 1,
    kFalscheUmgebung = 2,
    kOhneBildschirm = 3,
    kOhneDatenbank = 4
};

int sage(int code, const std::string& text) {
    std::fprintf(stderr, "%s\n", text.c_str());
    return code;
}

std::string befehlszeile(int argc, char** argv) {
    return Join(std::vector<std::string>(argv + std::min(argc, 1), argv + argc), " ");
}

bool beginntVersteckt(const std::string& zeile) { return InStr(LCase(zeile), "/m") > 0; }

// The adapters that need no window.
struct Unterbau {
    LinuxDateisystem dateien;
    std::unique_ptr<LinuxUhr> uhr;
    std::string programmordner;
};

// The toolkit would wait without end for a session bus that is stuck, and all reminders with it: better none.
void meideStummenBus() {
    constexpr int kFristMs = 10'000;
    constexpr const char* kAdresse = "DBUS_SESSION_BUS_ADDRESS";
    const std::string socket = bussocket(ausUmgebung(kAdresse));
    if (!socket.empty() && istStumm(socket, kFristMs)) qputenv(kAdresse, "unix:path=/dev/null");
}

// A machine that has no database gets told what is missing where, and what makes one. Only when neither the
// configured nor the local file is there: with one of them the start-up asks.
std::string fehlendeDatenbank(Unterbau& unterbau) {
    Einstellungen einstellungen(unterbau.dateien, unterbau.programmordner);
    const std::string datei = liesKonfiguration(einstellungen, unterbau.programmordner).datenbank;
    const std::string lokal = unterbau.programmordner + "tvdaten.mdb";
    if (unterbau.dateien.existiert(datei) || unterbau.dateien.existiert(lokal)) return {};
    return "Es fehlt die Datenbank des Programmführers. Bitte die Datei \"tvdaten.mdb\" hierhin kopieren:\n "
           " " +
           pfadAnzeige(datei) + (datei == lokal ? "" : "\noder hierhin:\n  " + pfadAnzeige(lokal)) +
           "\nund Lomrick dann neu starten. Zum Ausprobieren macht der Befehl\n"
           "  quillon --anlegen --beispiel\neine mit erfundenem Programm.";
}

// A folder that the environment has named is named again at log-on, when that has been forgotten.
Autostarteintrag autostarteintrag(const std::string& programmordner) {
    const bool genannt = !programmlage().wendelOrdner.empty();
    return {konfigurationsordner() + "/autostart/wendel.desktop", eigenerProgrammordner() + "/wendel",
            genannt ? nativerPfad(programmordner) : ""};
}

// Everything that lives as long as the event loop, in the order in which it is needed.
class Programm {
  public:
    Programm(Unterbau& unterbau, const std::string& zeile)
        : uhr_(*unterbau.uhr),
          prozesse_(
              [](int ms, std::function<void()> spaeter) { QTimer::singleShot(ms, std::move(spaeter)); }),
          meldungen_(fenster_),
          automation_(meldungen_),
          datenbanken_(uhr_, [](const std::string& pfad) { return nativerPfad(pfad); }),
          energie_(uhr_),
          registrierung_(konfigurationsordner() + "/wendel/registrierung.txt",
                         autostarteintrag(unterbau.programmordner)),
          ports_{uhr_,        unterbau.dateien, meldungen_, fenster_,     klang_,         prozesse_, starter_,
                 automation_, symbol_,          rechner_,   datenbanken_, fernsteuerung_, energie_},
          menues_(unterbau.programmordner),
          dienst_([this](const std::string& text) { anwendung_->DoThis(text); }),
          takt_(uhr_, [this] { anwendung_->tick(); }),
          versteckt_(beginntVersteckt(zeile)) {
        meldungen_.setzeSperre([this](bool gesperrt) {
            listensperre_.setze(gesperrt);
            editorsperre_.setze(gesperrt);
        });
        terminFenster_.setzeSperre([this](bool gesperrt) { listensperre_.setze(gesperrt); });
        uhr_.setzeNachrichten([] { QCoreApplication::processEvents(); });
        anwendung_ = std::make_unique<Anwendung>(
            ports_, Systemdienste{registrierung_, netz_, statusverbindung_},
            Ansichten{.wendel = wendelFenster_,
                      .hinweis = hinweisFenster_,
                      .termin = terminFenster_,
                      .aufzeichnungsHinweis = aufzeichnungsHinweisFenster_,
                      .aufzeichnungsskript = aufzeichnungsskriptFenster_,
                      .verlauf = aufzeichnungsverlaufFenster_},
            menues_,
            Startumgebung{"wendel", zeile, unterbau.programmordner, [this] { return einzigeKopie(); }});
        wendelFenster_.setzeForm(anwendung_->formWendel());
        hinweisFenster_.setzeForm(anwendung_->formHinweis());
        terminFenster_.setzeForm(anwendung_->formTermin());
        aufzeichnungsHinweisFenster_.setzeForm(anwendung_->formAufzeichnungsHinweis());
        aufzeichnungsskriptFenster_.setzeForm(anwendung_->formAufzeichnungsskript());
        aufzeichnungsverlaufFenster_.setzeForm(anwendung_->formAufzeichnungsverlauf());
        symbol_.setzeFensterprozedur(
            [this](std::uint32_t nachricht, std::uintptr_t kennung, std::uintptr_t maus) {
                anwendung_->fensterNachricht(nachricht, kennung, maus);
            });
        symbol_.setzeEinfachesMenue(
            [this](bool frisch) { return anwendung_->formWendel().einfachesMenue(frisch); },
            [this](const Menuebefehl& befehl) { anwendung_->formWendel().menuebefehlAusfuehren(befehl); });
        // Without a tray the list is the only way to see that the program runs.
        symbol_.setzeOhneWirt([this] {
            if (!versteckt_) anwendung_->formWendel().zeigen();
        });
    }

    int laufe() {
        EndeSignal ende([this] { anwendung_->beenden(); });
        QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, qGuiApp,
                         [this](QSessionManager& sitzung) {
                             sitzung.setRestartHint(QSessionManager::RestartNever);
                             anwendung_->beenden();
                         });
        if (anwendung_->starten() != Startergebnis::Laeuft) return kNormal;
        takt_.starte();
        const int ergebnis = QCoreApplication::exec();
        takt_.halteAn();
        return ergebnis;
    }

  private:
    // The name on the bus is asked for only by the copy that stays.
    bool einzigeKopie() {
        if (einzelinstanz_.ergebnis() == Einzelinstanz::Ergebnis::Zweite) return false;
        dienst_.veroeffentliche();
        return true;
    }

    LinuxUhr& uhr_;
    LinuxKlang klang_;
    LinuxProzesse prozesse_;
    LinuxDateistarter starter_;
    LinuxRechner rechner_;
    Einzelinstanz einzelinstanz_;
    Desktopfenster fenster_;
    Meldungsfenster meldungen_;
    BusAutomation automation_;
    TrayIcon symbol_;
    jet::JetDatenbankmaschinen datenbanken_;
    X11Fernsteuerung fernsteuerung_;
    LoginEnergie energie_;
    Registrierungsdatei registrierung_;
    Netzverbindung netz_;
    BusStatusverbindung statusverbindung_;
    Ports ports_;
    FormWendelFenster wendelFenster_{qtText(konfigurationsordner() + "/wendel/fenster.ini")};
    FormHinweisFenster hinweisFenster_;
    FormTerminFenster terminFenster_{wendelFenster_};
    FormAufzeichnungsHinweisFenster aufzeichnungsHinweisFenster_;
    FormAufzeichnungsskriptFenster aufzeichnungsskriptFenster_;
    FormAufzeichnungsverlaufFenster aufzeichnungsverlaufFenster_{wendelFenster_};
    Fenstersperre listensperre_{wendelFenster_, [this] { terminFenster_.nachVorn(); }};
    Fenstersperre editorsperre_{terminFenster_, [this] { terminFenster_.nachVorn(); }};
    Desktopmenues menues_;
    std::unique_ptr<Anwendung> anwendung_;
    WendelOpen dienst_;
    Sekundentakt takt_;
    bool versteckt_;
};

int starte(int argc, char** argv) {
    if (!anzeigeErreichbar()) return sage(kOhneBildschirm, kKeinBildschirm);

    Unterbau unterbau;
    std::string meldung;
    unterbau.uhr = LinuxUhr::ausUmgebung(meldung);
    if (!unterbau.uhr) return sage(kFalscheUmgebung, meldung);
    const auto ordner = programmordner();
    if (!ordner) return sage(kFehler, "Der Programmordner kann nicht angelegt werden.");
    unterbau.programmordner = *ordner;
    (void)unterbau.dateien.ordnerWechseln(*ordner);

    const std::string zeile = befehlszeile(argc, argv);
    if (InStr(zeile, "/?") == 0) {
        const std::string fehlend = fehlendeDatenbank(unterbau);
        if (!fehlend.empty()) return sage(kOhneDatenbank, fehlend);
    }

    // Nothing here is drawn by OpenGL; its libraries would be the larger part of the resident memory.
    if (qEnvironmentVariableIsEmpty("QT_XCB_GL_INTEGRATION")) qputenv("QT_XCB_GL_INTEGRATION", "none");
    // Without it the toolkit takes whole monitors for free as soon as there are two, panels included.
    if (qEnvironmentVariableIsEmpty("QT_RELY_ON_NET_WORKAREA_ATOM"))
        qputenv("QT_RELY_ON_NET_WORKAREA_ATOM", "1");
    meideStummenBus();
    QApplication anwendung(argc, argv);
    DeutscheTexte texte;
    QCoreApplication::installTranslator(&texte);
    const Farbschema farben(beginntVersteckt(zeile) ? Farbschema::Beginn::Versteckt
                                                    : Farbschema::Beginn::MitFenster);
    Fensterrolle::bekanntmachen();
    // What panels show as the title of the icon. Not the display name: Qt would add it to every window title,
    // by which other programs find us.
    QCoreApplication::setApplicationName(QStringLiteral("Lomrick"));
    QGuiApplication::setDesktopFileName(QStringLiteral("wendel"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return Programm(unterbau, zeile).laufe();
}

}  // namespace
}  // namespace wendel

int main(int argc, char** argv) { return wendel::starte(argc, argv); }
