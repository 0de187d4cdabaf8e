#pragma once
// Child processes of a test: they are killed and reaped with their object.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace wendel {

// Runs a function in a process of its own. The function may write to the descriptor, which lies() and rest()
// read.
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
    // Everything it still writes; blocks until it has ended.
    std::string rest() const {
        std::string alles;
        char puffer[4096];
        for (ssize_t n; (n = ::read(antwort_[0], puffer, sizeof puffer)) > 0;)
            alles.append(puffer, static_cast<std::size_t>(n));
        return alles;
    }

    // For the function: says that it has got that far, and stays there until it is killed.
    static void bleibe(int antwort, char zeichen = 'x') {
        [[maybe_unused]] const ssize_t n = ::write(antwort, &zeichen, 1);
        while (true)
            ::pause();
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
