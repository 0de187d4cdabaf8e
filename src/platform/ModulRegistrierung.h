#pragma once
// Single settings in the registry that keep their type: numbers natively, booleans and dates as text behind a
// type prefix. Each operation opens the key, does one thing and closes it. Only CreateKey makes keys. Nothing
// is reported but by the result.

#include <string>

#include "platform/Variant.h"
#include "platform/ports/Registrierung.h"

namespace wendel::ModulRegistrierung {

bool KeyExists(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad);

// On the disk when it returns true.
bool CreateKey(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad);

// Integers, dates, texts and booleans; of anything else nothing is written, which counts as done all the
// same. False when the key is missing or can't be written.
bool WriteValue(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad,
                const std::string& name, const Variant& wert);

// False also when there is no such value.
bool DeleteValue(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad,
                 const std::string& name);

// Long, Boolean, Date or String; with roh a text stays what it is, whatever it begins with. False when there
// is no such value or its text is no date behind the prefix of one; wert is untouched then, as it is by a
// value of another registry type, whose reading counts as done.
bool ReadValue(Registrierung& registrierung, Registrierungswurzel wurzel, const std::string& pfad,
               const std::string& name, Variant& wert, bool roh = false);

}  // namespace wendel::ModulRegistrierung
