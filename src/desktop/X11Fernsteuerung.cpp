#include "desktop/X11Fernsteuerung.h"

#include <QApplication>
#include <QWidget>
#include <chrono>
#include <thread>

#include "desktop/Programmzeile.h"
#include "desktop/QtText.h"
#include "desktop/X11.h"
#include "desktop/X11Tastatur.h"

namespace wendel {
namespace {

// An open menu has the keyboard whatever window is active: the keys would never leave the program.
void schliesseEigeneMenues() {
    QWidget* menue = QApplication::activePopupWidget();
    if (menue == nullptr) return;
    while (menue != nullptr && menue->close())
        menue = QApplication::activePopupWidget();
    QGuiApplication::sync();  // the keys go over another connection
}

}  // namespace

std::string X11Fernsteuerung::hindernis() {
    const auto x11 = X11::verbindung();
    return hindernistext({.plattform = logikText(QGuiApplication::platformName()),
                          .tasten = x11 && x11->hatErweiterung("XTEST"),
                          .fensterliste = x11 && x11->hatFenstermanager()});
}

bool X11Fernsteuerung::starteBefehlszeile(const std::string& befehlszeile) {
    return starteProgrammzeile(befehlszeile);
}

Fensterhandle X11Fernsteuerung::fensterNachTitel(const std::string& titel) {
    const auto x11 = X11::verbindung();
    return x11 ? x11->fremdesFenster(titel, X11::Titelvergleich::Genau) : 0;
}

void X11Fernsteuerung::zeigeNormal(Fensterhandle fenster) {
    if (const auto x11 = X11::verbindung()) x11->zeigeNormal(static_cast<xcb_window_t>(fenster));
}

bool X11Fernsteuerung::aktivieren(const std::string& titel) {
    const auto x11 = X11::verbindung();
    const xcb_window_t fenster = x11 ? x11->fremdesFenster(titel, X11::Titelvergleich::AuchAnfang) : 0;
    if (fenster == 0) return false;
    if (x11->hatEingabe(fenster)) return true;
    x11->aktiviere(fenster);
    for (int versuch = 0; versuch < 30; ++versuch) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (x11->hatEingabe(fenster)) return true;
    }
    return false;
}

bool X11Fernsteuerung::sendeTasten(std::span<const Tastenereignis> ereignisse) {
    if (!X11::verbindung()) return false;
    schliesseEigeneMenues();
    return tippe(ereignisse);
}

void X11Fernsteuerung::signalton() { QApplication::beep(); }

}  // namespace wendel
