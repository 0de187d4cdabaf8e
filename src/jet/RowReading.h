#pragma once
// Cells of SQLite's current row as values of the storage layer.

#include "jet/PackedRows.h"

struct sqlite3_stmt;

namespace wendel::jet {

// Texts and bytes lie with SQLite until the statement's next step.
KeyValue cellValue(sqlite3_stmt* statement, std::size_t column);
// The first `count` cells.
void packRow(sqlite3_stmt* statement, std::size_t count, PackedRows& rows);

}  // namespace wendel::jet
