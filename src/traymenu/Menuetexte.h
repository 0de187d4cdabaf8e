#pragma once
// The texts of one entry of the tray menu as they are painted, read out and exported, and its icon. Pure
// functions of the entry, the channels and the marks.

#include <string>

#include "traymenu/cMenuePunkt.h"
#include "tvdb/Markierungspflege.h"
#include "tvdb/Senderliste.h"

namespace wendel::Menuetexte {

// "20:15" and the channel's name for a broadcast, "" for other entries.
std::string zeit(const cMenuePunkt& punkt);
std::string sender(const cMenuePunkt& punkt, const Sendersammlung& alle);

// The caption in one line.
std::string text(const cMenuePunkt& punkt);

// What a screen reader says: "20:15 ZDF, title" for a broadcast, the caption for other entries.
std::string zugaenglicherName(const cMenuePunkt& punkt, const Sendersammlung& alle);

// "favorit", "erinnerung", "bewertung1" to "bewertung5", or "" for no icon.
std::string symbol(const cMenuePunkt& punkt, const Markierungslisten& markierungen);

}  // namespace wendel::Menuetexte
