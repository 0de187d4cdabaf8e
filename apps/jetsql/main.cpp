// jetsql: runs statements of the database's dialect on a Jet file and prints their rows. See kUsage.

#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/LinuxUhr.h"
#include "jet/Connection.h"
#include "jet/RowText.h"
#include "platform/Fehler.h"

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr std::string_view kUsage =
    "Aufruf: jetsql DATEI [ANWEISUNG ...]\n"
    "\n"
    "Führt SQL-Anweisungen auf einer Jet-Datenbank (.mdb) aus. Ohne ANWEISUNG wird jede Zeile der\n"
    "Standardeingabe als Anweisung ausgeführt, sobald sie gelesen ist.\n"
    "\n"
    "Ausgabe: eine Kopfzeile mit den Spaltennamen, dann eine Zeile je Datensatz, UTF-8, durch TAB getrennt.\n"
    "Null erscheint als \\N, in Texten stehen \\\\ \\t \\r \\n \\0 für Backslash, TAB, CR, LF und NUL.\n"
    "Ja/Nein ist -1/0, ein Datum jjjj-mm-tt hh:mm:ss.\n"
    "\n"
    "Der erste Fehler beendet den Lauf mit \"(Nummer) Beschreibung\" auf der Fehlerausgabe.\n"
    "Rückgabewert: 0 fertig, 1 Fehler, 2 falscher Aufruf.\n";

constexpr std::size_t kBufferBytes = 1 << 16;

// Whole buffers to standard output; the reader may have gone away.
void flush(std::string& buffer) {
    if (std::fwrite(buffer.data(), 1, buffer.size(), stdout) != buffer.size()) {
        throw wendel::Fehler(wendel::fehlernummer::kEigener, "jetsql",
                             "Die Ausgabe kann nicht geschrieben werden.");
    }
    buffer.clear();
}

void runStatement(wendel::jet::Connection& connection, const std::string& statement) {
    wendel::jet::Query query = connection.query(statement);
    std::string buffer;
    buffer.reserve(kBufferBytes + kBufferBytes / 4);
    wendel::jet::appendHeaderLine(query, buffer);
    try {
        while (query.step()) {
            wendel::jet::appendRowLine(query, buffer);
            if (buffer.size() >= kBufferBytes) {
                flush(buffer);
            }
        }
    } catch (const wendel::Fehler&) {
        flush(buffer);  // what was read before the failure is part of the result
        throw;
    }
    flush(buffer);
    std::fflush(stdout);
}

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r") == std::string_view::npos; }

void run(const std::vector<std::string>& arguments, wendel::Uhr& uhr) {
    wendel::jet::Connection connection(arguments[0], uhr);
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        runStatement(connection, arguments[i]);
    }
    std::string line;
    while (arguments.size() == 1 && std::getline(std::cin, line)) {
        if (!isBlank(line)) {
            runStatement(connection, line);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 1 && (arguments[0] == "--hilfe" || arguments[0] == "--help")) {
        std::cout << kUsage;
        return kDone;
    }
    if (arguments.empty() || arguments[0].empty() || arguments[0][0] == '-') {
        std::cerr << kUsage;
        return kWrongUsage;
    }
    std::string problem;
    const auto uhr = wendel::LinuxUhr::ausUmgebung(problem);
    if (!uhr) {
        std::cerr << problem << "\n";
        return kWrongUsage;
    }
    try {
        run(arguments, *uhr);
    } catch (const wendel::Fehler& fehler) {
        std::fflush(stdout);
        std::cerr << "(" << fehler.nummer() << ") " << fehler.beschreibung() << "\n";
        return kFailed;
    }
    return kDone;
}
