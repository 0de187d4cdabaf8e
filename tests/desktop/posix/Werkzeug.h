#pragma once
// What the tests of the system adapters share: a temporary folder, environment variables that are put back,
// waiting for a condition, and processes that end with the test.

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace wendel {

// A fresh folder, removed with all it holds.
class TempOrdner {
  public:
    TempOrdner() {
        std::string muster = std::filesystem::temp_directory_path() / "wendel-XXXXXX";
        if (::mkdtemp(muster.data())) pfad_ = muster;
    }
    ~TempOrdner() {
        std::error_code ignoriert;
        std::filesystem::remove_all(pfad_, ignoriert);
    }
    TempOrdner(const TempOrdner&) = delete;
    TempOrdner& operator=(const TempOrdner&) = delete;

    const std::string& pfad() const { return pfad_; }
    std::string operator/(const std::string& name) const { return pfad_ + "/" + name; }

    std::string datei(const std::string& name, const std::string& inhalt, mode_t modus = 0644) const {
        const std::string pfad = *this / name;
        std::filesystem::create_directories(std::filesystem::path(pfad).parent_path());
        std::ofstream(pfad, std::ios::binary) << inhalt;
        ::chmod(pfad.c_str(), modus);
        return pfad;
    }
    std::string skript(const std::string& name, const std::string& inhalt) const {
        return datei(name, "#!/bin/sh\n" + inhalt, 0755);
    }

    // All names directly in the folder, sorted.
    std::vector<std::string> namen() const {
        std::vector<std::string> alle;
        for (const auto& eintrag : std::filesystem::directory_iterator(pfad_))
            alle.push_back(eintrag.path().filename());
        std::sort(alle.begin(), alle.end());
        return alle;
    }

  private:
    std::string pfad_;
};

inline std::string inhaltVon(const std::string& pfad) {
    std::ifstream datei(pfad, std::ios::binary);
    return {std::istreambuf_iterator<char>(datei), {}};
}

// Sets a variable (or removes it, without a value) until the end of the scope.
class Variable {
  public:
    Variable(const char* name, std::optional<std::string> wert) : name_(name) {
        if (const char* alt = ::getenv(name)) alt_ = alt;
        setze(wert);
    }
    ~Variable() { setze(alt_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    void setze(const std::optional<std::string>& wert) {
        wert ? ::setenv(name_, wert->c_str(), 1) : ::unsetenv(name_);
    }
    const char* name_;
    std::optional<std::string> alt_;
};

inline bool warteBis(const std::function<bool()>& bedingung, int hoechstensMs = 10000) {
    const auto ende = std::chrono::steady_clock::now() + std::chrono::milliseconds(hoechstensMs);
    while (!bedingung()) {
        if (std::chrono::steady_clock::now() > ende) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// A child process that is killed and reaped with this object; its standard input stays open until then.
class Kind {
  public:
    // Runs a program.
    explicit Kind(const std::vector<std::string>& befehl, uid_t nutzer = ::geteuid()) {
        starte([&] {
            if (nutzer != ::geteuid() && ::setuid(nutzer) != 0) ::_exit(126);
            std::vector<char*> argv;
            for (const std::string& teil : befehl)
                argv.push_back(const_cast<char*>(teil.c_str()));
            argv.push_back(nullptr);
            ::execv(argv[0], argv.data());
        });
    }
    // Runs a function; it may write to the descriptor, which lies() reads.
    explicit Kind(const std::function<void(int)>& funktion) {
        starte([&] { funktion(antwort_[1]); });
    }
    ~Kind() {
        toete(SIGKILL);
        warte();
        ::close(eingabe_[1]);
        ::close(antwort_[0]);
    }
    Kind(const Kind&) = delete;
    Kind& operator=(const Kind&) = delete;

    std::uint32_t id() const { return static_cast<std::uint32_t>(pid_); }
    void toete(int signal) const {
        if (!geerntet_) ::kill(pid_, signal);
    }
    // Its status for waitpid's macros.
    int warte() {
        if (!geerntet_) ::waitpid(pid_, &status_, 0);
        geerntet_ = true;
        return status_;
    }
    // Ends when it does; does not reap it.
    void warteOhneErnte() const {
        siginfo_t angaben{};
        ::waitid(P_PID, static_cast<id_t>(pid_), &angaben, WEXITED | WNOWAIT);
    }
    // One byte from the child: blocks until it has got that far.
    char lies() const {
        char zeichen = 0;
        return ::read(antwort_[0], &zeichen, 1) == 1 ? zeichen : '\0';
    }

  private:
    template <class F>
    void starte(F&& imKind) {
        if (::pipe(eingabe_) != 0 || ::pipe(antwort_) != 0) return;
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(eingabe_[0], 0);
            ::close(eingabe_[1]);
            ::close(antwort_[0]);
            imKind();
            ::_exit(0);
        }
        ::close(eingabe_[0]);
        ::close(antwort_[1]);
    }

    pid_t pid_ = -1;
    int eingabe_[2]{};
    int antwort_[2]{};
    bool geerntet_ = false;
    int status_ = 0;
};

// A socket that somebody listens on; after zumachen() only its file is left.
class Lauscher {
  public:
    explicit Lauscher(const std::string& pfad) : fd_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un adresse{};
        adresse.sun_family = AF_UNIX;
        pfad.copy(adresse.sun_path, sizeof adresse.sun_path - 1);
        std::filesystem::create_directories(std::filesystem::path(pfad).parent_path());
        EXPECT_EQ(0, ::bind(fd_, reinterpret_cast<const sockaddr*>(&adresse), sizeof adresse));
        EXPECT_EQ(0, ::listen(fd_, 5));
    }
    ~Lauscher() { zumachen(); }
    Lauscher(const Lauscher&) = delete;
    Lauscher& operator=(const Lauscher&) = delete;
    void zumachen() {
        if (fd_ >= 0) ::close(std::exchange(fd_, -1));
    }

  private:
    int fd_;
};

}  // namespace wendel
