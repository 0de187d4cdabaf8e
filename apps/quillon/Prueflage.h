#pragma once
// What the checks look at: this user's files and settings, through ports that cannot change them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/LinuxDateisystem.h"
#include "desktop/LinuxUhr.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel::quillon {

// Every change fails, so that what reads with repairs (the settings finish an interrupted writing) only
// reads.
class NurLesen : public LinuxDateisystem {
  public:
    // Nothing for giants: several checks would hold one in memory at the same time.
    std::optional<std::string> lesen(const std::string& pfad) override;
    [[nodiscard]] bool anlegen(const std::string& /*pfad*/) override { return false; }
    [[nodiscard]] bool ueberschreibenAmAnfang(const std::string& /*pfad*/,
                                              std::string_view /*inhalt*/) override {
        return false;
    }
    [[nodiscard]] bool schreiben(const std::string& /*pfad*/, std::string_view /*inhalt*/) override {
        return false;
    }
    [[nodiscard]] bool ersetzen(const std::string& /*pfad*/, std::string_view /*inhalt*/) override {
        return false;
    }
    [[nodiscard]] bool anhaengen(const std::string& /*pfad*/, std::string_view /*inhalt*/) override {
        return false;
    }
    [[nodiscard]] bool loeschen(const std::string& /*pfad*/) override { return false; }
    [[nodiscard]] bool umbenennen(const std::string& /*von*/, const std::string& /*nach*/) override {
        return false;
    }
    [[nodiscard]] bool ordnerAnlegen(const std::string& /*pfad*/) override { return false; }
};

struct Prueflage {
    // ordner as given on the command line, absolute. Reads the settings; makes the programme folder current,
    // as the program does, if it is there.
    Prueflage(const std::optional<std::string>& ordner, Uhr& uhrDesProgramms);
    Prueflage(const Prueflage&) = delete;
    Prueflage& operator=(const Prueflage&) = delete;

    Uhr& uhr;
    NurLesen dateien;
    std::string programmordner;  // as in Prozesswerte
    std::string ordnerart;       // where it is, in words that give nothing away
    bool ordnerDa = false;
    Einstellungen einstellungen;
    Konfiguration konfiguration;
};

// "1,2 GB"; bytes in steps of 1024.
std::string groesseText(std::uint64_t bytes);

}  // namespace wendel::quillon
