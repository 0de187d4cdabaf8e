// Rows written, changed and deleted in new files of both versions. What was written is read back by our
// reader and by mdb-export, and the whole file is checked after each step. Foreign files: tests/jet/proof.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/FileCheck.h"
#include "jet/storage/OwnFile.h"
#include "jet/storage/Table.h"
#include "jet/storage/TableWriter.h"
#include "jet/storage/TestFiles.h"
#include "jet/storage/UsageMap.h"
#include "jet/storage/UsageMapRows.h"
#include "jet/storage/WholeFile.h"
#include "support/Fehlernummer.h"

namespace wendel::jet {
namespace {

using Row = std::vector<std::string>;

std::map<RowId, Row> allRows(Database& database, const TableDef& table) {
    std::map<RowId, Row> rows;
    RowValues values;
    for (TableScan scan(database.file(), table); scan.next();) {
        values.assign(scan.row());
        Row& row = rows[scan.row().id()];
        for (const Cell& cell : values.cells())
            row.push_back(test::shown(cell));
    }
    return rows;
}

// A file with one table that is written to.
class Writable {
  public:
    Writable(Version version, const std::vector<ColumnSpec>& columns,
             const std::vector<IndexSpec>& indexes = {}) {
        test::createFileWithTable(copy_.path(), version, "Tabelle", columns, indexes);
        database_ = std::make_unique<Database>(copy_.path(), Access::kReadWrite);
        table_ = database_->table("Tabelle");
        writer_ = std::make_unique<TableWriter>(database_->file(), table_);
    }

    // One statement; its error number, 0 for none.
    int run(const std::function<void(TableWriter&)>& change) {
        const int number = fehlernummerVon([&] {
            File::Writing writing(database_->file());
            change(*writer_);
            writing.commit(Durability::kSoon);
        });
        if (number != 0) writer_->forget();
        return number;
    }
    RowId insert(const std::vector<Cell>& cells) {
        RowId id = 0;
        EXPECT_EQ(run([&](TableWriter& writer) { id = writer.insert(cells); }), 0);
        return id;
    }
    int update(RowId id, std::size_t column, const Cell& cell) {
        return run([&](TableWriter& writer) { writer.update(id, std::array{column}, std::array{cell}); });
    }

    Database& database() { return *database_; }
    File& file() { return database_->file(); }
    std::map<RowId, Row> rows() { return allRows(*database_, *table_); }
    const std::string& path() const { return copy_.path(); }

    std::vector<std::string> findings() const {
        Database fresh(copy_.path(), Access::kReadOnly);
        return checkFile(fresh);
    }

