#pragma once
// The dialect's functions for an SQLite connection, under the names that the translator writes. They are
// deterministic and read no clock: now() and date() come as values in the statement.

#include <optional>

#include "platform/Fehler.h"

struct sqlite3;

namespace wendel::jet::sql {

// A failure that SQLite could report only as a text; whoever ran the statement takes it from here.
struct FailureSlot {
    std::optional<Fehler> failure;
};

// The slot outlives the connection.
void registerFunctions(sqlite3* connection, FailureSlot& slot);

}  // namespace wendel::jet::sql
