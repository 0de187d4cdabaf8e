#pragma once
// The access layer on the real engine and real files in a folder of its own: the clock, the boxes and chance
// are fakes.

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/LinuxDateisystem.h"
#include "jet/Connection.h"
#include "jet/JetDatenbankmaschinen.h"
#include "platform/Fehler.h"
#include "platform/Text.h"
#include "support/Fakes.h"
#include "tvdb/ModulDatenbankzugriff.h"

namespace wendel {

inline const std::string kBeispiele = std::string(WENDEL_SOURCE_DIR) + "/../shared/data/";

// Another program that uses the database; locks of two openings keep each other out as those of two processes
// do.
class FremdesProgramm {
  public:
    explicit FremdesProgramm(const std::string& pfad) : verbindung_(pfad, uhr_) {}
    void sperren() { sperre_.emplace(verbindung_.file()); }
    void freigeben() { sperre_.reset(); }

  private:
    FakeUhr uhr_;
    jet::Connection verbindung_;
    std::optional<jet::File::Writing> sperre_;
};

class EchteDatenbank : public testing::Test {
  protected:
    EchteDatenbank() {
        std::filesystem::create_directories(ordner);
        werte.programmdatei = "wendel";
        werte.programmordner = ordner;
        werte.datenbankdatei = ordner + "tvdaten.mdb";
    }
    ~EchteDatenbank() override {
        db.reset();
        std::filesystem::remove_all(ordner);
    }

    // A copy of an example database; false, and the test skipped, where there are none.
    bool beispiel(const char* name) {
        if (!std::filesystem::exists(kBeispiele + name)) return false;
        std::filesystem::copy_file(kBeispiele + name, werte.datenbankdatei);
        std::filesystem::permissions(werte.datenbankdatei, std::filesystem::perms::owner_all);
        return true;
    }

    void oeffne() { db = zugriff.OpenDatenbank(werte.datenbankdatei); }
    void aendere(const std::string& sql) {
        maschinen.direkt()->openDatabase(werte.datenbankdatei)->execute(sql, kFailOnError);
    }
    // The rows of a select, their cells joined with "|", Null as "-".
    std::vector<std::string> zeilen(const std::string& sql, std::size_t spalten) {
        std::vector<std::string> ergebnis;
        const auto offen = maschinen.direkt()->openDatabase(werte.datenbankdatei);
        for (auto rs = offen->openRecordset(sql, kSnapshot, kForwardOnly); !rs->eof(); rs->moveNext()) {
            std::vector<std::string> zellen;
            for (std::size_t i = 0; i < spalten; ++i)
                zellen.push_back(rs->feld(i).istNull() ? "-" : rs->feld(i).alsText());
            ergebnis.push_back(Join(zellen, "|"));
        }
        return ergebnis;
    }

    const std::string ordner = testing::TempDir() + "wendel-integration-" + std::to_string(::getpid()) + "/";
    FakePorts fakes;
    LinuxDateisystem dateien;
    jet::JetDatenbankmaschinen maschinen{fakes.uhr, [](const std::string& pfad) { return pfad; }};
    Prozesswerte werte;
    Einstellungen einstellungen{dateien, ordner};
    Ports ports{fakes.uhr,    dateien,        fakes.meldungen, fakes.fenster,
                fakes.klang,  fakes.prozesse, fakes.starter,   fakes.automation,
                fakes.symbol, fakes.rechner,  maschinen,       fakes.fernsteuerung,
                fakes.energie};
    ModulDatenbankzugriff zugriff{ports, einstellungen, werte};
    std::unique_ptr<Datenbank> db;
};

}  // namespace wendel
