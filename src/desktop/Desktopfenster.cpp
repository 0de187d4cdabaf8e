#include "desktop/Desktopfenster.h"

#include <QApplication>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDialog>
#include <QScreen>
#include <QWidget>

#include "desktop/QtText.h"
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

void aktiviereEigenes(QWidget& fenster) {
    fenster.raise();
    fenster.activateWindow();
    if (const auto x11 = X11::verbindung())
        x11->aktiviere(static_cast<xcb_window_t>(fenster.internalWinId()));
}

}  // namespace

Arbeitsbereich Desktopfenster::arbeitsbereich() {
    const QScreen* schirm = QGuiApplication::screenAt(QCursor::pos());
    if (schirm == nullptr) schirm = QGuiApplication::primaryScreen();
    if (schirm == nullptr) return {};
    const QRect frei = schirm->availableGeometry();
    return {.oben = frei.top(),
            .links = frei.left(),
            .rechts = frei.left() + frei.width(),
            .unten = frei.top() + frei.height()};
}

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
    const QString gesucht = qtText(titel).toCaseFolded();
    xcb_window_t beginntDamit = 0;
    for (const std::uint32_t fenster : x11->werte(x11->wurzel(), "_NET_CLIENT_LIST")) {
        if (eigenes(fenster) != nullptr) continue;
        const QString name = qtText(x11->titel(fenster)).toCaseFolded();
        if (name == gesucht) {
            x11->aktiviere(fenster);
            return true;
        }
        if (beginntDamit == 0 && name.startsWith(gesucht)) beginntDamit = fenster;
    }
    if (beginntDamit == 0) return false;
    x11->aktiviere(beginntDamit);
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
