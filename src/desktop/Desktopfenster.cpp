#include "desktop/Desktopfenster.h"

#include <QApplication>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDialog>
#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "desktop/X11.h"

namespace wendel {
namespace {

QWidget* eigenes(Fensterhandle fenster) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->internalWinId() != 0 && widget->internalWinId() == fenster) return widget;
    }
    return nullptr;
}

// In another program's window, or in a dialog of our own: what is typed there must not answer a notice.
bool wirdAnderswoGetippt(Fensterhandle eigenesFenster) {
    if (const QWidget* aktives = QApplication::activeWindow())
        return qobject_cast<const QDialog*>(aktives) != nullptr;
    const auto x11 = X11::verbindung();
    if (!x11) return true;  // not to be seen: better no activation than a stolen key
    const xcb_window_t aktiv = x11->aktivesFenster();
    return aktiv != 0 && x11->klient(aktiv) != x11->klient(static_cast<xcb_window_t>(eigenesFenster));
}

int abstand(const QRect& flaeche, const QPoint& ort) {
    const QPoint naechster(std::clamp(ort.x(), flaeche.left(), flaeche.right()),
                           std::clamp(ort.y(), flaeche.top(), flaeche.bottom()));
    return (ort - naechster).manhattanLength();
}

}  // namespace

Arbeitsbereich Desktopfenster::freieFlaeche(Punkt ort) {
    const QPoint punkt(ort.x, ort.y);
    const QList<QScreen*> schirme = QGuiApplication::screens();
    const auto schirm = std::min_element(schirme.begin(), schirme.end(), [&](QScreen* a, QScreen* b) {
        return abstand(a->geometry(), punkt) < abstand(b->geometry(), punkt);
    });
    if (schirm == schirme.end()) return {};
    const QRect frei = (*schirm)->availableGeometry();
    return {.oben = frei.top(),
            .links = frei.left(),
            .rechts = frei.left() + frei.width(),
            .unten = frei.top() + frei.height()};
}

// The click that the window answers may have gone to a panel's process; a window manager that guards the
// keyboard believes that only when asked as a panel asks.
void Desktopfenster::aktiviereEigenes(QWidget& fenster) {
    fenster.raise();
    fenster.activateWindow();
    if (const auto x11 = X11::verbindung())
        x11->aktiviere(static_cast<xcb_window_t>(fenster.internalWinId()));
}

Arbeitsbereich Desktopfenster::arbeitsbereich() { return freieFlaeche(zeiger()); }

Punkt Desktopfenster::zeiger() {
    const QPoint ort = QCursor::pos();
    return {ort.x(), ort.y()};
}

Fensterhandle Desktopfenster::vordergrundfenster() {
    if (const auto x11 = X11::verbindung()) return x11->aktivesFenster();
    const QWidget* aktiv = QApplication::activeWindow();
    return aktiv != nullptr ? aktiv->internalWinId() : 0;
}

std::uint64_t Desktopfenster::fensterThread(Fensterhandle fenster) {
    if (const auto x11 = X11::verbindung()) return x11->klient(static_cast<xcb_window_t>(fenster));
    return eigenes(fenster) != nullptr ? 1 : 0;
}

void Desktopfenster::eingabeVerbinden(std::uint64_t, std::uint64_t, bool) {}

bool Desktopfenster::vordergrundSetzen(Fensterhandle fenster) {
    QWidget* widget = eigenes(fenster);
    if (widget == nullptr) return false;
    if (widget->testAttribute(Qt::WA_ShowWithoutActivating) && wirdAnderswoGetippt(fenster)) {
        widget->raise();
        QApplication::alert(widget);
        return false;
    }
    aktiviereEigenes(*widget);
    return true;
}

bool Desktopfenster::istMinimiert(Fensterhandle fenster) {
    const QWidget* widget = eigenes(fenster);
    return widget != nullptr && widget->isMinimized();
}

void Desktopfenster::wiederherstellen(Fensterhandle fenster) {
    if (QWidget* widget = eigenes(fenster)) widget->showNormal();
}

void Desktopfenster::zeigen(Fensterhandle fenster) {
    if (QWidget* widget = eigenes(fenster)) widget->show();
}

bool Desktopfenster::aktivierenNachTitel(const std::string& titel) {
    if (titel.empty()) return false;
    const auto x11 = X11::verbindung();
    if (!x11) {
        const QDBusConnection bus = QDBusConnection::sessionBus();
        return bus.isConnected() && bus.interface()->isServiceRegistered(QStringLiteral("Fennow.Open"));
    }
    const xcb_window_t fenster = x11->fremdesFenster(titel, X11::Titelvergleich::AuchAnfang);
    if (fenster == 0) return false;
    x11->aktiviere(fenster);
    return true;
}

void Desktopfenster::sanduhr(bool an) {
    if (an == sanduhr_) return;
    sanduhr_ = an;
    if (an) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QGuiApplication::restoreOverrideCursor();
    }
}

}  // namespace wendel
