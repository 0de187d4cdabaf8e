#pragma once
// The switches of the live-update program, as the resident program and users give them.

#include <optional>
#include <span>
#include <string>

namespace wendel::skarvel {

struct Schalter {
    bool hilfe = false;
    bool liveUpdate = false;  // else the settings are shown
    bool versteckt = false;
};

// Case does not count; one argument may hold several switches. Nothing for anything else, with a German line
// in meldung.
std::optional<Schalter> schalterAus(std::span<const std::string> argumente, std::string& meldung);

std::string hilfetext();

}  // namespace wendel::skarvel
