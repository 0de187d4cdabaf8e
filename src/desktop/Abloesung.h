#pragma once
// Starts a program that goes on without us: own session, no open files of ours, no zombie when it ends. For
// the file start and the sound; not for children that somebody waits for.

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace wendel {

struct Abloesungsergebnis {
    int fehler = 0;  // 0, or the errno of why it could not be started
    std::optional<int>
        exitstatus;  // how it ended, when it did so within the waiting time (128 + n for signal n)
};

// argumente[0] is the program: a path with "/", or a bare name that is looked for in PATH. `ordner` is its
// current folder, "" ours. Waits up to `frist` for an early end; 0 returns as soon as the program runs.
Abloesungsergebnis starteAbgeloest(const std::vector<std::string>& argumente, const std::string& ordner,
                                   std::chrono::milliseconds frist = std::chrono::milliseconds(0));

// The full path of a bare program name in PATH, "" when there is none.
std::string imSuchpfad(const std::string& name);

}  // namespace wendel
