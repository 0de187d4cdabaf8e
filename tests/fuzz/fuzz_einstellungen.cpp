// Arbitrary bytes as the settings file, and as the pending content of an interrupted write. Whatever they
// are: reading ends with values or a Fehler, and changing one element keeps all others, or the whole file
// aside.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

#include "platform/Fehler.h"
#include "support/Fakes.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/Einstellungstabelle.h"
#include "tvdb/Variantdatei.h"

namespace {

using namespace wendel;

constexpr const char* kPfad = "\\suite\\fennow.cfg";
constexpr std::int32_t kIndex = einstellung::kVorlauf;

void verlange(bool bedingung) {
    if (!bedingung) std::abort();
}

std::optional<Array> gelesen(Einstellungen& einstellungen) {
    try {
        const Variant wert = einstellungen.GetEinstellungsarray();
        if (wert.istArray()) return wert.alsArray();
    } catch (const Fehler&) {
        // Refused, as most inputs must be.
    }
    return std::nullopt;
}

// Compared as bytes, in which a NaN equals itself.
std::string ohneGeaendertes(Array array) {
    array.at({kIndex}) = Variant();
    return Variantdatei::geschrieben(Variant::array(array));
}

void aendere(FakeDateisystem& dateien, const std::string& vorherBytes) {
    Einstellungen einstellungen(dateien, kTestordner);
    auto vorher = gelesen(einstellungen);
    try {
        einstellungen.setzeEinstellung(kIndex, Variant::integer(4711));
    } catch (const Fehler&) {
        verlange(dateien.inhalt(kPfad) == vorherBytes);
        return;
    }
    auto nachher = gelesen(einstellungen);
    verlange(nachher && nachher->at({kIndex}) == Variant::integer(4711));
    if (dateien.inhalt("\\suite\\fennow.cfg.defekt")) {
        verlange(*dateien.inhalt("\\suite\\fennow.cfg.defekt") == vorherBytes);
        return;
    }
    if (!vorher || vorherBytes.size() < 11) return;
    if (vorher->elemente.size() < nachher->elemente.size()) {
        vorher->grenzen = nachher->grenzen;
        vorher->elemente.resize(nachher->elemente.size());
    }
    verlange(ohneGeaendertes(*vorher) == ohneGeaendertes(*nachher));
}

void alsDatei(const std::string& bytes) {
    FakeDateisystem dateien;
    dateien.aufrufe().mitschreiben = false;
    dateien.lege(kPfad, bytes);
    Einstellungen einstellungen(dateien, kTestordner);
    const Konfiguration konfiguration = liesKonfiguration(einstellungen, kTestordner);
    verlange(konfiguration.wiederholungen != 0);
    const auto termine = termineAusVariant(termineAlsVariant(konfiguration.termine));
    verlange(termine == konfiguration.termine);
    verlange(dateien.inhalt(kPfad) == bytes);
    aendere(dateien, bytes);
}

void alsVormerkung(const std::string& bytes) {
    FakeDateisystem dateien;
    dateien.aufrufe().mitschreiben = false;
    dateien.lege("\\suite\\fennow.cfg.neu", bytes);
    Einstellungen einstellungen(dateien, kTestordner);
    gelesen(einstellungen);
    verlange(!dateien.inhalt("\\suite\\fennow.cfg.neu"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    const std::string bytes(reinterpret_cast<const char*>(daten), groesse);
    alsDatei(bytes);
    alsVormerkung(bytes);
    return 0;
}
