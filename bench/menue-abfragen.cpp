// What a right click asks of a guide of 25,000 broadcasts (tvdaten-gross.mdb): the four programme queries and
// the day's tip, each beside the same statement in SQLite's words on native SQLite with the same rows and
// indexes. Aim: at most twice SQLite's time, and all of it together, opening included, well below 100 ms.
//   menue-abfragen [tvdaten-gross.mdb]
//
// Ours is the program's own road: the statement through the guarded access, rows turned into records. SQLite
// prepares the statement and reads every column as text. Both have the file in the page cache, where nothing
// waits: processor time is measured, so that other work of the machine does not count; medians over several
// moments of an evening.

#include <ctime>
#include <regex>

#include "Messung.h"
#include "jet/JetDatenbankmaschinen.h"
#include "support/Fakes.h"
#include "traymenu/Menuelisten.h"
#include "traymenu/Tagestipp.h"
#include "tvdb/Programmabfragen.h"

namespace {

using namespace wendel;

constexpr int kRepeats = 15;
const Datum kEvening = DateSerial(2012, 12, 19) + TimeSerial(20, 4, 50);

double processorSeconds(const std::function<void()>& work) {
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

std::string replaced(const std::string& text, const char* pattern, const char* with) {
    return std::regex_replace(text, std::regex(pattern, std::regex::icase), with);
}

std::string inSqlite(const std::string& sql) {
    std::string result = bench::datesAsNumbers(sql);
    result = replaced(result, "inner join \\[", "inner join (");
    result = replaced(result, "\\]\\. as", ") as");
    result = replaced(result, "=true", "=-1");
    return replaced(result, "Format\\(Beginn,'YYYYMMDD'\\)", "strftime('%Y%m%d',Beginn+2415018.5)");
}

// The program's access to the file, without boxes or settings.
struct Program {
    explicit Program(const std::string& path) {
        values.datenbankdatei = path;
        channels.laden();
    }
    Ports ports() {
        fakes.echteDatenbanken = &machines;
        return fakes.ports();
    }
    FakePorts fakes;
    jet::JetDatenbankmaschinen machines{fakes.uhr, [](const std::string& p) { return p; }};
    Prozesswerte values;
    Einstellungen settings{fakes.dateien, kTestordner};
    ModulDatenbankzugriff access{ports(), settings, values};
    Senderliste channels{access};
};

// Ours and SQLite's, alternating.
template <class Ours>
void compare(const char* what, bench::Sqlite& sqlite, const std::vector<std::string>& statements,
             const Ours& ours) {
    std::vector<double> oursTimes, theirTimes;
    std::size_t ourRows = 0, theirRows = 0;
    for (int repeat = 0; repeat < kRepeats; ++repeat) {
        for (std::size_t i = 0; i < statements.size(); ++i) {
            const std::string translated = inSqlite(statements[i]);
            oursTimes.push_back(processorSeconds([&] { ourRows += ours(i); }));
            theirTimes.push_back(
                processorSeconds([&] { theirRows += static_cast<std::size_t>(sqlite.readAll(translated)); }));
        }
    }
    bench::require(ourRows == theirRows, std::string(what) + ": different numbers of rows");
    const double perRun = static_cast<double>(kRepeats) * static_cast<double>(statements.size());
    std::printf("%6.1f rows", static_cast<double>(ourRows) / perRun);
    bench::report(what, bench::median(oursTimes), bench::median(theirTimes), "aim 2");
}

void compareQueries(Program& program, bench::Sqlite& sqlite) {
    using Programmabfragen::Art;
    const std::pair<const char*, Art> modes[] = {{"1, what runs", Art::Laeuft},
                                                 {"2, next from t on", Art::Ab},
                                                 {"3, next after t", Art::Nach},
                                                 {"4, the evening", Art::Abend}};
    auto database = program.access.OpenDatenbank(program.values.datenbankdatei);
    for (const auto& [name, mode] : modes) {
        std::vector<Datum> moments;
        std::vector<std::string> statements;
        for (int n = 0; n < 5; ++n) {
            moments.push_back(DateAdd(Einheit::Minute, n * 37, kEvening));
            statements.push_back(
                Programmabfragen::anweisung(mode, moments.back(), program.channels.favoriten()));
        }
        compare(name, sqlite, statements, [&, asked = mode](std::size_t i) {
            return Programmabfragen::abfragen(program.access, database, asked, moments[i],
                                              program.channels.favoriten())
                .size();
        });
    }
    compare("the tip", sqlite,
            {"Select * from Sendungen Where Format(Beginn,'YYYYMMDD')='20121219' and Bewertung=4;"},
            [&](std::size_t) {
                auto rs = program.access.SafeOpenRs(
                    database,
                    "Select * from Sendungen Where Format(Beginn,'YYYYMMDD')='20121219' and Bewertung=4;",
                    kSnapshot, kForwardOnly);
                std::size_t rows = 0;
                for (; !rs->eof(); rs->moveNext())
                    ++rows;
                return rows;
            });
}

double medianMs(const std::function<void()>& work) {
    std::vector<double> times;
    for (int repeat = 0; repeat < kRepeats; ++repeat)
        times.push_back(processorSeconds(work));
    return bench::median(times) * 1000;
}

void measureClick(Program& program) {
    program.fakes.uhr.stelle(kEvening);
    Menuelisten lists(program.ports(), program.access, program.channels);
    Tagestipp tip(program.fakes.uhr, program.access, program.channels);
    std::printf("  opening and closing the database          %9.2f ms\n",
                medianMs([&] { program.access.OpenDatenbank(program.values.datenbankdatei); }));
    std::printf("  a right click: lists and tip              %9.2f ms\n", medianMs([&] {
                    lists.veralten();
                    tip.verwerfen();
                    lists.auffrischen();
                    tip.fuellen();
                }));
    bench::require(tip.felder().TagesTippPos != 0 && !lists.Sendung2200().empty(), "an empty menu");
    std::printf("  a second one                              %9.3f ms\n", medianMs([&] {
                    lists.auffrischen();
                    tip.fuellen();
                }));
}

}  // namespace

int main(int argc, char** argv) {
    const std::string guide = bench::guidePath(argc, argv);
    const bench::Folder folder;
    const std::string path = folder.file("tvdaten.mdb");
    std::filesystem::copy_file(guide, path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    bench::Sqlite sqlite(path + ".db");
    {
        jet::Database database(path, jet::Access::kReadOnly);
        for (const char* table : {"Sendungen", "Sender"})
            bench::copyTable(database, table, sqlite);
    }
    Program program(path);
    std::printf("queries of the tray menu over %s, %zu favourites; medians:\n", guide.c_str(),
                program.channels.favoriten().count());
    compareQueries(program, sqlite);
    measureClick(program);
    return 0;
}
