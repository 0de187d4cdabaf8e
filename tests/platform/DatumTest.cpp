// Moments and calendar arithmetic. Expected values are those of the German run time that the suite was
// written for, worked out by hand in its documentation, and known facts of the calendar.
#include "platform/Datum.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/Fehler.h"

namespace wendel {
namespace {

Datum am(int jahr, int monat, int tag, int stunde = 0, int minute = 0, int sekunde = 0) {
    return DateSerial(jahr, monat, tag) + TimeSerial(stunde, minute, sekunde);
}

template <class Tat>
int fehlernummerVon(Tat tat) {
    try {
        tat();
    } catch (const Fehler& fehler) {
        return fehler.nummer();
    }
    return 0;
}

struct Tageszahlfall {
    double tage;
    const char* text;
};

TEST(Tageszahl, IsReadToTheNearestSecondAndCarries) {
    const Tageszahlfall faelle[] = {
        {41267.0, "24.12.2012 00:00:00"},
        {41267.84375, "24.12.2012 20:15:00"},
        {41267.999999, "25.12.2012 00:00:00"},
        {0.0, "30.12.1899 00:00:00"},
        {-1.25, "29.12.1899 06:00:00"},
        {-0.25, "30.12.1899 06:00:00"},
        {41267.84374999, "24.12.2012 20:15:00"},
        {-657434.0, "01.01.0100 00:00:00"},
        {2958465.99998, "31.12.9999 23:59:58"},
        {-657434.75, "01.01.0100 18:00:00"},
        {41333.0 + 0.6 / 86400, "28.02.2013 00:00:01"},
        {41333.0 + 0.4 / 86400, "28.02.2013 00:00:00"},
    };
    for (const Tageszahlfall& fall : faelle) {
        SCOPED_TRACE(fall.tage);
        EXPECT_EQ(Format(Datum::ausTageszahl(fall.tage), "dd.mm.yyyy hh:nn:ss"), fall.text);
    }
}

TEST(Tageszahl, OutsideTheCalendarIsAnOverflow) {
    for (const double tage :
         {-657435.0, 2958466.0, 2958465.999999, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN(),
          std::numeric_limits<double>::infinity()}) {
        SCOPED_TRACE(tage);
        EXPECT_EQ(fehlernummerVon([&] { Datum::ausTageszahl(tage); }), fehlernummer::kUeberlauf);
    }
}

TEST(Tageszahl, SurvivesTheRoundTripForEverySecondOfADay) {
    for (const std::int64_t tag : {-400LL, -1LL, 0LL, 41267LL, 2958465LL}) {
        for (std::int64_t sekunde = 0; sekunde < 86400; ++sekunde) {
            const Datum d = Datum::ausSekunden(tag * 86400 + sekunde);
            ASSERT_EQ(Datum::ausTageszahl(d.tageszahl()), d) << tag << " " << sekunde;
        }
    }
}

TEST(Tageszahl, IsWhatOtherWritersStore) {
    EXPECT_EQ(am(2012, 12, 24).tageszahl(), 41267.0);
    EXPECT_EQ((am(2012, 12, 24, 20, 15)).tageszahl(), 41267.84375);
    EXPECT_EQ(Datum::ausSekunden(-86400 + 6 * 3600).tageszahl(), -1.25);
}

TEST(DayAndTime, AreTakenApartAndAddUp) {
    const Datum d = am(2012, 12, 24, 20, 15, 59);
    EXPECT_EQ(d.datumsteil(), am(2012, 12, 24));
    EXPECT_EQ(d.uhrzeitteil(), TimeSerial(20, 15, 59));
    EXPECT_EQ(d.datumsteil() + d.uhrzeitteil(), d);
    EXPECT_EQ(d.aufMinute(), am(2012, 12, 24, 20, 15));
    const Datum vorNull = Datum::ausSekunden(-1);
    EXPECT_EQ(vorNull.datumsteil(), Datum::ausSekunden(-86400));
    EXPECT_EQ(vorNull.uhrzeitteil(), TimeSerial(23, 59, 59));
    EXPECT_EQ(vorNull.aufMinute(), Datum::ausSekunden(-60));
}

struct Differenz {
    Einheit einheit;
    Datum a, b;
    std::int64_t ergebnis;
};

TEST(DateDiffTest, CountsTheBoundariesCrossed) {
    const Differenz faelle[] = {
        {Einheit::Minute, am(2012, 12, 24, 20, 14, 59), am(2012, 12, 24, 20, 15, 0), 1},
        {Einheit::Minute, am(2012, 12, 24, 20, 15, 0), am(2012, 12, 24, 20, 15, 59), 0},
        {Einheit::Minute, am(2012, 12, 24, 20, 4, 59), am(2012, 12, 24, 20, 10, 0), 6},
        {Einheit::Minute, am(2012, 12, 24, 20, 5, 0), am(2012, 12, 24, 20, 10, 0), 5},
        {Einheit::Minute, am(2012, 12, 24, 20, 15, 30), am(2012, 12, 24, 20, 14, 59), -1},
        {Einheit::Stunde, am(2012, 12, 24, 20, 59), am(2012, 12, 24, 22, 0), 2},
        {Einheit::Stunde, am(2012, 12, 24, 20, 0, 0), am(2012, 12, 24, 20, 59, 59), 0},
        {Einheit::Stunde, am(2012, 12, 24, 20, 1), am(2012, 12, 25, 20, 0), 24},
        {Einheit::Tag, am(2012, 12, 24, 23, 59, 59), am(2012, 12, 25), 1},
        {Einheit::Tag, am(2012, 12, 24), am(2012, 12, 24, 23, 59), 0},
        {Einheit::Sekunde, TimeSerial(12, 0, 0), TimeSerial(12, 0, 2), 2},
        {Einheit::Tag, Datum::ausSekunden(-1), Datum(), 1},
        {Einheit::Tag, am(2012, 2, 28), am(2012, 3, 1), 2},
    };
    for (const Differenz& fall : faelle) {
        SCOPED_TRACE(static_cast<char>(fall.einheit) + (" " + datumAlsText(fall.a)) + " " +
                     datumAlsText(fall.b));
        EXPECT_EQ(DateDiff(fall.einheit, fall.a, fall.b), fall.ergebnis);
    }
}

TEST(DateAddTest, IsPlainCalendarArithmetic) {
    EXPECT_EQ(DateAdd(Einheit::Minute, 10, am(2012, 12, 31, 23, 55)), am(2013, 1, 1, 0, 5));
    EXPECT_EQ(DateAdd(Einheit::Tag, 1, am(2012, 2, 28)), am(2012, 2, 29));
    EXPECT_EQ(DateAdd(Einheit::Tag, -1, am(2013, 3, 1)), am(2013, 2, 28));
    EXPECT_EQ(DateAdd(Einheit::Stunde, 2, am(2012, 12, 24, 23)), am(2012, 12, 25, 1));
    EXPECT_EQ(DateAdd(Einheit::Sekunde, -1, am(2012, 12, 24)), am(2012, 12, 23, 23, 59, 59));
}

TEST(DateAddTest, OutsideTheCalendarIsAnInvalidArgument) {
    for (const std::int64_t anzahl :
         {std::int64_t{3000000}, std::int64_t{-3000000}, std::numeric_limits<std::int64_t>::max(),
          std::numeric_limits<std::int64_t>::min()}) {
        SCOPED_TRACE(anzahl);
        EXPECT_EQ(fehlernummerVon([&] { DateAdd(Einheit::Tag, anzahl, am(2012, 12, 24)); }),
                  fehlernummer::kUngueltigesArgument);
    }
}

struct Serienfall {
    std::int64_t jahr, monat, tag;
    const char* text;
};

TEST(DateSerialTest, CarriesOverflowingParts) {
    const Serienfall faelle[] = {
        {2013, 2, 31, "03.03.2013"},  {0, 0, 0, "30.11.1999"},      {2012, 13, 1, "01.01.2013"},
        {12, 5, 4, "04.05.2012"},     {2012, 1, 0, "31.12.2011"},   {29, 1, 1, "01.01.2029"},
        {30, 1, 1, "01.01.1930"},     {99, 12, 31, "31.12.1999"},   {100, 1, 1, "01.01.0100"},
        {2012, 0, 1, "01.12.2011"},   {2012, 1, -1, "30.12.2011"},  {9999, 12, 31, "31.12.9999"},
        {2012, -11, 1, "01.01.2011"}, {2012, 2, 29, "29.02.2012"},  {1900, 2, 29, "01.03.1900"},
        {2000, 2, 29, "29.02.2000"},  {50, -32768, 32767, nullptr},
    };
    for (const Serienfall& fall : faelle) {
        SCOPED_TRACE(std::to_string(fall.jahr) + "," + std::to_string(fall.monat) + "," +
                     std::to_string(fall.tag));
        if (!fall.text) {
            EXPECT_EQ(fehlernummerVon([&] { DateSerial(fall.jahr, fall.monat, fall.tag); }),
                      fehlernummer::kUngueltigesArgument);
            continue;
        }
        EXPECT_EQ(Format(DateSerial(fall.jahr, fall.monat, fall.tag), "dd.mm.yyyy"), fall.text);
    }
}

TEST(DateSerialTest, RefusesWhatIsTooLarge) {
    const auto nummer = [](std::int64_t j, std::int64_t m, std::int64_t t) {
        return fehlernummerVon([&] { DateSerial(j, m, t); });
    };
    EXPECT_EQ(nummer(32768, 1, 1), fehlernummer::kUeberlauf);
    EXPECT_EQ(nummer(2012, -32769, 1), fehlernummer::kUeberlauf);
    EXPECT_EQ(nummer(2012, 1, 32768), fehlernummer::kUeberlauf);
    EXPECT_EQ(nummer(10000, 1, 1), fehlernummer::kUngueltigesArgument);
    EXPECT_EQ(nummer(9999, 13, 1), fehlernummer::kUngueltigesArgument);
    EXPECT_EQ(nummer(100, 1, 0), fehlernummer::kUngueltigesArgument);
    EXPECT_EQ(nummer(-5, 1, 1), fehlernummer::kUngueltigesArgument);
    EXPECT_EQ(nummer(32767, 32767, 32767), fehlernummer::kUngueltigesArgument);
    EXPECT_EQ(fehlernummerVon([] { TimeSerial(0, 0, 32768); }), fehlernummer::kUeberlauf);
}

TEST(TimeSerialTest, CarriesOverflowingParts) {
    EXPECT_EQ(TimeSerial(20, 60, 0), TimeSerial(21, 0, 0));
    EXPECT_EQ(TimeSerial(0, 75, 0), TimeSerial(1, 15, 0));
    EXPECT_EQ(am(2012, 12, 24) + TimeSerial(24, 0, 0), am(2012, 12, 25));
    EXPECT_EQ(TimeSerial(23, 59, 61).sekunden(), 86401);
}

TEST(WeekdayTest, KnowsBothWaysOfCounting) {
    const struct {
        Datum tag;
        int abSonntag, abMontag;
    } faelle[] = {
        {am(2012, 12, 23), 1, 7}, {am(2012, 12, 24), 2, 1}, {am(2012, 12, 29), 7, 6},
        {am(1899, 12, 30), 7, 6}, {am(1899, 12, 29), 6, 5}, {am(2024, 2, 29), 5, 4},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(datumAlsText(fall.tag));
        EXPECT_EQ(Weekday(fall.tag + TimeSerial(23, 59, 59)), fall.abSonntag);
        EXPECT_EQ(wochentagAbMontag(fall.tag), fall.abMontag);
        EXPECT_EQ(zerlegt(fall.tag).wochentag, fall.abSonntag);
    }
}

TEST(Calendar, HasLeapDaysWhereTheyAre) {
    EXPECT_TRUE(istKalendertag(2012, 2, 29));
    EXPECT_TRUE(istKalendertag(2000, 2, 29));
    EXPECT_FALSE(istKalendertag(2100, 2, 29));
    EXPECT_FALSE(istKalendertag(2013, 4, 31));
    EXPECT_FALSE(istKalendertag(2013, 13, 1));
    EXPECT_FALSE(istKalendertag(2013, 1, 0));
    EXPECT_FALSE(istKalendertag(99, 1, 1));
}

struct Formatfall {
    const char* muster;
    const char* text;
};

TEST(FormatTest, PrintsDateTokens) {
    const Datum d = am(2012, 12, 24, 9, 5, 3);
    const Formatfall faelle[] = {
        {"d", "24"},
        {"dd", "24"},
        {"ddd", "Mo"},
        {"dddd", "Montag"},
        {"m", "12"},
        {"mm", "12"},
        {"mmm", "Dez"},
        {"mmmm", "Dezember"},
        {"yy", "12"},
        {"yyyy", "2012"},
        {"h", "9"},
        {"hh", "09"},
        {"n", "5"},
        {"nn", "05"},
        {"s", "3"},
        {"ss", "03"},
        {"hhmm", "0905"},
        {"hh:mm", "09:05"},
        {"h:m d.m", "9:5 24.12"},
        {"yyyymmddhhnnss", "20121224090503"},
        {"YYYYMMDD", "20121224"},
        {"dd\\.mm\\.yy hh\\:nn", "24.12.12 09:05"},
        {"dd.mm.", "24.12."},
        {"dd/mm/yyyy", "24.12.2012"},
        {"hhnnss", "090503"},
        {"\\d\\/\\\\", "d/\\"},
        {"dddd, d. mmmm", "Montag, 24. Dezember"},
        {"x \\Uhr ä", "x U9r ä"},
        {"", ""},
        {"nn\\", "05\\"},
    };
    for (const Formatfall& fall : faelle) {
        SCOPED_TRACE(fall.muster);
        EXPECT_EQ(Format(d, fall.muster), fall.text);
    }
}

TEST(FormatTest, HasGermanNames) {
    std::string tage, monate;
    for (int i = 0; i < 7; ++i)
        tage += Format(am(2012, 12, 23 + i), "ddd dddd ");
    for (int i = 1; i <= 12; ++i)
        monate += Format(am(2012, i, 1), "mmm mmmm ");
    EXPECT_EQ(tage, "So Sonntag Mo Montag Di Dienstag Mi Mittwoch Do Donnerstag Fr Freitag Sa Samstag ");
    EXPECT_EQ(monate,
              "Jan Januar Feb Februar Mrz März Apr April Mai Mai Jun Juni Jul Juli Aug August Sep September "
              "Okt Oktober Nov November Dez Dezember ");
}

TEST(DateAsText, LeavesOutWhatIsZero) {
    EXPECT_EQ(datumAlsText(am(2012, 12, 24, 20, 15, 3)), "24.12.2012 20:15:03");
    EXPECT_EQ(datumAlsText(am(2012, 5, 4)), "04.05.2012");
    EXPECT_EQ(datumAlsText(TimeSerial(20, 15, 3)), "20:15:03");
    EXPECT_EQ(datumAlsText(Datum()), "00:00:00");
    EXPECT_EQ(datumKompakt(am(2012, 5, 4, 0, 5, 9)), "20120504000509");
}

}  // namespace
}  // namespace wendel
