#include "jet/storage/CatalogWriter.h"

#include <array>
#include <ctime>
#include <utility>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/Table.h"
#include "jet/storage/TextKeys.h"

namespace wendel::jet {
namespace {

constexpr std::uint32_t kAllRights = 0xFFFFF;

std::string maskedId(std::uint8_t first, std::uint8_t second, std::uint16_t mask) {
    return {static_cast<char>(first ^ (mask & 0xFF)), static_cast<char>(second ^ (mask >> 8))};
}

std::size_t need(const File& file, const TableDef& table, std::string_view column) {
    const std::optional<std::size_t> found = table.findColumn(column);
    if (!found) file.throwDamaged("Katalog");
    return *found;
}

Cell number(std::uint32_t value) { return std::int64_t{static_cast<std::int32_t>(value)}; }

// The rows whose column holds this number.
std::vector<RowId> rowsWith(File& file, const TableDef& table, std::string_view column, std::uint32_t value) {
    const std::size_t position = need(file, table, column);
    std::vector<RowId> rows;
    for (TableScan scan(file, table); scan.next();) {
        if (static_cast<std::uint32_t>(scan.row().asInteger(position)) == value)
            rows.push_back(scan.row().id());
    }
    return rows;
}

}  // namespace

SecurityIds::SecurityIds(std::uint16_t mask)
    : engine(maskedId(2, 3, mask)),
      creator(maskedId(2, 4, mask)),
      users(maskedId(2, 1, mask)),
      admin(maskedId(3, 1, mask)) {}

std::uint16_t newSecurityMask(Version version) { return version == Version::kJet4 ? 0x8A67 : 0; }

CatalogWriter::CatalogWriter(File& file, std::shared_ptr<PageAllocator> allocator)
    : file_(file),
      objects_(loadTableDef(file, kCatalogPage, "MSysObjects")),
      access_(loadTableDef(file, catalog::kAccessPage, "MSysACEs")),
      objectWriter_(file, objects_, allocator),
      accessWriter_(file, access_, allocator),
      ids_(findMask()) {}

// The container "Tables" belongs to the engine, whose id is known.
std::uint16_t CatalogWriter::findMask() {
    const std::size_t owner = need(file_, *objects_, "Owner");
    for (const RowId id : rowsWith(file_, *objects_, "Id", catalog::kTablesId)) {
        RowView row;
        std::string bytes;
        if (fetchRow(file_, *objects_, id, row)) row.appendBytes(owner, bytes);
        if (bytes.size() != 2) continue;
        const SecurityIds plain(0);
        return static_cast<std::uint16_t>(static_cast<std::uint8_t>(bytes[0] ^ plain.engine[0]) |
                                          static_cast<std::uint8_t>(bytes[1] ^ plain.engine[1]) << 8);
    }
    return newSecurityMask(file_.version());
}

bool CatalogWriter::contains(std::string_view name) {
    const std::size_t parentColumn = need(file_, *objects_, "ParentId");
    const std::size_t nameColumn = need(file_, *objects_, "Name");
    const TextOrder order = objects_->columns[nameColumn].textOrder;
    for (TableScan scan(file_, *objects_); scan.next();) {
        const RowView& row = scan.row();
        if (static_cast<std::uint32_t>(row.asInteger(parentColumn)) != catalog::kTablesId) continue;
        std::string other;
        row.appendText(nameColumn, other);
        if (compareText(order, other, name) == 0) return true;
    }
    return false;
}

void CatalogWriter::add(const CatalogObject& object) {
    std::vector<Cell> cells(objects_->columns.size());
    const auto set = [&](std::string_view column, Cell value) {
        cells[need(file_, *objects_, column)] = value;
    };
    set("Id", number(object.id));
    set("ParentId", number(object.parent));
    set("Name", object.name);
    set("Type", std::int64_t{object.type});
    set("DateCreate", object.created);
    set("DateUpdate", object.created);
    set("Owner", KeyBytes{object.owner});
    set("Flags", number(object.flags));
    objectWriter_.insert(cells);
}

void CatalogWriter::allow(std::uint32_t objectId, std::string_view securityId, std::uint32_t rights,
                          bool inheritable) {
    std::vector<Cell> cells(access_->columns.size());
    const auto set = [&](std::string_view column, Cell value) {
        cells[need(file_, *access_, column)] = value;
    };
    set("ObjectId", number(objectId));
    set("SID", KeyBytes{securityId});
    set("ACM", number(rights));
    set("FInheritable", std::int64_t{inheritable ? -1 : 0});
    accessWriter_.insert(cells);
}

void CatalogWriter::addTable(std::uint32_t page, std::string_view name, double created) {
    add({page, catalog::kTablesId, name, catalog::kTypeTable, ids_.admin, 0, created});
}

void CatalogWriter::allowUsers(std::uint32_t objectId) {
    allow(objectId, ids_.admin, kAllRights, false);
    allow(objectId, ids_.users, kAllRights, false);
}

void CatalogWriter::remove(std::uint32_t objectId) {
    for (const RowId row : rowsWith(file_, *objects_, "Id", objectId))
        objectWriter_.remove(row);
    for (const RowId row : rowsWith(file_, *access_, "ObjectId", objectId))
        accessWriter_.remove(row);
}

double currentDay() {
    constexpr double kUnixEpoch = 25569;  // 1 January 1970
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return kUnixEpoch + static_cast<double>(::timegm(&local)) / 86400.0;
}

}  // namespace wendel::jet
