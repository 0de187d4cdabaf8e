#include "Pruefer.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "../Konsolenports.h"
#include "Pruefbericht.h"
#include "Pruefprozess.h"
#include "Pruefungen.h"
#include "desktop/Programmordner.h"

namespace wendel::quillon {
namespace {

// Each part looks at the folder and the settings for itself, as even that may take for ever.
class Pruefplan {
  public:
    Pruefplan(std::optional<std::string> ordner, Uhr& uhr) : ordner_(std::move(ordner)), uhr_(uhr) {}

    template <class Pruefung>
    Pruefteil teil(std::string titel, Pruefung pruefung) {
        return {std::move(titel), [this, pruefung](Pruefmelder& melder) {
                    Prueflage lage(ordner_, uhr_);
                    pruefung(melder, lage);
                }};
    }

    std::vector<Pruefteil> teile() {
        std::vector<Pruefteil> teile{
            teil("Rechner", pruefeRechner),
            teil("Desktop", pruefeDesktop),
            teil("Programme", pruefeProgramme),
            teil("Energie", pruefeEnergie),
            teil("Ordner", pruefeOrdner),
            teil("Einstellungen", pruefeEinstellungen),
            teil("Datenbank", pruefeDatenbank),
            teil("Inhalt der Datenbank", pruefeDatenbankseiten),
            teil("Live-Update", pruefeUpdate),
            teil("Aufzeichnungsskript", [this](Pruefmelder& melder, const Prueflage& lage) {
                const Konsolenports ports(uhr_);
                pruefeSkript(melder, ports.ports(), lage);
            })};
        teile[7].beiFristende = {Pruefstand::Hinweis,
                                 "Seiten und Indizes: nach 10 Sekunden nicht zu Ende geprüft",
                                 "Ohne Frist prüft \"jetsql DATEI --pruefen\"."};
        return teile;
    }

  private:
    std::optional<std::string> ordner_;
    Uhr& uhr_;
};

}  // namespace

bool pruefeAlles(const std::optional<std::string>& ordner, Uhr& uhr, std::ostream& ausgabe) {
    Pruefbericht bericht(ausgabe);
    bericht.kopf("Lomrick " WENDEL_VERSION, Format(uhr.jetzt(), "dd.mm.yyyy hh:nn"));
    ausgabe.flush();
    std::optional<std::string> genannt;
    if (ordner) genannt = absoluterPfad(*ordner);
    Pruefplan plan(genannt, uhr);
    const std::vector<Pruefteil> teile = plan.teile();
    // All at once: the limits of several that hang do not add up.
    std::vector<std::unique_ptr<Pruefprozess>> prozesse;
    for (const Pruefteil& teil : teile)
        prozesse.push_back(std::make_unique<Pruefprozess>(teil));
    for (std::size_t i = 0; i < teile.size(); ++i) {
        bericht.teil(teile[i].titel, prozesse[i]->zeilen());
        ausgabe.flush();
    }
    bericht.schluss();
    return !bericht.hatFehler();
}

}  // namespace wendel::quillon
