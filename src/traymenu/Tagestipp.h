#pragma once
// The day's tip: the first broadcast of today that is rated best. Asked for once a day, kept between the
// openings of the menu, and turned into the texts of the menu's panel; layout and click are left to the
// menu's window.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Datum.h"
#include "platform/ports/Uhr.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/Senderliste.h"
#include "tvdb/cSendung.h"

namespace wendel {

// What the panel shows; without a tip the genre says so, the other texts are empty and the position is 0.
struct Tagestippfelder {
    std::string TagesTippTitel;
    std::string TagesTippGenre = "Kein Tagestipp in den TV-Daten";
    std::string TagesTippSender;
    std::string TagesTippUhrzeit;  // "20:15 Uhr"
    std::string TagesTippBilddatei;
    std::int32_t TagesTippPos = 0;  // key of the broadcast

    friend bool operator==(const Tagestippfelder&, const Tagestippfelder&) = default;
};

class Tagestipp {
  public:
    // All three must outlive this object.
    Tagestipp(Uhr& uhr, ModulDatenbankzugriff& zugriff, const Senderliste& sender)
        : uhr_(uhr), zugriff_(zugriff), sender_(sender) {}

    // Fills felder() for today: a tip of today is kept, else the database is asked. Call it only while the
    // panel is wanted at all. Throws what ModulDatenbankzugriff throws; there is no tip then.
    void fuellen();

    // The next fuellen() asks again: the data have changed. felder() stay until then.
    void verwerfen() { tipp_.reset(); }

    // A tip of today is known: fuellen() asks nothing.
    bool vonHeute() const { return tipp_ && tipp_->Datum() == uhr_.jetzt().datumsteil(); }

    const Tagestippfelder& felder() const { return felder_; }

  private:
    std::optional<cSendung> abfragen(Datum tag);

    Uhr& uhr_;
    ModulDatenbankzugriff& zugriff_;
    const Senderliste& sender_;
    std::optional<cSendung> tipp_;
    Tagestippfelder felder_;
};

}  // namespace wendel
