// More than a year of the whole logic: ticks every second while the machine is awake, random appointments,
// marks, recordings that overlap and fail, short-time alarms, answers and snoozes, edits and deletes in the
// windows, suspends of hours and weeks, clock steps, leap day and the changes of summer time, a database that
// is locked at times, and kills, most of them in the middle of a durable write. A trivial model says what
// must be shown and stored; each entry carries its number in its text, so that every notice tells what it is
// about.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <random>

#include "Aufzeichnungsmodell.h"
#include "Programm.h"
#include "SimulationModell.h"
#include "platform/Text.h"

namespace wendel {
namespace {

constexpr const char* kVorsatz = "Sie wollten sich erinnern lassen.";
constexpr int kWecker = 0;

// What a notice is about: the numbers in "[17]", and a line of the prefix alone for each short-time alarm.
Zaehlung inhaltVon(const std::string& text) {
    Zaehlung zaehlung;
    bool vorsatzOffen = false;
    for (const std::string& zeile : Split(text, "\r\n")) {
        if (zeile == kVorsatz) {
            if (vorsatzOffen) ++zaehlung[kWecker];
            vorsatzOffen = true;
        } else if (const auto klammer = zeile.find('['); klammer != std::string::npos) {
            ++zaehlung[std::atoi(zeile.c_str() + klammer + 1)];
            vorsatzOffen = false;
        }
    }
    if (vorsatzOffen) ++zaehlung[kWecker];
    return zaehlung;
}

struct MarkierterEintrag {
    int nummer = 0;
    Datum moment, ende;
    bool pflicht = false;
};

using Zeilen = Terminmodell::Zeilen;

class Welt {
  public:
    explicit Welt(std::uint32_t saat) : zufall_(saat) {
        programm_.ports.aufrufe.mitschreiben = false;
        programm_.ports.datenbanken->mitschreiben = false;
        programm_.ports.datenbanken->dynamisch = [this](const std::string& sql) { return datenbank(sql); };
        programm_.ports.meldungen.imKasten = [this](const auto& kasten) { imKasten(kasten.stil); };
        programm_.ports.uhr.beiNachrichten = [this] { beiNachrichten(); };
        programm_.ports.uhr.stelle(moment(2012, 2, 20, 8, 0));
        programm_.ports.dateien.lege("\\suite\\skript.txt", kAufnahmeskript);
        programm_.setze(einstellung::kSkript, Variant::text("skript.txt"));
        programm_.ports.fernsteuerung.beimStart = [this](const std::string& zeile) {
            const bool scheitert = mitChance(0.03);
            aufnahmen_.befehl(zeile, augenblick(), scheitert);
            return !scheitert;
        };
    }

    void lebe(Datum bis) {
        starteBisEsLaeuft();
        while (jetzt() < bis) {
            wacheZeit(zahl(5, 1800));
            pruefeStand();
            if (jetzt() < bis) ereignis();
            programm_.ports.uhr.schlafdauern.clear();
            programm_.ports.meldungen.gezeigt.clear();
        }
    }

    // Two quiet days in which everything still open is shown and answered.
    void laufeAus() {
        programm_.ports.dateien.stuerzeAbBei(0);
        ruhig_ = true;
        gesperrtBis_ = 0;
        starteBisEsLaeuft();
        wacheZeit(5);
        std::erase_if(modell_.eintraege, [](const auto& e) { return e.wiederholt(); });
        auto termine = programm_.gespeicherteTermine();
        std::erase_if(termine, [](const auto& t) { return t.intervall != intervall::kEinmal; });
        schreibeTermine(termine);
        wacheZeit(2 * kTag);
    }

    void pruefe() {
        for (const MarkierterEintrag& eintrag : markierte_) {
            if (eintrag.pflicht) ++modell_.konten[eintrag.nummer].mindestens, ++anzahl["reminders"];
        }
        for (const auto& [nummer, konto] : modell_.konten) {
            const std::string was = std::to_string(nummer) + " " + konto.was;
            if (konto.beantwortet < konto.mindestens) throw Abweichung{"lost: " + was};
            if (konto.beantwortet > konto.hoechstens) throw Abweichung{"twice: " + was};
        }
        aufnahmen_.pruefeProtokoll(
            programm_.ports.dateien.inhalt("\\suite\\aufzeichnungen.log").value_or(""));
        anzahl.merge(aufnahmen_.anzahl);
    }

