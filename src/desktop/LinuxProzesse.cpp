#include "desktop/LinuxProzesse.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <optional>
#include <utility>

#include "desktop/Dateideskriptor.h"
#include "desktop/Pfade.h"
#include "platform/Text.h"

namespace wendel {

namespace {

using Zeitpunkt = std::chrono::steady_clock::time_point;

// Event loops fire long timers up to a twentieth early; one that came before the deadline would do nothing.
int weckzeitMs(std::chrono::milliseconds frist) { return static_cast<int>(frist.count() * 16 / 15 + 1); }

constexpr std::array<std::string_view, 7> kSuite{"fennow",  "skarvel",  "drumlet", "wendel",
                                                 "quillon", "marrowby", "tessaly"};

// Programs whose process stands for another file. `ohneDatei` are the options after which no file follows.
struct Interpreter {
    std::string_view name;  // without a version number
    std::string_view ohneDatei;
};
constexpr Interpreter kInterpreter[] = {
    {"sh", "cs"},      {"bash", "cs"},   {"dash", "cs"},         {"zsh", "cs"},  {"ksh", "cs"},
    {"busybox", "cs"}, {"python", "cm"}, {"perl", "eE"},         {"ruby", "e"},  {"node", "ep"},
    {"lua", "e"},      {"tclsh", ""},    {"wish", ""},           {"php", "r"},   {"mono", ""},
    {"mono-sgen", ""}, {"wine", ""},     {"wine-preloader", ""}, {"wine64", ""}, {"wine64-preloader", ""},
};
constexpr std::string_view kLader[] = {"ld-linux", "ld-musl", "qemu-"};  // beginnings of names

const Interpreter* interpreterVon(std::string_view name) {
    static constexpr Interpreter kFremderLader{"", ""};
    for (const std::string_view anfang : kLader)
        if (name.starts_with(anfang)) return &kFremderLader;
    const std::string_view ohneVersion = name.substr(0, name.find_last_not_of("0123456789.") + 1);
    for (const Interpreter& interpreter : kInterpreter)
        if (interpreter.name == name || interpreter.name == ohneVersion) return &interpreter;
    return nullptr;
}

// What the interpreter runs, "" when that is no file.
std::string ausgefuehrteDatei(const Interpreter& interpreter, const std::vector<std::string>& argumente) {
    if (argumente.empty()) return {};
    // A foreign loader shows the program under its own system's name.
    if (argumente[0].find('\\') != std::string::npos) return argumente[0];
    for (std::size_t i = 1; i < argumente.size(); ++i) {
        const std::string& argument = argumente[i];
        if (!argument.starts_with('-')) return argument;
        const bool lang = argument.starts_with("--");
        if (!lang && argument.find_first_of(interpreter.ohneDatei) != std::string::npos) return {};
    }
    return {};
}

std::string alsSuitename(std::string pfad) {
    return istSuiteprogramm(letzterTeil(nativerPfad(pfad))) ? pfad + ".exe" : pfad;
}

std::string procdatei(std::uint32_t id, const char* name) {
    return "/proc/" + std::to_string(id) + "/" + name;
}

std::string leseProcdatei(std::uint32_t id, const char* name) {
    const Dateideskriptor fd(::open(procdatei(id, name).c_str(), O_RDONLY | O_CLOEXEC));
    std::string inhalt;
    std::array<char, 4096> stueck;
    ssize_t n = 0;
    while (fd && (n = ::read(fd.get(), stueck.data(), stueck.size())) > 0)
        inhalt.append(stueck.data(), static_cast<std::size_t>(n));
    return inhalt;
}

// False for zombies, too: they have ended and only wait for their parent to look.
bool laeuft(std::uint32_t id) {
    const std::string stat = leseProcdatei(id, "stat");
    const std::size_t name = stat.rfind(')');  // the name in brackets may hold anything
    return name != std::string::npos && name + 2 < stat.size() && stat[name + 2] != 'Z' &&
           stat[name + 2] != 'X';
}

// A program whose file was replaced while it runs keeps its name.
std::string exeVon(std::uint32_t id) {
    std::array<char, PATH_MAX> puffer;
    const ssize_t n = ::readlink(procdatei(id, "exe").c_str(), puffer.data(), puffer.size());
    if (n <= 0) return {};
    std::string exe(puffer.data(), static_cast<std::size_t>(n));
    constexpr std::string_view kGeloescht = " (deleted)";
    if (exe.ends_with(kGeloescht) && ::access(exe.c_str(), F_OK) != 0)
        exe.resize(exe.size() - kGeloescht.size());
    return exe;
}

std::vector<std::string> argumenteVon(std::uint32_t id) {
    std::vector<std::string> argumente;
    std::string_view rest;
    const std::string zeile = leseProcdatei(id, "cmdline");
    for (rest = zeile; !rest.empty();) {
        const std::string_view eins = rest.substr(0, rest.find('\0'));
        argumente.emplace_back(eins);
        rest.remove_prefix(std::min(rest.size(), eins.size() + 1));
    }
    return argumente;
}

// By number: the C library's own declarations of these two don't link from C++ before version 2.37.
int prozessdeskriptor(std::uint32_t id) {
    return static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(id), 0));
}
bool sende(int prozess, int signal) {
    return ::syscall(SYS_pidfd_send_signal, prozess, signal, nullptr, 0) == 0;
}

