#include "tvdb/ModulDatenbankzugriff.h"

#include <array>
#include <string_view>
#include <utility>

#include "platform/Datum.h"
#include "platform/Text.h"
#include "tvdb/Einstellungstabelle.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/ModulSystem.h"

namespace wendel {

namespace {

// Framed by commas, so that only whole numbers are found in it.
constexpr std::string_view kSperrfehler = ",3186,3187,3188,3260,3261,3167,3050,";

constexpr std::array<const char*, 7> kProgrammkennungen = {
    "DAO.DBEngine.35", "DAO.DBEngine.36", "DAO.DBEngine.351", "DAO.DBEngine.4",
    "DAO.DBEngine.40", "DAO.DBEngine35",  "DAO.DBEngine"};

constexpr const char* kZugriffsprotokoll = "tvdbaccess.log";
constexpr const char* kSqlProtokoll = "drumlet.log";
constexpr std::uint64_t kGroesstesProtokoll = 1048576;
constexpr int kKeinObjekt = 91;
constexpr std::int64_t kLangsamAbSekunden = 2;
constexpr int kKuerzestePauseMs = 3000;
constexpr int kPausenspanneMs = 1000;

constexpr const char* kKeineMaschine =
    "Es fehlen Systemkomponenten. Die DAO-Datenbankengine konnte in keiner kompatiblen Version geöffnet "
    "werden. Bitte installieren Sie diese Anwendung neu.";
constexpr const char* kNichtGeoeffnet = "Die Datenbankdatei kann nicht geöffnet werden.";
constexpr const char* kKollisionTitel = "Datenzugriffskollision";
constexpr const char* kKollision =
    "Eine andere Funktion verhindert gerade die Datenfreigabe aufgrund eines längeres Zugriffs.\r\n"
    "Bitte warten Sie einen Augenblick und klicken Sie dann auf [Wiederholen].";
constexpr const char* kKeinZugriff = "Es kann nicht auf die TV-Datenbank zugegriffen werden.";
constexpr const char* kReparieren =
    "Die Datenbank scheint defekt zu sein.\r\nMöchten Sie versuchen sie zu reparieren?";
constexpr const char* kKeinUpdate =
    "Ein Update kann nicht durchgeführt werden. Möglicherweise verhindert eine andere Funktion gerade die "
    "Datenfreigabe.";

std::string mitGenauemFehler(const char* einleitung, const Fehler& fehler) {
    return std::string(einleitung) + "\r\nDer genaue Fehler lautet:\r\n\r\n(" +
           std::to_string(fehler.nummer()) + ") " + fehler.beschreibung();
}

// typ or optionen of 0 or less count as not given; optionen alone opens nothing, which callers rely on.
std::unique_ptr<Recordset> oeffne(Datenbank& db, const std::string& sql, int typ, int optionen) {
    if (typ <= 0 && optionen > 0) return nullptr;
    const auto gesetzt = [](int wert) { return wert > 0 ? std::optional(wert) : std::nullopt; };
    return db.openRecordset(sql, gesetzt(typ), gesetzt(optionen));
}

}  // namespace

// The silent retries of one operation after locking conflicts.
class ModulDatenbankzugriff::Sperrwiederholung {
  public:
    explicit Sperrwiederholung(ModulDatenbankzugriff& modul) : modul_(modul) {}

    // True after a pause when the operation is to be tried again without asking. The pause differs from one
    // program to the next, so that those who collided do not meet again. It really blocks: were messages
    // processed, a tick could start a second operation in the middle of this one.
    bool pausiert(int nummer) {
        if (!IstSperrfehler(nummer) || modul_.ohneWarten) return false;
        // At the first conflict only, so that a changed setting takes effect at once and a smooth run reads
        // nothing.
        if (zaehler_++ == 0) hoechstens_ = liesWiederholungen(modul_.einstellungen_);
        if (zaehler_ > hoechstens_) return false;
        const int zufall = static_cast<int>(modul_.ports_.rechner.zufall() * kPausenspanneMs);
        modul_.ports_.uhr.schlafe(kKuerzestePauseMs + zufall);
        return true;
    }

