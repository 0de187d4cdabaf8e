#include "Guidesendung.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "Kennungen.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"

namespace wendel::skarvel {
namespace {

constexpr int kHoechsteFreigabe = 21;
constexpr std::size_t kNummernbreite = 20;  // of the columns for numbers in the suite's databases

// One line: every run of blanks and line ends becomes one blank.
std::string einzeilig(std::string_view text) {
    std::string zeile;
    for (const char zeichen : text) {
        const bool leer = zeichen == ' ' || zeichen == '\t' || zeichen == '\n' || zeichen == '\r';
        if (!leer)
            zeile += zeichen;
        else if (!zeile.empty() && zeile.back() != ' ')
            zeile += ' ';
    }
    return Trim(zeile);
}

std::string mehrzeilig(std::string_view text) {
    std::string zeilen;
    for (const char zeichen : text) {
        if (zeichen == '\n')
            zeilen += kCrLf;
        else if (zeichen != '\r')
            zeilen += zeichen;
    }
    return zeilen;
}

bool istDeutsch(const XmltvText& text) { return LCase(text.art).starts_with("de"); }

// In German if there is one, else the first.
const XmltvText* bevorzugt(const std::vector<XmltvText>& texte) {
    const auto deutsch = std::find_if(texte.begin(), texte.end(), istDeutsch);
    if (deutsch != texte.end()) return &*deutsch;
    return texte.empty() ? nullptr : &texte.front();
}
std::string bevorzugterText(const std::vector<XmltvText>& texte) {
    const XmltvText* text = bevorzugt(texte);
    return text ? einzeilig(text->text) : std::string();
}

// Those in the language of the preferred one, in their order.
std::vector<std::string> inEinerSprache(const std::vector<XmltvText>& texte) {
    std::vector<std::string> gewaehlt;
    const XmltvText* vorn = bevorzugt(texte);
    for (const XmltvText& text : texte) {
        if (text.art == vorn->art) gewaehlt.push_back(einzeilig(text.text));
    }
    return gewaehlt;
}

std::string verbunden(const std::vector<XmltvText>& texte, std::string_view trenner) {
    std::vector<std::string> teile;
    for (const XmltvText& text : texte)
        teile.push_back(einzeilig(text.text));
    return Join(teile, trenner);
}

// ---- texts ----

std::string originaltitel(const XmltvSendung& sendung) {
    const XmltvText* titel = bevorzugt(sendung.titel);
    for (const XmltvText& anderer : sendung.titel) {
        if (anderer.art != titel->art && anderer.text != titel->text) return einzeilig(anderer.text);
    }
    return {};
}

std::string beschreibung(const XmltvSendung& sendung) {
    const XmltvText* laengste = bevorzugt(sendung.beschreibungen);
    for (const XmltvText& text : sendung.beschreibungen) {
        if (text.art == laengste->art && text.text.size() > laengste->text.size()) laengste = &text;
    }
    return laengste ? mehrzeilig(laengste->text) : std::string();
}

std::string folgeNach(const XmltvSendung& sendung, std::string_view system) {
    for (const XmltvText& folge : sendung.folgen) {
        if (LCase(folge.art) == system) return einzeilig(folge.text);
    }
    return {};
}

// "1 . 4/13 . 0/1" counts from zero: season 2, episode 5. Empty for an empty part.
std::string ab1(std::string_view teil) {
    std::string zahl(teil.substr(0, teil.find('/')));
    zahl = Trim(zahl);
    if (zahl.empty() || zahl.size() > 6 || zahl.find_first_not_of("0123456789") != std::string::npos)
        return {};
    return std::to_string(std::stol(zahl) + 1);
}

std::string folgentext(const XmltvSendung& sendung) {
    const std::vector<std::string> teile = Split(folgeNach(sendung, "xmltv_ns"), ".");
    const std::string staffel = !teile.empty() ? ab1(teile[0]) : "";
    const std::string folge = teile.size() > 1 ? ab1(teile[1]) : "";
    if (folge.empty()) return folgeNach(sendung, "onscreen");
    return (staffel.empty() ? "" : "Staffel " + staffel + ", ") + "Folge " + folge;
}

std::string kurzbeschreibung(const XmltvSendung& sendung) {
    const std::string folge = folgentext(sendung), untertitel = bevorzugterText(sendung.untertitel);
    return folge + (folge.empty() || untertitel.empty() ? "" : ": ") + untertitel;
}

void reihe(std::string& ziel, std::string_view kopf, const std::string& namen) {
    if (namen.empty()) return;
    if (!ziel.empty()) ziel += kCrLf;
    ziel += std::string(kopf) + namen;
}

std::string darsteller(const XmltvSendung& sendung) {
    std::vector<std::string> besetzung;
    for (const XmltvText& person : sendung.darsteller) {
        const std::string rolle = einzeilig(person.art);
        besetzung.push_back(einzeilig(person.text) + (rolle.empty() ? "" : " (" + rolle + ")"));
    }
    std::string text = Join(besetzung, ", ");
    reihe(text, "Moderation: ", verbunden(sendung.moderation, ", "));
    reihe(text, "Gäste: ", verbunden(sendung.gaeste, ", "));
    return text;
}

// ---- numbers ----

// The first number of a text like "ab 12", "FSK: 16" or "6"; -1 without one.
int ersteZahl(std::string_view text) {
    const std::size_t anfang = text.find_first_of("0123456789");
    if (anfang == std::string_view::npos) return -1;
    int zahl = 0;
    for (const char ziffer : text.substr(anfang, 3)) {
        if (ziffer < '0' || ziffer > '9') break;
        zahl = zahl * 10 + (ziffer - '0');
    }
    return zahl;
}

// The German body's rating before all others; of those only plain ages, as "TV-14" or "R" mean something
// else.
std::int16_t freigabe(const std::vector<XmltvText>& freigaben) {
    int gefunden = 0;
    for (const XmltvText& eintrag : freigaben) {
        const bool fsk = UCase(eintrag.art).find("FSK") != std::string::npos ||
                         UCase(eintrag.text).find("FSK") != std::string::npos;
        const bool alter = eintrag.text.find_first_not_of("0123456789+") == std::string::npos;
        const int zahl = fsk || alter ? ersteZahl(eintrag.text) : -1;
        if (zahl < 0 || zahl > kHoechsteFreigabe) continue;
        if (fsk) return static_cast<std::int16_t>(zahl);
        if (gefunden == 0) gefunden = zahl;
    }
    return static_cast<std::int16_t>(gefunden);
}

std::string jahr(std::string_view datum) {
    const bool vier =
        datum.size() >= 4 && datum.substr(0, 4).find_first_not_of("0123456789") == std::string_view::npos;
    return vier ? std::string(datum.substr(0, 4)) : std::string();
}

// ---- flags ----

bool istFilm(const XmltvSendung& sendung) {
    static constexpr auto kFilmworte = std::to_array<std::string_view>(
        {"movie", "movies", "film", "spielfilm", "fernsehfilm", "tv-film", "kinofilm", "feature film"});
    return std::any_of(sendung.kategorien.begin(), sendung.kategorien.end(), [](const XmltvText& kategorie) {
        // "Movie / Drama" as digital receivers write it.
        std::string wort = LCase(einzeilig(kategorie.text));
        wort = Trim(wort.substr(0, wort.find('/')));
        return std::find(kFilmworte.begin(), kFilmworte.end(), wort) != kFilmworte.end();
    });
}

void kennzeichne(cSendung& ziel, const XmltvSendung& sendung) {
    const std::string ton = LCase(sendung.ton), bild = UCase(sendung.bildqualitaet);
    ziel.KzFilm = istFilm(sendung);
    ziel.Kz16zu9 = sendung.seitenverhaeltnis == "16:9";
    ziel.KzHDTV = bild.find("HD") != std::string::npos || bild.starts_with("1080") || bild.starts_with("720");
    ziel.KzSchwarzweis = LCase(sendung.farbe) == "no";
    ziel.KzStereo = ton == "stereo";
    ziel.KzDolby = ton == "dolby";
    ziel.KzDolbyDigital = ton == "dolby digital";
    ziel.KzDolbySurround = ton == "surround" || ton == "dolby surround";
    ziel.KzZweikanalton = ton == "bilingual";
    ziel.KzUntertitel = sendung.hatUntertitel;
    ziel.KzAudiodescription = sendung.hatHoerfassung;
    ziel.KzWiederholung = sendung.istWiederholung;
    ziel.KzLive = sendung.istLive && !sendung.istWiederholung;
}

// The content's own number where the provider gives one, else what tells one episode from another; nothing
// for broadcasts of which only the title is known.
std::string inhalt(const XmltvSendung& sendung) {
    for (const char* system : {"dd_progid", "crid"}) {
        if (std::string nummer = folgeNach(sendung, system); !nummer.empty()) return nummer;
    }
    const std::string folge = folgeNach(sendung, "xmltv_ns") + "\n" + folgeNach(sendung, "onscreen") + "\n" +
                              bevorzugterText(sendung.untertitel);
    return folge == "\n\n" ? "" : "I" + streuzeichen(bevorzugterText(sendung.titel) + "\n" + folge);
}

}  // namespace

std::int16_t bewertungAus(const std::string& sterne) {
    const std::size_t strich = sterne.find('/');
    if (strich == std::string::npos || sterne.size() > 20) return 0;
    const double erreicht = Val(sterne.substr(0, strich)), moeglich = Val(sterne.substr(strich + 1));
    if (!(moeglich > 0) || erreicht < 0 || erreicht > moeglich) return 0;
    return static_cast<std::int16_t>(std::lround(1 + 4 * erreicht / moeglich));
}

Guidesendung guidesendungAus(const XmltvSendung& sendung) {
    Guidesendung ergebnis;
    ergebnis.beginn = sendung.beginn;
    ergebnis.ende = sendung.ende;
    if (!ergebnis.ende && sendung.laengeSekunden) ergebnis.ende = sendung.beginn + *sendung.laengeSekunden;

    cSendung& ziel = ergebnis.daten;
    ziel.Titel = bevorzugterText(sendung.titel);
    if (ziel.Titel.empty()) ziel.Titel = "(ohne Titel)";
    // XMLTV has no numbers for broadcasts: this one is its place in the guide.
    ziel.SendungID = "X" + streuzeichen(sendung.kanal + "\n" + std::to_string(sendung.beginn));
    if (const std::string nummer = inhalt(sendung); !nummer.empty())
        ziel.InhaltID = kennungFuer(nummer, kNummernbreite);
    if (!sendung.titel.empty()) ziel.Originaltitel = originaltitel(sendung);
    ziel.Kurzbeschreibung = kurzbeschreibung(sendung);
    ziel.setzeBeschreibung(beschreibung(sendung));
    ziel.setzeDarsteller(darsteller(sendung));

    if (!sendung.kategorien.empty()) {
        const std::vector<std::string> kategorien = inEinerSprache(sendung.kategorien);
        ziel.Kategorietext = kategorien.front();
        ziel.Genre = kategorien.size() > 1 ? kategorien[1] : kategorien.front();
    }
    if (!sendung.laender.empty()) ziel.Herstellungsland = Join(inEinerSprache(sendung.laender), ", ");
    ziel.Herstellungsjahr = jahr(sendung.datum);
    ziel.Regie = verbunden(sendung.regie, ", ");
    ziel.Keywords = verbunden(sendung.stichworte, ";");
    for (const XmltvText& kritik : sendung.kritiken) {
        if (LCase(kritik.art) != "url" && ziel.Kurzkritik.empty()) ziel.Kurzkritik = einzeilig(kritik.text);
    }
    if (!sendung.sterne.empty()) ziel.Bewertung = bewertungAus(sendung.sterne.front().text);
    ziel.FSK = freigabe(sendung.freigaben);
    ziel.Showview = sendung.showview;
    if (sendung.vpsBeginn) ziel.VPS = Format(ortszeit(*sendung.vpsBeginn), "hh:nn");
    kennzeichne(ziel, sendung);
    return ergebnis;
}

}  // namespace wendel::skarvel
