#include "desktop/Systembusprobe.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QByteArray>
#include <algorithm>
#include <utility>

namespace wendel {
namespace {

// The socket of the system bus; empty for a bus that is elsewhere.
QByteArray bussocket() {
    const QByteArray adresse =
        qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/run/dbus/system_bus_socket").toLatin1();
    constexpr QByteArrayView kPfad("unix:path=");
    if (!adresse.startsWith(kPfad)) return {};
    const QByteArray erste = adresse.mid(kPfad.size()).split(';').front().split(',').front();
    return QByteArray::fromPercentEncoding(erste);
}

// The first line of the bus protocol, to which a bus that is alive answers at once. Nobody to talk to: an
// empty descriptor.
Dateideskriptor klopfeAn(const QByteArray& pfad) {
    sockaddr_un ziel{};
    ziel.sun_family = AF_UNIX;
    if (pfad.size() >= static_cast<qsizetype>(sizeof ziel.sun_path)) return {};
    std::copy(pfad.begin(), pfad.end(), ziel.sun_path);
    Dateideskriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const QByteArray zeile =
        QByteArray(1, '\0') + "AUTH EXTERNAL " + QByteArray::number(::geteuid()).toHex() + "\r\n";
    if (!fd || ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&ziel), sizeof ziel) != 0 ||
        ::send(fd.get(), zeile.data(), static_cast<std::size_t>(zeile.size()), MSG_NOSIGNAL) != zeile.size())
        return {};
    return fd;
}

}  // namespace

void Systembusprobe::wennErreichbar(std::function<void()> dann) {
    if (fragt()) return;
    const QByteArray pfad = bussocket();
    if (pfad.isEmpty()) return dann();
    klopfzeichen_ = klopfeAn(pfad);
    if (!klopfzeichen_) return;
    antwortet_ = std::make_unique<QSocketNotifier>(klopfzeichen_.get(), QSocketNotifier::Read);
    QObject::connect(antwortet_.get(), &QSocketNotifier::activated, antwortet_.get(),
                     [this, dann = std::move(dann)] {
                         const std::function<void()> ruf = dann;  // what is called may drop this slot
                         antwortet_->setEnabled(false);
                         antwortet_.release()->deleteLater();  // it is the sender
                         klopfzeichen_ = Dateideskriptor();
                         ruf();
                     });
}

void Systembusprobe::verwerfen() {
    antwortet_.reset();
    klopfzeichen_ = Dateideskriptor();
}

}  // namespace wendel
