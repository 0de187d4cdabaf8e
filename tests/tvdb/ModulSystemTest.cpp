#include "tvdb/ModulSystem.h"

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "tvdb/Guidekonfiguration.h"

namespace wendel {
namespace {

TEST(ProgrammTitel, KommtAusDemDateinamen) {
    // clang-format off
    const std::pair<const char*, const char*> kFaelle[] = {
        {"fennow", "Kestrin Pirrow"}, {"C:\\TV\\WENDEL.EXE", "Lomrick"}, {"/usr/bin/wendel", "Lomrick"},
        {"quillon.exe", "Datenbank-Anpassung"}, {"marrowby", "Datenbank-Komprimierung"}, {"skarvel", "SKARVEL"},
        {"drumlet.exe", "Drumlet"}, {"skarvel.exe", "Drumlet"}, {"prüfer.1.exe", "PRÜFER.1"}, {"", ""}};
    // clang-format on
    for (const auto& [datei, titel] : kFaelle)
        EXPECT_EQ(ModulSystem::GetProgrammTitel(datei), titel) << datei;
}

TEST(Rechnername, EndetAmErstenNulUndOhneLeerzeichen) {
    FakeRechner rechner;
    rechner.name = std::string("  PC-BUERO \0Rest    ", 20);
    EXPECT_EQ(ModulSystem::GetRechnername(rechner), "PC-BUERO");
    rechner.nameBekannt = false;
    EXPECT_EQ(ModulSystem::GetRechnername(rechner), "");
}

TEST(Appname, KommtAusDerGuidekonfiguration) {
    // clang-format off
    const std::pair<const char*, const char*> kFaelle[] = {
        {"[x]\r\n  AppName =\t Mein Guide = gut \r\n", "Mein Guide = gut"}, {"appname=eins\nappname=zwei\n", "zwei"},
        {"appname=eins\nappname=\n", "Kestrin Pirrow"}, {"appnamen=eins\nappname", "Kestrin Pirrow"},
        {"appname=F\xFChrer", "Führer"}, {"\xEF\xBB\xBF" "appname=Führer", "Führer"}};
    // clang-format on
    FakePorts fakes;
    EXPECT_EQ(Guidekonfiguration::liesAppname(fakes.dateien, kTestordner), "Kestrin Pirrow");
    for (const auto& [inhalt, erwartet] : kFaelle) {
        fakes.dateien.lege("\\suite\\kestrin.cfg", inhalt);
        EXPECT_EQ(Guidekonfiguration::liesAppname(fakes.dateien, kTestordner), erwartet) << inhalt;
    }
}

}  // namespace
}  // namespace wendel
