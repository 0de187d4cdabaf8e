// The recording script: whether it can be read, and which of its lines could not be carried out.

#include <unistd.h>

#include <algorithm>
#include <utility>
#include <variant>

#include "Pruefungen.h"
#include "desktop/Programmzeile.h"
#include "platform/Fehler.h"
#include "recording/Aufzeichnungsskript.h"
#include "recording/ModulAufzeichnungskript.h"
#include "recording/Skriptbefehl.h"

namespace wendel::quillon {
namespace {

constexpr int kHoechstensGenannt = 10;

// What is wrong with a line, in words that give nothing of it away, and what to do; "" when nothing is.
struct Mangel {
    std::string befund, rat;
};

Mangel mangelVon(const Skriptbefehl& befehl) {
    if (std::holds_alternative<UnbekannterBefehl>(befehl.aktion))
        return {"unbekannter Befehl", "Den Befehl richtig schreiben; die Namen stehen in der Anleitung."};
    if (std::holds_alternative<UngueltigeTastenBefehl>(befehl.aktion))
        return {"ungültige Tasten", "Die Tastenfolge richtig schreiben; die Namen stehen in der Anleitung."};
    if (const auto* fenster = std::get_if<FensterAktivierenBefehl>(&befehl.aktion);
        fenster != nullptr && fenster->titel.empty())
        return {"kein Fenstertitel", "Den Titel des Fensters hinter das Komma schreiben."};
    if (const auto* start = std::get_if<AnwendungStartenBefehl>(&befehl.aktion);
        start != nullptr && programmDerZeile(start->befehlszeile).empty())
        return {"das Programm wird nicht gefunden",
                "Das Programm installieren oder seinen vollen Pfad nennen."};
    return {};
}

Skriptwerte werte(const Prueflage& lage) {
    return {.tvSoftwarePfad = lage.konfiguration.tvOrdner,
            .tvAufzeichnungenPfad = lage.konfiguration.aufzeichnungsordner,
            .kanal = "01",
            .titel = "Titel",
            .programmordner = lage.programmordner};
}

// All lines that are carried out, in the order of the file.
Befehlsliste alleBefehle(const Aufzeichnungsskript& skript) {
    Befehlsliste alle;
    for (const Befehlsliste* liste :
         {&skript.befehlAnwendungStarten, &skript.befehlKanalWechseln, &skript.befehlAufnahmeStarten,
          &skript.befehlAufnahmeBeenden, &skript.befehlAnwendungBeenden})
        alle.insert(alle.end(), liste->begin(), liste->end());
    std::sort(alle.begin(), alle.end(),
              [](const Skriptzeile& a, const Skriptzeile& b) { return a.nummer < b.nummer; });
    return alle;
}

void pruefeZeilen(Pruefmelder& melder, const Ports& ports, const Prueflage& lage,
                  const Aufzeichnungsskript& skript) {
    const Befehlsliste befehle = alleBefehle(skript);
    if (befehle.empty())
        return melder.hinweis("Skript: lesbar, aber ohne Befehle",
                              "Befehle eintragen; wie, steht in der Anleitung zu Aufzeichnungsskripten.");
    int maengel = 0;
    for (const Skriptzeile& zeile : befehle) {
        const Mangel mangel = mangelVon(
            skriptbefehl(platzhalterErsetzt(ports, werte(lage), skript.tvAnwendungTitel, zeile.text)));
        if (mangel.befund.empty() || ++maengel > kHoechstensGenannt) continue;
        melder.fehler("Zeile " + std::to_string(zeile.nummer) + ": " + mangel.befund, mangel.rat);
    }
    if (maengel > kHoechstensGenannt)
        melder.fehler("Und " + std::to_string(maengel - kHoechstensGenannt) + " weitere Zeilen",
                      "Zuerst die genannten berichtigen.");
    melder.ok("Skript: lesbar, " + std::to_string(befehle.size()) +
              (befehle.size() == 1 ? " Befehl" : " Befehle") +
              (maengel == 0 ? "" : ", davon " + std::to_string(maengel) + " mit Mängeln"));
}

}  // namespace

void pruefeSkript(Pruefmelder& melder, const Ports& ports, const Prueflage& lage) {
    if (lage.konfiguration.skript.empty())
        return melder.ok("Skript: keines eingestellt, Aufnahmen werden nur angekündigt");
    const std::string datei = skriptdatei(lage.konfiguration.skript, lage.programmordner);
    if (vorhandeneDatei(datei).empty())
        return melder.fehler("Skript: eingestellt, aber nicht da",
                             "Die Datei bereitstellen oder mit \"quillon --setze Skript=DATEI\" eine andere "
                             "nennen.");
    if (::access(vorhandeneDatei(datei).c_str(), R_OK) != 0)
        return melder.fehler("Skript: nicht lesbar", "Dem Benutzer die Rechte an der Datei geben.");
    try {
        NurLesen dateien;
        pruefeZeilen(melder, ports, lage, SkriptEinladen(dateien, datei));
    } catch (const Fehler&) {
        melder.fehler("Skript: Zeile 1 ist nicht die Kopfzeile der Aufzeichnungsskripte, oder es ist zu groß",
                      "Die erste Zeile wie in der Anleitung schreiben.");
    }
}

}  // namespace wendel::quillon
