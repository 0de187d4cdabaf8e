// Index keys, and the order of texts that follows from them.

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "jet/storage/KeyEncoder.h"
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
    {"long -1", ColumnType::kLong, std::int64_t{-1}, "7F7FFFFFFF", "8080000000"},
    {"integer min", ColumnType::kInteger, std::int64_t{-32768}, "7F0000", "80FFFF"},
    {"true", ColumnType::kBoolean, std::int64_t{-1}, "7F00", "80FF"},
    {"currency", ColumnType::kCurrency, KeyCurrency{-1}, "7F7FFFFFFFFFFFFFFF", "808000000000000000"},
    {"currency from double", ColumnType::kCurrency, -0.0001, "7F7FFFFFFFFFFFFFFF", "808000000000000000"},
    {"single -1", ColumnType::kSingle, -1.0, "7F407FFFFF", "80BF800000"},
    {"double -1", ColumnType::kDouble, -1.0, "7F400FFFFFFFFFFFFF", "80BFF0000000000000"},
    {"date", ColumnType::kDate, 41267.84375, "7FC0E4267B00000000", "803F1BD984FFFFFFFF"},
    {"decimal 0.001", ColumnType::kDecimal, Decimal{false, {0, 0, 0, 1}, 3},
     "7FFF00000000000000000000000000000001", "80FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFE"},
    {"decimal -999999999.999", ColumnType::kDecimal, Decimal{true, {0, 0, 0xE8, 0xD4A50FFF}, 3},
     "7F00FFFFFFFFFFFFFFFFFFFFFF172B5AF000", "80000000000000000000000000E8D4A50FFF"},
    {"guid", ColumnType::kGuid, kGuid, "7F022D1AFB7FB9D861092CFBFFA4FB84FB7908", ""},
    {"binary", ColumnType::kBinary, KeyBytes{"\xFD\xA8\x76\x8F\x86\x11\x45\xB2\x13"},
     "7FFDA8768F861145B209130000000000000001", ""},
    {"null", ColumnType::kLong, std::monostate(), "00", "FF"},
    {"ARD", ColumnType::kText, "ARD", "7F4A694F0100", "80B596B0FEFF00"},
    {"Straße", ColumnType::kText, "Straße", "7F6B6D694A6B6B510100", ""},
    {"Mädchen", ColumnType::kText, "Mädchen", "7F604A4F4D57516201021300", "809FB5B0B2A8AE9DFEFDECFF00"},
    {"co-op", ColumnType::kText, "co-op", "7F4D64646601010101800F068200", "80B29B9B99FEFEFEFE7FF0F97DFF00"},
    {"Łódź", ColumnType::kText, "Łódź", "7F5E644F78011F0E020E00", ""},
    {"all levels", ColumnType::kText, "Ärger-im \"Café\"",
     "7F4A695551695960070A4D4A53510A011302020202020202020202020E010101801B068200", ""},
};

Column columnOf(ColumnType type) {
    Column column;
    column.type = type;
    column.scale = 3;
    column.textOrder = TextOrder::kGeneralJet4;
    return column;
}

std::string upper(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

TEST(Key, HasTheBytesOfTheEngine) {
    for (const Vector& v : kVectors) {
        SCOPED_TRACE(v.name);
        std::string ascending, descending;
        EXPECT_TRUE(appendKey(columnOf(v.type), false, v.value, ascending));
        EXPECT_EQ(upper(test::hex(ascending)), v.ascending);
        EXPECT_TRUE(appendKey(columnOf(v.type), true, v.value, descending));
        if (*v.descending != '\0') {
            EXPECT_EQ(upper(test::hex(descending)), v.descending);
        }
    }
}

TEST(Key, RefusesValuesThatTheColumnCannotHold) {
    using enum ColumnType;
    const std::pair<ColumnType, KeyValue> rows[] = {{kLong, 1.5},
                                                    {kLong, 1e300},
                                                    {kLong, "5"},
                                                    {kInteger, std::int64_t{32768}},
                                                    {kByte, std::int64_t{-1}},
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
                                                                   {"Mädchen", "6F6064626966700600"},
                                                                   {"Café", "62606766022400"}};
    for (const auto& [text, key] : rows)
        EXPECT_EQ(upper(test::hex(sortKey(TextOrder::kGeneralJet3, text))), key) << text;
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

TEST(Values, DecimalsAreWrittenWithTheirScale) {
    constexpr std::uint32_t kAll = 0xFFFFFFFF;
    const std::pair<Decimal, const char*> rows[] = {
        {{false, {0, 0, 0, 0}, 0}, "0"},
        {{false, {0, 0, 0, 0}, 3}, "0.000"},
        {{true, {0, 0, 0, 10}, 4}, "-0.0010"},
        {{true, {0, 0, 1, 0}, 0}, "-4294967296"},
        {{false, {kAll, kAll, kAll, kAll}, 0}, "340282366920938463463374607431768211455"}};
    for (const auto& [value, text] : rows)
        EXPECT_EQ(value.toText(), text);
}

}  // namespace
}  // namespace wendel::jet
