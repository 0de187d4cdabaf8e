#include "Sendeablauf.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace wendel::skarvel {
namespace {

constexpr std::int64_t kStunde = 3600;
constexpr std::int64_t kGroessteLuecke = 12 * kStunde;
constexpr std::int64_t kLaengsteSendung = 48 * kStunde;

void ergaenzeEnden(std::vector<Guidesendung>& sendungen) {
    for (std::size_t i = 0; i < sendungen.size(); ++i) {
        Guidesendung& sendung = sendungen[i];
        const std::int64_t laenge = sendung.ende.value_or(0) - sendung.beginn;
        if (laenge > 0 && laenge <= kLaengsteSendung) continue;
        sendung.ende = sendung.beginn + kStunde;
        if (i + 1 == sendungen.size()) continue;
        const Weltzeit naechste = sendungen[i + 1].beginn;
        if (naechste - sendung.beginn <= kGroessteLuecke) sendung.ende = naechste;
    }
}

void schneideUeberlappungen(std::vector<Guidesendung>& sendungen) {
    for (std::size_t i = 0; i < sendungen.size(); ++i) {
        for (std::size_t j = i + 1; j < sendungen.size() && sendungen[j].beginn < *sendungen[i].ende; ++j) {
            if (*sendungen[j].ende >= *sendungen[i].ende) sendungen[i].ende = sendungen[j].beginn;
        }
    }
}

// In the hour that the autumn repeats, a broadcast can end at an earlier wall time than it begins; it is
// shown with its length then. Whoever reads the length adds it to the beginning on the wall clock, where the
// spring leaves an hour out: a recording would end before the broadcast does.
cSendung aufDieWanduhr(Guidesendung& quelle) {
    cSendung sendung = std::move(quelle.daten);
    const std::int64_t laenge = *quelle.ende - quelle.beginn;
    sendung.Beginn = ortszeit(quelle.beginn);
    sendung.Ende = ortszeit(*quelle.ende);
    if (sendung.Ende <= sendung.Beginn) sendung.Ende = sendung.Beginn.plusSekunden(laenge);
    const std::int64_t aufDerWand = sendung.Ende.sekunden() - sendung.Beginn.sekunden();
    sendung.Dauer = std::to_string((std::max(laenge, aufDerWand) + 30) / 60);
    return sendung;
}

}  // namespace

Sendeablauf sendeablauf(std::vector<Guidesendung> sendungen) {
    ergaenzeEnden(sendungen);
    schneideUeberlappungen(sendungen);
    Sendeablauf ablauf;
    Weltzeit bis = 0;
    for (Guidesendung& quelle : sendungen) {
        const bool nachLuecke = quelle.beginn - bis > kGroessteLuecke;
        bis = nachLuecke ? *quelle.ende : std::max(bis, *quelle.ende);
        cSendung sendung = aufDieWanduhr(quelle);
        if (ablauf.abgedeckt.empty() || nachLuecke)
            ablauf.abgedeckt.push_back({sendung.Beginn, sendung.Ende});
        // On the wall, the later one may be the earlier one.
        Zeitraum& stueck = ablauf.abgedeckt.back();
        stueck = {std::min(stueck.von, sendung.Beginn), std::max(stueck.bis, sendung.Ende)};
        ablauf.sendungen.push_back(std::move(sendung));
    }
    return ablauf;
}

}  // namespace wendel::skarvel
