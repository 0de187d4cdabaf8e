#include "jet/storage/TableWriter.h"

#include <algorithm>
#include <array>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/CellEncoder.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/IndexWriter.h"
#include "jet/storage/LongValue.h"
#include "jet/storage/LongValueWriter.h"
#include "jet/storage/RowImage.h"
#include "jet/storage/RowPages.h"
#include "jet/storage/Table.h"
#include "jet/storage/WriteErrors.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

RowPointer placeOf(RowId id) { return {pageOf(id), slotOf(id)}; }

Guid randomGuid() {
    std::random_device random;
    Guid guid;
    for (std::uint8_t& byte : guid)
        byte = static_cast<std::uint8_t>(random());
    // RFC 4122, section 4.4: version 4, variant 1.
    guid[6] = static_cast<std::uint8_t>((guid[6] & 0x0F) | 0x40);
    guid[8] = static_cast<std::uint8_t>((guid[8] & 0x3F) | 0x80);
    return guid;
}

}  // namespace

class TableWriter::Impl {
  public:
    Impl(File& file, std::shared_ptr<const TableDef> table, std::shared_ptr<PageAllocator> allocator);

    std::int32_t reserveAutonumber();
    std::int32_t lastAutonumber() const { return lastAutonumber_; }
    RowId insert(std::span<const Cell> values);
    void update(RowId id, std::span<const std::size_t> columns, std::span<const Cell> values);
    void remove(RowId id);
    void forget() { rows_.forget(); }

  private:
    // One tree of index pages; several indexes of the definition can share it.
    struct Tree {
        const Index* index;
        bool required, primary;
        IndexWriter writer;
        std::optional<std::string> oldKey, newKey;
    };
    void addTree(const Index& index);
    void requireKnownOrders() const;
    std::int32_t highestAutonumber();
    std::int32_t nextAutonumber();
    Cell givenCell(std::size_t column, const Cell& given);
    void noteInDefinition(int rows);
    void checkKeys(std::span<const Cell> cells, std::span<Tree* const> trees);
    void requireValues(const Tree& tree, std::span<const Cell> cells) const;
    void storeCell(std::size_t column, const Cell& cell);
    void replaceLong(std::size_t column, const std::string& oldReference);
    bool isStored(std::string_view bytes, std::string_view reference);
    void changeEntries(std::span<Tree* const> trees, RowId id);
    void removeEntry(Tree& tree, std::string_view key, RowId id);
    std::vector<Tree*> treesWith(std::span<const std::size_t> columns);
    std::vector<Tree*> allTrees();
    std::vector<std::size_t> columnsOf(std::span<Tree* const> trees) const;

    RowView fetch(RowId id);
    std::optional<RowPointer> targetOf(RowPointer home);
    void place(RowPointer home, std::span<const std::uint8_t> row);
    bool replaceInSlot(RowPointer slot, std::span<const std::uint8_t> row, std::uint16_t flags);

    File& file_;
    const std::shared_ptr<const TableDef> table_;
    const std::shared_ptr<PageAllocator> allocator_;
    RowPages rows_;
    RowImage image_;
    std::vector<Tree> trees_;
    std::vector<std::optional<LongValueWriter>> longValues_;  // by column
    std::int32_t lastAutonumber_ = 0;
    std::optional<std::int32_t> newLast_;  // to be noted as the highest number given out

    // Kept for their memory.
    std::vector<Cell> cells_;
    std::vector<std::string> buffers_;  // what cells refer to, by column
    std::string bytes_, reference_;
    RowValues oldValues_;
};

TableWriter::Impl::Impl(File& file, std::shared_ptr<const TableDef> table,
                        std::shared_ptr<PageAllocator> allocator)
    : file_(file),
      table_(std::move(table)),
      allocator_(allocator ? std::move(allocator) : std::make_shared<PageAllocator>(file)),
      rows_(file, *allocator_, table_->page, table_->ownedPages, table_->freeSpacePages),
      image_(file, *table_),
      longValues_(table_->columns.size()),
      cells_(table_->columns.size()),
      buffers_(table_->columns.size()) {
    // Rows on pages that are listed nowhere would be lost.
    if (!rows_.hasMap()) file.throwDamaged("Seitenliste");
    for (const Index& index : table_->indexes)
        addTree(index);
    for (std::size_t c = 0; c < table_->columns.size(); ++c) {
        const Column& column = table_->columns[c];
        if (column.isLong()) longValues_[c].emplace(file_, *allocator_, column);
    }
}

