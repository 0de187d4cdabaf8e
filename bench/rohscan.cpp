// Every cell of Sendungen decoded by the storage layer alone, beside native SQLite's step-and-column loop
// over the same rows. Aim: twice SQLite's speed.  rohscan [tvdaten-gross.mdb]

#include "Messung.h"

namespace {

using namespace wendel::jet;

// Something of every cell, so that none can be left out.
std::size_t scanOurs(const std::string& path, std::size_t& rows) {
    Database database(path, Access::kReadOnly);
    const File::Reading reading(database.file());
    const auto table = database.table("Sendungen");
    std::size_t sum = 0;
    std::string text;
    rows = 0;
    for (TableScan scan(database.file(), *table); scan.next(); ++rows) {
        const RowView& row = scan.row();
        for (std::size_t c = 0; c < table->columns.size(); ++c) {
            switch (table->columns[c].type) {
                case ColumnType::kText:
                case ColumnType::kMemo:
                    text.clear();
                    row.appendText(c, text);
                    sum += text.size();
                    break;
                case ColumnType::kBoolean: sum += row.asBool(c) ? 1 : 0; break;
                case ColumnType::kDate: sum += static_cast<std::size_t>(row.asDouble(c)); break;
                default: sum += static_cast<std::size_t>(row.asInteger(c));
            }
        }
    }
    return sum;
}

std::size_t scanSqlite(const std::string& path, const TableDef& table, std::size_t& rows) {
    bench::Sqlite sqlite(path);
    sqlite3_stmt* all = sqlite.prepare("select * from Sendungen");
    std::size_t sum = 0;
    rows = 0;
    for (; sqlite3_step(all) == SQLITE_ROW; ++rows) {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            const int c = static_cast<int>(i);
            switch (table.columns[i].type) {
                case ColumnType::kText:
                case ColumnType::kMemo:
                    sqlite3_column_text(all, c);
                    sum += static_cast<std::size_t>(sqlite3_column_bytes(all, c));
                    break;
                case ColumnType::kBoolean: sum += sqlite3_column_int(all, c) != 0 ? 1 : 0; break;
                case ColumnType::kDate: sum += static_cast<std::size_t>(sqlite3_column_double(all, c)); break;
                default: sum += static_cast<std::size_t>(sqlite3_column_int(all, c));
            }
        }
    }
    return sum;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string path = bench::guidePath(argc, argv);
    const bench::Folder folder;
    Database database(path, Access::kReadOnly);
    {
        bench::Sqlite sqlite(folder.file("nativ.db"));
        bench::copyTable(database, "Sendungen", sqlite);
    }
    const auto table = database.table("Sendungen");
    std::vector<double> ours, theirs;
    std::size_t rows = 0, nativeRows = 0, sum = 0, nativeSum = 0;
    for (int run = 0; run < 12; ++run) {
        ours.push_back(bench::seconds([&] { sum = scanOurs(path, rows); }));
        theirs.push_back(
            bench::seconds([&] { nativeSum = scanSqlite(folder.file("nativ.db"), *table, nativeRows); }));
    }
    bench::require(rows == nativeRows && sum == nativeSum, "the two do not read the same");
    std::printf("%zu rows of %zu columns, every cell decoded; median of %zu:\n", rows, table->columns.size(),
                ours.size());
    bench::report("raw scan", bench::median(ours), bench::median(theirs), "aim 0.5");
    return 0;
}
