#include "core/Terminablage.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "platform/Text.h"
#include "reminders/Terminspeicher.h"

namespace wendel {

namespace {

using Werte = std::vector<GespeicherterTermin>;
// For each appointment of the file the place in vorher of the one that it was.
using Herkunft = std::vector<std::optional<std::size_t>>;

auto alles(const GespeicherterTermin& t) {
    return std::tuple(t.weckZeit, std::string_view(t.weckText), t.intervall, t.aktiv);
}
auto zeitUndText(const GespeicherterTermin& t) {
    return std::tuple(t.weckZeit, std::string_view(t.weckText));
}
auto nurText(const GespeicherterTermin& t) { return std::string_view(t.weckText); }
auto nurZeit(const GespeicherterTermin& t) { return t.weckZeit; }

bool jeder(const GespeicherterTermin&) { return true; }
// What many share says nothing about which of them it is.
bool hatEigenenText(const GespeicherterTermin& t) {
    return !t.weckText.empty() && LCase(t.weckText) != LCase(kKurzzeittext);
}

// Pairs what has found no partner yet, comes into question and agrees in the key, each in order.
template <class Schluessel>
void paare(const Ablage& vorher, std::vector<bool>& vergeben, const Werte& datei, Herkunft& herkunft,
           Schluessel schluessel, bool (*kommtInFrage)(const GespeicherterTermin&) = jeder) {
    std::multimap<decltype(schluessel(datei.front())), std::size_t> freie;
    for (std::size_t i = 0; i < vorher.size(); ++i) {
        if (!vergeben[i] && kommtInFrage(vorher[i].wert)) freie.emplace(schluessel(vorher[i].wert), i);
    }
    for (std::size_t j = 0; j < datei.size() && !freie.empty(); ++j) {
        if (herkunft[j]) continue;
        const auto gefunden = freie.lower_bound(schluessel(datei[j]));
        if (gefunden == freie.end() || gefunden->first != schluessel(datei[j])) continue;
        herkunft[j] = gefunden->second;
        vergeben[gefunden->second] = true;
        freie.erase(gefunden);
    }
}

Herkunft herkunftVon(const Ablage& vorher, const Werte& datei) {
    Herkunft herkunft(datei.size());
    std::vector<bool> vergeben(vorher.size());
    paare(vorher, vergeben, datei, herkunft, alles);
    paare(vorher, vergeben, datei, herkunft, zeitUndText);
    paare(vorher, vergeben, datei, herkunft, nurText, hatEigenenText);
    paare(vorher, vergeben, datei, herkunft, nurZeit);
    return herkunft;
}

GespeicherterTermin abgelegt(const TerminZeiger& termin) {
    GespeicherterTermin wert = termineFuerEinstellungen({termin}).front();
    wert.weckText = ausWindows1252(nachWindows1252(wert.weckText));
    return wert;
}

// A text that the file can't hold in full stays in full as long as the file's is that of it.
void setzeWerte(cTermin& termin, const GespeicherterTermin& wert) {
    if (ausWindows1252(nachWindows1252(termin.WeckText)) != wert.weckText) termin.WeckText = wert.weckText;
    termin.WeckZeit = wert.weckZeit;
    termin.Intervall = wert.intervall;
    termin.Aktiv = wert.aktiv;
}

TerminZeiger neuerTermin(const GespeicherterTermin& wert, Datum jetzt) {
    const Terminliste termine = termineAusEinstellungen({wert}, jetzt);
    return termine.empty() ? nullptr : termine.front();
}

bool sindGleich(const Ablage& vorher, const Werte& datei) {
    return std::equal(vorher.begin(), vorher.end(), datei.begin(), datei.end(),
                      [](const AbgelegterTermin& a, const GespeicherterTermin& b) { return a.wert == b; });
}

// Time alone has changed the entry, by firing or catching up: nobody has edited it.
bool nurWeitergestellt(const GespeicherterTermin& vorher, const GespeicherterTermin& hier) {
    if (hier.weckText != vorher.weckText || hier.intervall != vorher.intervall) return false;
    if (hier.weckZeit == vorher.weckZeit) return true;
    return hier.aktiv == vorher.aktiv && hier.weckZeit > vorher.weckZeit &&
           hier.weckZeit.uhrzeitteil() == vorher.weckZeit.uhrzeitteil() && wiederholtSich(vorher.intervall);
}

class Abgleich {
  public:
    Abgleich(Terminliste& eigene, const Ablage& vorher, const Werte& datei, Datum jetzt)
        : eigene_(eigene), vorher_(vorher), datei_(datei), jetzt_(jetzt), neu_(datei.size()) {
        for (const TerminZeiger& termin : eigene)
            vorhanden_.insert(termin.get());
    }

    Ablage ausfuehren() {
        const Herkunft herkunft = herkunftVon(vorher_, datei_);
        geloeschteEntfernen(herkunft);
        for (std::size_t j = 0; j < datei_.size(); ++j) {
            neu_[j].wert = datei_[j];
            if (herkunft[j]) neu_[j].termin = bekannter(vorher_[*herkunft[j]], datei_[j]);
        }
        neueAnhaengen(herkunft);
        return std::move(neu_);
    }

