#pragma once
// The Energie port over the login manager (bus name org.freedesktop.login1 on the system bus) and the alarm
// of the machine's clock. Without a login manager, or where it refuses, the machine sleeps as it likes.

#include <QDBusPendingCallWatcher>
#include <QSocketNotifier>
#include <memory>

#include "desktop/Dateideskriptor.h"
#include "desktop/LinuxUhr.h"
#include "desktop/Systembusprobe.h"
#include "desktop/Weckalarm.h"
#include "platform/ports/Energie.h"

namespace wendel {

class LoginEnergie final : public Energie {
  public:
    // uhr says when a moment comes by the system's clock; it must outlive this object. Needs Qt's event loop.
    explicit LoginEnergie(LinuxUhr& uhr, std::string rtcOrdner = Weckalarm::kOrdner);
    ~LoginEnergie() override;
    LoginEnergie(const LoginEnergie&) = delete;

    // Asks and returns at once, also while the bus is stuck. A refusal is not repeated until the next call.
    void wachhalten(const std::string& grund) override;
    void schlafErlauben() override;
    [[nodiscard]] bool weckenUm(std::optional<Datum> moment) override;

  private:
    void bitte(const std::string& grund);
    void uebernimmAntwort();

    LinuxUhr& uhr_;
    Weckalarm alarm_;
    QSocketNotifier alarmVorbei_;
    Systembusprobe bus_;
    std::unique_ptr<QDBusPendingCallWatcher> anfrage_;
    // The login manager lets the machine sleep again when the last copy of this descriptor is closed, so also
    // when this process is killed.
    Dateideskriptor sperre_;
};

}  // namespace wendel
