#include "tvdb/Einstellungen.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/Variantdatei.h"

namespace wendel {

namespace {

constexpr std::string_view kDateiname = "fennow.cfg";
constexpr std::uint64_t kKleinsteDatei = 11;
// A real file has a few KB. The values take many times the room of their bytes, so a foreign giant is
// refused.
constexpr std::uint64_t kGroessteDatei = 16 * 1024 * 1024;
constexpr std::int32_t kNeueElementzahl = 200;
constexpr std::int64_t kHoechsteElementzahl = 65536;
constexpr int kDateizugriff = 75;
constexpr int kHoechsteBeiseitenummer = 999;

// ---- the envelope of the pending content ----

constexpr std::size_t kKopf = 8;

std::uint32_t crc32(std::string_view bytes) {
    std::uint32_t crc = 0xFFFFFFFFu;
    for (const char zeichen : bytes) {
        crc ^= static_cast<std::uint8_t>(zeichen);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1u) ? 0xEDB88320u : 0u);
    }
    return ~crc;
}

std::string alsBytes(std::uint32_t wert) {
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(static_cast<std::uint8_t>(wert >> (8 * i)));
    return bytes;
}

std::string imUmschlag(std::string_view inhalt) {
    std::string umschlag = alsBytes(static_cast<std::uint32_t>(inhalt.size())) + alsBytes(crc32(inhalt));
    return umschlag.append(inhalt);
}

// Nothing when the writer did not get to the end.
std::optional<std::string> ausUmschlag(std::string_view umschlag) {
    if (umschlag.size() <= kKopf) return std::nullopt;
    const std::string_view inhalt = umschlag.substr(kKopf);
    if (imUmschlag(inhalt) != umschlag) return std::nullopt;
    return std::string(inhalt);
}

// ---- values ----

[[noreturn]] void nichtGespeichert(const std::string& warum) {
    throw Fehler(fehlernummer::kEigener, "SetEinstellungsarray",
                 "Die Einstellungen können nicht gespeichert werden. " + warum);
}

[[noreturn]] void nichtInitialisiert() {
    throw Fehler(
        fehlernummer::kEigener, "GetEinstellungsarray",
        "Der Pirrow ist nicht initialisiert. Die Datei \"fennow.cfg\" exisitiert nicht. Starten Sie das "
        "Hilfsprogramm \"quillon.exe\", um dieses Problem zu korrigieren.");
}

bool istEinstellungsarray(const Variant& wert) {
    if (!wert.istArray()) return false;
    const Array& array = wert.alsArray();
    return array.elementtyp == Varianttyp::Variant && array.grenzen.size() == 1;
}

Variant ausBytes(std::string_view bytes) {
    if (bytes.size() > kGroessteDatei) {
        throw Fehler(fehlernummer::kTyp, "GetEinstellungsarray",
                     "Typen unverträglich. Die Einstellungen sind zu groß.");
    }
    Variant wert = bytes.empty() ? Variant() : Variantdatei::gelesen(bytes);
    if (wert.istLeer()) nichtInitialisiert();
    return wert;
}

// What other programs left as text counts as a number only where one stands there; a lenient 0 would hide the
// default.
bool istZahltext(std::string_view text) {
    const std::string getrimmt = Trim(text);
    const std::size_t erste = getrimmt.find_first_not_of("+-.");
    return erste != std::string::npos && erste <= 2 && getrimmt[erste] >= '0' && getrimmt[erste] <= '9';
}

std::optional<bool> boolAusText(std::string_view text) {
    const std::string wort = LCase(Trim(text));
    if (wort == "wahr" || wort == "true" || wort == "ja") return true;
    if (wort == "falsch" || wort == "false" || wort == "nein") return false;
    return std::nullopt;
}

