// Index keys, the order of texts that follows from them, and look-ups by them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Table.h"
#include "jet/storage/TestFiles.h"

namespace wendel::jet {
namespace {

constexpr Guid kGuid = {0x02, 0x2D, 0x1A, 0xFB, 0x7F, 0xB9, 0xD8, 0x61,
                        0x2C, 0xFB, 0xFF, 0xA4, 0xFB, 0x84, 0xFB, 0x79};

struct Vector {
    const char* name;
    ColumnType type;
    KeyValue value;
    const char* ascending;
    const char* descending;  // "" where none is known
};

// Keys that the engine's own indexes hold for these values (descending text and Decimal: another library's).
const Vector kVectors[] = {
    {"long -1", ColumnType::kLong, std::int64_t{-1}, "7f7fffffff", "8080000000"},
    {"integer min", ColumnType::kInteger, std::int64_t{-32768}, "7f0000", "80ffff"},
    {"true", ColumnType::kBoolean, std::int64_t{-1}, "7f00", "80ff"},
    {"currency from double", ColumnType::kCurrency, -0.0001, "7f7fffffffffffffff", "808000000000000000"},
    {"single -1", ColumnType::kSingle, -1.0, "7f407fffff", "80bf800000"},
    {"double -1", ColumnType::kDouble, -1.0, "7f400fffffffffffff", "80bff0000000000000"},
    {"date", ColumnType::kDate, 41267.84375, "7fc0e4267b00000000", "803f1bd984ffffffff"},
    {"decimal 0.001", ColumnType::kDecimal, Decimal{false, {0, 0, 0, 1}, 3},
     "7fff00000000000000000000000000000001", "80fffffffffffffffffffffffffffffffffe"},
    {"decimal -999999999.999", ColumnType::kDecimal, Decimal{true, {0, 0, 0xE8, 0xD4A50FFF}, 3},
     "7f00ffffffffffffffffffffff172b5af000", "80000000000000000000000000e8d4a50fff"},
    {"guid", ColumnType::kGuid, kGuid, "7f022d1afb7fb9d861092cfbffa4fb84fb7908", ""},
    {"binary", ColumnType::kBinary, KeyBytes{"\xFD\xA8\x76\x8F\x86\x11\x45\xB2\x13"},
     "7ffda8768f861145b209130000000000000001", ""},
    {"null", ColumnType::kLong, std::monostate(), "00", "ff"},
    {"ARD", ColumnType::kText, "ARD", "7f4a694f0100", "80b596b0feff00"},
    {"Straße", ColumnType::kText, "Straße", "7f6b6d694a6b6b510100", ""},
    {"Mädchen", ColumnType::kText, "Mädchen", "7f604a4f4d57516201021300", "809fb5b0b2a8ae9dfefdecff00"},
    {"co-op", ColumnType::kText, "co-op", "7f4d64646601010101800f068200", "80b29b9b99fefefefe7ff0f97dff00"},
    {"Łódź", ColumnType::kText, "Łódź", "7f5e644f78011f0e020e00", ""},
    {"all levels", ColumnType::kText, "Ärger-im \"Café\"",
     "7f4a695551695960070a4d4a53510a011302020202020202020202020e010101801b068200", ""},
};

Column columnOf(ColumnType type) {
    Column column;
    column.type = type;
    column.scale = 3;
    column.textOrder = TextOrder::kGeneralJet4;
    return column;
}

TEST(Key, HasTheBytesOfTheEngine) {
    for (const Vector& v : kVectors) {
        SCOPED_TRACE(v.name);
        std::string ascending, descending;
        EXPECT_TRUE(appendKey(columnOf(v.type), false, v.value, ascending));
        EXPECT_EQ(test::hex(ascending), v.ascending);
        EXPECT_TRUE(appendKey(columnOf(v.type), true, v.value, descending));
        EXPECT_EQ(*v.descending ? test::hex(descending) : "", v.descending);
    }
}

TEST(Key, RefusesValuesThatTheColumnCannotHold) {
    using enum ColumnType;
    const std::pair<ColumnType, KeyValue> rows[] = {{kLong, 1.5},
                                                    {kLong, "5"},
                                                    {kInteger, std::int64_t{32768}},
                                                    {kBoolean, std::int64_t{1}},
                                                    {kBoolean, std::monostate()},
                                                    {kText, std::int64_t{5}},
                                                    {kText, "unknown: 一"},
                                                    {kSingle, 0.1},
                                                    {kDecimal, Decimal{false, {0, 0, 0, 1}, 4}},
                                                    {kCurrency, std::int64_t{INT64_MAX}}};
    for (const auto& [type, value] : rows) {
        std::string key = "x";
        EXPECT_FALSE(appendKey(columnOf(type), false, value, key))
            << "type " << static_cast<int>(type) << ", alternative " << value.index();
        EXPECT_EQ(key, "x");
    }
}

// The key bytes follow from the table of the Access 97 order; accents are half bytes behind the weights.
TEST(TextKey, FollowsTheOrderOfAccess97InItsFiles) {
    const std::vector<std::pair<const char*, const char*>> rows = {{"", "00"},
                                                                   {"ard  ", "60756400"},
                                                                   {"Straße", "7677756076766600"},
                                                                   {"Mädchen", "6f6064626966700600"},
                                                                   {"Café", "62606766022400"}};
    for (const auto& [text, key] : rows)
        EXPECT_EQ(test::hex(sortKey(TextOrder::kGeneralJet3, text)), key) << text;
}

TEST(TextKey, AgreesWithTheKeysOfTheExampleFile) {
    if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
    std::size_t compared = 0;
    for (const std::string& line : test::expectations({"textkeys", test::dataPath("typen.json")})) {
        const std::size_t end = line.find('\t');
        std::string text, ascending, descending;
        for (std::size_t i = 0; i < end; i += 2)
            text += static_cast<char>(std::stoi(line.substr(i, 2), nullptr, 16));
        if (!appendKey(columnOf(ColumnType::kText), false, text, ascending)) continue;  // codes not known
        appendKey(columnOf(ColumnType::kText), true, text, descending);
        EXPECT_EQ(test::hex(ascending) + '\t' + test::hex(descending), line.substr(end + 1)) << text;
        ++compared;
    }
    EXPECT_GT(compared, 1110u);
}

// The comparison takes shortcuts; the keys do not.
TEST(TextKey, ComparisonGivesTheOrderOfTheKeys) {
    constexpr unsigned kSeed = 20121224;
    SCOPED_TRACE(kSeed);
    std::mt19937 random(kSeed);
    const std::vector<std::string> pieces = {"a",  "A", "b", "ä",  "Ä", "ß",    "ss",      "-",        "'",
                                             " ",  "é", "Œ", "oe", "1", "²",    "\x01",    "\xCC\x81", "か",
                                             "ぁ", "😀", "—", "_",  "ﬁ", "\xFF", "\xE2\x82"};
    const auto text = [&] {
        std::string t;
        const std::size_t n = random() % 5 == 0 ? random() % 300 : random() % 4;
        for (std::size_t i = 0; i < n; ++i)
            t += pieces[random() % pieces.size()];
        return t;
    };
    const auto sign = [](int x) { return (x > 0) - (x < 0); };
    for (int i = 0; i < 20000; ++i) {
        const std::string a = text(), b = i % 3 == 0 ? a + pieces[random() % pieces.size()] : text();
        for (const TextOrder order : {TextOrder::kGeneralJet4, TextOrder::kGeneralJet3}) {
            const int byKey = sortKey(order, a).compare(sortKey(order, b));
            ASSERT_EQ(sign(compareText(order, a, b)), sign(byKey)) << test::hex(a) << " " << test::hex(b);
        }
    }
}

TEST(TextKey, CountsTwoHundredAndFiftyFiveCharacters) {
    const std::string long1 = std::string(254, 'x') + "ä1", long2 = std::string(254, 'x') + "ä2";
    for (const TextOrder order : {TextOrder::kGeneralJet4, TextOrder::kGeneralJet3}) {
        EXPECT_EQ(compareText(order, long1, long2), 0);
        EXPECT_NE(compareText(order, long1, std::string(254, 'x') + "a1"), 0);
        EXPECT_EQ(compareText(order, std::string(250, 'x') + "        y", std::string(250, 'x')), 0);
    }
}

std::vector<RowId> found(Database& database, const TableDef& table, const Index& index,
                         const KeyRange& range) {
    std::vector<RowId> ids;
    IndexCursor cursor(database.file(), table, index);
    for (cursor.seek(range); cursor.next();)
        ids.push_back(cursor.rowId());
    return ids;
}

// Limits of a look-up that no value of the column equals. What the others find: jetsql.statements.
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
