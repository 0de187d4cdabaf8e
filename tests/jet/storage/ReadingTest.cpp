// Reading whole files of other programs: every table, every index entry. The cells are compared through
// jetsql.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Table.h"
#include "jet/storage/TestFiles.h"

namespace wendel::jet {
namespace {

struct Example {
    const char* name;
    const char* json;
    const char* member;
};

std::ostream& operator<<(std::ostream& out, const Example& e) { return out << e.name; }

class ReadingTest : public testing::TestWithParam<Example> {
  protected:
    void SetUp() override {
        if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
        database_ = std::make_unique<Database>(test::dataPath(GetParam().name), Access::kReadOnly);
    }

    std::unique_ptr<Database> database_;
};

std::string columnList(const TableDef& table, const Index& index) {
    std::string list;
    for (const IndexColumn& c : index.columns)
        list += (list.empty() ? "" : ",") + table.columns[c.column].name + (c.descending ? " desc" : " asc");
    return list;
}

// Each entry also leads to a row, and that row's values make exactly the entry's key: in the system tables
// too, which in the files of the engine itself hold its own keys.
TEST_P(ReadingTest, TablesAndIndexesHoldWhatOtherProgramsNoted) {
    const test::TemporaryCopy folder;
    std::ofstream dump(folder.path());
    std::size_t compared = 0, unknown = 0;
    for (const CatalogEntry& entry : database_->entries()) {
        SCOPED_TRACE(entry.name);
        const auto table = database_->table(entry.name);
        std::size_t rows = 0;
        for (TableScan scan(database_->file(), *table); scan.next();)
            ++rows;
        EXPECT_TRUE(entry.system || table->rowCount == rows);
        dump << "table\t" << entry.name << '\t' << rows << '\n';
        for (const Index& index : table->indexes) {
            SCOPED_TRACE(index.name);
            EXPECT_TRUE(index.searchable);
            dump << "index\t" << entry.name << '\t' << index.name << '\t' << columnList(*table, index) << '\t'
                 << index.primary << index.unique << index.ignoreNulls << index.required << '\n';
            IndexCursor cursor(database_->file(), *table, index);
            std::vector<RowId> forward, backward;
            RowView row;
            for (cursor.seek({}); cursor.next(); forward.push_back(cursor.rowId())) {
                dump << "key\t" << test::hex(cursor.key()) << '\n';
                ASSERT_TRUE(fetchRow(database_->file(), *table, cursor.rowId(), row));
                const RowValues values(row);
                const bool known = rowKeyIsKnown(*table, index, values.cells());
                ++(known ? compared : unknown);
                const std::string key = known ? *rowKey(*table, index, values.cells()) : "";
                ASSERT_EQ(test::hex(key), known ? test::hex(cursor.key()) : "");
            }
            for (cursor.seek({}, IndexCursor::Direction::kBackward); cursor.next();)
                backward.insert(backward.begin(), cursor.rowId());
            EXPECT_EQ(forward, backward);
        }
    }
    dump.close();
    EXPECT_GT(compared, 100 * unknown);
    EXPECT_EQ(
        test::expectations({"check", test::dataPath(GetParam().json), GetParam().member, folder.path()}),
        std::vector<std::string>{"as noted"});
}

INSTANTIATE_TEST_SUITE_P(
    Files, ReadingTest,
    testing::Values(Example{"tvdaten-klein.mdb", "tvdaten-klein.json", ""},
                    Example{"tvdaten-gross.mdb", "tvdaten-gross.json", ""},
                    Example{"typen.mdb", "typen.json", ""},
                    Example{"echte/adox_jet4.mdb", "echte/real-files.json", "adox_jet4.mdb"},
                    Example{"echte/overflowV2000.mdb", "echte/real-files.json", "overflowV2000.mdb"},
                    Example{"echte/common2V1997.mdb", "echte/real-files.json", "common2V1997.mdb"}));

}  // namespace
}  // namespace wendel::jet
