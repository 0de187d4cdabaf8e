#pragma once
// The Fehler that an action throws, as a value.

#include <string>

#include "platform/Fehler.h"

namespace wendel {

struct Gemeldet {
    int nummer = 0;  // 0: no failure
    std::string quelle, beschreibung;
};

template <class Tat>
Gemeldet fehlerVon(const Tat& tat) {
    try {
        tat();
    } catch (const Fehler& fehler) {
        return {fehler.nummer(), fehler.quelle(), fehler.beschreibung()};
    }
    return {};
}

template <class Tat>
int fehlernummerVon(const Tat& tat) {
    return fehlerVon(tat).nummer;
}

}  // namespace wendel
