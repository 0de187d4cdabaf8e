#include "tvdb/Variantdatei.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::Variantdatei {

namespace {

constexpr std::size_t kLaengsteZeichenfolge = 65535;

std::uint16_t code(Varianttyp typ) { return static_cast<std::uint16_t>(typ); }

[[noreturn]] void unlesbar(const char* warum) {
    throw Fehler(fehlernummer::kTyp, "GetEinstellungsarray",
                 std::string("Typen unverträglich. Die Einstellungen sind beschädigt: ") + warum + ".");
}

[[noreturn]] void nichtSpeicherbar(const char* warum) {
    throw Fehler(fehlernummer::kEigener, "SetEinstellungsarray",
                 std::string("Die Einstellungen können nicht gespeichert werden: ") + warum + ".");
}

class Leser {
  public:
    explicit Leser(std::string_view bytes) : rest_(bytes) {}

    Variant variant(int tiefe) { return wert(zahl<std::uint16_t>(), tiefe); }

  private:
    template <class T>
    T zahl() {
        using Roh = std::make_unsigned_t<T>;
        const std::string_view bytes = nimm(sizeof(T));
        Roh roh = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i) {
            roh = static_cast<Roh>(roh | static_cast<Roh>(static_cast<std::uint8_t>(bytes[i])) << (8 * i));
        }
        return std::bit_cast<T>(roh);
    }

    std::string_view nimm(std::size_t anzahl) {
        if (anzahl > rest_.size()) unlesbar("Die Daten sind abgeschnitten");
        const std::string_view bytes = rest_.substr(0, anzahl);
        rest_.remove_prefix(anzahl);
        return bytes;
    }

    Variant wert(std::uint16_t typ, int tiefe) {
        if (typ & kArrayFlag)
            return Variant::array(array(static_cast<std::uint16_t>(typ & ~kArrayFlag), tiefe));
        switch (static_cast<Varianttyp>(typ)) {
            case Varianttyp::Empty: return Variant();
            case Varianttyp::Null: return Variant::null();
            case Varianttyp::Integer: return Variant::integer(zahl<std::int16_t>());
            case Varianttyp::Long: return Variant::lang(zahl<std::int32_t>());
            case Varianttyp::Single: return Variant::einfach(std::bit_cast<float>(zahl<std::uint32_t>()));
            case Varianttyp::Double: return Variant::doppelt(std::bit_cast<double>(zahl<std::uint64_t>()));
            case Varianttyp::Currency: return Variant::waehrung(zahl<std::int64_t>());
            case Varianttyp::Date: return Variant::datumRoh(std::bit_cast<double>(zahl<std::uint64_t>()));
            case Varianttyp::String: return Variant::text(ausWindows1252(nimm(zahl<std::uint16_t>())));
            case Varianttyp::Boolean: return Variant::boolesch(zahl<std::int16_t>() != 0);
            case Varianttyp::Byte: return Variant::byte(zahl<std::uint8_t>());
            case Varianttyp::Variant: break;
        }
        unlesbar("Unbekannter Typ");
    }

    Array array(std::uint16_t elementtyp, int tiefe) {
        if (tiefe >= kHoechsteTiefe) unlesbar("Zu tief verschachtelt");
        Array ergebnis;
        ergebnis.elementtyp = static_cast<Varianttyp>(elementtyp);
        const std::size_t kleinstes = kleinsteElementgroesse(ergebnis.elementtyp);
        const std::size_t anzahl = grenzen(ergebnis);
        // Before anything is reserved: a few bytes must not claim gigabytes.
        if (anzahl > rest_.size() / kleinstes) unlesbar("Mehr Elemente als Daten");
        ergebnis.elemente.reserve(anzahl);
        const bool mitTyp = ergebnis.elementtyp == Varianttyp::Variant;
        for (std::size_t i = 0; i < anzahl; ++i) {
            ergebnis.elemente.push_back(mitTyp ? variant(tiefe + 1) : wert(elementtyp, tiefe + 1));
        }
        return ergebnis;
    }

    static std::size_t kleinsteElementgroesse(Varianttyp typ) {
        switch (typ) {
            case Varianttyp::Variant:
            case Varianttyp::Integer:
            case Varianttyp::Boolean:
            case Varianttyp::String: return 2;
            case Varianttyp::Long:
            case Varianttyp::Single: return 4;
            case Varianttyp::Double:
            case Varianttyp::Currency:
            case Varianttyp::Date: return 8;
            case Varianttyp::Byte: return 1;
            // Elements without any bytes are no data, and their number would be unbounded.
            case Varianttyp::Empty:
            case Varianttyp::Null: break;
        }
        unlesbar("Unbekannter Elementtyp");
    }

