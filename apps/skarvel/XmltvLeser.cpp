#include "XmltvLeser.h"

#include <expat.h>
#include <iconv.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <new>
#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::skarvel {
namespace {

constexpr std::size_t kLaengsterText = 64 * 1024;
constexpr std::size_t kLaengsteListe = 200;
constexpr std::size_t kTiefsteSchachtel = 100;
constexpr XML_Index kLaengstesZeichen = 4 * 1024 * 1024;  // tag, comment or the like

struct Element {
    std::string name;
    std::map<std::string, std::string, std::less<>> attribute;
    std::string text;

    std::string attribut(std::string_view gesucht) const {
        const auto gefunden = attribute.find(gesucht);
        return gefunden == attribute.end() ? std::string() : gefunden->second;
    }
};

std::optional<std::int64_t> sekundenAus(const std::string& text, std::string_view einheit) {
    std::int64_t zahl = 0;
    const auto [rest, fehler] = std::from_chars(text.data(), text.data() + text.size(), zahl);
    if (fehler != std::errc() || zahl <= 0 || zahl > 100'000) return std::nullopt;
    return einheit == "hours" ? zahl * 3600 : einheit == "seconds" ? zahl : zahl * 60;
}

// Any encoding of one byte a character that the C library knows; the parser asks for those that it lacks.
bool kodierung(std::string_view name, XML_Encoding& tabelle) {
    const iconv_t umsetzer = ::iconv_open("UTF-32LE", std::string(name).c_str());
    if (umsetzer == reinterpret_cast<iconv_t>(-1)) return false;
    for (int byte = 0; byte < 256; ++byte) {
        char eingabe = static_cast<char>(byte);
        std::array<unsigned char, 8> ausgabe{};
        char* von = &eingabe;
        auto* nach = reinterpret_cast<char*>(ausgabe.data());
        std::size_t einRest = 1, ausRest = ausgabe.size();
        ::iconv(umsetzer, nullptr, nullptr, nullptr, nullptr);
        const bool umgesetzt = ::iconv(umsetzer, &von, &einRest, &nach, &ausRest) == 0 && ausRest == 4;
        tabelle.map[byte] = umgesetzt ? ausgabe[0] | ausgabe[1] << 8 | ausgabe[2] << 16 : -1;
    }
    ::iconv_close(umsetzer);
    tabelle.data = nullptr;
    tabelle.convert = nullptr;
    tabelle.release = nullptr;
    return tabelle.map[static_cast<unsigned char>('<')] == '<';  // else it is none of one byte a character
}

// Where the text of a simple element of a broadcast goes, and which attribute belongs to it.
struct Textziel {
    std::string_view pfad;
    std::vector<XmltvText> XmltvSendung::*liste;
    std::string_view attribut;
};
constexpr auto kTextziele = std::to_array<Textziel>({
    {"title", &XmltvSendung::titel, "lang"},
    {"sub-title", &XmltvSendung::untertitel, "lang"},
    {"desc", &XmltvSendung::beschreibungen, "lang"},
    {"category", &XmltvSendung::kategorien, "lang"},
    {"country", &XmltvSendung::laender, "lang"},
    {"keyword", &XmltvSendung::stichworte, "lang"},
    {"review", &XmltvSendung::kritiken, "type"},
    {"episode-num", &XmltvSendung::folgen, "system"},
    {"credits/director", &XmltvSendung::regie, ""},
    {"credits/actor", &XmltvSendung::darsteller, "role"},
    {"credits/presenter", &XmltvSendung::moderation, ""},
    {"credits/guest", &XmltvSendung::gaeste, ""},
});
struct Wertziel {
    std::string_view pfad;
    std::string XmltvSendung::*wert;
};
constexpr auto kWertziele = std::to_array<Wertziel>({
    {"date", &XmltvSendung::datum},
    {"audio/stereo", &XmltvSendung::ton},
    {"video/aspect", &XmltvSendung::seitenverhaeltnis},
    {"video/quality", &XmltvSendung::bildqualitaet},
    {"video/colour", &XmltvSendung::farbe},
});
struct Kennzeichenziel {
    std::string_view pfad;
    bool XmltvSendung::*wert;
};
constexpr auto kKennzeichenziele = std::to_array<Kennzeichenziel>({
    {"subtitles", &XmltvSendung::hatUntertitel},
    {"audio-described", &XmltvSendung::hatHoerfassung},
    {"previously-shown", &XmltvSendung::istWiederholung},
    {"live", &XmltvSendung::istLive},
});

}  // namespace

class XmltvLeser::Zustand {
  public:
    Zustand(std::string name, XmltvEmpfaenger& empfaenger)
        : name_(std::move(name)), empfaenger_(empfaenger), parser_(XML_ParserCreate(nullptr)) {
        if (!parser_) throw std::bad_alloc();
        XML_SetUserData(parser_, this);
        XML_SetElementHandler(parser_, beginnt, endet);
        XML_SetCharacterDataHandler(parser_, zeichen);
        XML_SetUnknownEncodingHandler(parser_, fremdeKodierung, nullptr);
    }
    ~Zustand() { XML_ParserFree(parser_); }
    Zustand(const Zustand&) = delete;
    Zustand& operator=(const Zustand&) = delete;

