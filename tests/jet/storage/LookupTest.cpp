// Limits of a look-up that no value of the column equals. What the others find: jetsql.statements.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/Table.h"
#include "jet/storage/TestFiles.h"

namespace wendel::jet {
namespace {

std::vector<RowId> found(Database& database, const TableDef& table, const Index& index,
                         const KeyRange& range) {
    std::vector<RowId> ids;
    IndexCursor cursor(database.file(), table, index);
    for (cursor.seek(range); cursor.next();)
        ids.push_back(cursor.rowId());
    return ids;
}

TEST(Lookup, LimitsThatTheColumnCannotHoldAreRoundedOutwards) {
    if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
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
