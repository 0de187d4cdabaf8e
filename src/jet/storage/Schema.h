#pragma once
// What a database consists of: makes new files, tables and indexes and drops them again. Leaves rows to
// TableWriter and the bytes of definitions to TableDefWriter. The SQL layer calls it for Create and Drop.

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "jet/storage/Catalog.h"

namespace wendel::jet {

struct ColumnSpec {
    std::string name;
    ColumnType type = ColumnType::kLong;
    std::uint16_t size = 0;     // characters of a Text, bytes of a Binary; other types have their own
    bool autonumber = false;    // Long or GUID
    bool compressible = false;  // Text and Memo in Jet 4
    std::uint8_t precision = 0, scale = 0;  // Decimal
};

struct IndexSpec {
    std::string name;
    std::vector<std::pair<std::string, bool /*descending*/>> columns;
    bool unique = false;
    bool primary = false;  // also makes it unique and required
    bool required = false;
    bool ignoreNulls = false;
};

// Makes a new database without user tables; path is native UTF-8. The file appears under its name when it is
// whole and on the disk. Throws Fehler 3204 when there is a file of this name, 3044 when the folder is
// missing, 3026 when the disk is full.
void createDatabaseFile(const std::string& nativePath, Version version);

// The functions below need a File::Writing on database.file() around them, which the caller commits. They
// leave half a change when they throw, so the caller rolls back then. What `database` knows of the tables is
// out of date afterwards: open it anew.

// Throws Fehler 3010 when something of this name exists, 3125 for a name that is not allowed, 3126 for one
// with brackets, 3190 for too many or too wide columns, 3191 for a column name that comes twice, 3259 for a
// type the file's version does not have; and what createIndex throws.
void createTable(Database& database, const std::string& name, std::span<const ColumnSpec> columns,
                 std::span<const IndexSpec> indexes);

// Indexes the rows that are there. Throws Fehler 3371 when there is no such table, 3284 when it has an index
// of this name, 3283 when it has a primary key already, 3409 for unknown or repeated columns, 3277 for more
// than ten, 3259 for a type that cannot be indexed, 3626 for too many indexes, 3022 when the rows are not
// unique, 3058 and 3314 when they have Nulls that a primary key or a required index must not have.
void createIndex(Database& database, const std::string& table, const IndexSpec& index);

// Frees all pages of the table. Throws Fehler 3376 when there is no such table, 3281 when it takes part in a
// relation, 3112 for a system table.
void dropTable(Database& database, const std::string& name);

// Throws Fehler 3376 when there is no such table, 3372 when it has no such index, 3281 when a relation needs
// it.
void dropIndex(Database& database, const std::string& table, const std::string& index);

}  // namespace wendel::jet
