// The engine objects on an example database: types, fields, errors, what is read and given back.

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <tuple>
#include <utility>

#include "jet/Connection.h"
#include "jet/JetDatenbankmaschinen.h"
#include "support/Fakes.h"
#include "support/Fehlernummer.h"

namespace wendel::jet {
namespace {

const std::string kFolder = std::string(WENDEL_SOURCE_DIR) + "/../shared/data/";

class Engine : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(kFolder)) GTEST_SKIP() << "no example databases in " << kFolder;
        database_ = machine()->openDatabase(kFolder + "tvdaten-klein.mdb");
    }

    std::unique_ptr<Datenbankmaschine> machine() {
        return JetDatenbankmaschinen(clock_, [](const std::string& path) { return path; }).direkt();
    }

    std::unique_ptr<Recordset> rows(const std::string& sql) {
        return database_->openRecordset(sql, kSnapshot, kForwardOnly);
    }
    Variant single(const std::string& sql) { return rows(sql)->feld(0); }

    FakeUhr clock_;  // shows 24 December 2012, 20:00
    std::unique_ptr<Datenbank> database_;
};

const Datum kEvening = DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0);

TEST_F(Engine, ColumnsAndExpressionsHaveTypes) {
    const std::pair<const char*, Variant> cases[] = {
        {"TITEL", Variant::text("Geheimakte „Zaunkönig“")},
        {"Beginn", Variant::datum(kEvening)},
        {"KzHDTV", Variant::boolesch(true)},
        {"VPS", Variant::null()},
        {"Beginn+1", Variant::datum(kEvening.plusSekunden(86400))},
        {"Dateadd('n',10,Beginn)", Variant::datum(kEvening.plusSekunden(600))},
        {"now()", Variant::datum(DateSerial(2012, 12, 24) + TimeSerial(20, 0, 0))},
        {"Pos*2", Variant::lang(90)},
        {"val(Dauer)", Variant::doppelt(195)},
        {"VPS+'x'", Variant::null()},
        {"IIf(Pos=45,'ja',7)", Variant::text("ja")}};
    for (const auto& [expression, expected] : cases) {
        const Variant found = single(std::string("Select ") + expression + " from Sendungen where Pos=45");
        EXPECT_EQ(found, expected) << expression << " " << found.typcode();
    }
}

TEST_F(Engine, RefusesWhatItCannotOpenOrRunOrFind) {
    auto rs = rows("Select * from Sendungen where Pos=45");
    EXPECT_EQ(fehlernummerVon([&] { rs->feldnummer("Gibtsnicht"); }), 3265);
    rs->moveNext();
    EXPECT_TRUE(rs->eof());
    EXPECT_EQ(fehlernummerVon([&] { rs->feld("Pos"); }), 3021);
    EXPECT_EQ(fehlernummerVon([&] { machine()->openDatabase(kFolder + "fehlt.mdb"); }), 3024);
    EXPECT_EQ(fehlernummerVon([&] { database_->execute("Select * from Sender", kFailOnError); }), 3065);
    EXPECT_EQ(fehlernummerVon([&] { rows("Delete from Sender"); }), 3219);
}

TEST_F(Engine, CountsOpenRecordsetsAndClosesThem) {
    auto first = rows("Select * from Sender");
    {
        auto second = rows("Select * from Sendungen");
        EXPECT_EQ(database_->recordsetsCount(), 2);
    }
    EXPECT_EQ(database_->recordsetsCount(), 1);
    EXPECT_ANY_THROW(rows("Select Nix from Sender"));
    EXPECT_EQ(database_->recordsetsCount(), 1);
    database_->close();
    EXPECT_EQ(database_->recordsetsCount(), 0);
    const Gemeldet closed = fehlerVon([&] { first->eof(); });
    EXPECT_EQ(closed.nummer, 3420);
    EXPECT_EQ(closed.beschreibung, "Objekt ist ungültig oder nicht mehr festgelegt.");
    EXPECT_EQ(fehlernummerVon([&] { rows("Select * from Sender"); }), 3420);
}

// Of 1276 pages, by the indexes.
TEST_F(Engine, LookUpsReadFewPages) {
    Connection connection(kFolder + "tvdaten-gross.mdb", clock_);
    connection.query("Select Pos from Sendungen where Pos=1")
        .step();  // catalog and definitions are read once
    const std::tuple<const char*, const char*, std::uint64_t> cases[] = {
        {"by key", "Select Titel from Sendungen where Pos=20000", 6},
        {"the narrowest of several bounds",
         "Select Pos from Sendungen where Beginn>=#1/1/2000# and Beginn>=#12/29/2012 17:04:00# and "
         "Beginn<#1/1/2020# "
         "and Beginn<#12/29/2012 17:06:00#",
         30},
        {"moments of a derived table, before the stretch of days",
         "Select a.Pos from Sendungen as a inner join [ Select Pos, Min(Beginn) as Anfang from Sendungen "
         "where Pos=20000 "
         "group by Pos ]. as t on a.Beginn=t.Anfang where a.Beginn>=#1/1/2000# and a.Beginn<=#1/1/2020#",
         60}};
    for (const auto& [name, statement, pages] : cases) {
        const std::uint64_t before = connection.file().pagesRequested();
        Query query = connection.query(statement);
        EXPECT_TRUE(query.step()) << name;
        while (query.step()) {
        }
        EXPECT_LE(connection.file().pagesRequested() - before, pages) << name;
    }
}

