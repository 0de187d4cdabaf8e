// Any text as a statement, those that change the database included: lexer, parser, translator, and SQLite's
// preparation and first rows against a small schema. Errors
// are fine; crashes, hangs and SQL that SQLite cannot read are not.

#include <sqlite3.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <type_traits>

#include "jet/sql/Functions.h"
#include "jet/sql/Parser.h"
#include "jet/sql/Translator.h"
#include "platform/Fehler.h"

namespace {

using namespace wendel::jet::sql;

class TwoTables : public Schema {
  public:
    const SchemaTable* table(std::string_view name) override {
        return name == "S" || name == "s" ? &s_ : name == "T" || name == "t" ? &t_ : nullptr;
    }

  private:
    SchemaTable s_{"S",
                   "T:s",
                   {{"Pos", JetType::Long},
                    {"Titel", JetType::Text},
                    {"Beginn", JetType::Date},
                    {"Geld", JetType::Currency},
                    {"Film", JetType::Boolean}}};
    SchemaTable t_{"T",
                   "T:t",
                   {{"Pos", JetType::Long},
                    {"Bild", JetType::Ole},
                    {"Wert", JetType::Decimal},
                    {"Kennung", JetType::Guid}}};
};

sqlite3* connection() {
    static FailureSlot slot;
    static sqlite3* const made = [] {
        sqlite3* c = nullptr;
        sqlite3_open(":memory:", &c);
        registerFunctions(c, slot);
        sqlite3_create_collation(c, kCollation, SQLITE_UTF8, nullptr,
                                 [](void*, int, const void*, int, const void*) { return 0; });
        sqlite3_exec(c,
                     "create table \"T:s\"(c0 integer,c1 text collate JET,c2 real,c3 integer,c4 integer);"
                     "create table \"T:t\"(c0 integer,c1 blob,c2 text,c3 text);"
                     "insert into \"T:s\" values(1,'Tatort',41267.84375,12345,-1);"
                     "insert into \"T:t\" values(1,x'00','1.50','{00000000-0000-0000-0000-000000000000}');",
                     nullptr, nullptr, nullptr);
        // An endless join is no fault of the translation.
        sqlite3_progress_handler(
            c, 200000, [](void*) { return 1; }, nullptr);
        return c;
    }();
    return made;
}

// What SQLite refuses for its size is reported as too complex; anything else is wrong SQL of ours.
bool refusedForSize(std::string_view message) {
    for (const std::string_view part : {"too many", "too large", "overflow", "at most"}) {
        if (message.find(part) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

// The SQL of a statement that has some; definitions have none.
std::string sqlOf(const Statement& statement, Schema& schema) {
    const wendel::Datum now = wendel::DateSerial(2012, 12, 24);
    return std::visit(
        [&](const auto& node) -> std::string {
            using Node = std::decay_t<decltype(node)>;
            if constexpr (std::is_same_v<Node, SelectPtr>) {
                return translate(*node, schema, now).sql;
            } else if constexpr (requires { translate(node, schema, now); }) {
                const Change change = translate(node, schema, now);
                for (const Change::Target& target : change.targets) {
                    if (target.first + target.columns.size() > change.types.size()) {
                        std::abort();
                    }
                }
                return change.sql;
            } else {
                return {};
            }
        },
        statement.node);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TwoTables schema;
    std::string sql;
    try {
        sql = sqlOf(parse({reinterpret_cast<const char*>(data), size}), schema);
    } catch (const wendel::Fehler&) {
        return 0;
    }
    sqlite3_stmt* statement = nullptr;
    const int code =
        sqlite3_prepare_v2(connection(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
    if (code != SQLITE_OK && !refusedForSize(sqlite3_errmsg(connection()))) {
        std::cerr << sql << "\n" << sqlite3_errmsg(connection()) << "\n";
        std::abort();
    }
    for (int rows = 0; rows < 10 && sqlite3_step(statement) == SQLITE_ROW; ++rows) {
    }
    sqlite3_finalize(statement);
    return 0;
}