bool istEigener(std::uint32_t id) {
    struct stat angaben {};
    const std::string ordner = "/proc/" + std::to_string(id);
    return ::stat(ordner.c_str(), &angaben) == 0 && angaben.st_uid == ::geteuid();
}

std::optional<std::uint32_t> alsId(std::string_view name) {
    std::uint32_t id = 0;
    const auto [ende, fehler] = std::from_chars(name.data(), name.data() + name.size(), id);
    if (fehler != std::errc() || ende != name.data() + name.size()) return std::nullopt;
    return id;
}

}  // namespace

bool istSuiteprogramm(std::string_view name) {
    return std::any_of(kSuite.begin(), kSuite.end(),
                       [&](std::string_view eines) { return gleichOhneGrossKlein(eines, name); });
}

std::string prozesspfad(std::string_view exe, const std::vector<std::string>& argumente) {
    std::string datei(exe);
    if (const Interpreter* interpreter = interpreterVon(letzterTeil(exe)))
        if (std::string gemeint = ausgefuehrteDatei(*interpreter, argumente); !gemeint.empty())
            datei = std::move(gemeint);
    return alsSuitename(logischerPfad(datei));
}

struct LinuxProzesse::Vormerkung {
    Dateideskriptor prozess;
    Zeitpunkt faellig;
};

LinuxProzesse::LinuxProzesse(Spaeter spaeter, std::chrono::milliseconds gnadenfrist)
    : spaeter_(std::move(spaeter)),
      gnadenfrist_(gnadenfrist),
      vorgemerkt_(std::make_shared<std::vector<Vormerkung>>()) {}

LinuxProzesse::~LinuxProzesse() = default;

std::vector<Prozess> LinuxProzesse::liste() {
    beendeFaellige(*vorgemerkt_);
    std::vector<Prozess> prozesse;
    const std::unique_ptr<DIR, int (*)(DIR*)> proc(::opendir("/proc"), &::closedir);
    if (!proc) return prozesse;
    while (const dirent* eintrag = ::readdir(proc.get())) {
        const auto id = alsId(eintrag->d_name);
        if (!id) continue;
        const std::string exe = exeVon(*id);
        if (exe.empty() || !laeuft(*id)) continue;
        const bool fremd = interpreterVon(letzterTeil(exe)) != nullptr;
        prozesse.push_back({prozesspfad(exe, fremd ? argumenteVon(*id) : std::vector<std::string>()), *id});
    }
    return prozesse;
}

bool LinuxProzesse::beenden(std::uint32_t id) {
    beendeFaellige(*vorgemerkt_);
    if (id <= 1 || id > INT_MAX || id == static_cast<std::uint32_t>(::getpid())) return false;
    // Held before it is looked at: should it end now and its id be given anew, the signal meets nobody.
    Dateideskriptor prozess(prozessdeskriptor(id));
    if (!prozess || !istEigener(id) || !laeuft(id)) return false;
    if (!sende(prozess.get(), SIGTERM)) return false;
    vorgemerkt_->push_back({std::move(prozess), std::chrono::steady_clock::now() + gnadenfrist_});
    if (spaeter_)
        spaeter_(weckzeitMs(gnadenfrist_), [liste = std::weak_ptr(vorgemerkt_)] {
            if (const auto vorgemerkt = liste.lock()) beendeFaellige(*vorgemerkt);
        });
    return true;
}

void LinuxProzesse::beendeFaellige(std::vector<Vormerkung>& vorgemerkt) {
    const Zeitpunkt jetzt = std::chrono::steady_clock::now();
    std::erase_if(vorgemerkt, [&](const Vormerkung& v) {
        if (jetzt < v.faellig) return false;
        // Fails when the process has ended by itself, which is what was wanted.
        sende(v.prozess.get(), SIGKILL);
        return true;
    });
}

}  // namespace wendel
