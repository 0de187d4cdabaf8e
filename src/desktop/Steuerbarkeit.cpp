#include "desktop/Steuerbarkeit.h"

namespace wendel {

std::string hindernistext(const Steuerbarkeit& sitzung) {
    if (sitzung.plattform.starts_with("wayland"))
        return "Unter Wayland lässt der Desktop Programme weder Fenster noch Tasten anderer Programme "
               "steuern; Aufzeichnungsskripte brauchen eine X11-Sitzung.";
    if (sitzung.plattform != "xcb")
        return "Fenster und Tasten anderer Programme sind hier nicht erreichbar; Aufzeichnungsskripte "
               "brauchen eine X11-Sitzung.";
    if (!sitzung.tasten)
        return "Der X-Server nimmt keine Tasten von Programmen an, da ihm die Erweiterung XTEST fehlt; "
               "Aufzeichnungsskripte können die TV-Anwendung nicht bedienen.";
    if (!sitzung.fensterliste)
        return "Es läuft kein Fenstermanager, der die Fenster anderer Programme bekannt gibt und aktiviert; "
               "Aufzeichnungsskripte können die TV-Anwendung nicht finden.";
    return {};
}

}  // namespace wendel
