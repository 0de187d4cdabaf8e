#pragma once
// Runs the statements that change the database on a session that has the write lock: SQLite finds the rows
// and the new values, the storage layer applies them. Locking and committing are the caller's.

#include <cstdint>

#include "jet/Session.h"
#include "jet/sql/Ast.h"
#include "platform/Datum.h"

namespace wendel::jet {

// How many rows were inserted, changed or deleted; 0 for definitions. jetzt is what date() and now() answer.
// Throws Fehler as the translation, TableWriter and Schema do; what was done until then is to be undone.
std::int64_t runChange(Session& session, const sql::Statement& statement, Datum jetzt);

}  // namespace wendel::jet
