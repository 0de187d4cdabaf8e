#include "core/Terminzeilen.h"

#include <algorithm>
#include <initializer_list>

#include "core/TaskbarIcon.h"
#include "platform/Text.h"

namespace wendel {

namespace {

constexpr std::string_view kProgrammname = "Lomrick";

const char* symbolname(Terminart art) {
    switch (art) {
        case Terminart::Erinnerung: return "terminuhr1";
        case Terminart::Aufzeichnung: return "terminaufz";
        case Terminart::Eigener: break;
    }
    return "terminuhr2";
}

std::string zeittext(const cTermin& termin) {
    return Format(termin.WeckZeit, wiederholtSich(termin) ? "ddd hh\\:nn" : "dd\\.mm\\.yy hh\\:nn");
}

std::string zeilentext(const cTermin& termin) {
    if (termin.Art != Terminart::Aufzeichnung) return termin.WeckText;
    return termin.WeckText + " (Aufzeichnung " + Format(termin.WeckZeit, "hh:nn") + " bis " +
           Format(termin.Fensterende, "hh:nn") + ")";
}

std::string tageswort(Datum weckZeit, Datum jetzt) {
    const auto tage = DateDiff(Einheit::Tag, jetzt, weckZeit);
    if (tage == 0) return "heute";
    if (tage == 1) return "morgen";
    return Format(weckZeit, tage < 7 ? "ddd" : "dd.mm.");
}

// The first of the earliest ones; nullptr when nothing lies ahead.
const cTermin* naechster(std::initializer_list<const Terminliste*> sammlungen, Datum jetzt) {
    const cTermin* bester = nullptr;
    for (const Terminliste* sammlung : sammlungen) {
        for (const TerminZeiger& termin : *sammlung) {
            if (!termin->Aktiv || termin->WeckZeit < jetzt) continue;
            if (!bester || termin->WeckZeit < bester->WeckZeit) bester = termin.get();
        }
    }
    return bester;
}

}  // namespace

std::string restzeitText(Datum weckZeit, Datum jetzt) {
    if (weckZeit <= jetzt) return "läuft";
    const auto minuten = DateDiff(Einheit::Minute, jetzt, weckZeit);
    if (minuten < 60) return std::to_string(minuten) + " min";
    const auto stunden = DateDiff(Einheit::Stunde, jetzt, weckZeit);
    if (stunden < 24) return std::to_string(stunden) + " h";
    return std::to_string(DateDiff(Einheit::Tag, jetzt, weckZeit)) + " Tage";
}

Terminzeile terminzeile(const cTermin& termin, Datum jetzt, const std::string& zusatz) {
    return {symbolname(termin.Art), zeittext(termin),
            zeilentext(termin) + (zusatz.empty() ? "" : ", ") + zusatz,
            termin.Aktiv ? restzeitText(termin.WeckZeit, jetzt) : std::string()};
}

Terminliste zeilenreihenfolge(const Terminliste& eigene, const Terminliste& erinnerungen,
                              const Terminliste& aufzeichnungen) {
    Terminliste alle;
    alle.reserve(eigene.size() + erinnerungen.size() + aufzeichnungen.size());
    for (const Terminliste* sammlung : {&eigene, &erinnerungen, &aufzeichnungen}) {
        alle.insert(alle.end(), sammlung->begin(), sammlung->end());
    }
    std::stable_sort(alle.begin(), alle.end(), [](const TerminZeiger& a, const TerminZeiger& b) {
        if (a->Aktiv != b->Aktiv) return a->Aktiv;
        return a->WeckZeit < b->WeckZeit;
    });
    return alle;
}

std::string tooltipText(const Terminliste& eigene, const Terminliste& erinnerungen,
                        const Terminliste& aufzeichnungen, Datum jetzt) {
    const cTermin* termin = naechster({&eigene, &erinnerungen, &aufzeichnungen}, jetzt);
    if (!termin) return std::string(kProgrammname);
    std::string text = std::string(kProgrammname) + ": " + tageswort(termin->WeckZeit, jetzt) + " " +
                       Format(termin->WeckZeit, "hh\\:nn");
    text += istKurzzeiterinnerung(*termin) ? " Kurzzeiterinnerung" : " " + termin->WeckText;
    return Left(text, kIconTippLaenge);
}

}  // namespace wendel
