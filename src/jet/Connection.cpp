#include "jet/Connection.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

#include "jet/ChangeRun.h"
#include "jet/RowReading.h"
#include "jet/Session.h"
#include "jet/sql/Errors.h"
#include "jet/sql/Parser.h"
#include "jet/storage/Table.h"

namespace wendel::jet {
namespace {

bool sameColumns(const TableDef& a, const TableDef& b) {
    const auto same = [](const Column& x, const Column& y) {
        return x.name == y.name && x.type == y.type && x.number == y.number;
    };
    return a.page == b.page &&
           std::equal(a.columns.begin(), a.columns.end(), b.columns.begin(), b.columns.end(), same);
}

}  // namespace

// --- queries ---

struct Query::Statement {
    explicit Statement(Session& session) : reading(session) {}
    Session::Reading reading;
    PreparedStatement prepared;
};

Query::Query(std::shared_ptr<Session> session, std::unique_ptr<Statement> statement)
    : session_(std::move(session)), statement_(std::move(statement)) {}
Query::~Query() = default;
Query::Query(Query&&) noexcept = default;

Query& Query::operator=(Query&& other) noexcept {
    statement_ = std::move(other.statement_);  // before the session that it runs in
    session_ = std::move(other.session_);
    columns_ = std::move(other.columns_);
    table_ = std::move(other.table_);
    tableColumns_ = std::move(other.tableColumns_);
    return *this;
}

bool Query::step() {
    if (!statement_) {
        return false;
    }
    try {
        if (session_->step(statement_->prepared.get())) {
            return true;
        }
    } catch (const Fehler&) {
        stop();
        throw;
    }
    stop();
    return false;
}

// The file is of no use any more, and others may wait for its last user.
void Query::stop() {
    statement_.reset();
    session_.reset();
}

Query::Storage Query::storage(std::size_t column) const {
    switch (sqlite3_column_type(statement_->prepared.get(), static_cast<int>(column))) {
        case SQLITE_INTEGER: return Storage::Whole;
        case SQLITE_FLOAT: return Storage::Real;
        case SQLITE_TEXT: return Storage::Text;
        case SQLITE_BLOB: return Storage::Bytes;
        default: return Storage::Null;
    }
}

std::int64_t Query::whole(std::size_t column) const {
    return sqlite3_column_int64(statement_->prepared.get(), static_cast<int>(column));
}
double Query::real(std::size_t column) const {
    return sqlite3_column_double(statement_->prepared.get(), static_cast<int>(column));
}
std::string_view Query::text(std::size_t column) const {
    const KeyValue cell = value(column);
    const auto* text = std::get_if<std::string_view>(&cell);
    return text ? *text : std::string_view();
}
std::string_view Query::bytes(std::size_t column) const {
    const KeyValue cell = value(column);
    const auto* bytes = std::get_if<KeyBytes>(&cell);
    return bytes ? bytes->bytes : std::string_view();
}
KeyValue Query::value(std::size_t column) const { return cellValue(statement_->prepared.get(), column); }

void Query::pack(PackedRows& rows) const {
    packRow(statement_->prepared.get(), columns_.size() + (table_ ? 1 : 0), rows);
}

// --- writing ---

// The session that a statement writes in, and the lock; without commit() nothing has happened.
class Connection::WriteLock {
  public:
    explicit WriteLock(std::shared_ptr<Session> session)
        : session_(std::move(session)), writing_(std::in_place, session_->file()) {}
    ~WriteLock() {
        writing_.reset();
        if (!committed_) {
            session_->forgetWriters();
        }
    }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

    Session& session() { return *session_; }
    void commit(Durability durability) {
        writing_->commit(durability);
        committed_ = true;
    }

