#include "traymenu/cMenuePunkt.h"

#include "traymenu/FormBrannikMenue.h"

namespace wendel {

cMenuePunkt::cMenuePunkt() = default;
cMenuePunkt::~cMenuePunkt() = default;

void cMenuePunkt::ShowUnterMenue(int y) {
    if (!UnterMenue || !ParentForm || UnterMenue->leer()) return;
    UnterMenue->ShowNebenEltern(y / kTwipsJePixel);
}

}  // namespace wendel
