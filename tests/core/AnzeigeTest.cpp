// What the list, the tooltip, the icon's record and the live-update label say. Expected texts follow from the
// German date formats with 24 December 2012 a Monday; differences count boundaries.
#include <gtest/gtest.h>

#include "Programm.h"
#include "core/Liveupdatetext.h"
#include "core/TaskbarIcon.h"

namespace wendel {
namespace {

TerminZeiger eintrag(Datum weckZeit, std::string text, std::int16_t intervallwert = 0, bool aktiv = true,
                     Terminart art = Terminart::Eigener) {
    return std::make_shared<cTermin>(
        cTermin{weckZeit, std::move(text), intervallwert, aktiv, art, {}, {}, um(21, 55), {}});
}

TEST(Anzeige, RowsTellKindTimeTextAndRest) {
    const std::pair<TerminZeiger, Terminzeile> faelle[] = {
        {eintrag(um(20, 0), "Tee"), {"terminuhr2", "24.12.12 20:00", "Tee", "läuft"}},
        {eintrag(um(20, 59, 59), "Tee", 1), {"terminuhr2", "Mo 20:59", "Tee", "59 min"}},
        {eintrag(moment(2012, 12, 30, 7), "Tee", 3), {"terminuhr2", "So 07:00", "Tee", "6 Tage"}},
        {eintrag(um(20, 15), "Tee", 0, false), {"terminuhr2", "24.12.12 20:15", "Tee", ""}},
        {eintrag(moment(2012, 12, 25, 20), "Film (ZDF)", 0, true, Terminart::Erinnerung),
         {"terminuhr1", "25.12.12 20:00", "Film (ZDF)", "1 Tage"}},
        {eintrag(um(20, 10), "Film (ZDF)", 0, true, Terminart::Aufzeichnung),
         {"terminaufz", "24.12.12 20:10", "Film (ZDF) (Aufzeichnung 20:10 bis 21:55)", "10 min"}},
    };
    for (const auto& [termin, erwartet] : faelle)
        EXPECT_TRUE(terminzeile(*termin, um(20, 0, 1)) == erwartet) << erwartet.zeit << " " << erwartet.rest;
}

TEST(Anzeige, TooltipNamesTheNearestEntryAheadWithItsDay) {
    const TerminZeiger tee = eintrag(um(22, 0), "Tee");
    const std::pair<Terminliste, std::string> faelle[] = {
        {{eintrag(um(19, 59), "vorbei"), eintrag(um(21, 0), "aus", 0, false)}, "Lomrick"},
        {{tee, eintrag(um(20, 0), "jetzt")}, "Lomrick: heute 20:00 jetzt"},
        {{eintrag(moment(2012, 12, 25), "Tee")}, "Lomrick: morgen 00:00 Tee"},
        {{eintrag(moment(2012, 12, 30, 9, 5), "Tee")}, "Lomrick: So 09:05 Tee"},
        {{eintrag(moment(2012, 12, 31, 9, 5), "Tee")}, "Lomrick: 31.12. 09:05 Tee"},
        {{eintrag(um(20, 5), "ü" + std::string(70, 'x'))}, "Lomrick: heute 20:05 ü" + std::string(41, 'x')},
    };
    for (const auto& [termine, text] : faelle)
        EXPECT_EQ(tooltipText(termine, {}, {}, um(20, 0)), text);
}

TEST(Anzeige, IconRecordHasSixNumbersAndACutTooltipInWindows1252) {
    const IconDatensatz satz = iconDatensatz(0x01020304, 0xA0B0C0D0, "Käse" + std::string(70, 'x'));
    const std::string kopf("\x58\0\0\0\4\3\2\1\1\0\0\0\7\0\0\0\1\4\0\0\xD0\xC0\xB0\xA0", 24);
    EXPECT_EQ(std::string(satz.begin(), satz.end()), kopf + "K\xE4se" + std::string(59, 'x') + '\0');
}

TEST(Anzeige, LiveUpdateLabelSaysWhenTheUpdateStarts) {
    EXPECT_EQ(liveUpdateEinstellungenText(false, 2, ""), "Das Live-Update ist momentan deaktiviert.");
    EXPECT_EQ(liveUpdateEinstellungenText(true, 2, "0111110 06:00"),
              "Das Live-Update startet Werktags um 06:00 Uhr.");
    EXPECT_EQ(liveUpdateEinstellungenText(true, 2, "1010101   20:15 "),
              "Das Live-Update startet So,Di,Do,Sa um 20:15 Uhr.");
}

}  // namespace
}  // namespace wendel
