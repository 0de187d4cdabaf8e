#pragma once
// The one exception type of the program. Modules throw it for failures that a sound program can meet;
// whoever knows the user catches and shows it. Services of this folder return a bool instead.

#include <stdexcept>
#include <string>

namespace wendel {

// Numbers that the run-time semantics assign to failures of single operations. Failures that this system
// raises of itself carry 1; those of the database engine carry the engine's own numbers.
namespace fehlernummer {
inline constexpr int kEigener = 1;
inline constexpr int kUngueltigesArgument = 5;
inline constexpr int kUeberlauf = 6;
inline constexpr int kIndex = 9;
inline constexpr int kTyp = 13;
inline constexpr int kPfadNichtGefunden = 76;
inline constexpr int kNull = 94;
inline constexpr int kDoppelterSchluessel = 457;
}  // namespace fehlernummer

class Fehler : public std::runtime_error {
  public:
    // quelle names the operation that failed ("GetEinstellungsarray"), beschreibung is German and is
    // shown to the user as it stands. Both are UTF-8.
    Fehler(int nummer, std::string quelle, std::string beschreibung);

    int nummer() const { return nummer_; }
    const std::string& quelle() const { return quelle_; }
    const std::string& beschreibung() const { return beschreibung_; }

  private:
    int nummer_;
    std::string quelle_;
    std::string beschreibung_;
};

}  // namespace wendel
