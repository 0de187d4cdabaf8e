#include "Sendungsabgleich.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <tuple>

#include "platform/Text.h"

namespace wendel::skarvel {
namespace {

constexpr std::int64_t kStunde = 3600;
constexpr std::int64_t kNaheInhalt = 6 * kStunde, kNaheTitel = 3 * kStunde;

bool istAbgedeckt(const cSendung& zeile, const std::vector<Zeitraum>& abgedeckt) {
    return std::any_of(abgedeckt.begin(), abgedeckt.end(), [&](const Zeitraum& zeitraum) {
        return zeile.Beginn >= zeitraum.von && zeile.Beginn < zeitraum.bis;
    });
}
bool beruehrt(const cSendung& zeile, const std::vector<Zeitraum>& abgedeckt) {
    return std::any_of(abgedeckt.begin(), abgedeckt.end(), [&](const Zeitraum& zeitraum) {
        return zeile.Ende > zeitraum.von && zeile.Beginn < zeitraum.bis;
    });
}

// How sure it is that both are one; 0 is the surest, nothing means that they are not.
std::optional<int> stufe(const cSendung& alt, const cSendung& neu) {
    const std::int64_t abstand = std::abs(alt.Beginn.sekunden() - neu.Beginn.sekunden());
    const bool inhalteBekannt = !alt.InhaltID.empty() && !neu.InhaltID.empty();
    const bool gleicherInhalt = inhalteBekannt && alt.InhaltID == neu.InhaltID;
    const bool gleicherTitel = gleichOhneGrossKlein(alt.Titel, neu.Titel);
    if (abstand == 0 && gleicherTitel && (gleicherInhalt || !inhalteBekannt)) return 0;
    if (gleicherInhalt && abstand <= kNaheInhalt) return 1;
    if (abstand == 0 && gleicherTitel) return 2;
    if (gleicherTitel && !inhalteBekannt && abstand <= kNaheTitel) return 3;
    if (abstand == 0 && aehnlich(alt.Titel, neu.Titel)) return 4;
    return std::nullopt;
}

struct Paar {
    int stufe;
    std::int64_t abstand;
    std::size_t alt, neu;
    friend bool operator<(const Paar& a, const Paar& b) {
        return std::tie(a.stufe, a.abstand, a.alt, a.neu) < std::tie(b.stufe, b.abstand, b.alt, b.neu);
    }
};

std::vector<Paar> paare(const std::vector<cSendung>& alte, const Sendeablauf& neu) {
    std::vector<Paar> alle;
    std::size_t erste = 0;
    for (std::size_t n = 0; n < neu.sendungen.size(); ++n) {
        const cSendung& sendung = neu.sendungen[n];
        while (erste < alte.size() &&
               alte[erste].Beginn.sekunden() < sendung.Beginn.sekunden() - kNaheInhalt - kStunde)
            ++erste;
        for (std::size_t a = erste; a < alte.size(); ++a) {
            const std::int64_t abstand = alte[a].Beginn.sekunden() - sendung.Beginn.sekunden();
            if (abstand > kNaheInhalt) break;
            if (!beruehrt(alte[a], neu.abgedeckt)) continue;
            if (const auto wie = stufe(alte[a], sendung)) alle.push_back({*wie, std::abs(abstand), a, n});
        }
    }
    return alle;
}

std::set<std::string> worte(const std::string& titel) {
    std::set<std::string> alle;
    std::string wort;
    for (const char zeichen : LCase(titel) + " ") {
        const bool trennt = static_cast<unsigned char>(zeichen) < 0x80 &&
                            std::string_view(" -:,.;!?/()\"'").find(zeichen) != std::string_view::npos;
        if (!trennt) {
            wort += zeichen;
        } else if (!wort.empty()) {
            alle.insert(wort);
            wort.clear();
        }
    }
    return alle;
}

}  // namespace

bool aehnlich(const std::string& titel, const std::string& anderer) {
    const std::set<std::string> eine = worte(titel), andere = worte(anderer);
    const auto gemeinsame = static_cast<std::size_t>(std::count_if(
        eine.begin(), eine.end(), [&](const std::string& wort) { return andere.contains(wort); }));
    if (gemeinsame == 0) return false;
    return gemeinsame == std::min(eine.size(), andere.size()) ||
           2 * gemeinsame >= std::max(eine.size(), andere.size());
}

Sendungsabgleich gleicheAb(const std::vector<cSendung>& alte, const Sendeablauf& neu) {
    std::vector<Paar> moegliche = paare(alte, neu);
    std::sort(moegliche.begin(), moegliche.end());
    Sendungsabgleich ergebnis;
    ergebnis.zeilen.resize(neu.sendungen.size());
    std::vector<bool> vergeben(alte.size());
    for (const Paar& paar : moegliche) {
        if (vergeben[paar.alt] || ergebnis.zeilen[paar.neu]) continue;
        vergeben[paar.alt] = true;
        ergebnis.zeilen[paar.neu] = paar.alt;
    }
    for (std::size_t a = 0; a < alte.size(); ++a) {
        if (!vergeben[a] && istAbgedeckt(alte[a], neu.abgedeckt)) ergebnis.entfallen.push_back(a);
    }
    return ergebnis;
}

}  // namespace wendel::skarvel
