// What the list, the tooltip, the icon's record and the live-update label say. Expected texts follow from the
// German date formats with 24 December 2012 a Monday; differences count boundaries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"
#include "core/Liveupdatetext.h"
#include "core/TaskbarIcon.h"

namespace wendel {
namespace {

constexpr auto kErinnerung = Terminart::Erinnerung, kAufzeichnung = Terminart::Aufzeichnung;

TerminZeiger eintrag(Datum weckZeit, std::string text, std::int16_t intervallwert = 0, bool aktiv = true,
                     Terminart art = Terminart::Eigener) {
    return std::make_shared<cTermin>(
        cTermin{weckZeit, std::move(text), intervallwert, aktiv, art, {}, {}, um(21, 55), {}});
}

TEST(Anzeige, RowsTellKindTimeTextAndRest) {
    const std::pair<TerminZeiger, Terminzeile> faelle[] = {
        {eintrag(um(20, 0), "Tee"), {"terminuhr2", "24.12.12 20:00", "Tee", "läuft"}},
        {eintrag(um(20, 0, 2), "Tee"), {"terminuhr2", "24.12.12 20:00", "Tee", "0 min"}},
        {eintrag(um(20, 59, 59), "Tee", 1), {"terminuhr2", "Mo 20:59", "Tee", "59 min"}},
        {eintrag(um(9, 5), "Tee", 2), {"terminuhr2", "Mo 09:05", "Tee", "läuft"}},
        {eintrag(moment(2012, 12, 30, 7), "Tee", 3), {"terminuhr2", "So 07:00", "Tee", "6 Tage"}},
        {eintrag(um(21, 0), "Tee", 9), {"terminuhr2", "24.12.12 21:00", "Tee", "1 h"}},
        {eintrag(um(20, 15), "Tee", 0, false), {"terminuhr2", "24.12.12 20:15", "Tee", ""}},
        {eintrag(moment(2012, 12, 25, 19, 59), "Film (ZDF)", 0, true, kErinnerung),
         {"terminuhr1", "25.12.12 19:59", "Film (ZDF)", "23 h"}},
        {eintrag(moment(2012, 12, 25, 20), "Film (ZDF)", 0, true, kErinnerung),
         {"terminuhr1", "25.12.12 20:00", "Film (ZDF)", "1 Tage"}},
        {eintrag(um(20, 10), "Film (ZDF)", 0, true, kAufzeichnung),
         {"terminaufz", "24.12.12 20:10", "Film (ZDF) (Aufzeichnung 20:10 bis 21:55)", "10 min"}},
    };
    for (const auto& [termin, erwartet] : faelle) {
        SCOPED_TRACE(erwartet.zeit + " " + erwartet.rest);
        EXPECT_TRUE(terminzeile(*termin, um(20, 0, 1)) == erwartet)
            << testing::PrintToString(terminzeile(*termin, um(20, 0, 1)).rest);
    }
}

TEST(Anzeige, RowsAreSortedByTimeInactiveLastEqualTimesByCollection) {
    std::vector<std::string> texte;
    for (const auto& termin : zeilenreihenfolge(
             {eintrag(um(22, 0), "spät"), eintrag(um(8, 0), "aus", 0, false), eintrag(um(21, 0), "eigener")},
             {eintrag(um(21, 0), "erinnerung"), eintrag(um(20, 0), "früh")},
             {eintrag(um(21, 0), "aufzeichnung")}))
        texte.push_back(termin->WeckText);
    EXPECT_THAT(texte, testing::ElementsAre("früh", "eigener", "erinnerung", "aufzeichnung", "spät", "aus"));
}

TEST(Anzeige, TooltipNamesTheNearestEntryAheadWithItsDay) {
    const TerminZeiger tee = eintrag(um(22, 0), "Tee");
    const std::pair<Terminliste, std::string> faelle[] = {
        {{eintrag(um(19, 59), "vorbei"), eintrag(um(21, 0), "aus", 0, false)}, "Lomrick"},
        {{tee, eintrag(um(20, 0), "jetzt")}, "Lomrick: heute 20:00 jetzt"},
        {{tee, eintrag(um(22, 0), "später in der Liste")}, "Lomrick: heute 22:00 Tee"},
        {{eintrag(moment(2012, 12, 25), "Tee")}, "Lomrick: morgen 00:00 Tee"},
        {{eintrag(moment(2012, 12, 26, 9, 5), "Tee")}, "Lomrick: Mi 09:05 Tee"},
        {{eintrag(moment(2012, 12, 30, 9, 5), "Tee")}, "Lomrick: So 09:05 Tee"},
        {{eintrag(moment(2012, 12, 31, 9, 5), "Tee")}, "Lomrick: 31.12. 09:05 Tee"},
        {{eintrag(um(20, 5), "(Kurzzeiterinnerung)")}, "Lomrick: heute 20:05 Kurzzeiterinnerung"},
        {{eintrag(um(20, 5), "ü" + std::string(70, 'x'))}, "Lomrick: heute 20:05 ü" + std::string(41, 'x')},
    };
    for (const auto& [termine, text] : faelle)
        EXPECT_EQ(tooltipText(termine, {}, {}, um(20, 0)), text);
    EXPECT_EQ(tooltipText({tee}, {eintrag(um(21, 0), "b")}, {eintrag(um(20, 30), "c")}, um(20, 0)),
              "Lomrick: heute 20:30 c");
}

TEST(Anzeige, IconRecordHasSixNumbersAndACutTooltipInWindows1252) {
    std::string lang = "Käse";
    for (int i = 0; i < 70; ++i)
        lang += "ö";
    const IconDatensatz satz = iconDatensatz(0x01020304, 0xA0B0C0D0, lang);
    const std::string kopf("\x58\0\0\0\4\3\2\1\1\0\0\0\7\0\0\0\1\4\0\0\xD0\xC0\xB0\xA0", 24);
    EXPECT_EQ(std::string(satz.begin(), satz.end()), kopf + "K\xE4se" + std::string(59, '\xF6') + '\0');
}

TEST(Anzeige, LiveUpdateLabelSaysWhenTheUpdateStarts) {
    EXPECT_EQ(liveUpdateEinstellungenText(false, 2, "1111111 06:00"),
              "Das Live-Update ist momentan deaktiviert.");
    EXPECT_EQ(liveUpdateEinstellungenText(true, 3, "1111111 06:00"), "Das Live-Update ist aktiviert.");
    const std::pair<const char*, std::string> plaene[] = {
        {"0111110 06:00", "Werktags um 06:00"},
        {"1111111 06:00", "jeden Tag um 06:00"},
        {"1000000 06:00", "jeden Sonntag um 06:00"},
        {"0100000 06:00", "jeden Montag um 06:00"},
        {"0010000 06:00", "jeden Dienstag um 06:00"},
        {"0001000 06:00", "jeden Mittwoch um 06:00"},
        {"0000100 06:00", "jeden Donnerstag um 06:00"},
        {"0000010 06:00", "jeden Freitag um 06:00"},
        {"0000001 06:00", "jeden Samstag um 06:00"},
        {"0101010 8:30", "Mo,Mi,Fr um 8:30"},
        {"1010101   20:15 ", "So,Di,Do,Sa um 20:15"},
        {"0000000 06:00", " um 06:00"},
        {"111", "So,Mo,Di um "},
    };
    for (const auto& [plan, text] : plaene)
        EXPECT_EQ(liveUpdateEinstellungenText(true, 2, plan), "Das Live-Update startet " + text + " Uhr.");
}

}  // namespace
}  // namespace wendel
