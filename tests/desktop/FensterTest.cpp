// The boxes by their style numbers, without a window manager. The notice is tested by its keys and by what a
// screen reader is told (tastatur.py, zugang.py).

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

#include "desktop/Fensterhilfe.h"
#include "desktop/Meldungsfenster.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

struct Boxfall {
    int stil;
    QMessageBox::Icon symbol;
    std::vector<std::pair<const char*, Antwort>>
        knoepfe;  // the first is the default, the last closes the box
};
const std::pair<const char*, Antwort> kOk{"&OK", Antwort::Ok}, kAbbrechen{"&Abbrechen", Antwort::Abbrechen},
    kWiederholen{"&Wiederholen", Antwort::Wiederholen}, kJa{"&Ja", Antwort::Ja},
    kNein{"&Nein", Antwort::Nein};
const Boxfall kBoxen[] = {
    {48, QMessageBox::Warning, {kOk}},
    {64, QMessageBox::Information, {kOk}},
    {52, QMessageBox::Warning, {kJa, kNein}},
    {65589, QMessageBox::Warning, {kWiederholen, kAbbrechen}},  // in front of all
    {35, QMessageBox::Question, {kJa, kNein, kAbbrechen}},
};

TEST(BoxTest, HasTheIconAndButtonsOfItsStyleAndGivesTheirAnswers) {
    FakeFenstersystem fenster;
    Meldungsfenster meldungen(fenster);
    for (const Boxfall& fall : kBoxen) {
        SCOPED_TRACE(fall.stil);
        const auto beantworte = [&](const std::function<void(QMessageBox&)>& handlung) {
            QTimer::singleShot(0, [&] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(box, nullptr);
                handlung(*box);
            });
            return meldungen.meldung("Zeile 1\r\nZeile <2>", fall.stil, "Titel");
        };
        for (const auto& [aufschrift, erwartet] : fall.knoepfe) {
            const Antwort antwort = beantworte([&, text = aufschrift](QMessageBox& box) {
                EXPECT_EQ(box.windowTitle() + box.text(), "TitelZeile 1\nZeile <2>");
                EXPECT_TRUE(box.textFormat() == Qt::PlainText && box.icon() == fall.symbol);
                const auto knoepfe = box.buttons();
                EXPECT_EQ(knoepfe.size(), static_cast<qsizetype>(fall.knoepfe.size()));
                const auto knopf = std::ranges::find(knoepfe, text, &QAbstractButton::text);
                if (knopf != knoepfe.end()) return (*knopf)->click();
                ADD_FAILURE() << text;
                box.done(0);
            });
            EXPECT_EQ(antwort, erwartet) << aufschrift;
        }
        const auto vorgabe = beantworte([](QMessageBox& box) { box.defaultButton()->click(); });
        EXPECT_EQ(vorgabe, fall.knoepfe.front().second);
        EXPECT_EQ(beantworte([](QMessageBox& box) { box.done(0); }), fall.knoepfe.back().second);
    }
}

}  // namespace
}  // namespace wendel

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication anwendung(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
