#include <utility>

#include "support/Fakes.h"

namespace wendel {

namespace {

// Folder part with its "\", and the last component.
std::pair<std::string, std::string> zerlege(const std::string& absolut) {
    const std::size_t trenner = absolut.rfind('\\');
    return {absolut.substr(0, trenner + 1), absolut.substr(trenner + 1)};
}

}  // namespace

std::string FakeDateisystem::absolut(const std::string& pfad) const {
    return pfad.starts_with('\\') || pfad.substr(0, 2).ends_with(':') ? pfad : aktuell_ + pfad;
}

std::string FakeDateisystem::ordnerpfad(const std::string& pfad) const {
    std::string ergebnis = absolut(pfad);
    if (ergebnis.empty() || ergebnis.back() != '\\') ergebnis += '\\';
    return ergebnis;
}

// ---- setting up and looking ----

void FakeDateisystem::lege(const std::string& pfad, std::string inhalt) {
    const std::string ziel = absolut(pfad);
    legeOrdner(zerlege(ziel).first);
    dateien_[ziel] = std::move(inhalt);
}

void FakeDateisystem::legeOrdner(const std::string& pfad) {
    const std::string ziel = ordnerpfad(pfad);
    for (std::size_t stelle = ziel.find('\\'); stelle != std::string::npos;
         stelle = ziel.find('\\', stelle + 1)) {
        ordner_.insert(ziel.substr(0, stelle + 1));
    }
}

std::optional<std::string> FakeDateisystem::inhalt(const std::string& pfad) const {
    const auto treffer = dateien_.find(absolut(pfad));
    return treffer == dateien_.end() ? std::nullopt : std::optional(treffer->second);
}

std::vector<std::string> FakeDateisystem::dateien() const {
    std::vector<std::string> namen;
    for (const auto& [name, inhalt] : dateien_)
        namen.push_back(name);
    return namen;
}

void FakeDateisystem::neustart() {
    tot_ = false;
    absturzIn_ = 0;
    schreibfehlerIn_ = 0;
}

// ---- failing ----

bool FakeDateisystem::vorgang(std::string_view name, const std::string& pfad) {
    if (tot_) return false;
    notiere(name, pfad);
    return !(scheitert && scheitert(std::string(name), pfad));
}

bool FakeDateisystem::dauerhaft(const std::function<void()>& ganz, const std::function<void()>& halb) {
    tot_ = absturzIn_ > 0 && --absturzIn_ == 0;
    const bool scheitertJetzt = !tot_ && schreibfehlerIn_ > 0 && --schreibfehlerIn_ == 0;
    if (tot_ ? rest_ == Rest::Alles : !scheitertJetzt) {
        ganz();
    } else if (halb && tot_ && rest_ == Rest::Haelfte) {
        halb();
    }
    if (tot_) throw Absturz{};
    return !scheitertJetzt;
}

bool FakeDateisystem::schreibbar(std::string_view name, const std::string& pfad) {
    if (!vorgang(name, pfad)) return false;
    const std::string ziel = absolut(pfad);
    return !pfad.empty() && ordner_.contains(zerlege(ziel).first) && !ordner_.contains(ziel + "\\") &&
           !nurLesen.contains(pfad) && !nurLesen.contains(ziel);
}

bool FakeDateisystem::schreibe(std::string_view name, const std::string& pfad, std::string_view inhalt,
                               const std::function<void(std::string&, std::string_view)>& tue) {
    if (!schreibbar(name, pfad)) return false;
    const auto bis = [&](std::size_t laenge) { tue(dateien_[absolut(pfad)], inhalt.substr(0, laenge)); };
    return dauerhaft([&] { bis(inhalt.size()); }, [&] { bis(inhalt.size() / 2); });
}

// ---- the port ----

bool FakeDateisystem::existiert(const std::string& pfad) {
    return vorgang("existiert", pfad) && inhalt(pfad);
}

std::optional<std::uint64_t> FakeDateisystem::groesse(const std::string& pfad) {
    const auto gelesen = vorgang("groesse", pfad) ? inhalt(pfad) : std::nullopt;
    return gelesen ? std::optional<std::uint64_t>(gelesen->size()) : std::nullopt;
}

std::optional<Dateistand> FakeDateisystem::stand(const std::string& pfad) {
    const auto gelesen = vorgang("stand", pfad) ? inhalt(pfad) : std::nullopt;
    if (!gelesen) return std::nullopt;
    const auto zeit = geaendertNs.find(pfad);
    return Dateistand{gelesen->size(), zeit == geaendertNs.end() ? 0 : zeit->second};
}

std::optional<std::vector<Ordnereintrag>> FakeDateisystem::ordnerinhalt(const std::string& pfad) {
    const std::string ordner = ordnerpfad(pfad);
    if (!vorgang("ordnerinhalt", pfad) || !ordner_.contains(ordner)) return std::nullopt;
    std::vector<Ordnereintrag> eintraege;
    for (const auto& [datei, text] : dateien_) {
        const std::string name = datei.starts_with(ordner) ? datei.substr(ordner.size()) : "";
        const auto zeit = geaendertNs.find(datei);
        if (!name.empty() && name.find('\\') == std::string::npos)
            eintraege.push_back({name, {text.size(), zeit == geaendertNs.end() ? 0 : zeit->second}});
    }
    return eintraege;
}

std::optional<std::string> FakeDateisystem::lesen(const std::string& pfad) {
    return vorgang("lesen", pfad) ? inhalt(pfad) : std::nullopt;
}

bool FakeDateisystem::anlegen(const std::string& pfad) {
    if (dateien_.contains(absolut(pfad))) return vorgang("anlegen", pfad);
    return schreibbar("anlegen", pfad) && dauerhaft([&] { dateien_[absolut(pfad)]; });
}

bool FakeDateisystem::ueberschreibenAmAnfang(const std::string& pfad, std::string_view inhalt) {
    return schreibe("ueberschreibenAmAnfang", pfad, inhalt, [](std::string& datei, std::string_view teil) {
        datei.replace(0, std::min(datei.size(), teil.size()), teil);
    });
}

bool FakeDateisystem::schreiben(const std::string& pfad, std::string_view inhalt) {
    return schreibe("schreiben", pfad, inhalt,
                    [](std::string& datei, std::string_view teil) { datei = teil; });
}

bool FakeDateisystem::ersetzen(const std::string& pfad, std::string_view inhalt) {
    return schreibbar("ersetzen", pfad) && dauerhaft([&] { dateien_[absolut(pfad)] = inhalt; });
}

bool FakeDateisystem::anhaengen(const std::string& pfad, std::string_view inhalt) {
    return schreibe("anhaengen", pfad, inhalt,
                    [](std::string& datei, std::string_view teil) { datei += teil; });
}

bool FakeDateisystem::loeschen(const std::string& pfad) {
    return schreibbar("loeschen", pfad) && dateien_.contains(absolut(pfad)) &&
           dauerhaft([&] { dateien_.erase(absolut(pfad)); });
}

bool FakeDateisystem::umbenennen(const std::string& von, const std::string& nach) {
    const std::string quelle = absolut(von), ziel = absolut(nach);
    if (!vorgang("umbenennen", von) || !dateien_.contains(quelle) || dateien_.contains(ziel)) return false;
    return ordner_.contains(zerlege(ziel).first) && dauerhaft([&] {
               auto knoten = dateien_.extract(quelle);
               knoten.key() = ziel;
               dateien_.insert(std::move(knoten));
           });
}

bool FakeDateisystem::ordnerAnlegen(const std::string& pfad) {
    if (!vorgang("ordnerAnlegen", pfad) || pfad.empty()) return false;
    return ordner_.contains(ordnerpfad(pfad)) || dauerhaft([&] { legeOrdner(pfad); });
}

bool FakeDateisystem::ordnerWechseln(const std::string& pfad) {
    if (!vorgang("ordnerWechseln", pfad) || pfad.empty() || !ordner_.contains(ordnerpfad(pfad))) return false;
    aktuell_ = ordnerpfad(pfad);
    return true;
}

}  // namespace wendel
