#include "TvStatus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include "desktop/QtText.h"

namespace wendel::skarvel {
namespace {

const QString kName = QStringLiteral("Drumlet.TvStatus");
const QString kObjekt = QStringLiteral("/tvstatus");

}  // namespace

TvStatus::~TvStatus() {
    if (!veroeffentlicht_) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(kName);
    bus.unregisterObject(kObjekt);
}

void TvStatus::veroeffentliche() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    // The object before the name: whoever sees the name can read it.
    bus.registerObject(kObjekt, this, QDBusConnection::ExportAllProperties);
    veroeffentlicht_ = bus.registerService(kName);
}

void TvStatus::setze(const std::string& label, const std::string& code) {
    QVariantMap geaendert;
    if (const QString neu = qtText(label); neu != label_)
        geaendert.insert(QStringLiteral("StatusLabel"), label_ = neu);
    if (const QString neu = qtText(code); neu != code_)
        geaendert.insert(QStringLiteral("StatusCode"), code_ = neu);
    if (!veroeffentlicht_ || geaendert.isEmpty()) return;
    QDBusMessage signal = QDBusMessage::createSignal(
        kObjekt, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal << kName << geaendert << QStringList();
    QDBusConnection::sessionBus().send(signal);
}

void sendeSteuerzeile(const std::string& zeile) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    QDBusMessage ruf =
        QDBusMessage::createMethodCall(QStringLiteral("Wendel.Open"), QStringLiteral("/Wendel/Open"),
                                       QStringLiteral("Wendel.Open"), QStringLiteral("DoThis"));
    ruf << qtText(zeile);
    ruf.setAutoStartService(false);
    bus.send(ruf);
}

}  // namespace wendel::skarvel