    // Reads the bounds of all dimensions; the result is the number of elements.
    std::size_t grenzen(Array& ergebnis) {
        const std::size_t dimensionen = zahl<std::uint16_t>();
        if (dimensionen > rest_.size() / 8) unlesbar("Mehr Dimensionen als Daten");
        std::size_t anzahl = dimensionen == 0 ? 0 : 1;
        for (std::size_t d = 0; d < dimensionen; ++d) {
            Feldgrenzen g;
            g.anzahl = zahl<std::int32_t>();
            g.untergrenze = zahl<std::int32_t>();
            pruefeGrenzen(g);
            anzahl *= static_cast<std::size_t>(g.anzahl);
            // Holds at every step of the product, so that it can't run over.
            if (anzahl > rest_.size()) unlesbar("Mehr Elemente als Daten");
            ergebnis.grenzen.push_back(g);
        }
        return anzahl;
    }

    static void pruefeGrenzen(const Feldgrenzen& g) {
        const std::int64_t obergrenze = std::int64_t{g.untergrenze} + g.anzahl - 1;
        if (g.anzahl < 0 || obergrenze > std::numeric_limits<std::int32_t>::max() ||
            obergrenze < std::numeric_limits<std::int32_t>::min()) {
            unlesbar("Unmögliche Feldgrenzen");
        }
    }

    std::string_view rest_;
};

class Schreiber {
  public:
    std::string bytes;

    void variant(const Variant& v, int tiefe) {
        zahl(v.typcode());
        daten(v, tiefe);
    }

  private:
    template <class T>
    void zahl(T wert) {
        auto roh = static_cast<std::make_unsigned_t<T>>(wert);
        for (std::size_t i = 0; i < sizeof(T); ++i) {
            bytes += static_cast<char>(static_cast<std::uint8_t>(roh >> (8 * i)));
        }
    }

    void zeichenfolge(const std::string& utf8) {
        const std::string zeichen = nachWindows1252(utf8);
        if (zeichen.size() > kLaengsteZeichenfolge) nichtSpeicherbar("Ein Text ist länger als 65535 Zeichen");
        zahl(static_cast<std::uint16_t>(zeichen.size()));
        bytes += zeichen;
    }

    void daten(const Variant& v, int tiefe) {
        std::visit([&](const auto& wert) { einzeln(wert, tiefe); }, v.wert());
    }

    void einzeln(Variant::LeerWert, int) {}
    void einzeln(Variant::NullWert, int) {}
    void einzeln(std::int16_t wert, int) { zahl(wert); }
    void einzeln(std::int32_t wert, int) { zahl(wert); }
    void einzeln(float wert, int) { zahl(std::bit_cast<std::uint32_t>(wert)); }
    void einzeln(double wert, int) { zahl(std::bit_cast<std::uint64_t>(wert)); }
    void einzeln(Variant::Waehrung wert, int) { zahl(wert.zehntausendstel); }
    void einzeln(Variant::Tageszahl wert, int) { zahl(std::bit_cast<std::uint64_t>(wert.tage)); }
    void einzeln(const std::string& wert, int) { zeichenfolge(wert); }
    void einzeln(bool wert, int) { zahl(static_cast<std::int16_t>(wert ? -1 : 0)); }
    void einzeln(std::uint8_t wert, int) { zahl(wert); }
    void einzeln(const std::vector<std::uint8_t>&, int) { nichtSpeicherbar("Binärdaten haben keine Form"); }

    void einzeln(const std::shared_ptr<const Array>& wert, int tiefe) {
        if (tiefe >= kHoechsteTiefe) nichtSpeicherbar("Felder sind zu tief verschachtelt");
        zahl(static_cast<std::uint16_t>(wert->grenzen.size()));
        for (const Feldgrenzen& g : wert->grenzen) {
            zahl(g.anzahl);
            zahl(g.untergrenze);
        }
        if (wert->elemente.size() != elementzahl(*wert))
            nichtSpeicherbar("Ein Feld passt nicht zu seinen Grenzen");
        for (const Variant& element : wert->elemente)
            feldelement(*wert, element, tiefe + 1);
    }

    static std::size_t elementzahl(const Array& feld) {
        std::size_t anzahl = feld.grenzen.empty() ? 0 : 1;
        for (const Feldgrenzen& g : feld.grenzen)
            anzahl *= static_cast<std::size_t>(g.anzahl);
        return anzahl;
    }

    void feldelement(const Array& feld, const Variant& element, int tiefe) {
        if (feld.elementtyp == Varianttyp::Variant) return variant(element, tiefe);
        if (element.typcode() != code(feld.elementtyp))
            nichtSpeicherbar("Ein Feldelement hat einen fremden Typ");
        daten(element, tiefe);
    }
};

}  // namespace

Variant gelesen(std::string_view bytes) { return Leser(bytes).variant(0); }

std::string geschrieben(const Variant& wert) {
    Schreiber schreiber;
    schreiber.variant(wert, 0);
    return std::move(schreiber.bytes);
}

}  // namespace wendel::Variantdatei
