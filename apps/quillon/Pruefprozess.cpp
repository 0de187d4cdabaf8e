#include "Pruefprozess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <string_view>

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::quillon {
namespace {

// A line in the pipe: mark, finding, TAB, advice, line feed. The end is a line that no text can be.
constexpr std::string_view kEnde = "\x04\n";
constexpr std::array<char, 3> kMarken{'o', 'h', 'f'};
constexpr int kTaktMs = 10, kEndeabwartenMs = 200;

std::string einzeilig(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

void schreibe(int rohr, std::string_view text) {
    while (!text.empty()) {
        const ssize_t n = ::write(rohr, text.data(), text.size());
        if (n < 0 && errno != EINTR) ::_exit(1);
        if (n > 0) text.remove_prefix(static_cast<std::size_t>(n));
    }
}

void sende(int rohr, const Pruefzeile& zeile) {
    schreibe(rohr, std::string(1, kMarken[static_cast<std::size_t>(zeile.stand)]) + einzeilig(zeile.befund) +
                       "\t" + einzeilig(zeile.rat) + "\n");
}

Pruefzeile zeileAus(std::string_view text) {
    const auto marke = std::find(kMarken.begin(), kMarken.end(), text.front());
    const std::size_t tab = std::min(text.find('\t'), text.size());
    return {static_cast<Pruefstand>(marke - kMarken.begin()), std::string(text.substr(1, tab - 1)),
            std::string(text.substr(std::min(tab + 1, text.size())))};
}

// Without the description of an error, which may name files.
void arbeite(const Pruefteil& teil, Pruefmelder& melder) {
    constexpr const char* kRat = "Bitte den ganzen Bericht bei einer Frage angeben.";
    try {
        teil.arbeit(melder);
    } catch (const Fehler& fehler) {
        melder.fehler("Die Prüfung scheiterte mit dem Fehler " + std::to_string(fehler.nummer()), kRat);
    } catch (const std::exception&) {
        melder.fehler("Die Prüfung scheiterte unerwartet", kRat);
    }
}

// Leaves nothing behind: no process when the parent is killed, no memory dump in the folder.
void bindeAn(pid_t eltern) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != eltern) ::_exit(1);
    const rlimit keiner{};
    ::setrlimit(RLIMIT_CORE, &keiner);
}

[[noreturn]] void werdeKind(const Pruefteil& teil, pid_t eltern, int ende) {
    bindeAn(eltern);
    // Where the caller has closed the usual ones, the pipe has got one of their numbers.
    const int rohr = ::fcntl(ende, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    // Libraries complain there; what is wrong stands in the report.
    const int nichts = ::open("/dev/null", O_RDWR);
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(nichts, fd);
    Pruefmelder melder([rohr](const Pruefzeile& zeile) { sende(rohr, zeile); });
    arbeite(teil, melder);
    schreibe(rohr, kEnde);
    ::_exit(0);
}

}  // namespace

Pruefprozess::Pruefprozess(const Pruefteil& teil)
    : teil_(teil), ende_(std::chrono::steady_clock::now() + kPrueffrist) {
    int enden[2];
    if (::pipe2(enden, O_CLOEXEC) != 0) return;
    rohr_ = Dateideskriptor(enden[0]);
    const Dateideskriptor schreiben(enden[1]);
    const pid_t eltern = ::getpid();
    kind_ = ::fork();
    if (kind_ == 0) werdeKind(teil, eltern, schreiben.get());
}

Pruefprozess::~Pruefprozess() {
    if (kind_ <= 0) return;
    ::kill(kind_, SIGKILL);
    // One that hangs in the kernel cannot even be killed; it must not take this process along.
    for (int ms = 0; ms < kEndeabwartenMs && ::waitpid(kind_, nullptr, WNOHANG) == 0; ms += kTaktMs)
        ::poll(nullptr, 0, kTaktMs);
}

bool Pruefprozess::liesBisEnde() {
    std::array<char, 4096> stueck{};
    for (;;) {
        const auto rest =
            std::chrono::duration_cast<std::chrono::milliseconds>(ende_ - std::chrono::steady_clock::now());
        pollfd warten{rohr_.get(), POLLIN, 0};
        const int bereit = ::poll(&warten, 1, static_cast<int>(std::max<std::int64_t>(rest.count(), 0)));
        if (bereit < 0 && errno == EINTR) continue;
        if (bereit <= 0) return false;
        const ssize_t n = ::read(rohr_.get(), stueck.data(), stueck.size());
        if (n <= 0) return true;
        gelesen_.append(stueck.data(), static_cast<std::size_t>(n));
    }
}

std::vector<Pruefzeile> Pruefprozess::zeilen() {
    const bool zuEnde = !rohr_ || liesBisEnde();
    const bool fertig = gelesen_.ends_with(kEnde);
    std::vector<Pruefzeile> zeilen;
    for (const std::string& text : Split(gelesen_.substr(0, gelesen_.rfind('\n') + 1), "\n"))
        if (text.size() > 1) zeilen.push_back(zeileAus(text));
    if (!zuEnde) zeilen.push_back(teil_.beiFristende);
    if (zuEnde && !fertig)
        zeilen.push_back({Pruefstand::Fehler, "Dieser Teil der Prüfung brach ab",
                          "Bitte den ganzen Bericht bei einer Frage angeben."});
    return zeilen;
}

}  // namespace wendel::quillon
