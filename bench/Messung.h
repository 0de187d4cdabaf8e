#pragma once
// What the measurements of the engine share: native SQLite beside ours, the same data in both, times and
// ratios.

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "jet/storage/Catalog.h"
#include "jet/storage/Table.h"
#include "platform/Datum.h"

namespace bench {

inline void require(bool holds, const std::string& what) {
    if (!holds) throw std::runtime_error(what);
}

inline double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// A folder that goes at the end; WENDEL_BENCH_ORDNER chooses where (default: the folder for temporary files).
class Folder {
  public:
    Folder() {
        const char* where = std::getenv("WENDEL_BENCH_ORDNER");
        std::string pattern = (where != nullptr ? where : std::filesystem::temp_directory_path().string()) +
                              "/wendel-bench-XXXXXX";
        require(::mkdtemp(pattern.data()) != nullptr, "no folder " + pattern);
        path_ = pattern;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    std::string file(const std::string& name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

// A database of native SQLite with statements run to their end.
class Sqlite {
  public:
    explicit Sqlite(const std::string& path) { check(sqlite3_open(path.c_str(), &db_)); }
    ~Sqlite() {
        for (sqlite3_stmt* statement : statements_)
            sqlite3_finalize(statement);
        sqlite3_close(db_);
    }
    Sqlite(const Sqlite&) = delete;

    void check(int code) const {
        require(code == SQLITE_OK || code == SQLITE_DONE || code == SQLITE_ROW, sqlite3_errmsg(db_));
    }
    void run(const std::string& sql) { check(sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr)); }
    sqlite3_stmt* prepare(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr));
        statements_.push_back(statement);
        return statement;
    }
    void step(sqlite3_stmt* statement) {
        check(sqlite3_step(statement));
        sqlite3_reset(statement);
    }
    // Runs a statement and reads every column of every row; returns the number of rows.
    int readAll(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr));
        int rows = 0, code;
        for (; (code = sqlite3_step(statement)) == SQLITE_ROW; ++rows)
            for (int c = 0; c < sqlite3_column_count(statement); ++c)
                sqlite3_column_text(statement, c);
        check(code);
        sqlite3_finalize(statement);
        return rows;
    }

  private:
    sqlite3* db_ = nullptr;
    std::vector<sqlite3_stmt*> statements_;
};

inline const char* sqliteType(wendel::jet::ColumnType type) {
    using wendel::jet::ColumnType;
    switch (type) {
        case ColumnType::kText:
        case ColumnType::kMemo: return "TEXT COLLATE NOCASE";
        case ColumnType::kDate:
        case ColumnType::kDouble: return "REAL";
        default: return "INTEGER";
    }
}

// The table with its columns and indexes; the counting column becomes SQLite's own key.
inline void createTable(Sqlite& sqlite, const wendel::jet::TableDef& table) {
    std::string columns, counting;
    for (const auto& column : table.columns) {
        if (column.autonumber) counting = column.name;
        columns += (columns.empty() ? "\"" : ",\"") + column.name + "\" " +
                   (column.autonumber ? "INTEGER PRIMARY KEY AUTOINCREMENT" : sqliteType(column.type));
    }
    sqlite.run("create table \"" + table.name + "\" (" + columns + ")");
    for (const auto& index : table.indexes) {
        std::string list;
        for (const auto& part : index.columns)
            list += (list.empty() ? "\"" : ",\"") + table.columns[part.column].name + "\"" +
                    (part.descending ? " desc" : "");
        if (list == "\"" + counting + "\"") continue;
        sqlite.run("create " + std::string(index.unique ? "unique " : "") + "index \"" + table.name + "_" +
                   index.name + "\" on \"" + table.name + "\" (" + list + ")");
    }
}

inline void bind(sqlite3_stmt* statement, int place, const wendel::jet::RowView& row, std::size_t column,
                 std::string& buffer) {
    using wendel::jet::ColumnType;
    if (row.isNull(column)) {
        sqlite3_bind_null(statement, place);
        return;
    }
    switch (row.table().columns[column].type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            buffer.clear();
            row.appendText(column, buffer);
            sqlite3_bind_text(statement, place, buffer.data(), static_cast<int>(buffer.size()),
                              SQLITE_TRANSIENT);
            break;
        case ColumnType::kBoolean: sqlite3_bind_int(statement, place, row.asBool(column) ? -1 : 0); break;
        case ColumnType::kDate:
        case ColumnType::kDouble: sqlite3_bind_double(statement, place, row.asDouble(column)); break;
        default: sqlite3_bind_int(statement, place, row.asInteger(column));
    }
}

inline std::string insertStatement(const wendel::jet::TableDef& table) {
    std::string marks = "?";
    for (std::size_t c = 1; c < table.columns.size(); ++c)
        marks += ",?";
    return "insert into \"" + table.name + "\" values (" + marks + ")";
}

// All rows of the table into a native table made like it.
inline void copyTable(wendel::jet::Database& from, const std::string& name, Sqlite& to) {
    const auto table = from.table(name);
    createTable(to, *table);
    sqlite3_stmt* insert = to.prepare(insertStatement(*table));
    to.run("begin");
    std::string buffer;
    for (wendel::jet::TableScan scan(from.file(), *table); scan.next();) {
        for (std::size_t c = 0; c < table->columns.size(); ++c)
            bind(insert, static_cast<int>(c) + 1, scan.row(), c, buffer);
        to.step(insert);
    }
    to.run("commit");
}

// A statement of the dialect with its dates as the day numbers that they mean.
inline std::string datesAsNumbers(const std::string& sql) {
    using namespace wendel;
    static const std::regex kDate("#(\\d+)/(\\d+)/(\\d+)(?: (\\d+):(\\d+):(\\d+))?#");
    std::string out;
    std::sregex_iterator it(sql.begin(), sql.end(), kDate), none;
    std::size_t behind = 0;
    for (; it != none; ++it) {
        const auto part = [&](std::size_t n) { return (*it)[n].matched ? std::stoi((*it)[n].str()) : 0; };
        char day[40];
        std::snprintf(
            day, sizeof day, "%.10f",
            (DateSerial(part(3), part(1), part(2)) + TimeSerial(part(4), part(5), part(6))).tageszahl());
        out += sql.substr(behind, static_cast<std::size_t>(it->position()) - behind) + day;
        behind = static_cast<std::size_t>(it->position() + it->length());
    }
    return out + sql.substr(behind);
}

inline std::string guidePath(int argc, char** argv) {
    const std::string path =
        argc > 1 ? argv[1] : std::string(WENDEL_SOURCE_DIR) + "/../shared/data/tvdaten-gross.mdb";
    if (!std::filesystem::exists(path)) {
        std::printf("skipped: no %s\n", path.c_str());
        std::exit(0);
    }
    return path;
}

inline void report(const char* what, double ours, double theirs, const char* aim) {
    std::printf("  %-44s %9.1f ms   SQLite %9.1f ms   ratio %5.2f   (%s)\n", what, ours * 1000, theirs * 1000,
                ours / theirs, aim);
}

}  // namespace bench
