#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace wendel {

enum class Registrierungswurzel {
    AktuellerBenutzer,
    Rechner,  // of all users; read-only for an ordinary one
};

namespace registrierungsrecht {
inline constexpr std::uint32_t kAbfragen = 1;
inline constexpr std::uint32_t kSetzen = 2;
inline constexpr std::uint32_t kAlle = 0x3F;
}  // namespace registrierungsrecht

namespace registrierungstyp {
inline constexpr std::uint32_t kText = 1;   // REG_SZ
inline constexpr std::uint32_t kDword = 4;  // REG_DWORD, four bytes, little endian
}  // namespace registrierungstyp

struct Registrierungswert {
    std::uint32_t typ = registrierungstyp::kText;
    std::string daten;  // bytes; texts in the 8-bit code page with their closing zero
    friend bool operator==(const Registrierungswert&, const Registrierungswert&) = default;
};

// The registry's own operations: a tree of keys ("\" between their names, compared without case), each with
// named values. An open key is a number, 0 is none; it is closed again with schliessen.
class Registrierung {
  public:
    using Schluessel = std::uint32_t;

    virtual ~Registrierung() = default;
    virtual Schluessel oeffnen(Registrierungswurzel wurzel, const std::string& pfad,
                               std::uint32_t rechte) = 0;
    // Also opens one that is there already. Parents are made too.
    virtual Schluessel anlegen(Registrierungswurzel wurzel, const std::string& pfad,
                               std::uint32_t rechte) = 0;
    // False without the right, and when it could not be stored.
    [[nodiscard]] virtual bool setzeWert(Schluessel schluessel, const std::string& name,
                                         const Registrierungswert& wert) = 0;
    virtual std::optional<Registrierungswert> frageWert(Schluessel schluessel, const std::string& name) = 0;
    // False when there is no such value.
    [[nodiscard]] virtual bool loescheWert(Schluessel schluessel, const std::string& name) = 0;
    // On the disk when the call returns.
    [[nodiscard]] virtual bool sichern(Schluessel schluessel) = 0;
    virtual void schliessen(Schluessel schluessel) = 0;
};

}  // namespace wendel
