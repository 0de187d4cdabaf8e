// The session: display, bus, tray, sound, other programs' windows and keys, and the programs of the suite.

#include <xcb/xcb.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "Pruefbus.h"
#include "Pruefungen.h"
#include "desktop/Anzeigepruefung.h"
#include "desktop/Einzelinstanz.h"
#include "desktop/LinuxDateistarter.h"
#include "desktop/LinuxKlang.h"
#include "desktop/LinuxProzesse.h"
#include "desktop/Pfade.h"
#include "desktop/Steuerbarkeit.h"
#include "desktop/Umgebung.h"
#include "desktop/X11Server.h"
#include "platform/ModulProzessliste.h"
#include "platform/Text.h"

namespace wendel::quillon {
namespace {

struct Trenner {
    void operator()(xcb_connection_t* verbindung) const { xcb_disconnect(verbindung); }
};

struct Sitzung {
    bool x = false, wayland = false;
    std::string plattform;  // that the toolkit will most probably choose
};

// The value is anybody's; what is not in this list is not told.
std::string oberflaeche() {
    const std::vector<std::string> namen = Split(ausUmgebung("XDG_CURRENT_DESKTOP"), ":");
    std::vector<std::string> bekannte;
    for (const char* name :
         {"Budgie",   "Cinnamon", "COSMIC", "DDE",  "Deepin", "Endless", "Enlightenment", "GNOME",
          "Hyprland", "i3",       "KDE",    "LXDE", "LXQt",   "MATE",    "niri",          "openbox",
          "Pantheon", "Phosh",    "pop",    "sway", "ubuntu", "Unity",   "X-Cinnamon",    "XFCE"})
        if (std::find(namen.begin(), namen.end(), name) != namen.end()) bekannte.emplace_back(name);
    return bekannte.empty() ? "nicht benannt oder unbekannt" : Join(bekannte, ", ");
}

bool istGnome() { return LCase(ausUmgebung("XDG_CURRENT_DESKTOP")).find("gnome") != std::string::npos; }

Sitzung sitzung() {
    Sitzung s{xErreichbar(), waylandErreichbar(), ""};
    const std::string gewuenscht = ausUmgebung("QT_QPA_PLATFORM");
    const bool zuerstWayland = ausUmgebung("XDG_SESSION_TYPE") == "wayland" && !istGnome();
    if (!gewuenscht.empty())
        s.plattform = gewuenscht.substr(0, gewuenscht.find_first_of(";:"));
    else if (s.x && !(s.wayland && zuerstWayland))
        s.plattform = "xcb";
    else if (s.wayland)
        s.plattform = "wayland";
    return s;
}

void pruefeAnzeige(Pruefmelder& melder, const Sitzung& s) {
    melder.ok("Oberfläche: " + oberflaeche());
    const std::string arten = s.x && s.wayland ? "Wayland, X11-Programme möglich"
                              : s.x            ? "X11"
                              : s.wayland      ? "Wayland"
                                               : "";
    if (anzeigeErreichbar())
        melder.ok("Anzeige: " + (arten.empty() ? "ohne Bildschirm" : arten));
    else
        melder.fehler("Anzeige: nicht erreichbar",
                      "Lomrick in einer Desktop-Sitzung starten: DISPLAY oder WAYLAND_DISPLAY führt zu "
                      "keinem Bildschirm.");
}

void pruefeFernsteuerung(Pruefmelder& melder, const Sitzung& s, const X11Server* x) {
    const std::string hindernis = hindernistext({.plattform = s.plattform,
                                                 .tasten = x && x->hatErweiterung("XTEST"),
                                                 .fensterliste = x && x->hatFenstermanager()});
    constexpr const char* kThema = "Fenster und Tasten anderer Programme: ";
    if (!hindernis.empty())
        melder.hinweis(std::string(kThema) + "nicht möglich", hindernis);
    else if (s.wayland)
        melder.hinweis(std::string(kThema) + "nur bei X11-Programmen",
                       "Die TV-Anwendung über X11 laufen lassen oder eine X11-Sitzung benutzen.");
    else
        melder.ok(std::string(kThema) + "möglich (XTEST, Fenstermanager)");
}

void pruefeTaskleiste(Pruefmelder& melder, const Pruefbus& bus, const X11Server* x) {
    constexpr const char* kWaechter = "org.kde.StatusNotifierWatcher";
    const bool waechter = bus.vergeben(kWaechter);
    if (waechter && bus.wahr(kWaechter, "/StatusNotifierWatcher", "IsStatusNotifierHostRegistered"))
        return melder.ok("Symbol in der Taskleiste: über StatusNotifier");
    const std::string auswahl = x ? "_NET_SYSTEM_TRAY_S" + std::to_string(x->bildschirmnummer()) : "";
    if (x && x->auswahlBesitzer(x->atom(auswahl.c_str())) != XCB_WINDOW_NONE)
        return melder.ok("Symbol in der Taskleiste: über XEmbed");
    melder.hinweis(std::string("Symbol in der Taskleiste: kein Platz dafür") +
                       (waechter ? " (StatusNotifier ohne Leiste)" : ""),
                   istGnome() ? "Die GNOME-Erweiterung AppIndicator einschalten."
                              : "In der Leiste des Desktops den Benachrichtigungsbereich einschalten.");
}

void pruefeKlang(Pruefmelder& melder, const Prueflage& lage) {
    LinuxKlang klang;
    const int geraete = klang.ausgabegeraete();
    const std::vector<std::string> spieler = klangspieler();
    if (spieler.empty())
        melder.hinweis("Klang: kein Abspielprogramm",
                       "pipewire-bin, pulseaudio-utils oder alsa-utils installieren.");
    else if (geraete == 0)
        melder.hinweis("Klang: weder Gerät noch Klangserver",
                       "Den Klangserver der Sitzung starten, sonst erinnert Lomrick stumm.");
    else
        melder.ok("Klang: " + std::to_string(geraete) + (geraete == 1 ? " Ausgabe" : " Ausgaben") +
                  ", gespielt von " + std::string(letzterTeil(spieler.front())));
    if (klangdatei(lage.konfiguration.klang).empty())
        melder.hinweis("Klangdatei: nicht gefunden",
                       "Mit \"quillon --setze Klang=DATEI\" eine WAV-Datei nennen.");
    else
        melder.ok("Klangdatei: gefunden");
}

// A program of the suite: the name of its process, of its service, and what is missing without it.
struct Suiteprogramm {
    const char* datei;
    const char* anzeige;
    const char* dienst;  // null where it has none
    const char* ohne;    // null where it may be missing
};

void pruefeProgramm(Pruefmelder& melder, const Prueflage& lage, const Pruefbus& bus,
                    const Suiteprogramm& programm) {
    LinuxProzesse prozesse;
    const std::string name = std::string(programm.anzeige) + ": ";
    const std::string datei = LinuxDateistarter().gemeinteDatei(lage.programmordner + programm.datei);
    const bool laeuft = ModulProzessliste::IsProcessRunning(prozesse, programm.datei);
    const bool dienst = programm.dienst != nullptr && bus.vergeben(programm.dienst);
    if (laeuft || dienst)
        melder.ok(name + (laeuft ? "läuft" : "antwortet") + (dienst ? ", am Sitzungsbus angemeldet" : ""));
    else if (!datei.empty())
        melder.ok(name + "gefunden, läuft nicht");
    else if (programm.ohne != nullptr)
        melder.hinweis(name + "nicht gefunden", programm.ohne);
    else
        melder.ok(name + "nicht vorhanden");
}

void pruefeLomrick(Pruefmelder& melder, const Pruefbus& bus) {
    LinuxProzesse prozesse;
    const bool laeuft = ModulProzessliste::IsProcessRunning(prozesse, "wendel.exe");
    const bool gesperrt = sperreGehalten(sperrdateipfad());
    const bool dienst = bus.vergeben("Wendel.Open");
    if (dienst)
        melder.ok("Lomrick: läuft, am Sitzungsbus angemeldet");
    else if (gesperrt)
        melder.hinweis("Lomrick: läuft, aber nicht an diesem Sitzungsbus",
                       "Lomrick beenden und in dieser Sitzung neu starten, damit die Suite es erreicht.");
    else
        melder.ok(std::string("Lomrick: läuft ") + (laeuft ? "nur in einer anderen Sitzung" : "nicht"));
}

}  // namespace

void pruefeDesktop(Pruefmelder& melder, const Prueflage& lage) {
    pruefeKlang(melder, lage);
    const Pruefbus bus = Pruefbus::sitzung();
    if (bus.erreichbar())
        melder.ok("Sitzungsbus: erreichbar");
    else
        melder.hinweis("Sitzungsbus: nicht erreichbar",
                       "Lomrick in einer Sitzung mit D-Bus starten (dbus-run-session), sonst erreicht die "
                       "Suite es nicht.");
    const Sitzung s = sitzung();
    pruefeAnzeige(melder, s);
    const std::unique_ptr<xcb_connection_t, Trenner> verbindung(s.x ? xcb_connect(nullptr, nullptr)
                                                                    : nullptr);
    std::optional<X11Server> x;
    if (verbindung && xcb_connection_has_error(verbindung.get()) == 0)
        x.emplace(verbindung.get(), bildschirmDerUmgebung());
    pruefeTaskleiste(melder, bus, x ? &*x : nullptr);
    pruefeFernsteuerung(melder, s, x ? &*x : nullptr);
}

void pruefeProgramme(Pruefmelder& melder, const Prueflage& lage) {
    const Pruefbus bus = Pruefbus::sitzung();
    pruefeLomrick(melder, bus);
    for (const Suiteprogramm& programm : {
             Suiteprogramm{"fennow.exe", "Fennow (Programmführer)", "Fennow.Open",
                           "Die Suite in den Programmordner legen; ohne sie lassen sich Sendungen nur aus "
                           "dem Menü heraus ansehen."},
             Suiteprogramm{"skarvel.exe", "Skarvel (Live-Update)", "Drumlet.TvStatus", nullptr},
             Suiteprogramm{"tessaly.exe", "Tessaly (Starter)", nullptr, nullptr},
             Suiteprogramm{"marrowby.exe", "Marrowby", nullptr, nullptr},
         })
        pruefeProgramm(melder, lage, bus, programm);
}

}  // namespace wendel::quillon
