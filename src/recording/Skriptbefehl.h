#pragma once
// One line of a script taken apart: what it does, to what, and what is told about it. Carried out elsewhere.

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/Tastenereignis.h"

namespace wendel {

struct AnwendungStartenBefehl {
    std::string befehlszeile;
};
struct FensterAktivierenBefehl {
    std::string titel;
};
struct TastenSendenBefehl {
    std::vector<Tastenereignis> ereignisse;
};
struct UngueltigeTastenBefehl {};  // fails without a key being sent
struct WartenBefehl {
    std::int64_t zehntelsekunden = 0;  // never negative
};
struct TerminierenBefehl {
    std::string programmdatei;
};
struct BeepBefehl {};
struct UnbekannterBefehl {};

struct Skriptbefehl {
    std::variant<AnwendungStartenBefehl, FensterAktivierenBefehl, TastenSendenBefehl, UngueltigeTastenBefehl,
                 WartenBefehl, TerminierenBefehl, BeepBefehl, UnbekannterBefehl>
        aktion;
    std::string statuszeile;    // of the debug display
    std::string fehlermeldung;  // when it fails; empty for what can't fail
};

// zeile with its placeholders replaced. Items after the second are ignored.
Skriptbefehl skriptbefehl(std::string_view zeile);

}  // namespace wendel
