// More than a year of the whole logic: ticks every second while the machine is awake, random appointments,
// marks, short-time alarms, answers and snoozes, suspends, clock steps, both changes of summer time, a
// database that is locked at times, and kills, most of them in the middle of a durable write. A trivial model
// counts what must be shown; each entry carries its number in its text, so that every notice tells what it is
// about.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <random>
#include <set>

#include "Programm.h"
#include "platform/Text.h"

namespace wendel {
namespace {

constexpr const char* kVorsatz = "Sie wollten sich erinnern lassen.";
// All short-time alarms have one text; they are counted together under this number.
constexpr int kKurzzeit = 0;

using Zaehlung = std::map<int, int>;

// What a notice is about: the numbers in "[17]", and a line of the prefix alone for each short-time alarm.
Zaehlung inhaltVon(const std::string& text) {
    Zaehlung zaehlung;
    bool vorsatzOffen = false;
    for (const std::string& zeile : Split(text, "\r\n")) {
        if (zeile == kVorsatz) {
            if (vorsatzOffen) ++zaehlung[kKurzzeit];
            vorsatzOffen = true;
        } else if (const auto klammer = zeile.find('['); klammer != std::string::npos) {
            ++zaehlung[std::atoi(zeile.c_str() + klammer + 1)];
            vorsatzOffen = false;
        }
    }
    if (vorsatzOffen) ++zaehlung[kKurzzeit];
    return zaehlung;
}

// How often an entry has to be answered, and how often it was. A kill in the middle of an answer leaves open
// whether the answer (and the snoozed copy) still counted.
struct Konto {
    int mindestens = 0, hoechstens = 0, beantwortet = 0;
    std::string was;
};

struct EigenerEintrag {
    Zaehlung inhalt;
    Datum naechster;
    std::int16_t intervallwert = intervall::kEinmal;
    bool vielleichtNichtGefeuert = false;  // a kill hit the tick at which it was due
};

struct MarkierterEintrag {
    int nummer = 0;
    Datum moment, ende;
    bool pflicht = false;
};

class Welt {
  public:
    explicit Welt(std::uint32_t saat) : zufall_(saat) {
        programm_.ports.aufrufe.mitschreiben = false;
        programm_.ports.datenbanken->mitschreiben = false;
        programm_.ports.datenbanken->dynamisch = [this](const std::string& sql) { return datenbank(sql); };
        programm_.ports.meldungen.imKasten = [this](const auto& kasten) { imKasten(kasten); };
        programm_.ports.uhr.beiNachrichten = [this] { beiNachrichten(); };
        programm_.ports.uhr.stelle(moment(2012, 6, 1, 8, 0));
    }

