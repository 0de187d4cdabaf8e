#pragma once
// The Dateisystem port on POSIX calls: what is promised to be on the disk is there when a call returns (file
// first, then its folder). Says nothing about what the files mean.

#include "platform/ports/Dateisystem.h"

namespace wendel {

// The native path of a regular file as existiert() finds it, "" when there is none: for adapters that hand a
// file on to another program.
std::string vorhandeneDatei(const std::string& pfad);

// Links are followed, also by ersetzen(), which replaces the file that a link leads to and keeps the link;
// a link that leads nowhere is not replaced. ersetzen() keeps the old file's mode. A path with a NUL in it is
// no path: every operation on it fails.
class LinuxDateisystem : public Dateisystem {
  public:
    bool existiert(const std::string& pfad) override;
    std::optional<std::uint64_t> groesse(const std::string& pfad) override;
    std::optional<Dateistand> stand(const std::string& pfad) override;
    std::optional<std::string> lesen(const std::string& pfad) override;

    [[nodiscard]] bool anlegen(const std::string& pfad) override;
    [[nodiscard]] bool ueberschreibenAmAnfang(const std::string& pfad, std::string_view inhalt) override;
    [[nodiscard]] bool schreiben(const std::string& pfad, std::string_view inhalt) override;
    [[nodiscard]] bool ersetzen(const std::string& pfad, std::string_view inhalt) override;
    [[nodiscard]] bool anhaengen(const std::string& pfad, std::string_view inhalt) override;

    [[nodiscard]] bool loeschen(const std::string& pfad) override;
    [[nodiscard]] bool umbenennen(const std::string& von, const std::string& nach) override;

    std::optional<std::vector<Ordnereintrag>> ordnerinhalt(const std::string& pfad) override;
    [[nodiscard]] bool ordnerAnlegen(const std::string& pfad) override;
    [[nodiscard]] bool ordnerWechseln(const std::string& pfad) override;

    std::string pfadAnzeige(const std::string& pfad) override;
};

}  // namespace wendel
