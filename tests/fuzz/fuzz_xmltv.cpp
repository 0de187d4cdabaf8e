// Arbitrary bytes as a TV guide in XMLTV. Whatever they are: reading ends with broadcasts whose texts are
// bounded, or a Fehler; and cutting the same bytes into pieces changes nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "../../apps/skarvel/Guidesendung.h"
#include "../../apps/skarvel/XmltvLeser.h"
#include "platform/Fehler.h"

namespace {

using namespace wendel;
using namespace wendel::skarvel;

void verlange(bool bedingung) {
    if (!bedingung) std::abort();
}

// One line for each thing read, and one for the error at the end.
class Mitschrift : public XmltvEmpfaenger {
  public:
    void kanal(XmltvKanal kanal) override { zeilen.push_back("Kanal " + kanal.kennung); }
    void sendung(XmltvSendung sendung) override {
        for (const auto* liste : {&sendung.titel, &sendung.beschreibungen, &sendung.darsteller}) {
            verlange(liste->size() <= 200);
            for (const XmltvText& text : *liste)
                verlange(text.text.size() <= 65536);
        }
        const Guidesendung fertig = guidesendungAus(sendung);
        zeilen.push_back(sendung.kanal + " " + std::to_string(fertig.beginn) + " " + fertig.daten.Titel);
        ortszeit(fertig.beginn);
    }
    std::vector<std::string> zeilen;
};

std::vector<std::string> gelesen(std::string_view bytes, std::size_t stueck) {
    Mitschrift mitschrift;
    try {
        XmltvLeser leser("Probe", mitschrift);
        for (std::size_t i = 0; i < bytes.size(); i += stueck)
            leser.lies(bytes.substr(i, stueck));
        leser.ende();
    } catch (const Fehler&) {
        mitschrift.zeilen.push_back("Fehler");  // its text depends on how much the parser had seen
    }
    return mitschrift.zeilen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    const std::string_view bytes(reinterpret_cast<const char*>(daten), groesse);
    const auto ganz = gelesen(bytes, groesse + 1);
    if (groesse > 0) verlange(gelesen(bytes, 1 + daten[0] % 7) == ganz);
    return 0;
}