  private:
    test::TemporaryCopy copy_;
    std::unique_ptr<Database> database_;
    std::shared_ptr<const TableDef> table_;
    std::unique_ptr<TableWriter> writer_;
};

const std::vector<std::string> kSound;

constexpr Decimal kDecimal = {true, {0, 0, 1, 5}, 3};  // -4294967.301
constexpr int kTooLong = 3163, kOverflow = 3349, kWrongKind = 3421;

// What a column makes of a value that it cannot hold as it is: what our reader and mdb-export show, or the
// error number. Values that fit: tests/jet/proof.
struct ValueCase {
    const char* name;
    ColumnSpec column;
    Cell cell;
    std::string ours, theirs;
    int error = 0;
};
const std::vector<ValueCase> kValueCases = {
    {"Null is no", {"c", ColumnType::kBoolean}, {}, "0", "0"},
    {"byte too large", {"c", ColumnType::kByte}, std::int64_t{256}, "", "", kOverflow},
    {"long too large", {"c", ColumnType::kLong}, std::int64_t{1} << 31, "", "", kOverflow},
    {"text into long", {"c", ColumnType::kLong}, "1", "", "", kWrongKind},
    {"single too large", {"c", ColumnType::kSingle}, 1e39, "", "", kOverflow},
    {"infinite", {"c", ColumnType::kDouble}, 1e308 * 10, "", "", kOverflow},
    {"date too late", {"c", ColumnType::kDate}, 2958466.0, "", "", kOverflow},
    {"too many bytes", {"c", ColumnType::kBinary, 3}, KeyBytes{"1234"}, "", "", kTooLong},
    {"empty text", {"c", ColumnType::kText, 5}, "", "''", ""},
    {"two characters", {"c", ColumnType::kText, 5, false, true}, "\u00e4b", "'\u00e4b'", "\u00e4b"},
    {"euro sign", {"c", ColumnType::kText, 5, false, true}, "12 \u20ac", "'12 \u20ac'", "12 \u20ac"},
    {"text too long", {"c", ColumnType::kText, 5}, "123456", "", "", kTooLong},
    {"number into text", {"c", ColumnType::kText, 5}, std::int64_t{1}, "", "", kWrongKind},
    {"rounded", {"c", ColumnType::kDecimal, 0, false, false, 12, 2}, kDecimal, "-4294967.30", "-4294967.30"},
    {"digits", {"c", ColumnType::kDecimal, 0, false, false, 9, 3}, kDecimal, "", "", kOverflow},
    {"decimal",
     {"c", ColumnType::kDecimal, 0, false, false, 12, 3},
     kDecimal,
     "-4294967.301",
     "-4294967.301"},
};
const std::vector<ValueCase> kJet4Cases = {
    {"beyond", {"c", ColumnType::kText, 2}, "\U0001F600", "'\U0001F600'", ""},
    {"half of it", {"c", ColumnType::kText, 1}, "\U0001F600", "", "", kTooLong},
    {"low byte zero", {"c", ColumnType::kText, 9, false, true}, "abc\u0100", "'abc\u0100'", "abc\u0100"},
    {"mark", {"c", ColumnType::kText, 9}, "\uFEFFabc", "'abc'", "abc"},
};
const std::vector<ValueCase> kJet3Cases = {
    {"lacking", {"c", ColumnType::kText, 4}, "a\u0100b\u20ac", "'a?b\u20ac'", "a?b\u20ac"},
};

class WritingTest : public testing::TestWithParam<Version> {};
INSTANTIATE_TEST_SUITE_P(Versions, WritingTest, testing::Values(Version::kJet4, Version::kJet3),
                         [](const auto& version) {
                             return version.param == Version::kJet4 ? "Jet4" : "Jet3";
                         });

// One table with a column for each case, and a row in which only that column is not Null.
TEST_P(WritingTest, ValuesReadBackAsTheColumnHoldsThem) {
    std::vector<ValueCase> cases = kValueCases;
    const auto& more = GetParam() == Version::kJet4 ? kJet4Cases : kJet3Cases;
    cases.insert(cases.end(), more.begin(), more.end());
    if (GetParam() == Version::kJet3) {
        std::erase_if(cases, [](const ValueCase& c) { return c.column.type == ColumnType::kDecimal; });
    }
    std::vector<ColumnSpec> columns = {{"Id", ColumnType::kLong, 0, true}};
    for (std::size_t i = 0; i < cases.size(); ++i) {
        columns.push_back(cases[i].column);
        columns.back().name += std::to_string(i);
    }
    Writable written(GetParam(), columns);
    std::vector<const ValueCase*> good;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].name);
        std::vector<Cell> cells(columns.size());
        cells[i + 1] = cases[i].cell;
        RowId id = 0;
        EXPECT_EQ(written.run([&](TableWriter& writer) { id = writer.insert(cells); }), cases[i].error);
        if (cases[i].error != 0) continue;
        EXPECT_EQ(written.rows()[id][i + 1], cases[i].ours);
        good.push_back(&cases[i]);
    }
    EXPECT_EQ(written.rows().size(), good.size());
    EXPECT_EQ(written.findings(), kSound);
    ASSERT_TRUE(written.file().checkpoint());
    const auto exported = test::exported(written.path(), "Tabelle");
    ASSERT_EQ(exported.size(), good.size());
    for (std::size_t i = 0; i < good.size(); ++i) {
        if (good[i]->theirs.empty()) continue;  // what that program cannot show
        EXPECT_NE(std::ranges::count(exported[i], good[i]->theirs), 0) << good[i]->name;
    }
}

