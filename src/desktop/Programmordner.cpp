#include "desktop/Programmordner.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <climits>

#include "desktop/LinuxDateisystem.h"
#include "desktop/Pfade.h"
#include "desktop/Umgebung.h"

namespace wendel {

namespace {

std::string heimordner() {
    if (const std::string home = ausUmgebung("HOME"); !home.empty()) return home;
    const passwd* eintrag = ::getpwuid(::geteuid());
    return eintrag && eintrag->pw_dir ? eintrag->pw_dir : "";
}

// Relative values of the XDG variables are invalid and to be ignored (XDG Base Directory rules of
// freedesktop.org).
std::string xdgOrdner(const std::string& wert, const std::string& home, const char* vorgabe) {
    return wert.starts_with('/') ? wert : home + vorgabe;
}

std::string nativerProgrammordner(const Programmlage& lage) {
    if (!lage.wendelOrdner.empty()) return absoluterPfad(lage.wendelOrdner);
    if (!lage.programmdateiOrdner.empty() &&
        LinuxDateisystem().existiert(logischerPfad(lage.programmdateiOrdner + "/fennow.cfg")))
        return lage.programmdateiOrdner;
    return xdgOrdner(lage.xdgDataHome, lage.home, "/.local/share") + "/wendel";
}

std::string mitTrenner(std::string pfad) {
    if (!pfad.ends_with('\\')) pfad += '\\';
    return pfad;
}

}  // namespace

std::string eigenerProgrammordner() {
    std::array<char, PATH_MAX> pfad{};
    const ssize_t n = ::readlink("/proc/self/exe", pfad.data(), pfad.size());
    return n > 0 ? elternordner({pfad.data(), static_cast<std::size_t>(n)}) : std::string();
}

// "./" where the current folder is gone: a bare name would be looked for in PATH.
std::string absoluterPfad(const std::string& nativ) {
    if (nativ.starts_with('/')) return nativ;
    std::array<char, PATH_MAX> hier{};
    return ::getcwd(hier.data(), hier.size()) ? std::string(hier.data()) + "/" + nativ : "./" + nativ;
}

Programmlage programmlage() {
    return {ausUmgebung("WENDEL_ORDNER"), ausUmgebung("XDG_DATA_HOME"), heimordner(),
            eigenerProgrammordner()};
}

std::string programmordnerpfad(const Programmlage& lage) {
    return mitTrenner(logischerPfad(nativerPfad(nativerProgrammordner(lage))));
}

std::optional<std::string> programmordner(const Programmlage& lage) {
    const std::string ordner = programmordnerpfad(lage);
    if (!LinuxDateisystem().ordnerAnlegen(ordner)) return std::nullopt;
    return ordner;
}

std::string mitgelieferteDatei(const std::string& programmordner, const std::string& name,
                               const Programmlage& lage) {
    LinuxDateisystem dateien;
    for (const std::string& ordner :
         {programmordner, logischerPfad(elternordner(lage.programmdateiOrdner) + "/share/wendel")}) {
        const std::string pfad = mitTrenner(ordner) + name;
        if (dateien.existiert(pfad)) return pfad;
    }
    return {};
}

std::string konfigurationsordner() {
    return xdgOrdner(ausUmgebung("XDG_CONFIG_HOME"), heimordner(), "/.config");
}

}  // namespace wendel
