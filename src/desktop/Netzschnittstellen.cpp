#include "desktop/Netzschnittstellen.h"

#include <ifaddrs.h>
#include <net/if.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string_view>
#include <vector>

namespace wendel {

namespace {

// Flags of a route (linux/route.h, linux/ipv6_route.h).
constexpr unsigned long kUp = 0x1;
constexpr unsigned long kReject = 0x200;

constexpr std::string_view kAlleIpv6 = "00000000000000000000000000000000";

std::vector<std::string> felder(const std::string& zeile) {
    std::istringstream strom(zeile);
    return {std::istream_iterator<std::string>(strom), {}};
}

bool istOffen(const std::string& hex) {
    unsigned long flaggen = 0;
    std::istringstream(hex) >> std::hex >> flaggen;
    return (flaggen & kUp) != 0 && (flaggen & kReject) == 0;
}

std::string inhalt(const char* datei) {
    std::ifstream strom(datei);
    return {std::istreambuf_iterator<char>(strom), {}};
}

}  // namespace

std::string schnittstelleDerVorgabe(const std::string& route, const std::string& ipv6Route) {
    std::string zeile;
    // Iface Destination Gateway Flags RefCnt Use Metric Mask ...
    for (std::istringstream zeilen(route); std::getline(zeilen, zeile);) {
        const std::vector<std::string> f = felder(zeile);
        if (f.size() >= 8 && f[1] == "00000000" && f[7] == "00000000" && istOffen(f[3])) return f[0];
    }
    // Destination Prefix Source Prefix NextHop Metric RefCnt Use Flags Iface
    for (std::istringstream zeilen(ipv6Route); std::getline(zeilen, zeile);) {
        const std::vector<std::string> f = felder(zeile);
        if (f.size() >= 10 && f[0] == kAlleIpv6 && f[1] == "00" && f[9] != "lo" && istOffen(f[8]))
            return f[9];
    }
    return {};
}

std::string aktiveNetzschnittstelle() {
    ifaddrs* kopf = nullptr;
    if (::getifaddrs(&kopf) != 0) return {};
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> liste(kopf, &::freeifaddrs);
    bool punktZuPunkt = false;
    for (const ifaddrs* eintrag = kopf; eintrag; eintrag = eintrag->ifa_next) {
        if ((eintrag->ifa_flags & IFF_POINTOPOINT) == 0) continue;
        punktZuPunkt = true;
        if ((eintrag->ifa_flags & IFF_UP) != 0) return eintrag->ifa_name;
    }
    return punktZuPunkt ? std::string()
                        : schnittstelleDerVorgabe(inhalt("/proc/net/route"), inhalt("/proc/net/ipv6_route"));
}

}  // namespace wendel
