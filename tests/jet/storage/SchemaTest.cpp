// New databases, tables and indexes, and databases copied by compacting: as this engine and as other programs
// read them.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/Compact.h"
#include "jet/storage/FileCheck.h"
#include "jet/storage/OwnFile.h"
#include "jet/storage/TableDefWriter.h"
#include "jet/storage/TestFiles.h"
#include "jet/storage/WholeFile.h"
#include "support/Fehlernummer.h"

namespace wendel::jet {
namespace {

namespace fs = std::filesystem;
using test::change;

std::size_t filesIn(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

std::vector<std::string> findingsIn(const std::string& path) {
    Database database(path, Access::kReadOnly);
    return checkFile(database);
}

// Column and index definitions of the system tables, and the catalog's rows but for their dates.
std::string systemTables(const std::string& path) {
    Database database(path, Access::kReadOnly);
    std::string text;
    for (const std::uint32_t page : {2u, 3u, 4u, 5u}) {
        const auto table = loadTableDef(database.file(), page, {});
        for (const Column& c : table->columns) {
            text += c.name + " " + std::to_string(static_cast<int>(c.type)) + " no " +
                    std::to_string(c.number) + " flags " + std::to_string(c.flags) + " length " +
                    std::to_string(c.length) +
                    (c.fixed ? " at " + std::to_string(c.fixedOffset)
                             : " var " + std::to_string(c.variableIndex)) +
                    "\n";
        }
        for (const Index& index : table->indexes)
            text += index.name + std::to_string(index.real) + std::to_string(index.number) +
                    (index.primary ? " primary" : "") + (index.unique ? " unique" : "") +
                    (index.ignoreNulls ? " ignoreNulls" : "") + (index.required ? " required\n" : "\n");
    }
    return text;
}

class VersionTest : public testing::TestWithParam<Version> {
  protected:
    void SetUp() override { createDatabaseFile(path(), GetParam()); }
    const std::string& path() const { return copy_.path(); }
    test::TemporaryCopy copy_;
};
INSTANTIATE_TEST_SUITE_P(Versions, VersionTest, testing::Values(Version::kJet3, Version::kJet4));

// What is made in them, and what is refused: jetsql.changes.
TEST_P(VersionTest, NewFilesAreWhatTheEngineMakes) {
    EXPECT_EQ(filesIn(copy_.folder()), 1u);
    EXPECT_EQ(test::outputOf("mdb-tables -S '" + path() + "'"),
              "MSysObjects MSysACEs MSysQueries MSysRelationships \n");
    EXPECT_EQ(fehlernummerVon([&] { createDatabaseFile(path(), GetParam()); }), 3204);
    EXPECT_EQ(fehlernummerVon([&] { createDatabaseFile(copy_.folder() + "/fehlt/a.mdb", GetParam()); }),
              3044);
    if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
    const bool jet4 = GetParam() == Version::kJet4;
    const std::string real = test::dataPath(jet4 ? "echte/adox_jet4.mdb" : "echte/common2V1997.mdb");
    EXPECT_EQ(systemTables(path()), systemTables(real));
    if (jet4) {
        EXPECT_EQ(fs::file_size(path()), fs::file_size(real));
        const auto objects = [](const std::string& file) {  // without the two dates, the owner follows them
            return test::outputOf("mdb-export -D x -T x -b hex '" + file + "' MSysObjects");
        };
        EXPECT_EQ(objects(path()), objects(real));
        const auto access = [](const std::string& file) {
            return test::outputOf("mdb-export -b hex '" + file + "' MSysACEs");
        };
        EXPECT_EQ(access(path()), access(real));
    }
}

class ForeignFileTest : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
        copy_.write(test::readFile(test::dataPath(GetParam())));
    }
    const std::string& path() const { return copy_.path(); }
    test::TemporaryCopy copy_;
};
INSTANTIATE_TEST_SUITE_P(Files, ForeignFileTest,
                         testing::Values("tvdaten-klein.mdb", "tvdaten-gross.mdb", "typen.mdb",
                                         "echte/adox_jet4.mdb", "echte/overflowV2000.mdb",
                                         "echte/common2V1997.mdb"));

// Every table gets an index more, one of its own goes, and a table comes and goes.
TEST_P(ForeignFileTest, TablesAndIndexesComeAndGo) {
    const auto rows = test::allRows(path());
    const auto indexes = test::checkedIndexes(path());
    const auto findings = findingsIn(path());
    for (const auto& [name, ignored] : rows) {
        change(path(), [&, n = name](Database& d) {
            createIndex(d, n, {.name = "Neuer Index", .columns = {{d.table(n)->columns[0].name, true}}});
        });
    }
    EXPECT_EQ(test::checkedIndexes(path()).size(), indexes.size() + rows.size());
    const Version version = File(path(), Access::kReadOnly).version();
    change(path(), [&](Database& d) { createTable(d, "Neue Tabelle", test::everyType(version), {}); });
    EXPECT_EQ(test::allRows(path()).size(), rows.size() + 1);
    for (const auto& [name, ignored] : rows)
        change(path(), [&, n = name](Database& d) { dropIndex(d, n, "neuer index"); });
    change(path(), [](Database& d) { dropTable(d, "Neue Tabelle"); });
    EXPECT_EQ(test::allRows(path()), rows);
    EXPECT_EQ(test::checkedIndexes(path()), indexes);
    EXPECT_EQ(findingsIn(path()), findings);
    if (rows.empty()) return;
    const std::string first = rows.begin()->first;
    change(path(), [&](Database& d) { dropTable(d, first); });
    auto others = rows;
    others.erase(first);
    EXPECT_EQ(test::allRows(path()), others);
    test::checkedIndexes(path());
}

TEST_P(ForeignFileTest, CompactingKeepsAllAndTakesNoMoreRoom) {
    const std::string compact = copy_.folder() + "/klein.mdb";
    compactDatabaseFile(path(), compact);
    EXPECT_EQ(test::allRows(compact), test::allRows(path()));
    EXPECT_EQ(test::checkedIndexes(compact), test::checkedIndexes(path()));
    EXPECT_LE(fs::file_size(compact), fs::file_size(path()));
    EXPECT_EQ(test::readFile(compact).substr(0, 0x98), test::readFile(path()).substr(0, 0x98));
    EXPECT_EQ(filesIn(copy_.folder()), 2u);
    Database before(path(), Access::kReadOnly), after(compact, Access::kReadOnly);
    for (const CatalogEntry& entry : before.entries()) {
        if (entry.system) continue;
        EXPECT_EQ(after.table(entry.name)->lastAutonumber, before.table(entry.name)->lastAutonumber)
            << entry.name;
    }
    EXPECT_EQ(fehlernummerVon([&] { compactDatabaseFile(path(), compact); }), 3204);
}

TEST(Compact, FailureLeavesNothing) {
    const test::TemporaryCopy copy;
    createDatabaseFile(copy.path(), Version::kJet4);
    const ColumnSpec n{.name = "n"};
    change(copy.path(), [&](Database& d) { createTable(d, "t", std::span(&n, 1), {}); });
    std::string bytes = test::readFile(copy.path());
    const std::uint32_t page = Database(copy.path(), Access::kReadOnly).table("t")->page;
    bytes[page * 4096 + kJet4Layout.defColumns] = 99;
    copy.write(bytes);
    EXPECT_EQ(fehlernummerVon([&] { compactDatabaseFile(copy.path(), copy.folder() + "/neu.mdb"); }), 3049);
    EXPECT_EQ(filesIn(copy.folder()), 1u);
}

// Two tables that refer to each other keep doing so when their pages change places.
TEST(Compact, RelationsFollowTheirTables) {
    const test::TemporaryCopy copy;
    createDatabaseFile(copy.path(), Version::kJet4);
    const ColumnSpec n{.name = "n"};
    for (const char* name : {"weg", "a", "b"}) {
        const IndexSpec index{.name = "i", .columns = {{"n", false}}};
        change(copy.path(),
               [&](Database& d) { createTable(d, name, std::span(&n, 1), std::span(&index, 1)); });
    }
    change(copy.path(), [&](Database& d) {
        for (const auto& [name, other] : {std::pair("a", "b"), std::pair("b", "a")}) {
            const auto table = d.table(name);
            DefinitionParts parts = splitDefinition(d.file(), loadDefinitionBytes(d.file(), table->page));
            addLogicalIndex(d.file().layout(), parts, "Beziehung", 0, kIndexKindForeign);
            auto& block = parts.logicalIndexes.back().block;
            storeU32(&block[kJet4Layout.logicalIndexOtherTable], d.table(other)->page);
            storeU32(&block[kJet4Layout.logicalIndexOtherNumber], 1);
            PageAllocator allocator(d.file());
            storeDefinition(d.file(), allocator, table->definitionPages, parts);
        }
    });
    change(copy.path(), [](Database& d) { dropTable(d, "weg"); });
    EXPECT_EQ(fehlernummerVon([&] { change(copy.path(), [](Database& d) { dropTable(d, "a"); }); }), 3281);
    EXPECT_EQ(
        fehlernummerVon([&] { change(copy.path(), [](Database& d) { dropIndex(d, "a", "Beziehung"); }); }),
        3281);
    const std::string compact = copy.folder() + "/neu.mdb";
    compactDatabaseFile(copy.path(), compact);
    Database database(compact, Access::kReadOnly);
    EXPECT_EQ(database.table("a")->findIndex("Beziehung")->relatedTable, database.table("b")->page);
    EXPECT_EQ(database.table("b")->findIndex("Beziehung")->relatedTable, database.table("a")->page);
    EXPECT_EQ(database.table("a")->findIndex("Beziehung")->number, 1u);
    test::checkedIndexes(compact);
}

}  // namespace
}  // namespace wendel::jet
