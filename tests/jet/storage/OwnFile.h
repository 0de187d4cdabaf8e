#pragma once
// Files of the tests' own: one statement on a file, a file with one table, and columns of every type that the
// version has.

#include <string>
#include <vector>

#include "jet/storage/Schema.h"

namespace wendel::jet::test {

template <class Step>
void change(const std::string& path, Step step) {
    Database database(path, Access::kReadWrite);
    File::Writing writing(database.file());
    step(database);
    writing.commit(Durability::kSoon);
}

inline void createFileWithTable(const std::string& path, Version version, const std::string& name,
                                const std::vector<ColumnSpec>& columns,
                                const std::vector<IndexSpec>& indexes = {}) {
    createDatabaseFile(path, version);
    change(path, [&](Database& database) { createTable(database, name, columns, indexes); });
}

inline std::vector<ColumnSpec> everyType(Version version) {
    std::vector<ColumnSpec> columns = {
        {.name = "ID", .type = ColumnType::kLong, .autonumber = true},
        {.name = "Ja", .type = ColumnType::kBoolean},
        {.name = "By", .type = ColumnType::kByte},
        {.name = "Ga", .type = ColumnType::kInteger},
        {.name = "La", .type = ColumnType::kLong},
        {.name = "Geld", .type = ColumnType::kCurrency},
        {.name = "Da", .type = ColumnType::kDate},
        {.name = "Ei", .type = ColumnType::kSingle},
        {.name = "Do", .type = ColumnType::kDouble},
        {.name = "Tx", .type = ColumnType::kText, .size = 255, .compressible = true},
        {.name = "Tk", .type = ColumnType::kText, .size = 20},
        {.name = "Bin", .type = ColumnType::kBinary, .size = 60},
        {.name = "Me", .type = ColumnType::kMemo, .compressible = true},
        {.name = "Mu", .type = ColumnType::kMemo},
        {.name = "Ole", .type = ColumnType::kOle},
        {.name = "Gu", .type = ColumnType::kGuid},
        {.name = "Datum", .type = ColumnType::kDate}};
    if (version == Version::kJet4)
        columns.push_back({.name = "Dez", .type = ColumnType::kDecimal, .precision = 18, .scale = 4});
    return columns;
}

}  // namespace wendel::jet::test
