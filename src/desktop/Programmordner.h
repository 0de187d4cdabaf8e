#pragma once
// Where the program's files live: the programme folder and the files that are shipped with the program.
// Asked once by each composition root; the logic gets the result as a value.

#include <optional>
#include <string>

namespace wendel {

// Native folder of the running executable, without a closing "/"; "" when /proc is missing.
std::string eigenerProgrammordner();

// A native path from the root on; a relative one counts from the current folder.
std::string absoluterPfad(const std::string& nativ);

// What the rules below look at; programmlage() fills it from the process.
struct Programmlage {
    std::string wendelOrdner;         // $WENDEL_ORDNER
    std::string xdgDataHome;          // $XDG_DATA_HOME; counts only when absolute
    std::string home;                 // $HOME, else from the user database
    std::string programmdateiOrdner;  // native folder of the executable
};
Programmlage programmlage();

// The programme folder as the logic wants it: absolute, "\" between folders and at the end. $WENDEL_ORDNER if
// set; else the executable's folder when that holds "fennow.cfg" (any case); else "wendel" in the user's data
// folder. Created when missing; nothing when that fails.
std::optional<std::string> programmordner(const Programmlage& lage = programmlage());
// The same place, whether it is there or not; nothing is created.
std::string programmordnerpfad(const Programmlage& lage = programmlage());

// A shipped file (sound, picture) by its name: in the programme folder (logic form), else in ../share/wendel
// seen from the executable, which is <prefix>/share/wendel for an installed program and build/share/wendel
// for one in build/bin. Logic form; "" when there is none.
std::string mitgelieferteDatei(const std::string& programmordner, const std::string& name,
                               const Programmlage& lage = programmlage());

// ${XDG_CONFIG_HOME:-~/.config}, native, without a closing "/".
std::string konfigurationsordner();

}  // namespace wendel