// What a value of any size held is taken again before the file grows. That they all come back:
// tests/jet/proof.
TEST_P(WritingTest, PlaceOfLongValuesIsUsedAgain) {
    Writable written(GetParam(), {{"M", ColumnType::kMemo}, {"O", ColumnType::kOle}});
    std::vector<std::uint32_t> pages;
    for (int round = 0; round < 2; ++round) {
        std::vector<RowId> ids;
        for (const std::size_t size : {64, 65, 1024, 2033, 2034, 4073, 4078, 8146, 70000})
            ids.push_back(written.insert({std::string(size, 'y'), KeyBytes{std::string(size, 'x')}}));
        pages.push_back(written.file().pageCount());
        for (const RowId id : ids)
            EXPECT_EQ(written.run([&](TableWriter& writer) { writer.remove(id); }), 0);
        EXPECT_EQ(written.update(ids[0], 0, {}), jetfehler::kRecordDeleted);
        EXPECT_EQ(written.findings(), kSound);
    }
    EXPECT_EQ(pages[0], pages[1]);
}

// More pages than the maps of a new table and of the file have bits for at first, and then all given back.
TEST_P(WritingTest, PageMapsGrowWithTheFile) {
    for (const bool mapPageIsFull : {false, true}) {
        Writable written(GetParam(), {{"O", ColumnType::kOle}});
        if (mapPageIsFull) {  // as behind some thirty thousand pages: the file's own map gets pages of bits
            File::Writing writing(written.file());
            const auto page = written.file().edit(kGlobalMapPage);
            DataPageEditor editor(written.file(), *page);
            editor.lengthen(1, editor.row(1).size() + editor.page().room());
            writing.commit(Durability::kSoon);
        }
        const std::string bytes(GetParam() == Version::kJet4 ? 4072u * 900 : 2032u * 1200, 'x');
        std::vector<RowId> ids;
        for (int i = 0; i < 2; ++i)
            ids.push_back(written.insert({KeyBytes{bytes}}));
        EXPECT_EQ(written.findings(), kSound);
        const std::uint32_t full = written.file().pageCount();
        for (const RowId id : ids)
            EXPECT_EQ(written.run([&](TableWriter& writer) { writer.remove(id); }), 0);
        EXPECT_EQ(written.findings(), kSound);
        written.insert({KeyBytes{bytes}});
        EXPECT_EQ(written.file().pageCount(), full);
        const PagePtr map = written.file().page(kGlobalMapPage);
        EXPECT_EQ(DataPage(written.file(), *map).row(0)[0], mapPageIsFull ? kUsageReference : kUsageInline);
    }
}

TEST_P(WritingTest, MapsWithoutRoomGetPagesOfBits) {
    Writable written(GetParam(), {{"O", ColumnType::kOle}});
    File::Writing writing(written.file());
    PageAllocator allocator(written.file());
    UsageMapRows rows(written.file(), allocator);
    const RowPointer map = rows.add();
    for (const std::uint32_t page : {7u, 500u, 40000u, 130000u, 524287u}) {
        addToUsageMap(written.file(), allocator, map, page);
        EXPECT_TRUE(inUsageMap(written.file(), map, page));
        EXPECT_FALSE(inUsageMap(written.file(), map, page - 1));
    }
    removeFromUsageMap(written.file(), map, 500);
    EXPECT_EQ(readUsageMap(written.file(), map),
              std::vector<std::uint32_t>{7});  // as far as the file reaches
}

// A reference that leads to somebody else's value, or nowhere, must not take that value away.
TEST_P(WritingTest, DamagedReferencesReleaseNothing) {
    const std::string other(300, 'y');
    for (const std::uint32_t wrong : {0u, 1u, 2u, 0xFFFFFFu}) {
        Writable written(GetParam(), {{"O", ColumnType::kOle}});
        const RowId victim = written.insert({KeyBytes{other}});
        const RowId damaged = written.insert({KeyBytes{other + "z"}});
        {
            File::Writing writing(written.file());
            const auto page = written.file().edit(pageOf(damaged));
            const auto length = std::array<std::uint8_t, 2>{0x2D, 0x01};  // 301
            const auto at = std::search(page->begin(), page->end(), length.begin(), length.end());
            ASSERT_NE(at, page->end());
            // The place of the victim (row 0 of the same page) or a page that holds something else.
            const std::uint32_t place = loadU32(&at[4]);
            storeU32(&at[4], wrong == 0 ? place & ~0xFFu : wrong << 8);
            writing.commit(Durability::kSoon);
        }
        EXPECT_EQ(written.run([&](TableWriter& writer) { writer.remove(damaged); }), 0) << wrong;
        const std::map<RowId, Row> left = {{victim, {test::hex(other)}}};
        EXPECT_EQ(written.rows(), left) << wrong;
    }
}

}  // namespace
}  // namespace wendel::jet
