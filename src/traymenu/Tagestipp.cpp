#include "traymenu/Tagestipp.h"

#include "traymenu/Sendername.h"

namespace wendel {

void Tagestipp::fuellen() {
    if (!vonHeute()) {
        felder_ = {};  // also when asking fails: an old tip is none
        tipp_ = abfragen(uhr_.jetzt().datumsteil());
    }
    if (!tipp_) return;
    felder_ = {tipp_->Titel,
               tipp_->Genre,
               sendername(sender_.alle(), tipp_->SenderKennung),
               Format(tipp_->Beginn, "hh\\:nn") + " Uhr",
               tipp_->Bilddateiname,
               tipp_->Pos};
}

std::optional<cSendung> Tagestipp::abfragen(Datum tag) {
    auto db = zugriff_.OpenDatenbank(zugriff_.datenbankdatei());
    auto rs = zugriff_.SafeOpenRs(db,
                                  "Select * from Sendungen Where Format(Beginn,'YYYYMMDD')='" +
                                      Format(tag, "yyyymmdd") + "' and Bewertung=4;",
                                  kSnapshot, kForwardOnly);
    std::optional<cSendung> tipp;
    if (!rs->eof()) tipp.emplace(zugriff_).LeseVonDatensatz1(*rs);
    zugriff_.SafeCloseRs(rs);
    zugriff_.SafeCloseDatenbank(db);
    return tipp;
}

}  // namespace wendel