    std::string wann() { return datumAlsText(jetzt()); }
    std::map<std::string, int> anzahl;  // what has happened, by name

  private:
    Datum jetzt() { return programm_.ports.uhr.jetzt(); }
    int zahl(int von, int bis) { return std::uniform_int_distribution<int>(von, bis)(zufall_); }
    bool mitChance(double chance) { return std::bernoulli_distribution(ruhig_ ? 0 : chance)(zufall_); }

    // ---- time ----

    // Wall-clock time goes on, and with it the changes of summer time, each once.
    void vor(std::int64_t sekunden) {
        programm_.ports.uhr.vor(sekunden);
        if (jetzt() < umstellungen_.front().first) return;
        ++anzahl["summer time"];
        uhrsprung(umstellungen_.front().second);
        umstellungen_.pop_front();
    }

    void uhrsprung(int sekunden) {
        beendeteVergessen(jetzt());
        aufnahmen_.uhrsprung(jetzt(), jetzt().plusSekunden(sekunden));
        programm_.ports.uhr.stelle(jetzt().plusSekunden(sekunden));
        if (sekunden >= 0) return;
        // Queries do not return what was past, and the file's moments of sleeping repetitions are older ones.
        marken_ = false;
        for (Eintrag& e : modell_.eintraege)
            if (!e.aktiv && e.wiederholt()) e.unklarBis = kNie;
    }

    void wacheZeit(int sekunden) {
        for (int i = 0; i < sekunden; ++i)
            geschuetzt([this] { sekunde(); });
    }
    void sekunde() {
        vor(1);
        tick();
        if (programm_.hinweis->gezeigt && !programm_.form().beendet() && zahl(1, ruhig_ ? 3 : 60) == 1)
            antworte();
    }

    // ---- the program and the model side by side ----

    void tick() {
        if (!laeuft_ || programm_.form().beendet()) return;
        const Datum beginn = jetzt();
        const bool neueMinute = grenzen(kMinute, letzterTick_, beginn) != 0;
        bool gefeuert = false;
        const bool kannte = wissen_ && marken_;
        if (!programm_.form().beschaeftigt()) {
            tickbeginn_ = beginn;
            if (beginn.sekunden() - letzterTick_.sekunden() > kMinute)
                aufnahmen_.luecke(letzterTick_, beginn, "Rechner schlief");
            if (neueMinute) modell_.nachholen(beginn);
            gefeuert = modell_.feuern(beginn);
        }
        programm_.anwendung->tick();
        aufnahmen_.andereLaufen(jetzt());  // a tick notes it inside a box too
        if (programm_.form().beschaeftigt() || programm_.form().beendet()) return;
        if (gefeuert || neueMinute) modell_.nachTick(neueMinute ? beginn : Datum());
        letzterTick_ = beginn;
        if (jetzt().sekunden() - beginn.sekunden() > kMinute)
            aufnahmen_.luecke(beginn, jetzt(), "Rechner schlief");
        nachGutemTick(beginn);
        aufnahmen_.nachTick(augenblick(), kannte && wissen_ && marken_,
                            [this](int nummer) { return markiert(nummer); });
        if (aufnahmen_.laufende() && !programm_.ports.energie.wach) throw Abweichung{"may fall asleep"};
        frage_ = gemerkt_;
        programm_.ereignisse();
        modell_.ausgefuehrt();
    }

    // The program has had its chance: whatever was due and could be known counts as a duty.
    void nachGutemTick(Datum beginn) {
        if (!wissen_) return;
        beendeteVergessen(beginn);
        for (std::size_t i = ersterOffener_; i < markierte_.size(); ++i) {
            MarkierterEintrag& eintrag = markierte_[i];
            const auto [von, bis] = std::minmax({beginn, jetzt()});  // it may have slept in the middle
            if (eintrag.moment <= von && bis < eintrag.ende) eintrag.pflicht = true;
        }
    }

