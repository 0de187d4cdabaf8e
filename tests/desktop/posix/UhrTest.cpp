// The program's clock: the system's, or one started at a given moment, through both changes of summer time.

#include <cstdio>

#include "desktop/LinuxUhr.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

// A time zone for one test.
class Zone {
  public:
    explicit Zone(const char* name) : tz_(std::in_place, "TZ", name) { ::tzset(); }
    ~Zone() {
        tz_.reset();
        ::tzset();
    }

  private:
    std::optional<Variable> tz_;
};

std::string dateBefehl() {
    std::string text(32, '\0');
    FILE* rohr = ::popen("date '+%Y%m%d%H%M%S'", "r");
    if (!rohr || !std::fgets(text.data(), 32, rohr)) text.clear();
    if (rohr) ::pclose(rohr);
    return text.substr(0, 14);
}

TEST(Uhr, ShowsLocalTimeAsTheSystemDoes) {
    for (const char* name : {"Europe/Berlin", "America/St_Johns", "UTC"}) {
        SCOPED_TRACE(name);
        const Zone zone(name);
        LinuxUhr uhr;
        const std::string vorher = dateBefehl();
        const std::string jetzt = datumKompakt(uhr.jetzt());
        EXPECT_LE(vorher, jetzt);
        EXPECT_LE(jetzt, dateBefehl());
    }
}

TEST(Uhr, ReadsOnlyWholeMomentsOfTheCalendar) {
    const struct {
        const char *text, *erwartet;  // "" for none
    } faelle[] = {
        {"2012-12-24 20:04:50", "20121224200450"},
        {"2012-12-24T20:04:50", "20121224200450"},
        {"2012-02-29 00:00:00", "20120229000000"},
        {"1999-12-31 23:59:59", "19991231235959"},
        {"2011-02-29 00:00:00", ""},
        {"2012-13-01 00:00:00", ""},
        {"2012-00-01 00:00:00", ""},
        {"2012-12-00 00:00:00", ""},
        {"2012-12-24 24:00:00", ""},
        {"2012-12-24 20:60:00", ""},
        {"2012-12-24 20:04:60", ""},
        {"2012-12-24 20:04", ""},
        {"2012-12-24 20:04:50 ", ""},
        {"24.12.2012 20:04:50", ""},
        {"2012-12-24 -1:04:50", ""},
        {"2012-12-24 +1:04:50", ""},
        {"2012-12-24  1:04:50", ""},
        {"0012-12-24 20:04:50", ""},
        {"morgen", ""},
        {"", ""},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.text);
        const auto moment = uhrAusText(fall.text);
        EXPECT_EQ(fall.erwartet, moment ? datumKompakt(*moment) : "");
    }
}

TEST(Uhr, EnvironmentStartsItOrIsRefused) {
    std::string meldung;
    {
        const Variable variable("WENDEL_UHR", "2012-12-24 20:04:50");
        const auto uhr = LinuxUhr::ausUmgebung(meldung);
        ASSERT_TRUE(uhr);
        EXPECT_EQ("20121224200450", datumKompakt(uhr->jetzt()));
    }
    for (const std::optional<std::string>& wert :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        const Variable variable("WENDEL_UHR", wert);
        const auto uhr = LinuxUhr::ausUmgebung(meldung);
        ASSERT_TRUE(uhr);
        EXPECT_GE(datumKompakt(uhr->jetzt()).substr(0, 14), "2024");
    }
    EXPECT_EQ("", meldung);
    const Variable variable("WENDEL_UHR", "heute abend");
    EXPECT_FALSE(LinuxUhr::ausUmgebung(meldung));
    EXPECT_EQ(
        "WENDEL_UHR=\"heute abend\" ist keine gültige Zeit. Erwartet wird zum Beispiel \"2012-12-24 "
        "20:04:50\".",
        meldung);
}

TEST(Uhr, RunsOnThroughBothChangesOfSummerTime) {
    const Zone zone("Europe/Berlin");
    const struct {
        const char *name, *start, *gezeigt, *danach;
    } faelle[] = {
        {"into summer time", "2012-03-25 01:59:59", "20120325015959", "20120325030000"},
        {"out of summer time: the hour comes again", "2012-10-28 02:59:59", "20121028025959",
         "20121028020000"},
        {"midnight", "2012-12-31 23:59:59", "20121231235959", "20130101000000"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        LinuxUhr uhr(*uhrAusText(fall.start));
        EXPECT_EQ(fall.gezeigt, datumKompakt(uhr.jetzt()));
        uhr.schlafe(uhr.msBisZurNaechstenSekunde());
        EXPECT_EQ(fall.danach, datumKompakt(uhr.jetzt()));
    }
    // A moment that this night does not have: the clock starts behind the gap.
    EXPECT_EQ("20120325033000", datumKompakt(LinuxUhr(*uhrAusText("2012-03-25 02:30:00")).jetzt()));
}

TEST(Uhr, NextSecondIsReachedNotMissed) {
    LinuxUhr uhr;
    for (int i = 0; i < 2; ++i) {
        const Datum vorher = uhr.jetzt();
        const int rest = uhr.msBisZurNaechstenSekunde();
        EXPECT_GE(rest, 1);
        EXPECT_LE(rest, 1000);
        uhr.schlafe(rest);
        EXPECT_GE((uhr.jetzt()).sekunden(), vorher.sekunden() + 1);
    }
}

TEST(Uhr, SleepsThroughSignals) {
    struct sigaction alt {
    }, neu{};
    neu.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &neu, &alt);
    LinuxUhr uhr;
    const std::int64_t anfang = uhr.laufzeitMs();
    ::ualarm(20000, 20000);
    uhr.schlafe(200);
    ::ualarm(0, 0);
    ::sigaction(SIGALRM, &alt, nullptr);
    EXPECT_GE(uhr.laufzeitMs() - anfang, 199);
    uhr.schlafe(0);
    uhr.schlafe(-5);
    EXPECT_LT(uhr.laufzeitMs() - anfang, 2000);
}

TEST(Uhr, HandsMessagesToTheEventLoop) {
    LinuxUhr uhr;
    uhr.nachrichtenVerarbeiten();
    int aufrufe = 0;
    uhr.setzeNachrichten([&] { ++aufrufe; });
    uhr.nachrichtenVerarbeiten();
    EXPECT_EQ(1, aufrufe);
}

}  // namespace
}  // namespace wendel