    void lies(std::string_view stueck, bool letztes) {
        gelesen_ += static_cast<XML_Index>(stueck.size());
        if (XML_Parse(parser_, stueck.data(), static_cast<int>(stueck.size()), letztes) == XML_STATUS_OK) {
            // The parser keeps an unfinished tag whole, and looks at all of it again with each piece.
            if (gelesen_ - XML_GetCurrentByteIndex(parser_) > kLaengstesZeichen)
                misslungen("Ein Element ist zu lang.");
            return;
        }
        if (fehler_) {
            try {
                std::rethrow_exception(std::exchange(fehler_, nullptr));
            } catch (const Fehler& fehler) {
                if (fehler.quelle() != "XMLTV") throw;
                misslungen(fehler.beschreibung());
            }
        }
        misslungen(grund(XML_GetErrorCode(parser_)));
    }

  private:
    [[noreturn]] void misslungen(const std::string& warum) const {
        throw Fehler(fehlernummer::kEigener, "skarvel",
                     name_ + ", Zeile " + std::to_string(XML_GetCurrentLineNumber(parser_)) + ": " + warum);
    }
    std::string grund(XML_Error code) const {
        switch (code) {
            case XML_ERROR_NO_ELEMENTS:
                return offene_.empty() ? "Es ist keine XMLTV-Datei, oder sie ist leer."
                                       : "Die Datei ist unvollständig.";
            case XML_ERROR_UNCLOSED_TOKEN:
            case XML_ERROR_UNCLOSED_CDATA_SECTION:
            case XML_ERROR_PARTIAL_CHAR: return "Die Datei ist unvollständig.";
            case XML_ERROR_UNKNOWN_ENCODING: return "Die Zeichenkodierung ist unbekannt.";
            case XML_ERROR_NO_MEMORY: return "Der Arbeitsspeicher reicht nicht.";
            case XML_ERROR_SYNTAX:
            case XML_ERROR_BAD_CHAR_REF:
            case XML_ERROR_INVALID_TOKEN:
                return "Das XML ist fehlerhaft: Hier steht etwas, das nicht erlaubt ist.";
            case XML_ERROR_TAG_MISMATCH:
                return "Das XML ist fehlerhaft: Anfang und Ende der Elemente passen nicht zusammen.";
            case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
                return "Das XML ist fehlerhaft: Hinter dem Ende steht noch etwas.";
            case XML_ERROR_UNDEFINED_ENTITY: return "Das XML ist fehlerhaft: Eine Entität ist unbekannt.";
            default: return "Das XML ist fehlerhaft (Fehler " + std::to_string(code) + ").";
        }
    }

    // No exception may pass through the parser: it waits in fehler_.
    template <class Arbeit>
    static void geschuetzt(void* selbst, Arbeit arbeit) {
        auto& zustand = *static_cast<Zustand*>(selbst);
        if (zustand.fehler_) return;
        try {
            arbeit(zustand);
        } catch (...) {
            zustand.fehler_ = std::current_exception();
            XML_StopParser(zustand.parser_, XML_FALSE);
        }
    }
    static void XMLCALL beginnt(void* selbst, const XML_Char* name, const XML_Char** attribute) {
        geschuetzt(selbst, [&](Zustand& z) { z.oeffne(name, attribute); });
    }
    static void XMLCALL endet(void* selbst, const XML_Char*) {
        geschuetzt(selbst, [](Zustand& z) { z.schliesse(); });
    }
    static void XMLCALL zeichen(void* selbst, const XML_Char* text, int laenge) {
        geschuetzt(selbst, [&](Zustand& z) {
            if (z.offene_.size() < 3) return;
            std::string& ziel = z.offene_.back().text;
            const auto weitere = static_cast<std::size_t>(laenge);
            if (ziel.size() + weitere <= kLaengsterText) ziel.append(text, weitere);
        });
    }
    static int XMLCALL fremdeKodierung(void*, const XML_Char* name, XML_Encoding* tabelle) {
        return kodierung(name, *tabelle) ? XML_STATUS_OK : XML_STATUS_ERROR;
    }

