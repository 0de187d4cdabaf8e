#include "desktop/Autostarteintrag.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/LinuxDateistarter.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/Pfade.h"
#include "platform/Text.h"

namespace wendel {

namespace {

constexpr std::string_view kExec = "Exec=";
constexpr std::string_view kEnv = "env";  // sets variables, then starts the program behind them
constexpr std::string_view kZeile = "X-Wendel-Run=";
constexpr std::string_view kVersteckt = "Hidden=true";
constexpr std::string_view kAbgeschaltet = "X-GNOME-Autostart-enabled=false";

// One argument of the Exec key: in quotes, where the rules reserve some characters, and "%" doubled.
std::string execArgument(std::string_view argument) {
    std::string wert = "\"";
    for (const char c : argument) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') wert += '\\';
        wert += c;
        if (c == '%') wert += '%';
    }
    return wert + '"';
}

// The other way round: cuts the first argument off the line.
std::string schneideArgument(std::string_view& exec) {
    const bool inQuotes = exec.starts_with('"');
    std::string argument;
    std::size_t i = inQuotes ? 1 : 0;
    for (; i < exec.size() && exec[i] != (inQuotes ? '"' : ' '); ++i) {
        const bool maskiertesZeichen = (exec[i] == '\\' && inQuotes) || exec[i] == '%';
        if (maskiertesZeichen && i + 1 < exec.size()) ++i;
        argument += exec[i];
    }
    exec.remove_prefix(std::min(exec.size(), exec.find_first_not_of(' ', i + (inQuotes ? 1 : 0))));
    return argument;
}

std::string programmAus(std::string_view exec) {
    std::string argument = schneideArgument(exec);
    if (argument != kEnv) return argument;
    do {
        argument = schneideArgument(exec);
    } while (argument.find('=') != std::string::npos);
    return argument;
}

// A folder of the suite on a disk of another system: its programs look executable, and can't run here.
bool istFremdesProgramm(const std::string& datei) {
    char anfang[2] = {};
    std::ifstream(datei, std::ios::binary).read(anfang, sizeof anfang);
    return anfang[0] == 'M' && anfang[1] == 'Z';
}

// "x.exe", else "x", as programs are started; "" when neither can run.
std::string starterdatei(const std::string& genannt) {
    constexpr std::string_view kExe = ".exe";
    std::string kurz = genannt;
    if (kurz.ends_with(kExe)) kurz.resize(kurz.size() - kExe.size());
    for (const std::string& name : {genannt, kurz}) {
        std::string datei = vorhandeneDatei(name);
        if (!datei.empty() && ::access(datei.c_str(), X_OK) == 0 && !istFremdesProgramm(datei)) return datei;
    }
    return {};
}

// The launcher that the line names, where the machine has it; else the program itself, which then has to wait
// for the desktop as the launcher would have made it.
std::string execZeile(const std::string& zeile, const std::string& eigenesProgramm,
                      const std::string& programmordner) {
    std::vector<std::string> argumente = argumenteAus(zeile);
    std::string starter = argumente.empty() ? "" : starterdatei(nativerPfad(argumente.front()));
    if (starter.empty()) {
        starter = eigenesProgramm;
        argumente = {eigenesProgramm, "/pcstart"};
    }
    argumente.front() = starter;
    if (!programmordner.empty())
        argumente.insert(argumente.begin(), {std::string(kEnv), "WENDEL_ORDNER=" + programmordner});
    for (std::string& argument : argumente)
        argument = execArgument(argument);
    return Join(argumente, " ");
}

}  // namespace

Autostarteintrag::Autostarteintrag(std::string datei, std::string eigenesProgramm, std::string programmordner)
    : datei_(std::move(datei)),
      eigenesProgramm_(std::move(eigenesProgramm)),
      programmordner_(std::move(programmordner)) {}

bool Autostarteintrag::setze(const std::string& zeile) {
    LinuxDateisystem dateien;
    const std::string inhalt =
        "[Desktop Entry]\nType=Application\nVersion=1.0\nName=Lomrick\nComment=Erinnert an Sendungen und "
        "Termine\nIcon=wendel\nExec=" +
        maskiert(execZeile(zeile, eigenesProgramm_, programmordner_)) + "\n" + std::string(kZeile) +
        maskiert(zeile) + "\n";
    return dateien.ordnerAnlegen(logischerPfad(elternordner(datei_))) && dateien.ersetzen(datei_, inhalt);
}

std::optional<std::string> Autostarteintrag::zeile() const {
    const auto inhalt = LinuxDateisystem().lesen(datei_);
    std::optional<std::string> gefunden;
    for (const std::string& zeile : Split(inhalt.value_or(""), "\n")) {
        if (zeile == kVersteckt || zeile == kAbgeschaltet) return std::nullopt;
        if (zeile.starts_with(kZeile)) gefunden = demaskiert(std::string_view(zeile).substr(kZeile.size()));
    }
    return gefunden;
}

std::optional<std::string> Autostarteintrag::programm() const {
    const auto inhalt = LinuxDateisystem().lesen(datei_);
    for (const std::string& zeile : Split(inhalt.value_or(""), "\n")) {
        if (!zeile.starts_with(kExec)) continue;
        if (const auto exec = demaskiert(std::string_view(zeile).substr(kExec.size())))
            return programmAus(*exec);
    }
    return std::nullopt;
}

bool Autostarteintrag::loesche() {
    LinuxDateisystem dateien;
    return dateien.existiert(datei_) && dateien.loeschen(datei_);
}

}  // namespace wendel