    Augenblick augenblick() { return {tickbeginn_, jetzt(), programm_.ports.uhr.laufzeitMs()}; }
    static std::string filmtitel(int nummer) { return "Film [" + std::to_string(nummer) + "]"; }
    bool markiert(int nummer) {
        return std::ranges::any_of(programm_.tvDaten.markierungen, [&](const Markierung& m) {
            return m.aufzeichnung && m.titel == filmtitel(nummer);
        });
    }

    // The maintenance has deleted them, also when the clock is set back then.
    void beendeteVergessen(Datum wann) {
        while (ersterOffener_ < markierte_.size() && markierte_[ersterOffener_].ende <= wann)
            ++ersterOffener_;
    }

    void antworte() {
        const std::string text = programm_.anwendung->formHinweis().LabelHinweisText();
        const Zaehlung inhalt = inhaltVon(text);
        const int zeile = mitChance(0.35) ? zahl(1, 11) : 0;
        if (zeile) {
            const Datum wann = jetzt().plusSekunden(kMinute * kMinuten[zeile] - jetzt().sekunden() % kMinute);
            const auto ab = std::min(std::string_view(kVorsatz).size() + 2, text.size());
            modell_.vorhaben = {0, modell_.ausgewichen({text.substr(ab), inhalt, wann})};
        }
        for (const auto& [nummer, n] : inhalt)
            modell_.konten[nummer].beantwortet += n;
        try {
            programm_.beantworte(zeile);
        } catch (const Absturz&) {
            // Asked again or not.
            for (const auto& [nummer, n] : inhalt)
                modell_.konten[nummer].hoechstens += n;
            throw;
        }
        modell_.ausgefuehrt();
    }
    inline static const Datum kNie = moment(2100, 1, 1);
    static constexpr int kMinuten[] = {0, 2, 5, 10, 15, 30, 45, 60, 120, 180, 240, 300};

    // ---- what can be seen of the program ----

    void pruefeStand() {
        if (jetzt() != letzterTick_) return;  // it has just been started
        ++anzahl["checks"];
        Zeilen zeilen;
        for (const Terminzeile& zeile : programm_.fenster->zeilen) {
            if (zeile.symbol == "terminuhr2" && (!zeile.rest.empty() || zeile.text != kWeckertext))
                zeilen.insert(zeile.zeit + "|" + zeile.text + "|" + zeile.rest);
        }
        if (!modell_.finde([&](const Eintrag& e) { return !e.aktiv && jetzt() < e.unklarBis; }))
            vergleiche("rows", zeilen, modell_.inListe(jetzt()));
        if (!modell_.finde([](const Eintrag& e) { return e.ungespeichertSeit.has_value(); }))
            vergleiche("file", Terminmodell::inDatei(programm_.gespeicherteTermine()),
                       Terminmodell::inDatei(modell_.eintraege));
        if (wissen_ && marken_) pruefeTipp();
    }

