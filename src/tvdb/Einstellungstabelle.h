#pragma once
// The one table of the settings: index, name, type and default of each, their typed form, and their text form
// for the command line. Bytes and files are left to Einstellungen; what a value causes, to its owner.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Datum.h"
#include "platform/Variant.h"
#include "tvdb/Einstellungen.h"

namespace wendel {

namespace einstellung {
inline constexpr std::int32_t kDatenbank = 1;
inline constexpr std::int32_t kHyperlinks = 2;
inline constexpr std::int32_t kAutostart = 3;
inline constexpr std::int32_t kLiveUpdate = 4;
inline constexpr std::int32_t kLiveUpdateModus = 5;
inline constexpr std::int32_t kZeitplan = 6;
inline constexpr std::int32_t kLiveUpdateStunden = 7;
inline constexpr std::int32_t kLetztesUpdate = 8;
inline constexpr std::int32_t kLiveUpdateVersteckt = 9;
inline constexpr std::int32_t kLinkParameter = 10;
inline constexpr std::int32_t kDoppelklick = 11;
inline constexpr std::int32_t kErinnerung = 12;
inline constexpr std::int32_t kVorlauf = 13;
inline constexpr std::int32_t kNachlauf = 14;
inline constexpr std::int32_t kSkript = 15;
inline constexpr std::int32_t kTVOrdner = 16;
inline constexpr std::int32_t kAufzeichnungsordner = 17;
inline constexpr std::int32_t kDebuganzeige = 18;
inline constexpr std::int32_t kBenutzer = 19;
inline constexpr std::int32_t kTermin = 20;
inline constexpr std::int32_t kKlang = 21;
inline constexpr std::int32_t kTagestipp = 22;
inline constexpr std::int32_t kLoeschtage = 23;
inline constexpr std::int32_t kVerpasste = 24;
inline constexpr std::int32_t kUpdateNachholen = 25;
inline constexpr std::int32_t kWachhalten = 26;
inline constexpr std::int32_t kWecken = 27;
inline constexpr std::int32_t kXmltvQuelle = 28;
inline constexpr std::int32_t kXmltvBefehl = 29;
inline constexpr std::int32_t kWiederholungen = 127;
}  // namespace einstellung

inline constexpr std::int32_t kStandardWiederholungen = 10;

// One appointment as the settings store it; the living record is made from it elsewhere.
struct GespeicherterTermin {
    Datum weckZeit;
    std::string weckText;
    std::int16_t intervall = 0;
    bool aktiv = false;
    friend bool operator==(const GespeicherterTermin&, const GespeicherterTermin&) = default;
};

// One row of the table. The default is a text, a number or a path below the programme folder, as typ says.
struct Einstellungszeile {
    std::int32_t index;
    std::string_view name;  // for the command line, compared without case
    Varianttyp typ;         // Variant for the appointments, which are an array
    std::int32_t standardzahl;
    std::string_view standardtext;
    bool unterProgrammordner;  // the default text counts from the programme folder
};

// All rows in the order of their indices.
std::span<const Einstellungszeile> einstellungstabelle();
// Null pointers for what the table does not hold.
const Einstellungszeile* einstellungszeile(std::int32_t index);
const Einstellungszeile* einstellungszeile(std::string_view name);
// The default in the row's type; Empty for the appointments.
Variant standardwert(const Einstellungszeile& zeile, const std::string& programmordner);

// All settings in their types, defaults filled in: what the process works with between start and refresh.
// Paths of folders end in "\".
struct Konfiguration {
    std::string datenbank;
    std::string hyperlinksOrdner;
    bool autostart = false;
    bool liveUpdate = false;
    std::int16_t liveUpdateModus = 2;
    std::string zeitplan;
    std::int16_t liveUpdateStunden = 24;  // 0 and below: never
    Datum letztesUpdate;                  // Datum() is never
    bool liveUpdateVersteckt = true;
    std::string linkParameter;
    std::int16_t doppelklick = 0;  // 0 list window, 1 main application
    bool erinnerung = true;
    std::int16_t vorlaufMinuten = 5;
    std::int16_t nachlaufMinuten = 10;
    std::string skript;
    std::string tvOrdner;
    std::string aufzeichnungsordner;
    bool debuganzeige = false;
    std::string benutzer;  // empty: the computer's name
    std::vector<GespeicherterTermin> termine;
    std::string klang;
    bool tagestipp = true;
    std::int16_t loeschtage = 7;  // at least 1
    bool verpassteZeigen = true;
    bool updateNachholen = false;
    bool wachhalten = true;
    bool wecken = false;
    std::string xmltvQuelle;
    std::string xmltvBefehl;
    std::int32_t wiederholungen = kStandardWiederholungen;  // never 0
};

// Reads the file once; an absent or unreadable one gives the defaults. Never throws, never creates the file.
Konfiguration liesKonfiguration(Einstellungen& einstellungen, const std::string& programmordner);

// Silent retries after a locking conflict, freshly read: a stored 0 and anything unreadable is the default.
std::int32_t liesWiederholungen(Einstellungen& einstellungen);

// The stored table of appointments: 4 rows (WeckZeit, WeckText, Intervall, Aktiv) by one column each, both
// indices from 1; Empty when there are none.
Variant termineAlsVariant(std::span<const GespeicherterTermin> termine);
// Anything that is no such table gives no appointments; a column whose moment is no date is left out.
std::vector<GespeicherterTermin> termineAusVariant(const Variant& wert);

// Text forms of the command line: yes/no as "ja"/"nein", dates as "dd.mm.yyyy hh:nn:ss", appointments as
// "dd.mm.yyyy hh:nn:ss|Intervall|ja|Text" (the text may hold "|"). Reading throws Fehler 1 with a German
// description that names the setting. einstellungAusText is for every row but the appointments.
std::string einstellungAlsText(const Einstellungszeile& zeile, const Variant& wert);
Variant einstellungAusText(const Einstellungszeile& zeile, std::string_view text);
std::string terminAlsText(const GespeicherterTermin& termin);
GespeicherterTermin terminAusText(std::string_view text);

}  // namespace wendel
