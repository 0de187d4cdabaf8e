#pragma once
// The registry port over one text file, so that the suite's typed values live on a machine without a
// registry. Several processes may use the file at once: changes are made under a lock on freshly read
// content, and readers see the old or the new file, never a mixture. A change fails when the lock can't be
// had for ten seconds. The branch of all users is empty and can't be written. The value "Wendel" of the Run
// key is the desktop's autostart entry.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Autostarteintrag.h"
#include "platform/ports/Registrierung.h"

namespace wendel {

class Registrierungsdatei final : public Registrierung {
  public:
    // Native paths; the folders are made with the first key.
    Registrierungsdatei(std::string datei, Autostarteintrag autostart);

    Schluessel oeffnen(Registrierungswurzel wurzel, const std::string& pfad, std::uint32_t rechte) override;
    Schluessel anlegen(Registrierungswurzel wurzel, const std::string& pfad, std::uint32_t rechte) override;
    [[nodiscard]] bool setzeWert(Schluessel schluessel, const std::string& name,
                                 const Registrierungswert& wert) override;
    std::optional<Registrierungswert> frageWert(Schluessel schluessel, const std::string& name) override;
    [[nodiscard]] bool loescheWert(Schluessel schluessel, const std::string& name) override;
    // Every change is on the disk when it returns.
    [[nodiscard]] bool sichern(Schluessel schluessel) override;
    void schliessen(Schluessel schluessel) override;

    // Of the file: keys and names in the case in which they were first written, looked up without.
    struct OhneGrossKlein {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const;
    };
    using Werte = std::map<std::string, Registrierungswert, OhneGrossKlein>;
    struct Abschnitt {
        Werte werte;
        std::vector<std::string> uebrigeZeilen;  // comments, and what can't be read: kept as they are
    };
    // By key; what stands before the first one belongs to the empty key.
    using Inhalt = std::map<std::string, Abschnitt, OhneGrossKlein>;

  private:
    struct Offen {
        std::string pfad;
        std::uint32_t rechte = 0;
    };

    const Offen* offen(Schluessel schluessel, std::uint32_t recht) const;
    Schluessel merke(const std::string& pfad, std::uint32_t rechte);
    Inhalt lesen() const;
    template <class Aenderung>
    bool aendern(Aenderung aenderung);

    std::string datei_;
    Autostarteintrag autostart_;
    std::map<Schluessel, Offen> offene_;
    Schluessel naechster_ = 1;
};

}  // namespace wendel
