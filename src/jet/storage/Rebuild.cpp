#include "jet/storage/Rebuild.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/CatalogWriter.h"
#include "jet/storage/CellEncoder.h"
#include "jet/storage/NewFile.h"
#include "jet/storage/Table.h"
#include "jet/storage/TableBuilder.h"
#include "jet/storage/TableWriter.h"
#include "jet/storage/WriteErrors.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

// Rows between two commits, and between two checkpoints: the journal stays small.
constexpr std::size_t kBatchRows = 500, kCheckpointRows = 20000;

// Documents of the database itself (its summary and the like) and users; other negative types are forms,
// reports and the like, whose contents lie in tables that only the Access program understands.
constexpr std::int32_t kTypeDocument = -32757, kTypeUser = -32758;

// Errors of the place where the new file is made; no row is to blame.
bool isEnvironment(int number) {
    return number == jetfehler::kDiskFull || number == jetfehler::kCannotLock ||
           number == jetfehler::kNoAccess || number == jetfehler::kReadOnly ||
           number == jetfehler::kLockedByUser;
}

std::uint32_t asId(const Cell& cell) {
    const auto* number = std::get_if<std::int64_t>(&cell);
    return number == nullptr ? 0 : static_cast<std::uint32_t>(*number);
}

Cell idCell(std::uint32_t id) { return std::int64_t{static_cast<std::int32_t>(id)}; }

std::vector<std::size_t> columnsOf(const Index& index) {
    std::vector<std::size_t> columns;
    for (const IndexColumn& column : index.columns)
        columns.push_back(column.column);
    return columns;
}

// All numbers in a column of a system table.
std::set<std::uint32_t> idsIn(File& file, std::uint32_t page, std::string_view column) {
    const std::shared_ptr<const TableDef> table = loadTableDef(file, page, {});
    const std::size_t position = table->findColumn(column).value();
    std::set<std::uint32_t> ids;
    for (TableScan scan(file, *table); scan.next();)
        ids.insert(static_cast<std::uint32_t>(scan.row().asInteger(position)));
    return ids;
}

// The cells of one table's row in the order of another table with columns of the same names and types.
std::vector<Cell> arranged(const TableDef& from, std::span<const Cell> cells, const TableDef& to) {
    std::vector<Cell> result(to.columns.size());
    for (std::size_t i = 0; i < to.columns.size(); ++i) {
        const std::optional<std::size_t> column = from.findColumn(to.columns[i].name);
        if (column && from.columns[*column].type == to.columns[i].type) result[i] = cells[*column];
    }
    return result;
}

}  // namespace

Rebuild::Rebuild(const RebuildSource& source, File& target, Damage damage)
    : source_(source),
      target_(target),
      damage_(damage),
      allocator_(std::make_shared<PageAllocator>(target)) {}

Rebuild::~Rebuild() = default;

void Rebuild::run() {
    makeTables();
    for (const RebuildTable& table : source_.tables) {
        if (!made_.contains(table.definition->page)) continue;
        const std::uint32_t page = pages_[table.definition->page];
        copyRows(table, page);
        keepCounter(table, page);
        buildIndexes(page);
        target_.checkpoint();
    }
    copySystemRows(source_.objects, kCatalogPage, &Rebuild::takeObject);
    addMissingObjects();
    copySystemRows(source_.access, catalog::kAccessPage, &Rebuild::takeAccess);
    addMissingAccess();
    copySystemRows(source_.queries, catalog::kQueriesPage, &Rebuild::takeRow);
    copySystemRows(source_.relations, catalog::kRelationsPage, &Rebuild::takeRow);
}

// One statement on the target. False when it failed for what the source holds, and that may be passed over.
template <class Step>
bool Rebuild::attempt(Step step) {
    try {
        File::Writing writing(target_);
        step();
        writing.commit(Durability::kSoon);
        return true;
    } catch (const Fehler& e) {
        if (damage_ == Damage::kRefuse || isEnvironment(e.nummer())) throw;
        complete_ = false;
        return false;
    }
}

