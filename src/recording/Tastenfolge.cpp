#include "recording/Tastenfolge.h"

#include <algorithm>
#include <utility>

#include "platform/Text.h"
#include "recording/ModulJokerErsetzen.h"

namespace wendel {

namespace {

using Namenszeile = std::pair<std::string_view, std::string_view>;

constexpr Namenszeile kTastennamen[] = {
    {"[ALT]", "%"},
    {"[UMSCHALT]", "+"},
    {"[SHIFT]", "+"},
    {"[STRG]", "^"},
    {"[CTRL]", "^"},
    {"[BACKSPACE]", "{BACKSPACE}"},
    {"[BS]", "{BS}"},
    {"[BKSP]", "{BKSP}"},
    {"[PAUSE]", "{BREAK}"},
    {"[BREAK]", "{BREAK}"},
    {"[CAPSLOCK]", "{CAPSLOCK}"},
    {"[ENTF]", "{DELETE}"},
    {"[DELETE]", "{DELETE}"},
    {"[DEL]", "{DEL}"},
    {"[AB]", "{DOWN}"},
    {"[DOWN]", "{DOWN}"},
    {"[ENDE]", "{END}"},
    {"[END]", "{END}"},
    {"[ENTER]", "{ENTER}"},
    {"[ESC]", "{ESC}"},
    {"[HELP]", "{HELP}"},
    {"[POS1]", "{HOME}"},
    {"[HOME]", "{HOME}"},
    {"[EINF]", "{INSERT}"},
    {"[INSERT]", "{INSERT}"},
    {"[INS]", "{INS}"},
    {"[LINKS]", "{LEFT}"},
    {"[LEFT]", "{LEFT}"},
    {"[NUMLOCK]", "{NUMLOCK}"},
    {"[BILDAB]", "{PGDN}"},
    {"[PGDN]", "{PGDN}"},
    {"[BILDAUF]", "{PGUP}"},
    {"[PGUP]", "{PGUP}"},
    {"[DRUCK]", "{PRTSC}"},
    {"[PRTSC]", "{PRTSC}"},
    {"[RECHTS]", "{RIGHT}"},
    {"[RIGHT]", "{RIGHT}"},
    {"[SCROLLLOCK]", "{SCROLLLOCK}"},
    {"[TAB]", "{TAB}"},
    {"[AUF]", "{UP}"},
    {"[UP]", "{UP}"},
};
constexpr int kFunktionstasten = 16;

constexpr std::pair<std::u32string_view, Taste> kTasten[] = {
    {U"BACKSPACE", Taste::Ruecktaste},
    {U"BS", Taste::Ruecktaste},
    {U"BKSP", Taste::Ruecktaste},
    {U"BREAK", Taste::Pause},
    {U"CAPSLOCK", Taste::Feststell},
    {U"DELETE", Taste::Entf},
    {U"DEL", Taste::Entf},
    {U"DOWN", Taste::Ab},
    {U"END", Taste::Ende},
    {U"ENTER", Taste::Eingabe},
    {U"ESC", Taste::Esc},
    {U"HELP", Taste::Hilfe},
    {U"HOME", Taste::Pos1},
    {U"INSERT", Taste::Einfg},
    {U"INS", Taste::Einfg},
    {U"LEFT", Taste::Links},
    {U"NUMLOCK", Taste::NumFeststell},
    {U"PGDN", Taste::BildAb},
    {U"PGUP", Taste::BildAuf},
    {U"PRTSC", Taste::Druck},
    {U"RIGHT", Taste::Rechts},
    {U"SCROLLLOCK", Taste::Rollen},
    {U"TAB", Taste::Tab},
    {U"UP", Taste::Auf},
};

// Decimal digits alone, as far as the number can be of use; larger ones are all the same.
std::optional<int> anzahlAus(std::u32string_view ziffern) {
    if (ziffern.empty()) return std::nullopt;
    int anzahl = 0;
    for (const char32_t ziffer : ziffern) {
        if (ziffer < U'0' || ziffer > U'9') return std::nullopt;
        anzahl = std::min(anzahl * 10 + static_cast<int>(ziffer - U'0'), kHoechstzahlTasten + 1);
    }
    return anzahl;
}

std::optional<Taste> benannteTaste(std::u32string name) {
    for (char32_t& zeichen : name) {
        if (zeichen >= U'a' && zeichen <= U'z') zeichen -= U'a' - U'A';
    }
    for (const auto& [tastenname, taste] : kTasten) {
        if (name == tastenname) return taste;
    }
    if (name.front() != U'F' || name[1] == U'0') return std::nullopt;
    const auto nummer = anzahlAus(std::u32string_view(name).substr(1));
    if (!nummer || *nummer > kFunktionstasten) return std::nullopt;
    return static_cast<Taste>(static_cast<int>(Taste::F1) + *nummer - 1);
}

// Control characters have no key; U+FFFD is what was no character in the file.
bool istTippbar(char32_t zeichen) {
    return zeichen >= 0x20 && (zeichen < 0x7F || zeichen > 0x9F) && zeichen != 0xFFFD;
}

// Reads the notation from left to right. Modifiers go down where they stand; those of a key come up behind
// it, those of a group behind its parenthesis.
class Tastenleser {
  public:
    explicit Tastenleser(std::u32string_view text) : rest_(text) {}

