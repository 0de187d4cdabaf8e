#pragma once
// All doors to the outside in one struct, made in the composition root and handed to the logic. The ports
// outlive everything that holds this struct.

#include "platform/ports/Automation.h"
#include "platform/ports/Dateistarter.h"
#include "platform/ports/Dateisystem.h"
#include "platform/ports/Datenbankmaschine.h"
#include "platform/ports/Energie.h"
#include "platform/ports/Fenstersystem.h"
#include "platform/ports/Fernsteuerung.h"
#include "platform/ports/Klang.h"
#include "platform/ports/Meldungen.h"
#include "platform/ports/Prozesse.h"
#include "platform/ports/Rechner.h"
#include "platform/ports/TaskleistenSymbol.h"
#include "platform/ports/Uhr.h"

namespace wendel {

struct Ports {
    Uhr& uhr;
    Dateisystem& dateien;
    Meldungen& meldungen;
    Fenstersystem& fenster;
    Klang& klang;
    Prozesse& prozesse;
    Dateistarter& starter;
    Automation& automation;
    TaskleistenSymbol& symbol;
    Rechner& rechner;
    Datenbankmaschinen& datenbanken;
    Fernsteuerung& fernsteuerung;
    Energie& energie;
};

}  // namespace wendel