    // The nearest of all that lies ahead; of several at one moment any.
    void pruefeTipp() {
        std::multimap<Datum, std::string> alle;
        for (const Eintrag& e : modell_.eintraege)
            if (e.aktiv) alle.emplace(e.moment, e.text);
        const Zaehlung offen = inhaltVon(programm_.hinweis->gezeigt ? programm_.hinweis->text : "");
        for (const Markierung& m : programm_.tvDaten.markierungen) {
            const std::string text = gedruckt(m.beginn, "%H:%M ") + m.titel + " (ARD)";
            const int nummer = inhaltVon(m.titel).begin()->first;
            if (!offen.contains(nummer) && !modell_.konten[nummer].beantwortet)
                alle.emplace(m.erinnerung, text);
            if (m.aufzeichnung && !aufnahmen_.istVorbei(nummer))
                alle.emplace(m.beginn.plusSekunden(-300), text);
        }
        // Marked or not any more; ahead again when the clock was set back.
        if (const int laufende = aufnahmen_.laufende()) {
            const Datum von = aufnahmen_.offene.at(laufende).von;
            alle.emplace(von, gedruckt(von.plusSekunden(300), "%H:%M ") + filmtitel(laufende) + " (ARD)");
        }
        Zeilen erlaubt;
        // A recording's window that has just begun stands there for the rest of the minute.
        for (const Datum ab : {jetzt(), jetzt().plusSekunden(-(jetzt().sekunden() % 60))}) {
            const auto naechster = alle.lower_bound(ab);
            for (auto e = naechster; e != alle.end() && e->first == naechster->first; ++e)
                erlaubt.insert(Terminmodell::tipp(e->first, e->second, jetzt()));
        }
        if (erlaubt.empty()) erlaubt = {"Lomrick"};
        const std::string tipp = programm_.ports.symbol.tooltip();
        if (!erlaubt.contains(tipp)) vergleiche("tip", {tipp}, erlaubt);
    }

    static void vergleiche(std::string was, const Zeilen& ist, const Zeilen& soll) {
        if (ist == soll) return;
        for (const std::string& zeile : ist)
            if (ist.count(zeile) > soll.count(zeile)) was += "\n  there is " + zeile;
        for (const std::string& zeile : soll)
            if (soll.count(zeile) > ist.count(zeile)) was += "\n  missing  " + zeile;
        throw Abweichung{was};
    }

    // ---- kills ----

    void geschuetzt(const std::function<void()>& tue) {
        if (std::exchange(geschuetzt_, true)) return tue();
        try {
            tue();
            if (programm_.form().beendet()) {
                ++anzahl["exits"];
                modell_.nachTick(kNie);  // everything is stored
                tot();
            }
        } catch (const Absturz&) {
            ++anzahl["kills"];
            tot();
        }
        geschuetzt_ = false;
        starteBisEsLaeuft();
    }

    void tot() {
        laeuft_ = wissen_ = false;
        kasten_ = 0;
        aufnahmen_.tot(jetzt());
        const Datum totUm = jetzt();
        programm_.toete();
        programm_.ports.symbol.symbole.clear();
        programm_.ports.dateien.neustart();
        modell_.nachAbsturz(programm_.gespeicherteTermine());
        vor(mitChance(0.2) ? zahl(60, 30000) : zahl(1, 20));
        aufnahmen_.luecke(totUm, jetzt(), "Programm lief nicht");
    }

    void starteBisEsLaeuft() {
        while (!laeuft_) {
            try {
                if (mitChance(0.1)) scharfstellen();
                modell_.geladen(jetzt());
                aufnahmen_.neustart(jetzt());
                programm_.starte("/m");
                programm_.editor->imDialog = [this] { imEditor(); };
                laeuft_ = true;
            } catch (const Absturz&) {
                tot();
            }
        }
    }

    void scharfstellen() {
        constexpr FakeDateisystem::Rest kReste[] = {
            FakeDateisystem::Rest::Nichts, FakeDateisystem::Rest::Haelfte, FakeDateisystem::Rest::Alles};
        programm_.ports.dateien.stuerzeAbBei(zahl(1, 8), kReste[zahl(0, 2)]);
    }

    // ---- what happens to the program, also while a tick waits or the editor is open ----

    void ereignis() {
        const int was = zahl(0, 25);
        if (was <= 2) return andereTermine();
        if (was <= 6) return neueMarkierungen();
        if (was <= 9) return schlaf(zahl(61, 3600));
        if (was == 10) return mitChance(0.04) ? langerSchlaf() : schlaf(zahl(6, 14) * 3600 + zahl(0, 3599));
        if (was <= 12) return vor(zahl(2, 60));  // a late tick
        if (was == 13 && programm_.form().beschaeftigt()) return;
        if (was == 13) return mitChance(0.04) ? rueckTage() : uhrsprung(zahl(-7200, 7200));
        if (was == 14) return mitChance(0.5) ? sperren() : zurueckziehen();
        if (was <= 16) return scharfstellen();
        if (was <= 18) return steuerzeile(was == 17 ? "terminupdate" : "refreshkonfig");
        if (was <= 24) return geschuetzt([this] { benutzer(); });
        geschuetzt([this] {
            if (mitChance(0.5)) throw Absturz{};
            programm_.anwendung->beenden();
        });
    }

