#include <stdexcept>
#include <utility>

#include "platform/Text.h"
#include "support/Fakes.h"

namespace wendel {

namespace {

using Zustand = std::shared_ptr<FakeDatenbankzustand>;

void merke(const Zustand& zustand, const char* art, const std::string& text, std::optional<int> typ = {},
           std::optional<int> optionen = {}) {
    zustand->journal->notiere(art, text);
    if (zustand->mitschreiben) zustand->vorgaenge.push_back({art, text, typ, optionen});
}

// The failure that is next in turn, if one is.
void stoereNachPlan(const Zustand& zustand, const std::string& sql) {
    if (zustand->vorAnweisung) zustand->vorAnweisung(sql);
    if (zustand->naechsteFehler.empty()) return;
    const int nummer = zustand->naechsteFehler.front();
    zustand->naechsteFehler.pop_front();
    if (nummer != 0) throw Fehler(nummer, "FakeDatenbank", "Gesperrt.");
}

// Nothing when the script does not know the statement; throws the failure that it prescribes.
std::optional<FakeTabelle> antwortAuf(const Zustand& zustand, const std::string& sql) {
    std::optional<FakeAntwort> antwort;
    if (zustand->dynamisch) antwort = zustand->dynamisch(sql);
    if (const auto fest = zustand->antworten.find(sql); !antwort && fest != zustand->antworten.end())
        antwort = fest->second;
    if (!antwort) return std::nullopt;
    if (const Fehler* fehler = std::get_if<Fehler>(&*antwort)) throw *fehler;
    return std::get<FakeTabelle>(std::move(*antwort));
}

class FakeRecordset : public Recordset {
  public:
    FakeRecordset(Zustand zustand, FakeTabelle tabelle)
        : zustand_(std::move(zustand)), tabelle_(std::move(tabelle)) {
        ++zustand_->recordsets;
    }
    ~FakeRecordset() override { schliesse(); }
    FakeRecordset(const FakeRecordset&) = delete;
    FakeRecordset& operator=(const FakeRecordset&) = delete;

    bool eof() override { return zeile_ >= tabelle_.zeilen.size(); }

    void moveNext() override {
        if (eof()) throw Fehler(3021, "FakeRecordset", "Kein aktueller Datensatz.");
        ++zeile_;
    }

    std::size_t feldnummer(const std::string& name) override {
        for (std::size_t i = 0; i < tabelle_.spalten.size(); ++i) {
            if (gleichOhneGrossKlein(tabelle_.spalten[i], name)) return i;
        }
        throw Fehler(3265, "FakeRecordset", "Element in dieser Auflistung nicht gefunden.");
    }

    Variant feld(std::size_t nummer) override {
        if (neu_ && nummer == 0) return Variant::lang(zustand_->naechsterSchluessel);
        if (eof()) throw Fehler(3021, "FakeRecordset", "Kein aktueller Datensatz.");
        return tabelle_.zeilen[zeile_].at(nummer);
    }

    void addNew() override { neu_.emplace(); }
    void edit() override {}
    void setzeFeld(std::size_t nummer, const Variant& wert) override {
        if (neu_) neu_->emplace_back(tabelle_.spalten.at(nummer), wert);
    }
    void update() override {
        merke(zustand_, "update", "");
        stoereNachPlan(zustand_, "");
        if (!neu_) return;
        zustand_->gespeichert.push_back(*std::exchange(neu_, std::nullopt));
        ++zustand_->naechsterSchluessel;
    }

    void close() override {
        merke(zustand_, "closeRecordset", "");
        schliesse();
    }

  private:
    void schliesse() {
        if (!std::exchange(geschlossen_, true)) --zustand_->recordsets;
    }

    Zustand zustand_;
    FakeTabelle tabelle_;
    std::size_t zeile_ = 0;
    std::optional<std::vector<std::pair<std::string, Variant>>> neu_;
    bool geschlossen_ = false;
};

class FakeDatenbank : public Datenbank {
  public:
    FakeDatenbank(Zustand zustand, std::string pfad) : zustand_(std::move(zustand)), pfad_(std::move(pfad)) {
        ++zustand_->geoeffnet;
    }
    ~FakeDatenbank() override { schliesse(); }
    FakeDatenbank(const FakeDatenbank&) = delete;
    FakeDatenbank& operator=(const FakeDatenbank&) = delete;

    std::string name() override { return pfad_; }

    std::unique_ptr<Recordset> openRecordset(const std::string& sql, std::optional<int> typ,
                                             std::optional<int> optionen) override {
        pruefeOffen();
        merke(zustand_, "openRecordset", sql, typ, optionen);
        stoereNachPlan(zustand_, sql);
        std::optional<FakeTabelle> tabelle = antwortAuf(zustand_, sql);
        // No Fehler: it would vanish in the retry boxes of the code under test.
        if (!tabelle) throw std::logic_error("FakeDatenbank kennt keine Antwort auf: " + sql);
        return std::make_unique<FakeRecordset>(zustand_, std::move(*tabelle));
    }

    void execute(const std::string& sql, int optionen) override {
        pruefeOffen();
        merke(zustand_, "execute", sql, std::nullopt, optionen);
        stoereNachPlan(zustand_, sql);
        antwortAuf(zustand_, sql);
    }

    int recordsetsCount() override { return zustand_->recordsets; }

    void close() override {
        merke(zustand_, "closeDatabase", pfad_);
        schliesse();
    }

  private:
    void pruefeOffen() const {
        if (geschlossen_) throw std::logic_error("FakeDatenbank: schon geschlossen: " + pfad_);
    }
    void schliesse() {
        if (!std::exchange(geschlossen_, true)) ++zustand_->geschlossen;
    }

    Zustand zustand_;
    std::string pfad_;
    bool geschlossen_ = false;
};

class FakeDatenbankmaschine : public Datenbankmaschine {
  public:
    explicit FakeDatenbankmaschine(Zustand zustand) : zustand_(std::move(zustand)) {}

    std::unique_ptr<Datenbank> openDatabase(const std::string& pfad) override {
        merke(zustand_, "openDatabase", pfad);
        if (zustand_->beimOeffnen) zustand_->beimOeffnen(pfad);
        return std::make_unique<FakeDatenbank>(zustand_, pfad);
    }

    void repairDatabase(const std::string& pfad) override {
        merke(zustand_, "repairDatabase", pfad);
        if (zustand_->beimReparieren) zustand_->beimReparieren(pfad);
    }

    void compactDatabase(const std::string& quelle, const std::string& ziel) override {
        merke(zustand_, "compactDatabase", quelle + " -> " + ziel);
        if (zustand_->beimKomprimieren) zustand_->beimKomprimieren(quelle, ziel);
    }

  private:
    Zustand zustand_;
};

}  // namespace

std::vector<std::string> FakeDatenbankzustand::anweisungen() const {
    std::vector<std::string> texte;
    for (const FakeVorgang& vorgang : vorgaenge) {
        if (vorgang.art == "openRecordset" || vorgang.art == "execute") texte.push_back(vorgang.text);
    }
    return texte;
}

std::unique_ptr<Datenbankmaschine> FakeDatenbankmaschinen::maschine(const std::string& kennung,
                                                                    bool vorhanden) {
    notiere("maschine", kennung);
    versuche.push_back(kennung);
    if (!vorhanden) throw Fehler(429, "FakeDatenbankmaschinen", "Objekterstellung nicht möglich.");
    return std::make_unique<FakeDatenbankmaschine>(zustand_);
}

}  // namespace wendel