// The element in the type of ersatz; throws Fehler where there is no conversion.
Variant inTypVon(const Variant& ersatz, const Variant& element) {
    const auto typ = static_cast<Varianttyp>(ersatz.typcode());
    if (typ == Varianttyp::Date && element.istText()) {
        return Variant::datum(ModulGrundbefehle::DatumAusText(element.alsText()));
    }
    if (typ == Varianttyp::Boolean && element.istText()) {
        if (const auto wort = boolAusText(element.alsText())) return Variant::boolesch(*wort);
    }
    if (typ != Varianttyp::String && element.istText() && !istZahltext(element.alsText())) return ersatz;
    switch (typ) {
        case Varianttyp::Integer: return Variant::integer(element.alsInteger());
        case Varianttyp::Long: return Variant::lang(element.alsLong());
        case Varianttyp::Double: return Variant::doppelt(element.alsDouble());
        case Varianttyp::Date: return Variant::datum(element.alsDatum());
        case Varianttyp::String: return Variant::text(element.alsText());
        case Varianttyp::Boolean: return Variant::boolesch(element.alsBool());
        default: return element;
    }
}

Array neuesArray() { return Array::eindimensional(0, kNeueElementzahl); }

void lasseWachsen(Array& array, std::int32_t index) {
    Feldgrenzen& grenzen = array.grenzen.at(0);
    const std::int64_t noetig = std::int64_t{index} - grenzen.untergrenze + 1;
    if (noetig < 1 || noetig > std::max<std::int64_t>(kHoechsteElementzahl, grenzen.anzahl)) {
        throw Fehler(fehlernummer::kIndex, "SetEinstellungsarray", "Index außerhalb des gültigen Bereichs.");
    }
    if (noetig <= grenzen.anzahl) return;
    grenzen.anzahl = static_cast<std::int32_t>(noetig);
    array.elemente.resize(static_cast<std::size_t>(noetig));
}

}  // namespace

Einstellungen::Einstellungen(Dateisystem& dateien, const std::string& programmordner)
    : dateien_(dateien),
      pfad_(ModulGrundbefehle::PfadMitBackslash(programmordner) + std::string(kDateiname)),
      pfadNeu_(pfad_ + ".neu") {}

// ---- reading ----

// Returns the pending content while it can't be put in its place (a folder that became read-only): it counts
// as the file's content then.
std::optional<std::string> Einstellungen::unterbrochenesSchreibenNachholen() {
    if (!dateien_.existiert(pfadNeu_)) return std::nullopt;
    const auto umschlag = dateien_.lesen(pfadNeu_);
    if (!umschlag) return std::nullopt;
    const auto inhalt = ausUmschlag(*umschlag);
    if (inhalt && !dateien_.ueberschreibenAmAnfang(pfad_, *inhalt)) return inhalt;
    vormerkungLoeschen();
    return std::nullopt;
}

void Einstellungen::vormerkungLoeschen() {
    // Emptied it is as good as deleted; left complete it would undo what other programs write later. When
    // both fail it still equals the file, and the next operation tries again.
    if (!dateien_.loeschen(pfadNeu_) && dateien_.existiert(pfadNeu_)) (void)dateien_.schreiben(pfadNeu_, "");
}

bool Einstellungen::EinstellungsdateiVorhanden() {
    if (unterbrochenesSchreibenNachholen()) return true;
    return dateien_.existiert(pfad_) && dateien_.groesse(pfad_).value_or(0) >= kKleinsteDatei;
}

// Nothing when there is no file; throws 75 when there is one that can't be read.
std::optional<std::string> Einstellungen::dateiinhalt() {
    if (auto vorgemerkt = unterbrochenesSchreibenNachholen()) return vorgemerkt;
    if (!dateien_.existiert(pfad_)) return std::nullopt;
    auto inhalt = dateien_.lesen(pfad_);
    if (!inhalt) {
        throw Fehler(kDateizugriff, "GetEinstellungsarray",
                     "Fehler beim Zugriff auf die Datei \"fennow.cfg\".");
    }
    return inhalt;
}

Variant Einstellungen::GetEinstellungsarray() {
    const auto inhalt = dateiinhalt();
    if (!inhalt) {
        // Other programs find the same empty file after such a read; whether it can be made changes nothing
        // here.
        (void)dateien_.anlegen(pfad_);
        nichtInitialisiert();
    }
    return ausBytes(*inhalt);
}

