#include "Updateeinstellungen.h"

#include <cstddef>

#include "platform/Text.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel::skarvel {
namespace {

std::string zeitplan(const Updateeinstellungen& e) {
    std::string plan;
    for (const bool tag : e.tage)
        plan += tag ? '1' : '0';
    return plan + " " + e.uhrzeit;
}

}  // namespace

Updateeinstellungen liesUpdateeinstellungen(Einstellungen& einstellungen, const std::string& programmordner) {
    const Konfiguration konfiguration = liesKonfiguration(einstellungen, programmordner);
    Updateeinstellungen e;
    e.quelle = konfiguration.xmltvQuelle;
    e.befehl = konfiguration.xmltvBefehl;
    e.aktiv = konfiguration.liveUpdate;
    e.modus = konfiguration.liveUpdateModus;
    e.stunden = konfiguration.liveUpdateStunden;
    e.versteckt = konfiguration.liveUpdateVersteckt;
    for (std::size_t tag = 0; tag < e.tage.size(); ++tag)
        e.tage[tag] = konfiguration.zeitplan.size() > tag && konfiguration.zeitplan[tag] == '1';
    if (konfiguration.zeitplan.size() > e.tage.size())
        e.uhrzeit = Trim(std::string_view(konfiguration.zeitplan).substr(e.tage.size()));
    return e;
}

bool schreibeUpdateeinstellungen(Einstellungen& einstellungen, const Updateeinstellungen& bisher,
                                 const Updateeinstellungen& neu) {
    bool geschrieben = false;
    const auto setze = [&](bool anders, std::int32_t index, const Variant& wert) {
        if (!anders) return;
        einstellungen.setzeEinstellung(index, wert);
        geschrieben = true;
    };
    setze(bisher.quelle != neu.quelle, einstellung::kXmltvQuelle, Variant::text(neu.quelle));
    setze(bisher.befehl != neu.befehl, einstellung::kXmltvBefehl, Variant::text(neu.befehl));
    setze(bisher.aktiv != neu.aktiv, einstellung::kLiveUpdate, Variant::boolesch(neu.aktiv));
    setze(bisher.modus != neu.modus, einstellung::kLiveUpdateModus, Variant::integer(neu.modus));
    setze(zeitplan(bisher) != zeitplan(neu), einstellung::kZeitplan, Variant::text(zeitplan(neu)));
    setze(bisher.stunden != neu.stunden, einstellung::kLiveUpdateStunden, Variant::integer(neu.stunden));
    setze(bisher.versteckt != neu.versteckt, einstellung::kLiveUpdateVersteckt,
          Variant::boolesch(neu.versteckt));
    return geschrieben;
}

}  // namespace wendel::skarvel
