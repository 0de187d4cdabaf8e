#pragma once
// Random changes of files that may be damaged: for the test and the fuzzer.

#include <set>
#include <vector>

#include "jet/proof/Values.h"
#include "jet/storage/Bytes.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/Table.h"
#include "jet/storage/TableWriter.h"
#include "jet/storage/UsageMap.h"
#include "platform/Fehler.h"

namespace wendel::jet::proof {

// What the engine may answer to a change that it cannot make.
inline bool isRefusal(int number) {
    using namespace jetfehler;
    static const std::set<int> kRefusals = {
        kDamaged,     kDuplicateKey, kReadOnly,        kNullInPrimaryKey, kTextTooLong,   kRecordDeleted,
        kRowTooLarge, kNullInIndex,  kNumericOverflow, kWrongValue,       kUnknownFormat, kDiskFull};
    return kRefusals.contains(number);
}

inline void changeOneRow(File& file, const std::shared_ptr<const TableDef>& table, Random& random) {
    File::Writing writing(file);
    TableWriter writer(file, table);
    std::vector<Value> values;
    std::vector<Cell> cells;
    for (const Column& column : table->columns)
        values.push_back(randomValue(random, column, file.version(), true));
    for (const Value& value : values)
        cells.push_back(value.cell());
    std::vector<RowId> ids;
    if (!oneIn(random, 3)) {
        for (TableScan scan(file, *table); ids.size() < 300 && scan.next();)
            ids.push_back(scan.row().id());
    }
    if (ids.empty()) {
        writer.insert(cells);
    } else if (const RowId id = ids[below(random, ids.size())]; oneIn(random, 2)) {
        const std::size_t column = below(random, cells.size());
        writer.update(id, std::span(&column, 1), std::span(&cells[column], 1));
    } else {
        writer.remove(id);
    }
    writing.commit(Durability::kSoon);
}

// Some statements on one table; true when at least one was done. What is no refusal is thrown on.
inline bool changeAtRandom(Database& database, const std::shared_ptr<const TableDef>& table, Random& random,
                           int statements) {
    bool done = false;
    for (int n = 0; n < statements; ++n) {
        try {
            changeOneRow(database.file(), table, random);
            done = true;
        } catch (const Fehler& failure) {
            if (!isRefusal(failure.nummer())) throw;
        }
    }
    return done;
}

// The pages that hold this table and nothing else.
inline std::set<std::uint32_t> pagesOf(File& file, const TableDef& table) {
    std::set<std::uint32_t> pages;
    const auto addMap = [&](RowPointer map) {
        if (map.page == 0) return;
        for (const std::uint32_t page : readUsageMap(file, map))
            pages.insert(page);
    };
    addMap(table.ownedPages);
    for (const Index& index : table.indexes)
        addMap(index.pages);
    for (const Column& column : table.columns)
        if (column.isLong()) addMap(column.longValuePages);
    for (std::uint32_t page = table.page; page != 0; page = loadU32(&(*file.page(page))[kDefinitionNext]))
        pages.insert(page);
    return pages;
}

}  // namespace wendel::jet::proof
