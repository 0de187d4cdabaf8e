#pragma once
// Reads all that can be read of a database: for tests on damaged files and for the fuzzer.

#include <cstddef>
#include <string>

#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "jet/storage/Table.h"
#include "platform/Fehler.h"

namespace wendel::jet::test {

inline std::size_t readCells(const RowView& row, std::string& buffer) {
    std::size_t present = 0;
    for (std::size_t c = 0; c < row.table().columns.size(); ++c) {
        const Column& column = row.table().columns[c];
        buffer.clear();
        if (!row.isNull(c)) ++present;
        switch (column.type) {
            case ColumnType::kBoolean: row.asBool(c); break;
            case ColumnType::kByte:
            case ColumnType::kInteger:
            case ColumnType::kLong: row.asInteger(c); break;
            case ColumnType::kCurrency: row.asCurrency(c); break;
            case ColumnType::kSingle:
            case ColumnType::kDouble:
            case ColumnType::kDate: row.asDouble(c); break;
            case ColumnType::kDecimal: buffer = row.asDecimal(c).toText(); break;
            case ColumnType::kGuid: row.asGuid(c); break;
            case ColumnType::kText:
            case ColumnType::kMemo: row.appendText(c, buffer); break;
            case ColumnType::kBinary:
            case ColumnType::kOle: row.appendBytes(c, buffer); break;
            case ColumnType::kUnknown: break;
        }
    }
    return present;
}

// What was found, and how many of the parts ended in the error for damaged files; any other exception is
// thrown on. At most `limit` rows of each table and entries of each index.
struct Found {
    std::size_t rows = 0, cells = 0, entries = 0, damaged = 0;
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
    std::string buffer;
    for (const CatalogEntry& entry : database.entries()) {
        guarded([&] {
            const auto table = database.table(entry.name);
            guarded([&] {
                TableScan scan(database.file(), *table);
                for (std::size_t n = 0; n < limit && scan.next(); ++n) {
                    ++found.rows;
                    guarded([&] { found.cells += readCells(scan.row(), buffer); });
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
