#pragma once
// "Did it record?": the file "aufzeichnungen.log" in the programme folder with one line for each recording
// that was planned, and the texts of its results. When a recording is over and how it went is decided by the
// recording flow; which lines are still owed is kept by Aufzeichnungsstand.
//
// A line is "dd.mm.yyyy hh:nn | Senderkennung | Titel | Ergebnis", UTF-8, ended by LF; the moment is the
// start of the recording window. A title may hold " | ": the channel ends at the first one after the moment,
// the result begins after the last, so a "|" is written as "¦" in these two. Line breaks become blanks.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Datum.h"
#include "platform/ports/Dateisystem.h"

namespace wendel {

struct Protokolleintrag {
    Datum moment;  // start of the recording window; its seconds are not written
    std::string senderkennung;
    std::string titel;
    std::string ergebnis;
    friend bool operator==(const Protokolleintrag&, const Protokolleintrag&) = default;
};

// Without the line end.
std::string protokollzeile(const Protokolleintrag& eintrag);
std::optional<Protokolleintrag> protokolleintragAusZeile(std::string_view zeile);

class Aufzeichnungsprotokoll {
  public:
    // Beyond this size the older half of the file goes.
    static constexpr std::size_t kHoechstgroesse = std::size_t{1} << 20;

    // programmordner ends in "\".
    Aufzeichnungsprotokoll(Dateisystem& dateien, const std::string& programmordner);

    const std::string& datei() const { return datei_; }

    // Adds a line at the end, on the disk when the call returns. A recording that has a line already (same
    // minute, channel and title) gets no other one: to be called again after a crash that leaves open whether
    // it was written. False when the line could not be written.
    [[nodiscard]] bool eintragen(const Protokolleintrag& eintrag);

    // The last lines, the newest first; what can't be read is passed over.
    std::vector<Protokolleintrag> letzte(std::size_t hoechstens) const;

  private:
    Dateisystem& dateien_;
    std::string datei_;
};

// The texts of results, and of the additions behind them.
namespace aufzeichnungsergebnis {

inline constexpr std::string_view kUnterbrochen = "unterbrochen";
inline constexpr std::string_view kVerpasstAus = "verpasst: Programm lief nicht";
inline constexpr std::string_view kVerpasstSchlief = "verpasst: Rechner schlief";
inline constexpr std::string_view kVerpasstKeinSkript = "verpasst: kein Skript";
inline constexpr std::string_view kZusatzKeineDatei = "keine wachsende Datei im Aufzeichnungsordner";
inline constexpr std::string_view kZusatzWeckenVerweigert = "Wecken vom System nicht erlaubt";

// Less than one minute late counts as in time.
std::string aufgezeichnet(std::int64_t minutenVerspaetet);
// zeilennummer in the script file; 0 when the failure belongs to no line.
std::string fehlgeschlagen(int zeilennummer, std::string_view meldung);
std::string verpasstWegen(std::string_view titelDerAnderen);

// "a; b"; one that is there already is not repeated.
std::string mitZusatz(std::string text, std::string_view zusatz);

}  // namespace aufzeichnungsergebnis

}  // namespace wendel
