// Text counted in characters, and the encodings of the suite's files. Expected values: the run time's
// documented results, The Unicode Standard's table of well-formed byte sequences, the Unicode Consortium's
// CP1252.TXT.
#include "platform/Text.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"

namespace wendel {
namespace {

using Texte = std::vector<std::string>;

TEST(Cutting, CountsCharacters) {
    EXPECT_EQ(Mid("abc", 4), "");
    EXPECT_EQ(Mid("abc", 9, 2), "");
    EXPECT_EQ(Mid("abc", 2, 99), "bc");
    EXPECT_EQ(Mid("Märchen", 2, 2), "är");
    EXPECT_EQ(Mid("a€ß𝄞z", 3), "ß𝄞z");
    EXPECT_EQ(Mid("abc", 2, std::string::npos), "bc");
    EXPECT_EQ(Mid("abc", std::string::npos), "");
    EXPECT_EQ(Left("abc", 14), "abc");
    EXPECT_EQ(Left("äöü", 2), "äö");
    EXPECT_EQ(Left("äöü", 0), "");
    EXPECT_EQ(Right("äöü", 2), "öü");
    EXPECT_EQ(Right("ä", 5), "ä");
    EXPECT_EQ(zeichenzahl("übermorgenfrüh"), 14u);
    try {
        Mid("abc", 0);
        ADD_FAILURE() << "no error";
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.nummer(), fehlernummer::kUngueltigesArgument);
    }
}

TEST(Cutting, CountsEachMalformedByteAsOneCharacter) {
    const struct {
        const char* name;
        std::string_view bytes;
        std::size_t anzahl;
    } faelle[] = {
        {"lone continuation", "\x80", 1},
        {"cut two-byte sequence", "a\xC3", 2},
        {"cut three-byte sequence", "\xE2\x82", 2},
        {"overlong slash", "\xC0\xAF", 2},
        {"overlong three bytes", "\xE0\x80\xAF", 3},
        {"surrogate", "\xED\xA0\x80", 3},
        {"last before the surrogates", "\xED\x9F\xBF", 1},
        {"beyond U+10FFFF", "\xF4\x90\x80\x80", 4},
        {"U+10FFFF", "\xF4\x8F\xBF\xBF", 1},
        {"lead byte of nothing", "\xF5\x80\x80\x80", 4},
        {"overlong four bytes", "\xF0\x8F\xBF\xBF", 4},
        {"lead byte before a good character", "\xE2\xC3\xA4", 2},
        {"no lead byte at all", "\xFF\xFE", 2},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(zeichenzahl(fall.bytes), fall.anzahl);
        EXPECT_EQ(istUtf8(fall.bytes), fall.anzahl == 1 && fall.bytes.size() > 1);
        EXPECT_EQ(Left(fall.bytes, fall.anzahl), fall.bytes);
    }
}

TEST(Searching, FindsPositionsInCharacters) {
    const struct {
        const char *text, *gesucht;
        std::size_t start, position;
    } faelle[] = {
        {"abc", "", 1, 1},    {"", "a", 1, 0},     {"", "", 1, 0},      {"abc", "a", 9, 0},
        {"abc", "", 3, 3},    {"abc", "C", 1, 0},  {"äöäb", "ä", 2, 3}, {"äöäb", "b", 1, 4},
        {"abab", "ab", 2, 3}, {"ä", "\xA4", 1, 0}, {"aab", "ab", 1, 2},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(std::string(fall.text) + "/" + fall.gesucht);
        EXPECT_EQ(InStr(fall.text, fall.gesucht, fall.start), fall.position);
    }
    EXPECT_THROW(InStr("abc", "a", 0), Fehler);
}

TEST(Trimming, KnowsBlanksAndTheWiderSet) {
    EXPECT_EQ(Trim(" a\t "), "a\t");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim("a b"), "a b");
    EXPECT_EQ(trimAlleLeerraeume(std::string_view("\t a b\r\n\0 ", 8)), "a b");
    EXPECT_EQ(trimAlleLeerraeume(std::string_view("\0", 1)), "");
}

