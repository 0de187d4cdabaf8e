#include "platform/ModulRegistrierung.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>
#include <variant>

#include "platform/Datumstext.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::ModulRegistrierung {

namespace {

constexpr std::string_view kBoolesch = "typboolean:";
constexpr std::string_view kDatum = "typdate:";
constexpr std::string_view kWahr = "true";
constexpr std::string_view kFalsch = "false";

// A key for the length of one operation.
class OffenerSchluessel {
  public:
    OffenerSchluessel(Registrierung& registrierung, Registrierung::Schluessel schluessel)
        : registrierung_(registrierung), schluessel_(schluessel) {}
    ~OffenerSchluessel() {
        if (schluessel_ != 0) registrierung_.schliessen(schluessel_);
    }
    OffenerSchluessel(const OffenerSchluessel&) = delete;
    OffenerSchluessel& operator=(const OffenerSchluessel&) = delete;

    explicit operator bool() const { return schluessel_ != 0; }
    Registrierung::Schluessel operator*() const { return schluessel_; }

  private:
    Registrierung& registrierung_;
    Registrierung::Schluessel schluessel_;
};

Registrierungswert textwert(std::string_view text) {
    std::string daten = nachWindows1252(text);
    if (!daten.ends_with('\0')) daten += '\0';
    return {registrierungstyp::kText, std::move(daten)};
}

Registrierungswert zahlwert(std::int32_t zahl) {
    const auto bits = static_cast<std::uint32_t>(zahl);
    std::string daten;
    for (unsigned schub = 0; schub < 32; schub += 8)
        daten += static_cast<char>(bits >> schub & 0xFF);
    return {registrierungstyp::kDword, std::move(daten)};
}

// Nothing for types that the registry is not given.
std::optional<Registrierungswert> kodiert(const Variant& wert) {
    return std::visit(
        [&](const auto& w) -> std::optional<Registrierungswert> {
            using Typ = std::decay_t<decltype(w)>;
            if constexpr (std::is_same_v<Typ, std::int16_t> || std::is_same_v<Typ, std::int32_t>)
                return zahlwert(w);
            else if constexpr (std::is_same_v<Typ, std::string>)
                return textwert(w);
            else if constexpr (std::is_same_v<Typ, bool>)
                return textwert(std::string(kBoolesch).append(w ? kWahr : kFalsch));
            else if constexpr (std::is_same_v<Typ, Variant::Tageszahl>)
                return textwert(std::string(kDatum) + datumKompakt(wert.alsDatum()));
            else
                return std::nullopt;
        },
        wert.wert());
}

std::optional<Variant> zahl(std::string_view daten) {
    if (daten.size() != 4) return std::nullopt;
    std::uint32_t bits = 0;
    for (std::size_t i = daten.size(); i-- > 0;)
        bits = bits << 8 | static_cast<unsigned char>(daten[i]);
    return Variant::lang(static_cast<std::int32_t>(bits));
}

std::optional<Variant> datum(std::string_view text) {
    try {
        return Variant::datum(datumAusText(text));
    } catch (const Fehler&) {
        return std::nullopt;
    }
}

std::optional<Variant> dekodiert(std::string_view daten, bool roh) {
    if (daten.ends_with('\0')) daten.remove_suffix(1);
    const std::string text = ausWindows1252(daten);
    if (!roh && text.starts_with(kBoolesch))
        return Variant::boolesch(std::string_view(text).substr(kBoolesch.size()) == kWahr);
    if (!roh && text.starts_with(kDatum)) return datum(std::string_view(text).substr(kDatum.size()));
    return Variant::text(text);
}

}  // namespace

bool KeyExists(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad) {
    return bool(OffenerSchluessel(registrierung,
                                  registrierung.oeffnen(wurzel, pfad, registrierungsrecht::kAbfragen)));
}

bool CreateKey(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad) {
    const OffenerSchluessel schluessel(registrierung,
                                       registrierung.anlegen(wurzel, pfad, registrierungsrecht::kAlle));
    return schluessel && registrierung.sichern(*schluessel);
}

bool WriteValue(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad,
                const std::string& name, const Variant& wert) {
    const OffenerSchluessel schluessel(registrierung,
                                       registrierung.oeffnen(wurzel, pfad, registrierungsrecht::kSetzen));
    if (!schluessel) return false;
    const std::optional<Registrierungswert> form = kodiert(wert);
    return !form || registrierung.setzeWert(*schluessel, name, *form);
}

bool DeleteValue(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad,
                 const std::string& name) {
    const OffenerSchluessel schluessel(registrierung,
                                       registrierung.oeffnen(wurzel, pfad, registrierungsrecht::kSetzen));
    return schluessel && registrierung.loescheWert(*schluessel, name);
}

bool ReadValue(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad,
               const std::string& name, Variant& wert, bool roh) {
    const OffenerSchluessel schluessel(registrierung,
                                       registrierung.oeffnen(wurzel, pfad, registrierungsrecht::kAbfragen));
    const auto gelesen = schluessel ? registrierung.frageWert(*schluessel, name) : std::nullopt;
    if (!gelesen) return false;
    const bool text = gelesen->typ == registrierungstyp::kText;
    if (!text && gelesen->typ != registrierungstyp::kDword) return true;
    const std::optional<Variant> ergebnis = text ? dekodiert(gelesen->daten, roh) : zahl(gelesen->daten);
    if (ergebnis) wert = *ergebnis;
    return ergebnis.has_value();
}

}  // namespace wendel::ModulRegistrierung
