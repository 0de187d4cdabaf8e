#include "platform/ModulFenster.h"

#include "platform/Fehler.h"

namespace wendel::ModulFenster {

namespace {

// The window system accepts a change of the foreground only from the program that has the input; sharing the
// input with it for the moment of the call lends us that right.
bool setzeVordergrund(Fenstersystem& fenstersystem, Fensterhandle bisher, Fensterhandle fenster) {
    const std::uint64_t bisherigerThread = fenstersystem.fensterThread(bisher);
    const std::uint64_t thread = fenstersystem.fensterThread(fenster);
    if (bisherigerThread == thread) return fenstersystem.vordergrundSetzen(fenster);
    fenstersystem.eingabeVerbinden(bisherigerThread, thread, true);
    const bool gelungen = fenstersystem.vordergrundSetzen(fenster);
    fenstersystem.eingabeVerbinden(bisherigerThread, thread, false);
    return gelungen;
}

}  // namespace

Arbeitsbereich GetFreeScreenArea(Fenstersystem& fenstersystem) { return fenstersystem.arbeitsbereich(); }

bool ForceForeground(Fenstersystem& fenstersystem, Fensterhandle fenster) {
    const Fensterhandle bisher = fenstersystem.vordergrundfenster();
    if (bisher == fenster) return true;
    const bool gelungen = setzeVordergrund(fenstersystem, bisher, fenster);
    if (fenstersystem.istMinimiert(fenster)) {
        fenstersystem.wiederherstellen(fenster);
    } else {
        fenstersystem.zeigen(fenster);
    }
    return gelungen;
}

int GetFensterTitelHoeheInTwips(const Formmasse& form) {
    switch (form.skalenmodus) {
        case kSkalenmodusTwips: return form.aussenhoeheTwips - form.innenhoehe;
        case kSkalenmodusPixel: return form.aussenhoeheTwips - form.innenhoehe * form.twipsJePixel;
        default:
            throw Fehler(fehlernummer::kEigener, "GetFensterTitelHoeheInTwips",
                         "Nur Twips oder Pixel werden als Scalemode unterstützt.");
    }
}

void PlayWave(Klang& klang, const std::string& pfad) {
    if (!pfad.empty()) klang.spieleAsynchron(pfad);
}

bool HasWaveOutput(Klang& klang) { return klang.ausgabegeraete() > 0; }

}  // namespace wendel::ModulFenster
