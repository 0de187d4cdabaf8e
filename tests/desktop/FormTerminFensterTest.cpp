// The editor's window without a window manager: access keys of its controls, and what its fields keep. Real
// keys, the program's end and the lock of the list behind it are editor.py's.

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
    termin->WeckZeit = DateSerial(2013, 3, 1) + TimeSerial(7, 5, 0);
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

}  // namespace
}  // namespace wendel
