#pragma once
// What the tests of the system adapters share: a temporary folder, environment variables that are put back,
// waiting for a condition, and processes that end with the test.

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <thread>

#include "desktop/Pfade.h"

namespace wendel {

// A fresh folder, open to all users, removed with all it holds.
class TempOrdner {
  public:
    TempOrdner() {
        std::string muster = std::filesystem::temp_directory_path() / "wendel-XXXXXX";
        if (::mkdtemp(muster.data()) && ::chmod(muster.c_str(), 0755) == 0) pfad_ = muster;
    }
    ~TempOrdner() { std::filesystem::remove_all(pfad_); }
    TempOrdner(const TempOrdner&) = delete;

    const std::string& pfad() const { return pfad_; }
    std::string operator/(const std::string& name) const { return pfad_ + "/" + name; }
    std::string logisch(const std::string& name) const { return logischerPfad(*this / name); }

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
    // All names directly in the folder, sorted, a blank behind each.
    std::string namen() const {
        std::string text;
        std::set<std::filesystem::path> alle(std::filesystem::directory_iterator(pfad_), {});
        for (const auto& pfad : alle)
            text += pfad.filename().string() + " ";
        return text;
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
    Variable(const char* name, const std::optional<std::string>& wert) : name_(name) {
        if (const char* alt = ::getenv(name)) alt_ = alt;
        setze(wert);
    }
    ~Variable() { setze(alt_); }
    Variable(const Variable&) = delete;

  private:
    void setze(const std::optional<std::string>& wert) {
        wert ? ::setenv(name_, wert->c_str(), 1) : ::unsetenv(name_);
    }
    const char* name_;
    std::optional<std::string> alt_;
};

inline bool warteBis(const std::function<bool()>& bedingung) {
    const auto ende = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!bedingung()) {
        if (std::chrono::steady_clock::now() > ende) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

// A child process that runs a function; it is killed and reaped with this object. The function may write to
// the descriptor, which lies() reads.
class Kind {
  public:
    explicit Kind(const std::function<void(int)>& funktion) {
        EXPECT_EQ(0, ::pipe(antwort_));
        pid_ = ::fork();
        if (pid_ == 0) {
            funktion(antwort_[1]);
            ::_exit(0);
        }
        ::close(antwort_[1]);
    }
    ~Kind() {
        toete(SIGKILL);
        warte();
        ::close(antwort_[0]);
    }
    Kind(const Kind&) = delete;

    std::uint32_t id() const { return static_cast<std::uint32_t>(pid_); }
    void toete(int signal) const {
        if (!status_) ::kill(pid_, signal);
    }
    // Its status for waitpid's macros.
    int warte() {
        int status = 0;
        if (!status_ && ::waitpid(pid_, &status, 0) == pid_) status_ = status;
        return status_.value_or(0);
    }
    // One byte from the child: blocks until it has got that far.
    char lies() const {
        char zeichen = 0;
        return ::read(antwort_[0], &zeichen, 1) == 1 ? zeichen : '\0';
    }

  private:
    pid_t pid_ = -1;
    int antwort_[2]{};
    std::optional<int> status_;
};

// What the function returns in a process without root's rights: nobody's for root, ours otherwise.
inline int ohneRootrechte(const std::function<int()>& funktion) {
    Kind kind([&](int) { ::_exit(::geteuid() == 0 && ::setuid(65534) != 0 ? 99 : funktion()); });
    return WEXITSTATUS(kind.warte());
}

}  // namespace wendel