  private:
    bool stehtNoch(const TerminZeiger& termin) const { return vorhanden_.contains(termin.get()); }

    void geloeschteEntfernen(const Herkunft& herkunft) {
        std::vector<bool> nochDa(vorher_.size());
        for (const auto& stelle : herkunft) {
            if (stelle) nochDa[*stelle] = true;
        }
        std::unordered_set<const cTermin*> weg;
        for (std::size_t i = 0; i < vorher_.size(); ++i) {
            const auto& [wert, termin] = vorher_[i];
            if (nochDa[i] || !stehtNoch(termin)) continue;
            if (nurWeitergestellt(wert, abgelegt(termin))) weg.insert(termin.get());
        }
        std::erase_if(eigene_, [&](const TerminZeiger& termin) { return weg.contains(termin.get()); });
    }

    // The record for an appointment that was there before: the old one with what has changed, or none when it
    // has to be made.
    TerminZeiger bekannter(const AbgelegterTermin& alt, const GespeicherterTermin& fremd) {
        const TerminZeiger& termin = alt.termin;
        if (fremd == alt.wert) return termin;
        if (!stehtNoch(termin)) return nullptr;
        const GespeicherterTermin hier = abgelegt(termin);
        if (hier == fremd) return termin;
        if (nurWeitergestellt(alt.wert, hier)) {
            const bool gefeuert = alt.wert.aktiv && hier != alt.wert;
            setzeWerte(*termin, fremd);
            if (gefeuert && fremd.aktiv && fremd.weckZeit == alt.wert.weckZeit)
                nachFeuernWeiterstellen(*termin, jetzt_);
            return termin;
        }
        if (zeitUndText(fremd) != zeitUndText(alt.wert)) return nullptr;
        if (hier.intervall == alt.wert.intervall) termin->Intervall = fremd.intervall;
        if (hier.aktiv == alt.wert.aktiv) termin->Aktiv = fremd.aktiv;
        return termin;
    }

    // Of the user's own new entries one may have got into the file already, by a store that was taken for
    // failed.
    void neueAnhaengen(const Herkunft& herkunft) {
        Ablage ungebundene = ablageVon(eigene_);
        std::unordered_set<const cTermin*> gebunden;
        for (const AbgelegterTermin& abgelegter : neu_)
            gebunden.insert(abgelegter.termin.get());
        std::erase_if(ungebundene, [&](const auto& a) { return gebunden.contains(a.termin.get()); });
        std::vector<bool> vergeben(ungebundene.size());
        Herkunft gleiche(datei_.size());
        for (std::size_t j = 0; j < datei_.size(); ++j) {
            if (neu_[j].termin || istErledigt(herkunft[j], datei_[j])) gleiche[j] = kKeiner;
        }
        paare(ungebundene, vergeben, datei_, gleiche, alles);
        for (std::size_t j = 0; j < datei_.size(); ++j) {
            if (gleiche[j] == kKeiner) continue;
            neu_[j].termin = gleiche[j] ? ungebundene[*gleiche[j]].termin : neuerTermin(datei_[j], jetzt_);
            if (!gleiche[j] && neu_[j].termin) eigene_.push_back(neu_[j].termin);
        }
    }

    // Unchanged there, and left out or deleted here.
    bool istErledigt(const std::optional<std::size_t>& stelle, const GespeicherterTermin& fremd) const {
        return stelle && vorher_[*stelle].wert == fremd;
    }

    static constexpr std::size_t kKeiner = static_cast<std::size_t>(-1);

    Terminliste& eigene_;
    const Ablage& vorher_;
    const Werte& datei_;
    Datum jetzt_;
    Ablage neu_;
    std::unordered_set<const cTermin*> vorhanden_;
};

}  // namespace

Ablage ablageVon(const Terminliste& termine) {
    Ablage ablage;
    ablage.reserve(termine.size());
    for (const TerminZeiger& termin : termine)
        ablage.push_back({abgelegt(termin), termin});
    return ablage;
}

std::size_t unveraenderte(const Ablage& vorher, const Werte& datei) {
    if (sindGleich(vorher, datei)) return datei.size();
    Herkunft herkunft(datei.size());
    std::vector<bool> vergeben(vorher.size());
    paare(vorher, vergeben, datei, herkunft, alles);
    return static_cast<std::size_t>(std::count(vergeben.begin(), vergeben.end(), true));
}

Ablage neuGelesen(const Ablage& vorher, const Werte& datei, Datum jetzt) {
    const Herkunft herkunft = herkunftVon(vorher, datei);
    Ablage neu;
    for (std::size_t j = 0; j < datei.size(); ++j) {
        TerminZeiger termin = herkunft[j] ? vorher[*herkunft[j]].termin : nullptr;
        const TerminZeiger frisch = neuerTermin(datei[j], jetzt);
        if (termin && frisch) setzeWerte(*termin, datei[j]);
        neu.push_back({datei[j], frisch && termin ? termin : frisch});
    }
    return neu;
}

Ablage fremdesUebernehmen(Terminliste& eigene, const Ablage& vorher, const Werte& datei, Datum jetzt) {
    if (sindGleich(vorher, datei)) return vorher;
    return Abgleich(eigene, vorher, datei, jetzt).ausfuehren();
}

}  // namespace wendel
