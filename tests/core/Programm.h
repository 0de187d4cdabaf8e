#pragma once
// The whole logic on fakes: a programme folder in memory, a TV database that answers the program's statements
// from plain rows, views that remember what they show. A test moves the clock and looks at the notice.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/Anwendung.h"
#include "core/FormAufzeichnungsverlauf.h"
#include "core/FormWendel.h"
#include "core/FormWendelView.h"
#include "recording/FormAufzeichnungsHinweis.h"
#include "recording/FormAufzeichnungsskript.h"
#include "reminders/FormHinweis.h"
#include "reminders/FormTermin.h"
#include "support/Fakes.h"
#include "traymenu/FakeMenue.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/Einstellungstabelle.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/cSendung.h"

namespace wendel {

inline Datum moment(int jahr, int monat, int tag, int stunde = 0, int minute = 0, int sekunde = 0) {
    return DateSerial(jahr, monat, tag) + TimeSerial(stunde, minute, sekunde);
}
// On 24 December 2012, a Monday.
inline Datum um(int stunde, int minute, int sekunde = 0) {
    return moment(2012, 12, 24, stunde, minute, sekunde);
}

class FakeWendelView : public FormWendelView {
  public:
    static constexpr Fensterhandle kFenster = 0x1234;
    explicit FakeWendelView(Aufrufe& aufrufe) : aufrufe_(aufrufe) {}

    bool gezeigt = false, geladen = true;
    int nachVornGeholt = 0, zeilenGesetzt = 0;
    std::vector<Terminzeile> zeilen;
    std::optional<std::size_t> auswahl;
    std::optional<bool> zeileGewaehlt;  // enabled state of the popup's entries
    std::vector<bool> popups;           // each with its default item or not
    std::string liveUpdateText, status;
    bool rufOffen = false;  // VorgemerktesAusfuehren was asked for

    Fensterhandle hwnd() override { return kFenster; }
    void zeigen() override { gezeigt = true, aufrufe_.zeilen.push_back("FormWendel.zeigen"); }
    void verstecken() override { gezeigt = false; }
    void nachVorn() override { ++nachVornGeholt; }
    void setzeZeilen(const std::vector<Terminzeile>& neu, std::optional<std::size_t> zeile) override {
        zeilen = neu, auswahl = zeile, ++zeilenGesetzt;
    }
    void setzeMenuezustand(bool gewaehlt) override { zeileGewaehlt = gewaehlt; }
    void zeigePopupTerminliste(bool editieren) override { popups.push_back(editieren); }
    void setzeLiveUpdateEinstellungen(const std::string& text) override { liveUpdateText = text; }
    void setzeStatustext(const std::string& text) override { status = text; }
    void rufeVorgemerktesBald() override { rufOffen = true; }
    void entladen() override { geladen = false; }

  private:
    Aufrufe& aufrufe_;
};

class FakeHinweisView : public FormHinweisView {
  public:
    static constexpr Fensterhandle kFenster = 0x5678;
    explicit FakeHinweisView(Aufrufe& aufrufe) : aufrufe_(aufrufe) {}

    bool gezeigt = false;
    std::string text;
    std::vector<std::string> alleTexte;  // one for each time the window came up

    void setzeTitel(const std::string&) override {}
    void setzeText(const std::string& neu) override { text = neu; }
    void setzeFunktionen(const std::vector<std::string>&) override {}
    void setzeAuswahl(int) override {}
    void anpassen() override {}
    void zeigen() override {
        gezeigt = true;
        if (!aufrufe_.mitschreiben) return;
        alleTexte.push_back(text);
        aufrufe_.zeilen.push_back("FormHinweis.zeigen");
    }
    void verbergen() override { gezeigt = false; }
    void starteOKTimer(int) override {}
    Fensterhandle fensterhandle() override { return kFenster; }

  private:
    Aufrufe& aufrufe_;
};

// The editor's window. imDialog runs while it is open and plays the user: it types into eingabe_ and calls
// cmdOK_Click or cmdCancel_Click of the form; without it the dialog is cancelled.
class FakeTerminView : public FormTerminView {
  public:
    Termineingabe eingabe_;
    bool gezeigt = false;
    int nachVornGeholt = 0;
    std::function<void()> imDialog;

