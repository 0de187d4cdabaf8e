#include "desktop/Weckalarm.h"

#include <fcntl.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace wendel {

Weckalarm::Weckalarm(std::string ordner)
    : ordner_(std::move(ordner)), zeitgeber_(::timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {}

bool Weckalarm::stelle(std::optional<std::time_t> weltzeit) {
    const std::int64_t jetzt = geraetezeit();
    beachteFremde(jetzt);
    unserer_.reset();
    if (weltzeit) unserer_ = jetzt + (std::int64_t{*weltzeit} - std::int64_t{::time(nullptr)});
    return richteEin(jetzt);
}

void Weckalarm::naechster() {
    std::uint64_t ablaeufe = 0;
    if (::read(zeitgeber_.get(), &ablaeufe, sizeof ablaeufe) < 0) return;
    const std::int64_t jetzt = geraetezeit();
    beachteFremde(jetzt);
    (void)richteEin(jetzt);  // the caller of stelle() has gone on; the next call tries again
}

// Whatever the device holds but for what it was last given is somebody else's.
void Weckalarm::beachteFremde(std::int64_t jetzt) {
    if (imGeraet_ && *imGeraet_ <= jetzt) imGeraet_.reset();
    const auto gefunden = zahlAus("wakealarm");
    const auto laufend = gefunden && *gefunden > jetzt ? gefunden : std::nullopt;
    if (laufend != imGeraet_) fremder_ = laufend;
    imGeraet_ = laufend;
}

bool Weckalarm::richteEin(std::int64_t jetzt) {
    for (auto* alarm : {&unserer_, &fremder_})
        if (*alarm && **alarm <= jetzt) alarm->reset();
    // Also our own one of an earlier run of the program.
    if (unserer_ == fremder_) fremder_.reset();

    const auto ziel = unserer_ && fremder_ ? std::min(unserer_, fremder_) : unserer_ ? unserer_ : fremder_;
    warteAuf(unserer_ && fremder_ ? *ziel - jetzt + 1 : 0);
    if (ziel == imGeraet_) return true;
    // A running alarm is not replaced by the kernel, only cleared.
    if (!schreibe(0) || (ziel && !schreibe(*ziel))) return false;
    imGeraet_ = ziel;
    return true;
}

// Counts while the machine sleeps; 0 stops it.
void Weckalarm::warteAuf(std::int64_t abJetzt) const {
    itimerspec zeit{};
    zeit.it_value.tv_sec = static_cast<std::time_t>(abJetzt);
    ::timerfd_settime(zeitgeber_.get(), 0, &zeit, nullptr);
}

// The device's clock, to the minute by its own word: beside another operating system it may show local time.
std::int64_t Weckalarm::geraetezeit() const {
    const std::int64_t jetzt = ::time(nullptr);
    const std::int64_t abstand = zahlAus("since_epoch").value_or(jetzt) - jetzt;
    return jetzt + (abstand + (abstand < 0 ? -30 : 30)) / 60 * 60;
}

std::optional<std::int64_t> Weckalarm::zahlAus(const char* datei) const {
    const Dateideskriptor fd(::open((ordner_ + "/" + datei).c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 32> text{};
    const auto laenge = fd ? ::read(fd.get(), text.data(), text.size()) : -1;
    std::int64_t zahl = 0;
    if (laenge <= 0 || std::from_chars(text.data(), text.data() + laenge, zahl).ec != std::errc())
        return std::nullopt;
    return zahl;
}

bool Weckalarm::schreibe(std::int64_t wert) const {
    const Dateideskriptor fd(::open((ordner_ + "/wakealarm").c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    std::array<char, 24> text{};
    const char* ende = std::to_chars(text.data(), text.data() + text.size(), wert).ptr;
    const auto laenge = static_cast<std::size_t>(ende - text.data());
    return fd && ::write(fd.get(), text.data(), laenge) == static_cast<ssize_t>(laenge);
}

}  // namespace wendel
