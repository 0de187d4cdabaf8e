#include "desktop/Systembusprobe.h"

#include <string>
#include <utility>

#include "desktop/Busklopfen.h"

namespace wendel {
namespace {

// Empty for a bus that is elsewhere.
std::string systembussocket() {
    return bussocket(qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/run/dbus/system_bus_socket")
                         .toStdString());
}

}  // namespace

void Systembusprobe::wennErreichbar(std::function<void()> dann) {
    if (fragt()) return;
    const std::string pfad = systembussocket();
    if (pfad.empty()) return dann();
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
