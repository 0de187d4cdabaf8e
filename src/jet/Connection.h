#pragma once
// One open database file with the SQL of its dialect: what the engine objects of the port and jetsql are
// built on. Statements are parsed, translated and run here, each under its lock and as a whole; results come
// cell by cell, typed, without a copy per row.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/PackedRows.h"
#include "jet/sql/JetType.h"
#include "jet/storage/File.h"
#include "jet/storage/TableWriter.h"
#include "platform/ports/Uhr.h"

namespace wendel::jet {

namespace sql {
struct Select;
struct Statement;
}  // namespace sql
class Session;

// A running select. Use: while (query.step()) query.text(0) ... The accessors read the current row and may be
// called where the column's type fits; on Null they give 0 or nothing. A query stays valid when its
// Connection is gone. Views into texts and bytes hold until the next step(). Until it is read to its end or
// gone, it keeps what it reads from being changed in the file.
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

    // Ends the query before its end.
    void stop();

    enum class Storage { Null, Whole, Real, Text, Bytes };
    Storage storage(std::size_t column) const;
    std::int64_t whole(std::size_t column) const;
    double real(std::size_t column) const;
    std::string_view text(std::size_t column) const;
    std::string_view bytes(std::size_t column) const;

    // A cell as it is, and all cells of the row with the row's identity behind them where it has one.
    KeyValue value(std::size_t column) const;
    void pack(PackedRows& rows) const;

    // Where each row is one of a table: that table, and for each column its position there. Null: the rows
    // are those of no single table.
    const std::shared_ptr<const TableDef>& table() const { return table_; }
    const std::vector<std::optional<std::size_t>>& tableColumns() const { return tableColumns_; }

  private:
    friend class Connection;
    struct Statement;
    Query(std::shared_ptr<Session> session, std::unique_ptr<Statement> statement);

    std::shared_ptr<Session> session_;
    std::unique_ptr<Statement> statement_;
    std::vector<Column> columns_;
    std::shared_ptr<const TableDef> table_;
    std::vector<std::optional<std::size_t>> tableColumns_;
};

// Errors of the functions that change something, besides those of statements: 3260 when another process keeps
// writing, 3027 for a file that cannot be written, 3026 for a full disk, those of TableWriter and Schema.
// Such a call leaves nothing behind when it fails.
class Connection {
  public:
    // Throws as File does. uhr answers now() and date(); it outlives the connection.
    Connection(const std::string& nativePath, Uhr& uhr);
    // What was written reaches the file itself here, unless somebody still reads it.
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Parses and starts one select. Sees the file as it is now; columns and tables that another process
    // has added are there; queries that run go on with the file they began with. Throws Fehler with the
    // engine's number, 3219 for a statement that is no select; nothing has been read of the rows then. Throws
    // 3050 when another process keeps the file locked.
    Query query(std::string_view statement);

    // Runs one statement that changes the database and returns how many rows it has inserted, changed or
    // deleted; 0 for those that make or drop tables and indexes. It is durable on return, and other processes
    // see it. Queries that run go on with what they began with. Throws 3065 for a select.
    std::int64_t execute(std::string_view statement);

    // Either: rows for a select, else the number of rows changed.
    struct Outcome {
        std::optional<Query> rows;
        std::int64_t changed = 0;
    };
    Outcome run(std::string_view statement);

    // Single rows, each call a statement of its own that a loss of power in the next moments may undo, but no
    // end of the process. `table` is the definition by which the caller has filled the cells; throws Fehler
    // 3219 when the table has become another one.
    std::int32_t reserveAutonumber(const TableDef& table);
    // With reserveNext the number that the next row will have, reserved in the same breath.
    std::optional<std::int32_t> insertRow(const TableDef& table, std::span<const Cell> cells,
                                          bool reserveNext);
    // asSeen is asked whether the row still holds what the caller has seen there; if not, Fehler 3197: the
    // row's place may be another row's by now.
    using RowTest = std::function<bool(std::span<const Cell> valuesOfAllColumns)>;
    void updateRow(const TableDef& table, RowId row, const RowTest& asSeen,
                   std::span<const std::size_t> columns, std::span<const Cell> cells);

    // Brings what was written into the file itself, where other programs see it, if nobody is reading it.
    void checkpoint();

    // The file of the statements to come, for tests that count what is read and for holding its lock.
    File& file();

  private:
    class WriteLock;
    std::unique_ptr<WriteLock> lockForWriting();
    Query start(const sql::Select& select);
    std::int64_t change(const sql::Statement& statement);
    template <class Work>
    auto withWriter(const TableDef& table, const Work& work);

    Uhr& uhr_;
    std::string path_;
    std::shared_ptr<Session> session_;
};

}  // namespace wendel::jet
