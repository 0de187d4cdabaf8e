#include "jet/storage/WriteErrors.h"

#include <string>

#include "jet/storage/File.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr char kSource[] = "Datenbankdatei";

// '|' is replaced by the detail.
std::string_view description(int number) {
    switch (number) {
        case jetfehler::kDuplicateKey:
            return "Die Änderung ist nicht möglich, weil der Index '|' dadurch doppelte Werte enthielte.";
        case jetfehler::kReadOnly:
            return "Aktualisieren nicht möglich. Datenbank oder Objekt ist schreibgeschützt.";
        case jetfehler::kNullInPrimaryKey:
            return "Index oder Primärschlüssel darf keinen Nullwert enthalten.";
        case jetfehler::kTextTooLong:
            return "Das Feld '|' ist zu klein für die Datenmenge, die hinzugefügt werden sollte.";
        case jetfehler::kRecordDeleted: return "Der Datensatz ist gelöscht.";
        case jetfehler::kRowTooLarge: return "Der Datensatz ist zu groß.";
        case jetfehler::kNullInIndex:
            return "Das Feld '|' darf keinen Nullwert enthalten, weil ein Index das verlangt.";
        case jetfehler::kNumericOverflow: return "Numerischer Feldüberlauf.";
        default: return "Fehler bei der Konvertierung des Datentyps.";
    }
}

}  // namespace

void throwWriteError(int number, std::string_view detail) {
    throw Fehler(number, kSource, ersetzt(description(number), "|", detail));
}

}  // namespace wendel::jet
