#pragma once
// What a check of the installation says: lines with a mark and, where something is not well, what to do about
// it. How they are found out is told in Pruefungen; here they are collected and printed.

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace wendel::quillon {

enum class Pruefstand { Ok, Hinweis, Fehler };

struct Pruefzeile {
    Pruefstand stand = Pruefstand::Ok;
    std::string befund;  // "Klang: 1 Ausgabegerät"
    std::string rat;     // one sentence; empty where all is well
};

// Takes the lines of one check, one after the other, as they are found.
class Pruefmelder {
  public:
    explicit Pruefmelder(std::function<void(const Pruefzeile&)> ziel) : ziel_(std::move(ziel)) {}

    void ok(const std::string& befund) { ziel_({Pruefstand::Ok, befund, ""}); }
    void hinweis(const std::string& befund, const std::string& rat) {
        ziel_({Pruefstand::Hinweis, befund, rat});
    }
    void fehler(const std::string& befund, const std::string& rat) {
        ziel_({Pruefstand::Fehler, befund, rat});
    }

  private:
    std::function<void(const Pruefzeile&)> ziel_;
};

// The report in parts, printed as they come.
class Pruefbericht {
  public:
    // ausgabe outlives this.
    explicit Pruefbericht(std::ostream& ausgabe) : ausgabe_(ausgabe) {}

    void kopf(const std::string& programm, const std::string& zeitpunkt);
    void teil(const std::string& titel, const std::vector<Pruefzeile>& zeilen);
    void schluss();
    bool hatFehler() const { return fehler_ > 0; }

  private:
    std::ostream& ausgabe_;
    std::size_t fehler_ = 0, hinweise_ = 0;
};

}  // namespace wendel::quillon
