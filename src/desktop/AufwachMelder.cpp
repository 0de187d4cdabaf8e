#include "desktop/AufwachMelder.h"

#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

namespace wendel {

namespace {

// Readings of two clocks, taken one after the other, differ by less; a suspend lasts longer.
constexpr std::int64_t kKuerzesterSchlafMs = 200;

std::int64_t millisekunden(clockid_t uhr) {
    timespec zeit{};
    ::clock_gettime(uhr, &zeit);
    return std::int64_t{zeit.tv_sec} * 1000 + zeit.tv_nsec / 1'000'000;
}

// How long the machine has slept since it was booted: one clock counts on while it does, the other stands.
std::int64_t geschlafenMs() { return millisekunden(CLOCK_BOOTTIME) - millisekunden(CLOCK_MONOTONIC); }

}  // namespace

AufwachMelder::AufwachMelder() : fd_(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {
    spannen();
}

AufwachMelder::~AufwachMelder() {
    if (fd_ >= 0) ::close(fd_);
}

// A timer that never expires: the kernel cancels it when the wall clock jumps, and a resume counts as a jump.
void AufwachMelder::spannen() {
    schlafMs_ = geschlafenMs();
    if (fd_ < 0) return;
    itimerspec niemals{};
    niemals.it_value.tv_sec = std::numeric_limits<time_t>::max();
    if (::timerfd_settime(fd_, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &niemals, nullptr) == 0) return;
    // The call reports a jump that came since the last one with ECANCELED and has set the timer all the same.
    if (errno == ECANCELED) return;
    ::close(fd_);
    fd_ = -1;
}

AufwachMelder::Anlass AufwachMelder::lesen() {
    std::uint64_t ablaeufe = 0;
    const bool gesprungen = fd_ >= 0 && ::read(fd_, &ablaeufe, sizeof ablaeufe) < 0 && errno == ECANCELED;
    const std::int64_t vorher = schlafMs_;
    const Anlass anlass = deute(gesprungen, vorher, geschlafenMs());
    if (anlass != Anlass::Nichts) spannen();
    return anlass;
}

AufwachMelder::Anlass AufwachMelder::deute(bool uhrGesprungen, std::int64_t schlafVorherMs,
                                           std::int64_t schlafNachherMs) {
    if (schlafNachherMs - schlafVorherMs >= kKuerzesterSchlafMs) return Anlass::Aufgewacht;
    return uhrGesprungen ? Anlass::UhrGestellt : Anlass::Nichts;
}

}  // namespace wendel
