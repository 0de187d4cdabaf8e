#include "traymenu/ModulBrannikMenue.h"

#include <cassert>
#include <cstddef>
#include <utility>

#include "traymenu/FormBrannikMenue.h"

namespace wendel {

GeladeneMenues::GeladeneMenues() = default;
GeladeneMenues::~GeladeneMenues() = default;

void GeladeneMenues::setzeObermenue(std::unique_ptr<FormBrannikMenue> obermenue) {
    assert(!obermenue_ || !obermenue);
    // Whoever asks while the old tree goes finds no tree, not half of one.
    std::swap(obermenue_, obermenue);
}

bool GeladeneMenues::zuSchliessen(bool menueAktiv, bool zaehlt) {
    if (menueAktiv) schonfrist_ = 0;
    if (menueAktiv || schonfrist_ == 0) return !menueAktiv;
    if (zaehlt) --schonfrist_;
    return false;
}

namespace ModulBrannikMenue {

void HideAllMenues(GeladeneMenues& geladene) {
    // By number: a toolkit may do anything while a window goes.
    for (std::size_t i = 0; i < geladene.formen().size(); ++i)
        geladene.formen()[i]->verbergen();
}

void UnloadAllMenues(GeladeneMenues& geladene) { geladene.setzeObermenue(nullptr); }

}  // namespace ModulBrannikMenue
}  // namespace wendel