    void lebe(Datum bis) {
        starteBisEsLaeuft();
        while (jetzt() < bis) {
            wacheZeit(zahl(5, 1800));
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
        for (auto& eintrag : eigene_) {
            if (eintrag.intervallwert != intervall::kEinmal) eintrag.naechster = kNie;
        }
        schreibeTermine([](auto& termine) {
            std::erase_if(termine, [](const auto& t) { return t.intervall != intervall::kEinmal; });
        });
        wacheZeit(2 * 86400);
    }

    void pruefe() {
        for (const MarkierterEintrag& eintrag : markierte_) {
            if (eintrag.pflicht) ++konten_[eintrag.nummer].mindestens, ++markenPflichten;
        }
        for (const auto& [nummer, konto] : konten_) {
            ASSERT_GE(konto.beantwortet, konto.mindestens) << "lost: " << nummer << " " << konto.was;
            ASSERT_LE(konto.beantwortet, konto.hoechstens) << "twice: " << nummer << " " << konto.was;
        }
    }

    int markenPflichten = 0, imSchreibenGetoetet = 0, zeitumstellungen = 0;

  private:
    Datum jetzt() { return programm_.ports.uhr.jetzt(); }
    int zahl(int von, int bis) { return std::uniform_int_distribution<int>(von, bis)(zufall_); }
    bool mitChance(double chance) { return std::bernoulli_distribution(ruhig_ ? 0 : chance)(zufall_); }

    // ---- time ----

    // Wall-clock time goes on, and with it the changes of summer time, each once.
    void vor(std::int64_t sekunden) {
        programm_.ports.uhr.vor(sekunden);
        zeitumstellung(moment(2012, 10, 28, 3), -3600, herbst_);
        zeitumstellung(moment(2013, 3, 31, 2), 3600, fruehling_);
    }
    void zeitumstellung(Datum wann, int sekunden, bool& erledigt) {
        if (erledigt || jetzt() < wann) return;
        erledigt = true;
        programm_.ports.uhr.stelle(jetzt().plusSekunden(sekunden));
        ++zeitumstellungen;
    }

    void wacheZeit(int sekunden) {
        for (int i = 0; i < sekunden; ++i) {
            vor(1);
            geschuetzt([this] { tick(); });
            if (programm_.hinweis->gezeigt && zahl(1, ruhig_ ? 3 : 60) == 1)
                geschuetzt([this] { antworte(); });
        }
    }

    // ---- the program and the model side by side ----

    void tick() {
        if (!laeuft_) return;
        if (!programm_.form().beschaeftigt()) {
            imTick_.clear();
            modellTick(jetzt());
        }
        const Datum beginn = jetzt();
        programm_.anwendung->tick();
        if (!programm_.form().beschaeftigt()) nachGutemTick(beginn);
    }

    void modellTick(Datum wann) {
        for (EigenerEintrag& eintrag : eigene_) {
            if (eintrag.naechster > wann) continue;
            for (const auto& [nummer, anzahl] : eintrag.inhalt) {
                // The earlier firing may only come now: then both are one.
                if (!eintrag.vielleichtNichtGefeuert) konten_[nummer].mindestens += anzahl;
                konten_[nummer].hoechstens += anzahl;
            }
            eintrag.naechster = naechsterNach(eintrag, wann);
            imTick_.push_back(&eintrag);
        }
    }

    static Datum naechsterNach(const EigenerEintrag& eintrag, Datum wann) {
        if (eintrag.intervallwert == intervall::kEinmal) return kNie;
        const int tage = eintrag.intervallwert == intervall::kWoechentlich ? 7 : 1;
        Datum naechster = eintrag.naechster;
        do {
            naechster = naechster.plusSekunden(tage * 86400);
        } while (naechster <= wann ||
                 (eintrag.intervallwert == intervall::kWerktags && wochentagAbMontag(naechster) > 5));
        return naechster;
    }

    // The program has had its chance: whatever was due and could be known counts as a duty.
    void nachGutemTick(Datum beginn) {
        if (nachNeustart_) {
            for (EigenerEintrag& eintrag : eigene_)
                eintrag.vielleichtNichtGefeuert = false;
            nachNeustart_ = false;
        }
        if (!imTick_.empty()) {
            imTick_.clear();
            std::erase_if(eigene_, [](const auto& eintrag) { return eintrag.naechster == kNie; });
        }
        if (!wissen_) return;
        for (; ersterOffener_ < markierte_.size() && markierte_[ersterOffener_].ende <= beginn;)
            ++ersterOffener_;
        for (std::size_t i = ersterOffener_; i < markierte_.size(); ++i) {
            MarkierterEintrag& eintrag = markierte_[i];
            if (eintrag.moment <= beginn && beginn < eintrag.ende) eintrag.pflicht = true;
        }
    }

    void antworte() {
        const Zaehlung inhalt = inhaltVon(programm_.anwendung->formHinweis().LabelHinweisText());
        const int zeile = mitChance(0.35) ? zahl(1, 11) : 0;
        EigenerEintrag kopie{inhalt, jetzt().aufMinute().plusSekunden(60 * kMinuten[zeile]),
                             intervall::kEinmal, false};
        for (const auto& [nummer, anzahl] : inhalt)
            konten_[nummer].beantwortet += anzahl;
        try {
            programm_.beantworte(zeile);
        } catch (const Absturz&) {
            // Asked again or not, snoozed or not.
            for (const auto& [nummer, anzahl] : inhalt) {
                konten_[nummer].hoechstens += zeile ? 2 * anzahl : anzahl;
            }
            throw;
        }
        if (zeile) eigene_.push_back(kopie);
    }
    inline static const Datum kNie = moment(2100, 1, 1);
    static constexpr int kMinuten[] = {0, 2, 5, 10, 15, 30, 45, 60, 120, 180, 240, 300};

    // ---- kills ----

    void geschuetzt(const std::function<void()>& tue) {
        try {
            tue();
        } catch (const Absturz&) {
            ++imSchreibenGetoetet;
            tot();
            starteBisEsLaeuft();
        }
    }

    void tot() {
        for (EigenerEintrag* eintrag : imTick_)
            eintrag->vielleichtNichtGefeuert = true;
        imTick_.clear();
        nachNeustart_ = true;
        laeuft_ = false;
        wissen_ = false;
        programm_.toete();
        programm_.ports.dateien.neustart();
        vor(mitChance(0.2) ? zahl(60, 30000) : zahl(1, 20));
    }

    void starteBisEsLaeuft() {
        while (!laeuft_) {
            try {
                if (mitChance(0.1)) scharfstellen();
                programm_.starte("/m");
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

    // ---- what happens to the program ----

    void ereignis() {
        const int was = zahl(0, 19);
        if (was <= 2) return neueTermine();
        if (was <= 6) return neueMarkierungen();
        if (was <= 9) return schlaf(zahl(61, 3600));
        if (was == 10) return schlaf(zahl(6, 14) * 3600 + zahl(0, 3599));
        if (was <= 12) return vor(zahl(2, 60));  // a late tick
        if (was == 13) return uhrsprung();
        if (was == 14) return sperren();
        if (was <= 16) return scharfstellen();
        if (was >= 18) return steuerzeile(was == 18 ? "terminupdate" : "refreshkonfig");
        tot();
        starteBisEsLaeuft();
    }

    // Another computer may mark broadcasts meanwhile; nobody tells the sleeping program.
    void schlaf(int sekunden) {
        if (mitChance(0.3)) neueMarkierungen(false);
        vor(sekunden);
    }

    void uhrsprung() { programm_.ports.uhr.stelle(jetzt().plusSekunden(zahl(-7200, 7200))); }

    void sperren() {
        gesperrtBis_ = programm_.ports.uhr.laufzeitMs() + zahl(1000, 120000);
        steuerzeile("terminupdate");
    }

    void steuerzeile(const char* text) {
        if (!programm_.form().beschaeftigt()) return geschuetzt([&] { programm_.anwendung->DoThis(text); });
        programm_.anwendung->DoThis(text);
    }

    // Another program writes the appointments and sends the line; it also removes what is done.
    void neueTermine() {
        schreibeTermine([this](std::vector<GespeicherterTermin>& termine) {
            std::erase_if(termine,
                          [](const auto& t) { return !t.aktiv && t.intervall == intervall::kEinmal; });
            for (int i = zahl(1, 2); i > 0; --i)
                termine.push_back(neuerTermin());
        });
    }

    GespeicherterTermin neuerTermin() {
        const bool kurz = zahl(1, 5) == 1;
        Datum wann = jetzt().plusSekunden(kurz              ? zahl(1, 30) * 60
                                          : zahl(1, 2) == 1 ? zahl(60, 3600)
                                                            : zahl(60, 90000));
        // Few repeating ones, as they stay for the year.
        const auto wert = static_cast<std::int16_t>(kurz || zahl(1, 200) > 1 ? 0 : zahl(1, 3));
        // Two short-time alarms of one second are one to the journal: other programs make no such pair.
        while (kurz && !kurzzeitmomente_.insert(wann.sekunden()).second)
            wann = wann.plusSekunden(1);
        const int nummer = kurz ? kKurzzeit : neueNummer("appointment at " + datumAlsText(wann));
        eigene_.push_back({{{nummer, 1}}, wann, wert, false});
        return {wann, kurz ? "(Kurzzeiterinnerung)" : "Termin [" + std::to_string(nummer) + "]", wert, true};
    }

    void schreibeTermine(const std::function<void(std::vector<GespeicherterTermin>&)>& aendere) {
        programm_.ports.dateien.stuerzeAbBei(0);
        auto termine = programm_.gespeicherteTermine();
        aendere(termine);
        programm_.setzeTermine(termine);
        if (mitChance(0.1)) scharfstellen();
        steuerzeile("refreshkonfig");
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
            ++konten_[nummer].hoechstens;
            const bool aufzeichnung = zahl(1, 5) == 1;
            tabelle.push_back({wann, beginn, dauer, "Film [" + std::to_string(nummer) + "]", aufzeichnung});
            markierte_.push_back({nummer, wann, DateAdd(Einheit::Minute, dauer, beginn), false});
        }
        std::sort(markierte_.begin() + static_cast<std::ptrdiff_t>(ersterOffener_), markierte_.end(),
                  [](const auto& a, const auto& b) { return a.ende < b.ende; });
        if (angesagt) return steuerzeile("terminupdate");
        wissen_ = false;
    }

    int neueNummer(std::string was) {
        const int nummer = ++letzteNummer_;
        konten_[nummer].was = std::move(was);
        return nummer;
    }

    // ---- what the program meets ----

    std::optional<FakeAntwort> datenbank(const std::string& sql) {
        if (programm_.ports.uhr.laufzeitMs() < gesperrtBis_) return Fehler(3260, "DAO.Database", "Gesperrt.");
        if (sql.find("Optionen,Datum,Uhrzeit,Sendung") != std::string::npos) wissen_ = true;
        return programm_.tvDaten.antwort(sql, jetzt());
    }

    // The user is away for a while, ticks come in, and then he tries again or gives up.
    void imKasten(const FakeMeldungen::Kasten&) {
        for (int i = zahl(1, 40); i > 0; --i) {
            vor(1);
            tick();
        }
        const bool wiederholt = zahl(1, 100) <= 60;
        if (!wiederholt) wissen_ = false;
        programm_.ports.meldungen.antworten = {wiederholt ? Antwort::Wiederholen : Antwort::Abbrechen};
    }

    void beiNachrichten() {
        if (!laeuft_ || imTick_.empty() || !mitChance(0.02)) return;
        if (programm_.hinweis->gezeigt && zahl(1, 2) == 1) return antworte();
        zahl(1, 2) == 1 ? neueTermine() : programm_.anwendung->DoThis("terminupdate");
    }

    std::mt19937 zufall_;
    Programm programm_;
    std::map<int, Konto> konten_;
    std::deque<EigenerEintrag> eigene_;
    std::vector<EigenerEintrag*> imTick_;
    std::vector<MarkierterEintrag> markierte_;
    std::size_t ersterOffener_ = 0;
    std::set<std::int64_t> kurzzeitmomente_;
    int letzteNummer_ = 0;
    std::int64_t gesperrtBis_ = 0;
    bool laeuft_ = false, wissen_ = false, ruhig_ = false, nachNeustart_ = false, herbst_ = false,
         fruehling_ = false;
};

TEST(Simulation, EveryDueEntryIsShownExactlyOnceOverAYear) {
    const char* vorgabe = std::getenv("WENDEL_SAAT");
    const auto saat = static_cast<std::uint32_t>(vorgabe ? std::atoi(vorgabe) : 20121224);
    std::cout << "seed " << saat << " (WENDEL_SAAT sets another)\n";
    Welt welt(saat);
    welt.lebe(moment(2013, 7, 1));
    welt.laufeAus();
    welt.pruefe();
    EXPECT_EQ(welt.zeitumstellungen, 2);
    EXPECT_GT(welt.markenPflichten, 2000);
    EXPECT_GT(welt.imSchreibenGetoetet, 200);
}

}  // namespace
}  // namespace wendel
