#include "core/Traymenue.h"

#include "core/Datenbestand.h"
#include "traymenu/Menueinhalt.h"

namespace wendel {

Traymenue::Traymenue(Fenstersystem& fenster, const Datenbestand& bestand, Menueumgebung& umgebung,
                     Menueaktionen& aktionen)
    : fenster_(fenster), bestand_(bestand), umgebung_(umgebung), aktionen_(aktionen) {}

void Traymenue::bauen() { baueAn(fenster_.zeiger()); }

void Traymenue::zeigen() {
    const Punkt zeiger = fenster_.zeiger();
    baueAn(zeiger).ShowObermenue(zeiger);
}

void Traymenue::verwerfen() { ModulBrannikMenue::UnloadAllMenues(geladene_); }

std::vector<EinfacherEintrag> Traymenue::einfach(std::string_view tooltip) {
    return einfachesMenue(baueAn(fenster_.zeiger()), bestand_.sender(), tooltip);
}

void Traymenue::ausfuehren(const Menuebefehl& befehl) { Menuebefehle::ausfuehren(befehl, aktionen_); }

// How many entries fit depends on the monitor.
FormBrannikMenue& Traymenue::baueAn(Punkt ort) {
    const Menuelisten& listen = bestand_.menuelisten();
    const Arbeitsbereich frei = umgebung_.freieFlaeche(ort);
    return Menueinhalt::BuildTrayMenu(
        {umgebung_, aktionen_, geladene_, bestand_.sender(), bestand_.markierungslisten()},
        {listen.Sendung2200(), listen.Sendung2015(), listen.SendungGleich(), listen.SendungAktuell(),
         bestand_.werte().hauptanwendungTitel, frei.unten - frei.oben, bestand_.tagestipp()});
}

}  // namespace wendel
