// Expected texts follow from the German date formats with 24 December 2012 a Monday; differences count
// boundaries.
#include "core/Terminzeilen.h"

#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

TerminZeiger eintrag(Datum weckZeit, std::string text, std::int16_t intervallwert = 0, bool aktiv = true,
                     Terminart art = Terminart::Eigener) {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = weckZeit;
    termin->WeckText = std::move(text);
    termin->Intervall = intervallwert;
    termin->Aktiv = aktiv;
    termin->Art = art;
    return termin;
}

TEST(Terminzeilen, TimeLeftCountsWholeUnitsByTheirBoundaries) {
    struct Zeile {
        const char* name;
        Datum jetzt, weckZeit;
        const char* text;
    };
    const Zeile zeilen[] = {
        {"past", um(20, 15), um(20, 14), "läuft"},
        {"this very second", um(20, 15), um(20, 15), "läuft"},
        {"one second ahead in the same minute", um(20, 15), um(20, 15, 1), "0 min"},
        {"one second ahead over the minute", um(20, 14, 59), um(20, 15), "1 min"},
        {"last minute of minutes", um(20, 0), um(20, 59, 59), "59 min"},
        {"first of hours", um(20, 0), um(21, 0), "1 h"},
        {"61 minutes over two hour boundaries", um(20, 59), um(22, 0), "2 h"},
        {"last of hours", um(20, 0), moment(2012, 12, 25, 19, 59), "23 h"},
        {"24 boundaries although less than a day", um(20, 1), moment(2012, 12, 25, 20, 0), "1 Tage"},
        {"a week", um(20, 0), moment(2012, 12, 31, 0, 0), "7 Tage"},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.name);
        EXPECT_EQ(restzeitText(zeile.weckZeit, zeile.jetzt), zeile.text);
    }
}

TEST(Terminzeilen, RowsTellKindTimeTextAndRest) {
    TerminZeiger aufzeichnung = eintrag(um(20, 10), "20:15 Tatort (ARD)", 0, true, Terminart::Aufzeichnung);
    aufzeichnung->Fensterende = um(21, 55);
    struct Zeile {
        const char* name;
        TerminZeiger termin;
        Terminzeile erwartet;
    };
    const Zeile zeilen[] = {
        {"own, once", eintrag(um(20, 15), "Tee"), {"terminuhr2", "24.12.12 20:15", "Tee", "15 min"}},
        {"own, daily", eintrag(um(20, 15), "Tee", 1), {"terminuhr2", "Mo 20:15", "Tee", "15 min"}},
        {"own, working days", eintrag(um(9, 5), "Tee", 2), {"terminuhr2", "Mo 09:05", "Tee", "läuft"}},
        {"own, weekly",
         eintrag(moment(2012, 12, 30, 7, 0), "Tee", 3),
         {"terminuhr2", "So 07:00", "Tee", "6 Tage"}},
        {"unknown interval",
         eintrag(um(20, 15), "Tee", 9),
         {"terminuhr2", "24.12.12 20:15", "Tee", "15 min"}},
        {"switched off", eintrag(um(20, 15), "Tee", 0, false), {"terminuhr2", "24.12.12 20:15", "Tee", ""}},
        {"reminder",
         eintrag(um(21, 0), "21:15 Film (ZDF)", 0, true, Terminart::Erinnerung),
         {"terminuhr1", "24.12.12 21:00", "21:15 Film (ZDF)", "1 h"}},
        {"recording",
         aufzeichnung,
         {"terminaufz", "24.12.12 20:10", "20:15 Tatort (ARD) (Aufzeichnung 20:10 bis 21:55)", "10 min"}},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.name);
        const Terminzeile ist = terminzeile(*zeile.termin, um(20, 0));
        EXPECT_EQ(ist.symbol, zeile.erwartet.symbol);
        EXPECT_EQ(ist.zeit, zeile.erwartet.zeit);
        EXPECT_EQ(ist.text, zeile.erwartet.text);
        EXPECT_EQ(ist.rest, zeile.erwartet.rest);
    }
}

TEST(Terminzeilen, SortedByTimeInactiveLastEqualTimesByCollection) {
    const Terminliste eigene = {eintrag(um(22, 0), "spät"), eintrag(um(8, 0), "aus", 0, false),
                                eintrag(um(21, 0), "eigener")};
    const Terminliste erinnerungen = {eintrag(um(21, 0), "erinnerung"), eintrag(um(20, 0), "früh")};
    const Terminliste aufzeichnungen = {eintrag(um(21, 0), "aufzeichnung")};
    std::vector<std::string> texte;
    for (const auto& termin : zeilenreihenfolge(eigene, erinnerungen, aufzeichnungen)) {
        texte.push_back(termin->WeckText);
    }
    EXPECT_EQ(texte,
              (std::vector<std::string>{"früh", "eigener", "erinnerung", "aufzeichnung", "spät", "aus"}));
}

TEST(Tooltip, NamesTheNearestEntryAheadWithItsDay) {
    struct Zeile {
        const char* name;
        Terminliste eigene, erinnerungen;
        std::string text;
    };
    const Zeile zeilen[] = {
        {"nothing", {}, {}, "Lomrick"},
        {"past only", {eintrag(um(19, 59), "vorbei")}, {}, "Lomrick"},
        {"inactive only", {eintrag(um(21, 0), "aus", 0, false)}, {}, "Lomrick"},
        {"now", {eintrag(um(20, 0), "jetzt")}, {}, "Lomrick: heute 20:00 jetzt"},
        {"today", {eintrag(um(23, 59), "Tee")}, {}, "Lomrick: heute 23:59 Tee"},
        {"the nearer of two collections",
         {eintrag(um(23, 0), "Tee")},
         {eintrag(um(22, 0), "22:15 Film (ARD)")},
         "Lomrick: heute 22:00 22:15 Film (ARD)"},
        {"own one first at the same time",
         {eintrag(um(22, 0), "Tee")},
         {eintrag(um(22, 0), "Film")},
         "Lomrick: heute 22:00 Tee"},
        {"tomorrow", {eintrag(moment(2012, 12, 25, 0, 0), "Tee")}, {}, "Lomrick: morgen 00:00 Tee"},
        {"two days: weekday", {eintrag(moment(2012, 12, 26, 9, 5), "Tee")}, {}, "Lomrick: Mi 09:05 Tee"},
        {"six days: weekday", {eintrag(moment(2012, 12, 30, 9, 5), "Tee")}, {}, "Lomrick: So 09:05 Tee"},
        {"seven days: date", {eintrag(moment(2012, 12, 31, 9, 5), "Tee")}, {}, "Lomrick: 31.12. 09:05 Tee"},
        {"short-time alarm",
         {eintrag(um(20, 5), "(Kurzzeiterinnerung)")},
         {},
         "Lomrick: heute 20:05 Kurzzeiterinnerung"},
        {"cut at 63 characters",
         {eintrag(um(20, 5), "ü" + std::string(70, 'x'))},
         {},
         "Lomrick: heute 20:05 ü" + std::string(41, 'x')},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.name);
        EXPECT_EQ(tooltipText(zeile.eigene, zeile.erinnerungen, {}, um(20, 0)), zeile.text);
    }
}

}  // namespace
}  // namespace wendel
