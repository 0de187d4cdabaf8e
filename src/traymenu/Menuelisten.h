#pragma once
// The four lists of broadcasts that the tray menu shows, kept between its openings: a list is asked for anew
// only when its answer can have become another one. Captions and entries are left to the menu's content.
//
//     listen.auffrischen();            // before the menu is built
//     for (const cSendung& sendung : listen.SendungGleich()) ...

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/Datum.h"
#include "platform/Ports.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/Programmabfragen.h"
#include "tvdb/Senderliste.h"

namespace wendel {

class Menuelisten {
  public:
    // All but ports (which are copied) must outlive this object.
    Menuelisten(const Ports& ports, ModulDatenbankzugriff& zugriff, const Senderliste& sender)
        : ports_(ports), zugriff_(zugriff), sender_(sender) {}

    // Asks for the stale lists, with one opening of the database for all of them. A list whose query fails is
    // empty, and stale for the next time. Once the user has given up on a failure nothing more is asked: the
    // lists that are still to come are empty too. False then; never throws a Fehler. Not to be called from
    // inside a box of this very call.
    bool auffrischen();

    // All four are stale from now on: the data or the settings have changed.
    void veralten() { ++ausgabe_; }

    // Valid until the next auffrischen(): what runs, by channel; today's at 20:15 and what begins next, one
    // per channel; today's from 22:00 on.
    const Sendungsliste& SendungAktuell() const { return aktuell_.sendungen; }
    const Sendungsliste& Sendung2015() const { return um2015_.sendungen; }
    const Sendungsliste& SendungGleich() const { return gleich_.sendungen; }
    const Sendungsliste& Sendung2200() const { return ab2200_.sendungen; }

  private:
    // What the answer to a question depends on besides the moment.
    struct Quelle {
        std::uint64_t ausgabe = 0;  // grows with each veralten()
        std::optional<Dateistand> datei;
        friend bool operator==(const Quelle&, const Quelle&) = default;
    };
    // Holds from the first moment on and before the second one; an empty span: not asked, or in vain.
    struct Liste {
        Sendungsliste sendungen;
        Quelle quelle;
        Datum von, bis;
    };

    bool fragen(Datum jetzt, const Quelle& quelle);
    void frageVeraltete(std::unique_ptr<Datenbank>& db, Datum jetzt, const Quelle& quelle);
    Sendungsliste frage(std::unique_ptr<Datenbank>& db, Programmabfragen::Art art, Datum t);

    Ports ports_;
    ModulDatenbankzugriff& zugriff_;
    const Senderliste& sender_;
    Liste aktuell_, um2015_, gleich_, ab2200_;
    std::uint64_t ausgabe_ = 0;
};

}  // namespace wendel
