#pragma once
// A value whose type is known at run time only: an element of the settings array, a field of a recordset.
// Types and their codes are those of the settings file, which stores them (OLE automation's VARTYPE).

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/Datum.h"

namespace wendel {

class Variant;

enum class Varianttyp : std::uint16_t {
    Empty = 0,
    Null = 1,
    Integer = 2,
    Long = 3,
    Single = 4,
    Double = 5,
    Currency = 6,
    Date = 7,
    String = 8,
    Boolean = 11,
    Variant = 12,  // element type of arrays only
    Byte = 17,
};
inline constexpr std::uint16_t kArrayFlag = 0x2000;

// An array of any number of dimensions, each with its own lower bound. Elements lie with the first index
// running fastest. elementtyp Variant means that each element carries its own type; any other type is the
// type of all elements.
struct Feldgrenzen {
    std::int32_t anzahl = 0;
    std::int32_t untergrenze = 0;
    friend bool operator==(const Feldgrenzen&, const Feldgrenzen&) = default;
};
struct Array {
    Varianttyp elementtyp = Varianttyp::Variant;
    std::vector<Feldgrenzen> grenzen;
    std::vector<Variant> elemente;

    // One dimension of empty variants.
    static Array eindimensional(std::int32_t untergrenze, std::int32_t anzahl);

    // Throw Fehler kIndex when the number of indices or an index is outside the bounds.
    const Variant& at(const std::vector<std::int32_t>& index) const;
    Variant& at(const std::vector<std::int32_t>& index);

  private:
    std::size_t stelle(const std::vector<std::int32_t>& index) const;
};

class Variant {
  public:
    struct LeerWert {
        friend bool operator==(LeerWert, LeerWert) = default;
    };
    struct NullWert {
        friend bool operator==(NullWert, NullWert) = default;
    };
    // A date as its day number, bit for bit as it was read: values of other programs are written back
    // unchanged.
    struct Tageszahl {
        double tage = 0;
        friend bool operator==(Tageszahl, Tageszahl) = default;
    };
    struct Waehrung {
        std::int64_t zehntausendstel = 0;
        friend bool operator==(Waehrung, Waehrung) = default;
    };

    Variant() = default;  // Empty
    static Variant null() { return Variant(NullWert{}); }
    static Variant integer(std::int16_t w) { return Variant(w); }
    static Variant lang(std::int32_t w) { return Variant(w); }
    static Variant einfach(float w) { return Variant(w); }
    static Variant doppelt(double w) { return Variant(w); }
    static Variant waehrung(std::int64_t zehntausendstel) { return Variant(Waehrung{zehntausendstel}); }
    static Variant datum(Datum d) { return Variant(Tageszahl{d.tageszahl()}); }
    static Variant datumRoh(double tage) { return Variant(Tageszahl{tage}); }
    static Variant text(std::string utf8) { return Variant(std::move(utf8)); }
    static Variant boolesch(bool w) { return Variant(w); }
    static Variant byte(std::uint8_t w) { return Variant(w); }
    static Variant array(Array a);
    // Binary and OLE columns of the database; the settings file has no such type.
    static Variant binaer(std::vector<std::uint8_t> bytes) { return Variant(std::move(bytes)); }

    bool istLeer() const { return std::holds_alternative<LeerWert>(wert_); }
    bool istNull() const { return std::holds_alternative<NullWert>(wert_); }
    bool istArray() const { return std::holds_alternative<std::shared_ptr<const Array>>(wert_); }
    bool istText() const { return std::holds_alternative<std::string>(wert_); }

    // Type code as in the settings file, arrays with kArrayFlag. Binary has none: 0x2011 (array of bytes).
    std::uint16_t typcode() const;

    // Lenient conversions: text goes through Val, booleans are -1 and 0, dates their day number, Empty is 0,
    // "" or false. As text, numbers look as in Zahlen.h and dates as datumAlsText makes them. Throw Fehler
    // kNull for Null, kTyp for arrays and binary values, kUeberlauf outside the target's range.
    bool alsBool() const;
    std::int16_t alsInteger() const;
    std::int32_t alsLong() const;
    double alsDouble() const;
    Datum alsDatum() const;
    std::string alsText() const;

    // Throws Fehler kTyp when this is no array.
    const Array& alsArray() const;

    // For a reader that must treat each type differently (the settings writer, the SQL layer).
    using Wert = std::variant<LeerWert, NullWert, std::int16_t, std::int32_t, float, double, Waehrung,
                              Tageszahl, std::string, bool, std::uint8_t, std::shared_ptr<const Array>,
                              std::vector<std::uint8_t>>;
    const Wert& wert() const { return wert_; }

    // Same type and same value; arrays by content.
    friend bool operator==(const Variant& a, const Variant& b);

  private:
    template <class T>
    explicit Variant(T w) : wert_(std::move(w)) {}
    Wert wert_;
};

bool operator==(const Array& a, const Array& b);

}  // namespace wendel
