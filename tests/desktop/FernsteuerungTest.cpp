// The remote control against a stand-in that writes down all that reaches it, on a private desktop: what is
// typed on two layouts, which windows are found, activated and restored.

#include <gtest/gtest.h>

#include <QApplication>
#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "desktop/Fensterhilfe.h"
#include "desktop/X11Fernsteuerung.h"
#include "desktop/posix/Werkzeug.h"
#include "recording/Tastenfolge.h"

namespace wendel {
namespace {

TEST(Hindernis, NamesWhatTheSessionLacks) {
    const std::pair<Steuerbarkeit, std::string> faelle[] = {
        {{"wayland", true, true}, "Unter Wayland"},
        {{"wayland-egl", false, false}, "Unter Wayland"},
        {{"offscreen", true, true}, "sind hier nicht"},
        {{"xcb", false, false}, "Erweiterung XTEST"},
        {{"xcb", true, false}, "Es läuft kein Fenstermanager"},
        {{"xcb", true, true}, ""}};
    for (const auto& [sitzung, teil] : faelle) {
        const std::string text = hindernistext(sitzung);
        EXPECT_TRUE(teil.empty() ? text.empty() : text.find(teil) != std::string::npos)
            << teil << ": " << text;
    }
    EXPECT_EQ(X11Fernsteuerung().hindernis(), "");
}

void rufe(const std::string& befehl) { EXPECT_EQ(std::system(befehl.c_str()), 0) << befehl; }

// One running stand-in and what it has written.
class Standin {
  public:
    Standin(X11Fernsteuerung& fernsteuerung, const std::string& titel, const std::string& optionen = "")
        : fernsteuerung_(fernsteuerung), titel_(titel) {
        EXPECT_TRUE(fernsteuerung_.starteBefehlszeile("\"" + std::string(std::getenv("TVSTANDIN")) +
                                                      "\" --log " + log_ + " --title \"" + titel +
                                                      "\" --exit 60 " + optionen));
    }
    ~Standin() {
        EXPECT_TRUE(warte([this] { return fernsteuerung_.aktivieren(titel_); })) << titel_;
        tippe("q");
        EXPECT_TRUE(warteAuf("end")) << inhaltVon(log_);
    }

    void tippe(const std::string& schreibweise) {
        const auto ereignisse = tastenereignisse(tastennamenErsetzen(schreibweise));
        ASSERT_TRUE(ereignisse.has_value()) << schreibweise;
        EXPECT_TRUE(fernsteuerung_.sendeTasten(*ereignisse)) << schreibweise;
    }
    // What arrives for a key string, up to a key that closes it.
    std::string angekommen(const std::string& schreibweise) {
        gelesen_ = inhaltVon(log_).size();
        tippe(schreibweise);
        tippe("{HELP}");
        EXPECT_TRUE(warteAuf("-Help")) << schreibweise;
        std::string text = inhaltVon(log_).substr(gelesen_);
        text.resize(text.find("+Help"));
        std::replace(text.begin(), text.end(), '\n', ' ');
        return text;
    }
    bool warteAuf(const std::string& zeile) {
        return warte([&] {
            return ("\n" + inhaltVon(log_)).find("\n" + zeile + "\n", gelesen_) != std::string::npos;
        });
    }
    void vergiss() { gelesen_ = inhaltVon(log_).size(); }

