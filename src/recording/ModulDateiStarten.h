#pragma once
// Opens a program, a file or a document as the desktop would, and turns the failure codes into texts. Which
// window style a caller wants and what it tells the user about a failure is left to it.

#include <string>
#include <string_view>

#include "platform/ports/Dateistarter.h"

namespace wendel::ModulDateiStarten {

// Switches that follow the file in its own text (after the first " /") go in front of the parameters. The
// working folder is the file's. fensterstil: 0 hidden, 1 normal, 2 minimised, 3 maximised, 4 normal without
// focus, 6 minimised without focus, any other normal. Throws Fehler 1 of source "DateiStarten" whose
// description is the platform's English text, ended by CR LF.
void DateiStarten(Dateistarter& starter, std::string_view datei, std::string_view parameter, int fensterstil);

// The text before the last "\" or "/"; "" when there is none.
std::string OrdnerAusPfad(std::string_view pfad);

}  // namespace wendel::ModulDateiStarten
