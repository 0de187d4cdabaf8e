#pragma once
// The checks themselves, one function for each part of the report. They look and change nothing, and say
// nothing that the user has named or written: only fixed texts, numbers, and the names of known programs.

#include "Pruefbericht.h"
#include "Prueflage.h"
#include "platform/Ports.h"

namespace wendel::quillon {

void pruefeRechner(Pruefmelder& melder, const Prueflage& lage);
void pruefeDesktop(Pruefmelder& melder, const Prueflage& lage);
void pruefeEnergie(Pruefmelder& melder, const Prueflage& lage);
void pruefeProgramme(Pruefmelder& melder, const Prueflage& lage);
void pruefeOrdner(Pruefmelder& melder, const Prueflage& lage);
void pruefeEinstellungen(Pruefmelder& melder, Prueflage& lage);
void pruefeDatenbank(Pruefmelder& melder, const Prueflage& lage);
// Reads the whole file, which may take its time.
void pruefeDatenbankseiten(Pruefmelder& melder, const Prueflage& lage);
void pruefeUpdate(Pruefmelder& melder, Prueflage& lage);
void pruefeSkript(Pruefmelder& melder, const Ports& ports, const Prueflage& lage);

}  // namespace wendel::quillon
