// The example guide: what a viewer would notice at once, on days of every kind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "../../apps/quillon/Beispielplan.h"
#include "../../apps/quillon/Beispielprogramm.h"
#include "platform/Text.h"

namespace wendel::quillon {
namespace {

const Datum kMontag = DateSerial(2026, 11, 23) + TimeSerial(17, 32, 11);

Beispielprogramm programm(Datum jetzt) { return beispielprogramm(jetzt, cSendung()); }

std::map<std::string, std::vector<cSendung>> nachSender(const Beispielprogramm& p) {
    std::map<std::string, std::vector<cSendung>> sender;
    for (const cSendung& sendung : p.sendungen)
        sender[sendung.SenderKennung].push_back(sendung);
    return sender;
}

class Tage : public testing::TestWithParam<Datum> {};
INSTANTIATE_TEST_SUITE_P(Beispiel, Tage,
                         testing::Values(kMontag, DateSerial(2012, 2, 27),
                                         DateSerial(2027, 1, 1) + TimeSerial(4, 59, 59),
                                         DateSerial(2026, 3, 28) + TimeSerial(23, 59, 0)),
                         [](const auto& zeile) { return datumKompakt(zeile.param); });

TEST_P(Tage, EveryChannelRunsForFourteenDaysWithoutGapOrOverlap) {
    const Datum erste = DateAdd(Einheit::Tag, -1, GetParam().datumsteil()) + TimeSerial(5, 0, 0);
    const auto sender = nachSender(programm(GetParam()));
    EXPECT_GE(sender.size(), 12U);
    for (const auto& [kennung, sendungen] : sender) {
        EXPECT_EQ(sendungen.front().Beginn, erste) << kennung;
        EXPECT_EQ(sendungen.back().Ende, DateAdd(Einheit::Tag, 14, erste)) << kennung;
        EXPECT_GE(sendungen.size(), 14U * 15U) << kennung;
        for (std::size_t i = 0; i < sendungen.size(); ++i) {
            const auto minuten = DateDiff(Einheit::Minute, sendungen[i].Beginn, sendungen[i].Ende);
            EXPECT_EQ(sendungen[i].Dauer, std::to_string(minuten));
            EXPECT_TRUE(minuten >= 5 && minuten <= 190)
                << kennung << " " << sendungen[i].Titel << " " << minuten;
            if (i > 0) {
                EXPECT_EQ(sendungen[i].Beginn, sendungen[i - 1].Ende) << kennung << " " << sendungen[i].Titel;
            }
        }
    }
}

TEST_P(Tage, BroadcastsAreCompleteAndOneIsTheTipOfItsEvening) {
    std::set<std::string> kennungen;
    std::map<Datum, int> tipps;
    for (cSendung& sendung : programm(GetParam()).sendungen) {
        EXPECT_TRUE(!sendung.Titel.empty() && !sendung.Temp_Beschreibung.empty() &&
                    sendung.Temp_DetailsGeladen);
        EXPECT_TRUE(kennungen.insert(sendung.SendungID).second) << sendung.SendungID;
        if (sendung.Bewertung != 4) continue;
        ++tipps[sendung.Datum()];
        EXPECT_EQ(sendung.Uhrzeit(), TimeSerial(20, 15, 0));
    }
    EXPECT_EQ(tipps.size(), 14U);
    EXPECT_THAT(tipps, testing::Each(testing::Pair(testing::_, 1)));
    EXPECT_EQ(tipps.begin()->first, DateAdd(Einheit::Tag, -1, GetParam().datumsteil()));
}

TEST(Beispiel, TheSameDayIsTheSameWhenTheGuideIsMadeLater) {
    const auto inhalt = [](const Beispielprogramm& p, Datum tag) {
        std::vector<std::string> zeilen;
        for (cSendung s : p.sendungen) {
            if (s.Datum() == tag)
                zeilen.push_back(s.SendungID + s.InhaltID + s.Titel + s.Showview + s.Beschreibung() +
                                 (s.KzWiederholung ? "W" : ""));
        }
        return zeilen;
    };
    const Datum tag = DateAdd(Einheit::Tag, 5, kMontag.datumsteil());
    const auto zeilen = inhalt(programm(kMontag), tag);
    EXPECT_GT(zeilen.size(), 300U);
    EXPECT_EQ(zeilen, inhalt(programm(DateAdd(Einheit::Tag, 4, kMontag)), tag));
}

TEST(Beispiel, WhatIsForAdultsRunsAtNightAndRepeatsAreMarked) {
    std::size_t wiederholungen = 0;
    for (const cSendung& sendung : programm(kMontag).sendungen) {
        const int stunde = zerlegt(sendung.Beginn).stunde;
        EXPECT_TRUE(sendung.FSK < 16 || stunde >= 22 || stunde < 6) << sendung.Titel << " um " << stunde;
        if (sendung.KzWiederholung) {
            ++wiederholungen;
            EXPECT_FALSE(sendung.KzLive) << sendung.Titel;
            EXPECT_GT(InStr(sendung.Temp_Beschreibung, "\r\nWiederholung"), 0) << sendung.Titel;
        } else if (InStr(sendung.Titel, "Samstag") > 0) {
            EXPECT_EQ(zerlegt(sendung.Beginn).wochentag, 7);
        }
    }
    EXPECT_GT(wiederholungen, 1000U);
}

}  // namespace
}  // namespace wendel::quillon
