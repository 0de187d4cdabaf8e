#pragma once
// The suite's shared settings, "fennow.cfg" in the programme folder: one array of variants, addressed by
// index. Every lookup reads the file anew, so that changes of other programs are seen at once; every change
// reads the whole file first, so that theirs are kept. What the indices mean is left to Einstellungstabelle.
//
// Writing happens in place, as other programs have the file open. A crash in its middle is repaired from
// "fennow.cfg.neu" (u32 length, u32 CRC-32, content): complete before the first byte of fennow.cfg changes,
// deleted after the last, replayed by the next call of any operation here.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/Variant.h"
#include "platform/ports/Dateisystem.h"

namespace wendel {

class Einstellungen {
  public:
    // dateien must outlive this object; the folder may come with or without a trailing "\".
    Einstellungen(Dateisystem& dateien, const std::string& programmordner);

    // The file is there and holds at least 11 bytes.
    bool EinstellungsdateiVorhanden();

    // The whole array. Throws Fehler 1 when the file is absent (it is created empty then) or empty, kTyp for
    // damaged content, 75 when it can't be read.
    Variant GetEinstellungsarray();

    // One element, exactly as stored. Throws what GetEinstellungsarray throws, and kIndex outside the bounds.
    Variant GetEinstellung(std::int32_t index);

    // Writes the whole array. After a Fehler (1: not storable or not written, kTyp: no array of variants) the
    // file holds the old content, or will hold the new one once the next read has replayed it, never a
    // mixture.
    void SetEinstellungsarray(const Variant& array);

    // One element in the type of ersatz; ersatz itself when the file is absent or unreadable, the index is
    // outside the bounds, or the element is empty, Null or not convertible. Never throws, never creates the
    // file.
    Variant Einstellung(std::int32_t index, const Variant& ersatz);

    // The array for reading many elements at one read of the file; nothing when absent or unreadable.
    std::optional<Variant> arrayOderNichts();

    // Changes one element and writes the file; all others stay as the file holds them at this moment. A
    // missing file begins with bounds 0 to 199, a shorter array grows. An unreadable file of 11 bytes or more
    // is first renamed to "fennow.cfg.defekt" ("fennow.cfg.defekt2" and so on while the name is taken).
    // Throws Fehler kIndex for an index below the array's lower bound, 1 when the file can't be written or
    // moved.
    void setzeEinstellung(std::int32_t index, const Variant& wert);

  private:
    std::optional<std::string> unterbrochenesSchreibenNachholen();
    std::optional<std::string> dateiinhalt();
    Variant arrayZumAendern();
    void beschaedigteDateiBeiseitelegen();
    void inDateiSchreiben(const std::string& inhalt);
    void vormerkungLoeschen();

    Dateisystem& dateien_;
    std::string pfad_;
    std::string pfadNeu_;
};

// The element of an array as Einstellungen::Einstellung returns it; index outside the bounds gives ersatz.
Variant elementOderErsatz(const Variant& array, std::int32_t index, const Variant& ersatz);

}  // namespace wendel
