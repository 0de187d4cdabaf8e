#include "Befehlszeile.h"

#include <filesystem>
#include <string_view>
#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::quillon {

namespace {

constexpr std::string_view kAufruf =
    "Aufruf: quillon [--ordner ORDNER] [--anlegen] [--beispiel] [--erststart] [--setze NAME=WERT]\n"
    "                [--zeige [NAME]] [--termine-export DATEI] [--termine-import DATEI]\n"
    "        quillon [--ordner ORDNER] --pruefe\n";

// Walks through the arguments.
class Leser {
  public:
    explicit Leser(std::span<const std::string> argumente) : rest_(argumente) {}

    bool fertig() const { return rest_.empty(); }
    std::string naechstes() {
        std::string argument = rest_.front();
        rest_ = rest_.subspan(1);
        return argument;
    }
    std::string wertFuer(const std::string& schalter) {
        if (fertig()) throw Gebrauchsfehler("Zu \"" + schalter + "\" fehlt die Angabe.");
        return naechstes();
    }
    // The value of a switch that may stand alone.
    std::optional<std::string> moeglicherWert() {
        if (fertig() || rest_.front().starts_with("--")) return std::nullopt;
        return naechstes();
    }

  private:
    std::span<const std::string> rest_;
};

const Einstellungszeile* zeileNamens(const std::string& name) {
    if (const Einstellungszeile* zeile = einstellungszeile(name)) return zeile;
    throw Gebrauchsfehler("Die Einstellung \"" + name + "\" gibt es nicht.");
}

Auftrag setzeAus(const std::string& zuweisung) {
    const std::size_t gleich = zuweisung.find('=');
    if (gleich == std::string::npos) {
        throw Gebrauchsfehler("\"" + zuweisung + "\" hat nicht die Form NAME=WERT.");
    }
    const Einstellungszeile* zeile = zeileNamens(zuweisung.substr(0, gleich));
    const std::string wert = zuweisung.substr(gleich + 1);
    try {
        if (zeile->index == einstellung::kTermin) return Anfuegen{terminAusText(wert)};
        return Setze{zeile, einstellungAusText(*zeile, wert)};
    } catch (const Fehler& fehler) {
        throw Gebrauchsfehler(fehler.beschreibung());
    }
}

Auftrag zeigeAus(const std::optional<std::string>& name) {
    return Zeige{name ? zeileNamens(*name) : nullptr};
}

// Made absolute at once: the programme folder becomes the current one before the jobs run.
std::string dateiAus(const std::string& name) {
    if (name.empty()) throw Gebrauchsfehler("Der Dateiname ist leer.");
    return std::filesystem::absolute(name).string();
}

void liesSchalter(Leser& leser, Befehl& befehl) {
    const std::string schalter = leser.naechstes();
    if (schalter == "--hilfe" || schalter == "--help" || schalter == "-h") {
        befehl.hilfe = true;
    } else if (schalter == "--pruefe") {
        befehl.pruefen = true;
    } else if (schalter == "--ordner") {
        befehl.ordner = leser.wertFuer(schalter);
        if (befehl.ordner->empty()) throw Gebrauchsfehler("Der Ordner ist leer.");
    } else if (schalter == "--anlegen") {
        befehl.auftraege.emplace_back(Anlegen{});
    } else if (schalter == "--beispiel") {
        befehl.auftraege.emplace_back(Beispiel{});
    } else if (schalter == "--erststart") {
        befehl.auftraege.emplace_back(Erststart{});
    } else if (schalter == "--setze") {
        befehl.auftraege.push_back(setzeAus(leser.wertFuer(schalter)));
    } else if (schalter == "--zeige") {
        befehl.auftraege.push_back(zeigeAus(leser.moeglicherWert()));
    } else if (schalter == "--termine-export") {
        const std::string name = leser.wertFuer(schalter);
        befehl.auftraege.emplace_back(TermineExport{name == "-" ? name : dateiAus(name)});
    } else if (schalter == "--termine-import") {
        befehl.auftraege.emplace_back(TermineImport{dateiAus(leser.wertFuer(schalter))});
    } else {
        throw Gebrauchsfehler("\"" + schalter + "\" ist unbekannt.");
    }
}

std::string_view formVon(const Einstellungszeile& zeile) {
    switch (zeile.typ) {
        case Varianttyp::Boolean: return "ja oder nein";
        case Varianttyp::Date: return "tt.mm.jjjj hh:mm:ss";
        case Varianttyp::String: return "Text";
        case Varianttyp::Integer:
        case Varianttyp::Long: return "ganze Zahl";
        default: return "tt.mm.jjjj hh:mm:ss|Intervall|ja oder nein|Text (fügt einen Termin an)";
    }
}

}  // namespace

