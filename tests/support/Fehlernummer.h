#pragma once
// The number of the Fehler that an action throws, 0 when it throws none.

#include "platform/Fehler.h"

namespace wendel {

template <class Tat>
int fehlernummerVon(const Tat& tat) {
    try {
        tat();
    } catch (const Fehler& fehler) {
        return fehler.nummer();
    }
    return 0;
}

}  // namespace wendel
