#pragma once
// Examines one index from end to end: its tree, its pages and whether it names the table's rows. For tests,
// repair and whoever doubts a file; ordinary reading and writing check only what they touch.

#include "jet/storage/TableDef.h"

namespace wendel::jet {

// Throws Fehler 3049 saying what is wrong: order of the entries, separators, depth and levels, links, shared
// prefix, free space, pages missing from the index's map, rows without their entry, entries without a row,
// keys twice in a unique index. Good are also the habits of other writers: nodes without a tail, level 0
// everywhere, empty leaves, further pages in the map, and keys of texts whose codes are not known.
void checkIndex(File& file, const TableDef& table, const Index& index);

// The same without a look at the rows.
void checkIndexTree(File& file, const TableDef& table, const Index& index);

}  // namespace wendel::jet
