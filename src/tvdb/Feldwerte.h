#pragma once
// Field values of a recordset as members of a record: Null and what can't be converted become "", 0, false or
// the zero of the calendar, so that one odd value in the shared database never stops the reading of a row.

#include <cstdint>
#include <string>

#include "platform/Datum.h"
#include "platform/Variant.h"

namespace wendel::Feldwerte {

std::string alsText(const Variant& feld);
std::int16_t alsInteger(const Variant& feld);
std::int32_t alsLong(const Variant& feld);
bool alsBool(const Variant& feld);
Datum alsDatum(const Variant& feld);

}  // namespace wendel::Feldwerte
