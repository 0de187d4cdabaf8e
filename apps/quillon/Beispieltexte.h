#pragma once
// The invented titles, people and sentences from which the example guide is put together: tables only. What
// is shown when stands in Beispielplan, how both become broadcasts in Beispielprogramm.

#include <cstdint>
#include <span>
#include <string_view>

namespace wendel::quillon {

// Days of the week as bits.
using Tage = std::uint8_t;
inline constexpr Tage kMo = 1, kDi = 2, kMi = 4, kDo = 8, kFr = 16, kSa = 32, kSo = 64;
inline constexpr Tage kMoFr = kMo | kDi | kMi | kDo | kFr, kSaSo = kSa | kSo, kAlle = kMoFr | kSaSo;

enum class Rubrik {
    Nachrichten,  // the title is the channel's own
    Fruehstueck,
    Magazin,
    Ratgeber,
    Talk,
    Quiz,
    Show,
    Krimiserie,
    Familienserie,
    Comedy,
    Film,
    Doku,
    Natur,
    Reportage,
    Kinder,
    Sportmagazin,
    Sportlive,  // the text after the title's colon is drawn from the teams
    Konzert,
    Buehne,
    Kurz,  // fills gaps of up to 20 minutes
    Nacht,
};

// Something that can be shown: a film, or a series whose title comes again with every episode.
struct Werk {
    Rubrik rubrik;
    std::string_view titel;
    std::string_view originaltitel;  // of foreign films
    std::string_view genre;
    std::string_view land;
    int jahr;     // 0: new
    int fsk;      // 0: for everybody
    int minuten;  // usual length
    std::string_view text;
    Tage tage = kAlle;  // on which it is new, when its title or text names them; repeats may come on any
};
std::span<const Werk> werke();

// An episode; the pools belong to kinds of series, not to one series.
struct Folge {
    Rubrik rubrik;
    std::string_view titel;
    std::string_view inhalt;
};
std::span<const Folge> folgen();

// What magazines and talk rounds are about; "" fits every genre that has no themes of its own.
struct Thema {
    Rubrik rubrik;
    std::string_view genre;
    std::string_view text;
};
std::span<const Thema> themen();

// A sentence that fits behind the text of every work of its kind and genre; "" fits all genres.
struct Zusatz {
    Rubrik rubrik;
    std::string_view genre;
    std::string_view text;
};
std::span<const Zusatz> zusaetze();

// Why a film is the tip of its day.
std::span<const std::string_view> tipptexte();

std::span<const std::string_view> kurzkritiken();
std::span<const std::string_view> stichworte();
std::span<const std::string_view> vornamen();
std::span<const std::string_view> nachnamen();
std::span<const std::string_view> rollen();
std::span<const std::string_view> mannschaften();

}  // namespace wendel::quillon
