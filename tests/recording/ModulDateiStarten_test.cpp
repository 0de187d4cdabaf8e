// Starting files: what reaches the platform, and the failure texts.

#include "recording/ModulDateiStarten.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using ModulDateiStarten::DateiStarten;

TEST(StartingAFile, HandsFileParametersFolderAndTranslatedWindowStyleOn) {
    struct Fall {
        const char *datei, *parameter;
        int stil;
        FakeStarter::Start erwartet;
    };
    const Fall faelle[] = {
        {"C:\\Suite\\skarvel.exe", "/hidden", 0, {"C:\\Suite\\skarvel.exe", "/hidden", "C:\\Suite", 0}},
        {"  C:\\a/b.txt ", "", 4, {"C:\\a/b.txt", "", "C:\\a", 4}},
        {"C:\\TV\\tv.exe  /x /f=D:\\a", "p q", 5, {"C:\\TV\\tv.exe", "/x /f=D:\\a p q", "C:\\TV", 1}},
        {"tv.exe /x", "", 6, {"tv.exe", "/x", "", 7}},
        {"/opt/tv/tv", "-x", 7, {"/opt/tv/tv", "-x", "/opt/tv", 1}},
    };
    for (const Fall& fall : faelle) {
        FakeStarter starter;
        DateiStarten(starter, fall.datei, fall.parameter, fall.stil);
        EXPECT_EQ(starter.gestartet, std::vector{fall.erwartet}) << fall.datei;
    }
}

TEST(StartingAFile, RaisesTheTextOfTheFailureCode) {
    const std::pair<int, const char*> texte[] = {{2, "File not found\r\n"}, {3, "Path not found\r\n"},
                                                 {5, "Access denied\r\n"},  {8, "Out of memory\r\n"},
                                                 {32, "DLL not found\r\n"}, {0, "Unknown error\r\n"}};
    FakeStarter starter;
    for (const auto& [ergebnis, text] : texte) {
        starter.ergebnis = ergebnis;
        try {
            DateiStarten(starter, "a.exe", "", 1);
            ADD_FAILURE() << "no failure raised";
        } catch (const Fehler& fehler) {
            EXPECT_EQ(std::to_string(fehler.nummer()) + fehler.quelle() + fehler.beschreibung(),
                      std::string("1DateiStarten") + text);
        }
    }
    starter.ergebnis = 33;
    EXPECT_NO_THROW(DateiStarten(starter, "a.exe", "", 1));
}

}  // namespace
}  // namespace wendel