    // Another computer may mark broadcasts meanwhile; nobody tells the sleeping program.
    void schlaf(int sekunden) {
        if (mitChance(0.3)) neueMarkierungen(false);
        vor(sekunden);
    }
    void langerSchlaf() { ++anzahl["long sleeps"], schlaf(zahl(7 * kTag, 20 * kTag)); }
    void rueckTage() { ++anzahl["days back"], uhrsprung(-zahl(1, 2) * kTag); }

    void sperren() {
        gesperrtBis_ = programm_.ports.uhr.laufzeitMs() + zahl(1000, 120000);
        steuerzeile("terminupdate");
    }
    bool gesperrt() { return programm_.ports.uhr.laufzeitMs() < gesperrtBis_; }

    void steuerzeile(const char* text) {
        geschuetzt([&] { programm_.anwendung->DoThis(text); });
    }

    // Another program writes the appointments and sends the line. What it changes of present ones while the
    // program is busy with them, and that the line waits for a script, is another test's matter.
    void andereTermine() {
        if (aufnahmen_.imSkript()) return;
        const auto alte = programm_.gespeicherteTermine();
        auto termine = alte;
        const bool ruhig = !programm_.form().beschaeftigt() && !kasten_ && !gesperrt();
        std::erase_if(termine, [&](GespeicherterTermin& t) {
            Eintrag* e = modell_.finde([&](const Eintrag& x) { return x.istWie(t) && x.aktiv == t.aktiv; });
            const bool fertig = !t.aktiv && t.intervall == intervall::kEinmal;
            if (!e || e->ungespeichertSeit || !mitChance(fertig ? 0.9 : ruhig ? 0.02 : 0)) return false;
            if (mitChance(fertig ? 0.8 : 0.3)) return modell_.weg(e->id), true;
            const bool eindeutig = std::ranges::count(alte, t.weckText, &GespeicherterTermin::weckText) == 1;
            if (t.intervall != intervall::kEinmal && mitChance(0.5)) {
                t.aktiv = e->aktiv = !t.aktiv;
            } else if (ruhig && eindeutig) {
                // Ahead; the program makes it active.
                t.weckZeit = jetzt().plusSekunden(zahl(3600, 90000));
                modell_.verschoben(e->id, t.weckZeit, jetzt());
                ++anzahl["moved by others"];
            }
            return false;
        });
        for (int i = zahl(1, 2); i > 0; --i) {
            modell_.dazu(neuerTermin());
            termine.push_back(modell_.eintraege.back());
        }
        schreibeTermine(termine);
    }

    void schreibeTermine(const std::vector<GespeicherterTermin>& termine) {
        programm_.ports.dateien.stuerzeAbBei(0);
        programm_.setzeTermine(termine);
        if (mitChance(0.1)) scharfstellen();
        steuerzeile("refreshkonfig");
        modell_.nachholen(jetzt());
    }

    Eintrag neuerTermin() {
        const bool kurz = !geschuetzt_ && zahl(1, 5) == 1;
        const Datum wann = jetzt().plusSekunden(kurz              ? zahl(1, 30) * kMinute
                                                : zahl(1, 2) == 1 ? zahl(60, 3600)
                                                                  : zahl(60, 90000));
        if (kurz) return modell_.ausgewichen({kWeckertext, {{kWecker, 1}}, wann});
        Eintrag neu = mitNummer(wann);
        // Few repeating ones, as they stay, many of them in the hour that comes twice or not at all. One that
        // is switched off has its moment anywhere.
        if (zahl(1, 40) > 1) return neu;
        neu.wert = static_cast<std::int16_t>(zahl(1, 3));
        neu.aktiv = mitChance(0.8);
        if (mitChance(0.5))
            neu.moment = wann.plusSekunden(kTag + 2 * kStunde + 1800 - wann.sekunden() % kTag);
        if (!neu.aktiv) neu.moment = neu.moment.plusSekunden(-kTag * zahl(1, 40));
        return neu;
    }

