#pragma once
// Compacting: a database copied into a new file without what has been deleted. Leaves exchanging the files to
// the caller.

#include <string>

namespace wendel::jet {

// Copies tables, indexes, relations, queries and properties; rows come in the order of the primary key.
// Version, sort order, password, code page and the state of the counting columns stay. Both paths are native
// UTF-8. The destination appears under its name when it is whole and on the disk; when anything fails nothing
// of it is left. Needs memory for the identities of all rows and for all keys of one index. Design objects of
// the Access program (forms and the like) are not copied. Throws Fehler 3204 when the destination exists,
// 3027 when the source is encoded or has an index in a sort order whose keys are not known, 3049 when it is
// damaged, 3050 when a checkpoint of another process keeps it busy, and what opening a file throws.
void compactDatabaseFile(const std::string& source, const std::string& destination);

}  // namespace wendel::jet
