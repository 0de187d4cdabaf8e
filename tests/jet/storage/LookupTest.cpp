// Finding rows through an index: the right ones, and with few pages.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/ReadEverything.h"
#include "jet/storage/Table.h"
#include "jet/storage/TestFiles.h"

namespace wendel::jet {
namespace {

class LookupTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
    }

    static std::vector<RowId> found(Database& database, const TableDef& table, const Index& index,
                                    const KeyRange& range,
                                    IndexCursor::Direction way = IndexCursor::Direction::kForward) {
        std::vector<RowId> ids;
        IndexCursor cursor(database.file(), table, index);
        for (cursor.seek(range, way); cursor.next();)
            ids.push_back(cursor.rowId());
        return ids;
    }
};

TEST_F(LookupTest, KeyLookUpTouchesLogarithmicallyManyPages) {
    for (const char* name : {"tvdaten-klein.mdb", "tvdaten-gross.mdb"}) {
        SCOPED_TRACE(name);
        Database database(test::dataPath(name), Access::kReadOnly);
        EXPECT_LT(database.file().pagesRead(), 20u) << "to open";
        const auto table = database.table("sendungen");
        const Index& index = *table->primaryKey();
        // A page of the index holds far more than 64 entries; one page more for the row, one for a neighbour.
        const double levels = std::ceil(std::log(table->rowCount) / std::log(64));
        RowView row;
        for (std::int64_t key = 1; key <= table->rowCount; key += 7) {
            const std::uint64_t before = database.file().pagesRequested();
            const KeyValue value = key;
            IndexCursor cursor(database.file(), *table, index);
            cursor.seek(keyRange(*table, index, {&value, 1}));
            ASSERT_TRUE(cursor.next());
            ASSERT_TRUE(fetchRow(database.file(), *table, cursor.rowId(), row));
            EXPECT_EQ(row.asInteger(*table->findColumn("Pos")), key);
            EXPECT_FALSE(cursor.next());
            EXPECT_LE(static_cast<double>(database.file().pagesRequested() - before), levels + 2);
        }
    }
}

// The values of an index's first column, and for each row their ascending key: keys sort as the values do.
struct FirstColumn {
    std::deque<std::string> texts;
    std::vector<KeyValue> values;  // no Nulls
    std::vector<std::pair<RowId, std::string>> keys;
};

FirstColumn firstColumn(Database& database, const TableDef& table, const Index& index) {
    FirstColumn all;
    const std::size_t c = index.columns[0].column;
    for (TableScan scan(database.file(), table); scan.next();) {
        const KeyValue value = test::keyValue(scan.row(), c, all.texts.emplace_back());
        std::string key;
        // A few texts have characters whose place in the order is not known.
        if (scan.row().isNull(c) || !appendKey(table.columns[c], false, value, key)) continue;
        all.values.push_back(value);
        all.keys.emplace_back(scan.row().id(), key);
    }
    return all;
}

struct Limits {
    std::optional<KeyLimit> low, high;
};

std::set<RowId> rowsBetween(const FirstColumn& all, const Column& column, const Limits& limits) {
    std::string low, high;
    if (limits.low) appendKey(column, false, limits.low->value, low);
    if (limits.high) appendKey(column, false, limits.high->value, high);
    std::set<RowId> rows;
    for (const auto& [id, key] : all.keys) {
        const bool above = !limits.low || (limits.low->inclusive ? key >= low : key > low);
        const bool below = !limits.high || (limits.high->inclusive ? key <= high : key < high);
        if (above && below) rows.insert(id);
    }
    return rows;
}

