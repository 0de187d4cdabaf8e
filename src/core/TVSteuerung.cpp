#include "core/TVSteuerung.h"

#include "core/Fehlermeldung.h"
#include "core/Skriptlauf.h"
#include "platform/ModulProzessliste.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel {

namespace {

constexpr const char* kTitel = "Im TV zeigen";
// The user waits for it, and reminders wait as well.
constexpr int kHoechstdauerMinuten = 2;

}  // namespace

bool TVSteuerung::kann() const {
    const Aufzeichnungsskript& skript = skript_.skript();
    return !skript.befehlAnwendungStarten.empty() || !skript.befehlKanalWechseln.empty();
}

void TVSteuerung::zeige(const std::string& senderkennung) {
    if (!kann() || skript_.aktiv()) return;
    const std::string nummer = skript_.programmnummer(senderkennung);
    if (!laeuftAnwendung()) {
        vergissSender();
        if (!starte(nummer)) return;
    }
    if (sender_ != senderkennung) schalteUm(senderkennung, nummer);
}

// Of an application that the script does not name, it is only known that we have started it.
bool TVSteuerung::laeuftAnwendung() const {
    const std::string datei = ModulGrundbefehle::DateinameAusPfad(skript_.skript().tvAnwendungDatei);
    return datei.empty() ? gestartet_ : ModulProzessliste::IsProcessRunning(ports_.prozesse, datei);
}

bool TVSteuerung::starte(const std::string& programmnummer) {
    const auto [begonnen, fehler, beendet] =
        skript_.laufe({&ModulAufzeichnungskript::AnwendungStarten},
                      {.kanal = programmnummer, .minuten = kHoechstdauerMinuten});
    if (fehler && !beendet)
        melde("Die TV-Anwendung konnte nicht gestartet werden.\r\n" + fehler->beschreibung(), &*fehler);
    gestartet_ = !fehler;
    return gestartet_;
}

void TVSteuerung::schalteUm(const std::string& senderkennung, const std::string& programmnummer) {
    if (programmnummer.empty())
        return melde("Der Sender \"" + senderkennung +
                     "\" hat keine Programmnummer: seine Bezeichnung muss mit einer Zahl beginnen.");
    const auto [begonnen, fehler, beendet] =
        skript_.laufe({&ModulAufzeichnungskript::KanalWechseln},
                      {.kanal = programmnummer, .minuten = kHoechstdauerMinuten});
    sender_ = fehler ? "" : senderkennung;
    if (fehler && !beendet)
        melde("Die TV-Anwendung konnte nicht auf den Sender \"" + senderkennung +
                  "\" umgeschaltet werden.\r\n" + fehler->beschreibung(),
              &*fehler);
}

void TVSteuerung::melde(const std::string& text, const Fehler* ursache) const {
    zeigeFehler(ports_.meldungen, text, kTitel, ursache);
}

}  // namespace wendel
