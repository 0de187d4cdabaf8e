#include "jet/storage/IndexBuild.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "jet/storage/IndexWriter.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Table.h"

namespace wendel::jet {

IndexFaults buildIndex(File& file, PageAllocator& allocator, const TableDef& table, const Index& index) {
    std::vector<std::size_t> columns;
    for (const IndexColumn& column : index.columns)
        columns.push_back(column.column);

    IndexFaults faults;
    std::vector<std::pair<std::string, RowId>> entries;
    std::string allNullKey;
    RowValues values;
    for (TableScan scan(file, table); scan.next();) {
        values.assign(scan.row(), columns);
        std::optional<std::string> key = rowKey(table, index, values.cells());
        faults.nulls = faults.nulls || (index.required && hasNull(table, index, values.cells()));
        if (!key) continue;
        if (isAllNull(table, index, values.cells())) allNullKey = *key;
        entries.emplace_back(*std::move(key), scan.row().id());
    }
    std::sort(entries.begin(), entries.end());
    const auto same = [&](const auto& a, const auto& b) {
        return a.first == b.first && a.first != allNullKey;
    };
    faults.duplicates =
        index.unique && std::adjacent_find(entries.begin(), entries.end(), same) != entries.end();
    IndexWriter(file, allocator, table, index).build(std::move(entries));
    return faults;
}

}  // namespace wendel::jet
