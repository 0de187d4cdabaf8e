#pragma once
// Lays the kinds of programme of a day's plan out in time: which work is shown when, without a gap and
// without an overlap. What a broadcast says about itself is the work of Beispielprogramm.

#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "Beispielplan.h"
#include "Beispieltexte.h"

namespace wendel::quillon {

// One showing of a work.
struct Ausstrahlung {
    const Werk* werk;
    int beginn;  // minutes since midnight of its day of television, 300 to 1739
    int minuten;
    int folge;             // 0 for what has no episodes
    std::uint64_t inhalt;  // equal for showings of the same film or episode
    bool wiederholung;
};

// Chance that is the same on every machine and in every run.
std::uint64_t streuwert(std::string_view text);
std::uint64_t streuwert(std::uint64_t a, std::uint64_t b);

class Sendeplan {
  public:
    // The sender is the number-th of beispielsender(), whose order decides what it shows.
    explicit Sendeplan(std::size_t sender);

    // All of one day, 05:00 to 05:00, in order. The day counts as in Datum; it always has the same programme.
    std::vector<Ausstrahlung> tag(std::int64_t tagesnummer);

  private:
    // A row of the plan and the stretch of time that it has on a day.
    struct Abschnitt {
        const Planzeile* zeile;
        int beginn, ende;
    };
    struct Gefuellt {
        Abschnitt abschnitt;
        std::vector<Ausstrahlung> inhalt;
    };
    class Tagesfuellung;

    std::vector<Abschnitt> abschnitte(std::int64_t tagesnummer) const;
    const std::vector<Gefuellt>& neues(std::int64_t tagesnummer);
    std::vector<Ausstrahlung> wiederholung(std::int64_t tagesnummer, const Abschnitt& abschnitt);
    const std::vector<Ausstrahlung>* vorlage(std::int64_t tagesnummer, const Abschnitt& abschnitt);

    std::size_t nummer_;
    const Beispielsender& sender_;
    std::map<std::int64_t, std::vector<Gefuellt>> neues_;
};

}  // namespace wendel::quillon
