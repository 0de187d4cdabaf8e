#pragma once
// Reads all that can be read of a database: for tests on damaged files and for the fuzzer.

#include <cstddef>

#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Table.h"
#include "platform/Fehler.h"

namespace wendel::jet::test {

// What was found, and how many of the parts ended in the error for damaged files; any other exception is
// thrown on. At most `limit` rows of each table and entries of each index.
struct Found {
    std::size_t cells = 0, entries = 0, damaged = 0;
};

inline Found readEverything(Database& database, std::size_t limit = 1000000) {
    Found found;
    const auto guarded = [&found](const auto& part) {
        try {
            part();
        } catch (const Fehler& e) {
            if (e.nummer() != jetfehler::kDamaged) throw;
            ++found.damaged;
        }
    };
    for (const CatalogEntry& entry : database.entries()) {
        guarded([&] {
            const auto table = database.table(entry.name);
            guarded([&] {
                TableScan scan(database.file(), *table);
                for (std::size_t n = 0; n < limit && scan.next(); ++n) {
                    guarded([&] {
                        const RowValues values(scan.row());
                        for (const Cell& cell : values.cells())
                            found.cells += std::holds_alternative<std::monostate>(cell) ? 0 : 1;
                    });
                }
            });
            for (const Index& index : table->indexes) {
                for (const auto way : {IndexCursor::Direction::kForward, IndexCursor::Direction::kBackward}) {
                    guarded([&] {
                        IndexCursor cursor(database.file(), *table, index);
                        RowView row;
                        cursor.seek({}, way);
                        for (std::size_t n = 0; n < limit && cursor.next(); ++n) {
                            ++found.entries;
                            guarded([&] { fetchRow(database.file(), *table, cursor.rowId(), row); });
                        }
                    });
                }
            }
        });
    }
    return found;
}

}  // namespace wendel::jet::test