    void setzeEingabe(const Termineingabe& eingabe) override { eingabe_ = eingabe; }
    Termineingabe eingabe() const override { return eingabe_; }
    void zeigenModal(Terminfeld) override {
        gezeigt = true;
        if (imDialog) imDialog();
        gezeigt = false;
    }
    void verbergen() override { gezeigt = false; }
    void nachVorn() override { ++nachVornGeholt; }
    void zumFeld(Terminfeld) override {}
};

class FakeAufzeichnungsHinweisView : public FormAufzeichnungsHinweisView {
  public:
    static constexpr Fensterhandle kFenster = 0x9abc;
    bool gezeigt = false;
    std::string text;
    int male = 0;  // that it came up

    Fensterhandle hwnd() override { return kFenster; }
    void setzeText(const std::string& neu) override { text = neu; }
    void zeigen() override { gezeigt = true, ++male; }
    void verbergen() override { gezeigt = false; }
};

class FakeAufzeichnungsskriptView : public FormAufzeichnungsskriptView {
  public:
    bool gezeigt = false;

    void zeigen() override { gezeigt = true; }
    void verbergen() override { gezeigt = false; }
    void setzeAktuelleAktion(const std::string&) override {}
    void zeigePopupVerlauf(const std::vector<std::string>&) override {}
};

class FakeVerlaufView : public FormAufzeichnungsverlaufView {
  public:
    bool gezeigt = false;
    std::vector<Aufzeichnungsverlaufszeile> zeilen;

    void setzeZeilen(const std::vector<Aufzeichnungsverlaufszeile>& neu) override { zeilen = neu; }
    void zeigen() override { gezeigt = true; }
    void verbergen() override { gezeigt = false; }
};

// Rows of the table Markierungen, as far as the program reads them.
struct Markierung {
    Datum erinnerung;  // "Erinnerungszeit"; never: no reminder
    Datum beginn;
    int dauer = 0;  // minutes
    std::string titel;
    bool aufzeichnung = false;
};

struct FakeTvDaten {
    std::vector<std::string> sender = {"ARD"};
    std::vector<Markierung> markierungen;
    // Titles of broadcasts: what runs now, and the best one of each day. None for "".
    std::string laeuft, tipp = "Ein Fest";
    bool gesperrt = false;
    int sperrnummer = 3260;

    std::optional<FakeAntwort> antwort(const std::string& sql, Datum jetzt) {
        if (gesperrt) return Fehler(sperrnummer, "DAO.Database", "Gesperrt.");
        if (sql.find("from Sender ") != std::string::npos) return sendertabelle();
        if (sql.find("Bewertung=4") != std::string::npos) return sendungstabelle(tipp, jetzt);
        if (sql.find("Select * from Sendungen") != std::string::npos ||
            sql.find("Sendungen.* ") != std::string::npos)
            return sendungstabelle(sql.find("Ende>") != std::string::npos ? laeuft : "", jetzt);
        if (sql.find("Select Distinct") == std::string::npos) return pflege(sql, jetzt);
        const bool erinnerungen = sql.find("Erinnerung=true") != std::string::npos;
        FakeTabelle tabelle{{"Optionen", "Datum", "Uhrzeit", "Dauer", "Sendung", "Senderkennung"}, {}};
        for (const Markierung& m : markierungen) {
            if (erinnerungen ? m.erinnerung == Datum() : !m.aufzeichnung) continue;
            tabelle.zeilen.push_back(
                {Variant::text("Erinnerungszeit=" + datumKompakt(m.erinnerung).substr(0, 12)),
                 Variant::datum(m.beginn.datumsteil()), Variant::datum(m.beginn.uhrzeitteil()),
                 Variant::text(std::to_string(m.dauer)), Variant::text(m.titel), Variant::text("ARD")});
        }
        return tabelle;
    }

