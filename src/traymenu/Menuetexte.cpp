#include "traymenu/Menuetexte.h"

#include <algorithm>

#include "platform/Text.h"
#include "traymenu/Sendername.h"

namespace wendel::Menuetexte {

namespace {

constexpr const char* kUhrzeit = R"(hh\:nn)";

bool steuerzeichen(char zeichen) { return (zeichen >= 0 && zeichen < ' ') || zeichen == 0x7F; }

bool enthaelt(const std::string& positionen, std::int32_t dbPos) {
    return positionen.find(";" + std::to_string(dbPos) + ";") != std::string::npos;
}

}  // namespace

std::string zeit(const cMenuePunkt& punkt) {
    return punkt.Art == menueart::kSendung ? Format(punkt.Zeit, kUhrzeit) : "";
}

std::string sender(const cMenuePunkt& punkt, const Sendersammlung& alle) {
    return punkt.Art == menueart::kSendung ? sendername(alle, punkt.SenderKennung) : "";
}

std::string text(const cMenuePunkt& punkt) {
    std::string zeile = ersetzt(punkt.Text, kCrLf, " ");
    std::replace_if(zeile.begin(), zeile.end(), steuerzeichen, ' ');
    return zeile;
}

std::string zugaenglicherName(const cMenuePunkt& punkt, const Sendersammlung& alle) {
    if (punkt.Art != menueart::kSendung) return text(punkt);
    const std::string wann = zeit(punkt) + " " + sender(punkt, alle);
    return punkt.Text.empty() ? wann : wann + ", " + text(punkt);
}

std::string symbol(const cMenuePunkt& punkt, const Markierungslisten& markierungen) {
    if (punkt.Art != menueart::kSendung) return "";
    if (enthaelt(markierungen.favoriten, punkt.DBPos)) return "favorit";
    if (enthaelt(markierungen.erinnerungen, punkt.DBPos)) return "erinnerung";
    const bool bewertet = punkt.Star >= 1 && punkt.Star <= 5;
    return bewertet ? "bewertung" + std::to_string(punkt.Star) : "";
}

}  // namespace wendel::Menuetexte
