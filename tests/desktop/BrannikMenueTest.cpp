// The windows of the tray menu over the real forms, without a window manager: what is painted where at every
// scale and in both themes, mouse, keys, timers and context menu, what a screen reader walks through, and
// that a command may discard the menu from inside any of these.

#include <QAccessible>
#include <QAction>
#include <QImage>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include "desktop/Desktopmenues.h"
#include "desktop/Fensterhilfe.h"
#include "desktop/Menuemaler.h"
#include "desktop/PicPaint.h"
#include "desktop/QtText.h"
#include "traymenu/Menueprobe.h"

namespace wendel {
namespace {

using namespace Menuemasse;

constexpr qreal kMassstaebe[] = {1, 1.25, 1.5, 2, 3};

QPalette dunklePalette() {
    QPalette farben(QColor(0x3a3d42), QColor(0x2d2f33));
    farben.setColor(QPalette::ButtonText, QColor(0xf0f0f0));
    farben.setColor(QPalette::HighlightedText, Qt::white);
    return farben;
}

QImage gemalt(QWidget& widget, qreal massstab) {
    QImage bild(widget.size() * massstab, QImage::Format_RGB32);
    bild.setDevicePixelRatio(massstab);
    widget.render(&bild);
    return bild;
}

// Whether anything stands out there from the colour that each line of pixels has at its beginning.
bool bemalt(const QImage& bild, int x, int breite, const Rechteck& zeile) {
    const qreal m = bild.devicePixelRatio();
    for (int py = qMax(0, qCeil((zeile.oben + 3) * m)); py < qFloor((zeile.unten() - 1) * m); ++py) {
        const QColor grund = bild.pixel(qCeil(2 * m), py);
        for (int px = qCeil(x * m); px < qFloor((x + breite) * m); ++px) {
            const QColor hier = bild.pixel(px, py);
            if (std::abs(qGray(hier.rgb()) - qGray(grund.rgb())) + std::abs(hier.red() - grund.red()) > 40)
                return true;
        }
    }
    return false;
}

class BrannikMenueTest : public Menueprobe {
  protected:
    BrannikMenueTest() {
        markierungen = {.favoriten = ";30;", .erinnerungen = ";30;31;"};
        aktuell = liste(5, 30);
        aktuell[2].Titel = std::string(300, 'W'), aktuell[3].Bewertung = 0, aktuell[4].Titel = "";
    }
    ~BrannikMenueTest() override {
        ModulBrannikMenue::UnloadAllMenues(geladene);
        QApplication::setPalette(QPalette());
    }

    FormBrannikMenue& oeffne() {
        FormBrannikMenue& neu = Menueinhalt::BuildTrayMenu(
            echt, {ab2200, um2015, gleich, aktuell, "Fennow", 600, mitTipp ? &tipp : nullptr});
        neu.ShowObermenue({700, 590});
        EXPECT_TRUE(warte([&] { return desktop.aktivesFenster() == neu.hwnd(); }));
        return neu;
    }
    static QWidget& fenster(const FormBrannikMenue& form) { return *QWidget::find(form.hwnd()); }
    static PicPaint& flaeche(const FormBrannikMenue& form) {
        return static_cast<PicPaint&>(kind<QWidget>(fenster(form), "PicPaint"));
    }
    static QPoint zeile(const FormBrannikMenue& form, int index) {
        return Menuemaler::qtRechteck(flaeche(form).zeilen().at(static_cast<std::size_t>(index - 1)).rechteck)
            .center();
    }
    static void klicke(const FormBrannikMenue& form, int index, Qt::MouseButton knopf = Qt::LeftButton) {
        QTest::mouseClick(&flaeche(form), knopf, {}, zeile(form, index));
    }

