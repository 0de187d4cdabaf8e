// What the editor's date and time fields take, complete and step through.

#include "reminders/Termineingabefelder.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

using Lesen = std::optional<Datum>(std::string_view);
using Vervollstaendigen = std::string(std::string_view);

struct Angenommen {
    const char *text, *erwartet;
};

void pruefe(Lesen& lesen, Vervollstaendigen& vervollstaendigt, const std::vector<Angenommen>& angenommen,
            const std::vector<const char*>& abgelehnt) {
    for (const auto& [text, erwartet] : angenommen) {
        EXPECT_TRUE(lesen(text)) << text;
        EXPECT_EQ(vervollstaendigt(text), erwartet);
    }
    for (const char* text : abgelehnt) {
        EXPECT_FALSE(lesen(text)) << text;
        EXPECT_EQ(vervollstaendigt(text), text);
    }
}

TEST(DateField, TakesTheGermanIsoAndCompactFormsOfRealDays) {
    pruefe(tagAusEingabe, tagVervollstaendigt,
           {{"1.2.2013", "01.02.2013"},
            {"5.12.29", "05.12.2029"},
            {"5.1.30", "05.01.1930"},
            {"29.2.00", "29.02.2000"},
            {" 1.2.13 ", "01.02.2013"},
            {"2013-02-01", "01.02.2013"},
            {"20130201256199", "01.02.2013"},
            {"01.01.0100", "01.01.0100"}},
           {"31.02.2013", "29.2.1900", "0.1.2013", "1.13.2013", "20130231000000", "2013-02-30", "01.01.0099",
            "1.1.013", " ", "1.1", "1.1.2013 20:15", "1/2/2013", "2013-2-1", "1.-2.2013", "1. 2.2013",
            "2013020120150x", "001.1.2013", "20:15"});
    EXPECT_EQ(alsZeit(*tagAusEingabe("20130201201500")), "2013-02-01 00:00:00");
}

TEST(TimeField, TakesHoursAndTwoDigitMinutesWithOptionalSeconds) {
    pruefe(uhrzeitAusEingabe, uhrzeitVervollstaendigt,
           {{"7:05", "07:05"}, {" 0:00 ", "00:00"}, {"23:59:59", "23:59:59"}, {"7:05:00", "07:05"}},
           {"07:5", "24:00", "20:60", "20:15:60", "20:15:5", "20.15", "20:15.", "20/15", "2015", "", ":15",
            "20:", "-1:15", "20:15 Uhr", "020:15"});
    EXPECT_EQ(uhrzeitAusEingabe("20:15:03"), TimeSerial(20, 15, 3));
}

TEST(ArrowKeys, StepOverTheEndsOfMonthAndDayButNotOfTheCalendar) {
    EXPECT_EQ(tagVerschoben("28.2.12", 1), "29.02.2012");
    EXPECT_EQ(tagVerschoben("01.01.2013", -7), "25.12.2012");
    EXPECT_EQ(tagVerschoben("31.12.9999", 1), std::nullopt);
    EXPECT_EQ(tagVerschoben("1.1.0100", -1), std::nullopt);
    EXPECT_EQ(uhrzeitVerschoben("23:59:40", 1), "00:00");
    EXPECT_EQ(uhrzeitVerschoben("0:30", -60), "23:30");
}

}  // namespace
}  // namespace wendel