    Eintrag mitNummer(Datum wann) {
        const int nummer = neueNummer("appointment at " + datumAlsText(wann));
        return {"Termin [" + std::to_string(nummer) + "]", {{nummer, 1}}, wann};
    }

    void neueMarkierungen(bool angesagt = true) {
        auto& tabelle = programm_.tvDaten.markierungen;
        std::erase_if(tabelle, [this](const Markierung& m) {
            return DateAdd(Einheit::Minute, m.dauer, m.beginn).plusSekunden(4 * 3600) < jetzt();
        });
        for (int i = zahl(1, 3); i > 0; --i) {
            const Datum beginn =
                jetzt().aufMinute().plusSekunden(60 * (zahl(1, 2) == 1 ? zahl(2, 120) : zahl(2, 2000)));
            const Datum wann =
                std::max(jetzt().aufMinute().plusSekunden(60), beginn.plusSekunden(-60 * zahl(0, 10)));
            const int dauer = zahl(5, 180);
            const int nummer = neueNummer("reminder at " + datumAlsText(wann));
            ++modell_.konten[nummer].hoechstens;
            const bool aufzeichnung = zahl(1, 5) == 1;
            tabelle.push_back({wann, beginn, dauer, filmtitel(nummer), aufzeichnung});
            if (aufzeichnung) aufnahmen_.plane(nummer, beginn, dauer);
            markierte_.push_back({nummer, wann, DateAdd(Einheit::Minute, dauer, beginn), false});
        }
        std::sort(markierte_.begin() + static_cast<std::ptrdiff_t>(ersterOffener_), markierte_.end(),
                  [](const auto& a, const auto& b) { return a.ende < b.ende; });
        wissen_ = false;
        if (angesagt) steuerzeile("terminupdate");
    }

    void zurueckziehen() {
        auto& tabelle = programm_.tvDaten.markierungen;
        const auto m = std::ranges::find(tabelle, true, &Markierung::aufzeichnung);
        if (m == tabelle.end()) return;
        m->aufzeichnung = false;
        const auto n = aufnahmen_.offene.find(inhaltVon(m->titel).begin()->first);
        if (n != aufnahmen_.offene.end()) n->second.zurueckgezogen = true;
        ++anzahl["withdrawn"];
        wissen_ = false;
        steuerzeile("terminupdate");
    }

    int neueNummer(std::string was) {
        const int nummer = ++letzteNummer_;
        modell_.konten[nummer].was = std::move(was);
        return nummer;
    }

    // ---- the user at list and editor ----

    enum class Frage { Neu, Bearbeiten, Loeschen };

    void benutzer() {
        if (zahl(1, 3) == 1) return stelleWecker(zahl(1, 2));
        const Frage frage = static_cast<Frage>(zahl(0, 2));
        const bool aufgeschoben = programm_.form().beschaeftigt() || kasten_ > 0;
        frage_ = frage;
        waehleZeile();
        if (mitChance(0.05)) scharfstellen();
        if (frage == Frage::Loeschen) programm_.form().TerminLoeschen();
        if (frage == Frage::Bearbeiten) programm_.form().TerminBearbeiten();
        if (frage == Frage::Neu) programm_.form().TerminNeu();
        if (aufgeschoben) gemerkt_ = frage;
        modell_.ausgefuehrt();
    }

    void stelleWecker(int wieviele) {
        const int dauer = zahl(-1, 30);
        for (; wieviele > 0; --wieviele) {
            const Datum wann = jetzt().plusSekunden(kMinute * std::max(dauer, 0));
            modell_.dazu(modell_.ausgewichen({kWeckertext, {{kWecker, 1}}, wann}));
            modell_.eintraege.back().ungespeichertSeit = jetzt();
            programm_.form().KurzZeitWeckerAktivieren(static_cast<std::int16_t>(dauer));
        }
    }

