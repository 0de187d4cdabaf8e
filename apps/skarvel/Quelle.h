#pragma once
// Where XMLTV comes from: a file, a folder of files, or what a command prints. Reads it in pieces and hands
// them to the parser; what is in them is not its business.

#include <functional>
#include <string>

#include "XmltvLeser.h"

namespace wendel::skarvel {

// Called with each piece read: which part of all bytes has been read, 0 to 1 (always 0 for a command). Throws
// to end the reading.
using Lesefortschritt = std::function<void(double anteil)>;

// Native path of a file, or of a folder whose files *.xml, *.xmltv, both also with .gz, are read in the order
// of their names. Compressed files are recognised by their content. Throws Fehler 1 when there is nothing to
// read, and what XmltvLeser throws.
void liesDateien(const std::string& pfad, XmltvEmpfaenger& empfaenger, const Lesefortschritt& fortschritt);

// Runs the line in a shell, its input empty, and reads what it prints. Throws Fehler 1 with the last line of
// its error output when it cannot be run or fails, and when it prints nothing for an hour or needs more than
// twelve. It is ended, with all that it has started, when the reading ends before it does; what then has not
// ended within three seconds is killed.
void liesBefehl(const std::string& befehl, XmltvEmpfaenger& empfaenger, const Lesefortschritt& fortschritt);

}  // namespace wendel::skarvel