  private:
    std::shared_ptr<Session> session_;
    std::optional<File::Writing> writing_;
    bool committed_ = false;
};

// Queries that run keep their session: what they read must not change under them. A new one is opened under
// the lock that its first statement takes over, so there is nothing that it has not seen.
std::unique_ptr<Connection::WriteLock> Connection::lockForWriting() {
    if (!session_->isRead()) {
        auto lock = std::make_unique<WriteLock>(session_);
        if (!session_->outdated()) {
            return lock;
        }
    }
    session_ = std::make_shared<Session>(path_, File::Opening::kWriting);
    return std::make_unique<WriteLock>(session_);
}

std::int64_t Connection::change(const sql::Statement& statement) {
    const auto lock = lockForWriting();
    const std::int64_t changed = runChange(lock->session(), statement, uhr_.jetzt());
    lock->commit(Durability::kNow);
    return changed;
}

template <class Work>
auto Connection::withWriter(const TableDef& table, const Work& work) {
    const auto lock = lockForWriting();
    const auto current = lock->session().database().table(table.name);
    if (!current || !sameColumns(*current, table)) {
        throw sql::sqlError(sql::kInvalidOperation);
    }
    TableWriter& writer = lock->session().writer(current);
    const auto result = work(writer);
    lock->commit(Durability::kSoon);
    return result;
}

std::int32_t Connection::reserveAutonumber(const TableDef& table) {
    return withWriter(table, [](TableWriter& writer) { return writer.reserveAutonumber(); });
}

std::optional<std::int32_t> Connection::insertRow(const TableDef& table, std::span<const Cell> cells,
                                                  bool reserveNext) {
    return withWriter(table, [&](TableWriter& writer) {
        writer.insert(cells);
        return reserveNext ? std::optional(writer.reserveAutonumber()) : std::nullopt;
    });
}

void Connection::updateRow(const TableDef& table, RowId row, const RowTest& asSeen,
                           std::span<const std::size_t> columns, std::span<const Cell> cells) {
    withWriter(table, [&](TableWriter& writer) {
        RowView now;
        if (!fetchRow(file(), table, row, now) || !asSeen(RowValues(now).cells())) {
            throw sql::sqlError(sql::kRecordChanged);
        }
        now = RowView();
        writer.update(row, columns, cells);
        return row;
    });
}

// --- the connection ---

Connection::Connection(const std::string& nativePath, Uhr& uhr)
    : uhr_(uhr), path_(nativePath), session_(std::make_shared<Session>(nativePath)) {}
Connection::~Connection() { checkpoint(); }

File& Connection::file() { return session_->file(); }

void Connection::checkpoint() {
    if (!session_->file().journalEmpty()) {
        session_->file().checkpoint();
    }
}

// A query that still runs keeps the old session, and its file.
Query Connection::start(const sql::Select& select) {
    auto statement = std::make_unique<Query::Statement>(*session_);
    if (session_->outdated()) {
        statement.reset();
        session_ = std::make_shared<Session>(path_, File::Opening::kReading);
        statement = std::make_unique<Query::Statement>(*session_);
    }
    try {
        const sql::Translation translation = sql::translate(select, *session_, uhr_.jetzt());
        statement->prepared = session_->prepare(translation.sql);
        Query query(session_, std::move(statement));
        for (const sql::ResultColumn& column : translation.columns) {
            query.columns_.push_back({column.name, column.type});
        }
        if (!translation.table.empty()) {
            query.table_ = session_->database().table(translation.table);
            query.tableColumns_ = translation.tableColumns;
        }
        return query;
    } catch (const Fehler& failure) {
        throw session_->seenWhole(failure);
    }
}

Query Connection::query(std::string_view text) {
    const sql::Statement statement = sql::parse(text);
    const auto* select = std::get_if<sql::SelectPtr>(&statement.node);
    if (!select) {
        throw sql::sqlError(sql::kInvalidOperation);
    }
    return start(**select);
}

std::int64_t Connection::execute(std::string_view text) {
    const sql::Statement statement = sql::parse(text);
    if (std::holds_alternative<sql::SelectPtr>(statement.node)) {
        throw sql::sqlError(sql::kSelectNotExecutable);
    }
    return change(statement);
}

Connection::Outcome Connection::run(std::string_view text) {
    const sql::Statement statement = sql::parse(text);
    if (const auto* select = std::get_if<sql::SelectPtr>(&statement.node)) {
        return {start(**select), 0};
    }
    return {std::nullopt, change(statement)};
}

}  // namespace wendel::jet
