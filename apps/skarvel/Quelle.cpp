#include "Quelle.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "desktop/Dateideskriptor.h"
#include "desktop/Pfade.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::skarvel {
namespace {

constexpr std::size_t kStueck = 128 * 1024;
constexpr int kTaktMs = 100, kEndetaktMs = 10;
constexpr std::chrono::seconds kNachlauf{2};
constexpr std::chrono::hours kStille{1}, kLaengstens{12};
constexpr std::size_t kFehlertext = 4096;
constexpr int kEndefristS = 3;

[[noreturn]] void misslungen(const std::string& text) {
    throw Fehler(fehlernummer::kEigener, "skarvel", text);
}

// ---- files ----

struct Gzende {
    void operator()(gzFile_s* datei) const { gzclose_r(datei); }
};

bool istXmltv(const std::filesystem::path& pfad) {
    std::string name = LCase(pfad.filename().string());
    if (name.ends_with(".gz")) name.resize(name.size() - 3);
    return name.ends_with(".xml") || name.ends_with(".xmltv");
}

[[noreturn]] void nichtLesbar(const std::string& pfad, int fehler) {
    const std::string warum = fehler == ENOENT || fehler == ENOTDIR ? "Es gibt sie nicht"
                              : fehler == EACCES || fehler == EPERM ? "Es fehlt die Berechtigung"
                              : fehler == ENAMETOOLONG              ? "Der Name ist zu lang"
                              : fehler == EIO                       ? "Der Datenträger antwortet nicht"
                                                                    : "Fehler " + std::to_string(fehler);
    misslungen("Die Quelle \"" + pfad + "\" kann nicht gelesen werden: " + warum + ".");
}

std::vector<std::string> dateienUnter(const std::string& pfad) {
    std::error_code fehler;
    const auto art = std::filesystem::status(pfad, fehler).type();
    if (art == std::filesystem::file_type::regular) return {pfad};
    if (art == std::filesystem::file_type::none || art == std::filesystem::file_type::not_found)
        nichtLesbar(pfad, fehler ? fehler.value() : ENOENT);
    // A pipe without a writer would be waited for without end.
    if (art != std::filesystem::file_type::directory)
        misslungen("Die Quelle \"" + pfad + "\" ist weder eine Datei noch ein Ordner.");
    std::vector<std::string> dateien;
    for (const auto& eintrag : std::filesystem::directory_iterator(pfad, fehler)) {
        std::error_code egal;  // what cannot be looked at is none of them
        if (eintrag.is_regular_file(egal) && istXmltv(eintrag.path()))
            dateien.push_back(eintrag.path().string());
    }
    if (fehler) nichtLesbar(pfad, fehler.value());
    if (dateien.empty()) misslungen("Im Ordner \"" + pfad + "\" sind keine XMLTV-Dateien (*.xml, *.xmltv).");
    std::sort(dateien.begin(), dateien.end());
    return dateien;
}

double groesseVon(const std::string& datei) {
    std::error_code fehler;
    const auto groesse = std::filesystem::file_size(datei, fehler);
    return fehler ? 0 : static_cast<double>(groesse);
}

// `fertig` gets the bytes of the file that are read, as they lie on the disk.
template <class Fertig>
void liesDatei(const std::string& pfad, XmltvEmpfaenger& empfaenger, std::vector<char>& stueck,
               Fertig fertig) {
    const std::string name(letzterTeil(pfad));
    errno = ENOMEM;  // what the library leaves when it is not the file
    const std::unique_ptr<gzFile_s, Gzende> datei(gzopen(pfad.c_str(), "rbe"));
    if (!datei) nichtLesbar(pfad, errno);
    XmltvLeser leser(name, empfaenger);
    for (;;) {
        const int gelesen = gzread(datei.get(), stueck.data(), static_cast<unsigned>(stueck.size()));
        int zustand = Z_OK;
        gzerror(datei.get(), &zustand);
        // An end in the middle of compressed data is told behind the last piece only.
        if (gelesen < 0 || (zustand != Z_OK && zustand != Z_STREAM_END))
            misslungen("Die Datei \"" + pfad + "\" ist beschädigt oder unvollständig.");
        if (gelesen == 0) break;
        leser.lies(std::string_view(stueck.data(), static_cast<std::size_t>(gelesen)));
        fertig(static_cast<double>(gzoffset(datei.get())));
    }
    leser.ende();
}

// ---- a command ----

struct Rohr {
    Dateideskriptor lesen, schreiben;
    Rohr() {
        int enden[2];
        if (::pipe2(enden, O_CLOEXEC) != 0) misslungen("Es kann kein Befehl gestartet werden.");
        lesen = Dateideskriptor(enden[0]);
        schreiben = Dateideskriptor(enden[1]);
    }
};

// Keeps the signals that a guard waits for from this thread and from what it forks.
struct Signalsperre {
    sigset_t signale, vorher;
    Signalsperre() {
        ::sigemptyset(&signale);
        for (const int signal : {SIGTERM, SIGALRM, SIGCHLD})
            ::sigaddset(&signale, signal);
        ::pthread_sigmask(SIG_BLOCK, &signale, &vorher);
    }
    ~Signalsperre() { ::pthread_sigmask(SIG_SETMASK, &vorher, nullptr); }
    Signalsperre(const Signalsperre&) = delete;
    Signalsperre& operator=(const Signalsperre&) = delete;

