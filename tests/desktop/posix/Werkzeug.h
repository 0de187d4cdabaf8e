#pragma once
// What the tests of the system adapters share: a temporary folder, environment variables that are put back,
// and waiting for a condition.

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

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
#include "support/Kindprozess.h"

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

}  // namespace wendel
