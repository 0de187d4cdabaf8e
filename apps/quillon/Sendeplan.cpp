#include "Sendeplan.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <set>

namespace wendel::quillon {

namespace {

constexpr int kTagesbeginn = 5 * 60;
constexpr int kTagesende = kTagesbeginn + 24 * 60;
constexpr int kHoechstensKurz = 20;

int minutenAus(int uhrzeit) { return uhrzeit / 100 * 60 + uhrzeit % 100; }

std::int64_t ganzzahligGeteilt(std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : (a - b + 1) / b; }

// Day 0 of Datum was a Saturday; Monday is 0 here.
int wochentag(std::int64_t tagesnummer) {
    return static_cast<int>(tagesnummer + 5 - ganzzahligGeteilt(tagesnummer + 5, 7) * 7);
}
bool gilt(Tage tage, std::int64_t tagesnummer) { return (tage >> wochentag(tagesnummer) & 1) != 0; }

// How often a row has come until this day, so that a series goes on with its next episode.
std::int64_t malBisher(Tage tage, std::int64_t tagesnummer) {
    const auto bisGestern = static_cast<Tage>(tage & ((1U << wochentag(tagesnummer)) - 1));
    return ganzzahligGeteilt(tagesnummer + 5, 7) * std::popcount(tage) + std::popcount(bisGestern);
}

// Kinds whose rows keep their title: the viewer finds the series again on the next day.
bool istReihe(Rubrik rubrik) {
    switch (rubrik) {
        case Rubrik::Fruehstueck:
        case Rubrik::Magazin:
        case Rubrik::Ratgeber:
        case Rubrik::Talk:
        case Rubrik::Quiz:
        case Rubrik::Krimiserie:
        case Rubrik::Familienserie:
        case Rubrik::Comedy:
        case Rubrik::Kinder: return true;
        default: return false;
    }
}

// Kinds of which no showing is like another.
bool istEinmalig(Rubrik rubrik) {
    switch (rubrik) {
        case Rubrik::Nachrichten:
        case Rubrik::Fruehstueck:
        case Rubrik::Show:
        case Rubrik::Sportmagazin:
        case Rubrik::Sportlive:
        case Rubrik::Kurz:
        case Rubrik::Nacht: return true;
        default: return false;
    }
}

std::vector<const Werk*> werkeDer(Rubrik rubrik) {
    std::vector<const Werk*> gefunden;
    for (const Werk& werk : werke()) {
        if (werk.rubrik == rubrik) gefunden.push_back(&werk);
    }
    return gefunden;
}

// The same shuffled order on every day, so that all works get their turn.
std::vector<const Werk*> gemischt(Rubrik rubrik) {
    auto alle = werkeDer(rubrik);
    std::sort(alle.begin(), alle.end(),
              [](const Werk* a, const Werk* b) { return streuwert(a->titel) < streuwert(b->titel); });
    return alle;
}

// What is for adults is shown at night, and nothing of that kind to children.
bool passtZurUhrzeit(const Werk& werk, int beginn, const Beispielsender& sender) {
    if (sender.gruppe == "Kinder") return werk.fsk <= 6;
    const bool nachts = beginn >= 22 * 60 || beginn < 5 * 60 + 30;
    return werk.fsk <= 12 || nachts;
}

// A little may be cut off, but no film is shown by half.
bool passt(const Werk& werk, int rest) {
    return werk.rubrik == Rubrik::Nacht || werk.minuten <= rest + werk.minuten / 10;
}

// The last showing of a stretch takes what is left of it, commercials and all.
int mitRest(const Werk& werk, int rest) {
    const int spielraum = werk.rubrik == Rubrik::Nacht ? werk.minuten : std::max(10, werk.minuten * 3 / 10);
    return rest <= werk.minuten + spielraum ? rest : werk.minuten;
}

constexpr Werk kNachrichten = {Rubrik::Nachrichten,
                               "",
                               "",
                               "Nachrichten",
                               "D",
                               0,
                               0,
                               30,
                               "Das Wichtigste aus dem In- und Ausland, Sport und Wetter."};

}  // namespace

std::uint64_t streuwert(std::uint64_t a, std::uint64_t b) {
    std::uint64_t x = a * 0x9E3779B97F4A7C15U + b + 0x9E3779B97F4A7C15U;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31);
}

std::uint64_t streuwert(std::string_view text) {
    std::uint64_t wert = text.size();
    for (const char zeichen : text)
        wert = streuwert(wert, static_cast<unsigned char>(zeichen));
    return wert;
}

// Fills the stretches of one day with what is new on it.
class Sendeplan::Tagesfuellung {
  public:
    Tagesfuellung(std::size_t nummer, const Beispielsender& sender, std::int64_t tagesnummer)
        : nummer_(nummer), sender_(sender), tag_(tagesnummer) {}

