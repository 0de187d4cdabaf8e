// The engine objects on an example database: types, fields, errors, what is read and given back.

#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "jet/Connection.h"
#include "jet/JetDatenbankmaschinen.h"
#include "support/Fakes.h"

namespace wendel::jet {
namespace {

const std::string kFolder = std::string(WENDEL_SOURCE_DIR) + "/../shared/data/";

class Engine : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(kFolder)) {
            GTEST_SKIP() << "example databases not found in " << kFolder;
        }
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

template <class Work>
std::string errorOf(const Work& work) {
    try {
        work();
    } catch (const Fehler& failure) {
        return "(" + std::to_string(failure.nummer()) + ") " + failure.beschreibung();
    }
    return "";
}

const Datum kEvening = DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0);

TEST_F(Engine, ColumnsKeepTheirTypes) {
    auto rs = rows("Select * from Sendungen where Pos=45");
    EXPECT_EQ(rs->feld("Pos"), Variant::lang(45));
    EXPECT_EQ(rs->feld("TITEL"), Variant::text("Geheimakte „Zaunkönig“"));
    EXPECT_EQ(rs->feld("Beginn"), Variant::datum(kEvening));
    EXPECT_EQ(rs->feld("Aktualisierung"), Variant::integer(0));
    EXPECT_EQ(rs->feld("KzHDTV").typcode(), static_cast<std::uint16_t>(Varianttyp::Boolean));
    EXPECT_TRUE(rs->feld("VPS").istNull());
    rs->moveNext();
    EXPECT_TRUE(rs->eof());
    EXPECT_EQ(errorOf([&] { rs->feld("Pos"); }), "(3021) Kein aktueller Datensatz.");
    EXPECT_EQ(errorOf([&] { rs->feldnummer("Gibtsnicht"); }),
              "(3265) Element in dieser Auflistung nicht gefunden.");
}

struct TypeCase {
    const char* expression;
    Variant expected;
};

// On broadcast 45, from 20:15 to 23:30.
TEST_F(Engine, ExpressionsHaveTypes) {
    const TypeCase cases[] = {
        {"Beginn+1", Variant::datum(kEvening.plusSekunden(86400))},
        {"Dateadd('n',10,Beginn)", Variant::datum(kEvening.plusSekunden(600))},
        {"Datediff('n',Beginn,Ende)", Variant::lang(195)},
        {"Datediff('h',Beginn,Ende)", Variant::lang(3)},
        {"Format(Beginn,'YYYYMMDD')", Variant::text("20121224")},
        {"Format(5,'00')", Variant::text("05")},
        {"Format(Null,'00')", Variant::text("")},
        {"date()", Variant::datum(DateSerial(2012, 12, 24))},
        {"now()", Variant::datum(DateSerial(2012, 12, 24) + TimeSerial(20, 0, 0))},
        {"Beginn=Beginn", Variant::boolesch(true)},
        {"Pos*2", Variant::lang(90)},
        {"Pos/2", Variant::doppelt(22.5)},
        {"Pos\\2", Variant::lang(22)},
        {"val(Dauer)", Variant::doppelt(195)},
        {"val(VPS)", Variant::null()},
        {"VPS & 'x'", Variant::text("x")},
        {"VPS+'x'", Variant::null()},
        {"Weekday(Beginn)", Variant::integer(2)},
        {"Max(Beginn)", Variant::datum(kEvening)},
        {"Count(VPS)", Variant::lang(0)},
        {"Min(VPS)", Variant::null()},
        {"Len(Titel)", Variant::lang(22)},
        {"Mid(Titel,12,1)", Variant::text("„")},
        {"IIf(Pos=45,'ja',7)", Variant::text("ja")},
        {"2+3*4-6/2", Variant::doppelt(11)},
        {"-2^2", Variant::doppelt(-4)},
        {"7 mod 4 + 1", Variant::lang(4)},
        {"not Pos=45", Variant::boolesch(false)},
        {"true and null", Variant::null()},
        {"false and null", Variant::boolesch(false)},
    };
    for (const TypeCase& c : cases) {
        SCOPED_TRACE(c.expression);
        const Variant found = single(std::string("Select ") + c.expression + " from Sendungen where Pos=45");
        EXPECT_EQ(found, c.expected) << found.typcode();
    }
}

struct ErrorCase {
    const char* statement;
    const char* error;
};

