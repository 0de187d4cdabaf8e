#include "desktop/LinuxKlang.h"

#include <dirent.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/Abloesung.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "desktop/Umgebung.h"

namespace wendel {

namespace {

using Ordner = std::unique_ptr<DIR, int (*)(DIR*)>;

// A card has a folder "card0"; a stream that plays is a folder "pcm0p" in it, one that records "pcm0c".
bool kannSpielen(const std::string& karte) {
    const Ordner ordner(::opendir(karte.c_str()), &::closedir);
    if (!ordner) return false;
    while (const dirent* eintrag = ::readdir(ordner.get())) {
        const std::string_view name = eintrag->d_name;
        if (name.starts_with("pcm") && name.ends_with('p')) return true;
    }
    return false;
}

int karten(const std::string& kartenordner) {
    const Ordner ordner(::opendir(kartenordner.c_str()), &::closedir);
    if (!ordner) return 0;
    int zahl = 0;
    while (const dirent* eintrag = ::readdir(ordner.get())) {
        const std::string_view name = eintrag->d_name;
        const bool karte = name.starts_with("card") && name.size() > 4 &&
                           name.find_first_not_of("0123456789", 4) == std::string_view::npos;
        if (karte && kannSpielen(kartenordner + "/" + eintrag->d_name)) ++zahl;
    }
    return zahl;
}

bool klangserverDa() {
    const std::string laufzeitordner = ausUmgebung("XDG_RUNTIME_DIR");
    if (const std::string server = ausUmgebung("PULSE_SERVER"); !server.empty()) {
        constexpr std::string_view kUnix = "unix:";
        // A server on another machine: whether it answers shows when something is played.
        if (!server.starts_with(kUnix) && !server.starts_with('/')) return true;
        return antwortet(server.starts_with(kUnix) ? server.substr(kUnix.size()) : server);
    }
    return antwortet(laufzeitordner + "/pulse/native") || antwortet(laufzeitordner + "/pipewire-0");
}

// One after the other until one succeeds. A minute is longer than any of our sounds; it ends a player that
// waits for a server which never answers, so that they don't pile up.
constexpr const char* kSpieleNacheinander = R"(f=$1; shift; for p; do timeout 60 "$p" "$f" && exit; done)";

}  // namespace

std::string klangdatei(const std::string& pfad) {
    if (pfad.empty()) return {};
    const std::string logisch = logischerPfad(nativerPfad(pfad));
    const std::size_t trenner = logisch.rfind('\\');
    if (trenner == std::string::npos) return vorhandeneDatei(pfad);
    return vorhandeneDatei(mitgelieferteDatei(logisch.substr(0, trenner + 1), logisch.substr(trenner + 1)));
}

std::vector<std::string> klangspieler() {
    std::vector<std::string> spieler;
    for (const char* name : {"pw-play", "paplay", "aplay"})
        if (std::string pfad = imSuchpfad(name); !pfad.empty()) spieler.push_back(std::move(pfad));
    return spieler;
}

LinuxKlang::LinuxKlang(std::string kartenordner) : kartenordner_(std::move(kartenordner)) {}

int LinuxKlang::ausgabegeraete() {
    if (const int zahl = karten(kartenordner_); zahl > 0) return zahl;
    return klangserverDa() ? 1 : 0;
}

void LinuxKlang::spieleAsynchron(const std::string& pfad) {
    std::string datei = klangdatei(pfad);
    if (datei.empty()) return;
    if (!datei.starts_with('/')) datei.insert(0, "./");  // a name that begins with "-" is no option
    const std::vector<std::string> spieler = klangspieler();
    if (spieler.empty()) return;
    std::vector<std::string> befehl{"/bin/sh", "-c", kSpieleNacheinander, "sh", datei};
    befehl.insert(befehl.end(), spieler.begin(), spieler.end());
    starteAbgeloest(befehl, {});
}

}  // namespace wendel
