#pragma once
// The settings of the live update as its window edits them. Their places in the settings file stand in
// tvdb/Einstellungstabelle.

#include <array>
#include <cstdint>
#include <string>

#include "tvdb/Einstellungen.h"

namespace wendel::skarvel {

struct Updateeinstellungen {
    std::string quelle, befehl;
    bool aktiv = false;
    std::int16_t modus = 2;      // 0 once a day when connected, 1 with each connection, 2 by days, 3 by hours
    std::array<bool, 7> tage{};  // Sunday first
    std::string uhrzeit;         // "hh:nn"
    std::int16_t stunden = 24;
    bool versteckt = true;
    friend bool operator==(const Updateeinstellungen&, const Updateeinstellungen&) = default;
};

Updateeinstellungen liesUpdateeinstellungen(Einstellungen& einstellungen, const std::string& programmordner);

// Writes what differs; true when anything did. Throws Fehler when the file can't be written.
bool schreibeUpdateeinstellungen(Einstellungen& einstellungen, const Updateeinstellungen& bisher,
                                 const Updateeinstellungen& neu);

}  // namespace wendel::skarvel
