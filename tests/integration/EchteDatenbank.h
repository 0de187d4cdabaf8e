#pragma once
// The access layer on the real engine and real files in a folder of its own: the clock, the boxes and chance
// are fakes. A second process takes and leaves the database's write lock when it is told to.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
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

// Another program that uses the database: a process that obeys one letter at a time.
class FremdesProgramm {
  public:
    explicit FremdesProgramm(const std::string& pfad) {
        int hin[2], her[2];
        if (pipe(hin) != 0 || pipe(her) != 0) throw std::runtime_error("no pipe");
        kind_ = fork();
        if (kind_ == 0) {
            close(hin[1]);
            close(her[0]);
            gehorche(pfad, hin[0], her[1]);
        }
        close(hin[0]);
        close(her[1]);
        an_ = hin[1], von_ = her[0];
    }
    ~FremdesProgramm() {
        close(an_);
        close(von_);
        toeten();
    }
    FremdesProgramm(const FremdesProgramm&) = delete;
    FremdesProgramm& operator=(const FremdesProgramm&) = delete;

    // Return when it is done.
    void sperren() { befiehl('s'); }
    void freigeben() { befiehl('f'); }
    void toeten() {
        if (kind_ <= 0) return;
        kill(std::exchange(kind_, -1), SIGKILL);
        wait(nullptr);
    }

  private:
    void befiehl(char buchstabe) {
        char antwort = 0;
        if (write(an_, &buchstabe, 1) != 1 || read(von_, &antwort, 1) != 1 || antwort != '.')
            throw std::runtime_error("the other process has failed");
    }
    [[noreturn]] static void gehorche(const std::string& pfad, int befehle, int antworten) {
        try {
            FakeUhr uhr;
            jet::Connection verbindung(pfad, uhr);
            std::optional<jet::File::Writing> sperre;
            for (char buchstabe = 0; read(befehle, &buchstabe, 1) == 1;) {
                if (buchstabe == 's') {
                    sperre.emplace(verbindung.file());
                } else {
                    sperre.reset();
                }
                if (write(antworten, ".", 1) != 1) break;
            }
        } catch (const std::exception&) {
            // The reader of the answers finds their end.
        }
        _exit(1);
    }

    pid_t kind_ = -1;
    int an_ = -1, von_ = -1;
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
    Ports ports{fakes.uhr,     dateien,          fakes.meldungen, fakes.fenster, fakes.klang, fakes.prozesse,
                fakes.starter, fakes.automation, fakes.symbol,    fakes.rechner, maschinen};
    ModulDatenbankzugriff zugriff{ports, einstellungen, werte};
    std::unique_ptr<Datenbank> db;
};

}  // namespace wendel