    void waehleZeile() {
        const auto& zeilen = programm_.fenster->zeilen;
        for (int versuch = 0; versuch < 5 && !zeilen.empty(); ++versuch) {
            const auto zeile = static_cast<std::size_t>(zahl(0, static_cast<int>(zeilen.size()) - 1));
            programm_.form().zeileGewaehlt(zeile);
            if (zeilen[zeile].symbol == "terminuhr2") return;
        }
    }

    // Number of the entry in the selected row; 0 when the row does not tell which it is.
    int ausgewaehlter() {
        const auto index = static_cast<std::size_t>(programm_.form().GetSelektierterIndex());
        const Terminzeile& zeile = programm_.fenster->zeilen.at(index - 1);
        const auto passt = [&](const Eintrag& e) {
            return e.text == zeile.text && e.aktiv == !zeile.rest.empty() &&
                   (Terminmodell::zeittext(e) == zeile.zeit || !e.aktiv);
        };
        const Eintrag* gefunden = modell_.finde(passt);
        if (!gefunden) throw Abweichung{"no such entry: " + zeile.zeit + " " + zeile.text};
        const auto anderer = [&](const Eintrag& e) { return passt(e) && e.moment != gefunden->moment; };
        // A repetition that is switched off has another moment in the file.
        const bool unklar = modell_.finde(anderer) || (!gefunden->aktiv && gefunden->wiederholt());
        return unklar ? 0 : gefunden->id;
    }

    void imEditor() {
        const bool neu = frage_ == Frage::Neu;
        const int id = neu ? 0 : ausgewaehlter();
        Eintrag alt = id ? *modell_.mitId(id) : Eintrag{"", {}, jetzt()};
        const Datum geoeffnet = alt.moment;
        const bool klar = neu || id;
        if (klar && !(programm_.editor->eingabe_ == alsEingabe(alt)))
            throw Abweichung{"the editor shows " + programm_.editor->eingabe_.TextInhalt};
        // Often it falls due meanwhile.
        const auto wartezeit = alt.moment.sekunden() - jetzt().sekunden();
        if (wartezeit > 5 && wartezeit < 7 * kTag && mitChance(0.2)) vor(wartezeit - 5);
        for (int i = zahl(1, 200); i > 0; --i) {
            sekunde();
            if (mitChance(0.01)) ereignis();
            if (programm_.form().beendet()) return;
        }
        if (id) alt = modell_.zuletzt(id);
        if (!klar || mitChance(0.2)) return programm_.anwendung->formTermin().cmdCancel_Click();
        ++anzahl[neu ? "new" : "edited"];
        const Eintrag getippt = getippter(alt, geoeffnet, neu);
        programm_.editor->eingabe_ = alsEingabe(getippt);
        modell_.vorhaben = {
            id, neu ? modell_.ausgewichen(getippt) : modell_.bearbeitet(alt, geoeffnet, getippt, jetzt())};
        programm_.anwendung->formTermin().cmdOK_Click();
    }

    Eintrag getippter(const Eintrag& alt, Datum geoeffnet, bool neu) {
        Datum wann = geoeffnet;
        if (neu || mitChance(0.5))
            wann = jetzt().plusSekunden(60 * (zahl(1, 4) == 1 ? zahl(-600, 10) : zahl(0, 2000)));
        wann = wann.plusSekunden(-(wann.sekunden() % 60));
        Eintrag getippt = neu || mitChance(0.3) ? mitNummer(wann) : Eintrag{alt.text, alt.inhalt, wann};
        getippt.wert = mitChance(0.7) ? alt.wert : static_cast<std::int16_t>(zahl(0, 3));
        if (std::ranges::count_if(modell_.eintraege, &Eintrag::wiederholt) > 8) getippt.wert = 0;
        return getippt;
    }

    static Termineingabe alsEingabe(const Eintrag& e) {
        return {gedruckt(e.moment, "%d.%m.%Y"), gedruckt(e.moment, "%H:%M"), e.text, e.wert};
    }

