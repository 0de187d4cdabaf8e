#include "Prueflage.h"

#include <array>

#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "desktop/Umgebung.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel::quillon {
namespace {

constexpr std::uint64_t kGroessteDatei = 16 * 1024 * 1024;

std::string ordnerDesProgramms(const std::optional<std::string>& ordner) {
    return ordner ? ModulGrundbefehle::PfadMitBackslash(logischerPfad(*ordner)) : programmordnerpfad();
}

std::string art(const std::optional<std::string>& genannt, const std::string& ordner) {
    if (genannt) return "mit --ordner genannt";
    if (!ausUmgebung("WENDEL_ORDNER").empty()) return "mit WENDEL_ORDNER genannt";
    const Programmlage lage = programmlage();
    if (ordner == logischerPfad(lage.programmdateiOrdner) + "\\") return "der Ordner des Programms";
    return lage.xdgDataHome.starts_with('/') ? "wendel in XDG_DATA_HOME" : "~/.local/share/wendel";
}

}  // namespace

Prueflage::Prueflage(const std::optional<std::string>& ordner, Uhr& uhrDesProgramms)
    : uhr(uhrDesProgramms),
      programmordner(ordnerDesProgramms(ordner)),
      ordnerart(art(ordner, programmordner)),
      ordnerDa(dateien.ordnerWechseln(programmordner)),
      einstellungen(dateien, programmordner),
      konfiguration(liesKonfiguration(einstellungen, programmordner)) {}

std::optional<std::string> NurLesen::lesen(const std::string& pfad) {
    if (groesse(pfad).value_or(0) > kGroessteDatei) return std::nullopt;
    return LinuxDateisystem::lesen(pfad);
}

std::string groesseText(std::uint64_t bytes) {
    constexpr std::array kEinheiten{"KB", "MB", "GB", "TB"};
    std::uint64_t zehntel = bytes * 10 / 1024;
    std::size_t einheit = 0;
    for (; zehntel >= 10240 && einheit + 1 < kEinheiten.size(); ++einheit)
        zehntel /= 1024;
    return std::to_string(zehntel / 10) + "," + std::to_string(zehntel % 10) + " " + kEinheiten[einheit];
}

}  // namespace wendel::quillon
