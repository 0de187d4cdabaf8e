#pragma once
// The name under which the tray menu shows a channel.

#include <string>
#include <string_view>

#include "tvdb/Senderliste.h"

namespace wendel {

// The short name, else the long one; "<keine Daten>" for a channel without a name or an unknown one.
inline std::string sendername(const Sendersammlung& alle, std::string_view senderkennung) {
    const auto sender = alle.suche(senderkennung);
    if (sender && !sender->BezeichnungKurz.empty()) return sender->BezeichnungKurz;
    return sender && !sender->Bezeichnung.empty() ? sender->Bezeichnung : "<keine Daten>";
}

}  // namespace wendel
