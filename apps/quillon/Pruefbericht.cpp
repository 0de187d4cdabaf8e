#include "Pruefbericht.h"

namespace wendel::quillon {
namespace {

const char* marke(Pruefstand stand) {
    switch (stand) {
        case Pruefstand::Ok: return "  ok       ";
        case Pruefstand::Hinweis: return "  Hinweis  ";
        case Pruefstand::Fehler: break;
    }
    return "  Fehler   ";
}

}  // namespace

void Pruefbericht::kopf(const std::string& programm, const std::string& zeitpunkt) {
    ausgabe_ << "Prüfbericht von " << programm << ", " << zeitpunkt
             << "\nNamen, Ordner, Titel und Adressen stehen nicht darin; er kann in eine Frage kopiert "
                "werden.\n";
}

void Pruefbericht::teil(const std::string& titel, const std::vector<Pruefzeile>& zeilen) {
    ausgabe_ << "\n" << titel << "\n";
    for (const Pruefzeile& zeile : zeilen) {
        ausgabe_ << marke(zeile.stand) << zeile.befund << "\n";
        if (!zeile.rat.empty()) ausgabe_ << "           -> " << zeile.rat << "\n";
        if (zeile.stand == Pruefstand::Fehler) ++fehler_;
        if (zeile.stand == Pruefstand::Hinweis) ++hinweise_;
    }
}

void Pruefbericht::schluss() {
    ausgabe_ << "\nErgebnis: " << fehler_ << " Fehler, " << hinweise_
             << (hinweise_ == 1 ? " Hinweis.\n" : " Hinweise.\n");
}

}  // namespace wendel::quillon
