// Starting files: what reaches the platform, and the failure texts.

#include "recording/ModulDateiStarten.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using ModulDateiStarten::DateiStarten;
using ModulDateiStarten::OrdnerAusPfad;

TEST(StartingAFile, HandsFileParametersAndFolderOn) {
    struct Fall {
        const char* name;
        const char* datei;
        const char* parameter;
        FakeStarter::Start erwartet;
    };
    const Fall faelle[] = {
        {"plain", "C:\\Suite\\skarvel.exe", "/hidden", {"C:\\Suite\\skarvel.exe", "/hidden", "C:\\Suite", 1}},
        {"blanks around", "  C:\\a.txt ", "", {"C:\\a.txt", "", "C:", 1}},
        {"switches go in front", "C:\\TV\\tv.exe /x /y", "p q", {"C:\\TV\\tv.exe", "/x /y p q", "C:\\TV", 1}},
        {"switches alone", "tv.exe /x", "", {"tv.exe", "/x", "", 1}},
        {"blanks before the switch", "C:\\TV\\tv.exe  /x", "", {"C:\\TV\\tv.exe", "/x", "C:\\TV", 1}},
        {"separators in the switch",
         "C:\\TV\\tv.exe /f=D:\\a\\b",
         "",
         {"C:\\TV\\tv.exe", "/f=D:\\a\\b", "C:\\TV", 1}},
        {"slashes", "/opt/tv/tv", "-x", {"/opt/tv/tv", "-x", "/opt/tv", 1}},
        {"address", "https://example.org/tv", "", {"https://example.org/tv", "", "https://example.org", 1}},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        FakeStarter starter;
        DateiStarten(starter, fall.datei, fall.parameter, 1);
        ASSERT_EQ(starter.gestartet.size(), 1u);
        EXPECT_EQ(starter.gestartet[0].datei, fall.erwartet.datei);
        EXPECT_EQ(starter.gestartet[0].parameter, fall.erwartet.parameter);
        EXPECT_EQ(starter.gestartet[0].ordner, fall.erwartet.ordner);
    }
}

TEST(StartingAFile, TranslatesTheWindowStyle) {
    const std::pair<int, int> stile[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3},  {4, 4},
                                         {5, 1}, {6, 7}, {7, 1}, {-1, 1}, {99, 1}};
    for (const auto& [stil, erwartet] : stile) {
        SCOPED_TRACE(stil);
        FakeStarter starter;
        DateiStarten(starter, "a.exe", "", stil);
        EXPECT_EQ(starter.gestartet.at(0).fensterstil, erwartet);
    }
}

TEST(StartingAFile, RaisesTheTextOfTheFailureCode) {
    const std::pair<int, const char*> codes[] = {
        {0, "Unknown error"},
        {1, "Unknown error"},
        {2, "File not found"},
        {3, "Path not found"},
        {4, "Unknown error"},
        {5, "Access denied"},
        {8, "Out of memory"},
        {11, "Invalid EXE file or error in EXE image"},
        {26, "A sharing violation occurred"},
        {27, "Incomplete or invalid file association"},
        {28, "DDE Time out"},
        {29, "DDE transaction failed"},
        {30, "DDE busy"},
        {31, "No association for file extension"},
        {32, "DLL not found"},
        {-1, "Unknown error"},
    };
    for (const auto& [code, text] : codes) {
        SCOPED_TRACE(code);
        FakeStarter starter;
        starter.ergebnis = code;
        try {
            DateiStarten(starter, "a.exe", "", 1);
            ADD_FAILURE() << "no failure raised";
        } catch (const Fehler& fehler) {
            EXPECT_EQ(fehler.nummer(), 1);
            EXPECT_EQ(fehler.quelle(), "DateiStarten");
            EXPECT_EQ(fehler.beschreibung(), std::string(text) + "\r\n");
        }
    }
    FakeStarter starter;
    starter.ergebnis = 33;
    EXPECT_NO_THROW(DateiStarten(starter, "a.exe", "", 1));
}

TEST(FolderOfAPath, IsTheTextBeforeTheLastSeparator) {
    EXPECT_EQ(OrdnerAusPfad("C:\\a\\b.exe"), "C:\\a");
    EXPECT_EQ(OrdnerAusPfad("C:\\a/b.exe"), "C:\\a");
    EXPECT_EQ(OrdnerAusPfad("b.exe"), "");
    EXPECT_EQ(OrdnerAusPfad("/b"), "");
    EXPECT_EQ(OrdnerAusPfad("C:\\a\\"), "C:\\a");
}

}  // namespace
}  // namespace wendel
