// Text counted in characters, and the encodings of the suite's files. Expected values: the run time's
// documented results, The Unicode Standard's table of well-formed byte sequences, the Unicode Consortium's
// CP1252.TXT.
#include "platform/Text.h"

#include <gtest/gtest.h>

#include "support/Fehlernummer.h"

namespace wendel {
namespace {

using Texte = std::vector<std::string>;

TEST(Cutting, CountsCharacters) {
    EXPECT_EQ(Mid("abc", 4), "");
    EXPECT_EQ(Mid("Märchen", 2, 2), "är");
    EXPECT_EQ(Mid("a€ß𝄞z", 3), "ß𝄞z");
    EXPECT_EQ(Mid("abc", std::string::npos), "");
    EXPECT_EQ(Right("äöü", 2), "öü");
    EXPECT_EQ(fehlernummerVon([] { Mid("abc", 0); }), fehlernummer::kUngueltigesArgument);
    EXPECT_EQ(fehlernummerVon([] { InStr("abc", "a", 0); }), fehlernummer::kUngueltigesArgument);
}

TEST(Cutting, CountsEachMalformedByteAsOneCharacter) {
    const struct {
        const char* name;
        std::string_view bytes;
        std::size_t anzahl;
    } faelle[] = {{"lone continuation", "\x80", 1},
                  {"cut three-byte sequence", "\xE2\x82", 2},
                  {"overlong slash", "\xC0\xAF", 2},
                  {"surrogate", "\xED\xA0\x80", 3},
                  {"last before the surrogates", "\xED\x9F\xBF", 1},
                  {"beyond U+10FFFF", "\xF4\x90\x80\x80", 4},
                  {"U+10FFFF", "\xF4\x8F\xBF\xBF", 1},
                  {"lead byte before a good character", "\xE2\xC3\xA4", 2}};
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(zeichenzahl(fall.bytes), fall.anzahl);
        EXPECT_EQ(istUtf8(fall.bytes), fall.anzahl == 1 && fall.bytes.size() > 1);
    }
}

TEST(Searching, FindsPositionsInCharacters) {
    EXPECT_EQ(InStr("abc", "", 3), 3u);
    EXPECT_EQ(InStr("abc", "a", 9), 0u);
    EXPECT_EQ(InStr("abc", "C"), 0u);
    EXPECT_EQ(InStr("äöäb", "ä", 2), 3u);
    EXPECT_EQ(InStr("ä", "\xA4"), 0u) << "inside a character";
}

TEST(Trimming, KnowsBlanksAndTheWiderSet) {
    EXPECT_EQ(Trim(" a b\t "), "a b\t");
    EXPECT_EQ(trimAlleLeerraeume(std::string_view("\t a b\r\n\0 ", 8)), "a b");
}

TEST(LetterCase, IsOneCharacterToOne) {
    const std::string gross = "ÄÖÜAZ@[ÀÞŸĀĮĶĹŇŊŶŹŽ", klein = "äöüaz@[àþÿāįķĺňŋŷźž";
    EXPECT_EQ(LCase(gross), klein);
    EXPECT_EQ(UCase(klein), gross);
    EXPECT_TRUE(gleichOhneGrossKlein(gross, klein));
    const std::string ohnePartner = "ß×÷µıİĸŉſ€Ω漢\xC3";
    EXPECT_EQ(LCase(ohnePartner), ohnePartner);
    EXPECT_EQ(UCase(ohnePartner), ohnePartner);
    EXPECT_EQ(LCase("\xC3X"), "\xC3x") << "a cut character does not swallow the next one";
    EXPECT_FALSE(gleichOhneGrossKlein("a", "b") || gleichOhneGrossKlein("a", "aa") ||
                 gleichOhneGrossKlein("×", "÷"));
}

TEST(Splitting, FollowsTheSeparator) {
    EXPECT_EQ(Split("", ","), Texte{});
    EXPECT_EQ(Split("a,,b,", ","), (Texte{"a", "", "b", ""}));
    EXPECT_EQ(Split("a=b=c", "=", 2), (Texte{"a", "b=c"}));
    EXPECT_EQ(ersetzt("Rock'n'Roll", "'", "''"), "Rock''n''Roll");
    EXPECT_EQ(ersetzt("aaa", "aa", "a"), "aa") << "one pass";
}

TEST(Windows1252, RoundTripsEveryByteAndHasItsOwnCharacters) {
    std::string alle;
    for (int b = 0; b < 256; ++b)
        alle += static_cast<char>(b);
    EXPECT_EQ(zeichenzahl(ausWindows1252(alle)), 256u);
    EXPECT_EQ(nachWindows1252(ausWindows1252(alle)), alle);
    EXPECT_EQ(ausWindows1252("\x80\x82\x84\x85\x93\x94\x96\x9F\xE4\xDF\xFF"), "€‚„…“”–Ÿäßÿ");
    EXPECT_EQ(ausWindows1252("\x81\x8D\x8F\x90\x9D"), "\u0081\u008D\u008F\u0090\u009D");
    EXPECT_EQ(nachWindows1252("Ω\u0080漢𝄞\xC3x Žluť"), "?????x \x8Elu?");
}

TEST(TextLines, GuessTheEncodingOfTheWholeFile) {
    const struct {
        const char* name;
        std::string_view inhalt;
        Texte zeilen;
    } faelle[] = {
        {"three line ends", "a\r\nb\nc\rd", {"a", "b", "c", "d"}},
        {"empty lines stay, the last end opens none", "\na\n\r\n", {"", "a", ""}},
        {"UTF-8", "M\xC3\xA4rz\n", {"März"}},
        {"a byte order mark decides, whatever follows", "\xEF\xBB\xBF\xE4", {"\xE4"}},
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
