// How menu windows behave: the hover countdown, sub-menus, keys, and the rule that closes them all.

#include "traymenu/FormBrannikMenue.h"

#include "traymenu/Menueprobe.h"

namespace wendel {
namespace {

using ::testing::ElementsAre;
using ::testing::Field;

class MenuHover : public Menueprobe {
  protected:
    // The mouse comes to that row, and so many ticks of the top window follow.
    void maus(FormBrannikMenue& form, int zeile, int ticks, int x = 50) {
        form.PicPaint_MouseMove(x, 2 + 20 * (zeile - 1) + 10);
        ticken(ticks);
    }
    void ticken(int ticks) {
        while (ticks-- > 0)
            menue.TimerEinblendung_Timer();
    }
    // The heads whose sub-menus are open, and the highlighted entry: "1>3".
    std::string zustand() {
        std::string offen;
        for (const std::size_t kopf : {1U, 2U, 3U, 7U})
            if (unter(menue, kopf).Visible()) offen += std::to_string(kopf);
        return offen + ">" + std::to_string(menue.IsSelected());
    }
    FormBrannikMenue& menue = zeige();
};

TEST_F(MenuHover, OpensASubMenuOnTheThirdTick) {
    maus(menue, 1, 2);
    maus(menue, 1, 0, 60);
    EXPECT_EQ(zustand(), ">1");
    EXPECT_TRUE(view(menue).gemalt.back().oben == 5 && view(menue).gemalt.back().schrift == 7)
        << "highlighted";
    ticken(1);
    EXPECT_EQ(zustand(), "1>1") << "moving within the entry does not start anew";
    FormBrannikMenue& kind = unter(menue, 1);
    EXPECT_EQ(menue.ChildHwnd(), kind.hwnd());
    EXPECT_EQ(kind.fenster().rechts(), menue.fenster().links) << "no room on the right";
    EXPECT_EQ(kind.fenster().oben, menue.fenster().oben + 81 + 2);
    ticken(5);
    EXPECT_EQ(menue.EinblendungsCounter(), -1);
}

TEST_F(MenuHover, SwitchesSiblingsAndRepaintsThem) {
    maus(menue, 1, 3);
    maus(menue, 3, 2);
    EXPECT_EQ(zustand(), "1>3");
    view(menue).gemalt.clear();
    ticken(1);
    EXPECT_EQ(zustand(), "3>3");
    EXPECT_THAT(view(menue).gemalt, ElementsAre(Field(&Zeilenbild::index, 1), Field(&Zeilenbild::index, 3)));
    EXPECT_EQ(menue.ChildHwnd(), unter(menue, 3).hwnd());
    maus(menue, 2, 3);
    EXPECT_EQ(zustand(), ">2") << "an empty sub-menu never opens";
    EXPECT_EQ(menue.ChildHwnd(), 0U);
    maus(menue, 7, 3);
    maus(menue, 9, 0);
    EXPECT_EQ(zustand(), "7>0") << "below the last entry";
    ticken(3);
    EXPECT_EQ(zustand(), ">0");
    EXPECT_EQ(umgebung.aktiv, menue.hwnd()) << "the keyboard came back";
}

TEST_F(MenuHover, KeepsTheSubMenuThatTheMouseHasReached) {
    maus(menue, 1, 3);
    maus(menue, 2, 2);  // on the way across
    maus(unter(menue, 1), 2, 5);
    EXPECT_EQ(zustand(), "1>1");
    EXPECT_EQ(unter(menue, 1).IsSelected(), 2);
    maus(menue, 1, 0);
    EXPECT_EQ(unter(menue, 1).IsSelected(), 0);
}

TEST_F(MenuHover, OverTheTipClosesSubMenus) {
    maus(menue, 1, 3);
    menue.PictureTagestipp_MouseMove();
    EXPECT_TRUE(view(menue).bild.tippHervorgehoben);
    ticken(3);
    EXPECT_EQ(zustand(), ">0");
    for (const int zeile : {1, 9}) {
        menue.PictureTagestipp_MouseMove();
        maus(menue, zeile, 0);
        EXPECT_FALSE(view(menue).bild.tippHervorgehoben) << zeile;
    }
}

TEST_F(MenuHover, SkipsWhatIsHiddenOrALine) {
    menue.MenuePunkte()[0]->Visible = false;
    menue.MenuePunkte()[1]->Trenner = true;
    menue.ShowObermenue({1900, 1030});
    EXPECT_EQ(view(menue).bild.zeilen.size(), 7U);
    maus(menue, 2, 0);
    EXPECT_EQ(menue.IsSelected(), 3);
    maus(menue, 1, 0);
    EXPECT_EQ(menue.IsSelected(), 0);
}

class MenuKeys : public MenuHover {
  protected:
    // A letter per key: up, down, left, right, first, last, enter, escape, menu; "=" and a character typed.
    std::string tasten(FormBrannikMenue& form, const std::string& folge) {
        static const std::string kTasten = "udlrhecxm";
        for (std::size_t i = 0; i < folge.size(); ++i) {
            if (folge[i] == '=') {
                form.PicPaint_KeyDown(Menuetaste::Zeichen, folge.substr(++i, 1));
            } else {
                form.PicPaint_KeyDown(static_cast<Menuetaste>(kTasten.find(folge[i])));
            }
        }
        std::string pfad;
        for (const std::size_t kopf : {1U, 3U, 7U}) {
            if (unter(menue, kopf).Visible()) pfad = "/" + std::to_string(unter(menue, kopf).IsSelected());
        }
        if (menue.Visible() && view(menue).bild.tippHervorgehoben) pfad += "tip";
        return (menue.Visible() ? "" : "zu") + std::to_string(menue.IsSelected()) + pfad + aktionen.rufe;
    }
};

TEST_F(MenuKeys, WalkTheTree) {
    const char* faelle =
        // Up and down begin at the near end and go round, with the tip above the first row.
        "d:1 u:8 du:0tip duu:8 uddd:2 ehh:1 duc:zu0OpenSendungDBPos=77; c:0 ddddc:zu4OpenSendungDBPos=30; "
        // Into a sub-menu, round in it, out of it; not into an empty one.
        "dr:1/1 dc:1/1 drd:1/2 drdd:1/1 drdl:1 drx:1 drxx:zu1 dl:1 ddrc:2 er:8 "
        // A letter goes to the next row that begins with it, round, and chooses nothing.
        "=e:7 =h=H=h:1 =b:8 d=z:1 =er=1=1:7/5";
    for (const std::string& fall : Split(faelle, " ")) {
        const std::string folge = Split(fall, ":").front();
        aktionen.rufe.clear();
        menue.ShowObermenue({1900, 1030});
        EXPECT_EQ(folge + ":" + tasten(menue, folge), fall);
    }
}

TEST_F(MenuKeys, WorkWhicheverWindowIsActive) {
    for (const char* zurueck : {"l", "x"}) {
        maus(menue, 1, 3);
        EXPECT_EQ(tasten(unter(menue, 1), zurueck), "1") << zurueck;
        ticken(1);
        EXPECT_EQ(zustand(), ">1") << "stays closed after " << zurueck;
        maus(menue, 9, 3);
    }
    maus(menue, 1, 3);
    EXPECT_EQ(tasten(unter(menue, 1), "d"), "2") << "nothing is selected in what the mouse has opened";
    EXPECT_EQ(umgebung.aktiv, menue.hwnd());
    EXPECT_EQ(tasten(menue, "ur"), "1/1");
    EXPECT_EQ(tasten(menue, "d"), "1/2");
    maus(menue, 1, 0);
    EXPECT_EQ(tasten(menue, ""), "1/2") << "a mouse that rests takes nothing back";
}

TEST_F(MenuKeys, OpenTheContextMenuAtTheRow) {
    tasten(menue, "mdmdddm");
    ASSERT_EQ(view(menue).kontextmenues.size(), 1U) << "of broadcasts only";
    EXPECT_EQ(view(menue).kontextmenues[0].ort, (Punkt{menue.MenueItemX(), 82}));
}

struct MenuClosing : MenuHover {
    void wacht(int ticks) {
        while (ticks-- > 0)
            menue.TimerUnload_Timer();
    }
};

TEST_F(MenuClosing, FollowsTheActiveWindow) {
    wacht(50);
    maus(menue, 1, 3);
    EXPECT_EQ(umgebung.aktiv, unter(menue, 1).hwnd());
    wacht(50);
    EXPECT_TRUE(menue.Visible());
    menue.PicPaint_MouseUp(FormBrannikMenue::kMausRechts, 50, 70);
    umgebung.aktiv = unter(menue, 3).hwnd();  // hidden, so no better than another program's
    wacht(50);
    EXPECT_TRUE(menue.Visible()) << "its context menu is open";
    menue.MenueMenue_Geschlossen();
    wacht(1);
    EXPECT_EQ(zustand(), ">4");
    EXPECT_FALSE(menue.Visible() || view(menue).sichtbar || view(unter(menue, 1)).sichtbar);
    EXPECT_EQ(menue.TimerUnloadInterval() + view(menue).unloadMs + menue.EinblendungsCounter(), 0);
    umgebung.aktiv = unter(menue, 1).hwnd();
    menue.ShowObermenue({1900, 1030});
    EXPECT_EQ(view(menue).einblendungMs, 100) << "shown again without building";
}

TEST_F(MenuClosing, WaitsForADesktopThatActivatesLateButNotForever) {
    umgebung.aktiv = 7;
    wacht(10);
    EXPECT_TRUE(menue.Visible());
    wacht(1);
    EXPECT_FALSE(menue.Visible());
}

TEST_F(MenuClosing, PlacesWindowsOnThePointersMonitor) {
    menue.ShowObermenue({3000, 1020});
    menue.waehlen(7);
    EXPECT_EQ(menue.fenster().rechts(), 3000);
    EXPECT_EQ(unter(menue, 7).fenster().links, 3000);
    EXPECT_EQ(unter(menue, 7).fenster().unten(), 1024);
}

}  // namespace
}  // namespace wendel