class SharedFile : public Engine {
  protected:
    void SetUp() override {
        Engine::SetUp();
        if (IsSkipped()) return;
        write(fileBytes("tvdaten-klein.mdb"));
        database_ = machine()->openDatabase(path_);
    }
    void TearDown() override { std::filesystem::remove(path_); }

    static std::string fileBytes(const std::string& name) {
        std::ifstream in(kFolder + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    // In place, as another program does it.
    void write(const std::string& bytes) const {
        std::ofstream(path_, std::ios::binary | std::ios::trunc) << bytes;
    }

    const std::string path_ = testing::TempDir() + "wendel-engine-" + std::to_string(::getpid()) + ".mdb";
};

TEST_F(SharedFile, NewStatementsSeeWhatAnotherProgramWrote) {
    auto before = rows("Select Pos from Sendungen");
    EXPECT_EQ(single("Select Count(*) from Sender"), Variant::lang(8));
    std::filesystem::rename(path_, path_ + ".alt");  // as compacting does it
    write(fileBytes("tvdaten-gross.mdb"));
    EXPECT_EQ(single("Select Count(*) from Sender"), Variant::lang(50));
    std::filesystem::remove(path_ + ".alt");
    int count = 0;
    for (; !before->eof(); before->moveNext())
        ++count;
    EXPECT_EQ(count, 605);  // of the file that it was opened on
    write("kein Jet");
    EXPECT_EQ(fehlernummerVon([&] { rows("Select * from Sender"); }), 3343);
    write(fileBytes("tvdaten-klein.mdb"));
    EXPECT_EQ(single("Select Count(*) from Sender"), Variant::lang(8));
}

// Another program writes, cuts or exchanges the file between two rows: no crash, no endless walk, and where
// pages do not fit together the error is the conflict that a retry heals, not damage.
TEST_F(SharedFile, RunningQueriesSurviveWhateverIsWritten) {
    constexpr unsigned kSeed = 1224;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    const std::string original = fileBytes("tvdaten-klein.mdb");
    const std::string join =
        "Select a.Pos,b.Pos,c.Bezeichnung from (Sendungen a inner join SendungenDetails b on "
        "a.Pos=b.Pos) inner join Sender c on a.SenderKennung=c.SenderKennung";
    const std::string statements[] = {"Select * from Sendungen",
                                      "Select Pos,Titel,Beginn from Sendungen order by Beginn desc",
                                      "Select * from SendungenDetails", join};
    Connection connection(path_, clock_);
    int conflicts = 0;
    for (int round = 0; round < 120; ++round) {
        write(original);
        Query running = connection.query(statements[round % 4]);
        running.step();
        std::string changed = original;
        switch (round / 4 % 5) {
            case 0: changed = fileBytes("echte/common2V1997.mdb"); break;  // other pages of another size
            case 1: changed.resize(random() % changed.size()); break;
            case 2: changed = fileBytes("typen.mdb"); break;
            default:
                for (int i = 0; i < 3000; ++i)
                    changed[4096 + random() % (changed.size() - 4096)] = static_cast<char>(random());
        }
        write(changed);
        fehlernummerVon([&] { rows("Select Count(*) from Sender"); });  // looks at the new file beside it
        const int number = fehlernummerVon([&] {
            do {
                for (std::size_t i = 0; i < 3; ++i)
                    running.value(i);
            } while (running.step());
        });
        EXPECT_TRUE(number == 0 || number == 3050) << number << " in round " << round;
        conflicts += number == 3050 ? 1 : 0;
    }
    EXPECT_GT(conflicts, 20);
}

class WritableFile : public SharedFile {
  protected:
    std::unique_ptr<Recordset> adding(const std::string& sql) {
        return database_->openRecordset(sql, kDynaset, kAppendOnly);
    }
};

// That the keys are unique and what was added is read back: tests/jet/proof.
TEST_F(WritableFile, NewRecordsShowAtOnceWhatTheirColumnsHold) {
    auto rs = adding("Select * from Sendungen");
    EXPECT_TRUE(rs->eof());
    rs->addNew();
    EXPECT_EQ(rs->feld("KzFilm"), Variant::boolesch(false));
    EXPECT_TRUE(rs->feld("Titel").istNull());
    // Column, what is given, what it holds then.
    const std::tuple<const char*, Variant, Variant> fields[] = {
        {"titel", Variant::text("Größe"), Variant::text("Größe")},
        {"Bewertung", Variant::text("4"), Variant::integer(4)},
        {"Dauer", Variant::integer(90), Variant::text("90")}};
    for (const auto& [name, given, held] : fields) {
        rs->setzeFeld(name, given);
        EXPECT_EQ(rs->feld(name), held) << name;
    }
}

TEST_F(WritableFile, RecordsAreEditedWhereTheyStand) {
    auto rs = database_->openRecordset("Select Titel,ID from Markierungen, Sendungen", {}, {});
    EXPECT_EQ(fehlernummerVon([&] { rs->edit(); }), 3027);  // of two tables
    rs = database_->openRecordset("Select Pos+1 as n,Sendung,Dauer,ID from Markierungen Order by ID", {}, {});
    rs->moveNext();
    rs->edit();
    rs->setzeFeld("Sendung", Variant::text("Neu"));
    EXPECT_EQ(fehlernummerVon([&] { rs->setzeFeld("n", Variant::lang(1)); }), 3164);
    EXPECT_EQ(fehlernummerVon([&] { rs->setzeFeld("ID", Variant::lang(1)); }), 3164);
    rs->update();
    EXPECT_EQ(rs->feld("Sendung"), Variant::text("Neu"));
    EXPECT_EQ(rs->feld("n"), Variant::lang(45));
    EXPECT_EQ(fehlernummerVon([&] { rs->update(); }), 3020);
    rs->moveNext();
    EXPECT_EQ(rs->feld("Sendung"), Variant::text("Das große Wintergespräch: Folge 389"));
    rs->edit();
    rs->setzeFeld("Sendung", Variant::text("Zu spät"));
    database_->execute("Update Markierungen Set Dauer='1' Where ID=3", 128);
    EXPECT_EQ(fehlernummerVon([&] { rs->update(); }), 3197);
    EXPECT_EQ(single("Select Sum(ID) from Markierungen where Sendung='Neu'"), Variant::lang(2));
}

TEST_F(WritableFile, RecordsetsRefuseWhatTheyCannotSave) {
    auto rs = adding("Select * from Sender");
    EXPECT_EQ(fehlernummerVon([&] { rs->update(); }), 3020);
    EXPECT_EQ(fehlernummerVon([&] { rs->setzeFeld("SortNr", Variant::lang(1)); }), 3020);
    EXPECT_EQ(fehlernummerVon([&] { rows("Select * from Sender")->addNew(); }), 3027);
    EXPECT_EQ(fehlernummerVon([&] { adding("Select Max(Pos) from Sendungen")->addNew(); }), 3027);
    EXPECT_EQ(fehlernummerVon([&] { rs->edit(); }), 3021);
    rs->addNew();
    EXPECT_EQ(fehlernummerVon([&] { rs->setzeFeld("SortNr", Variant::text("eins")); }), 3421);
    EXPECT_EQ(fehlernummerVon([&] { rs->setzeFeld("GueltigAb", Variant::text("bald")); }), 3421);
    rs->setzeFeld("Gruppe", Variant::text(std::string(51, 'x')));
    EXPECT_EQ(fehlernummerVon([&] { rs->update(); }), 3163);
    rs->setzeFeld("Gruppe", Variant::text("x"));
    rs->update();  // the record is still there
    EXPECT_EQ(single("Select Count(*) from Sender where Gruppe='x'"), Variant::lang(1));
}

// Recordsets with more rows than are read ahead keep what they began with, whatever is written meanwhile.
TEST_F(WritableFile, OpenRecordsetsKeepTheirState) {
    write(fileBytes("tvdaten-gross.mdb"));
    auto rs = rows("Select * from Sendungen");
    database_->execute("Delete from Sendungen Where Pos>10", kFailOnError);
    EXPECT_EQ(single("Select Count(*) from Sendungen"), Variant::lang(10));
    database_->execute("Create Table Neu (a Long)", kFailOnError);
    database_->execute("Insert Into Neu (a) Select Pos from Sendungen", kFailOnError);
    EXPECT_EQ(single("Select Sum(a) from Neu"), Variant::lang(55));
    int count = 0;
    for (; !rs->eof(); rs->moveNext())
        count += rs->feld("SenderKennung").istNull() ? 0 : 1;
    EXPECT_EQ(count, 25228);
    database_->close();
    EXPECT_FALSE(std::filesystem::exists(path_ + "-journal"));
}

}  // namespace
}  // namespace wendel::jet
