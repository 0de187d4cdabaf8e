// Starting files: what reaches the platform, and the failure texts.

#include "recording/ModulDateiStarten.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using ModulDateiStarten::DateiStarten;

TEST(StartingAFile, HandsFileParametersAndFolderOn) {
    struct Fall {
        const char *datei, *parameter;
        FakeStarter::Start erwartet;
    };
    const Fall faelle[] = {
        {"C:\\Suite\\skarvel.exe", "/hidden", {"C:\\Suite\\skarvel.exe", "/hidden", "C:\\Suite", 1}},
        {"  C:\\a/b.txt ", "", {"C:\\a/b.txt", "", "C:\\a", 1}},
        {"C:\\TV\\tv.exe  /x /f=D:\\a", "p q", {"C:\\TV\\tv.exe", "/x /f=D:\\a p q", "C:\\TV", 1}},
        {"tv.exe /x", "", {"tv.exe", "/x", "", 1}},
        {"/opt/tv/tv", "-x", {"/opt/tv/tv", "-x", "/opt/tv", 1}},
    };
    for (const Fall& fall : faelle) {
        FakeStarter starter;
        DateiStarten(starter, fall.datei, fall.parameter, 1);
        EXPECT_EQ(starter.gestartet, std::vector{fall.erwartet}) << fall.datei;
    }
}

TEST(StartingAFile, TranslatesTheWindowStyle) {
    const std::pair<int, int> stile[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4},
                                         {5, 1}, {6, 7}, {7, 1}, {-1, 1}};
    for (const auto& [stil, erwartet] : stile) {
        FakeStarter starter;
        DateiStarten(starter, "a.exe", "", stil);
        EXPECT_EQ(starter.gestartet.at(0).fensterstil, erwartet) << stil;
    }
}

TEST(StartingAFile, RaisesTheTextOfTheFailureCode) {
    // clang-format off
    const std::map<int, const char*> texte = {
        {2, "File not found"}, {3, "Path not found"}, {5, "Access denied"}, {8, "Out of memory"},
        {11, "Invalid EXE file or error in EXE image"},
        {26, "A sharing violation occurred"},
        {27, "Incomplete or invalid file association"},
        {28, "DDE Time out"},
        {29, "DDE transaction failed"},
        {30, "DDE busy"},
        {31, "No association for file extension"},
        {32, "DLL not found"},
    };
    // clang-format on
    FakeStarter starter;
    for (starter.ergebnis = -1; starter.ergebnis < 33; ++starter.ergebnis) {
        SCOPED_TRACE(starter.ergebnis);
        const auto text = texte.find(starter.ergebnis);
        try {
            DateiStarten(starter, "a.exe", "", 1);
            ADD_FAILURE() << "no failure raised";
        } catch (const Fehler& fehler) {
            EXPECT_EQ(fehler.nummer(), 1);
            EXPECT_EQ(fehler.quelle(), "DateiStarten");
            EXPECT_EQ(fehler.beschreibung(),
                      (text == texte.end() ? "Unknown error" : text->second) + std::string("\r\n"));
        }
    }
    EXPECT_NO_THROW(DateiStarten(starter, "a.exe", "", 1));
}

}  // namespace
}  // namespace wendel
