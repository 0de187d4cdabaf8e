#pragma once
// The tables of a database file as virtual tables of SQLite: rows are read from their pages when SQLite asks
// for them, single columns likewise, and the file's indexes serve comparisons and orders. Columns are called
// c0, c1, ... in the order of the table definition; their values come as sql/JetType.h says.

#include <memory>
#include <string>

#include "jet/sql/Functions.h"
#include "jet/sql/JetType.h"
#include "jet/storage/Catalog.h"

struct sqlite3;

namespace wendel::jet {

sql::JetType jetTypeOf(ColumnType type);

// What the module shares with the connection it is registered in. Outlives that connection.
struct ModuleContext {
    File& file;
    sql::FailureSlot& failures;  // takes what a damaged file throws while SQLite runs
    // The definition that the next CREATE VIRTUAL TABLE is made for; the virtual table keeps it.
    std::shared_ptr<const TableDef> definition{};
};

// Registers the module under kTableModule.
void registerTableModule(sqlite3* connection, ModuleContext& context);
inline constexpr const char* kTableModule = "jet";

}  // namespace wendel::jet
