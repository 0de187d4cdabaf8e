#include "jet/RowReading.h"

#include <sqlite3.h>

namespace wendel::jet {
namespace {

std::string_view view(const void* data, int length) {
    return data ? std::string_view(static_cast<const char*>(data), static_cast<std::size_t>(length))
                : std::string_view();
}

}  // namespace

KeyValue cellValue(sqlite3_stmt* statement, std::size_t position) {
    const int column = static_cast<int>(position);
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER: return static_cast<std::int64_t>(sqlite3_column_int64(statement, column));
        case SQLITE_FLOAT: return sqlite3_column_double(statement, column);
        case SQLITE_TEXT: {
            const void* text = sqlite3_column_text(statement, column);
            return view(text, sqlite3_column_bytes(statement, column));
        }
        case SQLITE_BLOB: {
            const void* bytes = sqlite3_column_blob(statement, column);
            return KeyBytes{view(bytes, sqlite3_column_bytes(statement, column))};
        }
        default: return std::monostate();
    }
}

void packRow(sqlite3_stmt* statement, std::size_t count, PackedRows& rows) {
    for (std::size_t i = 0; i < count; ++i) {
        const KeyValue value = cellValue(statement, i);
        if (const auto* whole = std::get_if<std::int64_t>(&value)) {
            rows.addWhole(*whole);
        } else if (const auto* real = std::get_if<double>(&value)) {
            rows.addReal(*real);
        } else if (const auto* text = std::get_if<std::string_view>(&value)) {
            rows.addText(*text);
        } else if (const auto* bytes = std::get_if<KeyBytes>(&value)) {
            rows.addBytes(bytes->bytes);
        } else {
            rows.addNull();
        }
    }
}

}  // namespace wendel::jet
