#include "jet/Connection.h"

#include <sqlite3.h>

#include <map>
#include <utility>

#include "jet/TableModule.h"
#include "jet/sql/Errors.h"
#include "jet/sql/Functions.h"
#include "jet/sql/Parser.h"
#include "jet/sql/Translator.h"
#include "jet/sql/Value.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/TextKeys.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

// The program is resident and asks rarely: small buffers, given back with the connection.
constexpr int kLookasideSlotBytes = 256;
constexpr int kLookasideSlots = 64;
constexpr std::size_t kPageCacheBytes = 1 << 20;

int compareTexts(void* order, int aLength, const void* a, int bLength, const void* b) {
    return compareText(*static_cast<const TextOrder*>(order),
                       {static_cast<const char*>(a), static_cast<std::size_t>(aLength)},
                       {static_cast<const char*>(b), static_cast<std::size_t>(bLength)});
}

}  // namespace

// The file, and an SQLite connection that knows the tables asked for so far.
class Session : public sql::Schema {
  public:
    explicit Session(const std::string& path)
        : database_(path, Access::kReadWrite, kPageCacheBytes),
          order_(database_.file().version() == Version::kJet3 ? TextOrder::kGeneralJet3
                                                              : TextOrder::kGeneralJet4),
          module_{database_.file(), failures_} {
        open();
    }
    ~Session() override { sqlite3_close(connection_); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    sqlite3* connection() { return connection_; }
    Database& database() { return database_; }
    sql::FailureSlot& failures() { return failures_; }

    const sql::SchemaTable* table(std::string_view name) override {
        const std::string key = LCase(name);
        if (const auto known = tables_.find(key); known != tables_.end()) {
            return &known->second;
        }
        const auto definition = database_.table(name);
        return definition ? &(tables_[key] = attach(definition, key)) : nullptr;
    }

    // Pages that do not fit together while somebody else writes them are no damage, but a conflict that has
    // gone at the next try.
    Fehler seenWhole(const Fehler& failure) const {
        const bool torn = failure.nummer() == jetfehler::kDamaged && database_.file().changed();
        return torn ? sql::sqlError(sql::kLocked) : failure;
    }

    // The Fehler for a failed SQLite call: what the functions or the file threw, else what SQLite says.
    Fehler failure() {
        if (failures_.failure) {
            return seenWhole(*std::exchange(failures_.failure, std::nullopt));
        }
        const std::string text = sqlite3_errmsg(connection_);
        const bool tooLarge =
            text.find("too many") != std::string::npos || text.find("too large") != std::string::npos ||
            text.find("overflow") != std::string::npos || text.find("at most") != std::string::npos;
        return tooLarge ? sql::sqlError(sql::kTooComplex) : sql::sqlError(sql::kExpressionSyntax, text);
    }

  private:
    void open() {
        if (sqlite3_open_v2(":memory:", &connection_,
                            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                            nullptr) != SQLITE_OK) {
            sqlite3_close(connection_);
            throw std::bad_alloc();
        }
        sqlite3_db_config(connection_, SQLITE_DBCONFIG_LOOKASIDE, nullptr, kLookasideSlotBytes,
                          kLookasideSlots);
        sqlite3_exec(connection_, "PRAGMA temp_store=MEMORY; PRAGMA cache_size=-64;", nullptr, nullptr,
                     nullptr);
        sqlite3_create_collation_v2(connection_, sql::kCollation, SQLITE_UTF8, &order_, compareTexts,
                                    nullptr);
        sql::registerFunctions(connection_, failures_);
        registerTableModule(connection_, module_);
    }

    sql::SchemaTable attach(const std::shared_ptr<const TableDef>& definition, const std::string& key) {
        sql::SchemaTable table{definition->name, "T:" + key, {}};
        for (const jet::Column& column : definition->columns) {
            table.columns.push_back({column.name, jetTypeOf(column.type)});
        }
        module_.definition = definition;
        const std::string sql =
            "CREATE VIRTUAL TABLE temp." + sql::quotedName(table.sqlName) + " USING " + kTableModule;
        const int code = sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr);
        module_.definition.reset();
        if (code != SQLITE_OK) {
            throw failure();
        }
        return table;
    }