    // ---- what the program meets ----

    std::optional<FakeAntwort> datenbank(const std::string& sql) {
        if (gesperrt()) return Fehler(3260, "DAO.Database", "Gesperrt.");
        if (sql.find("Optionen,Datum,Uhrzeit,Sendung") != std::string::npos) wissen_ = marken_ = true;
        return programm_.tvDaten.antwort(sql, jetzt());
    }

    // The user is away for a while, ticks come in, and then he answers.
    void imKasten(int stil) {
        const int id = stil == meldungsstil::kJaNeinFrage ? ausgewaehlter() : 0;
        ++kasten_;
        for (int i = zahl(1, 40); i > 0; --i) {
            vor(1);
            tick();
        }
        --kasten_;
        const bool ja = zahl(1, 100) <= 60;
        Antwort antwort = ja ? Antwort::Wiederholen : Antwort::Abbrechen;
        if (stil == meldungsstil::kJaNeinFrage && ja && id && !programm_.form().beendet()) {
            antwort = Antwort::Ja;
            modell_.vorhaben = {id, {}};
            ++anzahl["deleted"];
        } else if (!ja) {
            wissen_ = false;
        }
        programm_.ports.meldungen.antworten = {antwort};
    }

    void beiNachrichten() {
        if (!laeuft_ || !programm_.form().beschaeftigt() || !mitChance(0.02)) return;
        if (programm_.hinweis->gezeigt && mitChance(0.3)) return antworte();
        ereignis();
    }

    std::deque<std::pair<Datum, int>> umstellungen_ = {{moment(2012, 3, 25, 2), 3600},
                                                       {moment(2012, 10, 28, 3), -3600},
                                                       {moment(2013, 3, 31, 2), 3600},
                                                       {kNie, 0}};
    std::mt19937 zufall_;
    Programm programm_;
    Terminmodell modell_;
    Aufzeichnungsmodell aufnahmen_;
    std::vector<MarkierterEintrag> markierte_;
    std::size_t ersterOffener_ = 0;
    int letzteNummer_ = 0, kasten_ = 0;
    std::int64_t gesperrtBis_ = 0;
    Datum letzterTick_, tickbeginn_;
    Frage frage_ = Frage::Neu, gemerkt_ = Frage::Neu;  // what windows are about: now, and put off
    bool laeuft_ = false;
    bool wissen_ = false,
         marken_ = false;  // has read the marks since one was added; since the clock went back
    bool ruhig_ = false, geschuetzt_ = false;
};

TEST(Simulation, EveryDueEntryIsShownExactlyOnceOverAYear) {
    const char* vorgabe = std::getenv("WENDEL_SAAT");
    const auto saat = static_cast<std::uint32_t>(vorgabe ? std::atoi(vorgabe) : 20121224);
    const char* laenger = std::getenv("WENDEL_JAHRE");
    const int jahre = laenger ? std::atoi(laenger) : 0;
    std::cout << "seed " << saat << " (WENDEL_SAAT sets another), " << jahre
              << " years more than one (WENDEL_JAHRE)\n";
    Welt welt(saat);
    try {
        welt.lebe(moment(2013 + jahre, 4, 10));
        welt.laufeAus();
        welt.pruefe();
    } catch (const Abweichung& abweichung) {
        FAIL() << welt.wann() << " " << abweichung.was;
    }
    const std::map<std::string, int> mindestens = {{"summer time", 3},    {"long sleeps", 3},
                                                   {"days back", 2},      {"reminders", 1000},
                                                   {"kills", 200},        {"exits", 50},
                                                   {"new", 100},          {"edited", 100},
                                                   {"deleted", 100},      {"moved by others", 100},
                                                   {"checks", 3000},      {"withdrawn", 10},
                                                   {"aufgezeichnet", 50}, {"verpasst:", 50},
                                                   {"fehlgeschlagen", 3}, {"unterbrochen", 5}};
    for (const auto& [was, n] : mindestens)
        EXPECT_GE(welt.anzahl[was], n) << was;
}

}  // namespace
}  // namespace wendel
