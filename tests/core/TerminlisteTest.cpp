// What the user does in the list and the editor, what may happen meanwhile, and what of it is stored.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"
#include "core/Terminablage.h"

namespace wendel {
namespace {

using testing::ElementsAre;
using Werte = std::vector<GespeicherterTermin>;
using Kasten = FakeMeldungen::Kasten;

const GespeicherterTermin kTee{um(21, 0), "Tee", 0, true}, kBad{um(22, 0), "Bad", 0, true};

struct Liste : testing::Test, Programm {
    // A program that has shown nothing yet, at 20:00, its first row selected.
    void beginne(const Werte& termine) {
        ports.uhr.stelle(um(20, 0));
        ports.dateien.entferne("\\suite\\hinweise.txt");
        setzeTermine(termine);
        starte();
        form().zeileGewaehlt(0);
    }
    // The user in the editor, then OK.
    void imEditor(const std::function<void(Termineingabe&)>& tippen) {
        editor->imDialog = [this, tippen] {
            tippen(editor->eingabe_);
            anwendung->formTermin().cmdOK_Click();
        };
    }
    void neu(const std::string& text) {
        imEditor([text](Termineingabe& e) { e.TextUhrzeit = "22:30", e.TextInhalt = text; });
        form().mnuNeuTermin_Click();
    }
    std::string gewaehlt() {
        const std::int32_t zeile = form().GetSelektierterIndex();
        return zeile ? fenster->zeilen.at(static_cast<std::size_t>(zeile) - 1).text : "-";
    }
    const std::vector<Kasten>& kaesten() { return ports.meldungen.gezeigt; }
};

TEST_F(Liste, MenuKeysAndMouseWorkOnTheSelectedRowOnly) {
    beginne({kTee, kBad});
    int dialoge = 0;
    editor->imDialog = [&] { ++dialoge; };
    for (const int zeile : {9, 1}) {  // there are two
        form().zeileGewaehlt(zeile);
        EXPECT_EQ(fenster->zeileGewaehlt, zeile == 1);
        form().ListViewTermineListe_MouseUp(1);
        form().ListViewTermineListe_MouseUp(2);
        EXPECT_TRUE(form().ListViewTermineListe_KeyPress(13) && form().ListViewTermineListe_KeyDown(46));
        EXPECT_FALSE(form().ListViewTermineListe_KeyPress(46) || form().ListViewTermineListe_KeyDown(13));
        form().ListViewTermineListe_DblClick();
    }
    EXPECT_THAT(fenster->popups, ElementsAre(false, true));
    EXPECT_EQ(dialoge, 2);
    ports.meldungen.antworten = {Antwort::Ja};
    form().mnuLöschen_Click();
    const Kasten frage{"Möchten Sie den markierten Termin wirklich löschen ?", 36, "Termin löschen"};
    EXPECT_THAT(kaesten(), ElementsAre(frage, frage));
    EXPECT_EQ(gewaehlt(), "Tee") << "the row that is left";
    EXPECT_THAT(gespeicherteTermine(), ElementsAre(kTee));
    neu(" Käse → ");
    EXPECT_EQ(gewaehlt(), "Käse →");
    EXPECT_EQ(gespeicherteTermine().back(), (GespeicherterTermin{um(22, 30), "Käse ?", 0, true}));
}

TEST_F(Liste, DeletingRemovesTheFirstOfEqualMomentAndTextAsTheyAreThen) {
    beginne({{um(21, 0), "tee", 0, true}, {um(21, 0), "Tee", 1, true}, {um(21, 0), "Tee", 2, true}});
    form().zeileGewaehlt(2);
    ports.meldungen.antworten = {Antwort::Ja};
    ports.meldungen.imKasten = [&](const Kasten&) { anwendung->DoThis("refreshkonfig"), bis(um(21, 2)); };
    form().TerminLoeschen();
    const GespeicherterTermin zweiter{moment(2012, 12, 25, 21), "Tee", 2, true};
    EXPECT_THAT(gespeicherteTermine(), ElementsAre(GespeicherterTermin{um(21, 0), "tee", 0, false}, zweiter));
}

TEST_F(Liste, EntriesOfTheFavouritesListAndTheLinkLeadToOtherPrograms) {
    tvDaten.markierungen = {{um(20, 30), um(20, 45), 30, "Film", false}, {{}, um(22, 0), 60, "Krimi", true}};
    ports.dateien.lege("\\suite\\kestrin.cfg", "appname=Guide");
    setze(einstellung::kLinkParameter, Variant::text("/setup"));
    beginne({});
    ports.meldungen.antworten = {Antwort::Ja, Antwort::Nein};
    form().TerminBearbeiten();
    form().zeileGewaehlt(1);
    form().TerminLoeschen();
    form().LabelAnzLiveUpdateEinstellungenStartLink_Click();
    ports.starter.ergebnis = 2;
    form().LabelAnzLiveUpdateEinstellungenStartLink_Click();
    const std::string wird =
        " wird über die Favoritenliste im Guide gesteuert.\r\nMöchten Sie jetzt dorthin ";
    const std::string startet = "Die folgende Datei kann nicht gestartet werden:\r\n\"\\suite\\skarvel.exe\"";
    EXPECT_THAT(kaesten(), ElementsAre(Kasten{"Dieser Termin" + wird + "wechseln ?", 68, "Termin"},
                                       Kasten{"Diese Aufzeichnung" + wird + "wechseln ?", 68, "Aufzeichnung"},
                                       Kasten{startet, 48, "Fehler"}));
    const FakeStarter::Start skarvel{"\\suite\\skarvel.exe", "/setup", "\\suite", 1};
    const FakeStarter::Start fennow{"\\suite\\fennow.exe", "/commandtext=\"ShowFavoritenliste\"", "\\suite",
                                    1};
    EXPECT_THAT(ports.starter.gestartet, ElementsAre(fennow, skarvel, skarvel));
}

// From 20:00, when the editor opens, to OK; and what is stored then.
TEST_F(Liste, EditsFollowTheRulesWhateverHappensMeanwhile) {
    const auto nichts = [] {};
    const auto laden = [&] { anwendung->DoThis("refreshkonfig"); };
    const auto feuern = [&] { bis(um(20, 3)); };
    const auto beides = [&] { feuern(), laden(); };
    const auto dortGeloescht = [&] { setzeTermine({}), laden(); };
    const auto text = [](Termineingabe& e) { e.TextInhalt = "neu"; };
    const auto spaeter = [](Termineingabe& e) { e.TextUhrzeit = "21:00"; };
    const auto taeglich = [](Termineingabe& e) { e.Intervall = 1; };
    const auto morgenEinmal = [](Termineingabe& e) { e.TextDatum = "25.12.2012", e.Intervall = 0; };
    const Datum gestern = moment(2012, 12, 23, 20, 2), heute = um(20, 2),
                morgen = moment(2012, 12, 25, 20, 2);
    const GespeicherterTermin tee{heute, "Tee", 0, true}, jedenTag{heute, "Tee", 1, true};
    const struct {
        const char* name;
        GespeicherterTermin vorher;
        std::function<void()> inzwischen;
        std::function<void(Termineingabe&)> tippen;
        GespeicherterTermin nachher;
    } faelle[] = {
        {"deleted elsewhere", kTee, dortGeloescht, text, {um(21, 0), "neu", 0, true}},
        {"fired, text", tee, feuern, text, {heute, "neu", 0, false}},
        {"fired, later", tee, feuern, spaeter, kTee},
        {"fired, then daily", tee, feuern, taeglich, {morgen, "Tee", 1, true}},
        {"moved on", jedenTag, feuern, text, {morgen, "neu", 1, true}},
        {"moved on, reloaded", jedenTag, beides, text, {morgen, "neu", 1, true}},
        {"moved on, once", jedenTag, feuern, morgenEinmal, {morgen, "Tee", 0, true}},
        {"old, then daily", {gestern, "Tee", 0, false}, nichts, taeglich, jedenTag},
        {"seconds go", {um(20, 9, 17), "Tee", 0, true}, nichts, text, {um(20, 9), "neu", 0, true}},
    };
    for (const auto& fall : faelle) {
        beginne({fall.vorher});
        imEditor([&](Termineingabe& eingabe) { fall.inzwischen(), fall.tippen(eingabe); });
        form().TerminBearbeiten();
        EXPECT_THAT(gespeicherteTermine(), ElementsAre(fall.nachher)) << fall.name;
        EXPECT_EQ(gewaehlt(), fall.nachher.weckText) << fall.name;
    }
}

// The clock was set back: an entry gets moment and text of one that was shown. Twice within its minute.
TEST_F(Liste, NewAndEditedEntriesAreNotTakenForOnesThatWereShown) {
    beginne({{um(20, 2), "Tee", 0, true}, {um(20, 30), "Bad", 1, true}});
    bis(um(20, 3));
    beantworte();
    ports.uhr.stelle(um(20, 0));
    imEditor([](Termineingabe& e) { e.TextUhrzeit = "20:02", e.TextInhalt = "Tee"; });
    form().TerminBearbeiten();
    form().TerminNeu();
    starte();
    bis(um(20, 4));
    const std::string zeile = "Sie wollten sich erinnern lassen.\r\nTee";
    EXPECT_EQ(hinweis->text, zeile + "\r\n" + zeile);
}

TEST_F(Liste, ShortTimeAlarmsFireAndAreStoredWithTheMinute) {
    beginne({});
    for (const auto minuten : std::initializer_list<std::int16_t>{0, -7, 10})
        form().KurzZeitWeckerAktivieren(minuten);
    EXPECT_EQ(ports.symbol.tooltip(), "Lomrick: heute 20:00 Kurzzeiterinnerung");
    sekunde();
    EXPECT_EQ(hinweis->text, "Sie wollten sich erinnern lassen.\r\nSie wollten sich erinnern lassen.");
    form().KurzZeitWeckerAktivieren(1);
    EXPECT_EQ(gespeicherteTermine().size(), 3u);
    bis(um(20, 1));
    EXPECT_EQ(gespeicherteTermine().size(), 4u);
}

// A modal loop inside of something that the program waits for would silence reminders.
TEST_F(Liste, ActionsArePutOffWhileSomethingWouldHaveToWaitForThem) {
    const std::pair<std::string, std::function<void()>> lagen[] = {
        {"start", [&] { starte("/m /CREATETERMIN"); }},
        {"tick", [&] { bis(um(20, 1)); }},
        {"database", [&] { anwendung->DoThis("terminupdate"); }},
        {"question", [&] { form().TerminLoeschen(); }}};
    for (const auto& [name, lage] : lagen) {
        beginne({{um(20, 1), "Tee", 1, true}});
        bool verlangt = false;
        const auto verlange = [&] {
            if (std::exchange(verlangt, true)) return;
            form().TerminLoeschen();
            anwendung->DoThis("createtermin");
            for (const char* text : {"eins", "zwei", "eins"})
                form().hauptanwendungRufen(text);
            form().LabelAnzLiveUpdateEinstellungenStartLink_Click();
            ereignisse();
            EXPECT_TRUE(ports.starter.gestartet.empty());
        };
        ports.starter.gestartet.clear();
        tvDaten.sperrnummer = 3078, tvDaten.gesperrt = true;  // a box at once
        ports.meldungen.imKasten = [&](const Kasten&) { verlange(); };
        ports.uhr.beiNachrichten = [&, tick = name == "tick"] {
            if (tick && form().beschaeftigt()) verlange();
        };
        lage();
        tvDaten.gesperrt = false;
        const std::size_t vorher = kaesten().size();
        int dialoge = 0;
        editor->imDialog = [&, name = name] {
            ++dialoge, bis(um(20, 3)), ereignisse();
            std::string gestartet;
            for (const FakeStarter::Start& start : ports.starter.gestartet)
                gestartet += start.parameter + ";";
            EXPECT_EQ(gestartet, "/commandtext=\"zwei\";/commandtext=\"eins\";;") << name;
        };
        sekunde();
        ereignisse();
        ereignisse();
        EXPECT_TRUE(verlangt && dialoge == 1 && kaesten().size() == vorher) << name << " " << dialoge;
        EXPECT_TRUE(hinweis->gezeigt) << name << ": while the editor was open";
    }
}

TEST_F(Liste, OpenEditorComesToTheFrontInsteadOfAnyOtherAction) {
    beginne({kTee});
    form().zeigen();
    editor->imDialog = [&] {
        for (const auto aktion : {&FormWendel::TerminNeu, &FormWendel::TerminBearbeiten,
                                  &FormWendel::TerminLoeschen, &FormWendel::fensterSchliessen,
                                  &FormWendel::cmdAusblenden_Click, &FormWendel::mnuBeenden_Click})
            (form().*aktion)();
        anwendung->DoThis("createtermin");
        EXPECT_EQ(editor->nachVornGeholt * 10 + fenster->nachVornGeholt, 70);
        anwendung->DoThis("showwendel");
        EXPECT_EQ(editor->nachVornGeholt * 10 + fenster->nachVornGeholt, 81);
    };
    form().TerminNeu();
    EXPECT_TRUE(fenster->gezeigt && kaesten().empty());
}

// It may return late: below it may lie a tick that has a box of the database open.
TEST_F(Liste, ConfirmedEntryIsStoredBeforeTheEditorReturns) {
    beginne({kTee});
    for (const auto aktion : {&FormWendel::TerminNeu, &FormWendel::TerminBearbeiten}) {
        editor->imDialog = [&] {
            editor->eingabe_.TextInhalt = "sofort";
            anwendung->formTermin().cmdOK_Click();
            EXPECT_EQ(gespeicherteTermine().back().weckText, "sofort");
            EXPECT_FALSE(anwendung->formTermin().offen());
        };
        (form().*aktion)();
        EXPECT_EQ(gespeicherteTermine().size(), 2U);
    }
}

TEST_F(Liste, EndOfTheProgramEndsEveryActionSilently) {
    for (const auto aktion :
         {&FormWendel::TerminNeu, &FormWendel::TerminBearbeiten, &FormWendel::TerminLoeschen}) {
        beginne({kTee});
        editor->imDialog = [&] { anwendung->beenden(); };
        ports.meldungen.antworten = {Antwort::Ja};
        ports.meldungen.imKasten = [&](const Kasten&) { anwendung->beenden(); };
        (form().*aktion)();
        EXPECT_THAT(gespeicherteTermine(), ElementsAre(kTee));
    }
}

// Not there at the start, and later written by a program that knows an older state.
TEST_F(Liste, FileOfAnotherProgramIsReadWithTheMinuteAndRepeatsNothing) {
    starte();
    const GespeicherterTermin tee{um(20, 1), "Tee", 0, true};
    setzeTermine({tee});
    bis(um(20, 2));
    EXPECT_EQ(hinweis->text, "Sie wollten sich erinnern lassen.\r\nTee");
    beantworte();
    setzeTermine({tee});
    neu("eins");
    bis(um(20, 3));
    EXPECT_FALSE(hinweis->gezeigt);
}

TEST_F(Liste, FailedStoreIsToldOnceShownInTheStatusBarAndTriedAgain) {
    const std::string grund =
        "Die Einstellungen können nicht gespeichert werden. Die Datei \"fennow.cfg\" kann "
        "nicht geschrieben werden.";
    const std::string kasten = "Die Termine konnten nicht gespeichert werden:\r\n" + grund +
                               "\r\nDas Speichern wird jede Minute erneut versucht.";
    beginne({kTee});
    for (const int mal : {1, 2}) {
        setzeTermine({kTee, kBad});  // another program can write; the second time it takes ours away
        ports.dateien.nurLesen = {"\\suite\\fennow.cfg"};
        neu("eins");
        neu("zwei");
        bis(um(20, 2 * mal));
        EXPECT_EQ(kaesten(), std::vector<Kasten>(static_cast<std::size_t>(mal), {kasten, 48, "Termine"}));
        EXPECT_EQ(fenster->status, "Noch nicht gespeichert, neuer Versuch jede Minute: " + grund);
        ports.dateien.nurLesen.clear();
        bis(um(20, 2 * mal + 1));
        EXPECT_EQ(fenster->status, "");
        EXPECT_EQ(gespeicherteTermine().size(), 4u);
    }
    ports.dateien.nurLesen = {"\\suite\\fennow.cfg"};
    ports.meldungen.imKasten = [&](const Kasten&) { form().mnuBeenden_Click(); };
    neu("drei");
    EXPECT_EQ(kaesten().size(), 3u) << "no box on top of the other";
    ports.meldungen.imKasten = nullptr;
    sekunde();
    ereignisse();
    EXPECT_TRUE(kaesten().size() == 4u && fenster->geladen) << "asked and declined";
    ports.dateien.nurLesen.clear();
    form().mnuBeenden_Click();
    EXPECT_EQ(gespeicherteTermine().back().weckText, "drei");
}

// A store that counts as failed gets into the file all the same, by the repair of the next reading.
TEST_F(Liste, EntryOfAFailedStoreThatCameTrueIsNotDoubled) {
    beginne({kTee});
    ports.dateien.scheitert = [&, zerrissen = false](const auto& vorgang, const auto& pfad) mutable {
        if (vorgang != "ueberschreibenAmAnfang" || std::exchange(zerrissen, true)) return false;
        ports.dateien.lege(pfad, "torn");
        return true;
    };
    neu("neu");
    imEditor([](Termineingabe& e) { e.TextInhalt = "anders"; });
    form().TerminBearbeiten();
    EXPECT_EQ(kaesten().size(), 1u);
    EXPECT_THAT(gespeicherteTermine(), ElementsAre(kTee, GespeicherterTermin{um(22, 30), "anders", 0, true}));
}

// An appointment in the file, what became of it and of others here and there, and what both sides make of it.
TEST(Terminablage, ChangesOfBothSidesMeetWithoutLossAndWithoutDoubles) {
    const Datum um20 = um(20, 0), morgen = moment(2012, 12, 25, 20);
    const GespeicherterTermin tee{um20, "Tee", 0, true}, teeAus{um20, "Tee", 0, false},
        taeglich{um20, "Tee", 1, true}, weiter{morgen, "Tee", 1, true}, um19{um(19, 0), "Tee", 1, true},
        hier{um20, "hier", 0, true}, dort{um20, "dort", 0, true};
    const struct {
        const char* name;
        GespeicherterTermin vorher;
        Werte hier, dort, ergebnis;
    } faelle[] = {
        {"new there", tee, {tee}, {kBad, tee}, {tee, kBad}},
        {"new on both sides, equal", tee, {tee, kBad}, {tee, kBad}, {tee, kBad}},
        {"deleted there", tee, {tee, kBad}, {}, {kBad}},
        {"deleted there, fired here", tee, {teeAus}, {}, {}},
        {"deleted there, moved on here", taeglich, {weiter}, {}, {}},
        {"deleted there, edited here", tee, {hier}, {}, {hier}},
        {"deleted here", tee, {}, {tee}, {}},
        {"deleted here, edited there", tee, {}, {dort}, {dort}},
        {"fired here, text there", tee, {teeAus}, {dort}, {{um20, "dort", 0, false}}},
        {"fired here, daily there", tee, {teeAus}, {taeglich}, {weiter}},
        {"moved on here, earlier there", taeglich, {weiter}, {um19}, {um19}},
        {"edited alike", tee, {hier}, {hier}, {hier}},
        {"edited differently", tee, {hier}, {dort}, {hier, dort}},
        {"text here, daily there", tee, {hier}, {taeglich}, {{um20, "hier", 1, true}}},
        {"one of two equal ones deleted here", tee, {}, {tee, tee}, {tee}},
    };
    for (const auto& fall : faelle) {
        Terminliste eigene;
        for (const auto& [weckZeit, text, intervallwert, aktiv] : fall.hier)
            eigene.push_back(
                std::make_shared<cTermin>(cTermin{weckZeit, text, intervallwert, aktiv, {}, {}, {}, {}, {}}));
        Ablage ablage = {{fall.vorher, eigene.empty() ? std::make_shared<cTermin>() : eigene.front()}};
        for (int mal = 1; mal <= 2; ++mal) {
            ablage = fremdesUebernehmen(eigene, ablage, fall.dort, um(20, 1));
            Werte ergebnis;
            for (const auto& [wert, termin] : ablageVon(eigene))
                ergebnis.push_back(wert);
            EXPECT_EQ(ergebnis, fall.ergebnis) << fall.name << ", time " << mal;
        }
    }
}

}  // namespace
}  // namespace wendel
