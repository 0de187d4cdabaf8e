#include "jet/sql/Errors.h"

namespace wendel::jet::sql {
namespace {

// '|' is replaced by the detail.
std::string_view description(int number) {
    switch (number) {
        case kNoEdit: return "Update oder CancelUpdate ohne AddNew oder Edit.";
        case kNoCurrentRow: return "Kein aktueller Datensatz.";
        case kSelectNotExecutable: return "Eine Auswahlabfrage kann nicht ausgeführt werden.";
        case kReadOnly: return "Aktualisieren nicht möglich. Datenbank oder Objekt ist schreibgeschützt.";
        case kLocked: return "Datei konnte nicht gesperrt werden.";
        case kTooFewParameters: return "Zu wenige Parameter. | erwartet.";
        case kDoubleTarget: return "Doppeltes Ausgabeziel '|'.";
        case kNotUpdatable: return "Operation muss eine aktualisierbare Abfrage verwenden.";
        case kExpressionSyntax: return "Syntaxfehler in Abfrageausdruck '|'.";
        case kUnknownTable:
            return "Die Eingangstabelle oder Abfrage '|' wurde nicht gefunden. Stellen Sie sicher, dass sie "
                   "existiert und dass der Name richtig eingegeben wurde.";
        case kAmbiguousField:
            return "Das angegebene Feld '|' kann sich auf mehr als eine Tabelle beziehen, die im "
                   "FROM-Abschnitt "
                   "der SQL-Anweisung aufgelistet ist.";
        case kUnknownFunction: return "Undefinierte Funktion '|' in Ausdruck.";
        case kOrderByDistinct: return "ORDER BY-Klausel (|) verursacht Konflikt mit DISTINCT.";
        case kAggregateInWhere: return "Aggregatfunktion in WHERE-Klausel nicht möglich: |.";
        case kNotAggregated:
            return "Sie wollten eine Abfrage ausführen, die den angegebenen Ausdruck '|' nicht als Teil "
                   "einer "
                   "Aggregatfunktion enthält.";
        case kUnknownInsertField:
            return "Die INSERT INTO-Anweisung enthält den folgenden unbekannten Feldnamen: '|'. Stellen Sie "
                   "sicher, dass Sie den Namen richtig eingegeben haben, und versuchen Sie es erneut.";
        case kNothingToDelete: return "Geben Sie die Tabelle an, die die zu löschenden Datensätze enthält.";
        case kNoStatement:
            return "Ungültige SQL-Anweisung; 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT' oder 'UPDATE' "
                   "erwartet.";
        case kFromSyntax: return "Syntaxfehler in FROM-Klausel.";
        case kGroupBySyntax: return "Syntaxfehler in GROUP BY-Klausel.";
        case kHavingSyntax: return "Syntaxfehler in HAVING-Klausel.";
        case kInsertSyntax: return "Syntaxfehler in der INSERT INTO-Anweisung.";
        case kJoinSyntax: return "Syntaxfehler in JOIN-Operation.";
        case kOrderBySyntax: return "Syntaxfehler in ORDER BY-Klausel.";
        case kSelectSyntax:
            return "Die SELECT-Anweisung schließt ein reserviertes Wort oder ein Argument ein, das falsch "
                   "eingegeben wurde oder fehlt, oder die Interpunktion ist falsch.";
        case kTextAfterEnd: return "Zeichen gefunden nach Ende der SQL-Anweisung.";
        case kUpdateSyntax: return "Syntaxfehler in UPDATE-Anweisung.";
        case kFieldReadOnly: return "Das Feld '|' kann nicht aktualisiert werden.";
        case kUnknownTarget: return "Ausgabetabelle '|' konnte nicht gefunden werden.";
        case kRecordChanged:
            return "Ein anderer Benutzer hat den Datensatz inzwischen geändert oder gelöscht.";
        case kInvalidOperation: return "Unzulässige Operation.";
        case kUnknownField: return "Element in dieser Auflistung nicht gefunden.";
        case kConstraintSyntax: return "Syntaxfehler in CONSTRAINT-Klausel.";
        case kCreateTableSyntax: return "Syntaxfehler in CREATE TABLE-Anweisung.";
        case kCreateIndexSyntax: return "Syntaxfehler in CREATE INDEX-Anweisung.";
        case kFieldSyntax: return "Syntaxfehler in Felddefinition.";
        case kDropSyntax: return "Syntaxfehler in DROP TABLE oder DROP INDEX.";
        case kNumberOfValues:
            return "Anzahl der Abfragewerte und Anzahl der Zielfelder stimmen nicht überein.";
        case kTooComplex: return "Die Abfrage ist zu komplex.";
        case kClosed: return "Objekt ist ungültig oder nicht mehr festgelegt.";
        case kConversion: return "Datentypumwandlungsfehler.";
        case kTypeMismatch: return "Datentypkonflikt in Kriterienausdruck.";
        case kPattern: return "Ungültige Musterzeichenfolge.";
        case kDivisionByZero: return "Division durch Null.";
        default: return "Reservierter Fehler.";
    }
}

}  // namespace

Fehler sqlError(int number, std::string_view detail) {
    std::string text(description(number));
    if (const auto place = text.find('|'); place != std::string::npos) {
        text.replace(place, 1, detail);
    }
    return Fehler(number, "SQL", text);
}

}  // namespace wendel::jet::sql