    // In a new process, which is without the handlers of the old one.
    void loese() const {
        ::signal(SIGTERM, SIG_DFL);
        ::pthread_sigmask(SIG_SETMASK, &vorher, nullptr);
    }
};

// A shell in a process group of its own, which ends with this object, and with this process even when that is
// killed: the system tells one process of that, and a shell does not pass it on, so the group's first process
// is a guard that does.
class Kindprozess {
  public:
    explicit Kindprozess(const std::string& befehl) {
        Rohr ausgabe, fehlerausgabe;
        const pid_t eltern = ::getpid();
        const Signalsperre sperre;
        kind_ = ::fork();
        if (kind_ == 0)
            werdeWaechter(eltern, sperre, befehl.c_str(), ausgabe.schreiben.get(),
                          fehlerausgabe.schreiben.get());
        if (kind_ < 0) misslungen("Der Befehl \"" + befehl + "\" kann nicht gestartet werden.");
        ::setpgid(kind_, kind_);
        ausgabe_ = std::move(ausgabe.lesen);
        fehler_ = std::move(fehlerausgabe.lesen);
    }
    ~Kindprozess() {
        if (kind_ <= 0) return;
        ::kill(kind_, SIGTERM);
        for (int gewartet = 0; gewartet < (kEndefristS + 1) * 1000; gewartet += kEndetaktMs) {
            if (::waitpid(kind_, nullptr, WNOHANG) != 0) return;
            ::poll(nullptr, 0, kEndetaktMs);
        }
        ::kill(-kind_, SIGKILL);
        ::waitpid(kind_, nullptr, 0);
    }
    Kindprozess(const Kindprozess&) = delete;
    Kindprozess& operator=(const Kindprozess&) = delete;

    int ausgabe() const { return ausgabe_.get(); }
    int fehlerausgabe() const { return fehler_.get(); }

    // As the shell tells it: 0 is success, 128 and more a signal. Nothing while it runs; not to be asked
    // again after that.
    std::optional<int> ende() {
        int zustand = 0;
        if (::waitpid(kind_, &zustand, WNOHANG) == 0) return std::nullopt;
        kind_ = 0;
        return endecode(zustand);
    }

  private:
    static int endecode(int zustand) {
        return WIFEXITED(zustand) ? WEXITSTATUS(zustand) : 128 + WTERMSIG(zustand);
    }
    // From the fork on only calls that are safe while other threads hold locks.
    [[noreturn]] static void werdeWaechter(pid_t eltern, const Signalsperre& sperre, const char* befehl,
                                           int ausgabe, int fehlerausgabe) {
        ::setpgid(0, 0);
        ::signal(SIGCHLD, SIG_DFL);
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);
        const pid_t shell = ::getppid() == eltern ? ::fork() : -1;
        if (shell == 0) {
            sperre.loese();
            werdeShell(befehl, ausgabe, fehlerausgabe);
        }
        if (shell < 0) ::_exit(127);
        // The pipes end, and locks go, with those who use them.
        ::close_range(0, ~0U, 0);
        bewache(shell, sperre.signale);
    }
    // Ends as the shell does, and with it; asked to end, when all of the group have, which have a while for
    // that. What the shell has left behind is a child of the guard.
    [[noreturn]] static void bewache(pid_t shell, const sigset_t& signale) {
        int zustand = 0;
        bool lebt = true, beenden = false;
        for (;;) {
            const int signal = ::sigwaitinfo(&signale, nullptr);
            if (signal == SIGTERM && !std::exchange(beenden, true)) {
                ::alarm(kEndefristS);
                ::kill(shell, SIGTERM);  // it may have left the group
                ::kill(0, SIGTERM);
            }
            if (signal == SIGALRM) {
                if (lebt) ::kill(shell, SIGKILL);
                ::kill(0, SIGKILL);
            }
            int dessen = 0;
            for (pid_t beendeter = 0; (beendeter = ::waitpid(-1, &dessen, WNOHANG)) > 0;)
                if (beendeter == shell) {
                    zustand = dessen;
                    lebt = false;
                }
            const bool gruppeLebt = ::waitpid(0, nullptr, WNOHANG) == 0;
            if (!lebt && !(beenden && gruppeLebt)) ::_exit(endecode(zustand));
        }
    }
    [[noreturn]] static void werdeShell(const char* befehl, int ausgabe, int fehlerausgabe) {
        const int nichts = ::open("/dev/null", O_RDONLY);
        ::dup2(nichts, STDIN_FILENO);
        ::dup2(ausgabe, STDOUT_FILENO);
        ::dup2(fehlerausgabe, STDERR_FILENO);
        ::execl("/bin/sh", "sh", "-c", befehl, static_cast<char*>(nullptr));
        ::_exit(127);
    }