    void oeffne(const char* name, const XML_Char** attribute) {
        if (offene_.size() >= kTiefsteSchachtel)
            throw Fehler(fehlernummer::kEigener, "XMLTV", "Die Elemente sind zu tief verschachtelt.");
        Element element;
        element.name = name;
        for (; *attribute; attribute += 2)
            element.attribute.emplace(attribute[0], attribute[1]);
        if (offene_.empty() && element.name != "tv")
            throw Fehler(fehlernummer::kEigener, "XMLTV", "Es ist keine XMLTV-Datei.");
        offene_.push_back(std::move(element));
        if (offene_.size() != 2) return;
        kanal_ = {};
        sendung_ = {};
        if (offene_.back().name == "channel") kanal_.kennung = kennung(offene_.back(), "id");
        if (offene_.back().name == "programme") beginneSendung(offene_.back());
    }

    static std::string kennung(const Element& element, std::string_view attribut) {
        std::string wert = trimAlleLeerraeume(element.attribut(attribut));
        if (!wert.empty()) return wert;
        throw Fehler(
            fehlernummer::kEigener, "XMLTV",
            "Dem Element \"" + element.name + "\" fehlt das Attribut \"" + std::string(attribut) + "\".");
    }

    void beginneSendung(const Element& element) {
        sendung_.kanal = kennung(element, "channel");
        sendung_.beginn = weltzeitAus(kennung(element, "start"));
        if (const std::string ende = element.attribut("stop"); !ende.empty())
            sendung_.ende = weltzeitAus(ende);
        if (const std::string vps = element.attribut("vps-start"); !vps.empty())
            sendung_.vpsBeginn = weltzeitAus(vps);
        sendung_.showview = trimAlleLeerraeume(element.attribut("showview"));
    }

    void schliesse() {
        Element element = std::move(offene_.back());
        offene_.pop_back();
        element.text = trimAlleLeerraeume(element.text);
        if (offene_.size() == 1) {
            if (element.name == "channel") empfaenger_.kanal(std::move(kanal_));
            if (element.name == "programme") empfaenger_.sendung(std::move(sendung_));
        } else if (offene_.size() >= 2 && offene_[1].name == "channel") {
            nimmInKanal(element);
        } else if (offene_.size() >= 2 && offene_[1].name == "programme") {
            nimmInSendung(element);
        }
    }

    static void fuege(std::vector<XmltvText>& liste, const Element& element, std::string_view attribut) {
        if (element.text.empty() || liste.size() >= kLaengsteListe) return;
        liste.push_back({element.text, attribut.empty() ? "" : element.attribut(attribut)});
    }

    void nimmInKanal(const Element& element) {
        if (offene_.size() != 2) return;
        if (element.name == "display-name") fuege(kanal_.namen, element, "lang");
        if (element.name == "url" && kanal_.webseite.empty()) kanal_.webseite = element.text;
    }

    void nimmInSendung(const Element& element) {
        const std::string pfad = offene_.size() == 2   ? element.name
                                 : offene_.size() == 3 ? offene_[2].name + "/" + element.name
                                                       : std::string();
        for (const Textziel& ziel : kTextziele) {
            if (ziel.pfad == pfad) return fuege(sendung_.*ziel.liste, element, ziel.attribut);
        }
        for (const Wertziel& ziel : kWertziele) {
            if (ziel.pfad == pfad) sendung_.*ziel.wert = element.text;
        }
        for (const Kennzeichenziel& ziel : kKennzeichenziele) {
            if (ziel.pfad == pfad) sendung_.*ziel.wert = true;
        }
        if (pfad == "length")
            sendung_.laengeSekunden = sekundenAus(element.text, element.attribut("units"));
        else if (pfad == "star-rating/value")
            fuege(sendung_.sterne, element, "");
        else if (pfad == "rating/value" && sendung_.freigaben.size() < kLaengsteListe)
            sendung_.freigaben.push_back({element.text, offene_[2].attribut("system")});
    }

    std::string name_;
    XmltvEmpfaenger& empfaenger_;
    XML_Parser parser_;
    std::exception_ptr fehler_;
    XML_Index gelesen_ = 0;
    std::vector<Element> offene_;  // "tv" first
    XmltvKanal kanal_;
    XmltvSendung sendung_;
};

XmltvLeser::XmltvLeser(std::string name, XmltvEmpfaenger& empfaenger)
    : zustand_(std::make_unique<Zustand>(std::move(name), empfaenger)) {}
XmltvLeser::~XmltvLeser() = default;

void XmltvLeser::lies(std::string_view stueck) { zustand_->lies(stueck, false); }
void XmltvLeser::ende() { zustand_->lies({}, true); }

}  // namespace wendel::skarvel
