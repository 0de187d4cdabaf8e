// The machine, the folders of the program and their room, and what keeps it awake.

#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <fstream>
#include <optional>

#include "Pruefbus.h"
#include "Pruefungen.h"
#include "desktop/Pfade.h"
#include "desktop/Umgebung.h"
#include "desktop/Weckalarm.h"
#include "platform/Text.h"

namespace wendel::quillon {
namespace {

constexpr std::uint64_t kMb = std::uint64_t{1} << 20;
constexpr std::uint64_t kWenig = 100 * kMb, kZuWenig = 5 * kMb, kWenigFuerFilme = 5000 * kMb;

// From the distribution's own file; what stands in /etc may be changed for the machine.
std::string distribution() {
    std::ifstream datei("/usr/lib/os-release");
    constexpr std::string_view kName = "PRETTY_NAME=";
    for (std::string zeile; std::getline(datei, zeile);)
        if (zeile.starts_with(kName)) return ersetzt(zeile.substr(kName.size()), "\"", "");
    return "Linux";
}

// "6.1.0-18" of "6.1.0-18-amd64": who builds a kernel can name it.
std::string kernelfassung(std::string_view name) {
    const std::string_view zahlen = name.substr(0, name.find_first_not_of("0123456789.-"));
    return std::string(zahlen.substr(0, zahlen.find_last_not_of(".-") + 1));
}

// Asked of the library itself, which this program does not use otherwise; "" when it is not installed.
std::string qtFassung() {
    void* bibliothek = ::dlopen("libQt6Core.so.6", RTLD_LAZY | RTLD_LOCAL);
    if (bibliothek == nullptr) return {};
    using Frage = const char* (*)();
    const auto frage = reinterpret_cast<Frage>(::dlsym(bibliothek, "qVersion"));
    return frage == nullptr ? std::string() : std::string(frage());
}

// "Europe/Berlin", from the name that the system's choice leads to. Only names of the zone data: others are
// texts or files of the user.
std::string zonenname() {
    constexpr std::string_view kZonen = "/usr/share/zoneinfo/";
    std::array<char, 256> ziel{};
    const ssize_t n = ::readlink("/etc/localtime", ziel.data(), ziel.size());
    std::string name = ausUmgebung("TZ");
    if (name.empty()) name.assign(ziel.data(), n > 0 ? static_cast<std::size_t>(n) : 0);
    if (const std::size_t stelle = name.find(kZonen); stelle != std::string::npos)
        name.erase(0, stelle + kZonen.size());
    const bool bekannt = !name.empty() && name.find('.') == std::string::npos &&
                         ::access((std::string(kZonen) + name).c_str(), F_OK) == 0;
    return bekannt ? name : "ohne Namen";
}

std::string abstandZurWeltzeit() {
    const std::time_t jetzt = ::time(nullptr);
    std::tm teile{};
    ::localtime_r(&jetzt, &teile);
    std::array<char, 8> text{};
    return std::string(text.data(), std::strftime(text.data(), text.size(), "%z", &teile));
}

// Nothing where the folder is not there.
std::optional<std::uint64_t> freierPlatz(const std::string& ordner) {
    struct statvfs angaben {};
    if (::statvfs(nativerPfad(ordner).c_str(), &angaben) != 0) return std::nullopt;
    return std::uint64_t{angaben.f_bavail} * angaben.f_frsize;
}

void pruefePlatz(Pruefmelder& melder, const std::string& name, const std::string& ordner,
                 std::uint64_t wenig) {
    const auto frei = freierPlatz(ordner);
    if (!frei) return;
    const std::string befund = "Freier Platz, " + name + ": " + groesseText(*frei);
    if (*frei < kZuWenig)
        melder.fehler(befund, "Platz schaffen: Es kann nichts mehr gespeichert werden.");
    else if (*frei < wenig)
        melder.hinweis(befund, "Bald Platz schaffen.");
    else
        melder.ok(befund);
}

}  // namespace

void pruefeRechner(Pruefmelder& melder, const Prueflage& /*lage*/) {
    utsname kern{};
    ::uname(&kern);
    melder.ok("System: " + distribution() + ", Kernel " + kernelfassung(kern.release) + ", " + kern.machine);
    if (const std::string qt = qtFassung(); !qt.empty())
        melder.ok("Qt: " + qt);
    else
        melder.fehler("Qt: nicht gefunden", "Das Paket libqt6widgets6 installieren.");
    melder.ok("Zeitzone: " + zonenname() + " (" + abstandZurWeltzeit() + ")");
    if (!ausUmgebung("WENDEL_UHR").empty())
        melder.hinweis("Uhr: mit WENDEL_UHR gestellt",
                       "Die Variable löschen, wenn Lomrick wirklich erinnern soll.");
}

void pruefeEnergie(Pruefmelder& melder, const Prueflage& lage) {
    constexpr const char* kLogin = "org.freedesktop.login1";
    const Pruefbus bus = Pruefbus::system();
    if (!bus.erreichbar())
        melder.hinweis("Wachhalten: nicht möglich, der Systembus antwortet nicht",
                       "In einer normalen Sitzung mit D-Bus starten, sonst kann der Rechner während einer "
                       "Aufnahme einschlafen.");
    else if (!bus.vergeben(kLogin) && !bus.startbar(kLogin))
        melder.hinweis("Wachhalten: nicht möglich, es gibt keine Anmeldeverwaltung (logind)",
                       "systemd-logind oder elogind einrichten, sonst kann der Rechner während einer "
                       "Aufnahme einschlafen.");
    else
        melder.ok(std::string("Wachhalten: möglich, ") +
                  (lage.konfiguration.wachhalten ? "eingeschaltet" : "ausgeschaltet"));

    const std::string alarm = std::string(Weckalarm::kOrdner) + "/wakealarm";
    const std::string grund = ::access(alarm.c_str(), F_OK) != 0   ? "der Rechner hat keinen Weckalarm"
                              : ::access(alarm.c_str(), W_OK) != 0 ? "der Weckalarm ist nicht beschreibbar"
                                                                   : "";
    if (grund.empty())
        melder.ok(std::string("Wecken: möglich, ") +
                  (lage.konfiguration.wecken ? "eingeschaltet" : "ausgeschaltet"));
    else if (!lage.konfiguration.wecken)
        melder.ok("Wecken: nicht möglich (" + grund + "), ausgeschaltet");
    else
        melder.fehler("Wecken: eingeschaltet, aber nicht möglich, " + grund,
                      "Dem Benutzer mit einer udev-Regel das Schreiben in wakealarm erlauben oder den "
                      "Rechner vor Aufnahmen nicht schlafen lassen.");
}

void pruefeOrdner(Pruefmelder& melder, const Prueflage& lage) {
    const std::string name = "Programmordner (" + lage.ordnerart + "): ";
    std::string nativ = nativerPfad(lage.programmordner);
    if (nativ.size() > 1) nativ.pop_back();  // with the "/" nothing but folders would be there
    if (!lage.ordnerDa && (::access(nativ.c_str(), F_OK) == 0 || errno != ENOENT))
        melder.fehler(name + "nicht zugänglich", "Dem Benutzer die Rechte an dem Ordner geben.");
    else if (!lage.ordnerDa)
        melder.hinweis(name + "noch nicht da", "\"quillon --erststart\" legt ihn an.");
    else if (::access(nativ.c_str(), R_OK | W_OK | X_OK) != 0)
        melder.fehler(name + "nicht beschreibbar", "Dem Benutzer die Rechte an dem Ordner geben.");
    else
        melder.ok(name + "les- und schreibbar");
    pruefePlatz(melder, "Programmordner", lage.programmordner, kWenig);

    const std::string& aufnahmen = lage.konfiguration.aufzeichnungsordner;
    if (aufnahmen.empty()) return;
    if (freierPlatz(aufnahmen))
        pruefePlatz(melder, "Aufzeichnungen", aufnahmen, kWenigFuerFilme);
    else
        melder.hinweis("Aufzeichnungsordner: nicht da",
                       "Den Ordner anlegen oder mit \"quillon --setze Aufzeichnungsordner=...\" einen "
                       "anderen nennen.");
}

}  // namespace wendel::quillon
