#pragma once
// What owns memory of the iCalendar library, as types that free it, and its strings as std::string. What a
// calendar means is left to the readers and writers.

#include <libical/ical.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

namespace wendel::quillon {

struct Kalenderfreigabe {
    void operator()(icalcomponent* komponente) const { icalcomponent_free(komponente); }
    void operator()(icalproperty* eigenschaft) const { icalproperty_free(eigenschaft); }
    void operator()(icalrecur_iterator* lauf) const { icalrecur_iterator_free(lauf); }
};
using Kalenderkomponente = std::unique_ptr<icalcomponent, Kalenderfreigabe>;
using Kalendereigenschaft = std::unique_ptr<icalproperty, Kalenderfreigabe>;
using Regellauf = std::unique_ptr<icalrecur_iterator, Kalenderfreigabe>;

// The library says with null that there is no memory, and for a text that there is none.
template <class T>
T* vorhanden(T* neu) {
    if (!neu) throw std::bad_alloc();
    return neu;
}
inline std::string alsText(const char* text) { return text ? text : ""; }

// Calls f for each property, or component, of one kind in their order. The library keeps a single place in a
// component, which f may move: they are collected first.
template <class F>
void fuerJedeEigenschaft(icalcomponent* in, icalproperty_kind art, F f) {
    std::vector<icalproperty*> alle;
    for (auto* e = icalcomponent_get_first_property(in, art); e; e = icalcomponent_get_next_property(in, art))
        alle.push_back(e);
    for (icalproperty* eigenschaft : alle)
        f(eigenschaft);
}
template <class F>
void fuerJedeKomponente(icalcomponent* in, icalcomponent_kind art, F f) {
    std::vector<icalcomponent*> alle;
    for (auto* k = icalcomponent_get_first_component(in, art); k;
         k = icalcomponent_get_next_component(in, art))
        alle.push_back(k);
    for (icalcomponent* komponente : alle)
        f(komponente);
}

// Names of our own that a calendar file may carry; other programs pass them over.
namespace kalendername {
// "FALSE" for an appointment that is switched off.
inline constexpr const char* kAktiv = "X-LOMRICK-AKTIV";
// A repetition on working days whose first moment lies on a weekend stands as two events, as DTSTART has to
// be a day of the rule. The repetition names that first moment, the event of that one day the repetition.
inline constexpr const char* kBeginn = "X-LOMRICK-BEGINN";
inline constexpr const char* kReihe = "X-LOMRICK-REIHE";
}  // namespace kalendername

}  // namespace wendel::quillon
