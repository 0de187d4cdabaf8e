#include "jet/Session.h"

#include <sqlite3.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "jet/sql/Errors.h"
#include "jet/sql/Value.h"
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

void StatementCloser::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Session::Session(const std::string& path, File::Opening opening)
    : database_(path, Access::kReadWrite, kPageCacheBytes, opening),
      order_(database_.file().version() == Version::kJet3 ? TextOrder::kGeneralJet3
                                                          : TextOrder::kGeneralJet4),
      module_{database_.file(), failures_} {
    open();
}

Session::~Session() { sqlite3_close(connection_); }

void Session::open() {
    if (sqlite3_open_v2(":memory:", &connection_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK) {
        sqlite3_close(connection_);
        throw std::bad_alloc();
    }
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_LOOKASIDE, nullptr, kLookasideSlotBytes, kLookasideSlots);
    sqlite3_exec(connection_, "PRAGMA temp_store=MEMORY; PRAGMA cache_size=-64;", nullptr, nullptr, nullptr);
    sqlite3_create_collation_v2(connection_, sql::kCollation, SQLITE_UTF8, &order_, compareTexts, nullptr);
    sql::registerFunctions(connection_, failures_);
    registerTableModule(connection_, module_);
}

const sql::SchemaTable* Session::table(std::string_view name) {
    const std::string key = LCase(name);
    if (const auto known = tables_.find(key); known != tables_.end()) {
        return &known->second;
    }
    const auto definition = database_.table(name);
    return definition ? &(tables_[key] = attach(definition, key)) : nullptr;
}

sql::SchemaTable Session::attach(const std::shared_ptr<const TableDef>& definition, const std::string& key) {
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

PreparedStatement Session::prepare(const std::string& sql) {
    sqlite3_stmt* handle = nullptr;
    if (sqlite3_prepare_v2(connection_, sql.data(), static_cast<int>(sql.size()), &handle, nullptr) !=
        SQLITE_OK) {
        throw failure();
    }
    return PreparedStatement(handle);
}

bool Session::step(sqlite3_stmt* statement) {
    const int code = sqlite3_step(statement);
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        throw failure();
    }
    return code == SQLITE_ROW;
}

TableWriter& Session::writer(const std::shared_ptr<const TableDef>& table) {
    const auto& entries = database_.entries();
    const bool system = std::any_of(entries.begin(), entries.end(), [&](const CatalogEntry& entry) {
        return entry.system && entry.page == table->page;
    });
    if (system) {
        throw sql::sqlError(sql::kReadOnly);
    }
    if (!allocator_) {
        allocator_ = std::make_shared<PageAllocator>(file());
    }
    auto& writer = writers_[table->page];
    if (!writer) {
        writer = std::make_unique<TableWriter>(file(), table, allocator_);
    }
    return *writer;
}

void Session::forgetWriters() {
    for (const auto& [page, writer] : writers_) {
        writer->forget();
    }
}

Fehler Session::seenWhole(const Fehler& failure) const {
    const bool torn = failure.nummer() == jetfehler::kDamaged && database_.file().changed();
    return torn ? sql::sqlError(sql::kLocked) : failure;
}

// What the functions or the file threw while SQLite ran, else what SQLite says.
Fehler Session::failure() {
    if (failures_.failure) {
        return seenWhole(*std::exchange(failures_.failure, std::nullopt));
    }
    const std::string text = sqlite3_errmsg(connection_);
    const bool tooLarge =
        text.find("too many") != std::string::npos || text.find("too large") != std::string::npos ||
        text.find("overflow") != std::string::npos || text.find("at most") != std::string::npos;
    return tooLarge ? sql::sqlError(sql::kTooComplex) : sql::sqlError(sql::kExpressionSyntax, text);
}

}  // namespace wendel::jet