  private:
    // The maintenance finds no broadcasts and deletes the marks of those that are over.
    FakeAntwort pflege(const std::string& sql, Datum jetzt) {
        if (sql.find("MaxPos") != std::string::npos) return FakeTabelle{{"MaxPos"}, {{Variant::null()}}};
        if (sql.find(",Datum+Uhrzeit)<" + ModulGrundbefehle::SqlDatumZeit(jetzt)) != std::string::npos) {
            std::erase_if(markierungen, [&](const Markierung& m) {
                return DateAdd(Einheit::Minute, m.dauer, m.beginn) < jetzt;
            });
        }
        return FakeTabelle{};
    }
    static FakeAntwort sendungstabelle(const std::string& titel, Datum jetzt) {
        FakeTabelle tabelle{Split("Pos," + cSendung::GetFelderNamenSendungen(), ","), {}};
        if (titel.empty()) return tabelle;
        auto& zeile = tabelle.zeilen.emplace_back(tabelle.spalten.size(), Variant::null());
        zeile[0] = Variant::lang(77), zeile[1] = Variant::text("ARD"), zeile[2] = Variant::datum(jetzt);
        zeile[3] = Variant::datum(DateAdd(Einheit::Stunde, 1, jetzt)), zeile[4] = Variant::text(titel);
        return tabelle;
    }
    FakeAntwort sendertabelle() const {
        FakeTabelle tabelle{
            {"Senderkennung", "Bezeichnung", "BezeichnungKurz", "DatenNr", "KzBezeichnungSchützen", "Favorit",
             "Zeichen", "Webseite", "GueltigAb", "GueltigBis", "Gruppe"},
            {}};
        for (const std::string& name : sender) {
            auto& zeile = tabelle.zeilen.emplace_back(4, Variant::text(name));
            zeile.resize(6, Variant::boolesch(true));
            zeile.resize(11, Variant::null());
        }
        return tabelle;
    }
};

class Programm {
  public:
    Programm() {
        ports.dateien.lege("\\suite\\tvdaten.mdb", "x");
        ports.dateien.legeOrdner("\\suite\\Hyperlinks\\");
        ports.fenster.fenster[FakeWendelView::kFenster] = {"Lomrick"};
        ports.fenster.fenster[FakeHinweisView::kFenster] = {"Lomrick - Hinweis"};
        ports.datenbanken->dynamisch = [this](const std::string& sql) {
            return tvDaten.antwort(sql, jetzt());
        };
    }

    FakePorts ports;
    FakeTvDaten tvDaten;
    FakeMenueumgebung menues;
    std::unique_ptr<FakeWendelView> fenster;
    std::unique_ptr<FakeHinweisView> hinweis;
    std::unique_ptr<FakeTerminView> editor;
    FakeAufzeichnungsHinweisView aufzeichnungsHinweis;
    FakeAufzeichnungsskriptView aufzeichnungsskript;
    FakeVerlaufView verlauf;
    std::unique_ptr<Anwendung> anwendung;
    bool ersteKopie = true;

    // A new process on the files as they are.
    Startergebnis starte(const std::string& befehlszeile = "/m") {
        anwendung.reset();
        fenster = std::make_unique<FakeWendelView>(ports.aufrufe);
        hinweis = std::make_unique<FakeHinweisView>(ports.aufrufe);
        editor = std::make_unique<FakeTerminView>();
        anwendung = std::make_unique<Anwendung>(
            ports.ports(), Systemdienste{ports.registrierung, ports.einwahl, ports.statusverbindung},
            Ansichten{*fenster, *hinweis, *editor, aufzeichnungsHinweis, aufzeichnungsskript, verlauf},
            menues, Startumgebung{"wendel", befehlszeile, kTestordner, [this] { return ersteKopie; }});
        return anwendung->starten();
    }
    void toete() { anwendung.reset(); }

    FormWendel& form() { return anwendung->formWendel(); }
    Datum jetzt() { return ports.uhr.jetzt(); }

    void sekunde() {
        ports.uhr.vor(1);
        anwendung->tick();
    }
    // What the window's event loop does between two events.
    void ereignisse() {
        while (std::exchange(fenster->rufOffen, false))
            form().VorgemerktesAusfuehren();
    }
    // Ticks every second up to and including that moment.
    void bis(Datum ziel) {
        while (jetzt() < ziel)
            sekunde();
    }
    void springe(Datum ziel) {
        ports.uhr.stelle(ziel);
        anwendung->tick();
    }
    void beantworte(int zeile = 0) {
        FormHinweis& form = anwendung->formHinweis();
        form.TimerOKErlaubt_Timer();
        form.ComboFunktion_Click(zeile);
        form.cmdOK_Click();
    }

    void setze(std::int32_t index, const Variant& wert) {
        Einstellungen(ports.dateien, kTestordner).setzeEinstellung(index, wert);
    }
    void setzeTermine(const std::vector<GespeicherterTermin>& termine) {
        setze(einstellung::kTermin, termineAlsVariant(termine));
    }
    std::vector<GespeicherterTermin> gespeicherteTermine() {
        Einstellungen einstellungen(ports.dateien, kTestordner);
        return termineAusVariant(einstellungen.Einstellung(einstellung::kTermin, Variant()));
    }
};

}  // namespace wendel
