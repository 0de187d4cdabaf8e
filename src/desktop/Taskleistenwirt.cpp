#include "desktop/Taskleistenwirt.h"

#include <xcb/xcb.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <utility>

#include "desktop/X11.h"

namespace wendel {
namespace {

const QString kDienst = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString kObjekt = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

Taskleistenwirt::~Taskleistenwirt() {
    if (QCoreApplication::instance() != nullptr) QCoreApplication::instance()->removeNativeEventFilter(this);
}

void Taskleistenwirt::suche(std::function<void()> gefunden) {
    gefunden_ = std::move(gefunden);
    if (suchtAufX11()) {
        melde();
        return;
    }
    beobachteBus();
}

// True when a tray window is there already; else its coming will be noticed.
bool Taskleistenwirt::suchtAufX11() {
    const auto x11 = X11::verbindung();
    if (!x11) return false;
    const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(x11->bildschirmnummer());
    atomAuswahl_ = x11->atom(name.constData());
    atomManager_ = x11->atom("MANAGER");
    // The filter first: a host that starts in between is then seen by one of the two.
    QCoreApplication::instance()->installNativeEventFilter(this);
    return x11->auswahlBesitzer(atomAuswahl_) != 0;
}

void Taskleistenwirt::beobachteBus() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    buswaechter_ = new QDBusServiceWatcher(kDienst, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(buswaechter_, &QDBusServiceWatcher::serviceRegistered, this,
            &Taskleistenwirt::frageBenachrichtigungswirt);
    bus.connect(kDienst, kObjekt, kDienst, QStringLiteral("StatusNotifierHostRegistered"), this,
                SLOT(frageBenachrichtigungswirt()));
    frageBenachrichtigungswirt();
}

// The watcher's name alone is not enough: a watcher without a host shows no icons.
void Taskleistenwirt::frageBenachrichtigungswirt() {
    QDBusMessage frage = QDBusMessage::createMethodCall(
        kDienst, kObjekt, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    frage << kDienst << QStringLiteral("IsStatusNotifierHostRegistered");
    frage.setAutoStartService(false);
    auto* antwort = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(frage), this);
    connect(antwort, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* fertig) {
        const QDBusPendingReply<QDBusVariant> wert = *fertig;
        fertig->deleteLater();
        if (!wert.isError() && wert.value().variant().toBool()) melde();
    });
}

// A tray window announces itself to all clients when it has taken the selection.
bool Taskleistenwirt::nativeEventFilter(const QByteArray& art, void* nachricht, qintptr*) {
    if (art != "xcb_generic_event_t") return false;
    const auto* ereignis = static_cast<const xcb_generic_event_t*>(nachricht);
    if ((ereignis->response_type & 0x7F) != XCB_CLIENT_MESSAGE) return false;
    const auto* botschaft = reinterpret_cast<const xcb_client_message_event_t*>(ereignis);
    if (botschaft->type == atomManager_ && botschaft->data.data32[1] == atomAuswahl_) {
        // Not from inside the filter: what follows talks to the server and removes this filter.
        QMetaObject::invokeMethod(
            this, [this] { melde(); }, Qt::QueuedConnection);
    }
    return false;
}

void Taskleistenwirt::melde() {
    if (!gefunden_) return;
    QCoreApplication::instance()->removeNativeEventFilter(this);
    if (buswaechter_ != nullptr) {
        buswaechter_->deleteLater();
        buswaechter_ = nullptr;
        QDBusConnection::sessionBus().disconnect(kDienst, kObjekt, kDienst,
                                                 QStringLiteral("StatusNotifierHostRegistered"), this,
                                                 SLOT(frageBenachrichtigungswirt()));
    }
    std::exchange(gefunden_, nullptr)();
}

}  // namespace wendel
