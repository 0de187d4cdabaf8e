#include "desktop/Programmzeile.h"

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <utility>
#include <vector>

#include "desktop/Abloesung.h"
#include "desktop/LinuxDateistarter.h"
#include "desktop/LinuxDateisystem.h"

namespace wendel {
namespace {

bool istDatei(const std::string& nativ) {
    struct stat angaben {};
    return ::stat(nativ.c_str(), &angaben) == 0 && S_ISREG(angaben.st_mode);
}

// With a "/" always, so that no later search finds another; "" when there is none.
std::string programmdatei(const std::string& wort) {
    if (wort.find_first_of("/\\") == std::string::npos)
        if (std::string gefunden = imSuchpfad(wort); !gefunden.empty()) return gefunden;
    std::string datei = istDatei(wort) ? wort : vorhandeneDatei(wort);
    if (!datei.empty() && datei.find('/') == std::string::npos) datei.insert(0, "./");
    return datei;
}

// The program's file and its arguments; empty when no file is meant.
std::vector<std::string> aufruf(const std::string& zeile) {
    std::vector<std::string> argumente = argumenteAus(zeile);
    if (argumente.empty()) return {};
    if (std::string datei = programmdatei(argumente[0]); !datei.empty()) {
        argumente[0] = std::move(datei);
        return argumente;
    }
    const std::size_t anfang = zeile.find_first_not_of(" \t");
    if (zeile[anfang] == '"') return {};
    std::size_t ende = zeile.find(' ', anfang);
    while (ende != std::string::npos && ende - anfang < PATH_MAX) {
        ende = zeile.find(' ', ende + 1);
        std::string datei = programmdatei(zeile.substr(anfang, ende - anfang));
        if (datei.empty()) continue;
        argumente = argumenteAus(std::string_view(zeile).substr(std::min(ende, zeile.size())));
        argumente.insert(argumente.begin(), std::move(datei));
        return argumente;
    }
    return {};
}

}  // namespace

std::string programmDerZeile(const std::string& zeile) {
    if (zeile.find('\0') != std::string::npos) return {};
    const std::vector<std::string> argumente = aufruf(zeile);
    return argumente.empty() ? std::string() : argumente.front();
}

bool starteProgrammzeile(const std::string& zeile) {
    if (zeile.find('\0') != std::string::npos) return false;
    const std::vector<std::string> argumente = aufruf(zeile);
    return !argumente.empty() && starteAbgeloest(argumente, {}).fehler == 0;
}

}  // namespace wendel