    pid_t kind_ = 0;
    Dateideskriptor ausgabe_, fehler_;
};

std::string letzteZeile(const std::string& text) {
    const std::string bereinigt = trimAlleLeerraeume(text);
    const std::size_t ende = bereinigt.find_last_of('\n');
    const std::string zeile = ende == std::string::npos ? bereinigt : bereinigt.substr(ende + 1);
    return Left(istUtf8(zeile) ? zeile : ausWindows1252(zeile), 200);
}

// One piece from the pipe; 0 at its end, -1 when nothing came within the beat.
ssize_t stueckAus(int rohr, std::vector<char>& stueck) {
    const ssize_t gelesen = ::read(rohr, stueck.data(), stueck.size());
    return gelesen < 0 && (errno == EINTR || errno == EAGAIN) ? -1 : std::max<ssize_t>(gelesen, 0);
}

struct Befehlsende {
    int code = 0;
    std::string fehlertext;  // the end of the error output
};

// The output to the parser, until the command has ended. What it has left running may hold its outputs open:
// that is not waited for.
Befehlsende liesAusgabe(Kindprozess& kind, XmltvLeser& leser, const Lesefortschritt& fortschritt) {
    const auto beginn = std::chrono::steady_clock::now();
    auto zuletzt = beginn;
    std::vector<char> stueck(kStueck);
    std::string fehlertext;
    std::array<pollfd, 2> rohre{{{kind.ausgabe(), POLLIN, 0}, {kind.fehlerausgabe(), POLLIN, 0}}};
    for (std::optional<int> code;;) {
        if (!code) code = kind.ende();
        const int bereit = ::poll(rohre.data(), rohre.size(), rohre[0].fd >= 0 ? kTaktMs : kEndetaktMs);
        const auto jetzt = std::chrono::steady_clock::now();
        if (bereit > 0) zuletzt = jetzt;
        for (pollfd& rohr : rohre) {
            if (bereit <= 0 || rohr.revents == 0) continue;
            const ssize_t gelesen = stueckAus(rohr.fd, stueck);
            const std::string_view text(stueck.data(),
                                        static_cast<std::size_t>(std::max<ssize_t>(gelesen, 0)));
            if (gelesen == 0)
                rohr.fd = -1;
            else if (&rohr == &rohre[0])
                leser.lies(text);
            else
                fehlertext += text;
            if (fehlertext.size() > 2 * kFehlertext) fehlertext.erase(0, fehlertext.size() - kFehlertext);
        }
        if (code && (rohre[0].fd < 0 || jetzt - zuletzt >= kNachlauf)) return {*code, fehlertext};
        if (jetzt - zuletzt >= kStille) misslungen("Der Befehl hat eine Stunde lang nichts ausgegeben.");
        if (jetzt - beginn >= kLaengstens) misslungen("Der Befehl ist nach zwölf Stunden nicht fertig.");
        fortschritt(0);
    }
}

}  // namespace

void liesDateien(const std::string& pfad, XmltvEmpfaenger& empfaenger, const Lesefortschritt& fortschritt) {
    const std::vector<std::string> dateien = dateienUnter(pfad);
    double alle = 1, vorher = 0;
    for (const std::string& datei : dateien)
        alle += groesseVon(datei);
    std::vector<char> stueck(kStueck);
    for (const std::string& datei : dateien) {
        liesDatei(datei, empfaenger, stueck,
                  [&](double gelesen) { fortschritt(std::min(1.0, (vorher + gelesen) / alle)); });
        vorher += groesseVon(datei);
    }
}

void liesBefehl(const std::string& befehl, XmltvEmpfaenger& empfaenger, const Lesefortschritt& fortschritt) {
    Kindprozess kind(befehl);
    XmltvLeser leser("Ausgabe des Befehls", empfaenger);
    const auto [code, fehlertext] = liesAusgabe(kind, leser, fortschritt);
    if (code != 0) {
        const std::string zeile = letzteZeile(fehlertext);
        misslungen("Der Befehl \"" + befehl + "\" ist mit dem Code " + std::to_string(code) + " gescheitert" +
                   (zeile.empty() ? "." : ": " + zeile));
    }
    leser.ende();
}

}  // namespace wendel::skarvel
