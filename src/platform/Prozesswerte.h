#pragma once
// The values that start-up determines once and everybody reads: made by the composition root, filled in by
// the start routine, never global.

#include <string>

namespace wendel {

struct Prozesswerte {
    std::string programmdatei;             // name the process was started under, without folder: "wendel"
    std::string befehlszeile;              // the arguments joined with one blank, without the program itself
    std::string programmordner;            // in the described form, ends in "\"
    std::string datenbankdatei;            // path of tvdaten.mdb
    std::string hyperlinksOrdner;          // ends in "\"
    std::string guideKonfigurationsdatei;  // "kestrin.cfg", a bare name
    std::string hauptanwendungTitel;  // window title of the main application; empty until it has been read
    std::string hilfedatei;           // programme folder + "fennow.hlp", set late in the start
};

}  // namespace wendel
