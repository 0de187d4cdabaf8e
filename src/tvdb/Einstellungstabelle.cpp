#include "tvdb/Einstellungstabelle.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel {

namespace {

using Typ = Varianttyp;
namespace nr = einstellung;

constexpr auto kZeilen = std::to_array<Einstellungszeile>({
    {nr::kDatenbank, "Datenbank", Typ::String, 0, "tvdaten.mdb", true},
    {nr::kHyperlinks, "Hyperlinks", Typ::String, 0, "Hyperlinks\\", true},
    {nr::kAutostart, "Autostart", Typ::Boolean, 0, "", false},
    {nr::kLiveUpdate, "LiveUpdate", Typ::Boolean, 0, "", false},
    {nr::kLiveUpdateModus, "LiveUpdateModus", Typ::Integer, 2, "", false},
    {nr::kZeitplan, "Zeitplan", Typ::String, 0, "1111111 06:00", false},
    {nr::kLiveUpdateStunden, "LiveUpdateStunden", Typ::Integer, 24, "", false},
    {nr::kLetztesUpdate, "LetztesUpdate", Typ::Date, 0, "", false},
    {nr::kLiveUpdateVersteckt, "LiveUpdateVersteckt", Typ::Boolean, 1, "", false},
    {nr::kLinkParameter, "LinkParameter", Typ::String, 0, "", false},
    {nr::kDoppelklick, "Doppelklick", Typ::Integer, 0, "", false},
    {nr::kErinnerung, "Erinnerung", Typ::Boolean, 1, "", false},
    {nr::kVorlauf, "Vorlauf", Typ::Integer, 5, "", false},
    {nr::kNachlauf, "Nachlauf", Typ::Integer, 10, "", false},
    {nr::kSkript, "Skript", Typ::String, 0, "", false},
    {nr::kTVOrdner, "TVOrdner", Typ::String, 0, "", false},
    {nr::kAufzeichnungsordner, "Aufzeichnungsordner", Typ::String, 0, "", false},
    {nr::kDebuganzeige, "Debuganzeige", Typ::Boolean, 0, "", false},
    {nr::kBenutzer, "Benutzer", Typ::String, 0, "", false},
    {nr::kTermin, "Termin", Typ::Variant, 0, "", false},
    {nr::kKlang, "Klang", Typ::String, 0, "wendel.wav", true},
    {nr::kTagestipp, "Tagestipp", Typ::Boolean, 1, "", false},
    {nr::kLoeschtage, "Loeschtage", Typ::Integer, 7, "", false},
    {nr::kVerpasste, "Verpasste", Typ::Boolean, 1, "", false},
    {nr::kUpdateNachholen, "UpdateNachholen", Typ::Boolean, 0, "", false},
    {nr::kWachhalten, "Wachhalten", Typ::Boolean, 1, "", false},
    {nr::kWecken, "Wecken", Typ::Boolean, 0, "", false},
    {nr::kXmltvQuelle, "XmltvQuelle", Typ::String, 0, "", false},
    {nr::kXmltvBefehl, "XmltvBefehl", Typ::String, 0, "", false},
    {nr::kWiederholungen, "Wiederholungen", Typ::Long, kStandardWiederholungen, "", false},
});

constexpr std::int16_t kStandardLoeschtage = 7;

// All elements of one reading of the file, in their types.
class Leser {
  public:
    Leser(std::optional<Variant> array, const std::string& programmordner)
        : array_(std::move(array)), programmordner_(programmordner) {}

    std::string text(std::int32_t index) const { return wert(index).alsText(); }
    bool wahr(std::int32_t index) const { return wert(index).alsBool(); }
    std::int16_t ganz(std::int32_t index) const { return wert(index).alsInteger(); }
    std::int32_t lang(std::int32_t index) const { return wert(index).alsLong(); }
    Datum datum(std::int32_t index) const { return wert(index).alsDatum(); }
    Variant wert(std::int32_t index) const {
        const Variant standard = standardwert(*einstellungszeile(index), programmordner_);
        return array_ ? elementOderErsatz(*array_, index, standard) : standard;
    }