// The pages of all definitions first: relations refer to them in both directions.
void Rebuild::makeTables() {
    attempt([this] {
        for (const RebuildTable& table : source_.tables)
            pages_[table.definition->page] = allocator_->allocate();
    });
    for (const RebuildTable& table : source_.tables) {
        const std::uint32_t old = table.definition->page;
        if (attempt([&] { makeTable(*table.definition, pages_[old]); })) made_.insert(old);
    }
}

void Rebuild::makeTable(const TableDef& table, std::uint32_t page) {
    const DefinitionParts old = splitDefinition(source_.file, loadDefinitionBytes(source_.file, table.page));
    TableBuilder builder(target_, *allocator_, page, table.system);
    std::vector<DefinitionParts::Named> columns = old.columns;
    for (DefinitionParts::Named& column : columns) {
        // References to long values always lie among the variable values of new tables.
        std::uint8_t& flags = column.block[target_.layout().columnFlags];
        if (isLongColumn(column)) flags = static_cast<std::uint8_t>(flags & ~kColumnFixed);
        // Its values read as Null.
        if (!isKnownType(column.block[0])) {
            column.block[0] = static_cast<std::uint8_t>(ColumnType::kBinary);
            flags = kColumnUsual;
            complete_ = false;
        }
    }
    builder.addColumns(std::move(columns));
    copyIndexes(table, old, builder);
    builder.store();
}

// Columns of a new table are numbered in their order, so a position is a number here.
void Rebuild::copyIndexes(const TableDef& table, const DefinitionParts& old, TableBuilder& builder) {
    const Layout& layout = target_.layout();
    std::map<std::uint32_t, const Index*> trees;
    for (const Index& index : table.indexes)
        trees.emplace(index.real, &index);
    std::map<std::uint32_t, std::uint32_t> numbers;
    for (const auto& [real, index] : trees) {
        if (!index->searchable) {
            complete_ = false;
            continue;
        }
        RealIndexPart part;
        for (const IndexColumn& column : index->columns)
            part.columns.emplace_back(static_cast<std::uint16_t>(column.column), column.descending);
        part.flags = old.realIndexes[real][layout.realIndexFlags];
        numbers[real] = builder.addRealIndex(std::move(part));
    }
    for (std::size_t i = 0; i < table.indexes.size(); ++i) {
        const Index& index = table.indexes[i];
        const auto other = pages_.find(index.relatedTable);
        if (!numbers.contains(index.real) || (index.relatedTable != 0 && other == pages_.end())) {
            complete_ = false;
            continue;
        }
        DefinitionParts::Named logical = old.logicalIndexes[i];
        storeU32(&logical.block[layout.logicalIndexReal], numbers[index.real]);
        if (other != pages_.end()) storeU32(&logical.block[layout.logicalIndexOtherTable], other->second);
        builder.parts().logicalIndexes.push_back(std::move(logical));
    }
}

bool Rebuild::readRow(const TableDef& table, RowId id, RowValues& values) {
    RowView row;
    try {
        if (!fetchRow(source_.file, table, id, row)) return false;
        values.assign(row);
        return true;
    } catch (const Fehler&) {
        if (damage_ == Damage::kRefuse) throw;
        complete_ = false;
    }
    return readSoundColumns(table, row, values);
}

// Without the long values that cannot be read. When anything else of the row cannot be read either, its bytes
// are not to be trusted at all.
bool Rebuild::readSoundColumns(const TableDef& table, const RowView& row, RowValues& values) {
    std::vector<std::size_t> sound;
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        try {
            const std::size_t one[] = {column};
            values.assign(row, one);
            sound.push_back(column);
        } catch (const Fehler&) {
            if (!table.columns[column].isLong()) return false;
        }
    }
    values.assign(row, sound);
    return true;
}

