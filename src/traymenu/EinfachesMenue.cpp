#include "traymenu/EinfachesMenue.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "platform/Text.h"
#include "traymenu/Menuetexte.h"

namespace wendel {

namespace {

constexpr std::string_view kProgrammname = "Lomrick";
constexpr std::string_view kVorsatz = "Lomrick: ";
constexpr std::size_t kLaengsterText = 80;  // a host makes its menu as wide as the longest

std::string gekuerzt(const std::string& text) {
    return zeichenzahl(text) <= kLaengsterText ? text : Left(text, kLaengsterText - 1) + "…";
}

std::optional<EinfacherEintrag> naechsterTermin(std::string_view tooltip) {
    if (tooltip.starts_with(kVorsatz)) tooltip.remove_prefix(kVorsatz.size());
    if (tooltip.empty() || tooltip == kProgrammname) return std::nullopt;
    EinfacherEintrag eintrag;
    eintrag.text = tooltip;
    eintrag.freigegeben = false;
    return eintrag;
}

std::vector<EinfacherEintrag> eintraege(const FormBrannikMenue& menue, const Sendersammlung& sender);

EinfacherEintrag eintrag(const cMenuePunkt& punkt, const Sendersammlung& sender) {
    EinfacherEintrag neu;
    neu.text = gekuerzt(Menuetexte::zugaenglicherName(punkt, sender));
    if (punkt.UnterMenue) {
        neu.kinder = eintraege(*punkt.UnterMenue, sender);
        neu.freigegeben = !neu.kinder.empty();
    } else {
        neu.befehl = Menuebefehl::von(punkt);
    }
    return neu;
}

std::vector<EinfacherEintrag> eintraege(const FormBrannikMenue& menue, const Sendersammlung& sender) {
    std::vector<EinfacherEintrag> alle;
    const cMenuePunkt* davor = nullptr;
    for (const auto& punkt : menue.MenuePunkte()) {
        if (!punkt->Visible || punkt->Trenner) continue;
        alle.push_back(eintrag(*punkt, sender));
        alle.back().linieDarueber = davor && davor->Art != punkt->Art;
        davor = punkt.get();
    }
    return alle;
}

}  // namespace

std::vector<EinfacherEintrag> einfachesMenue(const FormBrannikMenue& obermenue, const Sendersammlung& sender,
                                             std::string_view tooltip) {
    std::vector<EinfacherEintrag> alle = eintraege(obermenue, sender);
    if (auto termin = naechsterTermin(tooltip)) {
        if (!alle.empty()) alle.front().linieDarueber = true;
        alle.insert(alle.begin(), std::move(*termin));
    }
    return alle;
}

}  // namespace wendel
