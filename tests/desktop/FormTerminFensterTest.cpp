// The editor and its window without a window manager: access keys of the controls, what the fields start with
// and keep, the checks in their order, what comes of the record. Real keys, the program's end and the lock of
// the list behind it are editor.py's.

#include "desktop/FormTerminFenster.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <functional>
#include <set>

#include "desktop/Fensterhilfe.h"
#include "desktop/QtText.h"
#include "support/Fakes.h"
#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

class TerminFensterTest : public testing::Test {
  protected:
    TerminFensterTest() { fenster.setzeForm(form); }

    // Opens the editor on the record, does that in its loop and comes back when the dialog is gone.
    bool bearbeite(TerminZeiger& termin, const std::function<void()>& handlung) {
        QTimer::singleShot(0, &fenster, handlung);
        return form.ShowAndGetTermin(termin);
    }
    void bestaetige(const Termineingabe& eingabe) {
        fenster.setzeEingabe(eingabe);
        form.cmdOK_Click();
    }

    FakeUhr uhr;  // 24 December 2012, 20:00:00
    FakeMeldungen meldungen;
    QWidget liste;
    FormTerminFenster fenster{liste};
    FormTermin form{uhr, meldungen, fenster};
};

TEST_F(TerminFensterTest, EveryCaptionHasAnAccessKeyOfItsOwn) {
    fenster.setzeEingabe({});
    QStringList texte;
    for (const QAbstractButton* knopf : fenster.findChildren<QAbstractButton*>()) {
        if (knopf->text().contains(u'&')) texte << knopf->text();
    }
    for (const QLabel* label : fenster.findChildren<QLabel*>()) {
        if (label->buddy() != nullptr) texte << label->text();
    }
    std::set<QChar> zugriffstasten;
    for (const QString& text : texte)
        zugriffstasten.insert(text.at(text.indexOf(u'&') + 1).toLower());
    EXPECT_EQ(zugriffstasten.size(), 9u) << texte.join(' ').toStdString();
}

TEST_F(TerminFensterTest, ShowsTheRecordAndGivesBackWhatTheUserMadeOfIt) {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = zeit("2013-03-01 07:05");
    termin->Intervall = intervall::kWoechentlich;
    const auto bestaetigt = [&](const std::string& text, const std::function<void(QPlainTextEdit&)>& tippen) {
        termin->WeckText = text;
        EXPECT_TRUE(bearbeite(termin, [&] {
            EXPECT_EQ(kind<QLineEdit>(fenster, "TextDatum").text() + " " +
                          kind<QLabel>(fenster, "LabelWochentag").text() + " " +
                          kind<QLineEdit>(fenster, "TextUhrzeit").text(),
                      "01.03.2013 Freitag 07:05");
            EXPECT_TRUE(kind<QRadioButton>(fenster, "OptionWoechentlichWiederkehrend").isChecked());
            tippen(kind<QPlainTextEdit>(fenster, "TextInhalt"));
            kind<QPushButton>(fenster, "cmdOK").click();
        }));
        return termin->WeckText;
    };
    const auto nichts = [](QPlainTextEdit&) {};
    const auto ausrufezeichen = [](QPlainTextEdit& feld) {
        feld.moveCursor(QTextCursor::End);
        feld.insertPlainText("!");
    };
    // A foreign program's line ends stay as long as nobody edits the text.
    for (const std::string& text :
         {std::string("Oma\r\nanrufen"), std::string("a\nb\rc\u2028d"), std::string("20\u00a0Uhr")})
        EXPECT_EQ(bestaetigt(text, nichts), text);
    EXPECT_EQ(bestaetigt("Oma\r\n\r\num 20\u00a0Uhr", ausrufezeichen), "Oma\r\n\r\num 20\u00a0Uhr!");
}

TEST_F(TerminFensterTest, NewEntryStartsWithThePresentMinuteAndIsMadeByOk) {
    uhr.vor(50);
    TerminZeiger neu;
    EXPECT_FALSE(bearbeite(neu, [&] { form.cmdCancel_Click(); }));
    EXPECT_FALSE(neu || form.offen() || fenster.isVisible());
    EXPECT_TRUE(bearbeite(neu, [&] {
        EXPECT_EQ(fenster.eingabe(), (Termineingabe{"24.12.2012", "20:00", "", 0}));
        form.cmdOK_Click();
    }));
    EXPECT_EQ(alsZeit(neu->WeckZeit), "2012-12-24 20:00:00");
    EXPECT_TRUE(neu->Aktiv && neu->WeckText.empty() && neu->Art == Terminart::Eigener);
    EXPECT_EQ(form.Tag(), "ok");
    const std::string lang(65540, 'x');  // more than the file can hold
    bearbeite(neu, [&] { bestaetige({"24.12.2012", "20:15", "  " + lang, 1}); });
    EXPECT_EQ(neu->WeckText, lang.substr(0, 65535));
}

TEST_F(TerminFensterTest, EditChangesMomentTextAndRepetitionOnly) {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = zeit("2013-03-01 07:05:33");
    termin->Intervall = 7;  // unknown to the options: once
    const TerminZeiger derselbe = termin;
    EXPECT_TRUE(bearbeite(termin, [&] {
        EXPECT_EQ(fenster.eingabe(), (Termineingabe{"01.03.2013", "07:05", "", 0}));
        bestaetige({" 1.4.13", "7:06:07 ", "  Zahnarzt\r\n ", intervall::kWoechentlich});
    }));
    EXPECT_EQ(alsZeit(derselbe->WeckZeit), "2013-04-01 07:06:07");
    EXPECT_EQ(derselbe->WeckText, "Zahnarzt\r\n") << "only blanks are cut";
    EXPECT_TRUE(derselbe->Intervall == 3 && !derselbe->Aktiv);
}

TEST_F(TerminFensterTest, ComplainsAboutTheDateThenTheTimeAndStaysOpen) {
    const FakeMeldungen::Kasten datum{"Das eingegebene Datum ist ungültig.", 16, "Datum"};
    const FakeMeldungen::Kasten uhrzeit{"Die eingegebene Uhrzeit ist ungültig.", 16, "Uhrzeit"};
    QString cursor;
    TerminZeiger neu;
    EXPECT_FALSE(bearbeite(neu, [&] {
        cursor += fenster.focusWidget()->objectName();
        for (const auto& [tag, zeit] :
             {std::pair("31.02.2013", ""), {"28.02.2013", ""}, {"28.02.2013", "20.15"}}) {
            bestaetige({tag, zeit, "Text", 0});
            cursor += " " + fenster.focusWidget()->objectName();
        }
        EXPECT_TRUE(fenster.isVisible());
        form.cmdCancel_Click();
    }));
    EXPECT_FALSE(neu);
    EXPECT_EQ(meldungen.gezeigt, (std::vector<FakeMeldungen::Kasten>{datum, uhrzeit, uhrzeit}));
    EXPECT_EQ(cursor, "TextUhrzeit TextDatum TextUhrzeit TextUhrzeit");
}

}  // namespace
}  // namespace wendel
