#include "desktop/LinuxDateistarter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include "desktop/Abloesung.h"
#include "desktop/Dateideskriptor.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/LinuxProzesse.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "platform/Text.h"

namespace wendel {

namespace {

// Results of shell execution.
constexpr int kGestartet = 33;
constexpr int kSonstiges = 0;
constexpr int kDateiFehlt = 2;
constexpr int kOrdnerFehlt = 3;
constexpr int kKeinZugriff = 5;
constexpr int kKeinSpeicher = 8;
constexpr int kFalschesFormat = 11;
constexpr int kKeineZuordnung = 31;

constexpr std::string_view kExe = ".exe";
constexpr std::chrono::milliseconds kOeffnerfrist(1000);

int codeAus(int fehler) {
    switch (fehler) {
        case 0: return kGestartet;
        case ENOENT: return kDateiFehlt;
        case ENOTDIR: return kOrdnerFehlt;
        case EACCES:
        case EPERM: return kKeinZugriff;
        case ENOMEM: return kKeinSpeicher;
        case ENOEXEC:
        case ELIBBAD: return kFalschesFormat;
        default: return kSonstiges;
    }
}

bool istOrdner(const std::string& nativ) {
    struct stat angaben {};
    return ::stat(nativ.c_str(), &angaben) == 0 && S_ISDIR(angaben.st_mode);
}

bool endetAufExe(std::string_view name) {
    return name.size() > kExe.size() && gleichOhneGrossKlein(name.substr(name.size() - kExe.size()), kExe);
}

std::string ohneExe(const std::string& name) {
    return endetAufExe(name) ? name.substr(0, name.size() - kExe.size()) : name;
}

// "https://...": nothing on a disk.
bool istAdresse(std::string_view text) {
    const std::size_t schema = text.find("://");
    return schema != std::string_view::npos && schema > 1 &&
           text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ+-.") == schema;
}

// True for the first bytes of something that is meant to run: ELF, a script with its interpreter, a Windows
// program.
bool istProgramminhalt(const std::string& nativ) {
    const Dateideskriptor fd(::open(nativ.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    std::array<char, 4> anfang{};
    const ssize_t n = fd ? ::read(fd.get(), anfang.data(), anfang.size()) : 0;
    const std::string_view text(anfang.data(), n > 0 ? static_cast<std::size_t>(n) : 0);
    return text ==
               "\x7f"
               "ELF" ||
           text.starts_with("#!") || text.starts_with("MZ");
}

bool hatEndung(const std::string& nativ) { return letzterTeil(nativ).find('.') != std::string_view::npos; }

int oeffne(const std::string& dokument, const std::string& ordner) {
    const std::string oeffner = imSuchpfad("xdg-open");
    if (oeffner.empty()) return kKeineZuordnung;
    const Abloesungsergebnis start = starteAbgeloest({oeffner, dokument}, ordner, kOeffnerfrist);
    if (start.fehler != 0) return codeAus(start.fehler);
    // Still running: it shows the document itself.
    switch (start.exitstatus.value_or(0)) {
        case 0: return kGestartet;
        case 2: return kDateiFehlt;
        case 3:  // no application was found; 4: the desktop's own opener failed, which for a document that is
        case 4: return kKeineZuordnung;  // there and readable has the same reason
        case 5: return kKeinZugriff;
        default: return kSonstiges;
    }
}

int oeffneDokument(const std::string& nativ, const std::string& ordner) {
    return ::access(nativ.c_str(), R_OK) == 0 ? oeffne(nativ, ordner) : kKeinZugriff;
}

int starteProgramm(const std::string& nativ, const std::string& parameter, const std::string& ordner) {
    std::vector<std::string> argumente{nativ};
    for (std::string& argument : argumenteAus(parameter))
        argumente.push_back(std::move(argument));
    const int fehler = starteAbgeloest(argumente, ordner).fehler;
    // On a file system that gives every file the x bit a document looks like a program.
    if (fehler == ENOEXEC && !endetAufExe(nativ) && !istProgramminhalt(nativ)) {
        const int geoeffnet = oeffneDokument(nativ, ordner);
        return geoeffnet == kKeineZuordnung ? kFalschesFormat : geoeffnet;
    }
    return codeAus(fehler);
}

// In the named place, or for a bare name in PATH.
std::string sucheDatei(const std::string& nativ) {
    if (const std::string datei = vorhandeneDatei(nativ); !datei.empty()) return absoluterPfad(datei);
    return nativ.find('/') == std::string::npos ? imSuchpfad(nativ) : std::string();
}

std::string genannteDatei(const std::string& nativ) {
    const std::string gefunden = sucheDatei(nativ);
    return gefunden.empty() && endetAufExe(nativ) ? sucheDatei(ohneExe(nativ)) : gefunden;
}

}  // namespace

std::vector<std::string> argumenteAus(std::string_view parameter) {
    std::vector<std::string> argumente;
    std::string wort;
    bool imWort = false;
    bool inQuotes = false;
    for (std::size_t i = 0; i < parameter.size(); ++i) {
        const char c = parameter[i];
        if (c == '"') {
            const bool verdoppelt = inQuotes && i + 1 < parameter.size() && parameter[i + 1] == '"';
            if (verdoppelt) {
                wort += c;
                ++i;
            } else {
                inQuotes = !inQuotes;
            }
            imWort = true;
        } else if ((c == ' ' || c == '\t') && !inQuotes) {
            if (imWort) argumente.push_back(std::exchange(wort, {}));
            imWort = false;
        } else {
            wort += c;
            imWort = true;
        }
    }
    if (imWort) argumente.push_back(std::move(wort));
    return argumente;
}

LinuxDateistarter::LinuxDateistarter(std::string programmdateiOrdner)
    : eigenerOrdner_(programmdateiOrdner.empty() ? eigenerProgrammordner() : std::move(programmdateiOrdner)) {
}

std::string LinuxDateistarter::eigenesSuiteprogramm(const std::string& nativ) const {
    const std::string kurzname = LCase(ohneExe(std::string(letzterTeil(nativ))));
    const bool gemeint = endetAufExe(nativ) && istSuiteprogramm(kurzname);
    return gemeint ? vorhandeneDatei(eigenerOrdner_ + "/" + kurzname) : std::string();
}

std::string LinuxDateistarter::gemeinteDatei(const std::string& datei) const {
    const std::string nativ = nativerPfad(datei);
    const std::string gefunden = genannteDatei(nativ);
    return gefunden.empty() ? eigenesSuiteprogramm(nativ) : gefunden;
}

int LinuxDateistarter::ausfuehren(const std::string& datei, const std::string& parameter,
                                  const std::string& ordner, int /*fensterstil*/) {
    if ((datei + parameter + ordner).find('\0') != std::string::npos) return kDateiFehlt;
    if (istAdresse(datei)) return oeffne(datei, {});

    const std::string nativ = nativerPfad(datei);
    std::string arbeitsordner = nativerPfad(ordner);
    std::string gefunden = genannteDatei(nativ);
    if (gefunden.empty()) {
        gefunden = eigenesSuiteprogramm(nativ);
        // The folder that was named goes with the file that was named.
        if (!gefunden.empty() && !istOrdner(arbeitsordner)) arbeitsordner = eigenerOrdner_;
    }

    if (!arbeitsordner.empty() && !istOrdner(arbeitsordner)) return kOrdnerFehlt;
    if (gefunden.empty()) {
        if (istOrdner(nativ)) return oeffneDokument(absoluterPfad(nativ), arbeitsordner);
        return istOrdner(elternordner(nativ)) ? kDateiFehlt : kOrdnerFehlt;
    }
    if (::access(gefunden.c_str(), X_OK) == 0) return starteProgramm(gefunden, parameter, arbeitsordner);
    const bool sollteLaufen = endetAufExe(nativ) || (!hatEndung(gefunden) && istProgramminhalt(gefunden));
    return sollteLaufen ? kKeinZugriff : oeffneDokument(gefunden, arbeitsordner);
}

}  // namespace wendel