TEST_F(Engine, RefusesWhatCannotBe) {
    const ErrorCase cases[] = {
        {"Select Nix, Nix2, nix from Sendungen", "(3061) Zu wenige Parameter. 2 erwartet."},
        {"Select Foo(1) from Sender", "(3085) Undefinierte Funktion 'Foo' in Ausdruck."},
        {"Select * from Sendungen where Titel=5", "(3464) Datentypkonflikt in Kriterienausdruck."},
        {"Select * from Sendungen where Pos in('a')", "(3464) Datentypkonflikt in Kriterienausdruck."},
        {"Select * from Sendungen where Beginn>'x'", "(3464) Datentypkonflikt in Kriterienausdruck."},
        {"Select Pos from Sendungen a, SendungenDetails b",
         "(3079) Das angegebene Feld 'Pos' kann sich auf mehr als eine Tabelle beziehen, die im "
         "FROM-Abschnitt der "
         "SQL-Anweisung aufgelistet ist."},
        {"Select Titel, Count(*) from Sendungen",
         "(3122) Sie wollten eine Abfrage ausführen, die den angegebenen Ausdruck 'Titel' nicht als Teil "
         "einer "
         "Aggregatfunktion enthält."},
        {"Select Pos from Sendungen where Max(Pos)=1",
         "(3096) Aggregatfunktion in WHERE-Klausel nicht möglich: Max."},
        {"Select Distinct Titel from Sendungen Order by Pos",
         "(3093) ORDER BY-Klausel (Pos) verursacht Konflikt mit DISTINCT."},
        {"Select * from Sendungen where Titel like 'a[b'", "(93) Ungültige Musterzeichenfolge."},
        {"Select 1/(Pos-Pos) from Sendungen", "(11) Division durch Null."},
    };
    for (const ErrorCase& c : cases) {
        SCOPED_TRACE(c.statement);
        EXPECT_EQ(errorOf([&] { rows(c.statement); }), c.error);
    }
    EXPECT_EQ(errorOf([&] { rows("Select * from Nix"); }).substr(0, 51),
              "(3078) Die Eingangstabelle oder Abfrage 'Nix' wurde");
}

TEST_F(Engine, ExplainsFilesThatDoNotOpen) {
    const auto number = [&](const std::string& path) {
        return errorOf([&] { machine()->openDatabase(path); }).substr(0, 6);
    };
    EXPECT_EQ(number(kFolder + "fehlt.mdb"), "(3024)");
    EXPECT_EQ(number(kFolder + "fehlt/fehlt.mdb"), "(3044)");
    EXPECT_EQ(number(kFolder + "README.md"), "(3343)");
    EXPECT_EQ(errorOf([&] { machine()->compactDatabase("a", "b"); }).substr(0, 6), "(3027)");
    EXPECT_EQ(errorOf([&] { database_->execute("Delete from Sender", kFailOnError); }).substr(0, 6),
              "(3027)");
}

TEST_F(Engine, CountsOpenRecordsetsAndClosesThem) {
    EXPECT_EQ(database_->recordsetsCount(), 0);
    auto first = rows("Select * from Sender");
    {
        auto second = rows("Select * from Sendungen");
        EXPECT_EQ(database_->recordsetsCount(), 2);
        second->moveNext();
    }
    EXPECT_EQ(database_->recordsetsCount(), 1);
    EXPECT_ANY_THROW(rows("Select Nix from Sender"));
    EXPECT_EQ(database_->recordsetsCount(), 1);
    database_->close();
    EXPECT_EQ(database_->recordsetsCount(), 0);
    EXPECT_EQ(errorOf([&] { first->eof(); }), "(3420) Objekt ist ungültig oder nicht mehr festgelegt.");
    EXPECT_EQ(errorOf([&] { rows("Select * from Sender"); }).substr(0, 6), "(3420)");
}

// The last bit of a double differs between writers: half a second either way is the same moment.
TEST_F(Engine, MomentsCompareToTheSecond) {
    const char* found = "Select Pos from Sendungen where Pos=45 and ";
    for (const char* condition :
         {"Beginn=#12/24/2012 20:15:00#", "not Beginn<#12/24/2012 20:15:00#",
          "not Beginn>#12/24/2012 20:15:00#", "Beginn<=#12/24/2012 20:15:00#",
          "#12/24/2012 20:15:00#>=Beginn", "Beginn<#12/24/2012 20:15:01#", "Beginn<>#12/24/2012 20:15:01#",
          "Beginn in (#12/24/2012 20:15:00#)",
          "Beginn between #12/24/2012 20:15:00# and #12/24/2012 20:15:00#", "Beginn=41267.8437500001",
          "Beginn-0.75=#12/24/2012 2:15:00#", "DateValue(Beginn)+TimeValue(Beginn)=#12/24/2012 20:15:00#"}) {
        SCOPED_TRACE(condition);
        EXPECT_FALSE(rows(std::string(found) + condition)->eof());
    }
}

