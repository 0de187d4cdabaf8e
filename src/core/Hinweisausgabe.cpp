#include "core/Hinweisausgabe.h"

#include <algorithm>

#include "core/Datenbestand.h"
#include "platform/ModulFenster.h"

namespace wendel {

namespace {

constexpr const char* kTitel = "Termin";

Hinweis hinweisUeber(const Terminliste& termine) {
    Hinweis hinweis{hinweistext(termine), {}};
    for (const TerminZeiger& termin : termine)
        hinweis.schluessel.push_back(hinweisschluessel(*termin));
    return hinweis;
}

}  // namespace

Hinweisausgabe::Hinweisausgabe(const Ports& ports, Datenbestand& bestand, FormHinweis& form)
    : ports_(ports), bestand_(bestand), form_(form) {}

Hinweis Hinweisausgabe::feuern(const Terminliste& faellige, Datum jetzt) {
    const Hinweis hinweis = hinweisUeber(faellige);
    // A journal that can't be written does not keep the notice back; it is written again with the
    // appointments.
    static_cast<void>(bestand_.journal().eintragen(faellige, jetzt));
    for (const TerminZeiger& termin : faellige) {
        nachFeuernWeiterstellen(*termin, jetzt);
        if (termin->Art == Terminart::Eigener) bestand_.termine().geaendert();
    }
    return hinweis;
}

void Hinweisausgabe::zeigen(const Hinweis& hinweis) {
    form_.hinweisen(kTitel, hinweis.text, hinweis.schluessel);
    if (ModulFenster::HasWaveOutput(ports_.klang)) {
        ModulFenster::PlayWave(ports_.klang, bestand_.konfiguration().klang);
    }
    ModulFenster::ForceForeground(ports_.fenster, form_.fensterhandle());
}

void Hinweisausgabe::offeneZeigen() {
    const std::vector<Hinweisschluessel> offene = bestand_.journal().offene();
    if (!offene.empty()) zeigen(hinweisUeber(termineAusSchluesseln(offene)));
}

}  // namespace wendel
