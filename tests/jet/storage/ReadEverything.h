#pragma once
// Reads all that can be read of a database: for tests on damaged files and for the fuzzer.

#include <cstddef>
#include <string>

#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Table.h"
#include "platform/Fehler.h"

namespace wendel::jet::test {

// A cell as a value to look for; texts and bytes live in the buffer, which must be empty.
inline KeyValue keyValue(const RowView& row, std::size_t column, std::string& buffer) {
    if (row.isNull(column)) return std::monostate();
    switch (row.table().columns[column].type) {
        case ColumnType::kBoolean: return std::int64_t{row.asBool(column) ? -1 : 0};
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong: return std::int64_t{row.asInteger(column)};
        case ColumnType::kCurrency: return KeyCurrency{row.asCurrency(column)};
        case ColumnType::kDecimal: return row.asDecimal(column);
        case ColumnType::kGuid: return row.asGuid(column);
        case ColumnType::kText:
        case ColumnType::kMemo: row.appendText(column, buffer); return std::string_view(buffer);
        case ColumnType::kUnknown: return std::monostate();
        case ColumnType::kOle:
        case ColumnType::kBinary: row.appendBytes(column, buffer); return KeyBytes{buffer};
        default: return row.asDouble(column);
    }
}

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
                        for (std::size_t c = 0; c < table->columns.size(); ++c) {
                            std::string buffer;
                            const KeyValue value = keyValue(scan.row(), c, buffer);
                            found.cells += std::holds_alternative<std::monostate>(value) ? 0 : 1;
                        }
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