  private:
    ModulDatenbankzugriff& modul_;
    std::int32_t hoechstens_ = 0;
    std::int64_t zaehler_ = 0;
};

ModulDatenbankzugriff::ModulDatenbankzugriff(const Ports& ports, Einstellungen& einstellungen,
                                             const Prozesswerte& werte)
    : ports_(ports), einstellungen_(einstellungen), werte_(werte) {}

// ---- engine and database ----

std::unique_ptr<Datenbankmaschine> ModulDatenbankzugriff::SafeCreateDBObject() {
    const auto versuch = [](auto erzeuge) -> std::unique_ptr<Datenbankmaschine> {
        try {
            return erzeuge();
        } catch (const Fehler&) {
            return nullptr;  // this version is not there; the next may be
        }
    };
    if (auto direkt = versuch([&] { return ports_.datenbanken.direkt(); })) return direkt;
    for (const char* kennung : kProgrammkennungen) {
        if (auto m = versuch([&] { return ports_.datenbanken.nachProgrammkennung(kennung); })) return m;
    }
    throw Fehler(fehlernummer::kEigener, "SafeCreateDBObject", kKeineMaschine);
}

Datenbankmaschine& ModulDatenbankzugriff::maschine() {
    if (!maschine_) maschine_ = SafeCreateDBObject();
    return *maschine_;
}

std::unique_ptr<Datenbank> ModulDatenbankzugriff::OpenDatenbank(const std::string& pfad) {
    for (;;) {
        try {
            return maschine().openDatabase(pfad);
        } catch (const Fehler& fehler) {
            const std::string text = mitGenauemFehler(kNichtGeoeffnet, fehler);
            if (!wiederholenGewuenscht(text, meldungsstil::kWiederholenAbbrechen, programmTitel())) throw;
        }
    }
}

void ModulDatenbankzugriff::SafeCloseRs(std::unique_ptr<Recordset>& rs) {
    try {
        if (rs) rs->close();
    } catch (const Fehler&) {
        // Nothing more is read from it; letting it go frees what it holds.
    }
    rs.reset();
}

void ModulDatenbankzugriff::SafeCloseDatenbank(std::unique_ptr<Datenbank>& db) {
    try {
        if (db) db->close();
    } catch (const Fehler&) {
        // As above.
    }
    db.reset();
}

// ---- operations with retries ----

std::unique_ptr<Recordset> ModulDatenbankzugriff::SafeOpenRs(std::unique_ptr<Datenbank>& db,
                                                             const std::string& sql, int typ, int optionen) {
    std::unique_ptr<Recordset> rs;
    mitWiederholung(db, sql, false, [&](Datenbank& offene) { rs = oeffne(offene, sql, typ, optionen); });
    return rs;
}

void ModulDatenbankzugriff::SafeExecute(std::unique_ptr<Datenbank>& db, const std::string& sql,
                                        bool fehlerIgnorieren) {
    mitWiederholung(db, sql, fehlerIgnorieren, [&](Datenbank& offene) { offene.execute(sql, kFailOnError); });
}

void ModulDatenbankzugriff::mitWiederholung(std::unique_ptr<Datenbank>& db, const std::string& sql,
                                            bool fehlerIgnorieren, const Zugriff& zugriff) {
    if (!db) throw Fehler(kKeinObjekt, "ModulDatenbankzugriff", "Die Datenbank ist nicht geöffnet.");
    const std::string pfad = db->name();
    Sperrwiederholung wiederholung(*this);
    for (;;) {
        const auto fehler = versuche(*db, sql, fehlerIgnorieren, zugriff);
        if (!fehler) return;
        // Closed while waiting, the file is free for the program that holds the lock, and reopening sees its
        // work.
        if (db->recordsetsCount() == 0) SafeCloseDatenbank(db);
        const bool nochmal = wiederholung.pausiert(fehler->nummer()) || nochmalNachBox(*fehler, db, pfad);
        if (!db) db = OpenDatenbank(pfad);
        if (!nochmal) throw *fehler;
    }
}

std::optional<Fehler> ModulDatenbankzugriff::versuche(Datenbank& db, const std::string& sql,
                                                      bool fehlerIgnorieren, const Zugriff& zugriff) {
    const Datum beginn = ports_.uhr.jetzt();
    if (sqlProtokoll) LogSchreiben(kSqlProtokoll, "SQL:" + sql, true, true);
    std::optional<Fehler> fehler;
    try {
        zugriff(db);
    } catch (const Fehler& gemeldet) {
        if (!fehlerIgnorieren) fehler = gemeldet;
    }
    const std::int64_t sekunden = DateDiff(Einheit::Sekunde, beginn, ports_.uhr.jetzt());
    if (fehler || sekunden >= kLangsamAbSekunden) zugriffFesthalten(fehler, sekunden, sql);
    return fehler;
}

void ModulDatenbankzugriff::SafeUpdate(Recordset& rs) {
    Sperrwiederholung wiederholung(*this);
    for (;;) {
        try {
            rs.update();
            return;
        } catch (const Fehler& fehler) {
            if (wiederholung.pausiert(fehler.nummer())) continue;
            if (stillerModus && !IstSperrfehler(fehler.nummer())) throw;
            const std::string text = mitGenauemFehler(kKeinUpdate, fehler);
            if (!wiederholenGewuenscht(text, meldungsstil::kWiederholenAbbrechen, programmTitel())) throw;
        }
    }
}

// ---- questions ----

bool ModulDatenbankzugriff::nochmalNachBox(const Fehler& fehler, std::unique_ptr<Datenbank>& db,
                                           const std::string& pfad) {
    if (IstSperrfehler(fehler.nummer())) {
        return wiederholenGewuenscht(kKollision, meldungsstil::kWiederholenAbbrechenVordergrund,
                                     kKollisionTitel);
    }
    return !stillerModus && nochmalNachZugriffsfehler(fehler, db, pfad);
}

bool ModulDatenbankzugriff::nochmalNachZugriffsfehler(const Fehler& fehler, std::unique_ptr<Datenbank>& db,
                                                      const std::string& pfad) {
    const std::string text = mitGenauemFehler(kKeinZugriff, fehler);
    if (wiederholenGewuenscht(text, meldungsstil::kWiederholenAbbrechen, programmTitel())) return true;
    const Antwort antwort =
        ports_.meldungen.meldung(kReparieren, meldungsstil::kJaNeinAusrufezeichen, programmTitel());
    if (antwort != Antwort::Ja) return false;
    ports_.fenster.sanduhr(true);
    DatenbankReparieren(db, pfad);
    ports_.fenster.sanduhr(false);
    return true;
}

bool ModulDatenbankzugriff::wiederholenGewuenscht(const std::string& text, int stil,
                                                  const std::string& titel) {
    return ports_.meldungen.meldung(text, stil, titel) == Antwort::Wiederholen;
}

std::string ModulDatenbankzugriff::programmTitel() const {
    return ModulSystem::GetProgrammTitel(werte_.programmdatei);
}

bool ModulDatenbankzugriff::IstSperrfehler(int nummer) {
    return kSperrfehler.find("," + std::to_string(nummer) + ",") != std::string_view::npos;
}

// ---- repair ----

void ModulDatenbankzugriff::DatenbankReparieren(std::unique_ptr<Datenbank>& db, const std::string& pfad) {
    SafeCloseDatenbank(db);
    if (!ModulGrundbefehle::DateiExistiert(ports_.dateien, pfad)) return;
    try {
        repariereUndKomprimiere(pfad);
    } catch (const Fehler&) {
        // The statement that failed is tried again next and shows what is still wrong.
    }
}

void ModulDatenbankzugriff::repariereUndKomprimiere(const std::string& pfad) {
    Dateisystem& dateien = ports_.dateien;
    const std::string arbeitsdatei = pfad + ".cmp";
    if (dateien.existiert(arbeitsdatei) && !dateien.loeschen(arbeitsdatei)) return;
    try {
        maschine().repairDatabase(pfad);
    } catch (const Fehler&) {
        // Compacting reads what can be read, whether or not the repair came through.
    }
    maschine().compactDatabase(pfad, arbeitsdatei);
    if (!dateien.existiert(arbeitsdatei)) return;
    // The old file may be held by another program: then it stays, and with it the work file.
    if (dateien.loeschen(pfad) || !dateien.existiert(pfad)) (void)dateien.umbenennen(arbeitsdatei, pfad);
}

// ---- logs ----

void ModulDatenbankzugriff::zugriffFesthalten(const std::optional<Fehler>& fehler, std::int64_t sekunden,
                                              const std::string& sql) {
    const std::string ergebnis = fehler ? "Fehler" + std::to_string(fehler->nummer()) : "Ok";
    ZugriffProtokollieren(
        zeitstempel() + ": " + ergebnis + ": " + std::to_string(sekunden) + "s: " + Trim(sql), true);
}

void ModulDatenbankzugriff::ZugriffProtokollieren(const std::string& text, bool neueZeile) {
    const std::string pfad = ModulGrundbefehle::PfadMitBackslash(werte_.programmordner) + kZugriffsprotokoll;
    const std::string zeile = Trim(ersetzt(text, kCrLf, " ")) + (neueZeile ? std::string(kCrLf) : "");
    // A log that can't be written must not stop the work that it records.
    if (ports_.dateien.groesse(pfad).value_or(0) > kGroesstesProtokoll) (void)ports_.dateien.loeschen(pfad);
    (void)ports_.dateien.anhaengen(pfad, nachWindows1252(zeile));
}

void ModulDatenbankzugriff::LogSchreiben(const std::string& datei, const std::string& text, bool mitZeit,
                                         bool mitSpeicher) {
    std::string zeile;
    if (mitZeit) zeile += zeitstempel() + " | ";
    if (mitSpeicher) zeile += std::to_string(FreierSpeicher()) + " Bytes frei | ";
    zeile += text + std::string(kCrLf);
    (void)ports_.dateien.anhaengen(datei, nachWindows1252(zeile));
}

std::string ModulDatenbankzugriff::zeitstempel() const {
    return Format(ports_.uhr.jetzt(), "dd.mm.yyyy hh:nn:ss");
}

std::int32_t ModulDatenbankzugriff::FreierSpeicher() { return ports_.rechner.freierSpeicher(); }

}  // namespace wendel
