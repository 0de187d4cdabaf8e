#pragma once
// The columns of a broadcast that the guide fills: what is staged, cut to size, compared and written goes by
// them. The others are somebody else's and stay as they are.

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <variant>

#include "platform/Variant.h"
#include "tvdb/cSendung.h"

namespace wendel::skarvel {

struct Guidespalte {
    const char* name;
    cSendung::Feld feld;
    bool inDetails = false;  // a column of SendungenDetails
};
std::span<const Guidespalte> guidespalten();

Variant wertVon(const cSendung& sendung, const Guidespalte& spalte);
bool gleich(const cSendung& a, const cSendung& b, const Guidespalte& spalte);

// How much the text columns of one database hold.
class Spaltenbreiten {
  public:
    // Reads the definitions of the file's tables. Native path. Throws as the engine does.
    static Spaltenbreiten ausDatenbank(const std::string& pfad);

    // The text as it can be stored in this column ("Sendungen.Titel"), cut off where it is too long; a column
    // that is not known holds everything.
    std::string passend(const std::string& spalte, std::string text) const;
    void passeEin(cSendung& sendung) const;
    // In characters; `sonst` for a column without a limit.
    std::size_t breite(const std::string& spalte, std::size_t sonst) const;
    void setze(const std::string& spalte, std::size_t zeichen) { breiten_[spalte] = zeichen; }

  private:
    std::map<std::string, std::size_t> breiten_;
    bool nurWindows1252_ = false;
};

}  // namespace wendel::skarvel
