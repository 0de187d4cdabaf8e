// The icon's record and the live-update sentence.
#include <gtest/gtest.h>

#include "core/Liveupdatetext.h"
#include "core/TaskbarIcon.h"

namespace wendel {
namespace {

std::string bytes(const IconDatensatz& satz, std::size_t von, std::size_t anzahl) {
    return std::string(satz.begin() + static_cast<std::ptrdiff_t>(von),
                       satz.begin() + static_cast<std::ptrdiff_t>(von + anzahl));
}

TEST(TaskbarIcon, RecordHasSixNumbersAndATooltipInWindows1252) {
    const IconDatensatz satz = iconDatensatz(0x01020304, 0xA0B0C0D0, "Käse");
    EXPECT_EQ(bytes(satz, 0, 24), std::string("\x58\0\0\0"
                                              "\x04\x03\x02\x01"
                                              "\1\0\0\0"
                                              "\7\0\0\0"
                                              "\1\4\0\0"
                                              "\xD0\xC0\xB0\xA0",
                                              24));
    EXPECT_EQ(bytes(satz, 24, 64), std::string("K\xE4se") + std::string(60, '\0'));
}

TEST(TaskbarIcon, TooltipIsCutAtSixtyThreeCharactersAndTerminated) {
    std::string lang;
    for (int i = 0; i < 70; ++i)
        lang += "ö";
    EXPECT_EQ(bytes(iconDatensatz(1, 1, lang), 24, 64), std::string(63, '\xF6') + '\0');
}

TEST(LiveUpdateText, SaysWhenTheUpdateStarts) {
    struct Zeile {
        bool aktiv;
        std::int16_t modus;
        const char* zeitplan;
        const char* text;
    };
    const Zeile zeilen[] = {
        {false, 2, "1111111 06:00", "Das Live-Update ist momentan deaktiviert."},
        {true, 0, "1111111 06:00", "Das Live-Update ist aktiviert."},
        {true, 1, "1111111 06:00", "Das Live-Update ist aktiviert."},
        {true, 3, "1111111 06:00", "Das Live-Update ist aktiviert."},
        {true, 2, "0111110 06:00", "Das Live-Update startet Werktags um 06:00 Uhr."},
        {true, 2, "1111111 06:00", "Das Live-Update startet jeden Tag um 06:00 Uhr."},
        {true, 2, "1000000 06:00", "Das Live-Update startet jeden Sonntag um 06:00 Uhr."},
        {true, 2, "0100000 06:00", "Das Live-Update startet jeden Montag um 06:00 Uhr."},
        {true, 2, "0010000 06:00", "Das Live-Update startet jeden Dienstag um 06:00 Uhr."},
        {true, 2, "0001000 06:00", "Das Live-Update startet jeden Mittwoch um 06:00 Uhr."},
        {true, 2, "0000100 06:00", "Das Live-Update startet jeden Donnerstag um 06:00 Uhr."},
        {true, 2, "0000010 06:00", "Das Live-Update startet jeden Freitag um 06:00 Uhr."},
        {true, 2, "0000001 06:00", "Das Live-Update startet jeden Samstag um 06:00 Uhr."},
        {true, 2, "0101010 8:30", "Das Live-Update startet Mo,Mi,Fr um 8:30 Uhr."},
        {true, 2, "1000001   20:15 ", "Das Live-Update startet So,Sa um 20:15 Uhr."},
        {true, 2, "0000000 06:00", "Das Live-Update startet  um 06:00 Uhr."},
        {true, 2, "111", "Das Live-Update startet So,Mo,Di um  Uhr."},
        {true, 2, "", "Das Live-Update startet  um  Uhr."},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.zeitplan);
        EXPECT_EQ(liveUpdateEinstellungenText(zeile.aktiv, zeile.modus, zeile.zeitplan), zeile.text);
    }
}

}  // namespace
}  // namespace wendel
