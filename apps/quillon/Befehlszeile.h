#pragma once
// From the arguments of the settings tool to a list of plain jobs. Everything is checked here, names and
// values included, so that a mistake in the last argument is found before the first job has changed a file.

#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "platform/Variant.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel::quillon {

// Wrong usage; what() is German and complete.
class Gebrauchsfehler : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

struct Anlegen {};
struct Erststart {};  // Anlegen for a newcomer: a new database gets the example guide
struct Beispiel {};
struct Setze {
    const Einstellungszeile* zeile;
    Variant wert;
};
struct Anfuegen {
    GespeicherterTermin termin;
};
struct Zeige {
    const Einstellungszeile* zeile;  // null: all
};
struct TermineExport {
    std::string datei;  // native and absolute; "-" is the standard output
};
struct TermineImport {
    std::string datei;  // native and absolute
};
using Auftrag =
    std::variant<Anlegen, Erststart, Beispiel, Setze, Anfuegen, Zeige, TermineExport, TermineImport>;

struct Befehl {
    bool hilfe = false;                 // nothing else is asked for then
    bool pruefen = false;               // the same; there are no jobs
    std::optional<std::string> ordner;  // as typed
    std::vector<Auftrag> auftraege;     // in the order of the arguments, at least one unless one of the above
};

// The arguments without the program's name, UTF-8. Throws Gebrauchsfehler.
Befehl befehlAus(std::span<const std::string> argumente);

// What --hilfe prints, with every setting's name and form.
std::string hilfetext();

}  // namespace wendel::quillon
