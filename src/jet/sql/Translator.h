#pragma once
// Tree of the dialect to SQLite's SQL, with names resolved and types inferred. What the dialect does
// differently is expressed in the SQL itself or in calls of the functions of Functions.h; tables appear under
// the names that the Schema gives them, their columns as c0, c1, ...

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/Ast.h"
#include "jet/sql/JetType.h"

namespace wendel::jet::sql {

struct SchemaColumn {
    std::string name;
    JetType type = JetType::Null;
};
struct SchemaTable {
    std::string name;     // as in the database file
    std::string sqlName;  // as in SQLite, unquoted
    std::vector<SchemaColumn> columns;
};

// The tables of one database.
class Schema {
  public:
    virtual ~Schema() = default;
    // By name without regard to case; nullptr when there is none. Stays valid while the translation runs.
    virtual const SchemaTable* table(std::string_view name) = 0;
};

// One column of the result. Values come as JetType.h says (DaySum and Single as REAL).
struct ResultColumn {
    std::string name;
    JetType type = JetType::Null;
};
struct Translation {
    std::string sql;
    std::vector<ResultColumn> columns;
    // Where the rows are those of one table: its name, and for each column of the result its position there
    // (none for an expression). The SQL has one more column then, the row's identity.
    std::string table;
    std::vector<std::optional<std::size_t>> tableColumns;
};

// What an Insert, Update or Delete does: the rows of `sql`, read to the end before the first one is applied.
struct Change {
    enum class Kind { Insert, Update, Delete };
    // The part of each row that is for one table: from column `first` on, for Update and Delete the row's
    // identity (Null: nothing to do), then one value for each of `columns` (positions in the table).
    struct Target {
        std::string table;
        std::size_t first = 0;
        std::vector<std::size_t> columns;
    };
    Kind kind = Kind::Insert;
    std::string sql;
    std::vector<JetType> types;  // of the columns of sql; Long for an identity
    std::vector<Target> targets;
};

// jetzt is what date() and now() answer. All throw Fehler: 3061 unknown names, 3078 unknown table, 3079
// ambiguous name, 3085 unknown function, 3093, 3096, 3122 misplaced clauses and aggregates, 3464 types that
// do not compare.
Translation translate(const Select& select, Schema& schema, Datum jetzt);
// Also: 3063 a column twice, 3073 rows that are none of a table, 3127 unknown column to insert into, 3128
// rows of which table to delete, 3192 unknown table to insert into, 3346 as many columns as values.
Change translate(const Insert& insert, Schema& schema, Datum jetzt);
Change translate(const Update& update, Schema& schema, Datum jetzt);
Change translate(const Delete& deletion, Schema& schema, Datum jetzt);

// The collation under which SQLite compares texts as the database file does.
inline constexpr const char* kCollation = "JET";

}  // namespace wendel::jet::sql
