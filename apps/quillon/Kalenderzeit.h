#pragma once
// Moments as calendar files give them: wall time of the reader's place, of the world or of a named zone.
// Zones come from the file itself, else from the system; the reader's place is the process's time zone.

#include <optional>
#include <string>

#include "Kalenderbibliothek.h"
#include "platform/Datum.h"

namespace wendel::quillon {

// Moments that the library can write: the years 100 to 3000.
bool istSchreibbar(Datum d);

class Kalenderzone {
  public:
    // Wall time that counts wherever the reader is.
    Kalenderzone() = default;
    static Kalenderzone weltzeit() { return Kalenderzone(Art::Welt, nullptr, ""); }
    // The zone of this name; one that neither the calendar nor the system knows counts as the reader's own.
    // The calendar outlives the result; null does without one.
    static Kalenderzone namens(const std::string& name, icalcomponent* kalender);

    // The same instant as wall time of the reader's place.
    Datum ortszeit(Datum wand) const;
    bool istOrtszeit() const { return art_ == Art::Ort; }
    // The name of a zone that is not known, else "".
    const std::string& unbekannte() const { return unbekannte_; }

  private:
    enum class Art { Ort, Welt, Benannt };
    Kalenderzone(Art art, icaltimezone* zone, std::string unbekannte)
        : art_(art), zone_(zone), unbekannte_(std::move(unbekannte)) {}

    Art art_ = Art::Ort;
    icaltimezone* zone_ = nullptr;
    std::string unbekannte_;
};

struct Kalenderzeit {
    Datum wand;  // at 00:00 for a whole day
    bool ganztags = false;
    Kalenderzone zone;

    Datum ortszeit() const { return zone.ortszeit(wand); }
};

// A value of the file, and the property that names its zone. Nothing for a day that the calendar does not
// have, a time that no day has, and years before 100.
std::optional<Kalenderzeit> kalenderzeit(const icaltimetype& wert, icalproperty* eigenschaft,
                                         icalcomponent* kalender);

// A moment as the library's value, without a zone, and back; the value must be valid.
icaltimetype kalenderzeit(Datum d);
Datum datumAus(const icaltimetype& zeit);

// A local moment of now as UTC.
Datum weltzeitAus(Datum ortszeit);

}  // namespace wendel::quillon
