#pragma once
// What survives a crash, a power cut or an exit while recordings are planned or running: the file
// "aufzeichnung.txt" in the programme folder. The recording flow notes here what it is about to do before it
// does it; what is to be done and when is decided there.
//
// One line a recording, UTF-8, ended by LF, fields separated by TAB: phase, start of the broadcast, last
// start, minutes late, next try, result, addition, and the recording as start|end|Senderkennung|title.
// Moments are yyyymmddhhnnss; \\ \t \r \n stand for backslash, TAB, CR and LF.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Datum.h"
#include "platform/ports/Dateisystem.h"
#include "recording/Aufzeichnungsprotokoll.h"

namespace wendel {

struct Aufzeichnung {
    Datum beginn, ende;    // the recording window
    Datum sendungsbeginn;  // of the broadcast itself
    std::string senderkennung;
    std::string titel;
    friend bool operator==(const Aufzeichnung&, const Aufzeichnung&) = default;
};

// The same broadcast: start, channel and title agree. Its window may be another one after the lead and
// follow-up times have been changed.
bool istDieselbe(const Aufzeichnung& a, const Aufzeichnung& b);

enum class Aufzeichnungsphase {
    Geplant,        // known; may have failed to start and wait for its next try
    Startet,        // the start commands are about to run or running
    Laeuft,         // "InAufnahme"
    Beendet,        // over, its log line is still owed
    Protokolliert,  // over, in the log
};

struct Aufzeichnungseintrag {
    Aufzeichnung aufzeichnung;
    Aufzeichnungsphase phase = Aufzeichnungsphase::Geplant;
    Datum begonnen;                // when the start commands last began; else never
    std::int64_t verspaetung = 0;  // minutes from the start of the window to there
    Datum naechsterVersuch;        // a failed start is not tried again before
    std::string ergebnis;  // what the log will say; before the end: if nothing better comes, else empty
    std::string zusatz;    // additions to it, see aufzeichnungsergebnis::mitZusatz

    bool vorbei() const { return phase >= Aufzeichnungsphase::Beendet; }
    friend bool operator==(const Aufzeichnungseintrag&, const Aufzeichnungseintrag&) = default;
};

class Aufzeichnungsstand {
  public:
    // programmordner ends in "\". Both others outlive the object.
    Aufzeichnungsstand(Dateisystem& dateien, Aufzeichnungsprotokoll& protokoll,
                       const std::string& programmordner);

    // Reads the file in place of what is held; lines that can't be read are passed over. Nothing is written
    // over a file that is there and could not be read.
    void lesen();
    // Reads the file after all where lesen() could not, beside what has come to be held since. True when
    // there may be new entries; makes no call of a port when nothing is owed.
    bool nachlesen();

    // In the order in which they became known.
    const std::vector<Aufzeichnungseintrag>& eintraege() const { return eintraege_; }

    // Null when it is not known. Valid until the next merke, vergiss, speichern or abschliessen;
    // what is changed in it counts once stored.
    Aufzeichnungseintrag* finde(const Aufzeichnung& aufzeichnung);
    // The entry of this recording, a new planned one if need be. One that is planned gets this window.
    Aufzeichnungseintrag& merke(const Aufzeichnung& aufzeichnung);
    // Without a line in the log: it was withdrawn.
    void vergiss(Aufzeichnung aufzeichnung);

    // Writes the file if it would be another one; to be called before the thing that is noted happens. False
    // when it could not be written: all is held, and the next call tries again. Entries in the log whose
    // window ended more than two days ago go.
    [[nodiscard]] bool speichern(Datum jetzt);

    // The recording is over: noted as such and stored, then its line is added to the log. Of what fails here,
    // nachschreiben() takes care. Does nothing for one that is over already.
    void abschliessen(const Aufzeichnung& aufzeichnung, std::string ergebnis, Datum jetzt);

    // After lesen(), and from time to time: log lines and the file, where they are owed. True when nothing is
    // left; makes no call of a port then.
    bool nachschreiben(Datum jetzt);

    // Path of the file, state or log, that could not be read or written when it was last tried; empty when
    // all is on the disk.
    std::string gestoerteDatei() const;

  private:
    void protokolliereBeendete();
    bool stehtProtokollAus() const;

    Dateisystem& dateien_;
    Aufzeichnungsprotokoll& protokoll_;
    std::string datei_;
    std::vector<Aufzeichnungseintrag> eintraege_;
    std::string geschrieben_;  // what the file holds
    bool unlesbar_ = false;
    bool ungespeichert_ = false;
};

}  // namespace wendel
