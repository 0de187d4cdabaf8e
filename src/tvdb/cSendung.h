#pragma once
// One broadcast: a row of the table Sendungen and, loaded when first asked for, its row of SendungenDetails.
// Reads itself from recordsets by column name or through columns bound once, and by key from the database;
// adds itself to both tables. Which broadcasts to read or to add is left to the callers.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>

#include "platform/Datum.h"
#include "platform/ports/Datenbankmaschine.h"

namespace wendel {

class ModulDatenbankzugriff;

class cSendung {
  public:
    // A record that never asks the database: its details are what was written to them.
    cSendung() = default;
    // zugriff loads rows and the details and must outlive the record.
    explicit cSendung(ModulDatenbankzugriff& zugriff) : zugriff_(&zugriff) {}

    // The columns of Sendungen in the table's order.
    std::int32_t Pos = 0;
    std::string SenderKennung;
    wendel::Datum Beginn;
    wendel::Datum Ende;
    std::string Titel;
    std::string SendungID;
    std::string InhaltID;
    std::int16_t Aktualisierung = 0;
    std::string Showview;
    std::string ShowviewVPS;
    std::string VPS;
    std::string Kategorietext;
    std::string Kurzbeschreibung;
    std::int16_t Bewertung = 0;
    std::string Bilddateiname;
    std::string Dauer;  // minutes, as text
    std::string Genre;
    std::string Herstellungsjahr;
    std::string Herstellungsland;
    std::string Originaltitel;
    std::string Regie;
    std::string Bewertungen;
    std::string Kurzkritik;
    std::int16_t FSK = 0;
    std::string Keywords;
    bool KzFilm = false;
    bool Kz16zu9 = false;
    bool KzDolby = false;
    bool KzDolbyDigital = false;
    bool KzDolbySurround = false;
    bool KzLive = false;
    bool KzStereo = false;
    bool KzSchwarzweis = false;
    bool KzTelefon = false;
    bool KzUncoded = false;
    bool KzUntertitel = false;
    bool KzZweikanalton = false;
    bool KzAudiodescription = false;
    bool KzBilddateiHeruntergeladen = false;
    bool KzInFavoritenliste = false;
    bool KzImArchiv = false;
    bool KzWiederholung = false;
    bool KzHDTV = false;

    // True while the three details are valid. The texts are their bare storage; read them through the
    // properties.
    bool Temp_DetailsGeladen = false;
    std::string Temp_Beschreibung;
    std::string Temp_Darsteller;
    std::string Temp_HTMLSeite;

    // A new record with the same columns. Its details count as loaded, with what this record holds now:
    // copying never touches the database.
    cSendung GenerateCopy() const;

    // The recordset's current row, by column name.
    void LeseVonDatensatz1(Recordset& rs);
    void LeseVonDatensatz2(Recordset& rs);

    // For walking many rows: bind once per recordset, then read after each move. The recordset must live as
    // long as rows are read from it.
    void SetRsFields1(Recordset& rs);
    void SetRsFields2(Recordset& rs);
    void LeseVonRsFields1();
    void LeseVonRsFields2();

    // Adds the record to both tables, whose recordsets are open for adding rows. Pos becomes the number that
    // the database has given the row. Columns that are bound to these very recordsets are not looked up
    // again: who adds many broadcasts binds one record and fills it anew for each. Throws what SafeUpdate
    // throws, and Fehler 1 when the details were neither loaded nor set; the row of Sendungen is stored all
    // the same then.
    void SpeichernInDatensatzAlles(Datenbank& db, Recordset& rsSendungen, Recordset& rsDetails);

    // Open the database, read the row with this key, close it. A missing row changes nothing (details stay
    // unloaded, so that the next reading tries again). Throw what ModulDatenbankzugriff throws.
    void FillAusDatenbank1(std::int32_t pos);
    void FillAusDatenbank2(std::int32_t pos);

    // Beginn taken apart.
    wendel::Datum Datum() const { return Beginn.datumsteil(); }
    wendel::Datum Uhrzeit() const { return Beginn.uhrzeitteil(); }

    // The details; reading loads them once, writing one of them makes all three count as loaded.
    std::string Beschreibung();
    std::string Darsteller();
    std::string HTMLSeite();
    void setzeBeschreibung(std::string text);
    void setzeDarsteller(std::string text);
    void setzeHTMLSeite(std::string text);

    // The column lists of both tables without Pos, joined with commas: for select lists.
    static std::string GetFelderNamenSendungen();
    static std::string GetFelderNamenSendungenDetails();

    // A column and the member that holds it.
    using Feld = std::variant<std::int32_t cSendung::*, std::int16_t cSendung::*, std::string cSendung::*,
                              wendel::Datum cSendung::*, bool cSendung::*>;
    struct Spalte {
        const char* name;
        Feld ziel;
    };
    // All columns in the tables' order; those of the details without Pos.
    static std::span<const Spalte> spaltenSendungen();
    static std::span<const Spalte> spaltenDetails();

    static constexpr std::size_t kSpalten1 = 43;
    static constexpr std::size_t kSpalten2 = 3;

  private:
    // A recordset and where the columns are in it.
    template <std::size_t N>
    struct Bindung {
        Recordset* rs = nullptr;
        std::array<std::size_t, N> feldnummern{};
    };

    void detailsLaden();
    void detailsSpeichern(Recordset& rs);

    ModulDatenbankzugriff* zugriff_ = nullptr;
    Bindung<kSpalten1> bindung1_;
    Bindung<kSpalten2> bindung2_;
};

}  // namespace wendel