Variant Einstellungen::GetEinstellung(std::int32_t index) {
    return GetEinstellungsarray().alsArray().at({index});
}

std::optional<Variant> Einstellungen::arrayOderNichts() {
    try {
        if (!EinstellungsdateiVorhanden()) return std::nullopt;
        Variant wert = GetEinstellungsarray();
        if (!istEinstellungsarray(wert)) return std::nullopt;
        return wert;
    } catch (const Fehler&) {
        return std::nullopt;  // the caller's defaults stand in
    }
}

Variant Einstellungen::Einstellung(std::int32_t index, const Variant& ersatz) {
    const auto array = arrayOderNichts();
    return array ? elementOderErsatz(*array, index, ersatz) : ersatz;
}

Variant elementOderErsatz(const Variant& array, std::int32_t index, const Variant& ersatz) {
    try {
        const Variant& element = array.alsArray().at({index});
        if (element.istLeer() || element.istNull()) return ersatz;
        return inTypVon(ersatz, element);
    } catch (const Fehler&) {
        return ersatz;  // outside the bounds or not convertible
    }
}

// ---- writing ----

void Einstellungen::SetEinstellungsarray(const Variant& array) {
    if (!istEinstellungsarray(array)) {
        throw Fehler(fehlernummer::kTyp, "SetEinstellungsarray", "Typen unverträglich.");
    }
    const std::string inhalt = Variantdatei::geschrieben(array);
    if (inhalt.size() > kGroessteDatei) nichtGespeichert("Sie sind zu groß.");
    inDateiSchreiben(inhalt);
}

void Einstellungen::inDateiSchreiben(const std::string& inhalt) {
    const auto vorher = dateien_.lesen(pfad_);
    if (!dateien_.schreiben(pfadNeu_, imUmschlag(inhalt))) {
        vormerkungLoeschen();
        nichtGespeichert("Die Datei \"fennow.cfg.neu\" kann nicht geschrieben werden.");
    }
    if (!dateien_.ueberschreibenAmAnfang(pfad_, inhalt)) {
        // A file that was not touched keeps its content for good; a torn one is mended by the next read.
        if (dateien_.lesen(pfad_) == vorher) vormerkungLoeschen();
        nichtGespeichert("Die Datei \"fennow.cfg\" kann nicht geschrieben werden.");
    }
    vormerkungLoeschen();
}

void Einstellungen::beschaedigteDateiBeiseitelegen() {
    const std::string name = pfad_ + ".defekt";
    for (int nummer = 1; nummer <= kHoechsteBeiseitenummer; ++nummer) {
        const std::string ziel = nummer == 1 ? name : name + std::to_string(nummer);
        if (dateien_.existiert(ziel)) continue;
        if (dateien_.umbenennen(pfad_, ziel)) return;
        break;
    }
    nichtGespeichert("Die beschädigte Datei \"fennow.cfg\" kann nicht umbenannt werden.");
}

// The array as the file holds it now, or a new one.
Variant Einstellungen::arrayZumAendern() {
    const auto inhalt = dateiinhalt();
    if (!inhalt || inhalt->size() < kKleinsteDatei) return Variant::array(neuesArray());
    try {
        Variant wert = ausBytes(*inhalt);
        if (istEinstellungsarray(wert)) return wert;
    } catch (const Fehler&) {
        // Damaged: handled like the content of another program below.
    }
    beschaedigteDateiBeiseitelegen();
    return Variant::array(neuesArray());
}

void Einstellungen::setzeEinstellung(std::int32_t index, const Variant& wert) {
    (void)Variantdatei::geschrieben(wert);  // what can't be stored must not cost a damaged file its name
    Array array = arrayZumAendern().alsArray();
    lasseWachsen(array, index);
    array.at({index}) = wert;
    SetEinstellungsarray(Variant::array(std::move(array)));
}

}  // namespace wendel
