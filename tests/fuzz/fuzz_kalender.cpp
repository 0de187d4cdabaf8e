// Arbitrary bytes as a calendar file. Whatever they are: reading ends in bounded time with appointments that
// can be stored, or a Fehler; and what has been read survives being written and read again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "../../apps/quillon/Kalenderausgabe.h"
#include "../../apps/quillon/Kalendereingabe.h"
#include "../../apps/quillon/Terminabgleich.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace {

using namespace wendel;
using namespace wendel::quillon;

void verlange(bool bedingung) {
    if (!bedingung) std::abort();
}

const Datum kJetzt = DateSerial(2026, 11, 23) + TimeSerial(12, 0, 0);

std::optional<Kalenderinhalt> gelesen(const std::string& bytes) {
    try {
        return kalenderinhalt(bytes, kJetzt);
    } catch (const Fehler&) {
        return std::nullopt;  // refused, as most inputs must be
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    const auto inhalt = gelesen(std::string(reinterpret_cast<const char*>(daten), groesse));
    if (!inhalt) return 0;
    std::vector<GespeicherterTermin> termine;
    for (const Kalendertermin& eintrag : inhalt->termine) {
        const GespeicherterTermin& termin = eintrag.termin;
        verlange(Datum::ausTageszahl(termin.weckZeit.tageszahl()) == termin.weckZeit);
        verlange(termin.intervall == 0 || termin.weckZeit >= kJetzt);
        verlange(zeichenzahl(termin.weckText) <= 65535);
        if (passtInKalender(termin)) termine.push_back(termin);
    }
    const auto wieder = gelesen(kalenderdatei(termine, kJetzt));
    verlange(wieder && wieder->nichtUebernommen == 0 && wieder->termine.size() == termine.size());
    verlange(neueTermine(wieder->termine, termine, kJetzt).empty());
    return 0;
}
