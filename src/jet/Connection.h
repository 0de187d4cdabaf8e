#pragma once
// One open database file with the SQL of its dialect: what the engine objects of the port and jetsql are
// built on. Statements are parsed, translated and run here; results come cell by cell, typed, without a copy
// per row.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/JetType.h"
#include "jet/storage/File.h"
#include "platform/ports/Uhr.h"

namespace wendel::jet {

namespace sql {
struct Statement;
struct Translation;
}  // namespace sql
class Session;

// A running select. Use: while (query.step()) query.text(0) ... The accessors read the current row and may be
// called where the column's type fits; on Null they give 0 or nothing. A query stays valid when its
// Connection is gone. Views into texts and bytes hold until the next step().
class Query {
  public:
    struct Column {
        std::string name;
        sql::JetType type;  // Null where only the value itself tells
    };

    ~Query();
    Query(Query&&) noexcept;
    Query& operator=(Query&&) noexcept;

    const std::vector<Column>& columns() const { return columns_; }

    // To the next row; false behind the last one. Throws Fehler, after which the query is at its end: 3049
    // for a damaged file, 3050 where somebody else has been writing it meanwhile.
    bool step();

    enum class Storage { Null, Whole, Real, Text, Bytes };
    Storage storage(std::size_t column) const;
    std::int64_t whole(std::size_t column) const;
    double real(std::size_t column) const;
    std::string_view text(std::size_t column) const;
    std::string_view bytes(std::size_t column) const;

  private:
    friend class Connection;
    struct Statement;
    Query(std::shared_ptr<Session> session, std::unique_ptr<Statement> statement,
          std::vector<Column> columns);

    std::shared_ptr<Session> session_;
    std::unique_ptr<Statement> statement_;
    std::vector<Column> columns_;
};

class Connection {
  public:
    // Throws as File does. uhr answers now() and date(); it outlives the connection.
    Connection(const std::string& nativePath, Uhr& uhr);
    ~Connection();

    // Parses and starts one statement. Sees the file as it is now; columns and tables that another process
    // has added are there; queries that run go on with the file they began with. Throws Fehler with the
    // engine's number; nothing has been read of the rows then.
    Query query(std::string_view statement);

    // For tests that count what a statement reads.
    File& file();

  private:
    sql::Translation translated(const sql::Statement& statement);

    Uhr& uhr_;
    std::string path_;
    std::shared_ptr<Session> session_;
};

}  // namespace wendel::jet
