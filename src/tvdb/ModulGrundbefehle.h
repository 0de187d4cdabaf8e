#pragma once
// The suite's basic commands: literals for SQL statements, date texts, path and file tests. No state; whoever
// builds a statement or reads a date that a user or another program wrote calls these. Files and folders are
// reached through the Dateisystem port only.

#include <string>
#include <string_view>

#include "platform/Datum.h"
#include "platform/Variant.h"
#include "platform/ports/Dateisystem.h"

namespace wendel::ModulGrundbefehle {

// Literals as the Jet engine reads them, whatever the user's locale: 'it''s', #5/4/2012#,
// #5/4/2012 20:15:00# (minute and second with two digits, the rest without leading zeros), -1 and 0.
std::string SqlText(std::string_view text);
std::string SqlDatum(Datum d);
std::string SqlDatumZeit(Datum d);
std::string SqlBool(bool wert);

// ersatz when wert is Null, else wert: the gate for every nullable column.
Variant NullErsatz(const Variant& wert, const Variant& ersatz);

// Appends "\" unless it is the last character; "" becomes "\".
std::string PfadMitBackslash(std::string_view pfad);
// What follows the last "\" or "/"; everything when there is neither.
std::string DateinameAusPfad(std::string_view pfad);

bool DateiExistiert(Dateisystem& dateien, const std::string& pfad);
// Tries to make the folder current; afterwards the programme folder is current again.
bool OrdnerExistiert(Dateisystem& dateien, const std::string& programmordner, const std::string& pfad);
void ProgrammordnerAktivieren(Dateisystem& dateien, const std::string& programmordner);

// "yyyymmddhhnnss".
std::string DatumKompakt(Datum d);

// The reader of date texts, platform/Datumstext.h, under its name here. Throws Fehler 1 with the described
// text for what is no date.
Datum DatumAusText(std::string_view text);
// True when DatumAusText succeeds.
bool IstDatumsausdruck(std::string_view text);

}  // namespace wendel::ModulGrundbefehle
