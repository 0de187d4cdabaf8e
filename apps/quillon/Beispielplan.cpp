#include "Beispielplan.h"

#include <algorithm>
#include <array>

namespace wendel::quillon {

namespace {

using enum Rubrik;

constexpr Planzeile neu(Tage tage, int uhrzeit, Rubrik rubrik, int nummer = 0) {
    return {tage, uhrzeit, Planzeile::Art::Neu, rubrik, nummer};
}
constexpr Planzeile wdh(Tage tage, int uhrzeit, int vonUhrzeit) {
    return {tage, uhrzeit, Planzeile::Art::Wiederholung, Reportage, vonUhrzeit};
}

constexpr auto kVollprogramm = std::to_array<Planzeile>({
    neu(kAlle, 500, Reportage),
    neu(kMoFr, 530, Fruehstueck),
    neu(kSaSo, 530, Kinder, 0),
    neu(kMoFr, 600, Nachrichten),
    neu(kMoFr, 605, Fruehstueck),
    neu(kSaSo, 620, Kinder, 1),
    neu(kMoFr, 700, Nachrichten),
    neu(kMoFr, 705, Fruehstueck),
    neu(kSaSo, 710, Kinder, 2),
    neu(kMoFr, 800, Nachrichten),
    neu(kMoFr, 805, Fruehstueck),
    neu(kSaSo, 810, Kinder, 3),
    neu(kAlle, 900, Nachrichten),
    wdh(kMoFr, 905, 1610),
    neu(kSaSo, 905, Kinder, 4),
    neu(kMoFr, 955, Ratgeber, 0),
    neu(kSaSo, 1000, Natur),
    wdh(kMoFr, 1040, 1800),
    neu(kSaSo, 1045, Film),
    wdh(kMoFr, 1130, 1215),
    neu(kMoFr, 1200, Nachrichten),
    neu(kMoFr, 1215, Magazin, 0),
    neu(kSa, 1230, Ratgeber, 1),
    neu(kSo, 1230, Magazin, 3),
    neu(kAlle, 1300, Nachrichten),
    neu(kMoFr, 1305, Talk, 0),
    neu(kSaSo, 1315, Film),
    neu(kMoFr, 1400, Nachrichten),
    neu(kMoFr, 1410, Familienserie, 1),
    neu(kMoFr, 1500, Nachrichten),
    neu(kMoFr, 1510, Familienserie, 2),
    neu(kSa, 1500, Reportage),
    neu(kSo, 1500, Doku),
    neu(kMoFr, 1600, Nachrichten),
    neu(kMoFr, 1610, Familienserie, 0),
    neu(kSa, 1530, Sportlive),
    neu(kSo, 1550, Natur),
    neu(kSo, 1635, Familienserie, 3),
    neu(kMoFr, 1700, Nachrichten),
    neu(kMoFr, 1715, Magazin, 1),
    neu(kSa, 1730, Nachrichten),
    neu(kSa, 1740, Magazin, 2),
    neu(kSo, 1730, Ratgeber, 2),
    neu(kMoFr, 1800, Quiz, 0),
    neu(kSaSo, 1815, Sportmagazin),
    neu(kMoFr, 1850, Krimiserie, 0),
    neu(kSaSo, 1900, Krimiserie, 1),
    neu(kAlle, 1950, Kurz),
    neu(kAlle, 2000, Nachrichten),
    neu(kMo, 2015, Natur),
    neu(kDi, 2015, Krimiserie, 2),
    neu(kMi | kFr | kSo, 2015, Film),
    neu(kDo, 2015, Doku),
    neu(kSa, 2015, Show),
    neu(kMo, 2100, Magazin, 4),
    neu(kDo, 2100, Familienserie, 4),
    neu(kMoFr | kSo, 2200, Nachrichten),
    neu(kMo, 2230, Doku),
    neu(kDi | kDo, 2230, Talk, 1),
    neu(kMi | kFr | kSo, 2230, Film),
    neu(kSa, 2245, Nachrichten),
    neu(kSa, 2300, Film),
    neu(kMo | kDi | kDo, 2330, Krimiserie, 3),
    neu(kAlle, 2440, Nachrichten),
    wdh(kAlle, 2450, 2015),
    wdh(kMoFr, 2640, 1715),
    neu(kMoFr, 2730, Nacht),
    neu(kSaSo, 2720, Nacht),
});

constexpr auto kUnterhaltung = std::to_array<Planzeile>({
    neu(kAlle, 500, Nacht),
    wdh(kAlle, 545, 1900),
    neu(kMoFr, 610, Fruehstueck),
    neu(kSaSo, 610, Kinder, 5),
    neu(kMoFr, 705, Fruehstueck),
    neu(kSaSo, 700, Kinder, 6),
    neu(kMoFr, 800, Fruehstueck),
    neu(kSaSo, 800, Kinder, 7),
    neu(kMoFr, 900, Nachrichten),
    neu(kSaSo, 900, Comedy, 3),
    wdh(kMoFr, 910, 1740),
    wdh(kMoFr, 1005, 1930),
    neu(kSaSo, 1020, Familienserie, 6),
    neu(kMoFr, 1050, Quiz, 2),
    neu(kMoFr, 1140, Ratgeber, 3),
    neu(kSaSo, 1200, Ratgeber, 4),
    neu(kMoFr, 1230, Comedy, 1),
    neu(kSaSo, 1230, Film),
    neu(kMoFr, 1325, Krimiserie, 5),
    neu(kSaSo, 1410, Show),
    neu(kMoFr, 1500, Magazin, 2),
    neu(kMoFr, 1545, Quiz, 1),
    neu(kSaSo, 1610, Reportage),
    neu(kMoFr, 1630, Comedy, 2),
    neu(kSaSo, 1640, Comedy, 4),
    neu(kMoFr, 1720, Nachrichten),
    neu(kMoFr, 1740, Familienserie, 5),
    neu(kSaSo, 1735, Quiz, 3),
    neu(kAlle, 1825, Magazin, 5),
    neu(kAlle, 1900, Comedy, 0),
    neu(kAlle, 1930, Quiz, 0),
    neu(kMo | kMi, 2015, Krimiserie, 4),
    neu(kDi | kDo | kSo, 2015, Film),
    neu(kFr | kSa, 2015, Show),
    neu(kMo | kMi, 2155, Comedy, 5),
    neu(kDi | kDo | kSo, 2205, Reportage),
    neu(kAlle, 2245, Nachrichten),
    neu(kDi | kDo | kFr, 2300, Talk, 2),
    neu(kMo | kMi | kSaSo, 2300, Film),
    wdh(kDi | kDo | kFr, 2400, 2015),
    wdh(kMo | kMi | kSaSo, 2445, 2015),
    wdh(kAlle, 2630, 1740),
    wdh(kAlle, 2720, 1630),
    wdh(kAlle, 2810, 1545),
});

constexpr auto kKino = std::to_array<Planzeile>({
    neu(kAlle, 500, Film),
    neu(kAlle, 1800, Kurz),
    neu(kAlle, 1815, Film),
    neu(kAlle, 2010, Kurz),
    neu(kAlle, 2015, Film),
    neu(kAlle, 2205, Film),
    neu(kAlle, 2400, Film),
    wdh(kAlle, 2545, 2015),
    neu(kAlle, 2725, Kurz),
    wdh(kAlle, 2735, 1815),
});

constexpr auto kSerien = std::to_array<Planzeile>({
    neu(kAlle, 500, Krimiserie, 6),
    wdh(kAlle, 640, 2015),
    neu(kAlle, 815, Familienserie, 7),
    neu(kAlle, 950, Comedy, 6),
    neu(kAlle, 1100, Krimiserie, 7),
    neu(kAlle, 1240, Familienserie, 8),
    neu(kAlle, 1415, Comedy, 7),
    neu(kAlle, 1530, Krimiserie, 8),
    neu(kAlle, 1710, Familienserie, 9),
    neu(kAlle, 1845, Comedy, 8),
    neu(kAlle, 2000, Kurz),
    neu(kMoFr, 2015, Krimiserie, 9),
    neu(kSaSo, 2015, Film),
    neu(kMoFr, 2155, Krimiserie, 10),
    neu(kSaSo, 2200, Krimiserie, 10),
    neu(kAlle, 2335, Comedy, 9),
    wdh(kAlle, 2440, 2155),
    wdh(kAlle, 2620, 1530),
    neu(kAlle, 2800, Nacht),
});

constexpr auto kWissen = std::to_array<Planzeile>({
    wdh(kAlle, 500, 2015),       wdh(kAlle, 700, 1900),        neu(kAlle, 745, Nachrichten),
    neu(kAlle, 800, Reportage),  neu(kAlle, 930, Doku),        neu(kAlle, 1145, Magazin, 6),
    neu(kAlle, 1215, Natur),     neu(kAlle, 1345, Doku),       neu(kAlle, 1520, Reportage),
    neu(kAlle, 1650, Natur),     neu(kAlle, 1820, Magazin, 7), neu(kAlle, 1900, Doku),
    neu(kAlle, 1945, Reportage), neu(kAlle, 2015, Doku),       neu(kAlle, 2145, Nachrichten),
    neu(kAlle, 2200, Doku),      neu(kMoFr, 2330, Talk, 3),    neu(kSaSo, 2330, Reportage),
    wdh(kAlle, 2430, 1650),      wdh(kAlle, 2600, 2200),       neu(kAlle, 2730, Reportage),
});

constexpr auto kHeimat = std::to_array<Planzeile>({
    neu(kAlle, 500, Nacht),          neu(kAlle, 600, Natur),        wdh(kAlle, 730, 1800),
    neu(kAlle, 815, Ratgeber, 2),    neu(kAlle, 945, Reportage),    neu(kAlle, 1045, Familienserie, 4),
    neu(kAlle, 1215, Konzert),       neu(kAlle, 1315, Nachrichten), neu(kMoFr, 1330, Ratgeber, 5),
    neu(kSaSo, 1330, Film),          neu(kAlle, 1500, Natur),       neu(kAlle, 1630, Familienserie, 7),
    neu(kAlle, 1800, Magazin, 0),    neu(kAlle, 1830, Nachrichten), neu(kAlle, 1845, Reportage),
    neu(kAlle, 1945, Ratgeber, 1),   neu(kMo | kDi, 2015, Natur),   neu(kMi | kDo, 2015, Film),
    neu(kFr | kSaSo, 2015, Konzert), neu(kAlle, 2145, Nachrichten), neu(kAlle, 2200, Magazin, 4),
    neu(kAlle, 2230, Reportage),     neu(kAlle, 2330, Doku),        wdh(kAlle, 2500, 2015),
    wdh(kAlle, 2630, 1500),          neu(kAlle, 2800, Nacht),
});

constexpr auto kKinderprogramm = std::to_array<Planzeile>({
    neu(kAlle, 500, Nacht),       neu(kAlle, 545, Kinder, 0),  neu(kAlle, 630, Kinder, 2),
    neu(kAlle, 720, Kinder, 3),   neu(kAlle, 815, Kinder, 4),  neu(kAlle, 900, Kinder, 5),
    wdh(kAlle, 1000, 1715),       neu(kAlle, 1100, Kinder, 6), neu(kAlle, 1200, Kinder, 7),
    neu(kMoFr, 1300, Kinder, 8),  neu(kSaSo, 1300, Film),      neu(kMoFr, 1430, Natur),
    neu(kSaSo, 1440, Natur),      neu(kAlle, 1530, Kinder, 9), neu(kAlle, 1615, Kinder, 10),
    neu(kAlle, 1715, Kinder, 11), neu(kAlle, 1815, Kinder, 7), neu(kAlle, 1900, Kinder, 0),
    neu(kAlle, 1950, Kinder, 1),  neu(kAlle, 2015, Comedy, 1), neu(kAlle, 2105, Familienserie, 5),
    neu(kAlle, 2240, Doku),       wdh(kAlle, 2410, 2015),      wdh(kAlle, 2500, 2105),
    neu(kAlle, 2635, Nacht),
});

constexpr auto kSport = std::to_array<Planzeile>({
    wdh(kAlle, 500, 1800),          wdh(kAlle, 600, 2015),          neu(kAlle, 815, Sportmagazin),
    neu(kAlle, 1015, Reportage),    wdh(kAlle, 1115, 2215),         neu(kAlle, 1200, Sportmagazin),
    neu(kMoFr, 1330, Sportlive),    neu(kSaSo, 1300, Sportlive),    neu(kSaSo, 1500, Sportlive),
    neu(kMoFr, 1545, Sportmagazin), neu(kSaSo, 1715, Sportmagazin), neu(kAlle, 1800, Sportmagazin),
    neu(kAlle, 1930, Nachrichten),  neu(kAlle, 1945, Sportmagazin), neu(kAlle, 2015, Sportlive),
    neu(kAlle, 2215, Sportmagazin), neu(kAlle, 2300, Talk, 0),      neu(kAlle, 2400, Sportmagazin),
    wdh(kAlle, 2500, 2015),         neu(kAlle, 2710, Sportmagazin),
});

constexpr auto kNachrichtensender = std::to_array<Planzeile>({
    neu(kAlle, 500, Nachrichten),  neu(kAlle, 515, Reportage),    neu(kAlle, 545, Magazin, 3),
    neu(kAlle, 600, Nachrichten),  neu(kMoFr, 630, Fruehstueck),  neu(kSaSo, 630, Reportage),
    neu(kAlle, 730, Nachrichten),  neu(kMoFr, 800, Fruehstueck),  neu(kSaSo, 800, Magazin, 7),
    neu(kAlle, 900, Nachrichten),  neu(kAlle, 930, Magazin, 3),   neu(kAlle, 1000, Nachrichten),
    neu(kAlle, 1030, Reportage),   neu(kAlle, 1100, Nachrichten), neu(kAlle, 1115, Doku),
    neu(kAlle, 1200, Nachrichten), neu(kAlle, 1230, Magazin, 1),  neu(kAlle, 1300, Nachrichten),
    neu(kAlle, 1315, Doku),        neu(kAlle, 1400, Nachrichten), neu(kAlle, 1430, Magazin, 7),
    neu(kAlle, 1500, Nachrichten), neu(kAlle, 1515, Reportage),   neu(kAlle, 1545, Kurz),
    neu(kAlle, 1600, Nachrichten), neu(kAlle, 1630, Magazin, 6),  neu(kAlle, 1700, Nachrichten),
    neu(kAlle, 1730, Reportage),   neu(kAlle, 1800, Nachrichten), neu(kAlle, 1830, Magazin, 3),
    neu(kAlle, 1900, Nachrichten), neu(kAlle, 1915, Doku),        neu(kAlle, 2000, Nachrichten),
    neu(kAlle, 2015, Doku),        neu(kAlle, 2100, Reportage),   neu(kAlle, 2130, Magazin, 1),
    neu(kAlle, 2200, Nachrichten), neu(kAlle, 2230, Talk, 3),     neu(kAlle, 2330, Nachrichten),
    wdh(kAlle, 2400, 2015),        wdh(kAlle, 2445, 2230),        neu(kAlle, 2545, Nachrichten),
    wdh(kAlle, 2600, 1915),        wdh(kAlle, 2645, 2100),        neu(kAlle, 2715, Reportage),
});

constexpr auto kKultur = std::to_array<Planzeile>({
    neu(kAlle, 500, Konzert),     wdh(kAlle, 630, 1930),         neu(kAlle, 700, Kurz),
    neu(kAlle, 730, Buehne),      neu(kAlle, 930, Doku),         wdh(kAlle, 1100, 2200),
    neu(kAlle, 1230, Magazin, 5), neu(kAlle, 1315, Konzert),     neu(kAlle, 1500, Reportage),
    neu(kAlle, 1600, Doku),       neu(kAlle, 1735, Film),        neu(kAlle, 1920, Kurz),
    neu(kAlle, 1930, Magazin, 5), neu(kAlle, 2000, Nachrichten), neu(kMo | kDo | kSa, 2015, Buehne),
    neu(kDi | kFr, 2015, Film),   neu(kMi | kSo, 2015, Konzert), neu(kAlle, 2200, Doku),
    neu(kAlle, 2330, Talk, 2),    neu(kAlle, 2430, Konzert),     wdh(kAlle, 2600, 2015),
    neu(kAlle, 2745, Kurz),       neu(kAlle, 2800, Nacht),
});

constexpr auto kMusik = std::to_array<Planzeile>({
    neu(kAlle, 500, Nacht),        neu(kAlle, 600, Konzert),     neu(kAlle, 800, Kurz),
    neu(kAlle, 830, Konzert),      neu(kAlle, 1030, Magazin, 5), wdh(kAlle, 1115, 2015),
    neu(kAlle, 1330, Kurz),        neu(kAlle, 1400, Konzert),    neu(kAlle, 1530, Reportage),
    neu(kAlle, 1630, Konzert),     neu(kAlle, 1830, Kurz),       neu(kAlle, 1900, Konzert),
    neu(kAlle, 2000, Nachrichten), neu(kMoFr, 2015, Konzert),    neu(kSaSo, 2015, Show),
    neu(kAlle, 2230, Konzert),     neu(kAlle, 2400, Kurz),       wdh(kAlle, 2415, 1900),
    wdh(kAlle, 2515, 2230),        neu(kAlle, 2645, Nacht),
});

constexpr auto kSender = std::to_array<Beispielsender>({
    {"TURM", "1 Turmfernsehen", "Turm", "Vollprogramm", "www.turmfernsehen.example", "Turm-Nachrichten", true,
     true, true, Reportage, kVollprogramm},
    {"MOSAIK", "2 Kanal Mosaik", "Mosaik", "Vollprogramm", "www.kanal-mosaik.example", "Mosaik aktuell", true,
     true, true, Reportage, kVollprogramm},
    {"RUBIN", "3 Tele Rubin", "Rubin", "Unterhaltung", "www.telerubin.example", "Rubin News", true, false,
     true, Comedy, kUnterhaltung},
    {"KLEEBL", "4 Kanal Kleeblatt", "Kleeblatt", "Unterhaltung", "www.kleeblatt.example", "Kleeblatt kompakt",
     true, false, true, Comedy, kUnterhaltung},
    {"ZINNOB", "5 Zinnober Film", "Zinnober", "Spielfilm", "www.zinnober.example", "Filmnachrichten", true,
     false, false, Reportage, kKino},
    {"STERNW", "6 Sternwarte", "Sternwarte", "Wissen", "www.sternwarte.example", "Wissen in Kürze", true,
     true, true, Reportage, kWissen},
    {"FALTER", "7 Nachtfalter", "Nachtfalter", "Serien", "www.nachtfalter.example", "Falter-Flash", false,
     false, true, Comedy, kSerien},
    {"MURMEL", "8 Murmel TV", "Murmel", "Kinder", "www.murmel.example", "Murmel-Neuigkeiten", false, true,
     true, Natur, kKinderprogramm},
    {"STARTBL", "9 Startblock", "Startblock", "Sport", "www.startblock.example", "Sport in Zahlen", false,
     false, true, Sportmagazin, kSport},
    {"DEPESCH", "10 Depesche 24", "Depesche", "Nachrichten", "www.depesche24.example", "Depesche", true,
     false, true, Reportage, kNachrichtensender},
    {"BUEHNE", "11 Bühnenlicht", "Bühnenlicht", "Kultur", "www.buehnenlicht.example", "Kulturnachrichten",
     false, true, true, Reportage, kKultur},
    {"NOTE", "12 Notenschlüssel", "Noten", "Musik", "www.notenschluessel.example", "Notizen", false, false,
     true, Kurz, kMusik},
    {"WIESE", "13 Wiesengrund", "Wiesengrund", "Regional", "www.wiesengrund.example", "Neues vom Land", false,
     true, true, Reportage, kHeimat},
    {"HAFEN", "14 Hafenstern", "Hafenstern", "Regional", "www.hafenstern.example", "Hafenrundschau", false,
     true, true, Reportage, kVollprogramm},
});

// A row in the wrong place would begin before the one it follows has ended.
constexpr bool geordnet(const Beispielsender& sender) {
    for (Tage tag = kMo; tag <= kSo; tag = static_cast<Tage>(tag << 1)) {
        int zuletzt = -1;
        for (const Planzeile& zeile : sender.plan) {
            if ((zeile.tage & tag) == 0) continue;
            if (zeile.uhrzeit <= zuletzt || (zuletzt < 0 && zeile.uhrzeit != 500)) return false;
            zuletzt = zeile.uhrzeit;
        }
    }
    return true;
}
static_assert(std::all_of(kSender.begin(), kSender.end(), geordnet));

}  // namespace

std::span<const Beispielsender> beispielsender() { return kSender; }

}  // namespace wendel::quillon