    std::vector<Ausstrahlung> fuelle(const Abschnitt& abschnitt) {
        std::vector<Ausstrahlung> inhalt;
        int zeit = abschnitt.beginn;
        for (int mal = 0; zeit < abschnitt.ende; ++mal) {
            const int rest = abschnitt.ende - zeit;
            const Werk* werk = werkFuer(*abschnitt.zeile, zeit, rest);
            Ausstrahlung neu = werk ? ausstrahlung(*werk, zeit, mitRest(*werk, rest)) : luecke(zeit, rest);
            if (werk && istReihe(werk->rubrik)) nummeriere(neu, abschnitt, mal);
            zeit += neu.minuten;
            inhalt.push_back(neu);
        }
        return inhalt;
    }

    // One showing for a rest that nothing of the stretch's own kind fits into; it may be shorter.
    Ausstrahlung luecke(int zeit, int rest) {
        const Rubrik rubrik = rest <= kHoechstensKurz ? Rubrik::Kurz : sender_.fuell;
        const Werk* werk = rubrik == Rubrik::Kurz ? kurzesFuer(rest) : naechstes(rubrik, zeit, rest);
        if (!werk) werk = kurzesFuer(rest);
        const int minuten = rest <= kHoechstensKurz ? rest : mitRest(*werk, rest);
        return ausstrahlung(*werk, zeit, minuten);
    }

  private:
    // Null when nothing fits into the rest.
    const Werk* werkFuer(const Planzeile& zeile, int zeit, int rest) {
        if (zeile.rubrik == Rubrik::Nachrichten) return &kNachrichten;
        if (zeile.rubrik == Rubrik::Kurz) return kurzesFuer(rest);
        if (!istReihe(zeile.rubrik)) return naechstes(zeile.rubrik, zeit, rest);
        const Werk* werk = reihe(zeile);
        return werk && passt(*werk, rest) ? werk : nullptr;
    }

    // The same on every day, so by the row's time and not by that of the single episode.
    const Werk* reihe(const Planzeile& zeile) const {
        const auto alle = werkeDer(zeile.rubrik);
        const std::size_t anfang = nummer_ * 3 + static_cast<std::size_t>(zeile.nummer);
        for (std::size_t i = 0; i < alle.size(); ++i) {
            const Werk* werk = alle[(anfang + i) % alle.size()];
            if (passtZurUhrzeit(*werk, minutenAus(zeile.uhrzeit), sender_)) return werk;
        }
        return nullptr;
    }

    const Werk* naechstes(Rubrik rubrik, int zeit, int rest) {
        const auto alle = gemischt(rubrik);
        // Channels and days begin at different places, so that a film does not run everywhere at once.
        const auto anfang =
            static_cast<std::size_t>(tag_ * 15 + static_cast<std::int64_t>(nummer_) * 3 + 1'500'000);
        for (std::size_t i = 0; i < alle.size(); ++i) {
            const Werk* werk = alle[(anfang + i) % alle.size()];
            if (!passtNeu(*werk, zeit, rest)) continue;
            if (!gezeigt_.insert(werk).second) continue;
            return werk;
        }
        return schonGezeigtes(alle, zeit, rest);
    }

    // A small kind is used up before the day is over.
    const Werk* schonGezeigtes(const std::vector<const Werk*>& alle, int zeit, int rest) const {
        for (std::size_t i = 0; i < alle.size(); ++i) {
            const Werk* werk = alle[(static_cast<std::size_t>(zeit) / 5 + i) % alle.size()];
            if (passtNeu(*werk, zeit, rest)) return werk;
        }
        return nullptr;
    }

    bool passtNeu(const Werk& werk, int zeit, int rest) const {
        return gilt(werk.tage, tag_) && passt(werk, rest) && passtZurUhrzeit(werk, zeit, sender_);
    }

    // The short piece of the nearest length, another one each time.
    const Werk* kurzesFuer(int rest) {
        const auto alle = werkeDer(Rubrik::Kurz);
        const auto abstand = [&](const Werk* werk) { return std::abs(werk->minuten - std::min(rest, 15)); };
        const auto versetzt = static_cast<std::size_t>(kurze_++) + nummer_;
        const Werk* bestes = alle[versetzt % alle.size()];
        for (std::size_t i = 0; i < alle.size(); ++i) {
            const Werk* werk = alle[(versetzt + i) % alle.size()];
            if (abstand(werk) < abstand(bestes)) bestes = werk;
        }
        return bestes;
    }

    Ausstrahlung ausstrahlung(const Werk& werk, int zeit, int minuten) const {
        std::uint64_t inhalt = streuwert(werk.titel);
        if (istEinmalig(werk.rubrik)) {
            inhalt = streuwert(streuwert(inhalt, nummer_), static_cast<std::uint64_t>(tag_ * 2000 + zeit));
        }
        return {&werk, zeit, minuten, 0, inhalt, false};
    }

