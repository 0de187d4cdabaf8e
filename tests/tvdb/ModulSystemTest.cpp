#include "tvdb/ModulSystem.h"

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "tvdb/Guidekonfiguration.h"

namespace wendel {
namespace {

TEST(ProgrammTitel, KommtAusDemDateinamen) {
    const std::pair<const char*, const char*> kFaelle[] = {
        {"fennow", "Kestrin Pirrow"},
        {"fennow.exe", "Kestrin Pirrow"},
        {"WENDEL", "Lomrick"},
        {"WENDEL.EXE", "Lomrick"},
        {"C:\\TV\\wendel.exe", "Lomrick"},
        {"/usr/bin/wendel", "Lomrick"},
        {"quillon", "Datenbank-Anpassung"},
        {"marrowby.exe", "Datenbank-Komprimierung"},
        {"drumlet", "Drumlet"},
        {"drumlet.exe", "Drumlet"},
        {"skarvel.exe", "Drumlet"},
        {"skarvel", "SKARVEL"},
        {"test", "TEST"},
        {"test.1.exe", "TEST.1"},
        {"prüfer", "PRÜFER"},
        {"", ""},
    };
    for (const auto& [datei, titel] : kFaelle) {
        EXPECT_EQ(ModulSystem::GetProgrammTitel(datei), titel) << datei;
    }
}

TEST(Rechnername, EndetAmErstenNulUndOhneLeerzeichen) {
    const std::pair<std::string, const char*> kFaelle[] = {
        {"PC-BUERO", "PC-BUERO"},
        {std::string("PC-BUERO\0Rest    ", 17), "PC-BUERO"},
        {"  PC  ", "PC"},
        {std::string("\0PC", 3), ""},
        {"", ""},
    };
    FakeRechner rechner;
    for (const auto& [name, erwartet] : kFaelle) {
        rechner.name = name;
        EXPECT_EQ(ModulSystem::GetRechnername(rechner), erwartet);
    }
    rechner.name = "PC-BUERO";
    rechner.nameBekannt = false;
    EXPECT_EQ(ModulSystem::GetRechnername(rechner), "");
}

TEST(Appname, KommtAusDerGuidekonfiguration) {
    const std::pair<const char*, const char*> kFaelle[] = {
        {"appname=Mein Guide", "Mein Guide"},
        {"[x]\r\n  AppName =\t Mein Guide = gut \r\n", "Mein Guide = gut"},
        {"appname=eins\nappname=zwei\n", "zwei"},
        {"appname=eins\nappname=\n", "Kestrin Pirrow"},
        {"appnamen=eins\n", "Kestrin Pirrow"},
        {"appname", "Kestrin Pirrow"},
        {"", "Kestrin Pirrow"},
        {"appname=F\xFChrer", "Führer"},
        {"\xEF\xBB\xBF"
         "appname=Führer",
         "Führer"},
    };
    for (const auto& [inhalt, erwartet] : kFaelle) {
        SCOPED_TRACE(inhalt);
        FakePorts fakes;
        fakes.dateien.lege("\\suite\\kestrin.cfg", inhalt);
        EXPECT_EQ(Guidekonfiguration::liesAppname(fakes.dateien, kTestordner), erwartet);
    }
    FakePorts ohneDatei;
    EXPECT_EQ(Guidekonfiguration::liesAppname(ohneDatei.dateien, kTestordner), "Kestrin Pirrow");
}

}  // namespace
}  // namespace wendel