void TableWriter::Impl::addTree(const Index& index) {
    const auto known = std::find_if(trees_.begin(), trees_.end(),
                                    [&index](const Tree& tree) { return tree.index->root == index.root; });
    if (known == trees_.end()) {
        trees_.push_back({&index, index.required, index.primary,
                          IndexWriter(file_, *allocator_, *table_, index), std::nullopt, std::nullopt});
    } else {
        known->required = known->required || index.required;
        known->primary = known->primary || index.primary;
    }
}

void TableWriter::Impl::requireKnownOrders() const {
    for (const Tree& tree : trees_)
        if (!tree.index->searchable) throwWriteError(jetfehler::kReadOnly);
}

// Given out so far.
std::int32_t TableWriter::Impl::highestAutonumber() {
    const PagePtr definition = file_.page(table_->page);
    return static_cast<std::int32_t>(loadU32(&(*definition)[file_.layout().defLastAutonumber]));
}

std::int32_t TableWriter::Impl::nextAutonumber() {
    const std::int32_t highest = highestAutonumber();
    if (highest == INT32_MAX) throwWriteError(jetfehler::kNumericOverflow);
    return highest + 1;
}

std::int32_t TableWriter::Impl::reserveAutonumber() {
    newLast_ = lastAutonumber_ = nextAutonumber();
    noteInDefinition(0);
    return lastAutonumber_;
}

// The value as the column will hold it; counting columns fill themselves.
Cell TableWriter::Impl::givenCell(std::size_t c, const Cell& given) {
    const Column& column = table_->columns[c];
    buffers_[c].clear();
    const bool null = std::holds_alternative<std::monostate>(given);
    if (column.autonumber && null && column.type == ColumnType::kGuid) return randomGuid();
    if (!column.autonumber || column.type != ColumnType::kLong) {
        return columnValue(file_, column, given, buffers_[c]);
    }
    const Cell number =
        null ? Cell(std::int64_t{nextAutonumber()}) : columnValue(file_, column, given, buffers_[c]);
    lastAutonumber_ = static_cast<std::int32_t>(std::get<std::int64_t>(number));
    newLast_ = std::max(highestAutonumber(), lastAutonumber_);
    return number;
}

// Row count and highest number given out, both on the first page of the definition.
void TableWriter::Impl::noteInDefinition(int rows) {
    const Layout& layout = file_.layout();
    const std::shared_ptr<Page> page = file_.edit(table_->page);
    std::uint8_t* count = &(*page)[layout.defRowCount];
    const std::uint32_t before = loadU32(count);
    // Other writers may have counted too few.
    if (rows > 0 || before > 0) storeU32(count, before + static_cast<std::uint32_t>(rows));
    if (newLast_) storeU32(&(*page)[layout.defLastAutonumber], static_cast<std::uint32_t>(*newLast_));
}

std::vector<TableWriter::Impl::Tree*> TableWriter::Impl::allTrees() {
    std::vector<Tree*> trees;
    for (Tree& tree : trees_)
        trees.push_back(&tree);
    return trees;
}

std::vector<TableWriter::Impl::Tree*> TableWriter::Impl::treesWith(std::span<const std::size_t> columns) {
    std::vector<Tree*> trees;
    for (Tree& tree : trees_) {
        const auto& indexed = tree.index->columns;
        const bool touched = std::any_of(indexed.begin(), indexed.end(), [columns](const IndexColumn& c) {
            return std::find(columns.begin(), columns.end(), c.column) != columns.end();
        });
        if (touched) trees.push_back(&tree);
    }
    return trees;
}

std::vector<std::size_t> TableWriter::Impl::columnsOf(std::span<Tree* const> trees) const {
    std::vector<std::size_t> columns;
    for (const Tree* tree : trees)
        for (const IndexColumn& column : tree->index->columns)
            columns.push_back(column.column);
    return columns;
}

void TableWriter::Impl::requireValues(const Tree& tree, std::span<const Cell> cells) const {
    if (!tree.required && !tree.primary) return;
    for (const IndexColumn& c : tree.index->columns) {
        if (!std::holds_alternative<std::monostate>(cells[c.column])) continue;
        if (tree.primary) throwWriteError(jetfehler::kNullInPrimaryKey);
        throwWriteError(jetfehler::kNullInIndex, table_->columns[c.column].name);
    }
}

