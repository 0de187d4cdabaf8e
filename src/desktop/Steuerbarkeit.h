#pragma once
// Whether a session lets a program see windows and send keys of others, and what to tell the user where it
// does not. Finding out what there is, is left to the callers.

#include <string>

namespace wendel {

// What a session offers, as far as scripts need it.
struct Steuerbarkeit {
    std::string plattform;  // the toolkit's name for it
    bool tasten = false;
    bool fensterliste = false;
};

// The German sentence for the user about the first thing that is missing; "" when nothing is.
std::string hindernistext(const Steuerbarkeit& sitzung);

}  // namespace wendel