    void nummeriere(Ausstrahlung& neu, const Abschnitt& abschnitt, int mal) const {
        constexpr std::int64_t kFolgen = 480;
        const std::uint64_t titelwert = streuwert(neu.werk->titel);
        const int laenge = neu.werk->minuten;
        const int jeTag = std::max(1, (abschnitt.ende - abschnitt.beginn + laenge / 2) / laenge);
        const std::int64_t laufend = malBisher(abschnitt.zeile->tage, tag_) * jeTag + mal;
        const std::int64_t imUmlauf = laufend - ganzzahligGeteilt(laufend, kFolgen) * kFolgen;
        neu.folge = static_cast<int>(titelwert % 300 + 20) + static_cast<int>(imUmlauf);
        if (!istEinmalig(neu.werk->rubrik))
            neu.inhalt = streuwert(titelwert, static_cast<std::uint64_t>(neu.folge));
    }

    std::size_t nummer_;
    const Beispielsender& sender_;
    std::int64_t tag_;
    std::set<const Werk*> gezeigt_;
    int kurze_ = 0;
};

Sendeplan::Sendeplan(std::size_t sender) : nummer_(sender), sender_(beispielsender()[sender]) {}

std::vector<Sendeplan::Abschnitt> Sendeplan::abschnitte(std::int64_t tagesnummer) const {
    std::vector<Abschnitt> alle;
    for (const Planzeile& zeile : sender_.plan) {
        if (!gilt(zeile.tage, tagesnummer)) continue;
        const int beginn = minutenAus(zeile.uhrzeit);
        if (!alle.empty()) alle.back().ende = beginn;
        alle.push_back({&zeile, beginn, kTagesende});
    }
    return alle;
}

const std::vector<Sendeplan::Gefuellt>& Sendeplan::neues(std::int64_t tagesnummer) {
    const auto [stelle, fehlte] = neues_.try_emplace(tagesnummer);
    if (!fehlte) return stelle->second;
    Tagesfuellung fuellung(nummer_, sender_, tagesnummer);
    for (const Abschnitt& abschnitt : abschnitte(tagesnummer)) {
        if (abschnitt.zeile->art == Planzeile::Art::Neu) {
            stelle->second.push_back({abschnitt, fuellung.fuelle(abschnitt)});
        }
    }
    return stelle->second;
}

// What is shown again; null when the last week had nothing at that time.
const std::vector<Ausstrahlung>* Sendeplan::vorlage(std::int64_t tagesnummer, const Abschnitt& abschnitt) {
    const int beginn = minutenAus(abschnitt.zeile->nummer);
    for (std::int64_t tag = beginn < abschnitt.beginn ? tagesnummer : tagesnummer - 1; tag > tagesnummer - 7;
         --tag) {
        for (const Gefuellt& gefuellt : neues(tag)) {
            if (gefuellt.abschnitt.beginn == beginn) return &gefuellt.inhalt;
        }
    }
    return nullptr;
}

std::vector<Ausstrahlung> Sendeplan::wiederholung(std::int64_t tagesnummer, const Abschnitt& abschnitt) {
    Tagesfuellung fuellung(nummer_, sender_, tagesnummer);
    std::vector<Ausstrahlung> inhalt;
    int zeit = abschnitt.beginn;
    if (const auto* gezeigtes = vorlage(tagesnummer, abschnitt)) {
        for (Ausstrahlung nochmal : *gezeigtes) {
            const int rest = abschnitt.ende - zeit;
            if (rest == 0 || !passt(*nochmal.werk, rest) || !passtZurUhrzeit(*nochmal.werk, zeit, sender_))
                break;
            nochmal.beginn = zeit;
            nochmal.minuten = mitRest(*nochmal.werk, rest);
            nochmal.wiederholung = true;
            zeit += nochmal.minuten;
            inhalt.push_back(nochmal);
        }
    }
    while (zeit < abschnitt.ende) {
        inhalt.push_back(fuellung.luecke(zeit, abschnitt.ende - zeit));
        zeit += inhalt.back().minuten;
    }
    return inhalt;
}

std::vector<Ausstrahlung> Sendeplan::tag(std::int64_t tagesnummer) {
    std::vector<Ausstrahlung> alles;
    for (const Abschnitt& abschnitt : abschnitte(tagesnummer)) {
        if (abschnitt.zeile->art == Planzeile::Art::Wiederholung) {
            const auto nochmal = wiederholung(tagesnummer, abschnitt);
            alles.insert(alles.end(), nochmal.begin(), nochmal.end());
        }
    }
    for (const Gefuellt& gefuellt : neues(tagesnummer))
        alles.insert(alles.end(), gefuellt.inhalt.begin(), gefuellt.inhalt.end());
    std::sort(alles.begin(), alles.end(),
              [](const Ausstrahlung& a, const Ausstrahlung& b) { return a.beginn < b.beginn; });
    return alles;
}

}  // namespace wendel::quillon
