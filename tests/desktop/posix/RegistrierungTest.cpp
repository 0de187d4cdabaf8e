// Typed values on the file that stands for the registry, and the autostart entry that one of them is.

#include "desktop/Registrierungsdatei.h"
#include "desktop/posix/Werkzeug.h"
#include "platform/ModulRegistrierung.h"
#include "platform/Text.h"

namespace wendel {
namespace {

using namespace ModulRegistrierung;
using namespace std::string_literals;

constexpr auto kBenutzer = Registrierungswurzel::AktuellerBenutzer;
constexpr auto kRechner = Registrierungswurzel::Rechner;
const std::string kPfad = "Software\\Kestrin\\Wendel";
const std::string kRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";

struct RegistryFile : testing::Test {
    Registrierungsdatei offene() {
        return {temp / "wendel/registrierung.txt",
                {temp / "autostart/wendel.desktop", "/opt/we ndel/bin/wendel"}};
    }
    Variant lies(const std::string& name, bool roh = false) {
        Variant wert;
        EXPECT_TRUE(ReadValue(registrierung, kBenutzer, kPfad, name, wert, roh)) << name;
        return wert;
    }
    TempOrdner temp;
    Registrierungsdatei registrierung = offene();
};

TEST_F(RegistryFile, GivesEveryTypeBackToAnotherProcess) {
    const Variant datum = Variant::datum(DateSerial(2012, 12, 24) + TimeSerial(20, 15, 3));
    const auto text = [](const std::string& t) { return Variant::text(t); };
    const struct {
        const char* name;
        Variant geschrieben, gelesen, roh;
    } faelle[] = {
        {"kurz", Variant::integer(-2), Variant::lang(-2), Variant::lang(-2)},
        {"lang", Variant::lang(INT32_MIN), Variant::lang(INT32_MIN), Variant::lang(INT32_MIN)},
        {"ja", Variant::boolesch(true), Variant::boolesch(true), text("typboolean:true")},
        {"nein", Variant::boolesch(false), Variant::boolesch(false), text("typboolean:false")},
        {"datum", datum, datum, text("typdate:20121224201503")},
        {"fremd", text("typdate:24.12.2012 20:15:03"), datum, text("typdate:24.12.2012 20:15:03")},
        {"Vorsatz", text("typboolean:true"), Variant::boolesch(true), text("typboolean:true")},
        {"exakt", text("typboolean:TRUE"), Variant::boolesch(false), text("typboolean:TRUE")},
        {"a]\"\\ =:", text("a\"]\\x00\r\n[b] ä€"), text("a\"]\\x00\r\n[b] ä€"), text("a\"]\\x00\r\n[b] ä€")},
        {"Nullen", text("a\0b\0"s), text("a\0b"s), text("a\0b"s)},
        {"leer", text(""), text(""), text("")},
    };
    ASSERT_TRUE(CreateKey(registrierung, kBenutzer, kPfad));
    for (const auto& fall : faelle)
        EXPECT_TRUE(WriteValue(registrierung, kBenutzer, kPfad, fall.name, fall.geschrieben)) << fall.name;
    std::ofstream(temp / "wendel/registrierung.txt", std::ios::app)
        << "[" << kPfad << "\\von Hand]\r\n\"x\"=1:\"y\"\r\n\"z\"=neu:\"y\"\n";
    const std::string kopf = "# Einstellungen der Programme dieses Benutzers\n\n[";
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(WriteValue(registrierung, kBenutzer, kPfad, "x", Variant::lang(i)));
        const std::string inhalt = inhaltVon(temp / "wendel/registrierung.txt");
        EXPECT_TRUE(inhalt.starts_with(kopf) && inhalt.ends_with("]\n\"z\"=neu:\"y\"\n\"x\"=1:\"y\"\n"))
            << inhalt;
    }
    Registrierungsdatei andere = offene();
    Variant vonHand;
    EXPECT_TRUE(ReadValue(andere, kBenutzer, kPfad + "\\von Hand", "x", vonHand));
    EXPECT_EQ(vonHand, text("y"));
    for (const auto& fall : faelle) {
        Variant wert, roh;
        EXPECT_TRUE(ReadValue(andere, kBenutzer, LCase(kPfad), UCase(fall.name), wert)) << fall.name;
        EXPECT_TRUE(ReadValue(andere, kBenutzer, kPfad, fall.name, roh, true)) << fall.name;
        EXPECT_EQ(wert, fall.gelesen) << fall.name;
        EXPECT_EQ(roh, fall.roh) << fall.name;
    }
}

TEST_F(RegistryFile, MakesNothingByItselfAndSaysWhatIsMissing) {
    Variant wert = Variant::text("unberührt");
    EXPECT_FALSE(KeyExists(registrierung, kBenutzer, kPfad));
    EXPECT_FALSE(WriteValue(registrierung, kBenutzer, kPfad, "x", Variant::lang(1)));
    EXPECT_FALSE(CreateKey(registrierung, kRechner, kPfad));
    ASSERT_TRUE(CreateKey(registrierung, kBenutzer, kPfad));
    EXPECT_TRUE(KeyExists(registrierung, kBenutzer, "Software\\Kestrin"));
    EXPECT_TRUE(WriteValue(registrierung, kBenutzer, kPfad, "x", Variant::doppelt(1.5)));
    EXPECT_TRUE(WriteValue(registrierung, kBenutzer, kPfad, "kaputt", Variant::text("typdate:gestern")));
    for (const char* name : {"x", "kaputt"})
        EXPECT_FALSE(ReadValue(registrierung, kBenutzer, kPfad, name, wert)) << name;
    EXPECT_EQ(wert, Variant::text("unberührt"));
    EXPECT_TRUE(DeleteValue(registrierung, kBenutzer, kPfad, "KAPUTT"));
    EXPECT_FALSE(DeleteValue(registrierung, kBenutzer, kPfad, "kaputt"));
}

TEST_F(RegistryFile, TwoProcessesLoseNothing) {
    constexpr int kWerte = 50;
    ASSERT_TRUE(CreateKey(registrierung, kBenutzer, kPfad));
    const auto schreibe = [&](const std::string& vorsatz) {
        Registrierungsdatei eigene = offene();
        for (int i = 0; i < kWerte; ++i) {
            if (!WriteValue(eigene, kBenutzer, kPfad, vorsatz + std::to_string(i), Variant::lang(i)))
                ::_exit(1);
        }
    };
    Kind erster([&](int) { schreibe("a"); }), zweiter([&](int) { schreibe("b"); });
    EXPECT_EQ(0, erster.warte() + zweiter.warte());
    for (int i = 0; i < kWerte; ++i)
        EXPECT_EQ(lies("a" + std::to_string(i)), lies("b" + std::to_string(i)));
}

TEST_F(RegistryFile, RunValueIsTheAutostartEntryOfTheDesktop) {
    const std::string starter = temp.skript("Suite %/tessaly.exe", "");
    const std::string kurz = temp.skript("Linux/tessaly", "");
    const std::string fremd = temp.skript("Windows/tessaly.exe", "");
    std::ofstream(fremd) << "MZ";
    const struct {
        std::string zeile, exec;
    } faelle[] = {
        {"\"" + logischerPfad(starter) + "\" wendel pcstart",
         "Exec=\"" + temp.pfad() + "/Suite %%/tessaly.exe\" \"wendel\" \"pcstart\"\n"},
        {"\"" + logischerPfad(kurz) + ".exe\" wendel pcstart",
         "Exec=\"" + kurz + "\" \"wendel\" \"pcstart\"\n"},
        {"\"" + logischerPfad(fremd) + "\" wendel pcstart",
         "Exec=\"/opt/we ndel/bin/wendel\" \"/pcstart\"\n"},
        {"\"C:\\Suite\\tessaly.exe\" wendel pcstart", "Exec=\"/opt/we ndel/bin/wendel\" \"/pcstart\"\n"},
    };
    for (const auto& fall : faelle) {
        ASSERT_TRUE(WriteValue(registrierung, kBenutzer, kRun, "Wendel", Variant::text(fall.zeile)));
        Variant wert;
        EXPECT_TRUE(ReadValue(registrierung, kBenutzer, kRun, "wendel", wert, true));
        EXPECT_EQ(wert, Variant::text(fall.zeile));
        EXPECT_NE(std::string::npos, inhaltVon(temp / "autostart/wendel.desktop").find(fall.exec))
            << fall.exec;
    }
    Autostarteintrag mitOrdner(temp / "autostart/wendel.desktop", "/bin/wendel", "/home/ä/TV $");
    EXPECT_TRUE(mitOrdner.setze("\"C:\\Suite\\tessaly.exe\" wendel pcstart"));
    EXPECT_NE(std::string::npos,
              inhaltVon(temp / "autostart/wendel.desktop")
                  .find("\nExec=\"env\" \"WENDEL_ORDNER=/home/ä/TV \\\\$\" \"/bin/wendel\" \"/pcstart\"\n"));
    EXPECT_EQ("/bin/wendel", mitOrdner.programm());
    EXPECT_TRUE(DeleteValue(registrierung, kBenutzer, kRun, "Wendel"));
    EXPECT_EQ("", inhaltVon(temp / "autostart/wendel.desktop"));
    EXPECT_FALSE(DeleteValue(registrierung, kBenutzer, kRun, "Wendel"));
}

}  // namespace
}  // namespace wendel