    std::optional<std::vector<Tastenereignis>> lies() {
        while (!rest_.empty()) {
            if (!naechstes()) return std::nullopt;
        }
        if (!gruppen_.empty()) return std::nullopt;
        loslassenBis(0);
        return std::move(ereignisse_);
    }

  private:
    bool naechstes() {
        const char32_t zeichen = rest_.front();
        if (zeichen == U'{') return geklammert();
        rest_.remove_prefix(1);
        switch (zeichen) {
            case U'+': return halten(Taste::Umschalt);
            case U'^': return halten(Taste::Strg);
            case U'%': return halten(Taste::Alt);
            case U'~': return anschlagen({Taste::Eingabe});
            case U'(': return oeffnen();
            case U')': return schliessen();
            case U'}': return false;
            default: return zeichenAnschlagen(zeichen, 1);
        }
    }

    // "{NAME}" and "{NAME n}". The first character behind the brace never ends it: "{}}" types a brace.
    bool geklammert() {
        const std::size_t ende = rest_.find(U'}', 2);
        if (ende == std::u32string_view::npos) return false;
        const std::u32string_view inhalt = rest_.substr(1, ende - 1);
        rest_.remove_prefix(ende + 1);
        const std::size_t blank = std::min(inhalt.find(U' ', 1), inhalt.size());
        const std::u32string_view name = inhalt.substr(0, blank);
        const auto mal = blank == inhalt.size() ? 1 : anzahlAus(inhalt.substr(blank + 1));
        if (!mal) return false;
        if (name.size() == 1) return zeichenAnschlagen(name.front(), *mal);
        const auto taste = benannteTaste(std::u32string(name));
        return taste && anschlagen({*taste}, *mal);
    }

    bool zeichenAnschlagen(char32_t zeichen, int mal) {
        if (zeichen == U'\t') return anschlagen({Taste::Tab}, mal);
        return istTippbar(zeichen) && anschlagen({Taste::Zeichen, zeichen}, mal);
    }

    bool anschlagen(Tastenereignis ereignis, int mal = 1) {
        if (!zaehle(mal)) return false;
        for (int i = 0; i < mal; ++i) {
            for (const bool gedrueckt : {true, false}) {
                ereignis.gedrueckt = gedrueckt;
                ereignisse_.push_back(ereignis);
            }
        }
        loslassenBis(gruppentasten_);
        return true;
    }

    bool halten(Taste taste) {
        if (std::find(gehalten_.begin(), gehalten_.end(), taste) != gehalten_.end()) return true;
        gehalten_.push_back(taste);
        ereignisse_.push_back({taste});
        return zaehle(1);
    }

    bool oeffnen() {
        gruppen_.push_back(gruppentasten_);
        gruppentasten_ = gehalten_.size();
        return true;
    }

    bool schliessen() {
        if (gruppen_.empty()) return false;
        gruppentasten_ = gruppen_.back();
        gruppen_.pop_back();
        loslassenBis(gruppentasten_);
        return true;
    }

    void loslassenBis(std::size_t anzahl) {
        for (; gehalten_.size() > anzahl; gehalten_.pop_back())
            ereignisse_.push_back({gehalten_.back(), 0, false});
    }

    bool zaehle(int mal) { return (tasten_ += mal) <= kHoechstzahlTasten; }

    std::u32string_view rest_;
    std::vector<Tastenereignis> ereignisse_;
    std::vector<Taste> gehalten_;       // modifiers that are down, in their order
    std::size_t gruppentasten_ = 0;     // so many of them belong to open groups
    std::vector<std::size_t> gruppen_;  // what gruppentasten_ was before each open group
    int tasten_ = 0;
};

}  // namespace

std::string tastennamenErsetzen(std::string_view text) {
    std::string ergebnis(text);
    for (const auto& [name, notation] : kTastennamen)
        ergebnis = ModulJokerErsetzen::JokerErsetzen(ergebnis, name, notation);
    for (int i = 1; i <= kFunktionstasten; ++i) {
        const std::string name = "F" + std::to_string(i);
        ergebnis = ModulJokerErsetzen::JokerErsetzen(ergebnis, "[" + name + "]", "{" + name + "}");
    }
    return ergebnis;
}

std::optional<std::vector<Tastenereignis>> tastenereignisse(std::string_view notation) {
    const std::u32string text = codepunkte(notation);
    return Tastenleser(text).lies();
}

}  // namespace wendel