TEST(LetterCase, IsOneCharacterToOne) {
    const struct {
        const char *gross, *klein;
    } paare[] = {{"ÄÖÜ", "äöü"}, {"AZ@[", "az@["}, {"ÀÞ", "àþ"}, {"Ÿ", "ÿ"},
                 {"ĀĮĶ", "āįķ"}, {"ĹŇ", "ĺň"},     {"ŊŶ", "ŋŷ"}, {"ŹŽ", "źž"}};
    for (const auto& paar : paare) {
        SCOPED_TRACE(paar.gross);
        EXPECT_EQ(LCase(paar.gross), paar.klein);
        EXPECT_EQ(UCase(paar.klein), paar.gross);
        EXPECT_TRUE(gleichOhneGrossKlein(paar.gross, paar.klein));
    }
    const std::string ohnePartner = "ß×÷µıİĸŉſ€Ω漢\xC3";
    EXPECT_EQ(LCase(ohnePartner), ohnePartner);
    EXPECT_EQ(UCase(ohnePartner), ohnePartner);
    EXPECT_EQ(LCase("\xC3X"), "\xC3x") << "a cut character does not swallow the next one";
    EXPECT_FALSE(gleichOhneGrossKlein("a", "b"));
    EXPECT_FALSE(gleichOhneGrossKlein("a", "aa"));
    EXPECT_FALSE(gleichOhneGrossKlein("×", "÷"));
}

TEST(Splitting, FollowsTheSeparator) {
    EXPECT_EQ(Split("", ","), Texte{});
    EXPECT_EQ(Split("beep", ","), Texte{"beep"});
    EXPECT_EQ(Split("a,,b", ","), (Texte{"a", "", "b"}));
    EXPECT_EQ(Split("a=b=c", "=", 2), (Texte{"a", "b=c"}));
    EXPECT_EQ(Split("a=b", "=", 1), Texte{"a=b"});
    EXPECT_EQ(Split(",", ","), (Texte{"", ""}));
    EXPECT_EQ(Split("a||b", "||"), (Texte{"a", "b"}));
    EXPECT_EQ(Split("ab", ""), Texte{"ab"});
    EXPECT_EQ(Join({"a", "", "b"}, ", "), "a, , b");
    EXPECT_EQ(Join({}, ","), "");
}

TEST(Replacing, IsOnePass) {
    EXPECT_EQ(ersetzt("Rock'n'Roll", "'", "''"), "Rock''n''Roll");
    EXPECT_EQ(ersetzt("aaa", "aa", "a"), "aa");
    EXPECT_EQ(ersetzt("a", "", "x"), "a");
    EXPECT_EQ(ersetzt("ab\r\ncd\r\n", "\r\n", " "), "ab cd ");
}

TEST(Windows1252, RoundTripsEveryByte) {
    std::string alle;
    for (int b = 0; b < 256; ++b)
        alle += static_cast<char>(b);
    EXPECT_TRUE(istUtf8(ausWindows1252(alle)));
    EXPECT_EQ(zeichenzahl(ausWindows1252(alle)), 256u);
    EXPECT_EQ(nachWindows1252(ausWindows1252(alle)), alle);
}

TEST(Windows1252, HasItsOwnCharacters) {
    EXPECT_EQ(ausWindows1252("\x80\x82\x84\x85\x93\x94\x96\x9F\xE4\xDF\xFF"), "€‚„…“”–Ÿäßÿ");
    EXPECT_EQ(ausWindows1252("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
    EXPECT_EQ(nachWindows1252("Ω\u0080漢𝄞\xC3x"), "?????x");
    EXPECT_EQ(nachWindows1252("Žluť"), "\x8Elu?");
}

TEST(TextLines, GuessTheEncodingOfTheWholeFile) {
    const struct {
        const char* name;
        std::string_view inhalt;
        Texte zeilen;
    } faelle[] = {
        {"empty", "", {}},
        {"three line ends", "a\r\nb\nc\rd", {"a", "b", "c", "d"}},
        {"empty lines stay, the last end opens none", "\na\n\n", {"", "a", ""}},
        {"CR LF at the end", "a\r\n", {"a"}},
        {"UTF-8", "M\xC3\xA4rz\n", {"März"}},
        {"UTF-8 with byte order mark", "\xEF\xBB\xBFx\n", {"x"}},
        {"a byte order mark decides, whatever follows", "\xEF\xBB\xBF\xE4", {"\xE4"}},
        {"only a byte order mark", "\xEF\xBB\xBF", {}},
        {"Windows-1252", "M\xE4rz\r\n\x80", {"März", "€"}},
        {"one bad byte makes all of it Windows-1252", "\xC3\xA4 \xE4", {"Ã¤ ä"}},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(textzeilen(fall.inhalt), fall.zeilen);
    }
}

}  // namespace
}  // namespace wendel
