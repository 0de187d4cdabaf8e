#include "jet/storage/Catalog.h"

#include <optional>
#include <utility>

#include "jet/storage/Table.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

// Where the catalog's own table keeps what is needed of it.
struct CatalogColumns {
    std::size_t id, name, type, flags;
};

CatalogColumns catalogColumns(const File& file, const TableDef& objects) {
    const auto need = [&](std::string_view name, ColumnType type) {
        const std::optional<std::size_t> column = objects.findColumn(name);
        if (!column || objects.columns[*column].type != type) file.throwDamaged("Katalog");
        return *column;
    };
    return {need("Id", ColumnType::kLong), need("Name", ColumnType::kText),
            need("Type", ColumnType::kInteger), need("Flags", ColumnType::kLong)};
}

}  // namespace

Database::Database(const std::string& path, Access access, std::size_t cacheBytes, File::Opening opening)
    : file_(path, access, cacheBytes, opening == File::Opening::kDone ? File::Opening::kReading : opening) {
    std::optional<File::Reading> reading;
    if (opening == File::Opening::kDone) reading.emplace(file_);
    readCatalog();
}

void Database::readCatalog() {
    const std::shared_ptr<const TableDef> objects = loadTableDef(file_, kCatalogPage, "MSysObjects");
    const CatalogColumns columns = catalogColumns(file_, *objects);
    for (TableScan scan(file_, *objects); scan.next();) {
        const RowView& row = scan.row();
        if (row.asInteger(columns.type) != catalog::kTypeTable) continue;
        CatalogEntry entry;
        row.appendText(columns.name, entry.name);
        entry.page = static_cast<std::uint32_t>(row.asInteger(columns.id)) & catalog::kPageOfId;
        entry.system =
            (static_cast<std::uint32_t>(row.asInteger(columns.flags)) & catalog::kSystemFlags) != 0;
        byFoldedName_.emplace(LCase(entry.name), entries_.size());
        entries_.push_back(std::move(entry));
    }
}

std::shared_ptr<const TableDef> Database::table(std::string_view name) {
    const auto found = byFoldedName_.find(LCase(name));
    if (found == byFoldedName_.end()) return nullptr;
    const CatalogEntry& entry = entries_[found->second];
    std::shared_ptr<const TableDef>& definition = definitions_[entry.page];
    if (!definition) definition = loadTableDef(file_, entry.page, entry.name);
    return definition;
}

}  // namespace wendel::jet
