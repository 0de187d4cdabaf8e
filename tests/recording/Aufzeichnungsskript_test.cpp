// The script file and the placeholders.

#include "recording/Aufzeichnungsskript.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "recording/ModulJokerErsetzen.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using namespace ModulJokerErsetzen;

const std::string kKopf = "<Kestrin Pirrow AUFZEICHNUNGSSKRIPT 1.0>\r\n";

std::string text(const Befehlsliste& liste) {
    std::string text;
    for (const Skriptzeile& zeile : liste)
        text += std::to_string(zeile.nummer) + ":" + zeile.text + "|";
    return text;
}

TEST(ScriptFile, KeepsTextsAndListsWithTheirLineNumbers) {
    FakeDateisystem dateien;
    dateien.lege("\\a.cfs", kKopf +
                                "Beschreibung=alt\rbeschreibung= F\xFCr TV=1  \n\n"
                                "'befehlKanalWechseln=nie\n;Kommentar\n"
                                "  BEFEHLAUFNAHMESTARTEN =tastensenden,a=b\nbefehlaufnahmestarten=beep\n"
                                "TVAnwendungDatei=tv.exe\nTvAnwendungTitel=TV\nbefehlanwendungstarten=S\n"
                                "befehlanwendungbeenden=B\nbefehlaufnahmebeenden=E\nbefehlkanalwechseln=");
    const Aufzeichnungsskript skript = SkriptEinladen(dateien, "\\a.cfs");
    EXPECT_EQ(skript.beschreibung + "|" + skript.tvAnwendungDatei + "|" + skript.tvAnwendungTitel,
              " Für TV=1|tv.exe|TV");
    EXPECT_EQ(text(skript.befehlAufnahmeStarten) + text(skript.befehlAnwendungStarten) +
                  text(skript.befehlAnwendungBeenden) + text(skript.befehlAufnahmeBeenden) +
                  text(skript.befehlKanalWechseln),
              "7:tastensenden,a=b|8:beep|11:S|12:B|13:E|14:|");
    EXPECT_TRUE(skript.fuehrtEtwasAus());
}

TEST(ScriptFile, IsEmptyWhenAbsentAndRefusedWithoutItsHeader) {
    FakeDateisystem dateien;
    EXPECT_FALSE(SkriptEinladen(dateien, "").fuehrtEtwasAus());
    dateien.lege("\\kopf.cfs", kKopf);
    EXPECT_FALSE(SkriptEinladen(dateien, "\\kopf.cfs").fuehrtEtwasAus());
    for (const std::string& inhalt : {std::string(), " " + kKopf, "\n" + kKopf, kKopf.substr(1)}) {
        dateien.lege("\\a.cfs", inhalt);
        try {
            SkriptEinladen(dateien, "\\a.cfs");
            ADD_FAILURE() << inhalt;
        } catch (const Fehler& fehler) {
            EXPECT_EQ(std::to_string(fehler.nummer()) + fehler.quelle() + ": " + fehler.beschreibung(),
                      "1SkriptEinladen: Das Format oder die Version der Skriptdatei ist ungültig.");
        }
    }
    dateien.lege("\\a.cfs", kKopf + std::string(8 << 20, '\n'));
    EXPECT_THROW(SkriptEinladen(dateien, "\\a.cfs"), Fehler);
    EXPECT_EQ(skriptdatei("a.cfs", "\\suite\\"), "\\suite\\a.cfs");
    EXPECT_EQ(skriptdatei("x/a.cfs", "\\suite\\") + skriptdatei("", "\\suite\\"), "x/a.cfs");
}

TEST(Placeholders, AreReplacedOnceAndWithoutRegardToCase) {
    EXPECT_EQ(JokerErsetzen("[TITEL]Äx[titel]", "[Titel]", "A[Titel]"), "A[Titel]ÄxA[Titel]");
    EXPECT_EQ(JokerErsetzen("aÄbäc", "ä", "-"), "a-b-c");
    EXPECT_EQ(JokerErsetzen("abc", "", "x"), "abc");
}

TEST(Placeholders, MakeTitlesSafeCharacterByCharacter) {
    EXPECT_EQ(sichererTitel("Tatort: Der Fall/2"), "Tatort--Der-Fall-2");
    EXPECT_EQ(sichererTitel("ÄöÜß!§$%&()={}[]+-#;"), "ÄöÜß!§$%&()={}[]+-#;");
    EXPECT_EQ(sichererTitel("a.b,c\"d€é\xC3 "), "a-b-c-d----");
}

TEST(SpecialFolders, FallBackToTheDriveThatHasThem) {
    FakePorts fakes;
    const Ports ports = fakes.ports();
    fakes.dateien.legeOrdner("C:\\Windows\\System32\\");
    EXPECT_EQ(SpezialOrdner(ports, kTestordner, kWindowsOrdner), "\\usr");
    fakes.rechner.spezialordnerpfade.clear();
    EXPECT_EQ(SpezialOrdner(ports, kTestordner, kWindowsOrdner), "C:\\Windows");
    fakes.dateien.legeOrdner("D:\\Windows\\");
    EXPECT_EQ(OrdnerJokerErsetzen(ports, kTestordner, "[windowsordner]|[System32Ordner]|[ProgrammeOrdner]"),
              "D:\\Windows|C:\\Windows\\System32|");
    EXPECT_EQ(fakes.dateien.aktuellerOrdner(), kTestordner);
}

}  // namespace
}  // namespace wendel
