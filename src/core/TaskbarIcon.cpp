#include "core/TaskbarIcon.h"

#include <algorithm>
#include <string>

#include "platform/Text.h"

namespace wendel {

namespace {

// Which fields of the record are valid: callback message 1, picture 2, tooltip 4.
constexpr std::uint32_t kAlleFelder = 7;

void setze32(IconDatensatz& satz, std::size_t stelle, std::uint32_t wert) {
    for (std::size_t i = 0; i < 4; ++i)
        satz[stelle + i] = static_cast<std::uint8_t>(wert >> (8 * i));
}

}  // namespace

IconDatensatz iconDatensatz(std::uint32_t fenster, std::uint32_t bild, std::string_view tipp) {
    IconDatensatz satz{};
    const std::uint32_t kopf[] = {kIconDatensatzGroesse, fenster,        kIconKennung,
                                  kAlleFelder,           kIconNachricht, bild};
    for (std::size_t i = 0; i < std::size(kopf); ++i)
        setze32(satz, 4 * i, kopf[i]);
    const std::string bytes = nachWindows1252(Left(tipp, kIconTippLaenge));
    std::copy(bytes.begin(), bytes.end(), satz.begin() + kIconStelleTipp);
    return satz;
}

}  // namespace wendel