// For every index of these tables and pairs of values of its first column: all rows between them are found,
// for whole numbers no others, and backwards the same.
TEST_F(LookupTest, RangesHoldTheRowsBetweenTheirLimits) {
    Database database(test::dataPath("typen.mdb"), Access::kReadOnly);
    for (const char* name :
         {"IndexAuf", "IndexAb", "MehrSpalten", "NullIndex", "Praefix", "Leer", "Geloescht"}) {
        const auto table = database.table(name);
        for (const Index& index : table->indexes) {
            SCOPED_TRACE(std::string(name) + "." + index.name);
            const Column& column = table->columns[index.columns[0].column];
            const FirstColumn all = firstColumn(database, *table, index);
            const bool exact = column.type == ColumnType::kLong || column.type == ColumnType::kByte ||
                               column.type == ColumnType::kBoolean || column.type == ColumnType::kCurrency;
            for (std::size_t i = 0; i < all.values.size(); i += 1 + all.values.size() / 9) {
                const KeyValue& a = all.values[i];
                const KeyValue& b = all.values[(i * 7 + 3) % all.values.size()];
                const Limits kinds[] = {
                    {KeyLimit{a, true}, KeyLimit{a, true}},   {KeyLimit{a, true}, KeyLimit{b, true}},
                    {KeyLimit{b, false}, KeyLimit{a, false}}, {KeyLimit{a, true}, std::nullopt},
                    {KeyLimit{a, false}, std::nullopt},       {std::nullopt, KeyLimit{a, true}},
                    {std::nullopt, KeyLimit{a, false}}};
                for (const Limits& limits : kinds) {
                    const KeyRange range = keyRange(*table, index, {}, limits.low, limits.high);
                    const std::vector<RowId> ids = found(database, *table, index, range);
                    const std::vector<RowId> back =
                        found(database, *table, index, range, IndexCursor::Direction::kBackward);
                    EXPECT_EQ(ids, std::vector<RowId>(back.rbegin(), back.rend()));
                    const std::set<RowId> sorted(ids.begin(), ids.end());
                    const std::set<RowId> wanted = rowsBetween(all, column, limits);
                    EXPECT_TRUE(std::includes(sorted.begin(), sorted.end(), wanted.begin(), wanted.end()));
                    EXPECT_TRUE(!exact || sorted == wanted);
                }
            }
        }
    }
}

TEST_F(LookupTest, LimitsThatTheColumnCannotHoldAreRoundedOutwards) {
    Database database(test::dataPath("tvdaten-klein.mdb"), Access::kReadOnly);
    const auto table = database.table("Sendungen");
    const Index& index = *table->primaryKey();
    const auto count = [&](std::optional<KeyLimit> low, std::optional<KeyLimit> high) {
        return found(database, *table, index, keyRange(*table, index, {}, low, high)).size();
    };
    EXPECT_EQ(count(KeyLimit{std::int64_t{1} << 40, true}, std::nullopt), 0u);
    EXPECT_EQ(count(KeyLimit{-1e18, true}, std::nullopt), 605u);
    EXPECT_EQ(count(std::nullopt, KeyLimit{1e300, true}), 605u);
    EXPECT_NEAR(static_cast<double>(count(KeyLimit{600.5, true}, std::nullopt)), 6, 1);
    EXPECT_EQ(count(KeyLimit{std::monostate(), true}, std::nullopt), 0u);
    const KeyValue fraction = 1.5, text = std::string_view("x");
    EXPECT_TRUE(keyRange(*table, index, {&fraction, 1}).empty);
    EXPECT_FALSE(keyRange(*table, index, {&text, 1}).empty);
    // A moment is found though its last bit differs.
    const Index& byTime = *table->findIndex("beginn");
    TableScan scan(database.file(), *table);
    ASSERT_TRUE(scan.next());
    const double stored = scan.row().asDouble(*table->findColumn("Beginn"));
    for (const double asked : {std::nextafter(stored, 0.0), std::nextafter(stored, 1e9)}) {
        const KeyValue value = asked;
        const auto ids = found(database, *table, byTime, keyRange(*table, byTime, {&value, 1}));
        EXPECT_EQ(std::count(ids.begin(), ids.end(), scan.row().id()), 1);
    }
}

}  // namespace
}  // namespace wendel::jet
