#include "tvdb/Senderliste.h"

#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel {

namespace {

// Favourites first, since true is -1 in the database; then the user's order, then the guide's.
constexpr const char* kAlleSender =
    "Select * from Sender Order by Favorit*10000000+SortNr*10000+SortNrKestrin";

struct Sammlungen {
    Sendersammlung alle, favoriten;
};

void nehmeAuf(Sammlungen& sammlungen, const std::shared_ptr<cSender>& sender) {
    sammlungen.alle.add(sender, sender->Senderkennung);
    if (sender->Favorit) sammlungen.favoriten.add(sender, sender->Senderkennung);
}

void leseZeilen(Recordset& rs, Sammlungen& sammlungen) {
    for (; !rs.eof(); rs.moveNext()) {
        auto sender = std::make_shared<cSender>();
        sender->LeseVonDatensatz(rs);
        nehmeAuf(sammlungen, sender);
    }
}

}  // namespace

void Sendersammlung::add(std::shared_ptr<cSender> sender, std::string_view schluessel) {
    if (!nachSchluessel_.try_emplace(LCase(schluessel), sender).second) {
        throw Fehler(fehlernummer::kDoppelterSchluessel, "Sendersammlung",
                     "Dieser Schlüssel ist bereits einem Element dieser Auflistung zugeordnet.");
    }
    sender_.push_back(std::move(sender));
}

std::shared_ptr<cSender> Sendersammlung::suche(std::string_view schluessel) const {
    const auto treffer = nachSchluessel_.find(LCase(schluessel));
    return treffer == nachSchluessel_.end() ? nullptr : treffer->second;
}

void Senderliste::laden() {
    auto db = zugriff_.OpenDatenbank(zugriff_.datenbankdatei());
    auto rs = zugriff_.SafeOpenRs(db, kAlleSender);
    Sammlungen neu;
    const auto uebernehmen = [&] {
        alle_ = std::move(neu.alle);
        favoriten_ = std::move(neu.favoriten);
    };
    try {
        leseZeilen(*rs, neu);
    } catch (const Fehler& fehler) {
        if (fehler.nummer() == fehlernummer::kDoppelterSchluessel) uebernehmen();
        throw;
    }
    uebernehmen();
    zugriff_.SafeCloseRs(rs);
    zugriff_.SafeCloseDatenbank(db);
}

}  // namespace wendel
