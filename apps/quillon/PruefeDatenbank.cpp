// The guide's database: where it is, whether it opens, who has it open, and whether its pages fit together.
// Read under the lock that every reader holds, and only while it is read.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "Pruefungen.h"
#include "desktop/Dateideskriptor.h"
#include "desktop/Pfade.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/FileCheck.h"
#include "jet/storage/FileIo.h"
#include "jet/storage/FileLocks.h"
#include "jet/storage/LockFile.h"
#include "jet/storage/Table.h"
#include "platform/Fehler.h"

namespace wendel::quillon {
namespace {

using jet::File;

constexpr std::array<const char*, 4> kTabellen{"Sendungen", "SendungenDetails", "Sender", "Markierungen"};

// The database that the program would open, native; "" when there is none. It asks before it takes the local
// one in place of another.
struct Datenbankort {
    std::string datei;
    bool eingestellt = true;
    bool imProgrammordner = false;
};

Datenbankort datenbankort(const Prueflage& lage) {
    const std::string lokal = lage.programmordner + "tvdaten.mdb";
    const std::string& genannt = lage.konfiguration.datenbank;
    const std::string datei = vorhandeneDatei(genannt);
    if (!datei.empty()) return {datei, true, nativerPfad(genannt) == nativerPfad(lokal)};
    return {vorhandeneDatei(lokal), false, true};
}

std::uint64_t dateigroesse(const std::string& nativ) {
    return LinuxDateisystem().groesse(logischerPfad(nativ)).value_or(0);
}

void meldeOeffnungsfehler(Pruefmelder& melder, int nummer) {
    const std::string zahl = " (Fehler " + std::to_string(nummer) + ")";
    switch (nummer) {
        case jet::jetfehler::kUnknownFormat:
            return melder.fehler("Datenbank: keine Datenbank der Suite" + zahl,
                                 "Die richtige tvdaten.mdb oder eine Sicherung an ihre Stelle legen; Lomrick "
                                 "liest die Formate Jet 3 und Jet 4.");
        case jet::jetfehler::kNoAccess:
            return melder.fehler("Datenbank: nicht lesbar" + zahl,
                                 "Dem Benutzer die Rechte an der Datei und ihrem Journal (-journal) geben.");
        case jet::jetfehler::kCannotLock:
            return melder.fehler("Datenbank: von einem anderen Programm gesperrt" + zahl,
                                 "Die anderen Programme der Suite beenden und noch einmal prüfen.");
        default:
            return melder.fehler("Datenbank: beschädigt" + zahl,
                                 "Alle Programme beenden, die Datei sichern und dann \"jetsql DATEI "
                                 "--reparieren\" aufrufen.");
    }
}

void pruefeRechte(Pruefmelder& melder, const std::string& datei) {
    if (::access(datei.c_str(), W_OK) != 0)
        melder.hinweis("Rechte: die Datenbank ist nur lesbar",
                       "Dem Benutzer das Schreiben erlauben, sonst bleiben Markierungen unverändert.");
    else if (::access(elternordner(jet::resolvedPath(datei)).c_str(), W_OK | X_OK) != 0)
        melder.hinweis("Rechte: der Ordner der Datenbank ist nur lesbar",
                       "Dem Benutzer das Schreiben im Ordner erlauben, sonst kann nichts geändert werden.");
    else
        melder.ok("Rechte: Datei und Ordner sind beschreibbar");
}

void pruefeSperren(Pruefmelder& melder, const std::string& datei) {
    const unsigned benutzer = jet::LockFile::users(jet::resolvedPath(datei));
    const Dateideskriptor fd(::open(datei.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const bool schreibt = fd && jet::FileLocks(fd.get()).holderOfWriter() != 0;
    melder.ok("Sperren: " +
              (benutzer == 0 ? "niemand hat die Datenbank offen"
                             : std::to_string(benutzer) +
                                   (benutzer == 1 ? " Programm hat" : " Programme haben") + " sie offen") +
              (schreibt ? ", eines schreibt gerade" : ""));
}

void pruefeJournal(Pruefmelder& melder, const std::string& datei, const File& geoeffnet) {
    const std::uint64_t bytes = dateigroesse(jet::resolvedPath(datei) + "-journal");
    if (bytes == 0)
        melder.ok("Journal: keines, alles steht in der Datenbank");
    else if (geoeffnet.journalEmpty())
        melder.hinweis("Journal: " + groesseText(bytes) + ", passt nicht zu dieser Datenbank",
                       "Lomrick starten; es legt das Journal mit der Endung -journal.alt beiseite.");
    else
        melder.ok("Journal: " + groesseText(bytes) +
                  ", gehört dazu und wird beim nächsten Schließen eingearbeitet");
}

void pruefeTabellen(Pruefmelder& melder, jet::Database& datenbank) {
    std::string zeilen, fehlend;
    for (const char* name : kTabellen) {
        const auto tabelle = datenbank.table(name);
        std::string& ziel = tabelle ? zeilen : fehlend;
        ziel += (ziel.empty() ? "" : ", ") + std::string(name);
        if (tabelle) ziel += " " + std::to_string(tabelle->rowCount);
    }
    if (!zeilen.empty()) melder.ok("Zeilen: " + zeilen);
    if (!fehlend.empty())
        melder.fehler("Es fehlen die Tabellen: " + fehlend,
                      "Die richtige tvdaten.mdb nehmen oder mit \"quillon --anlegen\" in einem leeren Ordner "
                      "eine neue machen.");
}

// The last day of the guide; nothing in an empty one.
std::optional<Datum> letzterBeginn(jet::Database& datenbank) {
    const auto tabelle = datenbank.table("Sendungen");
    const auto spalte = tabelle ? tabelle->findColumn("Beginn") : std::nullopt;
    if (!spalte || tabelle->columns[*spalte].type != jet::ColumnType::kDate) return std::nullopt;
    double letzter = 0;
    for (jet::TableScan zeilen(datenbank.file(), *tabelle); zeilen.next();)
        if (!zeilen.row().isNull(*spalte)) letzter = std::max(letzter, zeilen.row().asDouble(*spalte));
    return letzter > 0 ? std::optional(Datum::ausTageszahl(letzter)) : std::nullopt;
}

void pruefeUmfang(Pruefmelder& melder, jet::Database& datenbank, Datum jetzt) {
    const std::optional<Datum> letzter = letzterBeginn(datenbank);
    constexpr const char* kRat = "Ein Live-Update machen oder die Daten der Suite erneuern.";
    if (!letzter)
        melder.hinweis("Programm: keine Sendungen", kRat);
    else if (*letzter < jetzt)
        melder.hinweis("Programm: reicht nur bis zum " + Format(*letzter, "dd.mm.yyyy"), kRat);
    else
        melder.ok("Programm: reicht bis zum " + Format(*letzter, "dd.mm.yyyy"));
}

}  // namespace

void pruefeDatenbank(Pruefmelder& melder, const Prueflage& lage) {
    const Datenbankort ort = datenbankort(lage);
    if (ort.datei.empty())
        return melder.fehler("Datenbank: nicht gefunden",
                             lage.ordnerDa ? "Die Datei tvdaten.mdb in den Programmordner legen; \"quillon "
                                             "--anlegen --beispiel\" macht eine zum Ausprobieren."
                                           : "Siehe den Rat zum Programmordner.");
    if (!ort.eingestellt)
        melder.hinweis("Datenbank: die eingestellte ist nicht da, die im Programmordner schon",
                       "Den Datenträger der eingestellten anschließen oder mit \"quillon --setze "
                       "Datenbank=DATEI\" die andere einstellen.");
    pruefeSperren(melder, ort.datei);
    pruefeRechte(melder, ort.datei);
    try {
        jet::Database datenbank(ort.datei, jet::Access::kReadOnly, File::kDefaultCacheBytes,
                                File::Opening::kReading);
        const File::Reading lesen(datenbank.file());
        const bool jet3 = datenbank.file().version() == jet::Version::kJet3;
        melder.ok(std::string("Datenbank: ") +
                  (ort.imProgrammordner ? "im Programmordner" : "an anderem Ort") + ", Jet " +
                  (jet3 ? "3" : "4") + ", " + groesseText(dateigroesse(ort.datei)) +
                  (datenbank.file().encoded() ? ", verschlüsselt und darum nur lesbar" : ""));
        pruefeJournal(melder, ort.datei, datenbank.file());
        pruefeTabellen(melder, datenbank);
    } catch (const Fehler& fehler) {
        meldeOeffnungsfehler(melder, fehler.nummer());
    }
}

void pruefeDatenbankseiten(Pruefmelder& melder, const Prueflage& lage) try {
    const Datenbankort ort = datenbankort(lage);
    if (ort.datei.empty())
        return melder.hinweis("Nicht geprüft: keine Datenbank", "Zuerst eine Datenbank einrichten.");
    jet::Database datenbank(ort.datei, jet::Access::kReadOnly, File::kDefaultCacheBytes,
                            File::Opening::kReading);
    const File::Reading lesen(datenbank.file());
    pruefeUmfang(melder, datenbank, lage.uhr.jetzt());
    const std::size_t befunde = jet::checkFile(datenbank).size();
    if (befunde == 0)
        melder.ok("Seiten und Indizes: passen zusammen");
    else
        melder.hinweis("Seiten und Indizes: " + std::to_string(befunde) + " Auffälligkeiten",
                       "Die meisten sind harmlos und stammen von anderen Programmen; wenn Sendungen fehlen, "
                       "zeigt \"jetsql DATEI --pruefen\" sie an und --reparieren hilft.");
} catch (const Fehler& fehler) {
    melder.fehler("Inhalt: nicht lesbar (Fehler " + std::to_string(fehler.nummer()) + ")",
                  "Siehe den Rat zur Datenbank.");
}

}  // namespace wendel::quillon
