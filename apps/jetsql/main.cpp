// jetsql: runs statements of the database's dialect on a Jet file and prints their rows. See kUsage.

#include <charconv>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/LinuxUhr.h"
#include "jet/Connection.h"
#include "jet/RowText.h"
#include "jet/storage/Compact.h"
#include "jet/storage/FileCheck.h"
#include "jet/storage/Repair.h"
#include "jet/storage/Schema.h"
#include "platform/Fehler.h"

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr std::string_view kUsage =
    "Aufruf: jetsql DATEI [ANWEISUNG ...] [--sperren SEKUNDEN]\n"
    "        jetsql DATEI --anlegen [ANWEISUNG ...]\n"
    "        jetsql DATEI --pruefen\n"
    "        jetsql DATEI --reparieren\n"
    "        jetsql DATEI --komprimieren ZIEL\n"
    "\n"
    "Führt SQL-Anweisungen auf einer Jet-Datenbank (.mdb) aus. Ohne ANWEISUNG wird jede Zeile der\n"
    "Standardeingabe als Anweisung ausgeführt, sobald sie gelesen ist.\n"
    "\n"
    "Ausgabe: eine Kopfzeile mit den Spaltennamen, dann eine Zeile je Datensatz, UTF-8, durch TAB getrennt.\n"
    "Null erscheint als \\N, in Texten stehen \\\\ \\t \\r \\n \\0 für Backslash, TAB, CR, LF und NUL.\n"
    "Ja/Nein ist -1/0, ein Datum jjjj-mm-tt hh:mm:ss. Eine Anweisung, die ändert, ergibt die Spalte\n"
    "Geändert mit der Zahl der Datensätze.\n"
    "\n"
    "--sperren SEKUNDEN    hält nach den Anweisungen die Schreibsperre der Datei, sagt \"Gesperrt.\" und "
    "endet\n"
    "                      nach so vielen Sekunden; andere Programme können so lange nur lesen\n"
    "--anlegen             legt DATEI zuerst neu an; mit --anlegen-jet3 in der älteren Fassung des Formats\n"
    "--pruefen             nennt zeilenweise, was in der Datei nicht zusammenpasst; Rückgabewert 1, wenn "
    "etwas\n"
    "                      gefunden wurde (auch Harmloses, das andere Programme hinterlassen)\n"
    "--reparieren          baut DATEI aus dem neu auf, was von ihr lesbar ist\n"
    "--komprimieren ZIEL   kopiert DATEI ohne das Gelöschte in die neue Datei ZIEL\n"
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

void printRows(wendel::jet::Query& query) {
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
}

void runStatement(wendel::jet::Connection& connection, const std::string& statement) {
    auto outcome = connection.run(statement);
    if (outcome.rows) {
        printRows(*outcome.rows);
    } else {
        std::string answer = "Geändert\n" + std::to_string(outcome.changed) + "\n";
        flush(answer);
    }
    std::fflush(stdout);
}

bool isBlank(std::string_view line) { return line.find_first_not_of(" \t\r") == std::string_view::npos; }

// What the command line asks for.
struct Task {
    std::string file;
    std::vector<std::string> statements;
    std::optional<wendel::jet::Version> create;
    std::optional<std::string> compactTo;
    int lockSeconds = -1;  // -1: no lock
    bool check = false;
    bool repair = false;
};

std::optional<int> wholeNumber(const std::string& text) {
    int value = 0;
    const char* last = text.data() + text.size();
    const auto result = std::from_chars(text.data(), last, value);
    return result.ec == std::errc() && result.ptr == last && value >= 0 ? std::optional(value) : std::nullopt;
}

// Nothing for a wrong call.
std::optional<Task> taskOf(const std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments[0].empty() || arguments[0][0] == '-') {
        return std::nullopt;
    }
    Task task;
    task.file = arguments[0];
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (!argument.starts_with("--")) {
            task.statements.push_back(argument);
        } else if (argument == "--anlegen") {
            task.create = wendel::jet::Version::kJet4;
        } else if (argument == "--anlegen-jet3") {
            task.create = wendel::jet::Version::kJet3;
        } else if (argument == "--pruefen") {
            task.check = true;
        } else if (argument == "--reparieren") {
            task.repair = true;
        } else if (argument == "--komprimieren" && hasValue) {
            task.compactTo = arguments[++i];
        } else if (const auto seconds = hasValue ? wholeNumber(arguments[i + 1]) : std::nullopt;
                   argument == "--sperren" && seconds) {
            task.lockSeconds = *seconds;
            ++i;
        } else {
            return std::nullopt;
        }
    }
    const bool runs = task.create || task.lockSeconds >= 0 || !task.statements.empty();
    const int tasks =
        (runs ? 1 : 0) + (task.check ? 1 : 0) + (task.repair ? 1 : 0) + (task.compactTo ? 1 : 0);
    return tasks > 1 ? std::nullopt : std::optional(task);
}

void runStatements(const Task& task, wendel::Uhr& uhr) {
    wendel::jet::Connection connection(task.file, uhr);
    for (const std::string& statement : task.statements) {
        runStatement(connection, statement);
    }
    std::string line;
    const bool fromInput = task.statements.empty() && !task.create && task.lockSeconds < 0;
    while (fromInput && std::getline(std::cin, line)) {
        if (!isBlank(line)) {
            runStatement(connection, line);
        }
    }
    if (task.lockSeconds >= 0) {
        const wendel::jet::File::Writing lock(connection.file());
        std::cout << "Gesperrt." << std::endl;
        uhr.schlafe(task.lockSeconds * 1000);
    }
}

int check(const std::string& file) {
    using wendel::jet::File;
    wendel::jet::Database database(file, wendel::jet::Access::kReadOnly, File::kDefaultCacheBytes,
                                   File::Opening::kReading);
    const File::Reading reading(database.file());
    const std::vector<std::string> findings = wendel::jet::checkFile(database);
    for (const std::string& finding : findings) {
        std::cout << finding << "\n";
    }
    return findings.empty() ? kDone : kFailed;
}

int run(const Task& task, wendel::Uhr& uhr) {
    if (task.check) {
        return check(task.file);
    }
    if (task.repair) {
        wendel::jet::repairDatabaseFile(task.file);
    } else if (task.compactTo) {
        wendel::jet::compactDatabaseFile(task.file, *task.compactTo);
    } else {
        if (task.create) {
            wendel::jet::createDatabaseFile(task.file, *task.create);
        }
        runStatements(task, uhr);
    }
    return kDone;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 1 && (arguments[0] == "--hilfe" || arguments[0] == "--help")) {
        std::cout << kUsage;
        return kDone;
    }
    const std::optional<Task> task = taskOf(arguments);
    if (!task) {
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
        return run(*task, *uhr);
    } catch (const wendel::Fehler& fehler) {
        std::fflush(stdout);
        std::cerr << "(" << fehler.nummer() << ") " << fehler.beschreibung() << "\n";
        return kFailed;
    }
}
