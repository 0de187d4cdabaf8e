#include "desktop/LinuxUhr.h"

#include <time.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <utility>

namespace wendel {

namespace {

constexpr std::int64_t kNsJeSekunde = 1'000'000'000;
constexpr std::int64_t kUnixNullTag = 25569;  // 1 January 1970 in days since 30 December 1899
constexpr std::int64_t kSekundenJeTag = 86400;
// What nanoseconds since 1970 can count in 64 bits, in every zone.
constexpr int kErstesJahr = 1971;
constexpr int kLetztesJahr = 2200;

std::int64_t nanosekunden(clockid_t uhr) {
    timespec zeit{};
    ::clock_gettime(uhr, &zeit);
    return std::int64_t{zeit.tv_sec} * kNsJeSekunde + zeit.tv_nsec;
}

std::optional<int> ziffern(std::string_view text) {
    int wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (fehler != std::errc() || ende != text.data() + text.size() || text.front() == '-')
        return std::nullopt;
    return wert;
}

Datum alsDatum(const std::tm& teile) {
    std::tm kopie = teile;
    return Datum::ausSekunden(std::int64_t{::timegm(&kopie)} + kUnixNullTag * kSekundenJeTag);
}

// The world time of a local moment. In the autumn hour, which comes twice, the first one; a moment inside the
// spring gap becomes the same distance behind it.
std::time_t weltzeitVon(Datum lokal) {
    const std::time_t alsWeltzeit =
        static_cast<std::time_t>(lokal.sekunden() - kUnixNullTag * kSekundenJeTag);
    std::tm teile{};
    ::gmtime_r(&alsWeltzeit, &teile);
    for (const int sommerzeit : {1, 0}) {
        std::tm versuch = teile;
        versuch.tm_isdst = sommerzeit;
        const std::time_t weltzeit = ::mktime(&versuch);
        std::tm probe{};
        ::localtime_r(&weltzeit, &probe);
        if (alsDatum(probe) == lokal) return weltzeit;
    }
    teile.tm_isdst = 0;
    return ::mktime(&teile);
}

}  // namespace

std::optional<Datum> uhrAusText(std::string_view text) {
    // yyyy-mm-dd hh:mm:ss
    if (text.size() != 19 || text[4] != '-' || text[7] != '-' || (text[10] != ' ' && text[10] != 'T') ||
        text[13] != ':' || text[16] != ':')
        return std::nullopt;
    std::array<int, 6> teile{};
    constexpr std::array<std::pair<std::size_t, std::size_t>, 6> kStellen{
        {{0, 4}, {5, 2}, {8, 2}, {11, 2}, {14, 2}, {17, 2}}};
    for (std::size_t i = 0; i < teile.size(); ++i) {
        const auto wert = ziffern(text.substr(kStellen[i].first, kStellen[i].second));
        if (!wert) return std::nullopt;
        teile[i] = *wert;
    }
    if (teile[0] < kErstesJahr || teile[0] > kLetztesJahr || teile[3] > 23 || teile[4] > 59 || teile[5] > 59)
        return std::nullopt;
    std::tm tm{};
    tm.tm_year = teile[0] - 1900;
    tm.tm_mon = teile[1] - 1;
    tm.tm_mday = teile[2];
    tm.tm_hour = teile[3];
    tm.tm_min = teile[4];
    tm.tm_sec = teile[5];
    std::tm getragen = tm;
    ::timegm(&getragen);
    // A day that the calendar lacks has been carried into another month.
    if (getragen.tm_mon != tm.tm_mon || getragen.tm_mday != tm.tm_mday) return std::nullopt;
    return alsDatum(tm);
}

LinuxUhr::LinuxUhr() { ::tzset(); }

LinuxUhr::LinuxUhr(Datum start) : LinuxUhr() {
    abstandZurBootuhrNs_ = std::int64_t{weltzeitVon(start)} * kNsJeSekunde - nanosekunden(CLOCK_BOOTTIME);
}

std::unique_ptr<LinuxUhr> LinuxUhr::ausUmgebung(std::string& meldung) {
    const char* wert = std::getenv("WENDEL_UHR");
    if (!wert || !*wert) return std::make_unique<LinuxUhr>();
    if (const auto start = uhrAusText(wert)) return std::make_unique<LinuxUhr>(*start);
    meldung = "WENDEL_UHR=\"" + std::string(wert) +
              "\" ist keine gültige Zeit. Erwartet wird zum Beispiel \"2012-12-24 20:04:50\".";
    return nullptr;
}

void LinuxUhr::setzeNachrichten(std::function<void()> nachrichten) { nachrichten_ = std::move(nachrichten); }

std::timespec LinuxUhr::weltzeit() const {
    const std::int64_t ns = abstandZurBootuhrNs_ ? nanosekunden(CLOCK_BOOTTIME) + *abstandZurBootuhrNs_
                                                 : nanosekunden(CLOCK_REALTIME);
    return {static_cast<std::time_t>(ns / kNsJeSekunde), static_cast<long>(ns % kNsJeSekunde)};
}

Datum LinuxUhr::jetzt() {
    const std::time_t sekunde = weltzeit().tv_sec;
    if (sekunde / 3600 != zonenstunde_) {
        zonenstunde_ = sekunde / 3600;
        zoneNeuLesen();
    }
    std::tm lokal{};
    ::localtime_r(&sekunde, &lokal);
    return alsDatum(lokal);
}

std::int64_t LinuxUhr::laufzeitMs() { return nanosekunden(CLOCK_BOOTTIME) / 1'000'000; }

void LinuxUhr::schlafe(int ms) {
    if (ms <= 0) return;
    timespec rest{ms / 1000, (ms % 1000) * 1'000'000L};
    while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) == EINTR) {
    }
}

void LinuxUhr::nachrichtenVerarbeiten() {
    if (nachrichten_) nachrichten_();
}

std::time_t LinuxUhr::systemzeit(Datum lokal) const {
    return weltzeitVon(lokal) - weltzeit().tv_sec + ::time(nullptr);
}

int LinuxUhr::msBisZurNaechstenSekunde() {
    // Rounded up: a timer that fires a hair early would see the old second.
    const std::int64_t rest = kNsJeSekunde - weltzeit().tv_nsec;
    return static_cast<int>((rest + 999'999) / 1'000'000);
}

void LinuxUhr::zoneNeuLesen() { ::tzset(); }

}  // namespace wendel
