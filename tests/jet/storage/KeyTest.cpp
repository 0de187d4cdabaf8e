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
    {"long 0", ColumnType::kLong, std::int64_t{0}, "7F80000000", "807FFFFFFF"},
    {"long -1", ColumnType::kLong, std::int64_t{-1}, "7F7FFFFFFF", "8080000000"},
    {"long max", ColumnType::kLong, std::int64_t{2147483647}, "7FFFFFFFFF", "8000000000"},
    {"integer min", ColumnType::kInteger, std::int64_t{-32768}, "7F0000", "80FFFF"},
    {"byte 1", ColumnType::kByte, std::int64_t{1}, "7F01", "80FE"},
    {"true", ColumnType::kBoolean, std::int64_t{-1}, "7F00", "80FF"},
    {"false", ColumnType::kBoolean, std::int64_t{0}, "7FFF", "8000"},
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
    {"SAT1", ColumnType::kText, "SAT1", "7F6B4A6D380100", ""},
    {"Straße", ColumnType::kText, "Straße", "7F6B6D694A6B6B510100", ""},
    {"Strasse", ColumnType::kText, "Strasse", "7F6B6D694A6B6B510100", ""},
    {"Mädchen", ColumnType::kText, "Mädchen", "7F604A4F4D57516201021300", "809FB5B0B2A8AE9DFEFDECFF00"},
    {"Käpt'n", ColumnType::kText, "Käpt'n", "7F5C4A666D620102130101018017068000", ""},
    {"coop", ColumnType::kText, "coop", "7F4D6464660100", ""},
    {"co-op", ColumnType::kText, "co-op", "7F4D64646601010101800F068200", "80B29B9B99FEFEFEFE7FF0F97DFF00"},
    {"élève", ColumnType::kText, "élève", "7F515E517151010E020F00", ""},
    {"Łódź", ColumnType::kText, "Łódź", "7F5E644F78011F0E020E00", ""},
    {"control character", ColumnType::kText,
     "a\x01"
     "b",
     "7F4A4C01010101800B060300", ""},
    {"dash alone", ColumnType::kText, "–", "7F010101018007068900", ""},
    {"euro", ColumnType::kText, "€", "7F35A10100", ""},
    {"trailing blank", ColumnType::kText, "a ", "7F4A0100", ""},
    {"accent, special and trailing levels", ColumnType::kText, "Ärger-im \"Café\"",
     "7F4A695551695960070A4D4A53510A01130202020202020202020202"
     "0E010101801B068200",
     ""},
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
    const struct {
        const char* name;
        ColumnType type;
        KeyValue value;
    } rows[] = {
        {"fraction in a Long", ColumnType::kLong, 1.5},
        {"too large for an Integer", ColumnType::kInteger, std::int64_t{32768}},
        {"negative Byte", ColumnType::kByte, std::int64_t{-1}},
        {"1 is not Yes", ColumnType::kBoolean, std::int64_t{1}},
        {"Null in Yes/No", ColumnType::kBoolean, std::monostate()},
        {"text in a Long", ColumnType::kLong, "5"},
        {"number in a text", ColumnType::kText, std::int64_t{5}},
        {"too fine for a Single", ColumnType::kSingle, 0.1},
        {"too fine for a Decimal", ColumnType::kDecimal, Decimal{false, {0, 0, 0, 1}, 4}},
        {"text with an unknown character", ColumnType::kText, "a一"},
        {"too large for Currency", ColumnType::kCurrency, std::int64_t{INT64_MAX}},
        {"huge double in a Long", ColumnType::kLong, 1e300},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::string key = "x";
        EXPECT_FALSE(appendKey(columnOf(row.type), false, row.value, key));
        EXPECT_EQ(key, "x");
    }
}

// The key bytes follow from the table of the Access 97 order; accents are half bytes behind the weights.
TEST(TextKey, FollowsTheOrderOfAccess97InItsFiles) {
    const struct {
        const char* text;
        const char* key;
    } rows[] = {
        {"", "00"},
        {"ARD", "60756400"},
        {"ard  ", "60756400"},
        {"Straße",
         "767775607676"
         "6600"},
        {"Ä", "600600"},
        {"Mädchen",
         "6F606462696670"
         "0600"},
        {"Café", "62606766022400"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(upper(test::hex(sortKey(TextOrder::kGeneralJet3, row.text))), row.key);
    }
}

TEST(TextKey, AgreesWithTheKeysOfTheExampleFile) {
    if (!test::haveData()) GTEST_SKIP() << "no example files at " << test::dataPath("");
    std::size_t compared = 0;
    for (const auto& fact : test::expectations("typen.json")) {
        if (fact[0] != "textkey") continue;
        const std::string text = test::unhex(fact[1]);
        SCOPED_TRACE(text);
        std::string ascending, descending;
        if (!appendKey(columnOf(ColumnType::kText), false, text, ascending)) continue;  // codes not known
        appendKey(columnOf(ColumnType::kText), true, text, descending);
        EXPECT_EQ(test::hex(ascending), fact[2]);
        EXPECT_EQ(test::hex(descending), fact[3]);
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
    const struct {
        Decimal value;
        const char* text;
    } rows[] = {
        {{false, {0, 0, 0, 0}, 0}, "0"},
        {{false, {0, 0, 0, 0}, 3}, "0.000"},
        {{true, {0, 0, 0, 10}, 4}, "-0.0010"},
        {{false, {0, 0, 0, 12345}, 2}, "123.45"},
        {{true, {0, 0, 1, 0}, 0}, "-4294967296"},
        {{false, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF}, 0},
         "340282366920938463463374607431768211455"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.value.toText(), row.text);
}

}  // namespace
}  // namespace wendel::jet