  private:
    std::optional<Variant> array_;
    const std::string& programmordner_;
};

void liesLiveUpdate(Konfiguration& k, const Leser& leser) {
    k.autostart = leser.wahr(nr::kAutostart);
    k.liveUpdate = leser.wahr(nr::kLiveUpdate);
    k.liveUpdateModus = leser.ganz(nr::kLiveUpdateModus);
    k.zeitplan = leser.text(nr::kZeitplan);
    k.liveUpdateStunden = leser.ganz(nr::kLiveUpdateStunden);
    k.letztesUpdate = leser.datum(nr::kLetztesUpdate);
    k.liveUpdateVersteckt = leser.wahr(nr::kLiveUpdateVersteckt);
    k.linkParameter = leser.text(nr::kLinkParameter);
    k.updateNachholen = leser.wahr(nr::kUpdateNachholen);
}

void liesAufzeichnung(Konfiguration& k, const Leser& leser) {
    k.vorlaufMinuten = leser.ganz(nr::kVorlauf);
    k.nachlaufMinuten = leser.ganz(nr::kNachlauf);
    k.skript = leser.text(nr::kSkript);
    k.tvOrdner = leser.text(nr::kTVOrdner);
    k.aufzeichnungsordner = leser.text(nr::kAufzeichnungsordner);
    k.debuganzeige = leser.wahr(nr::kDebuganzeige);
    k.wachhalten = leser.wahr(nr::kWachhalten);
    k.wecken = leser.wahr(nr::kWecken);
}

void liesErinnerung(Konfiguration& k, const Leser& leser) {
    k.doppelklick = leser.ganz(nr::kDoppelklick);
    k.erinnerung = leser.wahr(nr::kErinnerung);
    k.benutzer = leser.text(nr::kBenutzer);
    k.termine = termineAusVariant(leser.wert(nr::kTermin));
    k.klang = leser.text(nr::kKlang);
    k.tagestipp = leser.wahr(nr::kTagestipp);
    k.verpassteZeigen = leser.wahr(nr::kVerpasste);
}

void liesDatenbank(Konfiguration& k, const Leser& leser) {
    k.datenbank = leser.text(nr::kDatenbank);
    k.hyperlinksOrdner = ModulGrundbefehle::PfadMitBackslash(leser.text(nr::kHyperlinks));
    k.loeschtage = leser.ganz(nr::kLoeschtage);
    if (k.loeschtage < 1) k.loeschtage = kStandardLoeschtage;
    k.xmltvQuelle = leser.text(nr::kXmltvQuelle);
    k.xmltvBefehl = leser.text(nr::kXmltvBefehl);
    k.wiederholungen = leser.lang(nr::kWiederholungen);
    if (k.wiederholungen == 0) k.wiederholungen = kStandardWiederholungen;
}

// ---- appointments ----

constexpr std::int32_t kTerminzeilen = 4;

std::optional<GespeicherterTermin> terminAusSpalte(const Array& tabelle, std::int32_t zeile,
                                                   std::int32_t spalte) {
    const auto feld = [&](std::int32_t versatz) { return tabelle.at({zeile + versatz, spalte}); };
    GespeicherterTermin termin;
    try {
        if (feld(0).istLeer()) return std::nullopt;
        termin.weckZeit = feld(0).alsDatum();
    } catch (const Fehler&) {
        return std::nullopt;  // without a moment it can't come due
    }
    const auto oderErsatz = [&](std::int32_t versatz, const Variant& ersatz) {
        Array einzeln = Array::eindimensional(0, 1);
        einzeln.elemente[0] = feld(versatz);
        return elementOderErsatz(Variant::array(std::move(einzeln)), 0, ersatz);
    };
    termin.weckText = oderErsatz(1, Variant::text("")).alsText();
    termin.intervall = oderErsatz(2, Variant::integer(0)).alsInteger();
    termin.aktiv = oderErsatz(3, Variant::boolesch(false)).alsBool();
    return termin;
}

// ---- text forms ----

[[noreturn]] void unbrauchbar(std::string_view name, std::string_view text, std::string_view erwartet) {
    throw Fehler(fehlernummer::kEigener, "Einstellung",
                 "Der Wert \"" + std::string(text) + "\" passt nicht zur Einstellung \"" + std::string(name) +
                     "\". Erwartet wird " + std::string(erwartet) + ".");
}

constexpr std::string_view kErwarteterTermin = "\"tt.mm.jjjj hh:mm:ss|Intervall|ja oder nein|Text\"";

template <class T>
std::optional<T> ganzeZahl(std::string_view text) {
    T wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (fehler != std::errc() || ende != text.data() + text.size()) return std::nullopt;
    return wert;
}

std::optional<bool> jaNein(std::string_view text) {
    const std::string wort = LCase(Trim(text));
    if (wort == "ja") return true;
    if (wort == "nein") return false;
    return std::nullopt;
}

std::string datumText(Datum d) { return Format(d, "dd.mm.yyyy hh:nn:ss"); }

// Digits at the places of "tt.mm.jjjj" and, if there is more, " hh:mm" and ":ss"; and a day of the calendar.
bool istGenauesDatum(std::string_view text) {
    constexpr std::string_view kMuster = "00.00.0000 00:00:00";
    if (text.size() != 10 && text.size() != 16 && text.size() != kMuster.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool ziffer = text[i] >= '0' && text[i] <= '9';
        if (kMuster[i] == '0' ? !ziffer : text[i] != kMuster[i]) return false;
    }
    return true;
}

// Typed by a user: what would be carried over silently (31.02., 25:00) is refused.
std::optional<Datum> datumAusEingabe(std::string_view text) {
    const std::string getrimmt = Trim(text);
    if (!istGenauesDatum(getrimmt) || !ModulGrundbefehle::IstDatumsausdruck(getrimmt)) return std::nullopt;
    const Datum d = ModulGrundbefehle::DatumAusText(getrimmt);
    if (!datumText(d).starts_with(getrimmt)) return std::nullopt;
    return d;
}

}  // namespace

