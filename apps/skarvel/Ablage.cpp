#include "Ablage.h"

#include <sqlite3.h>

#include <concepts>
#include <utility>

#include "Guidespalten.h"
#include "platform/Fehler.h"

namespace wendel::skarvel {
namespace {

struct Anweisungsende {
    void operator()(sqlite3_stmt* anweisung) const { sqlite3_finalize(anweisung); }
};
using Anweisung = std::unique_ptr<sqlite3_stmt, Anweisungsende>;

// kanal, von and bis stand before those of the table.
constexpr int kErsteSpalte = 3;

void binde(sqlite3_stmt* anweisung, int platz, const std::string& wert) {
    sqlite3_bind_text(anweisung, platz, wert.data(), static_cast<int>(wert.size()), SQLITE_STATIC);
}
// Numbers of any width and flags.
void binde(sqlite3_stmt* anweisung, int platz, std::int32_t wert) {
    sqlite3_bind_int(anweisung, platz, wert);
}
void binde(sqlite3_stmt*, int, Datum) {}  // not known yet

void lies(sqlite3_stmt* anweisung, int platz, std::string& wert) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(anweisung, platz));
    wert.assign(text ? text : "", static_cast<std::size_t>(sqlite3_column_bytes(anweisung, platz)));
}
template <std::integral Zahl>
void lies(sqlite3_stmt* anweisung, int platz, Zahl& wert) {
    wert = static_cast<Zahl>(sqlite3_column_int(anweisung, platz));
}
void lies(sqlite3_stmt*, int, Datum&) {}

}  // namespace

class Ablage::Datei {
  public:
    Datei() {
        // An empty name is a temporary file; beyond this much it leaves memory.
        pruefe(sqlite3_open("", &verbindung_));
        fuehreAus("pragma journal_mode=off; pragma synchronous=off; pragma cache_size=-4000;");
        std::string spalten = "kanal integer, von integer, bis integer", fragezeichen = "?,?,?";
        for (const Guidespalte& spalte : guidespalten()) {
            spalten += std::string(",") + spalte.name;
            fragezeichen += ",?";
        }
        fuehreAus("create table s(" + spalten + "); create unique index platz on s(kanal,von/60); begin");
        fuegen_ = vorbereitet("insert or replace into s values(" + fragezeichen + ")");
        suchen_ = vorbereitet("select * from s where kanal=? order by von/60");
        zaehlen_ = vorbereitet("select count(*) from s where kanal=?");
    }
    ~Datei() {
        fuegen_.reset();
        suchen_.reset();
        zaehlen_.reset();
        sqlite3_close(verbindung_);
    }
    Datei(const Datei&) = delete;
    Datei& operator=(const Datei&) = delete;

    void fuege(std::size_t kanal, const Guidesendung& sendung) {
        sqlite3_stmt* a = fuegen_.get();
        sqlite3_reset(a);
        sqlite3_clear_bindings(a);
        sqlite3_bind_int64(a, 1, static_cast<sqlite3_int64>(kanal));
        sqlite3_bind_int64(a, 2, sendung.beginn);
        if (sendung.ende) sqlite3_bind_int64(a, 3, *sendung.ende);
        int platz = kErsteSpalte;
        for (const Guidespalte& spalte : guidespalten()) {
            ++platz;
            std::visit([&](auto feld) { binde(a, platz, sendung.daten.*feld); }, spalte.feld);
        }
        pruefe(sqlite3_step(a));
    }

    std::size_t anzahl(std::size_t kanal) {
        sqlite3_stmt* a = zaehlen_.get();
        sqlite3_reset(a);
        sqlite3_bind_int64(a, 1, static_cast<sqlite3_int64>(kanal));
        pruefe(sqlite3_step(a));
        return static_cast<std::size_t>(sqlite3_column_int64(a, 0));
    }

    std::vector<Guidesendung> sendungenVon(std::size_t kanal) {
        sqlite3_stmt* a = suchen_.get();
        sqlite3_reset(a);
        sqlite3_bind_int64(a, 1, static_cast<sqlite3_int64>(kanal));
        std::vector<Guidesendung> alle;
        for (int ergebnis; (ergebnis = sqlite3_step(a)) != SQLITE_DONE;) {
            pruefe(ergebnis);
            alle.push_back(gelesen(a));
        }
        return alle;
    }

  private:
    static Guidesendung gelesen(sqlite3_stmt* a) {
        Guidesendung sendung;
        sendung.beginn = sqlite3_column_int64(a, 1);
        if (sqlite3_column_type(a, 2) != SQLITE_NULL) sendung.ende = sqlite3_column_int64(a, 2);
        int platz = kErsteSpalte;
        for (const Guidespalte& spalte : guidespalten()) {
            std::visit([&](auto feld) { lies(a, platz, sendung.daten.*feld); }, spalte.feld);
            ++platz;
        }
        sendung.daten.Temp_DetailsGeladen = true;
        return sendung;
    }

    Anweisung vorbereitet(const std::string& sql) {
        sqlite3_stmt* anweisung = nullptr;
        pruefe(sqlite3_prepare_v2(verbindung_, sql.c_str(), -1, &anweisung, nullptr));
        return Anweisung(anweisung);
    }
    void fuehreAus(const std::string& sql) {
        pruefe(sqlite3_exec(verbindung_, sql.c_str(), nullptr, nullptr, nullptr));
    }
    void pruefe(int ergebnis) const {
        if (ergebnis == SQLITE_OK || ergebnis == SQLITE_ROW || ergebnis == SQLITE_DONE) return;
        const std::string warum = ergebnis == SQLITE_FULL
                                      ? "Auf dem Datenträger für temporäre Dateien ist nicht genug Platz."
                                      : "Fehler " + std::to_string(ergebnis) + ".";
        throw Fehler(fehlernummer::kEigener, "skarvel",
                     "Die gelesenen Sendungen können nicht zwischengespeichert werden: " + warum);
    }

    sqlite3* verbindung_ = nullptr;
    Anweisung fuegen_, suchen_, zaehlen_;
};

Ablage::Ablage() : datei_(std::make_unique<Datei>()) {}
Ablage::~Ablage() = default;

std::size_t Ablage::platzVon(const std::string& kennung) {
    const auto [platz, neu] = plaetze_.try_emplace(kennung, kanaele_.size());
    if (neu) {
        kanaele_.push_back({.kennung = kennung, .namen = {}, .webseite = {}});
    }
    return platz->second;
}

void Ablage::kanal(XmltvKanal kanal) {
    XmltvKanal& bisher = kanaele_[platzVon(kanal.kennung)];
    if (bisher.namen.empty()) bisher = std::move(kanal);
}

void Ablage::sendung(XmltvSendung sendung) {
    datei_->fuege(platzVon(sendung.kanal), guidesendungAus(sendung));
}

std::size_t Ablage::anzahl(std::size_t kanal) { return datei_->anzahl(kanal); }

std::vector<Guidesendung> Ablage::sendungenVon(std::size_t kanal) { return datei_->sendungenVon(kanal); }

}  // namespace wendel::skarvel
