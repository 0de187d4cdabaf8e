#pragma once
// Brings the new guide into the database that the resident program and others use meanwhile. It writes row by
// row and draws breath between them, so that nobody waits longer than for one row; whatever moment it is
// ended at, the guide is whole, in part the old one. What belongs to what is the plans' business.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Guidespalten.h"
#include "Senderabgleich.h"
#include "Sendungsabgleich.h"
#include "platform/Ports.h"
#include "tvdb/ModulDatenbankzugriff.h"

namespace wendel::skarvel {

struct Schreibbilanz {
    std::size_t neu = 0, geaendert = 0, entfallen = 0, abgelaufen = 0;  // broadcasts
    std::size_t sender = 0, marken = 0;
    bool leer() const { return neu + geaendert + entfallen + abgelaufen + sender + marken == 0; }
};

class Guideschreiber {
  public:
    // Opens the database. weiter is asked between rows and throws to end the run. All outlive this. All
    // functions throw Fehler as the access layer does.
    Guideschreiber(const Ports& ports, ModulDatenbankzugriff& zugriff, std::function<void()> weiter);
    ~Guideschreiber();
    Guideschreiber(const Guideschreiber&) = delete;
    Guideschreiber& operator=(const Guideschreiber&) = delete;

    std::vector<Senderzeile> liesSender();
    // True for a database without any broadcast.
    bool istErstesMal();
    void schreibeSender(const Senderplan& plan);
    void setzeFavoriten(std::span<const std::string> kennungen);

    // Broadcasts that ended before this moment go, unless they are in the archive.
    void loescheAbgelaufene(Datum grenze);
    // The guide of one channel. Rows that are the same are not written. Marks follow a broadcast that has
    // moved, their reminders with the lead they had, and find back to one that was gone for a while.
    void schreibeSendungen(const std::string& kennung, Sendeablauf ablauf);

    const Schreibbilanz& bilanz() const { return bilanz_; }

  private:
    struct Marke;
    struct Bestand;
    struct Zeilenpaar;
    class Atem;

    std::unique_ptr<Recordset> oeffne(const std::string& sql);
    void fuehreAus(const std::string& sql);
    Bestand liesBestand(const std::string& kennung, const Sendeablauf& ablauf);
    void liesDetails(std::vector<cSendung>& zeilen);
    std::vector<Marke> liesMarken(const std::string& kennung);
    void loesche(const std::vector<std::int32_t>& schluessel);
    void aendere(std::span<const Zeilenpaar> paare);
    void aenderePortion(const std::map<std::int32_t, const cSendung*>& neue, bool inDetails);
    void fuegeHinzu(std::span<cSendung* const> neue);
    void fuegeDetailsHinzu(const cSendung& sendung);
    void verschiebeMarken(const Bestand& bestand, std::span<const Zeilenpaar> paare);
    void verschiebe(const Marke& marke, const cSendung& sendung);
    void findeMarkenWieder(const Bestand& bestand, const std::vector<const cSendung*>& sendungen);

    const Ports& ports_;
    ModulDatenbankzugriff& zugriff_;
    std::unique_ptr<Atem> atem_;
    std::unique_ptr<Datenbank> db_;
    std::unique_ptr<Recordset> anhaengenSendungen_, anhaengenDetails_;
    cSendung vorlage_;  // bound to both
    Schreibbilanz bilanz_;
};

}  // namespace wendel::skarvel
