#include "desktop/Abloesung.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "desktop/Dateideskriptor.h"

namespace wendel {

namespace {

// What a child tells us through the pipe; nothing before the pipe closes means: the program runs.
struct Nachricht {
    enum class Art : int { Fehler, Ende } art;
    int wert;
};

// Everything the children need, made before the fork: between fork and exec only calls that are safe in a
// signal handler are allowed, and an allocation is not.
struct Auftrag {
    std::vector<char*> argv;
    const char* programm;
    const char* ordner;  // null: ours
    std::int64_t fristMs;
    int melden;
};

void melde(int fd, Nachricht nachricht) {
    // A single small write to a pipe is whole or not at all; there is nobody to tell when it fails.
    [[maybe_unused]] const ssize_t n = ::write(fd, &nachricht, sizeof nachricht);
}

void signaleZuruecksetzen() {
    for (int s = 1; s < NSIG; ++s)
        ::signal(s, SIG_DFL);
    sigset_t keine;
    ::sigemptyset(&keine);
    ::sigprocmask(SIG_SETMASK, &keine, nullptr);
}

void dateienSchliessen() {
    if (const int leer = ::open("/dev/null", O_RDWR); leer >= 0)
        for (int fd = 0; fd <= 2; ++fd)
            ::dup2(leer, fd);
    // Marked instead of closed: the pipe must live until the program has really started.
    if (::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC) == 0) return;
    for (int fd = 3; fd < 1024; ++fd)
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
}

[[noreturn]] void werdeProgramm(const Auftrag& auftrag) {
    signaleZuruecksetzen();
    if (!auftrag.ordner || ::chdir(auftrag.ordner) == 0) {
        dateienSchliessen();
        ::execv(auftrag.programm, auftrag.argv.data());
    }
    melde(auftrag.melden, {Nachricht::Art::Fehler, errno});
    ::_exit(127);
}

void warteAufEnde(pid_t programm, const Auftrag& auftrag) {
    constexpr timespec kPause{0, 10'000'000};
    int status = 0;
    for (std::int64_t ms = 0; ms < auftrag.fristMs; ms += 10) {
        if (::waitpid(programm, &status, WNOHANG) == programm) {
            const int wert = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            melde(auftrag.melden, {Nachricht::Art::Ende, wert});
            return;
        }
        ::nanosleep(&kPause, nullptr);
    }
}

// The process in the middle: it ends soon, and the program then belongs to init, which reaps it.
[[noreturn]] void vermittle(const Auftrag& auftrag) {
    ::setsid();
    ::signal(SIGCHLD, SIG_DFL);  // ignored, as some launchers leave it, the program's end would not be told
    const pid_t programm = ::fork();
    if (programm == 0) werdeProgramm(auftrag);
    if (programm < 0)
        melde(auftrag.melden, {Nachricht::Art::Fehler, errno});
    else
        warteAufEnde(programm, auftrag);
    ::_exit(0);
}

Abloesungsergebnis leseErgebnis(int fd) {
    Abloesungsergebnis ergebnis;
    Nachricht nachricht{};
    while (true) {
        const ssize_t n = ::read(fd, &nachricht, sizeof nachricht);
        if (n < 0 && errno == EINTR) continue;
        if (n != sizeof nachricht) return ergebnis;
        // The end of a program that never started (127) follows its error: the error is what counts.
        if (nachricht.art == Nachricht::Art::Fehler)
            ergebnis.fehler = nachricht.wert;
        else if (ergebnis.fehler == 0)
            ergebnis.exitstatus = nachricht.wert;
    }
}

}  // namespace

std::string imSuchpfad(const std::string& name) {
    const char* suchpfad = std::getenv("PATH");
    std::string_view rest = suchpfad ? suchpfad : "/usr/bin:/bin";
    while (!name.empty() && !rest.empty()) {
        const std::string_view ordner = rest.substr(0, rest.find(':'));
        const std::string datei = std::string(ordner) + "/" + name;
        struct stat angaben {};
        if (ordner.starts_with('/') && ::stat(datei.c_str(), &angaben) == 0 && S_ISREG(angaben.st_mode) &&
            ::access(datei.c_str(), X_OK) == 0)
            return datei;
        rest.remove_prefix(ordner.size() == rest.size() ? rest.size() : ordner.size() + 1);
    }
    return {};
}

Abloesungsergebnis starteAbgeloest(const std::vector<std::string>& argumente, const std::string& ordner,
                                   std::chrono::milliseconds frist) {
    if (argumente.empty()) return {EINVAL, {}};
    const bool mitOrdner = argumente.front().find('/') != std::string::npos;
    const std::string programm = mitOrdner ? argumente.front() : imSuchpfad(argumente.front());
    if (programm.empty()) return {ENOENT, {}};

    int enden[2];
    if (::pipe2(enden, O_CLOEXEC) != 0) return {errno, {}};
    const Dateideskriptor lesen(enden[0]);
    Dateideskriptor schreiben(enden[1]);

    Auftrag auftrag{{}, programm.c_str(), ordner.empty() ? nullptr : ordner.c_str(), frist.count(), enden[1]};
    for (const std::string& argument : argumente)
        auftrag.argv.push_back(const_cast<char*>(argument.c_str()));
    auftrag.argv.push_back(nullptr);

    const pid_t mitte = ::fork();
    if (mitte == 0) vermittle(auftrag);
    if (mitte < 0) return {errno, {}};
    schreiben = Dateideskriptor();
    const Abloesungsergebnis ergebnis = leseErgebnis(lesen.get());
    while (::waitpid(mitte, nullptr, 0) < 0 && errno == EINTR) {
    }
    return ergebnis;
}

}  // namespace wendel
