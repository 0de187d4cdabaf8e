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
#include <csignal>
#include <filesystem>
#include <memory>
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
constexpr int kStilleMs = 60 * 60 * 1000;
constexpr std::size_t kFehlertext = 4096;
constexpr int kEndeabwartenMs = 3000;

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

// A shell in a process group of its own, which ends with this object, and with this process even when that is
// killed: the system tells one process of that, and a shell does not pass it on, so the group's first process
// is a guard that does.
class Kindprozess {
  public:
    explicit Kindprozess(const std::string& befehl) {
        Rohr ausgabe, fehlerausgabe;
        kind_ = ::fork();
        if (kind_ == 0) werdeWaechter(befehl.c_str(), ausgabe.schreiben.get(), fehlerausgabe.schreiben.get());
        if (kind_ < 0) misslungen("Der Befehl \"" + befehl + "\" kann nicht gestartet werden.");
        ::setpgid(kind_, kind_);
        ausgabe_ = std::move(ausgabe.lesen);
        fehler_ = std::move(fehlerausgabe.lesen);
    }
    ~Kindprozess() {
        if (kind_ <= 0) return;
        ::kill(-kind_, SIGTERM);
        for (int gewartet = 0; gewartet < kEndeabwartenMs; gewartet += kTaktMs) {
            if (::waitpid(kind_, nullptr, WNOHANG) != 0) return;
            ::poll(nullptr, 0, kTaktMs);
        }
        ::kill(-kind_, SIGKILL);
        ::waitpid(kind_, nullptr, 0);
    }
    Kindprozess(const Kindprozess&) = delete;
    Kindprozess& operator=(const Kindprozess&) = delete;

    int ausgabe() const { return ausgabe_.get(); }
    int fehlerausgabe() const { return fehler_.get(); }

    // As the shell tells it: 0 is success, 128 and more a signal.
    int warteAufEnde(const Lesefortschritt& fortschritt) {
        int zustand = 0;
        while (::waitpid(kind_, &zustand, WNOHANG) == 0) {
            fortschritt(0);
            ::poll(nullptr, 0, kEndetaktMs);
        }
        kind_ = 0;
        return endecode(zustand);
    }

  private:
    static int endecode(int zustand) {
        return WIFEXITED(zustand) ? WEXITSTATUS(zustand) : 128 + WTERMSIG(zustand);
    }
    // From the fork on only calls that are safe while other threads hold locks. The guard outlives the signal
    // that it sends, and ends as the shell does.
    [[noreturn]] static void werdeWaechter(const char* befehl, int ausgabe, int fehlerausgabe) {
        ::setpgid(0, 0);
        ::signal(SIGTERM, SIG_IGN);
        ::signal(SIGUSR1, [](int) { ::kill(0, SIGTERM); });
        ::prctl(PR_SET_PDEATHSIG, SIGUSR1);
        const pid_t shell = ::fork();
        if (shell == 0) werdeShell(befehl, ausgabe, fehlerausgabe);
        // The pipes end, and locks go, with those who use them.
        ::close_range(0, ~0U, 0);
        int zustand = 0;
        while (shell > 0 && ::waitpid(shell, &zustand, 0) < 0 && errno == EINTR) {
        }
        ::_exit(shell > 0 ? endecode(zustand) : 127);
    }
    [[noreturn]] static void werdeShell(const char* befehl, int ausgabe, int fehlerausgabe) {
        ::signal(SIGTERM, SIG_DFL);
        ::signal(SIGUSR1, SIG_DFL);
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

// The output to the parser, the end of the error output as result.
std::string liesAusgabe(const Kindprozess& kind, XmltvLeser& leser, const Lesefortschritt& fortschritt) {
    std::vector<char> stueck(kStueck);
    std::string fehlertext;
    std::array<pollfd, 2> rohre{{{kind.ausgabe(), POLLIN, 0}, {kind.fehlerausgabe(), POLLIN, 0}}};
    // Something that the command has left running may hold the error output open: it is not waited for.
    for (int still = 0; rohre[0].fd >= 0;) {
        const int bereit = ::poll(rohre.data(), rohre.size(), kTaktMs);
        still = bereit == 0 ? still + kTaktMs : 0;
        if (still >= kStilleMs) misslungen("Der Befehl hat eine Stunde lang nichts ausgegeben.");
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
        fortschritt(0);
    }
    return fehlertext;
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
    const std::string fehlertext = liesAusgabe(kind, leser, fortschritt);
    const int code = kind.warteAufEnde(fortschritt);
    if (code != 0) {
        const std::string zeile = letzteZeile(fehlertext);
        misslungen("Der Befehl \"" + befehl + "\" ist mit dem Code " + std::to_string(code) + " gescheitert" +
                   (zeile.empty() ? "." : ": " + zeile));
    }
    leser.ende();
}

}  // namespace wendel::skarvel