Befehl befehlAus(std::span<const std::string> argumente) {
    Befehl befehl;
    for (const std::string& argument : argumente) {
        if (!istUtf8(argument)) throw Gebrauchsfehler("Die Angaben müssen in UTF-8 geschrieben sein.");
    }
    Leser leser(argumente);
    while (!leser.fertig())
        liesSchalter(leser, befehl);
    if (befehl.pruefen && !befehl.auftraege.empty())
        throw Gebrauchsfehler("\"--pruefe\" steht allein oder mit \"--ordner\".");
    if (befehl.auftraege.empty() && !befehl.hilfe && !befehl.pruefen) {
        throw Gebrauchsfehler(std::string("Es ist nichts zu tun.\n") + std::string(kAufruf) +
                              "Mehr zeigt \"quillon --hilfe\".");
    }
    return befehl;
}

std::string hilfetext() {
    std::string text(kAufruf);
    text +=
        "\n"
        "  --ordner ORDNER    Programmordner; sonst gilt WENDEL_ORDNER oder der übliche\n"
        "  --anlegen          legt fehlende Dateien und Ordner an, auch eine leere TV-Datenbank\n"
        "  --beispiel         trägt in eine leere TV-Datenbank ein erfundenes Programm für 14 Tage ein\n"
        "  --erststart        wie --anlegen; gab es keine TV-Datenbank, hat die neue das Beispielprogramm\n"
        "  --setze NAME=WERT  ändert eine Einstellung\n"
        "  --zeige [NAME]     zeigt alle Einstellungen oder eine\n"
        "  --termine-export DATEI   schreibt die eigenen Termine als Kalender (iCalendar, .ics);\n"
        "                           \"-\" ist die Standardausgabe\n"
        "  --termine-import DATEI   übernimmt die Ereignisse eines Kalenders als eigene Termine\n"
        "  --pruefe           sieht nach, ob alles da ist und zusammenpasst, und rät, was zu tun ist; "
        "ändert\n"
        "                     nichts und nennt nichts Privates, damit der Bericht in eine Frage passt\n"
        "\n"
        "Vorhandenes wird nie überschrieben: Eine unlesbare fennow.cfg wird in\n"
        "fennow.cfg.defekt umbenannt, bevor eine neue entsteht. Beim Export wird nur eine\n"
        "Kalenderdatei ersetzt.\n"
        "\n"
        "Beim Import erinnert ein Termin zum ersten Alarm mit Anzeige oder Ton, sonst zum Beginn,\n"
        "ganztägige um 09:00 Uhr. Was vorbei ist, kommt inaktiv, was sich wiederholt, mit dem\n"
        "nächsten Mal. Wiederholungen, die es hier nicht gibt (anders als täglich, werktags,\n"
        "wöchentlich oder mit einem Ende), werden zum einmaligen nächsten Termin. Alles, was\n"
        "anders oder gar nicht übernommen wird, wird genannt. Was schon da ist, kommt nicht doppelt.\n"
        "\n"
        "Einstellungen:\n";
    for (const Einstellungszeile& zeile : einstellungstabelle()) {
        text.append("  ").append(zeile.name).append(21 - zeile.name.size(), ' ').append(formVon(zeile));
        text += '\n';
    }
    return text;
}

}  // namespace wendel::quillon
