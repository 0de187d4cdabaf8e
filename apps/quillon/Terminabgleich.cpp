#include "Terminabgleich.h"

#include <map>
#include <set>
#include <string>
#include <tuple>

#include "Kalendertext.h"
#include "platform/Text.h"
#include "reminders/cTermin.h"

namespace wendel::quillon {

namespace {

using Schluessel = std::tuple<Datum, std::int16_t, std::string>;

Schluessel schluesselVon(const GespeicherterTermin& termin, Datum jetzt) {
    cTermin bewegt;
    bewegt.WeckZeit = termin.weckZeit;
    bewegt.Intervall = termin.intervall;
    const bool wiederholt = wiederholtSich(bewegt);
    if (wiederholt) nachholen(bewegt, jetzt);
    return {bewegt.WeckZeit, wiederholt ? termin.intervall : intervall::kEinmal,
            trimAlleLeerraeume(mitErlaubtenZeichen(termin.weckText))};
}

class Abgleich {
  public:
    Abgleich(std::span<const GespeicherterTermin> gespeicherte, Datum jetzt) : jetzt_(jetzt) {
        for (const GespeicherterTermin& termin : gespeicherte)
            ++vorhandene_[schluesselVon(termin, jetzt)];
    }

    bool istNeu(const Kalendertermin& eintrag) {
        const Schluessel schluessel = schluesselVon(eintrag.termin, jetzt_);
        if (!gesehene_.insert({schluessel, eintrag.kennung}).second || verbrauche(schluessel)) return false;
        return !eintrag.frueher ||
               !verbrauche({*eintrag.frueher, std::get<1>(schluessel), std::get<2>(schluessel)});
    }

  private:
    bool verbrauche(const Schluessel& schluessel) {
        const auto vorhanden = vorhandene_.find(schluessel);
        if (vorhanden == vorhandene_.end() || vorhanden->second == 0) return false;
        --vorhanden->second;
        return true;
    }

    Datum jetzt_;
    std::map<Schluessel, std::size_t> vorhandene_;
    std::set<std::pair<Schluessel, std::string>> gesehene_;
};

}  // namespace

std::vector<GespeicherterTermin> neueTermine(std::span<const Kalendertermin> aus,
                                             std::span<const GespeicherterTermin> gespeicherte, Datum jetzt) {
    Abgleich abgleich(gespeicherte, jetzt);
    std::vector<GespeicherterTermin> neue;
    for (const Kalendertermin& eintrag : aus) {
        if (abgleich.istNeu(eintrag)) neue.push_back(eintrag.termin);
    }
    return neue;
}

}  // namespace wendel::quillon
