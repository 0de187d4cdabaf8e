#pragma once
// How the parts of the core tell a failure inside a tick: without waiting, with the details of its cause.

#include <string>

#include "platform/Fehler.h"
#include "platform/ports/Meldungen.h"

namespace wendel {

// ursache may be null: there is nothing more to say than the text.
inline void zeigeFehler(Meldungen& meldungen, const std::string& text, const std::string& titel,
                        const Fehler* ursache = nullptr) {
    if (!ursache) return meldungen.zeigeFehlerOhneWarten(text, 0, "", "", titel);
    meldungen.zeigeFehlerOhneWarten(text, ursache->nummer(), ursache->quelle(), ursache->beschreibung(),
                                    titel);
}

}  // namespace wendel
