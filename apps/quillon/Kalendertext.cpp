#include "Kalendertext.h"

#include <vector>

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::quillon {

namespace {

// The library's time grows with the square of a line's length, and only attachments are longer than this.
constexpr std::size_t kLaengsteZeile = 400'000;

[[noreturn]] void unbrauchbar(const std::string& beschreibung) {
    throw Fehler(fehlernummer::kEigener, "Kalender", beschreibung);
}

std::string_view ohneMarke(std::string_view datei) {
    constexpr std::string_view kMarke = "\xEF\xBB\xBF";
    return datei.starts_with(kMarke) ? datei.substr(kMarke.size()) : datei;
}

// Keeps the parts that are open.
class Gliederung {
  public:
    void lies(std::string_view zeile, std::size_t nummer) {
        const std::size_t doppelpunkt = zeile.find(':');
        const std::string name = UCase(zeile.substr(0, zeile.find_first_of(":;")));
        const std::string wert =
            doppelpunkt == std::string_view::npos
                ? std::string()
                : UCase(trimAlleLeerraeume(zeile.substr(doppelpunkt + 1, kLaengsterName)));
        if (name == "BEGIN") {
            // The library walks through the parts by recursion.
            constexpr std::size_t kTiefste = 16;
            if ((offene_.empty() && wert != "VCALENDAR") || offene_.size() == kTiefste) beschaedigt(nummer);
            offene_.push_back(wert);
        } else if (offene_.empty()) {
            if (!trimAlleLeerraeume(zeile).empty()) beschaedigt(nummer);
        } else if (name == "END") {
            if (offene_.back() != wert) beschaedigt(nummer);
            offene_.pop_back();
        }
    }
    bool geschlossen() const { return offene_.empty(); }

  private:
    static constexpr std::size_t kLaengsterName = 100;
    [[noreturn]] static void beschaedigt(std::size_t nummer) {
        unbrauchbar("Die Datei ist beschädigt (Zeile " + std::to_string(nummer) + ").");
    }
    std::vector<std::string> offene_;
};

struct Zeile {
    std::string text;
    std::size_t nummer;  // of its first physical line
};

std::vector<Zeile> logischeZeilen(std::string_view datei) {
    std::vector<Zeile> zeilen;
    for (std::size_t nummer = 1; !datei.empty(); ++nummer) {
        const std::size_t ende = datei.find('\n');
        std::string_view zeile = datei.substr(0, ende);
        datei.remove_prefix(ende == std::string_view::npos ? datei.size() : ende + 1);
        if (zeile.ends_with('\r')) zeile.remove_suffix(1);
        const bool fortsetzung = zeile.starts_with(' ') || zeile.starts_with('\t');
        if (!fortsetzung || zeilen.empty())
            zeilen.push_back({std::string(zeile.substr(0, kLaengsteZeile)), nummer});
        else if (zeilen.back().text.size() < kLaengsteZeile)
            zeilen.back().text += zeile.substr(1);
    }
    return zeilen;
}

}  // namespace

bool beginntKalender(std::string_view datei) {
    constexpr std::string_view kBeginn = "BEGIN:VCALENDAR";
    datei = ohneMarke(datei);
    const std::size_t anfang = datei.find_first_not_of("\r\n");
    return anfang != std::string_view::npos &&
           gleichOhneGrossKlein(datei.substr(anfang, kBeginn.size()), kBeginn);
}

std::string kalendertext(std::string_view datei) {
    if (datei.empty()) unbrauchbar("Die Datei ist leer.");
    if (!beginntKalender(datei)) unbrauchbar("Das ist keine Kalenderdatei.");
    if (datei.find('\0') != std::string_view::npos) unbrauchbar("Die Datei ist beschädigt.");
    if (!istUtf8(datei)) unbrauchbar("Die Datei ist nicht in UTF-8 geschrieben.");
    Gliederung gliederung;
    std::string text;
    for (const Zeile& zeile : logischeZeilen(ohneMarke(datei))) {
        gliederung.lies(zeile.text, zeile.nummer);
        text += zeile.text;
        text += '\n';
    }
    if (!gliederung.geschlossen()) unbrauchbar("Die Datei ist unvollständig: Ihr Ende fehlt.");
    return text;
}

std::string mitErlaubtenZeichen(std::string_view text) {
    std::string erlaubt = ersetzt(ersetzt(text, kCrLf, "\n"), "\r", "\n");
    for (char& zeichen : erlaubt) {
        const auto wert = static_cast<unsigned char>(zeichen);
        if ((wert < 0x20 && zeichen != '\n' && zeichen != '\t') || wert == 0x7F) zeichen = ' ';
    }
    return erlaubt;
}

}  // namespace wendel::quillon
