#pragma once
#include <string>

namespace wendel {

// Styles and answers of message boxes: the platform's numbers, which the texts of the system use.
namespace meldungsstil {
inline constexpr int kWiederholenAbbrechen = 53;                // Retry/Cancel, exclamation
inline constexpr int kWiederholenAbbrechenVordergrund = 65589;  // the same, forced to the front
inline constexpr int kJaNeinAusrufezeichen = 52;
inline constexpr int kAusrufezeichen = 48;
inline constexpr int kInformation = 64;
inline constexpr int kKritisch = 16;
inline constexpr int kJaNeinFrage = 36;
inline constexpr int kJaNeinAbbrechenFrage = 51;
inline constexpr int kJaNeinInformation = 68;
}  // namespace meldungsstil

enum class Antwort { Ok = 1, Abbrechen = 2, Wiederholen = 4, Ja = 6, Nein = 7 };

// Modal boxes. The call returns when the user has answered; window messages run meanwhile, so timers and
// control lines can come in. Closing a box by its close button gives Abbrechen where the box has that button.
class Meldungen {
  public:
    virtual ~Meldungen() = default;
    virtual Antwort meldung(const std::string& text, int stil, const std::string& titel) = 0;

    // A failure inside the tick, shown without waiting; one window whose text is replaced by the next
    // failure, so that nothing piles up overnight.
    virtual void zeigeFehlerOhneWarten(const std::string& text, int nummer, const std::string& quelle,
                                       const std::string& beschreibung, const std::string& titel) = 0;
};

}  // namespace wendel
