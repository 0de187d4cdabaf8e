// The program's own maintenance of the marks, killed at random moments: the file is sound, and the next run
// brings the marks to where they would have been.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <set>
#include <thread>

#include "jet/proof/Proof.h"
#include "jet/proof/Values.h"
#include "jet/storage/Table.h"
#include "tvdb/Markierungspflege.h"
#include "tvdb/ModulDatenbankzugriff.h"

namespace wendel::jet::proof {
namespace {

constexpr unsigned kSeed = 161803;

void maintain(const std::string& path) {
    FakePorts fakes;  // 24 December 2012, 20:00
    JetDatenbankmaschinen machines(fakes.uhr, [](const std::string& native) { return native; });
    const Ports some = fakes.ports();
    const Ports ports{some.uhr,     some.dateien,    some.meldungen, some.fenster, some.klang, some.prozesse,
                      some.starter, some.automation, some.symbol,    some.rechner, machines};
    Prozesswerte values;
    values.datenbankdatei = path;
    Einstellungen settings(fakes.dateien, "\\wendel\\");
    ModulDatenbankzugriff access(ports, settings, values);
    Markierungslisten lists;
    for (const char* user : {"PC-WOHNZIMMER", "PC-BUERO"})
        Markierungspflege(access, user, 7).laufen(fakes.uhr.jetzt(), lists);
}

// All marks and flags as sorted lines, without the numbers that a second attempt gives anew.
std::multiset<std::string> marks(const std::string& path) {
    Database database(path, Access::kReadOnly);
    const File::Reading reading(database.file());
    std::multiset<std::string> lines;
    const auto table = database.table("Markierungen");
    for (TableScan scan(database.file(), *table); scan.next();) {
        std::string line;
        for (std::size_t c = 0; c < table->columns.size(); ++c)
            if (!table->columns[c].autonumber) line += readValue(scan.row(), c).shown() + "|";
        lines.insert(line);
    }
    const auto guide = database.table("Sendungen");
    const std::size_t flag = guide->findColumn("KzInFavoritenliste").value();
    for (TableScan scan(database.file(), *guide); scan.next();)
        if (scan.row().asBool(flag)) lines.insert("Pos " + std::to_string(scan.row().asInteger(0)));
    return lines;
}

TEST(KilledMaintenance, IsMadeUpForByTheNextRun) {
    if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
    const std::string example = test::readFile(test::dataPath("tvdaten-klein.mdb"));
    const std::set<std::string> before = findings(test::dataPath("tvdaten-klein.mdb"));
    const test::TemporaryCopy whole;
    whole.write(example);
    const std::multiset<std::string> untouched = marks(whole.path());
    const auto start = std::chrono::steady_clock::now();
    maintain(whole.path());
    const auto duration =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    const std::multiset<std::string> expected = marks(whole.path());
    EXPECT_NE(expected, untouched);
    EXPECT_EQ(newFindings(whole.path(), before), "");

    Random random(kSeed);
    SCOPED_TRACE(kSeed);
    int halfWay = 0;
    const int kills = setting("WENDEL_KILLS", 40) / 4;
    for (int n = 0; n < kills && !testing::Test::HasFailure(); ++n) {
        const test::TemporaryCopy copy;
        copy.write(example);
        const pid_t child = ::fork();
        if (child == 0) {
            maintain(copy.path());
            ::_exit(0);
        }
        std::this_thread::sleep_for(
            std::chrono::microseconds(below(random, static_cast<std::size_t>(duration.count()))));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        EXPECT_EQ(newFindings(copy.path(), before), "");
        const std::multiset<std::string> reached = marks(copy.path());
        halfWay += reached != untouched && reached != expected ? 1 : 0;
        maintain(copy.path());
        EXPECT_EQ(marks(copy.path()), expected);
        EXPECT_EQ(newFindings(copy.path(), before), "");
    }
    std::cout << kills << " runs killed, " << halfWay << " of them half-way\n";
}

}  // namespace
}  // namespace wendel::jet::proof
