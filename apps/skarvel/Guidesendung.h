#pragma once
// What the elements of an XMLTV broadcast mean in the columns of the database: language, ratings, flags,
// people, episodes. Its place on the wall clock and its end are settled later, by Sendeablauf, which sees its
// neighbours.

#include <optional>
#include <string>

#include "XmltvLeser.h"
#include "tvdb/cSendung.h"

namespace wendel::skarvel {

struct Guidesendung {
    Weltzeit beginn = 0;
    std::optional<Weltzeit> ende;  // as the file says, by end or length
    cSendung daten;                // without channel, Beginn, Ende and Dauer; details set
};

Guidesendung guidesendungAus(const XmltvSendung& sendung);

// "3/4" linearly from 1 to 5: none of four is 1, three of four 4, all of them 5. 0 for what is no rating.
std::int16_t bewertungAus(const std::string& sterne);

}  // namespace wendel::skarvel