    Database database_;
    TextOrder order_;
    sql::FailureSlot failures_;
    ModuleContext module_;
    sqlite3* connection_ = nullptr;
    std::map<std::string, sql::SchemaTable> tables_;
};

struct Query::Statement {
    explicit Statement(sqlite3_stmt* h) : handle(h) {}
    ~Statement() { sqlite3_finalize(handle); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    sqlite3_stmt* handle;
};

Query::Query(std::shared_ptr<Session> session, std::unique_ptr<Statement> statement,
             std::vector<Column> columns)
    : session_(std::move(session)), statement_(std::move(statement)), columns_(std::move(columns)) {}
Query::~Query() = default;
Query::Query(Query&&) noexcept = default;

Query& Query::operator=(Query&& other) noexcept {
    statement_ = std::move(other.statement_);  // before the session that it runs in
    session_ = std::move(other.session_);
    columns_ = std::move(other.columns_);
    return *this;
}

bool Query::step() {
    if (!statement_) {
        return false;
    }
    const int code = sqlite3_step(statement_->handle);
    if (code == SQLITE_ROW) {
        return true;
    }
    if (code != SQLITE_DONE) {
        const Fehler failure = session_->failure();
        statement_.reset();
        throw failure;
    }
    statement_.reset();
    return false;
}

Query::Storage Query::storage(std::size_t column) const {
    switch (sqlite3_column_type(statement_->handle, static_cast<int>(column))) {
        case SQLITE_INTEGER: return Storage::Whole;
        case SQLITE_FLOAT: return Storage::Real;
        case SQLITE_TEXT: return Storage::Text;
        case SQLITE_BLOB: return Storage::Bytes;
        default: return Storage::Null;
    }
}

std::int64_t Query::whole(std::size_t column) const {
    return sqlite3_column_int64(statement_->handle, static_cast<int>(column));
}
double Query::real(std::size_t column) const {
    return sqlite3_column_double(statement_->handle, static_cast<int>(column));
}
std::string_view Query::text(std::size_t column) const {
    const auto* data =
        reinterpret_cast<const char*>(sqlite3_column_text(statement_->handle, static_cast<int>(column)));
    return data ? std::string_view(data, static_cast<std::size_t>(sqlite3_column_bytes(
                                             statement_->handle, static_cast<int>(column))))
                : std::string_view();
}
std::string_view Query::bytes(std::size_t column) const {
    const auto* data =
        static_cast<const char*>(sqlite3_column_blob(statement_->handle, static_cast<int>(column)));
    return data ? std::string_view(data, static_cast<std::size_t>(sqlite3_column_bytes(
                                             statement_->handle, static_cast<int>(column))))
                : std::string_view();
}

Connection::Connection(const std::string& nativePath, Uhr& uhr)
    : uhr_(uhr), path_(nativePath), session_(std::make_shared<Session>(nativePath)) {}
Connection::~Connection() = default;

File& Connection::file() { return session_->database().file(); }

sql::Translation Connection::translated(const sql::Statement& statement) {
    try {
        return sql::translate(statement, *session_, uhr_.jetzt());
    } catch (const Fehler& failure) {
        throw session_->seenWhole(failure);
    }
}

Query Connection::query(std::string_view text) {
    const sql::Statement statement = sql::parse(text);
    if (session_->database().file().changed()) {
        // Tables may have other columns now. A query that still runs keeps the old session, and its file.
        session_ = std::make_shared<Session>(path_);
    }
    const sql::Translation translation = translated(statement);
    sqlite3_stmt* handle = nullptr;
    if (sqlite3_prepare_v2(session_->connection(), translation.sql.data(),
                           static_cast<int>(translation.sql.size()), &handle, nullptr) != SQLITE_OK) {
        throw session_->failure();
    }
    std::vector<Query::Column> columns;
    for (const sql::ResultColumn& column : translation.columns) {
        columns.push_back({column.name, column.type});
    }
    return Query(session_, std::make_unique<Query::Statement>(handle), std::move(columns));
}

}  // namespace wendel::jet
