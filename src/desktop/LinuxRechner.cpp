#include "desktop/LinuxRechner.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>

#include "desktop/Dateideskriptor.h"
#include "platform/Text.h"

namespace wendel {

namespace {

constexpr std::size_t kLaengsterName = 15;

std::string hostname() {
    if (const char* ersatz = std::getenv("WENDEL_RECHNER"); ersatz && *ersatz) return ersatz;
    std::array<char, 256> name{};  // the last byte stays NUL: a longer name may come without one
    return ::gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : std::string();
}

std::uint64_t saat() {
    std::random_device geraet;
    return (std::uint64_t{geraet()} << 32) | geraet();
}

}  // namespace

std::string rechnernameAusHostname(std::string_view name) {
    return Left(UCase(name.substr(0, name.find('.'))), kLaengsterName);
}

std::int32_t freierSpeicherAus(std::string_view meminfo) {
    constexpr std::string_view kZeile = "MemAvailable:";
    const std::size_t zeile = meminfo.find(kZeile);
    if (zeile == std::string_view::npos) return 0;
    const std::size_t anfang = meminfo.find_first_not_of(" \t", zeile + kZeile.size());
    if (anfang == std::string_view::npos) return 0;
    std::int64_t kib = 0;
    const auto [ende, fehler] =
        std::from_chars(meminfo.data() + anfang, meminfo.data() + meminfo.size(), kib);
    if (fehler != std::errc() || kib < 0) return 0;
    constexpr std::int64_t kGrenze = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::min(std::min(kib, kGrenze) * 1024, kGrenze));
}

LinuxRechner::LinuxRechner() : zufall_(saat()) {}

bool LinuxRechner::rechnername(std::string& puffer) {
    std::string name = rechnernameAusHostname(hostname());
    if (name.empty()) return false;
    name += '\0';
    puffer.replace(0, std::min(puffer.size(), name.size()), name);
    return true;
}

std::int32_t LinuxRechner::freierSpeicher() {
    const Dateideskriptor fd(::open("/proc/meminfo", O_RDONLY | O_CLOEXEC));
    std::array<char, 1024> anfang{};  // the line is the third
    const ssize_t n = fd ? ::read(fd.get(), anfang.data(), anfang.size()) : -1;
    return n > 0 ? freierSpeicherAus({anfang.data(), static_cast<std::size_t>(n)}) : 0;
}

// Where a Linux system keeps what the numbers mean.
std::optional<std::string> LinuxRechner::spezialordner(int nummer) {
    switch (nummer) {
        case 36: return "\\usr";
        case 37: return "\\usr\\lib";
        case 38: return "\\usr\\bin";
        default: return std::nullopt;
    }
}

double LinuxRechner::zufall() { return static_cast<double>(zufall_() >> 11) * 0x1.0p-53; }

}  // namespace wendel
