// Moments and calendar arithmetic. Expected values are those of the German run time that the suite was
// written for, worked out by hand in its documentation, and known facts of the calendar.
#include "platform/Datum.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "support/Fehlernummer.h"

namespace wendel {
namespace {

Datum am(int jahr, int monat, int tag, int stunde = 0, int minute = 0, int sekunde = 0) {
    return DateSerial(jahr, monat, tag) + TimeSerial(stunde, minute, sekunde);
}

TEST(Tageszahl, IsReadToTheNearestSecondAndCarries) {
    const std::pair<double, const char*> faelle[] = {
        {41267.84374999, "24.12.2012 20:15:00"}, {41267.999999, "25.12.2012 00:00:00"},
        {-1.25, "29.12.1899 06:00:00"},          {-657434.75, "01.01.0100 18:00:00"},
        {2958465.99998, "31.12.9999 23:59:58"},  {41333 + 0.4 / 86400, "28.02.2013 00:00:00"}};
    for (const auto& [tage, text] : faelle)
        EXPECT_EQ(Format(Datum::ausTageszahl(tage), "dd.mm.yyyy hh:nn:ss"), text);
    for (const double tage : {-657435.0, 2958465.999999, 1e300, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(fehlernummerVon([&] { Datum::ausTageszahl(tage); }), fehlernummer::kUeberlauf) << tage;
}

TEST(Tageszahl, IsWhatOtherWritersStoreAndSurvivesTheRoundTrip) {
    EXPECT_EQ((am(2012, 12, 24, 20, 15)).tageszahl(), 41267.84375);
    EXPECT_EQ(Datum::ausSekunden(-86400 + 6 * 3600).tageszahl(), -1.25);
    for (const std::int64_t tag : {-400LL, -1LL, 0LL, 41267LL, 2958465LL}) {
        for (std::int64_t sekunde = 0; sekunde < 86400; ++sekunde) {
            const Datum d = Datum::ausSekunden(tag * 86400 + sekunde);
            ASSERT_EQ(Datum::ausTageszahl(d.tageszahl()), d) << tag << " " << sekunde;
        }
    }
}

TEST(DayAndTime, AreTakenApartBeforeAndAfterDayZero) {
    const Datum d = am(2012, 12, 24, 20, 15, 59), vorNull = Datum::ausSekunden(-1);
    EXPECT_EQ(d.datumsteil() + d.uhrzeitteil(), d);
    EXPECT_EQ(d.aufMinute(), am(2012, 12, 24, 20, 15));
    EXPECT_EQ(vorNull.datumsteil(), Datum::ausSekunden(-86400));
    EXPECT_EQ(vorNull.uhrzeitteil(), TimeSerial(23, 59, 59));
    EXPECT_EQ(vorNull.aufMinute(), Datum::ausSekunden(-60));
}

TEST(DateDiffTest, CountsTheBoundariesCrossed) {
    EXPECT_EQ(DateDiff(Einheit::Minute, am(2012, 12, 24, 20, 14, 59), am(2012, 12, 24, 20, 15, 0)), 1);
    EXPECT_EQ(DateDiff(Einheit::Minute, am(2012, 12, 24, 20, 15, 30), am(2012, 12, 24, 20, 14, 59)), -1);
    EXPECT_EQ(DateDiff(Einheit::Stunde, am(2012, 12, 24, 20, 59), am(2012, 12, 24, 22, 0)), 2);
    EXPECT_EQ(DateDiff(Einheit::Tag, am(2012, 12, 24, 23, 59, 59), am(2012, 12, 25)), 1);
    EXPECT_EQ(DateDiff(Einheit::Tag, Datum::ausSekunden(-1), Datum()), 1);
}

TEST(DateAddTest, IsPlainCalendarArithmeticInsideTheCalendar) {
    EXPECT_EQ(DateAdd(Einheit::Minute, 10, am(2012, 12, 31, 23, 55)), am(2013, 1, 1, 0, 5));
    EXPECT_EQ(DateAdd(Einheit::Sekunde, -1, am(2012, 12, 24)), am(2012, 12, 23, 23, 59, 59));
    for (const std::int64_t anzahl : {INT64_C(3000000), INT64_MAX, INT64_MIN}) {
        const auto hinaus = [&] { DateAdd(Einheit::Tag, anzahl, am(2012, 12, 24)); };
        EXPECT_EQ(fehlernummerVon(hinaus), fehlernummer::kUngueltigesArgument) << anzahl;
    }
}

// More of it under the reader of date texts, tests/tvdb.
TEST(DateSerialTest, CarriesOverflowingPartsInsideTheCalendar) {
    EXPECT_EQ(datumAlsText(DateSerial(0, 0, 0)), "30.11.1999");
    EXPECT_EQ(datumAlsText(DateSerial(100, 1, 1)), "01.01.0100");
    EXPECT_EQ(datumAlsText(DateSerial(2012, 1, -1)), "30.12.2011");
    EXPECT_EQ(datumAlsText(DateSerial(1900, 2, 29)), "01.03.1900");
    EXPECT_EQ(fehlernummerVon([] { DateSerial(100, 1, 0); }), fehlernummer::kUngueltigesArgument);
    EXPECT_EQ(fehlernummerVon([] { DateSerial(32768, 1, 1); }), fehlernummer::kUeberlauf);
}

TEST(Calendar, KnowsWeekdaysAndLeapDays) {
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(Weekday(am(2012, 12, 23 + i, 23, 59, 59)), i + 1);
        EXPECT_EQ(wochentagAbMontag(am(2012, 12, 24 + i)), i + 1);
    }
    EXPECT_TRUE(istKalendertag(2012, 2, 29) && istKalendertag(2000, 2, 29));
    EXPECT_FALSE(istKalendertag(2100, 2, 29) || istKalendertag(2013, 4, 31));
    EXPECT_FALSE(istKalendertag(2013, 13, 1) || istKalendertag(2013, 1, 0) || istKalendertag(99, 1, 1));
}

TEST(FormatTest, PrintsDateTokensWithGermanNames) {
    const std::pair<const char*, const char*> faelle[] = {{"d dd ddd dddd", "24 24 Mo Montag"},
                                                          {"m mm mmm mmmm", "12 12 Dez Dezember"},
                                                          {"h hh n nn s ss", "9 09 5 05 3 03"},
                                                          {"hh:mm", "09:05"},
                                                          {"YYYYMMDDhhnnss", "20121224090503"},
                                                          {"dd\\.mm\\.yy hh\\:nn", "24.12.12 09:05"},
                                                          {"dd/mm/yyyy", "24.12.2012"},
                                                          {"\\d\\/\\\\", "d/\\"},
                                                          {"x \\Uhr ä", "x U9r ä"},
                                                          {"nn\\", "05\\"}};
    for (const auto& [muster, text] : faelle)
        EXPECT_EQ(Format(am(2012, 12, 24, 9, 5, 3), muster), text) << muster;
    std::string namen;
    for (int i = 0; i < 7; ++i)
        namen += Format(am(2012, 12, 23 + i), "ddd dddd ");
    for (int i = 1; i <= 12; ++i)
        namen += Format(am(2012, i, 1), "mmm mmmm ");
    EXPECT_EQ(namen,
              "So Sonntag Mo Montag Di Dienstag Mi Mittwoch Do Donnerstag Fr Freitag Sa Samstag "
              "Jan Januar Feb Februar Mrz März Apr April Mai Mai Jun Juni Jul Juli Aug August Sep September "
              "Okt Oktober Nov November Dez Dezember ");
}

TEST(DateAsText, LeavesOutWhatIsZero) {
    EXPECT_EQ(datumAlsText(am(2012, 12, 24, 20, 15, 3)), "24.12.2012 20:15:03");
    EXPECT_EQ(datumAlsText(TimeSerial(20, 15, 3)), "20:15:03");
    EXPECT_EQ(datumAlsText(Datum()), "00:00:00");
    EXPECT_EQ(datumKompakt(am(2012, 5, 4, 0, 5, 9)), "20120504000509");
}

}  // namespace
}  // namespace wendel
