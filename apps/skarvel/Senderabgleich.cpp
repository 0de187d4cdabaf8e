#include "Senderabgleich.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "Kennungen.h"
#include "platform/Text.h"

namespace wendel::skarvel {
namespace {

constexpr std::size_t kKennungsbreite = 20;
// More would outweigh the next column of the order in which channels are listed.
constexpr std::int32_t kHoechsteSortNr = 999, kHoechsteSortNrKestrin = 9999;

bool istZahl(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// "12 Das Erste" into number and name; the number is "" where there is none.
std::pair<std::string, std::string> zerlegt(const std::string& bezeichnung) {
    const std::size_t blank = bezeichnung.find(' ');
    if (blank == std::string::npos || !istZahl(std::string_view(bezeichnung).substr(0, blank)))
        return {"", bezeichnung};
    return {bezeichnung.substr(0, blank), Trim(bezeichnung.substr(blank))};
}

struct Namen {
    std::string nummer, lang, kurz;
    std::vector<std::string> alle;  // lower case, without number
};

// The names may repeat number and name in any combination: "12", "Das Erste", "12 Das Erste".
Namen namenVon(const XmltvKanal& kanal) {
    Namen namen;
    for (const XmltvText& eintrag : kanal.namen) {
        if (istZahl(eintrag.text)) {
            if (namen.nummer.empty()) namen.nummer = eintrag.text;
            continue;
        }
        const auto [nummer, name] = zerlegt(eintrag.text);
        if (namen.nummer.empty()) namen.nummer = nummer;
        if (namen.lang.empty()) namen.lang = name;
        if (namen.kurz.empty() || zeichenzahl(name) < zeichenzahl(namen.kurz)) namen.kurz = name;
        namen.alle.push_back(LCase(name));
    }
    if (namen.lang.empty()) namen.lang = namen.kurz = kanal.kennung;
    return namen;
}

std::string mitNummer(const std::string& nummer, const std::string& name) {
    return nummer.empty() ? name : nummer + " " + name;
}

class Planung {
  public:
    Planung(const std::vector<XmltvKanal>& kanaele, const std::vector<Senderzeile>& vorhandene,
            const Spaltenbreiten& breiten)
        : kanaele_(kanaele), vorhandene_(vorhandene), breiten_(breiten), zeilen_(kanaele.size()) {
        plan_.kennungen.resize(kanaele.size());
        for (const XmltvKanal& kanal : kanaele)
            namen_.push_back(namenVon(kanal));
        for (std::size_t z = 0; z < vorhandene.size(); ++z) {
            nachKennung_.emplace(LCase(vorhandene[z].kennung), z);
            sortNr_ = std::max(sortNr_, vorhandene[z].sortNr);
            sortNrKestrin_ = std::max(sortNrKestrin_, vorhandene[z].sortNrKestrin);
        }
    }

    Senderplan plan() {
        vergebeKennungen();
        ordneNachNamenZu();
        for (std::size_t i = 0; i < kanaele_.size(); ++i) {
            if (zeilen_[i])
                benenne(i, vorhandene_[*zeilen_[i]]);
            else
                fuegeNeuen(i);
        }
        return std::move(plan_);
    }

  private:
    // In the order of the identifiers, so that two that share a key get the same ones in whatever order they
    // come.
    void vergebeKennungen() {
        std::vector<std::size_t> reihenfolge(kanaele_.size());
        std::iota(reihenfolge.begin(), reihenfolge.end(), std::size_t{0});
        std::sort(reihenfolge.begin(), reihenfolge.end(),
                  [&](std::size_t a, std::size_t b) { return kanaele_[a].kennung < kanaele_[b].kennung; });
        const std::size_t breite = std::min(breiten_.breite("Sender.Senderkennung", kKennungsbreite),
                                            breiten_.breite("Sendungen.SenderKennung", kKennungsbreite));
        std::set<std::string> vergeben;
        for (const std::size_t i : reihenfolge) {
            std::string kennung = kennungFuer(kanaele_[i].kennung, breite);
            for (int versuch = 0; !vergeben.insert(LCase(kennung)).second; ++versuch)
                kennung = gestreuteKennung(kanaele_[i].kennung, breite, versuch);
            if (const auto zeile = nachKennung_.find(LCase(kennung)); zeile != nachKennung_.end())
                ordneZu(i, zeile->second);
            else
                plan_.kennungen[i] = kennung;
        }
    }

    void ordneNachNamenZu() {
        std::map<std::string, std::size_t> nachName;
        for (std::size_t z = 0; z < vorhandene_.size(); ++z) {
            if (belegt_.contains(z)) continue;
            const Senderzeile& zeile = vorhandene_[z];
            for (const std::string& name : {zerlegt(zeile.bezeichnung).second, zeile.kurz})
                if (!name.empty()) nachName.try_emplace(LCase(name), z);
        }
        for (std::size_t i = 0; i < kanaele_.size(); ++i) {
            for (const std::string& name : namen_[i].alle) {
                const auto gefunden = nachName.find(name);
                if (zeilen_[i] || gefunden == nachName.end() || belegt_.contains(gefunden->second)) continue;
                ordneZu(i, gefunden->second);
            }
        }
    }

    void ordneZu(std::size_t i, std::size_t zeile) {
        zeilen_[i] = zeile;
        belegt_.insert(zeile);
        plan_.kennungen[i] = vorhandene_[zeile].kennung;
    }

    void benenne(std::size_t i, Senderzeile zeile) {
        const Senderzeile bisher = zeile;
        const auto [nummer, name] = zerlegt(zeile.bezeichnung);
        const std::vector<std::string>& alle = namen_[i].alle;
        const bool heisstSo = alle.empty() || std::find(alle.begin(), alle.end(), LCase(name)) != alle.end();
        if (!zeile.geschuetzt && !heisstSo)
            zeile.bezeichnung =
                passend("Bezeichnung", mitNummer(nummer.empty() ? namen_[i].nummer : nummer, namen_[i].lang));
        if (zeile.kurz.empty()) zeile.kurz = passend("BezeichnungKurz", namen_[i].kurz);
        if (zeile.webseite.empty()) zeile.webseite = passend("Webseite", kanaele_[i].webseite);
        if (zeile != bisher) plan_.umzubenennen.push_back(std::move(zeile));
    }

    void fuegeNeuen(std::size_t i) {
        plan_.neue.push_back(
            {.kennung = plan_.kennungen[i],
             .bezeichnung = passend("Bezeichnung", mitNummer(namen_[i].nummer, namen_[i].lang)),
             .kurz = passend("BezeichnungKurz", namen_[i].kurz),
             .webseite = passend("Webseite", kanaele_[i].webseite),
             .sortNr = std::min(++sortNr_, kHoechsteSortNr),
             .sortNrKestrin = std::min(++sortNrKestrin_, kHoechsteSortNrKestrin)});
    }

    std::string passend(const std::string& spalte, const std::string& text) const {
        return breiten_.passend("Sender." + spalte, text);
    }

    const std::vector<XmltvKanal>& kanaele_;
    const std::vector<Senderzeile>& vorhandene_;
    const Spaltenbreiten& breiten_;
    std::map<std::string, std::size_t> nachKennung_;  // rows
    std::vector<Namen> namen_;
    std::vector<std::optional<std::size_t>> zeilen_;  // the row of each channel
    std::set<std::size_t> belegt_;
    std::int32_t sortNr_ = 0, sortNrKestrin_ = 0;
    Senderplan plan_;
};

}  // namespace

Senderplan senderplan(const std::vector<XmltvKanal>& kanaele, const std::vector<Senderzeile>& vorhandene,
                      const Spaltenbreiten& breiten) {
    return Planung(kanaele, vorhandene, breiten).plan();
}

}  // namespace wendel::skarvel
