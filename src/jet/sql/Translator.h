#pragma once
// Tree of the dialect to SQLite's SQL, with names resolved and types inferred. What the dialect does
// differently is expressed in the SQL itself or in calls of the functions of Functions.h; tables appear under
// the names that the Schema gives them, their columns as c0, c1, ...

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
};

// jetzt is what date() and now() answer. Throws Fehler: 3061 unknown names, 3078 unknown table, 3079
// ambiguous name, 3085 unknown function, 3093, 3096, 3122 misplaced clauses and aggregates, 3464 types that
// do not compare.
Translation translate(const Statement& statement, Schema& schema, Datum jetzt);

// The collation under which SQLite compares texts as the database file does.
inline constexpr const char* kCollation = "JET";

}  // namespace wendel::jet::sql
