#include "traymenu/Menuespalten.h"

#include <algorithm>

#include "traymenu/Menuemasse.h"
#include "traymenu/Menuetexte.h"

namespace wendel {

namespace {

using namespace Menuemasse;

// The widest text of each kind.
struct Breiten {
    int zeit = 0, sender = 0, titel = 0, aufschrift = 0;
    bool sendungen = false, koepfe = false;
};

Breiten gemessen(const std::vector<std::unique_ptr<cMenuePunkt>>& punkte, const Sendersammlung& alle,
                 const Textbreite& textbreite) {
    Breiten breiten;
    const auto miss = [&](int& breite, const std::string& text) {
        breite = std::max(breite, textbreite(text));
    };
    for (const auto& punkt : punkte) {
        if (!punkt->Visible || punkt->Trenner) continue;
        breiten.koepfe |= punkt->UnterMenue != nullptr;
        if (punkt->Art != menueart::kSendung) {
            miss(breiten.aufschrift, Menuetexte::text(*punkt));
            continue;
        }
        breiten.sendungen = true;
        miss(breiten.zeit, Menuetexte::zeit(*punkt));
        miss(breiten.sender, Menuetexte::sender(*punkt, alle));
        miss(breiten.titel, Menuetexte::text(*punkt));
    }
    return breiten;
}

}  // namespace

Menuespalten menuespalten(const std::vector<std::unique_ptr<cMenuePunkt>>& punkte,
                          const Sendersammlung& sender, const Textbreite& textbreite, int mindestens,
                          int hoechstens) {
    const Breiten breiten = gemessen(punkte, sender, textbreite);
    Menuespalten s;
    s.symbolX = kAbstand;
    s.zeitX = s.symbolX + kSymbolgroesse + kAbstand;
    s.textX = s.senderX = s.zeitX;
    if (breiten.sendungen) {
        s.zeitbreite = breiten.zeit;
        s.senderX = s.zeitX + s.zeitbreite + kAbstand;
        s.senderbreite = std::min(breiten.sender, kHoechsteSenderbreite);
        s.textX = s.senderX + s.senderbreite + kAbstand;
    }
    const int rest = kAbstand + (breiten.koepfe ? kPfeilbreite : 0);
    const int rechts = std::max(s.textX + breiten.titel, s.zeitX + breiten.aufschrift);
    s.breite = std::max(mindestens, std::min(rechts + rest, hoechstens));
    s.rechts = s.breite - rest;
    return s;
}

}  // namespace wendel
