#include "core/Liveupdatetext.h"

#include <array>
#include <utility>

#include "platform/Text.h"

namespace wendel {

namespace {

constexpr std::int16_t kModusZeitplan = 2;
constexpr std::size_t kMaskenlaenge = 7;

// The part of the sentence for masks that have a name.
constexpr std::pair<std::string_view, std::string_view> kBekannteMasken[] = {
    {"0111110", "Werktags"},         {"1111111", "jeden Tag"},      {"1000000", "jeden Sonntag"},
    {"0100000", "jeden Montag"},     {"0010000", "jeden Dienstag"}, {"0001000", "jeden Mittwoch"},
    {"0000100", "jeden Donnerstag"}, {"0000010", "jeden Freitag"},  {"0000001", "jeden Samstag"},
};

std::string tageDerMaske(std::string_view maske) {
    for (const auto& [muster, tage] : kBekannteMasken) {
        if (maske == muster) return std::string(tage);
    }
    constexpr std::array<std::string_view, kMaskenlaenge> kTage = {"So,", "Mo,", "Di,", "Mi,",
                                                                   "Do,", "Fr,", "Sa,"};
    std::string liste;
    for (std::size_t i = 0; i < kTage.size(); ++i) {
        if (Mid(maske, i + 1, 1) == "1") liste += kTage[i];
    }
    if (!liste.empty()) liste.pop_back();
    return liste;
}

}  // namespace

std::string liveUpdateEinstellungenText(bool aktiv, std::int16_t modus, std::string_view zeitplan) {
    if (!aktiv) return "Das Live-Update ist momentan deaktiviert.";
    if (modus != kModusZeitplan) return "Das Live-Update ist aktiviert.";
    const std::string maske = Left(zeitplan, kMaskenlaenge);
    const std::string zeit = Trim(Mid(zeitplan, kMaskenlaenge + 1));
    return "Das Live-Update startet " + tageDerMaske(maske) + " um " + zeit + " Uhr.";
}

}  // namespace wendel
