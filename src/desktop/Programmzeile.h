#pragma once
// Starts a program from one text, as a shell or a script names it: program and arguments. For files that are
// opened by their kind, and for the codes of a file start, see LinuxDateistarter.

#include <string>

namespace wendel {

// Starts the program detached from us: own session, nobody waits for it, it outlives this process. It stands
// in quotes where its path holds blanks; without quotes the shortest beginning that ends at a blank and names
// a file is taken. "\" in it counts as "/" unless the file exists as written; a bare name is looked for in
// PATH, then in the current folder. The arguments are passed as written. False when nothing was started: no
// such file, no permission, no executable format.
[[nodiscard]] bool starteProgrammzeile(const std::string& zeile);

// The file that starteProgrammzeile() would start, native; "" when it finds none.
std::string programmDerZeile(const std::string& zeile);

}  // namespace wendel
