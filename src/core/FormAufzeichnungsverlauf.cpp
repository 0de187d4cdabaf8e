#include "core/FormAufzeichnungsverlauf.h"

#include "platform/Text.h"
#include "recording/Aufzeichnungsprotokoll.h"

namespace wendel {
namespace {

// A recording that left no file behind is one only by the script's account.
bool istGelungen(const std::string& ergebnis) {
    return ergebnis.starts_with(aufzeichnungsergebnis::aufgezeichnet(0)) &&
           InStr(ergebnis, aufzeichnungsergebnis::kZusatzKeineDatei) == 0;
}

Aufzeichnungsverlaufszeile zeile(const Protokolleintrag& eintrag) {
    return {.zeit = Format(eintrag.moment, "dd\\.mm\\.yyyy hh\\:nn"),
            .sender = eintrag.senderkennung,
            .sendung = eintrag.titel,
            .ergebnis = eintrag.ergebnis,
            .gelungen = istGelungen(eintrag.ergebnis)};
}

}  // namespace

FormAufzeichnungsverlauf::FormAufzeichnungsverlauf(const Aufzeichnungsprotokoll& protokoll,
                                                   FormAufzeichnungsverlaufView& view)
    : protokoll_(protokoll), view_(view) {}

void FormAufzeichnungsverlauf::oeffnen() {
    lese();
    offen_ = true;
    view_.zeigen();
}

void FormAufzeichnungsverlauf::auffrischen() {
    if (offen_) lese();
}

void FormAufzeichnungsverlauf::schliessen() {
    offen_ = false;
    view_.verbergen();
}

void FormAufzeichnungsverlauf::lese() {
    std::vector<Aufzeichnungsverlaufszeile> zeilen;
    for (const Protokolleintrag& eintrag : protokoll_.letzte(kHoechstzahl))
        zeilen.push_back(zeile(eintrag));
    view_.setzeZeilen(zeilen);
}

}  // namespace wendel
