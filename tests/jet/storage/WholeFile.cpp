#include "jet/storage/WholeFile.h"

#include <array>
#include <cstdio>

#include "jet/storage/IndexCheck.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Table.h"
#include "jet/storage/TestFiles.h"
#include "platform/Text.h"

namespace wendel::jet::test {
namespace {

struct CellText {
    std::string operator()(std::monostate) const { return "Null"; }
    std::string operator()(std::int64_t v) const { return std::to_string(v); }
    std::string operator()(double v) const {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%.17g", v);
        return text.data();
    }
    std::string operator()(std::string_view v) const { return "'" + std::string(v) + "'"; }
    std::string operator()(KeyBytes v) const { return hex(v.bytes); }
    std::string operator()(KeyCurrency v) const { return std::to_string(v.tenThousandths) + "e-4"; }
    std::string operator()(const Decimal& v) const { return v.toText(); }
    std::string operator()(const Guid& v) const { return guidText(v); }
};

template <class Action>
void forEachTable(const std::string& path, Action action) {
    Database database(path, Access::kReadOnly);
    for (const CatalogEntry& entry : database.entries()) {
        if (!entry.system) action(database.file(), *loadTableDef(database.file(), entry.page, entry.name));
    }
}

}  // namespace

std::string shown(const Cell& cell) { return std::visit(CellText(), cell); }

std::map<std::string, Rows> allRows(const std::string& path, bool longValues) {
    std::map<std::string, Rows> tables;
    forEachTable(path, [&](File& file, const TableDef& table) {
        std::vector<std::size_t> columns;
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (longValues || !table.columns[i].isLong()) columns.push_back(i);
        }
        Rows& rows = tables[table.name];
        RowValues values;
        for (TableScan scan(file, table); scan.next();) {
            values.assign(scan.row(), columns);
            std::string text;
            for (const std::size_t column : columns)
                text += shown(values.cells()[column]) + "|";
            rows.insert(std::move(text));
        }
    });
    return tables;
}

std::set<std::string> checkedIndexes(const std::string& path) {
    std::set<std::string> indexes;
    forEachTable(path, [&](File& file, const TableDef& table) {
        for (const Index& index : table.indexes) {
            checkIndex(file, table, index);
            std::string text = table.name + "." + index.name + "(";
            for (const IndexColumn& column : index.columns)
                text += table.columns[column.column].name + (column.descending ? "-" : "+");
            text += ")";
            if (index.primary) text += " primary";
            if (index.unique) text += " unique";
            if (index.required) text += " required";
            if (index.ignoreNulls) text += " ignoreNulls";
            indexes.insert(std::move(text));
        }
    });
    return indexes;
}

std::string outputOf(const std::string& command) {
    std::string output;
    // mdbtools take names and print texts in the characters of the locale.
    FILE* pipe = ::popen(("export LC_ALL=C.UTF-8; " + command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) return output;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        output.append(buffer, n);
    ::pclose(pipe);
    return output;
}

std::vector<std::vector<std::string>> exported(const std::string& path, const std::string& table) {
    const std::string behindCell = "<~|", behindRow = "<~~\n";  // no text has these
    const std::vector<std::string> rows =
        Split(outputOf("mdb-export -H -Q -b hex -d '" + behindCell + "' -R '" + behindRow +
                       "' -T '%Y-%m-%d %H:%M:%S' '" + path + "' '" + table + "'"),
              behindRow);
    std::vector<std::vector<std::string>> cells;
    for (std::size_t i = 0; i + 1 < rows.size(); ++i)
        cells.push_back(Split(rows[i], behindCell));
    return cells;
}

}  // namespace wendel::jet::test
