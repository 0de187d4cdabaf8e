#include "Guidespalten.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "jet/storage/Catalog.h"
#include "platform/Text.h"

namespace wendel::skarvel {
namespace {

// XMLTV has nothing for them, or they belong to the database, the guide or the user.
constexpr auto kFremde = std::to_array<std::string_view>(
    {"Pos", "Aktualisierung", "ShowviewVPS", "Bilddateiname", "Bewertungen", "KzTelefon", "KzUncoded",
     "KzBilddateiHeruntergeladen", "KzInFavoritenliste", "KzImArchiv", "HTMLSeite"});

std::vector<Guidespalte> eigene() {
    std::vector<Guidespalte> spalten;
    for (const bool inDetails : {false, true}) {
        for (const auto& [name, feld] : inDetails ? cSendung::spaltenDetails() : cSendung::spaltenSendungen())
            if (std::find(kFremde.begin(), kFremde.end(), name) == kFremde.end())
                spalten.push_back({name, feld, inDetails});
    }
    return spalten;
}

Variant alsVariant(const std::string& wert) { return Variant::text(wert); }
Variant alsVariant(std::int32_t wert) { return Variant::lang(wert); }
Variant alsVariant(std::int16_t wert) { return Variant::integer(wert); }
Variant alsVariant(bool wert) { return Variant::boolesch(wert); }
Variant alsVariant(Datum wert) { return Variant::datum(wert); }

// A column's length counts units of UTF-16: a character beyond the basic plane takes two.
std::string erste(std::string_view text, std::size_t einheiten) {
    std::size_t ende = 0;
    while (ende < text.size()) {
        const auto fuehrend = static_cast<unsigned char>(text[ende]);
        const std::size_t bytes = fuehrend < 0x80 ? 1 : fuehrend < 0xE0 ? 2 : fuehrend < 0xF0 ? 3 : 4;
        const std::size_t braucht = bytes == 4 ? 2 : 1;
        if (braucht > einheiten) break;
        einheiten -= braucht;
        ende += bytes;
    }
    return std::string(text.substr(0, ende));
}

std::string tabelleVon(const Guidespalte& spalte) {
    return spalte.inDetails ? "SendungenDetails." : "Sendungen.";
}

}  // namespace

std::span<const Guidespalte> guidespalten() {
    static const std::vector<Guidespalte> spalten = eigene();
    return spalten;
}

Variant wertVon(const cSendung& sendung, const Guidespalte& spalte) {
    return std::visit([&](auto feld) { return alsVariant(sendung.*feld); }, spalte.feld);
}

bool gleich(const cSendung& a, const cSendung& b, const Guidespalte& spalte) {
    return std::visit([&](auto feld) { return a.*feld == b.*feld; }, spalte.feld);
}

Spaltenbreiten Spaltenbreiten::ausDatenbank(const std::string& pfad) {
    Spaltenbreiten breiten;
    jet::Database datenbank(pfad, jet::Access::kReadOnly);
    breiten.nurWindows1252_ = datenbank.file().version() == jet::Version::kJet3;
    const std::size_t bytesJeZeichen = breiten.nurWindows1252_ ? 1 : 2;
    for (const std::string tabelle : {"Sender", "Sendungen", "SendungenDetails"}) {
        const auto definition = datenbank.table(tabelle);
        if (!definition) continue;
        for (const jet::Column& spalte : definition->columns) {
            if (spalte.type == jet::ColumnType::kText)
                breiten.setze(LCase(tabelle + "." + spalte.name), spalte.length / bytesJeZeichen);
        }
    }
    return breiten;
}

std::size_t Spaltenbreiten::breite(const std::string& spalte, std::size_t sonst) const {
    const auto gefunden = breiten_.find(LCase(spalte));
    return gefunden == breiten_.end() ? sonst : gefunden->second;
}

// What is stored must read back as it was, else the next run would take it for a change.
std::string Spaltenbreiten::passend(const std::string& spalte, std::string text) const {
    if (nurWindows1252_) text = ausWindows1252(nachWindows1252(text));
    const std::size_t zeichen = breite(spalte, text.size());
    return zeichen < text.size() ? erste(text, zeichen) : text;
}

void Spaltenbreiten::passeEin(cSendung& sendung) const {
    for (const Guidespalte& spalte : guidespalten()) {
        if (const auto* feld = std::get_if<std::string cSendung::*>(&spalte.feld)) {
            std::string& text = sendung.**feld;
            text = passend(tabelleVon(spalte) + spalte.name, std::move(text));
        }
    }
}

}  // namespace wendel::skarvel
