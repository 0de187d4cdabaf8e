// The kernel's interfaces: the texts of its routing tables, and a real tunnel in a network of its own.

#include "desktop/Netzschnittstellen.h"

#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <net/route.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstring>

#include "desktop/Dateideskriptor.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(DefaultRoute, IsTheFirstThatIsUp) {
    const std::string kopf =
        "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
    const std::string netz = "eth0\t000011AC\t00000000\t0001\t0\t0\t0\t0000FFFF\t0\t0\t0\n";
    const std::string alle(32, '0'), rest = " 00 " + alle + " 00000400 00000001 00000000 ";
    const struct {
        const char* fall;
        std::string route, ipv6Route, schnittstelle;
    } faelle[] = {
        {"none", kopf + netz, "", ""},
        {"IPv4", kopf + netz + "wlan0\t00000000\t010011AC\t0003\t0\t0\t600\t00000000\t0\t0\t0\n", "",
         "wlan0"},
        {"half of the world is no default", kopf + "tun0\t00000000\t0\t0003\t0\t0\t0\t00000080\t0\t0\t0\n",
         "", ""},
        {"down or rejecting",
         kopf + "a\t00000000\t0\t0002\t0\t0\t0\t00000000\nb\t00000000\t0\t0201\t0\t0\t0\t00000000\n", "", ""},
        {"cut", kopf + "eth0\t00000000\t0100", alle, ""},
        {"IPv6 beside the loopback's rejection", kopf,
         alle + " 00 " + alle + rest + "00200200       lo\n" + alle + " 00 " + alle + rest +
             "00450003     eth1\n",
         "eth1"},
    };
    for (const auto& fall : faelle)
        EXPECT_EQ(schnittstelleDerVorgabe(fall.route, fall.ipv6Route), fall.schnittstelle) << fall.fall;
}

// Says what it sees of a network whose default route goes over the loopback, before and after a tunnel comes.
int imEigenenNetz() {
    if (::unshare(CLONE_NEWNET) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return 77;
    const Dateideskriptor tunnel(::open("/dev/net/tun", O_RDWR | O_CLOEXEC));
    const Dateideskriptor netz(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto aktiviere = [&](const char* name) {
        ifreq anfrage{};
        std::strcpy(anfrage.ifr_name, name);
        anfrage.ifr_flags = IFF_UP;
        return ::ioctl(netz.get(), SIOCSIFFLAGS, &anfrage) == 0;
    };
    rtentry route{};
    for (sockaddr* adresse : {&route.rt_dst, &route.rt_genmask, &route.rt_gateway})
        adresse->sa_family = AF_INET;
    route.rt_flags = RTF_UP;
    char lo[] = "lo", tun[] = "wendel0";
    route.rt_dev = lo;
    if (!tunnel || !aktiviere(lo) || ::ioctl(netz.get(), SIOCADDRT, &route) != 0) return 77;
    if (aktiveNetzschnittstelle() != lo) return 1;
    ifreq anfrage{};
    std::strcpy(anfrage.ifr_name, tun);
    anfrage.ifr_flags = IFF_TUN | IFF_NO_PI;
    if (::ioctl(tunnel.get(), TUNSETIFF, &anfrage) != 0) return 77;
    if (!aktiveNetzschnittstelle().empty()) return 2;
    if (!aktiviere(tun)) return 3;
    return aktiveNetzschnittstelle() == tun ? 0 : 4;
}

TEST(Interfaces, ATunnelOutranksTheDefaultRouteAlsoWhileItIsDown) {
    Kind kind([](int) { ::_exit(imEigenenNetz()); });
    const int code = WEXITSTATUS(kind.warte());
    if (code == 77) GTEST_SKIP() << "no network namespace or tunnel may be made here";
    EXPECT_EQ(code, 0);
}

}  // namespace
}  // namespace wendel
