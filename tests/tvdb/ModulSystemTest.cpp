#include "tvdb/ModulSystem.h"

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "tvdb/Guidekonfiguration.h"

namespace wendel {
namespace {

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
