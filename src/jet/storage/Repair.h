#pragma once
// Repairing: a damaged database rebuilt from what can still be read of it. See Repair.cpp for what counts as
// readable.

#include <string>

namespace wendel::jet {

// Puts a sound file in place of the damaged one (native UTF-8 path), at once and only when it is complete;
// when anything fails the file stays as it was. When something of the old file could not be read, that file
// is kept beside as "<path>.defekt", ".defekt2" and so on. A sound file keeps all its rows.
// Rows that a unique index does not allow stay: the index becomes one that allows them.
// Needs memory for the identities of all rows and for all keys of one index.
// Throws Fehler 3050 when anybody has the file open, 3027 when it is encoded, 3051 when the file or its
// folder must not be written, 3343 when it is no database at all, 3026 when the disk is full.
void repairDatabaseFile(const std::string& nativePath);

}  // namespace wendel::jet
