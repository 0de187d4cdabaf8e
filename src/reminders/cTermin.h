#pragma once
// One entry that fires at its moment: an appointment of the user (short-time alarms included), the reminder
// of a marked broadcast, or a recording. Here are the record and the rules that move it through time; who
// walks the collections, stores them and shows notices is the main form's affair.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Datum.h"

namespace wendel {

class cSendung;

enum class Terminart : std::int16_t { Eigener = 0, Erinnerung = 1, Aufzeichnung = 2 };

// Repetition values of cTermin::Intervall; every other value counts as Einmal.
namespace intervall {
inline constexpr std::int16_t kEinmal = 0;
inline constexpr std::int16_t kTaeglich = 1;
inline constexpr std::int16_t kWerktags = 2;  // Monday to Friday
inline constexpr std::int16_t kWoechentlich = 3;
}  // namespace intervall

inline constexpr std::string_view kKurzzeittext = "(Kurzzeiterinnerung)";
inline constexpr std::string_view kHinweisvorsatz = "Sie wollten sich erinnern lassen.";

struct cTermin {
    Datum WeckZeit;
    std::string WeckText;
    std::int16_t Intervall = intervall::kEinmal;
    bool Aktiv = false;
    Terminart Art = Terminart::Eigener;  // not stored: only the user's own appointments are

    // The WeckZeit for which this one-time entry has fired; not stored. Keeps the catch-up pass from reviving
    // an entry that is done when the clock is set back or an hour comes twice.
    std::optional<Datum> GefeuertFuer;

    // Reminders and recordings: start of the broadcast itself; else never.
    Datum Sendungsbeginn;
    // Recordings: end of the recording window (its start is WeckZeit), and the broadcast.
    Datum Fensterende;
    std::shared_ptr<cSendung> Sendung;
};

// A record may stand in a collection, in the rows of the list and in the notice at the same time: it is one
// record, shared.
using TerminZeiger = std::shared_ptr<cTermin>;
using Terminliste = std::vector<TerminZeiger>;

bool istKurzzeiterinnerung(const cTermin& termin);
bool wiederholtSich(std::int16_t intervallwert);
bool wiederholtSich(const cTermin& termin);

// Active, and its moment has come.
bool istFaellig(const cTermin& termin, Datum jetzt);

// The moment one interval later at the same local time of day; the moment itself for a one-time entry.
Datum naechsterTermin(Datum weckZeit, std::int16_t intervallwert);

// The entry has just fired: a one-time entry is switched off, a repeating one moves to its first moment later
// than jetzt, so that a week's sleep gives one notice and not seven.
void nachFeuernWeiterstellen(cTermin& termin, Datum jetzt);

// The once-a-minute catch-up of one entry. Looks at inactive ones only: a one-time entry whose moment still
// lies ahead becomes active again (the user gave it a new time) unless it has fired for that very moment; a
// repeating one is moved on until its moment is not before jetzt and stays inactive. True when an entry
// became active: to be stored, or one whose moment passes while the program is off would never be shown.
bool nachholen(cTermin& termin, Datum jetzt);
[[nodiscard]] bool nachholen(const Terminliste& termine, Datum jetzt);

// The lines of one entry in a notice, each ended by CR LF; a short-time alarm has the first line only.
std::string hinweiszeilen(const cTermin& termin);
// The text of a notice over several entries, without the line end of the last one.
std::string hinweistext(const Terminliste& termine);

}  // namespace wendel