std::vector<RowId> Rebuild::inKeyOrder(const RebuildTable& table) {
    const Index* primary = table.definition->primaryKey();
    if (primary == nullptr || !primary->searchable) return table.rows;
    const std::vector<std::size_t> columns = columnsOf(*primary);
    std::vector<std::pair<std::string, RowId>> keys;
    RowView row;
    RowValues values;
    for (const RowId id : table.rows) {
        keys.emplace_back(std::string(), id);
        try {
            if (!fetchRow(source_.file, *table.definition, id, row)) continue;
            values.assign(row, columns);
            keys.back().first = rowKey(*table.definition, *primary, values.cells()).value_or(std::string());
        } catch (const Fehler&) {
            if (damage_ == Damage::kRefuse) throw;  // else the row comes first, and is looked at again then
        }
    }
    std::sort(keys.begin(), keys.end());
    std::vector<RowId> rows;
    for (const auto& [key, id] : keys)
        rows.push_back(id);
    return rows;
}

// Without the indexes, which are built when all rows are there.
void Rebuild::copyRows(const RebuildTable& table, std::uint32_t page) {
    const auto plain = std::make_shared<TableDef>(*loadTableDef(target_, page, table.definition->name));
    plain->indexes.clear();
    TableWriter writer(target_, plain, allocator_);
    const std::vector<RowId> rows = inKeyOrder(table);
    const std::span<const RowId> all(rows);
    const auto insert = [&](auto step) {
        const bool done = attempt(step);
        if (!done) writer.forget();
        return done;
    };
    for (std::size_t from = 0; from < rows.size(); from += kBatchRows) {
        const std::span<const RowId> batch = all.subspan(from, std::min(kBatchRows, rows.size() - from));
        if (!insert([&] { insertRows(*table.definition, batch, writer); })) {
            for (const RowId id : batch)
                insert([&] { insertSalvaged(*table.definition, id, writer); });
        }
        if (from / kCheckpointRows != (from + kBatchRows) / kCheckpointRows) target_.checkpoint();
    }
}

void Rebuild::insertRows(const TableDef& table, std::span<const RowId> rows, TableWriter& writer) {
    RowValues values;
    for (const RowId id : rows) {
        if (readRow(table, id, values)) writer.insert(values.cells());
    }
}

// A value that its column does not take (a number that is none, a text longer than a damaged definition
// allows) becomes Null.
void Rebuild::insertSalvaged(const TableDef& table, RowId id, TableWriter& writer) {
    RowValues values;
    if (!readRow(table, id, values)) return;
    std::vector<Cell> cells(values.cells().begin(), values.cells().end());
    for (std::size_t column = 0; column < cells.size(); ++column) {
        std::string buffer;
        try {
            columnValue(target_, table.columns[column], cells[column], buffer);
        } catch (const Fehler&) {
            cells[column] = {};
        }
    }
    writer.insert(cells);
}

// The copied rows have raised it to the highest number among them; given out were perhaps more.
void Rebuild::keepCounter(const RebuildTable& table, std::uint32_t page) {
    const auto& columns = table.definition->columns;
    if (std::none_of(columns.begin(), columns.end(), [](const Column& c) { return c.autonumber; })) return;
    attempt([&] {
        const std::shared_ptr<Page> definition = target_.edit(page);
        std::uint8_t* last = &(*definition)[target_.layout().defLastAutonumber];
        const auto highest = static_cast<std::int32_t>(loadU32(last));
        const auto given = static_cast<std::int32_t>(table.definition->lastAutonumber);
        storeU32(last, static_cast<std::uint32_t>(std::max(highest, given)));
    });
}

void Rebuild::buildIndexes(std::uint32_t page) {
    const std::shared_ptr<const TableDef> table = loadTableDef(target_, page, {});
    std::set<std::uint32_t> built;
    for (const Index& index : table->indexes) {
        if (!built.insert(index.real).second) continue;
        attempt([&] {
            const IndexFaults faults = buildIndex(target_, *allocator_, *table, index);
            if (!faults.any()) return;
            if (damage_ == Damage::kPassOver) return relax(*table, index, faults);
            if (faults.duplicates) throwWriteError(jetfehler::kDuplicateKey, index.name);
            throwWriteError(index.primary ? jetfehler::kNullInPrimaryKey : jetfehler::kNullInIndex,
                            index.name);
        });
    }
}

