#include "jet/storage/Compact.h"

#include <algorithm>

#include "jet/storage/Catalog.h"
#include "jet/storage/CatalogWriter.h"
#include "jet/storage/NewFile.h"
#include "jet/storage/Rebuild.h"
#include "jet/storage/Table.h"
#include "jet/storage/WriteErrors.h"

namespace wendel::jet {
namespace {

constexpr std::size_t kCacheBytes = 8 << 20;

RebuildTable wholeTable(File& file, std::shared_ptr<const TableDef> definition) {
    RebuildTable table{std::move(definition), {}};
    for (TableScan scan(file, *table.definition); scan.next();)
        table.rows.push_back(scan.row().id());
    return table;
}

bool canBeCopied(const TableDef& table) {
    return std::none_of(table.columns.begin(), table.columns.end(),
                        [](const Column& column) { return column.type == ColumnType::kUnknown; });
}

void requireKnownKeys(const TableDef& table) {
    for (const Index& index : table.indexes) {
        if (!index.searchable) throwWriteError(jetfehler::kReadOnly);
    }
}

RebuildSource everythingIn(Database& database) {
    File& file = database.file();
    const auto system = [&](std::uint32_t page) { return wholeTable(file, loadTableDef(file, page, {})); };
    RebuildSource source{file,
                         system(kCatalogPage),
                         system(catalog::kAccessPage),
                         system(catalog::kQueriesPage),
                         system(catalog::kRelationsPage),
                         {}};
    for (const CatalogEntry& entry : database.entries()) {
        if (entry.page <= catalog::kRelationsPage) continue;
        std::shared_ptr<const TableDef> table = loadTableDef(file, entry.page, entry.name);
        // Columns of unknown types are those of the tables in which the Access program keeps its forms.
        if (!canBeCopied(*table)) {
            if (entry.system) continue;
            throwWriteError(jetfehler::kReadOnly);
        }
        requireKnownKeys(*table);
        source.tables.push_back(wholeTable(file, std::move(table)));
    }
    return source;
}

}  // namespace

void compactDatabaseFile(const std::string& sourcePath, const std::string& destination) {
    refuseExisting(destination);
    Database database(sourcePath, Access::kReadOnly, kCacheBytes, File::Opening::kReading);
    File& file = database.file();
    const File::Reading reading(file);
    if (file.encoded()) throwWriteError(jetfehler::kReadOnly);
    const RebuildSource source = everythingIn(database);

    NewFile fresh(destination);
    writeEmptyDatabase(fresh.path(), *file.page(0));
    {
        File target(fresh.path(), Access::kReadWrite, kCacheBytes);
        Rebuild(source, target, Rebuild::Damage::kRefuse).run();
        finish(target, destination);
    }
    fresh.giveName();
}

}  // namespace wendel::jet
