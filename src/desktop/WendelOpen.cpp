#include "desktop/WendelOpen.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <utility>

#include "desktop/QtText.h"

namespace wendel {
namespace {

const QString kName = QStringLiteral("Wendel.Open");
const QString kObjekt = QStringLiteral("/Wendel/Open");

}  // namespace

WendelOpen::WendelOpen(std::function<void(const std::string&)> empfaenger)
    : empfaenger_(std::move(empfaenger)) {}

WendelOpen::~WendelOpen() {
    if (!veroeffentlicht_) return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    // Not the toolkit's own call: it would wait for a bus that does not answer, and the program with it.
    const QString dienst = QStringLiteral("org.freedesktop.DBus");
    bus.send(QDBusMessage::createMethodCall(dienst, QStringLiteral("/org/freedesktop/DBus"), dienst,
                                            QStringLiteral("ReleaseName"))
             << kName);
    bus.unregisterObject(kObjekt);
}

void WendelOpen::veroeffentliche() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    // The object before the name: whoever sees the name can call it.
    bus.registerObject(kObjekt, this, QDBusConnection::ExportScriptableSlots);
    veroeffentlicht_ = bus.registerService(kName);
}

void WendelOpen::DoThis(const QString& text) {
    QMetaObject::invokeMethod(
        this, [this, zeile = logikText(text)] { empfaenger_(zeile); }, Qt::QueuedConnection);
}

}  // namespace wendel
