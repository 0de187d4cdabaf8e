#pragma once
// Which broadcast of the database is which of the new guide: so that the row keeps its key, and with it the
// marks that hang on the key, when a broadcast moves or is described anew. Pure: rows in, steps out; writing
// them is left to Guideschreiber.

#include <cstddef>
#include <optional>
#include <vector>

#include "Sendeablauf.h"
#include "tvdb/cSendung.h"

namespace wendel::skarvel {

struct Sendungsabgleich {
    // For each new broadcast the place of its row among the old ones, if it has one.
    std::vector<std::optional<std::size_t>> zeilen;
    std::vector<std::size_t> entfallen;  // old rows that the guide no longer has
};

// Rows and broadcasts of one channel, each in the order of their beginnings. Rows outside what the guide
// covers stay as they are. The same broadcast is, in this order: the one with the same beginning, title and
// content; with the same content within hours; with the same beginning and title; with the same title,
// nearby, unless the contents are known to differ; with the same beginning and a title that resembles.
// Another title at the same time is another broadcast: whoever has marked the old one did not ask for it.
Sendungsabgleich gleicheAb(const std::vector<cSendung>& alte, const Sendeablauf& neu);

// One is the other with something more, or half of the words are the same.
bool aehnlich(const std::string& titel, const std::string& anderer);

}  // namespace wendel::skarvel
