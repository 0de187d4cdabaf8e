#include "reminders/Terminspeicher.h"

#include <memory>
#include <utility>

namespace wendel {
namespace {

TerminZeiger terminAus(const GespeicherterTermin& gespeichert) {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = gespeichert.weckZeit;
    termin->WeckText = gespeichert.weckText;
    termin->Intervall = gespeichert.intervall;
    termin->Aktiv = gespeichert.aktiv;
    return termin;
}

bool istAbgelaufeneKurzzeiterinnerung(const cTermin& termin, Datum jetzt) {
    return !termin.Aktiv && termin.WeckZeit <= jetzt && istKurzzeiterinnerung(termin);
}

}  // namespace

Terminliste termineAusEinstellungen(const std::vector<GespeicherterTermin>& gespeichert, Datum jetzt) {
    Terminliste termine;
    for (const GespeicherterTermin& eintrag : gespeichert) {
        TerminZeiger termin = terminAus(eintrag);
        if (!istAbgelaufeneKurzzeiterinnerung(*termin, jetzt)) termine.push_back(std::move(termin));
    }
    return termine;
}

std::vector<GespeicherterTermin> termineFuerEinstellungen(const Terminliste& termine) {
    std::vector<GespeicherterTermin> gespeichert;
    for (const TerminZeiger& termin : termine) {
        gespeichert.push_back({termin->WeckZeit, termin->WeckText, termin->Intervall, termin->Aktiv});
    }
    return gespeichert;
}

}  // namespace wendel