TEST_F(Engine, LookUpByKeyReadsFewPages) {
    Connection connection(kFolder + "tvdaten-gross.mdb", clock_);
    connection.query("Select Pos from Sendungen where Pos=1")
        .step();  // catalog and definitions are read once
    const std::uint64_t before = connection.file().pagesRequested();
    Query query = connection.query("Select Titel from Sendungen where Pos=20000");
    EXPECT_TRUE(query.step());
    EXPECT_FALSE(query.step());
    EXPECT_LE(connection.file().pagesRequested() - before, 6u);  // of 1276 pages
}

// typen.mdb has the same columns with an ascending and with a descending index each. "not a >= b" is a
// question that no index answers.
TEST_F(Engine, IndexesAndScansAgree) {
    database_ = machine()->openDatabase(kFolder + "typen.mdb");
    const std::pair<const char*, const char*> operators[] = {
        {"=", "<>"}, {"<", ">="}, {"<=", ">"}, {">", "<="}, {">=", "<"}};
    for (const std::string table : {"IndexAuf", "IndexAb"}) {
        for (const std::string column : {"[By]", "I", "L", "Geld", "Ei", "Do", "Da"}) {
            SCOPED_TRACE(table + "." + column);
            const std::string pairs = "Select Count(*) from " + table + " as a, " + table + " as b where ";
            for (const auto& [op, opposite] : operators) {
                const Variant found = single(pairs + "a." + column + op + "b." + column);
                EXPECT_EQ(found, single(pairs + "not a." + column + opposite + "b." + column)) << op;
                EXPECT_NE(found, Variant::lang(0)) << op;
            }
            for (const char* direction : {"", " desc"}) {
                auto byIndex =
                    rows("Select " + column + " from " + table + " order by " + column + direction);
                auto sorted =
                    rows("Select " + column + " from " + table + " order by " + column + "+0" + direction);
                for (; !byIndex->eof(); byIndex->moveNext(), sorted->moveNext()) {
                    ASSERT_EQ(byIndex->feld(0), sorted->feld(0)) << direction;
                }
                EXPECT_TRUE(sorted->eof());
            }
        }
    }
}

TEST_F(Engine, ReadsJet3) {
    database_ = machine()->openDatabase(kFolder + "echte/common2V1997.mdb");
    EXPECT_EQ(single("Select Count(*) from MSysObjects"), Variant::lang(20));
    EXPECT_EQ(single("Select Name from MSysObjects where Type=1 and name like 'msp_*'"),
              Variant::text("MSP_PROJECTS"));
}

// A long list of keys must neither be refused nor searched through for every row.
TEST_F(Engine, TakesListsOfThousandsOfKeys) {
    std::string keys = "1";
    for (int key = 3; key < 60000; key += 2) {
        keys += "," + std::to_string(key);
    }
    EXPECT_EQ(single("Select Count(*) from Sendungen where Pos not in(" + keys + ")"), Variant::lang(302));
    EXPECT_EQ(single("Select Count(*) from Sendungen where Pos in(" + keys + ")"), Variant::lang(303));
    EXPECT_EQ(single("Select Count(*) from Sendungen where not Pos in(" + keys + ",Null)"), Variant::lang(0));
}

TEST_F(Engine, SeesWhatAnotherProgramWrote) {
    const std::string copy = testing::TempDir() + "wendel-engine-test.mdb";
    std::filesystem::copy_file(kFolder + "tvdaten-klein.mdb", copy,
                               std::filesystem::copy_options::overwrite_existing);
    auto database = machine()->openDatabase(copy);
    EXPECT_EQ(database->openRecordset("Select Count(*) from Sender", {}, {})->feld(0), Variant::lang(8));
    std::filesystem::copy_file(kFolder + "tvdaten-gross.mdb", copy,
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(database->openRecordset("Select Count(*) from Sender", {}, {})->feld(0), Variant::lang(50));
    database->close();
    std::filesystem::remove(copy);
}

}  // namespace
}  // namespace wendel::jet
