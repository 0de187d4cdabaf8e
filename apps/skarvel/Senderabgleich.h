#pragma once
// Which channel of the database a channel of the source is, which are new, and what they are called. Pure:
// rows in, plan out.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Guidespalten.h"
#include "XmltvLeser.h"

namespace wendel::skarvel {

struct Senderzeile {
    std::string kennung, bezeichnung, kurz, webseite;
    bool geschuetzt = false;  // the user has named it
    bool favorit = false;
    std::int32_t sortNr = 0, sortNrKestrin = 0;
    friend bool operator==(const Senderzeile&, const Senderzeile&) = default;
};

struct Senderplan {
    std::vector<std::string> kennungen;     // key in the database for each channel of the source
    std::vector<Senderzeile> neue;          // in the order of the source
    std::vector<Senderzeile> umzubenennen;  // rows that exist, with their new names
};

// A channel of the source is the one with its identifier, else one that nobody else claims and that has one
// of its names; else it is new. An existing name keeps the programme number that it begins with. `kanaele`
// are those with broadcasts.
Senderplan senderplan(const std::vector<XmltvKanal>& kanaele, const std::vector<Senderzeile>& vorhandene,
                      const Spaltenbreiten& breiten);

}  // namespace wendel::skarvel
