#pragma once
// The journal of shown notices, "hinweise.txt" in the programme folder: a notice that was open when the
// program or the machine died is shown again, and one that was shown is never shown twice. The main form
// writes it before it shows a notice; the journal itself shows nothing.
//
// One line an entry, UTF-8, ended by LF: moment (yyyymmddhhnnss) TAB kind (0, 1, 2) TAB "offen" or
// "beantwortet" TAB text, in which \\ \t \r \n stand for backslash, TAB, CR and LF.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Datum.h"
#include "platform/ports/Dateisystem.h"
#include "reminders/cTermin.h"

namespace wendel {

// What makes an entry the same one after a restart or a new query. Texts are the same when they are in
// Windows-1252: the settings file stores appointments so, and what it has no character for comes back as "?".
struct Hinweisschluessel {
    Datum moment;
    Terminart art = Terminart::Eigener;
    std::string text;
    friend bool operator==(const Hinweisschluessel& a, const Hinweisschluessel& b);
};

// Of the moment for which the entry fires: to be taken before the entry is moved on.
Hinweisschluessel hinweisschluessel(const cTermin& termin);

class Hinweisjournal {
  public:
    // programmordner ends in "\".
    Hinweisjournal(Dateisystem& dateien, const std::string& programmordner);

    // Reads the file in place of what is held. Lines that can't be read are passed over; a file without a
    // readable line is kept aside as "hinweise.txt.defekt".
    void lesen();

    // The entries that were shown and not answered, in the order shown.
    std::vector<Hinweisschluessel> offene() const;

    // True when this entry has been shown. Of entries that were read from a mark it also notes the
    // broadcast's start, so that the entry is kept for as long as the mark can come back.
    bool kennt(const cTermin& termin);

    // Notes the entries as shown and open, then writes the file; to be called before the notice is shown and
    // before the entries are moved on. Answered entries older than two days go. False when the file could not
    // be written: the entries are held all the same, and the next write includes them.
    [[nodiscard]] bool eintragen(const Terminliste& termine, Datum jetzt);

    // Notes entries as answered and writes the file, with the same result as eintragen. Unknown and already
    // answered ones change nothing.
    [[nodiscard]] bool beantworten(const std::vector<Hinweisschluessel>& schluessel);

    // Writes again what could not be written before; true when nothing is left to write.
    [[nodiscard]] bool nachschreiben();

  private:
    struct Eintrag {
        Hinweisschluessel schluessel;
        bool offen = true;
        Datum behaltenBis;
    };

    static std::optional<Eintrag> eintragAusZeile(std::string_view zeile);
    static std::string zeileAusEintrag(const Eintrag& eintrag);
    void eintraegeAusInhalt(std::string_view inhalt);
    void altesVergessen(Datum jetzt);
    void beiseitelegen();
    bool schreiben();

    Dateisystem& dateien_;
    std::string datei_;
    std::vector<Eintrag> eintraege_;
    bool ungeschrieben_ = false;
};

// To be called on the user's appointments after each reading of their file: a crash can leave the journal
// written and the appointments not yet stored, and other programs write back what they read earlier. Entries
// that the journal knows are moved on as after firing. True when an entry has changed and the appointments
// are to be stored.
bool gezeigteWeiterstellen(const Terminliste& termine, Hinweisjournal& journal, Datum jetzt);

// The entries as they were shown, for a notice after a restart: active, of the journal's kind, moment and
// text.
Terminliste termineAusSchluesseln(const std::vector<Hinweisschluessel>& schluessel);

}  // namespace wendel