// The new keys, and whether the indexes allow them. A key that stays is no duplicate of itself.
void TableWriter::Impl::checkKeys(std::span<const Cell> cells, std::span<Tree* const> trees) {
    for (Tree* tree : trees) {
        requireValues(*tree, cells);
        tree->newKey = rowKey(*table_, *tree->index, cells);
        if (!tree->index->unique || !tree->newKey || tree->newKey == tree->oldKey) continue;
        if (!isAllNull(*table_, *tree->index, cells) && tree->writer.contains(*tree->newKey)) {
            throwWriteError(jetfehler::kDuplicateKey, tree->index->name);
        }
    }
}

void TableWriter::Impl::changeEntries(std::span<Tree* const> trees, RowId id) {
    for (Tree* tree : trees) {
        if (tree->oldKey == tree->newKey) continue;
        if (tree->oldKey) removeEntry(*tree, *tree->oldKey, id);
        if (tree->newKey) tree->writer.insert(*tree->newKey, id);
    }
}

// Characters whose codes are not known leave another key with other writers.
void TableWriter::Impl::removeEntry(Tree& tree, std::string_view key, RowId id) {
    if (!tree.writer.remove(key, id)) tree.writer.removeByRow(id);
}

// Puts the value into the image, a long value onto its pages.
void TableWriter::Impl::storeCell(std::size_t c, const Cell& cell) {
    const Column& column = table_->columns[c];
    if (column.type == ColumnType::kBoolean)
        return image_.setBoolean(column, std::get<std::int64_t>(cell) != 0);
    if (std::holds_alternative<std::monostate>(cell)) return image_.setNull(column);
    bytes_.clear();
    appendValue(file_, column, cell, bytes_);
    if (!column.isLong()) return image_.set(column, bytes_);
    reference_.clear();
    longValues_[c]->store(bytes_, reference_);
    image_.set(column, reference_);
}

// As storeCell(), for a row that may have a value there. One that does not change stays where it is.
void TableWriter::Impl::replaceLong(std::size_t c, const std::string& oldReference) {
    const bool null = std::holds_alternative<std::monostate>(cells_[c]);
    if (!null && !oldReference.empty()) {
        bytes_.clear();
        appendValue(file_, table_->columns[c], cells_[c], bytes_);
        if (isStored(bytes_, oldReference)) return;
    }
    longValues_[c]->release(asBytes(oldReference));
    storeCell(c, cells_[c]);
}

bool TableWriter::Impl::isStored(std::string_view bytes, std::string_view reference) {
    try {
        return asText(loadLongValue(file_, asBytes(reference)).bytes) == bytes;
    } catch (const Fehler& e) {
        // A damaged value may be replaced.
        if (e.nummer() != jetfehler::kDamaged) throw;
        return false;
    }
}

RowId TableWriter::Impl::insert(std::span<const Cell> values) {
    requireKnownOrders();
    newLast_.reset();
    for (std::size_t c = 0; c < cells_.size(); ++c)
        cells_[c] = givenCell(c, values[c]);
    const std::vector<Tree*> trees = allTrees();
    for (Tree* tree : trees)
        tree->oldKey.reset();
    checkKeys(cells_, trees);
    image_.clear();
    for (std::size_t c = 0; c < cells_.size(); ++c)
        storeCell(c, cells_[c]);
    const RowPointer place = rows_.insert(image_.encode(), 0);
    const RowId id = makeRowId(place.page, place.slot);
    changeEntries(trees, id);
    noteInDefinition(1);
    return id;
}

RowView TableWriter::Impl::fetch(RowId id) {
    RowView row;
    if (!fetchRow(file_, *table_, id, row)) throwWriteError(jetfehler::kRecordDeleted);
    return row;
}

void TableWriter::Impl::update(RowId id, std::span<const std::size_t> columns, std::span<const Cell> values) {
    requireKnownOrders();
    newLast_.reset();
    const std::vector<Tree*> trees = treesWith(columns);
    // Copied out of the row, whose page changes below.
    std::vector<std::string> oldReferences(columns.size());
    {
        const RowView row = fetch(id);
        oldValues_.assign(row, columnsOf(trees));
        image_.load(row);
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (table_->columns[columns[i]].isLong()) oldReferences[i] = asText(row.storedValue(columns[i]));
    }
    for (Tree* tree : trees)
        tree->oldKey = rowKey(*table_, *tree->index, oldValues_.cells());
    std::copy(oldValues_.cells().begin(), oldValues_.cells().end(), cells_.begin());
    for (std::size_t i = 0; i < columns.size(); ++i)
        cells_[columns[i]] = givenCell(columns[i], values[i]);
    checkKeys(cells_, trees);
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (!table_->columns[columns[i]].isLong()) {
            storeCell(columns[i], cells_[columns[i]]);
        } else {
            replaceLong(columns[i], oldReferences[i]);
        }
    }
    place(placeOf(id), image_.encode());
    changeEntries(trees, id);
    if (newLast_) noteInDefinition(0);
}

