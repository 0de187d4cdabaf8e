#include "platform/Variant.h"

#include <array>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"

namespace wendel {

namespace {

using Feld = std::shared_ptr<const Array>;
using Bytes = std::vector<std::uint8_t>;

[[noreturn]] void falscherTyp() { throw Fehler(fehlernummer::kTyp, "Variant", "Typen unverträglich"); }
[[noreturn]] void nullWert() {
    throw Fehler(fehlernummer::kNull, "Variant", "Unzulässige Verwendung von Null");
}

template <class... F>
struct Faelle : F... {
    using F::operator()...;
};
template <class... F>
Faelle(F...) -> Faelle<F...>;  // implicit only from Clang 17 on

// Numbers of every type as double, exact for all but large currency amounts.
double alsZahl(const Variant::Wert& wert) {
    return std::visit(
        Faelle{[](Variant::LeerWert) { return 0.0; }, [](Variant::NullWert) -> double { nullWert(); },
               [](Variant::Waehrung w) { return static_cast<double>(w.zehntausendstel) / 10000.0; },
               [](Variant::Tageszahl w) { return w.tage; }, [](const std::string& w) { return Val(w); },
               [](bool w) { return w ? -1.0 : 0.0; }, [](const Feld&) -> double { falscherTyp(); },
               [](const Bytes&) -> double { falscherTyp(); },
               [](auto zahl) { return static_cast<double>(zahl); }},
        wert);
}

std::string waehrungAlsText(std::int64_t zehntausendstel) {
    // The sign apart: the amount between 0 and -1 has none in its whole part.
    const bool negativ = zehntausendstel < 0;
    const auto betrag = negativ ? 0 - static_cast<std::uint64_t>(zehntausendstel)
                                : static_cast<std::uint64_t>(zehntausendstel);
    std::string text = (negativ ? "-" : "") + mitNullen(static_cast<std::int64_t>(betrag / 10000), 1);
    if (betrag % 10000 == 0) return text;
    text += "." + mitNullen(static_cast<std::int64_t>(betrag % 10000), 4);
    text.erase(text.find_last_not_of('0') + 1);
    return text;
}

}  // namespace

// ---- Array ----

Array Array::eindimensional(std::int32_t untergrenze, std::int32_t anzahl) {
    Array array;
    array.grenzen = {{anzahl, untergrenze}};
    array.elemente.resize(static_cast<std::size_t>(anzahl));
    return array;
}

std::size_t Array::stelle(const std::vector<std::int32_t>& index) const {
    const auto ausserhalb = [] {
        return Fehler(fehlernummer::kIndex, "Array", "Index außerhalb des gültigen Bereichs");
    };
    if (index.size() != grenzen.size()) throw ausserhalb();
    std::size_t stelle = 0;
    for (std::size_t d = index.size(); d-- > 0;) {
        const std::int64_t abstand = std::int64_t{index[d]} - grenzen[d].untergrenze;
        if (abstand < 0 || abstand >= grenzen[d].anzahl) throw ausserhalb();
        stelle = stelle * static_cast<std::size_t>(grenzen[d].anzahl) + static_cast<std::size_t>(abstand);
    }
    if (stelle >= elemente.size()) throw ausserhalb();
    return stelle;
}

const Variant& Array::at(const std::vector<std::int32_t>& index) const { return elemente[stelle(index)]; }
Variant& Array::at(const std::vector<std::int32_t>& index) { return elemente[stelle(index)]; }

bool operator==(const Array& a, const Array& b) {
    return a.elementtyp == b.elementtyp && a.grenzen == b.grenzen && a.elemente == b.elemente;
}

// ---- Variant ----

Variant Variant::array(Array a) { return Variant(std::make_shared<const Array>(std::move(a))); }

std::uint16_t Variant::typcode() const {
    // In the order of the alternatives; arrays and binary values follow below.
    static constexpr std::array kTypen = {Varianttyp::Empty,    Varianttyp::Null,   Varianttyp::Integer,
                                          Varianttyp::Long,     Varianttyp::Single, Varianttyp::Double,
                                          Varianttyp::Currency, Varianttyp::Date,   Varianttyp::String,
                                          Varianttyp::Boolean,  Varianttyp::Byte};
    const auto code = [](Varianttyp typ) { return static_cast<std::uint16_t>(typ); };
    if (wert_.index() < kTypen.size()) return code(kTypen[wert_.index()]);
    return kArrayFlag | code(istArray() ? alsArray().elementtyp : Varianttyp::Byte);
}

bool Variant::alsBool() const { return alsZahl(wert_) != 0; }
std::int16_t Variant::alsInteger() const { return CInt(alsZahl(wert_)); }
std::int32_t Variant::alsLong() const { return CLng(alsZahl(wert_)); }
double Variant::alsDouble() const { return alsZahl(wert_); }
Datum Variant::alsDatum() const { return Datum::ausTageszahl(alsZahl(wert_)); }

std::string Variant::alsText() const {
    return std::visit(
        Faelle{[](LeerWert) { return std::string(); }, [](NullWert) -> std::string { nullWert(); },
               [](Waehrung w) { return waehrungAlsText(w.zehntausendstel); },
               [](Tageszahl w) { return datumAlsText(Datum::ausTageszahl(w.tage)); },
               [](const std::string& w) { return w; }, [](bool w) { return std::string(w ? "-1" : "0"); },
               [](float w) { return einfachAlsText(w); }, [](double w) { return zahlAlsText(w); },
               [](const Feld&) -> std::string { falscherTyp(); },
               [](const Bytes&) -> std::string { falscherTyp(); },
               [](auto ganzzahl) { return mitNullen(ganzzahl, 1); }},
        wert_);
}

const Array& Variant::alsArray() const {
    if (const Feld* feld = std::get_if<Feld>(&wert_)) return **feld;
    falscherTyp();
}

bool operator==(const Variant& a, const Variant& b) {
    if (a.istArray() && b.istArray()) return a.alsArray() == b.alsArray();
    return a.wert_ == b.wert_;
}

}  // namespace wendel