  private:
    X11Fernsteuerung& fernsteuerung_;
    TempOrdner temp_;
    std::string titel_;
    std::string log_ = temp_ / "log";
    std::size_t gelesen_ = 0;
};

class Fernsteuerungstest : public testing::Test {
  protected:
    bool gefunden(const std::string& titel) {
        return warte([&] { return fernsteuerung.fensterNachTitel(titel) != 0; });
    }
    // One try may be too short for a busy window manager.
    bool aktiviert(const std::string& titel) {
        return warte([&] { return fernsteuerung.aktivieren(titel); });
    }
    X11Fernsteuerung fernsteuerung;
};

struct Tastenfall {
    const char* notation;
    std::string erwartet;
};

const Tastenfall kAufJedemLayout[] = {
    {"Tatort", "+Shift_L +T/Shift -T/Shift -Shift_L/Shift +a -a +t -t +o -o +r -r +t -t "},
    {"^a", "+Control_L +a/Ctrl -a/Ctrl -Control_L/Ctrl "},
    {"%{F4}", "+Alt_L +F4/Alt -F4/Alt -Alt_L/Alt "},
    {"[STRG][ALT][F12]",
     "+Control_L +Alt_L/Ctrl +F12/Ctrl/Alt -F12/Ctrl/Alt -Alt_L/Ctrl/Alt -Control_L/Ctrl "},
    {"+(ab)", "+Shift_L +A/Shift -A/Shift +B/Shift -B/Shift -Shift_L/Shift "},
    {"{5 3}", "+5 -5 +5 -5 +5 -5 "},
    {"[F1][F13][F16]", "+F1 -F1 +F13 -F13 +F16 -F16 "},
    {"[PAUSE][DRUCK][BILDAB]~", "+Pause -Pause +Print -Print +Next -Next +Return -Return "},
    {"я", "+Cyrillic_ya=я -Cyrillic_ya=я "},
};
const Tastenfall kUs[] = {
    {"äß€", "+adiaeresis=ä -adiaeresis=ä +ssharp=ß -ssharp=ß +EuroSign=€ -EuroSign=€ "},
    {"ÄÖÜöü",
     "+Adiaeresis=Ä -Adiaeresis=Ä +Odiaeresis=Ö -Odiaeresis=Ö +Udiaeresis=Ü -Udiaeresis=Ü "
     "+odiaeresis=ö -odiaeresis=ö +udiaeresis=ü -udiaeresis=ü "},
    {"^+ä",
     "+Control_L +Shift_L/Ctrl +Adiaeresis/Shift/Ctrl=Ä -Adiaeresis/Shift/Ctrl=Ä -Shift_L/Shift/Ctrl "
     "-Control_L/Ctrl "},
    {"{^}*",
     "+Shift_L +asciicircum/Shift=^ -asciicircum/Shift=^ -Shift_L/Shift "
     "+Shift_L +asterisk/Shift=* -asterisk/Shift=* -Shift_L/Shift "},
};
const Tastenfall kDe[] = {
    {"zÄß", "+z -z +Shift_L +Adiaeresis/Shift=Ä -Adiaeresis/Shift=Ä -Shift_L/Shift +ssharp=ß -ssharp=ß "},
    {"€", "+ISO_Level3_Shift +EuroSign/AltGr=€ -EuroSign/AltGr=€ -ISO_Level3_Shift/AltGr "},
    {"{^}", "+asciicircum=^ -asciicircum=^ "},  // a dead key there
};

TEST_F(Fernsteuerungstest, TypesWhatIsAskedForOnAnyLayout) {
    Standin tv(fernsteuerung, "TV");
    ASSERT_TRUE(gefunden("TV") && aktiviert("TV"));
    const auto pruefe = [&](std::span<const Tastenfall> faelle) {
        for (const Tastenfall& fall : faelle)
            EXPECT_EQ(tv.angekommen(fall.notation), fall.erwartet) << fall.notation;
    };
    rufe("setxkbmap us && xkbcomp $DISPLAY - >$XDG_RUNTIME_DIR/vorher 2>/dev/null");
    pruefe(kAufJedemLayout);
    pruefe(kUs);
    const std::string mehrAlsFreieTasten = "абвгдежзийклмнопрстуфхцчшщъыьэюя";
    std::string zeichen;
    std::istringstream zeilen(tv.angekommen(mehrAlsFreieTasten));
    for (std::string zeile; zeilen >> zeile;)
        if (zeile[0] == '+') zeichen += zeile.substr(zeile.find('=') + 1);
    EXPECT_EQ(zeichen, mehrAlsFreieTasten);
    rufe("xkbcomp $DISPLAY - 2>/dev/null | cmp - $XDG_RUNTIME_DIR/vorher");
    rufe("setxkbmap de");
    pruefe(kAufJedemLayout);
    pruefe(kDe);
    rufe("setxkbmap us");
}

TEST_F(Fernsteuerungstest, LocksAndHeldKeysOfTheUserDoNotMatter) {
    Standin tv(fernsteuerung, "Fernsehen");
    ASSERT_TRUE(gefunden("Fernsehen") && aktiviert("Fernsehen"));
    rufe("xdotool key Caps_Lock keydown shift keydown ctrl");
    ASSERT_TRUE(tv.warteAuf("+Control_L/Shift/Lock"));
    EXPECT_EQ(tv.angekommen("aTä"),
              "-Shift_L/Shift/Lock/Ctrl -Control_L/Lock/Ctrl "
              "+a -a +Shift_L +T/Shift -T/Shift -Shift_L/Shift +adiaeresis=ä -adiaeresis=ä ");
    rufe("xdotool key b");
    EXPECT_TRUE(tv.warteAuf("-B/Lock")) << "the lock is back";
    EXPECT_EQ(tv.angekommen("{CAPSLOCK}a"), "+Caps_Lock -Caps_Lock/Lock +a -a ");
    rufe("xdotool key c");
    EXPECT_TRUE(tv.warteAuf("-c")) << "the string has switched it off";
}

TEST_F(Fernsteuerungstest, FindsActivatesAndRestoresWindows) {
    EXPECT_FALSE(fernsteuerung.aktivieren("Radio Süd"));
    Standin sued(fernsteuerung, "Radio Süd - Kanal 1", "--after 0.3");
    Standin kurz(fernsteuerung, "Radio", "--maximised 1");
    ASSERT_TRUE(gefunden("radio süd - KANAL 1") && gefunden("Radio"));
    EXPECT_EQ(fernsteuerung.fensterNachTitel("Radio Süd"), 0u) << "only a beginning";
    EXPECT_EQ(fernsteuerung.fensterNachTitel(""), 0u);
    EXPECT_FALSE(fernsteuerung.aktivieren(""));

    ASSERT_TRUE(aktiviert("radio süd"));
    EXPECT_TRUE(sued.warteAuf("focus in"));
    ASSERT_TRUE(aktiviert("Radio")) << "the exact title goes before a beginning";
    EXPECT_TRUE(sued.warteAuf("focus out"));

    const Fensterhandle fenster = fernsteuerung.fensterNachTitel("Radio");
    ASSERT_TRUE(kurz.warteAuf("state maximised"));
    fernsteuerung.zeigeNormal(fenster);
    EXPECT_TRUE(kurz.warteAuf("state normal"));
    rufe("xdotool windowminimize " + std::to_string(fenster));
    ASSERT_TRUE(kurz.warteAuf("state minimised"));
    kurz.vergiss();
    fernsteuerung.zeigeNormal(fenster);
    EXPECT_TRUE(kurz.warteAuf("state normal"));
    fernsteuerung.zeigeNormal(fenster + 12345);  // gone: no error
}

}  // namespace
}  // namespace wendel

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QApplication anwendung(argc, argv);
    return RUN_ALL_TESTS();
}