    Desktopmenues desktop{""};
    Menuekontext echt{desktop, aktionen, geladene, sender, markierungen};
};

// Rows, columns, icons, arrows and highlight; the gaps between columns stay empty whatever the titles are.
TEST_F(BrannikMenueTest, PaintsEveryColumnInItsPlaceAtEveryScaleAndInBothThemes) {
    struct Fall {
        const char* name;
        int zeile;
        bool symbol, zeit, text, pfeil;
    } const faelle[] = {
        {"head", 1, false, true, true, true},      {"empty head", 2, false, true, true, false},
        {"favourite", 4, true, true, true, false}, {"reminder", 5, true, true, true, false},
        {"long", 6, true, true, true, false},      {"unrated", 7, false, true, true, false},
        {"no title", 8, true, true, false, false}, {"action", 9, false, true, true, false},
    };
    for (const QPalette& farben : {QPalette(), dunklePalette()}) {
        QApplication::setPalette(farben);
        const FormBrannikMenue& menue = oeffne();
        for (const int index : {4, 5})
            QTest::mouseMove(&flaeche(menue), zeile(menue, index));
        const Menuefarben soll = Menuemaler::farben(QApplication::palette());
        const Menuespalten s = menuespalten(
            menue.MenuePunkte(), sender,
            [&](const std::string& t) { return Menuemaler::textbreite(flaeche(menue).font(), t); },
            kTippBreite, flaeche(menue).width());
        for (const qreal massstab : kMassstaebe) {
            const QImage bild = gemalt(flaeche(menue), massstab);
            for (const Fall& fall : faelle) {
                SCOPED_TRACE(fall.name + std::string(" x ") + std::to_string(massstab));
                const Zeilenbild& z = flaeche(menue).zeilen().at(static_cast<std::size_t>(fall.zeile - 1));
                const Rechteck& r = z.rechteck;
                EXPECT_EQ(bemalt(bild, s.symbolX, kSymbolgroesse, r), fall.symbol);
                EXPECT_EQ(bemalt(bild, s.zeitX, s.zeitbreite, r), fall.zeit);
                EXPECT_EQ(bemalt(bild, s.textX, 20, r), fall.text);
                EXPECT_EQ(bemalt(bild, s.rechts, s.breite - s.rechts - 2, r), fall.pfeil);
                if (z.sender.text.empty()) continue;
                EXPECT_TRUE(bemalt(bild, s.senderX, s.senderbreite, r));
                EXPECT_FALSE(bemalt(bild, s.zeitX - 5, 4, r)) << "between icon and time";
                EXPECT_FALSE(bemalt(bild, s.senderX - 5, 4, r)) << "between time and channel";
                EXPECT_FALSE(bemalt(bild, s.textX - 4, 3, r)) << "between channel and title";
                const QPoint letzte(qRound(2 * massstab), qRound(r.unten() * massstab) - 1);
                EXPECT_EQ(bild.pixel(letzte) & 0xFFFFFF,
                          fall.zeile == 5 ? soll.hervorhebungUnten : soll.flaecheUnten);
            }
        }
    }
}

TEST_F(BrannikMenueTest, EveryIconIsDrawnForEveryScaleAndNoTwoAreAlike) {
    Menuebilder bilder("");
    std::vector<QImage> alle;
    for (const char* name :
         {"favorit", "erinnerung", "bewertung1", "bewertung2", "bewertung3", "bewertung4", "bewertung5"}) {
        for (const qreal massstab : kMassstaebe) {
            const QSize soll = QSize(kSymbolgroesse, kSymbolgroesse) * massstab;
            EXPECT_TRUE(bilder.symbol(name).availableSizes().contains(soll)) << name << massstab;
        }
        alle.push_back(bilder.symbol(name).pixmap(16).toImage());
        EXPECT_EQ(std::count(alle.begin(), alle.end(), alle.back()), 1) << name;
    }
    EXPECT_TRUE(bilder.symbol("bewertung6").isNull());
}

TEST_F(BrannikMenueTest, TheTipsWritingIsReadOnTheShippedBitmapAndOnTheUsersOwn) {
    QTemporaryDir ordner;
    QImage eigenes(300, 100, QImage::Format_RGB32);
    eigenes.fill(0xfff8f0d8);
    ASSERT_TRUE(eigenes.save(ordner.filePath("WendelTTP.bmp")));
    Menuebilder mitgeliefert(""), eigene(ordner.path().replace('/', '\\').toStdString() + "\\");
    ASSERT_FALSE(mitgeliefert.tippbild(1).bild.isNull()) << "the build makes it";
    for (const qreal massstab : kMassstaebe) {
        EXPECT_EQ(mitgeliefert.tippbild(massstab).bild.height(), qRound(kTippHoehe * massstab));
        EXPECT_FALSE(mitgeliefert.tippbild(massstab).hell);
        EXPECT_TRUE(eigene.tippbild(massstab).hell);
    }
    QWidget& panel = kind<QWidget>(fenster(oeffne()), "PictureTagestipp");
    EXPECT_TRUE(bemalt(gemalt(panel, 1), 12, 100, {0, 0, panel.width(), kTippHoehe}));
    EXPECT_EQ(panel.accessibleName(), "Tagestipp: 20:15 Uhr ZDF, Ein Fest");
}

TEST_F(BrannikMenueTest, RestingOnAHeadOpensItAndTheTimersRunOnlyWhileShown) {
    FormBrannikMenue& menue = oeffne();
    const FormBrannikMenue& unten = unter(menue, 1);
    QTest::mouseMove(&flaeche(menue), zeile(menue, 1));
    EXPECT_EQ(menue.IsSelected(), 1);
    ASSERT_TRUE(warte([&] { return unten.Visible() && desktop.aktivesFenster() == unten.hwnd(); }));
    EXPECT_EQ(fenster(unten).windowHandle()->transientParent(), fenster(menue).windowHandle());
    QTest::mouseMove(&kind<QWidget>(fenster(menue), "PictureTagestipp"), {30, 30});
    ASSERT_TRUE(warte([&] { return !unten.Visible(); }));
    ModulBrannikMenue::HideAllMenues(geladene);
    EXPECT_FALSE(fenster(menue).isVisible());
    for (const FormBrannikMenue* form : geladene.formen()) {
        for (const char* name : {"TimerEinblendung", "TimerUnload"})
            EXPECT_FALSE(kind<QTimer>(fenster(*form), name).isActive()) << name;
    }
}

TEST_F(BrannikMenueTest, KeysReachTheForm) {
    FormBrannikMenue& menue = oeffne();
    struct Fall {
        const char* name;
        Qt::Key taste;
        Qt::KeyboardModifiers dazu;
        int danach;  // the highlighted entry
    } const faelle[] = {
        {"down", Qt::Key_Down, {}, 1},
        {"end", Qt::Key_End, {}, 12},
        {"letter", Qt::Key_E, {}, 11},
        {"no letter", Qt::Key_F, Qt::ControlModifier, 11},
        {"capital", Qt::Key_W, Qt::ShiftModifier, 6},
        {"up", Qt::Key_Up, {}, 5},
        {"home", Qt::Key_Home, {}, 1},
        {"not the menu", Qt::Key_F10, {}, 1},
        {"into", Qt::Key_Right, {}, 1},
        {"back", Qt::Key_Left, {}, 1},
    };
    for (const Fall& fall : faelle) {
        QTest::keyClick(fenster(menue).windowHandle(), fall.taste, fall.dazu);
        EXPECT_EQ(menue.IsSelected(), fall.danach) << fall.name;
        EXPECT_EQ(unter(menue, 1).Visible(), std::string(fall.name) == "into") << fall.name;
    }
    QTest::keyClick(fenster(menue).windowHandle(), Qt::Key_End);
    fenster(menue).close();
    EXPECT_FALSE(menue.Visible()) << "closed by the window manager";
}

// The command discards the whole tree while the toolkit is still in the event that brought it.
TEST_F(BrannikMenueTest, ACommandMayDiscardTheMenuFromInsideEveryWayToGiveIt) {
    const auto waehle = [](FormBrannikMenue& menue, const char* name) {
        klicke(menue, 4, Qt::RightButton);
        kind<QAction>(fenster(menue), name).trigger();
    };
    struct Fall {
        const char* name;
        std::function<void(FormBrannikMenue&)> weg;
        const char* ruf;
    } const faelle[] = {
        {"click", [](auto& m) { klicke(m, 4); }, "OpenSendungDBPos=30;"},
        {"enter",
         [](auto& m) {
             QTest::keyClick(fenster(m).windowHandle(), Qt::Key_End),
                 QTest::keyClick(fenster(m).windowHandle(), Qt::Key_Return);
         },
         "Wendel;beenden;"},
        {"tip",
         [](auto& m) { QTest::mouseClick(&kind<QWidget>(fenster(m), "PictureTagestipp"), Qt::LeftButton); },
         "OpenSendungDBPos=77;"},
        {"show", [&](auto& m) { waehle(m, "MenueAnzeigen"); }, "OpenSendungDBPos=30;"},
        {"remind", [&](auto& m) { waehle(m, "MenueErinnern"); }, "AddTerminDBPos=30;nachErinnern;"},
        {"on TV", [&](auto& m) { waehle(m, "MenueImTVZeigen"); }, "TV zdf;"},
        {"screen reader",
         [](auto& m) {
             QAccessible::queryAccessibleInterface(&flaeche(m))
                 ->child(9)
                 ->actionInterface()
                 ->doAction(QAccessibleActionInterface::pressAction());
         },
         "Wendel;"},
    };
    aktionen.kannTV = true;
    aktionen.beimRuf = [this] { ModulBrannikMenue::UnloadAllMenues(geladene); };
    for (const Fall& fall : faelle) {
        aktionen.rufe.clear();
        fall.weg(oeffne());
        EXPECT_EQ(aktionen.rufe, fall.ruf) << fall.name;
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty()) << "nothing stays behind";
}

TEST_F(BrannikMenueTest, AScreenReaderWalksTheEntries) {
    FormBrannikMenue& menue = oeffne();
    QAccessibleInterface& zugang = *QAccessible::queryAccessibleInterface(&flaeche(menue));
    EXPECT_EQ(zugang.role(), QAccessible::PopupMenu);
    ASSERT_EQ(zugang.childCount(), 12);
    QTest::mouseMove(&flaeche(menue), zeile(menue, 4));
    for (int i = 0; i < 12; ++i) {
        QAccessibleInterface& eintrag = *zugang.child(i);
        EXPECT_EQ(eintrag.role(), QAccessible::MenuItem);
        EXPECT_FALSE(eintrag.text(QAccessible::Name).isEmpty());
        EXPECT_EQ(eintrag.state().focused, i == 3);
        EXPECT_EQ(zugang.indexOfChild(&eintrag), i);
        EXPECT_EQ(zugang.childAt(eintrag.rect().center().x(), eintrag.rect().center().y()), &eintrag);
    }
    EXPECT_EQ(zugang.focusChild(), zugang.child(3));
    EXPECT_EQ(zugang.child(3)->text(QAccessible::Name), "20:15 ZDF, Titel 30");
    EXPECT_TRUE(zugang.child(1)->state().disabled);
    zugang.child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(zugang.child(0)->state().expanded);
    EXPECT_TRUE(zugang.child(2)->state().collapsed);
}

TEST_F(BrannikMenueTest, WindowsWithoutRowsAndWithManyAreShown) {
    for (const int anzahl : {0, 200}) {
        auto neu = std::make_unique<FormBrannikMenue>(echt);
        for (int i = 0; i < anzahl; ++i) {
            auto punkt = std::make_unique<cMenuePunkt>();
            punkt->Text = std::string(static_cast<std::size_t>(i + 100), 'x');
            neu->anhaengen(std::move(punkt));
        }
        neu->ShowObermenue({5000, -5000});  // beside every monitor: the nearest one counts
        EXPECT_EQ(neu->fenster().hoehe, anzahl * kZeilenhoehe + 2 * (kRand + kInnenrand));
        EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(fenster(*neu).pos()));
        const QImage bild = gemalt(flaeche(*neu), 1);
        EXPECT_EQ(bemalt(bild, 30, 50, {0, anzahl * kZeilenhoehe - 18, 100, 20}), anzahl > 0);
    }
}

}  // namespace
}  // namespace wendel
