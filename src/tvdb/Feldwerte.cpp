#include "tvdb/Feldwerte.h"

#include "platform/Fehler.h"

namespace wendel::Feldwerte {

namespace {

template <class T, class Umwandlung>
T oderNull(const Variant& feld, Umwandlung umwandlung) {
    if (feld.istNull()) return T();
    try {
        return umwandlung(feld);
    } catch (const Fehler&) {
        return T();  // out of range or of a type without conversion
    }
}

}  // namespace

std::string alsText(const Variant& feld) {
    return oderNull<std::string>(feld, [](const Variant& v) { return v.alsText(); });
}

std::int16_t alsInteger(const Variant& feld) {
    return oderNull<std::int16_t>(feld, [](const Variant& v) { return v.alsInteger(); });
}

std::int32_t alsLong(const Variant& feld) {
    return oderNull<std::int32_t>(feld, [](const Variant& v) { return v.alsLong(); });
}

bool alsBool(const Variant& feld) {
    return oderNull<bool>(feld, [](const Variant& v) { return v.alsBool(); });
}

Datum alsDatum(const Variant& feld) {
    return oderNull<Datum>(feld, [](const Variant& v) { return v.alsDatum(); });
}

}  // namespace wendel::Feldwerte
