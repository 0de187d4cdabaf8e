#pragma once
// An open file and an SQLite connection that knows the tables asked for so far: what a Connection exchanges
// for a new one when another process has written. Locks and their times are the Connection's.

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "jet/TableModule.h"
#include "jet/sql/Functions.h"
#include "jet/sql/Translator.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/TableWriter.h"
#include "platform/Fehler.h"

struct sqlite3;
struct sqlite3_stmt;

namespace wendel::jet {

struct StatementCloser {
    void operator()(sqlite3_stmt* statement) const;
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, StatementCloser>;

class Session : public sql::Schema {
  public:
    // Throws as Database does.
    explicit Session(const std::string& path, File::Opening opening = File::Opening::kDone);
    ~Session() override;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // While one lives, a query reads this session's file as it is.
    class Reading {
      public:
        explicit Reading(Session& session) : session_(session), reading_(session.file()) {
            ++session_.readers_;
        }
        ~Reading() { --session_.readers_; }
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

      private:
        Session& session_;
        File::Reading reading_;
    };

    Database& database() { return database_; }
    File& file() { return database_.file(); }

    const sql::SchemaTable* table(std::string_view name) override;

    // Throws Fehler for SQL that SQLite cannot run.
    PreparedStatement prepare(const std::string& sql);
    // To the next row; false behind the last one. Throws the Fehler that made the statement fail.
    bool step(sqlite3_stmt* statement);

    // Queries that are not read to the end: their file must not change under them.
    bool isRead() const { return readers_ > 0; }
    // Whether the next statement needs a new session: another process, or a definition of our own.
    bool outdated() { return definitionsChanged_ || file().changed(); }
    void noteChangedDefinitions() { definitionsChanged_ = true; }

    // For rows of this table, within a Writing. Stays the same for the session's life. Throws Fehler 3027 for
    // the tables of the system: the catalog changes with definitions only.
    TableWriter& writer(const std::shared_ptr<const TableDef>& table);
    // Belongs behind each Writing that was not committed.
    void forgetWriters();

    // Pages that do not fit together while a program writes them that knows nothing of our locks are no
    // damage, but a conflict that has gone at the next try.
    Fehler seenWhole(const Fehler& failure) const;

  private:
    void open();
    sql::SchemaTable attach(const std::shared_ptr<const TableDef>& definition, const std::string& key);
    Fehler failure();

    Database database_;
    TextOrder order_;
    sql::FailureSlot failures_;
    ModuleContext module_;
    sqlite3* connection_ = nullptr;
    std::map<std::string, sql::SchemaTable> tables_;
    std::shared_ptr<PageAllocator> allocator_;
    std::map<std::uint32_t, std::unique_ptr<TableWriter>> writers_;
    int readers_ = 0;
    bool definitionsChanged_ = false;
};

}  // namespace wendel::jet