// No row is dropped because another one has its key: rather the index allows both.
void Rebuild::relax(const TableDef& table, const Index& index, IndexFaults faults) {
    const Layout& layout = target_.layout();
    TableBuilder builder(target_, *allocator_, table);
    std::uint8_t& flags = builder.parts().realIndexes[index.real][layout.realIndexFlags];
    if (faults.duplicates) flags = static_cast<std::uint8_t>(flags & ~kIndexUnique);
    if (faults.nulls) flags = static_cast<std::uint8_t>(flags & ~kIndexRequired);
    for (DefinitionParts::Named& logical : builder.parts().logicalIndexes) {
        std::uint8_t& kind = logical.block[layout.logicalIndexKind];
        const bool same = loadU32(&logical.block[layout.logicalIndexReal]) == index.real;
        if (same && kind == kIndexKindPrimary) kind = kIndexKindOrdinary;
    }
    builder.store();
}

void Rebuild::copySystemRows(const RebuildTable& table, std::uint32_t page, CellFilter filter) {
    if (!table.definition) return;
    const std::shared_ptr<const TableDef> to = loadTableDef(target_, page, {});
    TableWriter writer(target_, to, allocator_);
    RowValues values;
    for (const RowId id : table.rows) {
        if (!readRow(*table.definition, id, values)) continue;
        std::vector<Cell> cells = arranged(*table.definition, values.cells(), *to);
        const bool done = attempt([&] {
            if ((this->*filter)(*to, cells)) writer.insert(cells);
        });
        if (!done) writer.forget();
    }
}

bool Rebuild::takeObject(const TableDef& table, std::vector<Cell>& cells) {
    const auto position = [&](const char* name) { return table.findColumn(name).value(); };
    Cell& id = cells[position("Id")];
    const auto type = static_cast<std::int32_t>(asId(cells[position("Type")]));
    const std::uint32_t old = asId(id);
    if (type == catalog::kTypeTable && old > catalog::kRelationsPage) {
        const std::uint32_t page = old & catalog::kPageOfId;
        if (!made_.contains(page)) return false;
        id = idCell(pages_[page]);
    }
    if (type < 0 && type != kTypeDocument && type != kTypeUser) {
        complete_ = false;
        return false;
    }
    objectIds_[old] = asId(id);
    return true;
}

// Entries of objects that are no more are left out.
bool Rebuild::takeAccess(const TableDef& table, std::vector<Cell>& cells) {
    Cell& id = cells[table.findColumn("ObjectId").value()];
    const auto object = objectIds_.find(asId(id));
    if (object == objectIds_.end()) return false;
    id = idCell(object->second);
    return true;
}

bool Rebuild::takeRow(const TableDef&, std::vector<Cell>&) { return true; }

void Rebuild::addMissingObjects() {
    const std::set<std::uint32_t> listed = idsIn(target_, kCatalogPage, "Id");
    attempt([&] {
        CatalogWriter catalog(target_, allocator_);
        addStandardObjects(catalog, currentDay(), listed);
        for (const RebuildTable& table : source_.tables) {
            const std::uint32_t page = pages_[table.definition->page];
            if (!made_.contains(table.definition->page) || listed.contains(page)) continue;
            catalog.addTable(page, table.definition->name, currentDay());
        }
    });
}

void Rebuild::addMissingAccess() {
    const std::set<std::uint32_t> allowed = idsIn(target_, catalog::kAccessPage, "ObjectId");
    attempt([&] {
        CatalogWriter catalog(target_, allocator_);
        addStandardAccess(catalog, allowed);
        for (const std::uint32_t old : made_) {
            if (!allowed.contains(pages_[old])) catalog.allowUsers(pages_[old]);
        }
    });
}

}  // namespace wendel::jet
