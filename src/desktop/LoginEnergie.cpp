#include "desktop/LoginEnergie.h"

#include <fcntl.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <utility>

#include "desktop/QtText.h"

namespace wendel {
namespace {

// A connection for each request: the toolkit's shared one stays broken once the bus was missing.
constexpr QLatin1String kVerbindung("wendel-login");
// The login manager may first ask the desktop for permission.
constexpr int kAntwortfristMs = 25000;

}  // namespace

LoginEnergie::LoginEnergie(LinuxUhr& uhr, std::string rtcOrdner)
    : uhr_(uhr), alarm_(std::move(rtcOrdner)), alarmVorbei_(alarm_.fd(), QSocketNotifier::Read) {
    QObject::connect(&alarmVorbei_, &QSocketNotifier::activated, &alarmVorbei_,
                     [this] { alarm_.naechster(); });
}

LoginEnergie::~LoginEnergie() { schlafErlauben(); }

void LoginEnergie::wachhalten(const std::string& grund) {
    if (!sperre_ && !anfrage_) bus_.wennErreichbar([this, grund] { bitte(grund); });
}

void LoginEnergie::bitte(const std::string& grund) {
    const auto bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, kVerbindung);
    QDBusMessage ruf = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    ruf << QStringLiteral("sleep:idle") << QStringLiteral("Lomrick") << qtText(grund)
        << QStringLiteral("block");
    anfrage_ = std::make_unique<QDBusPendingCallWatcher>(bus.asyncCall(ruf, kAntwortfristMs));
    if (anfrage_->isFinished()) return uebernimmAntwort();  // no bus: the signal would never come
    QObject::connect(anfrage_.get(), &QDBusPendingCallWatcher::finished, anfrage_.get(),
                     [this] { uebernimmAntwort(); });
}

void LoginEnergie::uebernimmAntwort() {
    const QDBusPendingReply<QDBusUnixFileDescriptor> antwort = *anfrage_;
    if (antwort.isValid())
        sperre_ = Dateideskriptor(::fcntl(antwort.value().fileDescriptor(), F_DUPFD_CLOEXEC, 0));
    anfrage_.release()->deleteLater();  // it is the sender
    QDBusConnection::disconnectFromBus(kVerbindung);
}

void LoginEnergie::schlafErlauben() {
    bus_.verwerfen();
    // A reply that still comes is dropped with its descriptor.
    if (std::exchange(anfrage_, nullptr)) QDBusConnection::disconnectFromBus(kVerbindung);
    sperre_ = Dateideskriptor();
}

bool LoginEnergie::weckenUm(std::optional<Datum> moment) {
    if (!moment) return alarm_.stelle(std::nullopt);
    return alarm_.stelle(uhr_.systemzeit(*moment));
}

}  // namespace wendel