std::span<const Einstellungszeile> einstellungstabelle() { return kZeilen; }

const Einstellungszeile* einstellungszeile(std::int32_t index) {
    const auto zeile =
        std::find_if(kZeilen.begin(), kZeilen.end(), [&](const auto& z) { return z.index == index; });
    return zeile == kZeilen.end() ? nullptr : &*zeile;
}

const Einstellungszeile* einstellungszeile(std::string_view name) {
    const auto zeile = std::find_if(kZeilen.begin(), kZeilen.end(),
                                    [&](const auto& z) { return gleichOhneGrossKlein(z.name, name); });
    return zeile == kZeilen.end() ? nullptr : &*zeile;
}

Variant standardwert(const Einstellungszeile& zeile, const std::string& programmordner) {
    switch (zeile.typ) {
        case Typ::String: {
            const std::string ordner =
                zeile.unterProgrammordner ? ModulGrundbefehle::PfadMitBackslash(programmordner) : "";
            return Variant::text(ordner + std::string(zeile.standardtext));
        }
        case Typ::Integer: return Variant::integer(static_cast<std::int16_t>(zeile.standardzahl));
        case Typ::Long: return Variant::lang(zeile.standardzahl);
        case Typ::Boolean: return Variant::boolesch(zeile.standardzahl != 0);
        case Typ::Date: return Variant::datum(Datum());
        default: return Variant();
    }
}

Konfiguration liesKonfiguration(Einstellungen& einstellungen, const std::string& programmordner) {
    const Leser leser(einstellungen.arrayOderNichts(), programmordner);
    Konfiguration k;
    liesDatenbank(k, leser);
    liesLiveUpdate(k, leser);
    liesErinnerung(k, leser);
    liesAufzeichnung(k, leser);
    return k;
}

