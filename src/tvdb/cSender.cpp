#include "tvdb/cSender.h"

#include "platform/Text.h"
#include "tvdb/Feldwerte.h"

namespace wendel {

void cSender::LeseVonDatensatz(Recordset& rs) {
    const auto text = [&](const char* spalte) { return Feldwerte::alsText(rs.feld(spalte)); };
    Bezeichnung = text("Bezeichnung");
    BezeichnungKurz = text("BezeichnungKurz");
    KzBezeichnungSchützen = Feldwerte::alsBool(rs.feld("KzBezeichnungSchützen"));
    Senderkennung = text("Senderkennung");
    DatenNr = text("DatenNr");
    Zeichen = text("Zeichen");
    if (Trim(Zeichen).empty()) Zeichen = kUnbekanntesZeichen;
    Webseite = text("Webseite");
    GueltigAb = Feldwerte::alsDatum(rs.feld("GueltigAb"));
    GueltigBis = Feldwerte::alsDatum(rs.feld("GueltigBis"));
    Favorit = Feldwerte::alsBool(rs.feld("Favorit"));
    Gruppe = text("Gruppe");
}

}  // namespace wendel