void TableWriter::Impl::remove(RowId id) {
    requireKnownOrders();
    const std::vector<Tree*> trees = allTrees();
    std::vector<std::pair<std::size_t, std::string>> references;
    {
        const RowView row = fetch(id);
        oldValues_.assign(row, columnsOf(trees));
        for (std::size_t c = 0; c < longValues_.size(); ++c)
            if (longValues_[c] && !row.isNull(c)) references.emplace_back(c, asText(row.storedValue(c)));
    }
    for (Tree* tree : trees) {
        const std::optional<std::string> key = rowKey(*table_, *tree->index, oldValues_.cells());
        if (key) removeEntry(*tree, *key, id);
    }
    for (const auto& [column, reference] : references)
        longValues_[column]->release(asBytes(reference));
    if (const std::optional<RowPointer> target = targetOf(placeOf(id))) rows_.erase(*target);
    rows_.erase(placeOf(id));
    newLast_.reset();
    noteInDefinition(-1);
}

// Where the row's data lies when it has moved; nothing where the slot is not marked as the place of a moved
// row: it is another row's then, to which a damaged pointer leads.
std::optional<RowPointer> TableWriter::Impl::targetOf(RowPointer home) {
    const PagePtr page = file_.page(home.page);
    const DataPage data(file_, *page);
    if (data.flags(home.slot) != kSlotPointer || data.row(home.slot).size() < kRowPointerSize)
        return std::nullopt;
    const RowPointer target = loadRowPointer(data.row(home.slot).data());
    if (!rows_.contains(target.page)) return std::nullopt;
    const PagePtr targetPage = file_.page(target.page);
    const DataPage targetData(file_, *targetPage);
    const bool marked = target.slot < targetData.slotCount() && targetData.flags(target.slot) == kSlotTarget;
    return marked ? std::optional(target) : std::nullopt;
}

bool TableWriter::Impl::replaceInSlot(RowPointer slot, std::span<const std::uint8_t> row,
                                      std::uint16_t flags) {
    {
        const PagePtr page = file_.page(slot.page);
        const DataPage data(file_, *page);
        const std::size_t old = data.row(slot.slot).size();
        if (row.size() > old && row.size() - old > data.room()) return false;
    }
    const std::shared_ptr<Page> page = file_.edit(slot.page);
    DataPageEditor(file_, *page).replace(slot.slot, row, flags);
    return true;
}

// Gives the row its new bytes: at home when it fits there, else where it lies already, else elsewhere.
void TableWriter::Impl::place(RowPointer home, std::span<const std::uint8_t> row) {
    std::optional<RowPointer> target = targetOf(home);
    if (replaceInSlot(home, row, 0)) {
        if (target) rows_.erase(*target);
    } else if (target && replaceInSlot(*target, row, kSlotTarget)) {
        rows_.noteRoom(target->page);
    } else {
        if (target) rows_.erase(*target);
        target = rows_.insert(row, kSlotTarget);
        std::array<std::uint8_t, kRowPointerSize> pointer{};
        storeU32(pointer.data(), target->page << 8 | target->slot);
        // A row of less than four bytes lies among so few others that there is room for the pointer.
        if (!replaceInSlot(home, pointer, kSlotPointer)) throwWriteError(jetfehler::kRowTooLarge);
    }
    rows_.noteRoom(home.page);
}

TableWriter::TableWriter(File& file, std::shared_ptr<const TableDef> table,
                         std::shared_ptr<PageAllocator> allocator)
    : impl_(std::make_unique<Impl>(file, std::move(table), std::move(allocator))) {}

TableWriter::~TableWriter() = default;

std::int32_t TableWriter::reserveAutonumber() { return impl_->reserveAutonumber(); }

std::int32_t TableWriter::lastAutonumber() const { return impl_->lastAutonumber(); }

RowId TableWriter::insert(std::span<const Cell> values) { return impl_->insert(values); }

void TableWriter::update(RowId id, std::span<const std::size_t> columns, std::span<const Cell> values) {
    impl_->update(id, columns, values);
}

void TableWriter::remove(RowId id) { impl_->remove(id); }

void TableWriter::forget() { impl_->forget(); }

}  // namespace wendel::jet