std::int32_t liesWiederholungen(Einstellungen& einstellungen) {
    const auto standard = Variant::lang(kStandardWiederholungen);
    const std::int32_t wert = einstellungen.Einstellung(nr::kWiederholungen, standard).alsLong();
    return wert == 0 ? kStandardWiederholungen : wert;
}

Variant termineAlsVariant(std::span<const GespeicherterTermin> termine) {
    if (termine.empty()) return Variant();
    Array tabelle;
    tabelle.grenzen = {{kTerminzeilen, 1}, {static_cast<std::int32_t>(termine.size()), 1}};
    tabelle.elemente.reserve(termine.size() * kTerminzeilen);
    for (const GespeicherterTermin& termin : termine) {
        tabelle.elemente.push_back(Variant::datum(termin.weckZeit));
        tabelle.elemente.push_back(Variant::text(termin.weckText));
        tabelle.elemente.push_back(Variant::integer(termin.intervall));
        tabelle.elemente.push_back(Variant::boolesch(termin.aktiv));
    }
    return Variant::array(std::move(tabelle));
}

std::vector<GespeicherterTermin> termineAusVariant(const Variant& wert) {
    std::vector<GespeicherterTermin> termine;
    if (!wert.istArray()) return termine;
    const Array& tabelle = wert.alsArray();
    if (tabelle.grenzen.size() != 2 || tabelle.grenzen[0].anzahl < kTerminzeilen) return termine;
    const Feldgrenzen spalten = tabelle.grenzen[1];
    for (std::int32_t i = 0; i < spalten.anzahl; ++i) {
        const auto termin = terminAusSpalte(tabelle, tabelle.grenzen[0].untergrenze, spalten.untergrenze + i);
        if (termin) termine.push_back(*termin);
    }
    return termine;
}

std::string einstellungAlsText(const Einstellungszeile& zeile, const Variant& wert) {
    switch (zeile.typ) {
        case Typ::Boolean: return wert.alsBool() ? "ja" : "nein";
        case Typ::Date: return datumText(wert.alsDatum());
        default: return wert.alsText();
    }
}

Variant einstellungAusText(const Einstellungszeile& zeile, std::string_view text) {
    switch (zeile.typ) {
        case Typ::Boolean:
            if (const auto wort = jaNein(text)) return Variant::boolesch(*wort);
            unbrauchbar(zeile.name, text, "\"ja\" oder \"nein\"");
        case Typ::Integer:
            if (const auto zahl = ganzeZahl<std::int16_t>(Trim(text))) return Variant::integer(*zahl);
            unbrauchbar(zeile.name, text, "eine ganze Zahl von -32768 bis 32767");
        case Typ::Long:
            if (const auto zahl = ganzeZahl<std::int32_t>(Trim(text))) return Variant::lang(*zahl);
            unbrauchbar(zeile.name, text, "eine ganze Zahl");
        case Typ::Date:
            if (const auto datum = datumAusEingabe(text)) return Variant::datum(*datum);
            unbrauchbar(zeile.name, text, "ein Datum \"tt.mm.jjjj hh:mm:ss\"");
        case Typ::String: return Variant::text(std::string(text));
        default: unbrauchbar(zeile.name, text, kErwarteterTermin);
    }
}

std::string terminAlsText(const GespeicherterTermin& termin) {
    return datumText(termin.weckZeit) + "|" + std::to_string(termin.intervall) + "|" +
           (termin.aktiv ? "ja" : "nein") + "|" + termin.weckText;
}

GespeicherterTermin terminAusText(std::string_view text) {
    const std::vector<std::string> teile = Split(text, "|", 4);
    if (teile.size() != 4) unbrauchbar("Termin", text, kErwarteterTermin);
    const auto weckZeit = datumAusEingabe(teile[0]);
    const auto intervall = ganzeZahl<std::int16_t>(Trim(teile[1]));
    const auto aktiv = jaNein(teile[2]);
    if (!weckZeit || !intervall || !aktiv) unbrauchbar("Termin", text, kErwarteterTermin);
    return {*weckZeit, teile[3], *intervall, *aktiv};
}

}  // namespace wendel
