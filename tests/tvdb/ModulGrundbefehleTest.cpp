#include "tvdb/ModulGrundbefehle.h"

#include "tvdb/Guidekonfiguration.h"
#include "tvdb/ModulSystem.h"
#include "tvdb/Probe.h"

namespace wendel {
namespace {

using namespace ModulGrundbefehle;

TEST(Grundbefehle, TexteFuerDatenbankUndPfade) {
    const Datum mai = DateSerial(2012, 5, 4) + TimeSerial(20, 15, 0);
    // clang-format off
    const std::pair<std::string, const char*> kFaelle[] = {
        {SqlText(""), "''"}, {SqlText("Käpt'n''s"), "'Käpt''n''''s'"}, {SqlBool(true), "-1"}, {SqlBool(false), "0"},
        {SqlDatum(mai), "#5/4/2012#"}, {SqlDatum(Datum()), "#12/30/1899#"}, {SqlDatumZeit(mai), "#5/4/2012 20:15:00#"},
        {SqlDatumZeit(DateSerial(2013, 1, 1) + TimeSerial(0, 5, 9)), "#1/1/2013 0:05:09#"},
        {PfadMitBackslash("C:\\"), "C:\\"}, {PfadMitBackslash("C:/TV/"), "C:/TV/\\"}, {PfadMitBackslash(""), "\\"},
        {DateinameAusPfad("C:/a\\b.txt"), "b.txt"}, {DateinameAusPfad("C:\\a/b.txt"), "b.txt"},
        {DateinameAusPfad("b.txt"), "b.txt"}, {DateinameAusPfad("C:\\a\\"), ""}};
    // clang-format on
    for (const auto& [text, erwartet] : kFaelle)
        EXPECT_EQ(text, erwartet);
    EXPECT_EQ(NullErsatz(Variant::null(), Variant::lang(7)), Variant::lang(7));
    EXPECT_EQ(NullErsatz(Variant(), Variant::lang(7)), Variant());
}

TEST(Grundbefehle, ExistenzVonDateienUndOrdnern) {
    FakePorts fakes;
    fakes.dateien.lege("\\tv\\a.mdb", "x");
    for (const char* pfad : {"\\tv\\a.mdb", "\\tv\\*.mdb", "\\tv", "\\fehlt", ""}) {
        EXPECT_EQ(DateiExistiert(fakes.dateien, pfad), pfad == std::string("\\tv\\a.mdb")) << pfad;
        EXPECT_EQ(OrdnerExistiert(fakes.dateien, kTestordner, pfad), pfad == std::string("\\tv")) << pfad;
        EXPECT_EQ(fakes.dateien.aktuellerOrdner(), kTestordner) << "the programme folder stays current";
    }
}

TEST(Grundbefehle, DatumAusTextLiestJedeForm) {
    // clang-format off
    const std::pair<const char*, const char*> kFaelle[] = {  // "": the format is unknown
        // fixed positions
        {"20121224201500", "20121224201500"}, {"20121324206000", "20130124210000"}, {"2012122420150", ""},
        {"übermorgenfrüh", "19991130000000"}, {"24 Januar 2012", "20231130002012"}, {"32.12.9999", ""},
        {"24.12.2012", "20121224000000"}, {"31.02.2013", "20130303000000"}, {"31.12.9999", "99991231000000"},
        {"1.2.2013", "20121201000000"}, {"24.12.12", "20121224000000"}, {"31.12.9999 25:00", ""},
        {"24.12.2012 20:15:30", "20121224201530"}, {"24.12.2012 20:15", "20121224201500"},
        {"24.12.2012-20:15", "20121224000000"},
        // general conversion
        {"8:5", "18991230080500"}, {" 20:15:30 ", "18991230201530"}, {"24:00", ""}, {"12:60", ""}, {"", ""},
        {"5/4/2012", "20120405000000"}, {"12/24/2012", "20121224000000"}, {"31/31/2012", ""}, {"41267", ""},
        {"24-12-2012", "20121224000000"}, {"2012/12/24", "20121224000000"}, {"2013-02-29", ""}, {"morgen", ""},
        {"2012-12-24 20:15", "20121224201500"}, {"24 Dezember 2012", "20121224000000"}, {"-1/2/2012", ""},
        {"24 dez 2012", "20121224000000"}, {"1 MÄRZ 2013", "20130301000000"}, {"1/2/2012/3", ""}};
    // clang-format on
    for (const auto& [text, erwartet] : kFaelle) {
        std::string gelesen;
        const Gemeldet fehler =
            fehlerVon([&, eingabe = text] { gelesen = DatumKompakt(DatumAusText(eingabe)); });
        EXPECT_EQ(gelesen, erwartet) << text;
        EXPECT_EQ(IstDatumsausdruck(text), fehler.nummer == 0) << text;
        if (fehler.nummer == 0) continue;
        EXPECT_EQ(fehler.nummer, 1);
        EXPECT_EQ(fehler.beschreibung, std::string("Der Datumsausdruck \"") + text +
                                           "\" wurde gefunden. Das Format kann nicht erkannt werden.");
    }
}

TEST(Rechnername, EndetAmErstenNulUndOhneLeerzeichen) {
    FakeRechner rechner;
    rechner.name = std::string("  PC-BUERO \0Rest    ", 20);
    EXPECT_EQ(ModulSystem::GetRechnername(rechner), "PC-BUERO");
    rechner.nameBekannt = false;
    EXPECT_EQ(ModulSystem::GetRechnername(rechner), "");
}

TEST(Appname, KommtAusDerGuidekonfiguration) {
    FakePorts fakes;
    fakes.dateien.lege("\\suite\\kestrin.cfg", "[x]\r\nappnamen=x\r\n  AppName =\t Mein Guide = gut \r\n");
    EXPECT_EQ(Guidekonfiguration::liesAppname(fakes.dateien, kTestordner), "Mein Guide = gut");
}

}  // namespace
}  // namespace wendel
