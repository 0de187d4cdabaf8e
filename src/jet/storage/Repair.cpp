#include "jet/storage/Repair.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/CatalogNames.h"
#include "jet/storage/CatalogWriter.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/FileIo.h"
#include "jet/storage/NewFile.h"
#include "jet/storage/Rebuild.h"
#include "jet/storage/ReplacingLock.h"
#include "jet/storage/Table.h"
#include "jet/storage/UsageMap.h"
#include "jet/storage/WriteErrors.h"
#include "platform/Fehler.h"

// What counts as readable:
// - a table: when its definition can be read. Its name comes from the catalog; where the catalog has lost
//   rows, all definitions that nobody names and that are not marked as free count as tables too, with names
//   from the catalog's indexes or invented ones;
// - a row: when its bytes fit together. Rows are looked for on the pages of the table's map and, when that
//   gives fewer than the definition counts, on all pages that name the table as their owner;
// - a long value for itself: it becomes Null when it is lost, and its row stays; so does any other value that
//   its column does not take.
// Indexes are not read at all but built anew.

namespace wendel::jet {
namespace {

constexpr std::size_t kCacheBytes = 8 << 20;

// Runs the step; false when it met damage.
template <class Step>
bool readable(Step step) {
    try {
        step();
        return true;
    } catch (const Fehler& e) {
        if (e.nummer() != jetfehler::kDamaged) throw;
        return false;
    }
}

// Where the Access program keeps its forms; see Rebuild.
bool isDesign(const TableDef& table) {
    return std::any_of(table.columns.begin(), table.columns.end(),
                       [](const Column& column) { return column.type == ColumnType::kUnknown; });
}

// Finds what is left in a damaged file.
class Salvage {
  public:
    // `fresh` is an empty database of the same version: its system tables stand in for unreadable
    // definitions.
    Salvage(File& file, File& fresh) : file_(file), fresh_(fresh) { lookThroughPages(); }

    RebuildSource everything();
    bool complete() const { return complete_; }

  private:
    void lookThroughPages();
    bool isFree(std::uint32_t page) const { return page < free_.size() && free_[page]; }
    RebuildTable systemTable(std::uint32_t page);
    RebuildTable withRows(std::shared_ptr<const TableDef> definition);
    std::vector<RowId> rowsOn(const std::set<std::uint32_t>& pages, const TableDef& table);
    void addRowsOf(std::uint32_t number, const TableDef& table, std::vector<RowId>& rows);
    void addNamedTables(const RebuildTable& objects, RebuildSource& source);
    void addNamelessTables(const TableDef& objects, RebuildSource& source);
    bool isDefinition(std::uint32_t page) const;

    File& file_;
    File& fresh_;
    bool complete_ = true;
    std::vector<bool> free_;  // empty when the map of free pages cannot be read
    std::map<std::uint32_t, std::vector<std::uint32_t>> dataPages_;  // by owner
    std::vector<std::uint32_t> definitionPages_;
    std::set<std::uint32_t> known_;  // definition pages of tables that have been found
};

void Salvage::lookThroughPages() {
    complete_ = readable([this] {
        const std::vector<std::uint32_t> pages = readUsageMap(file_, {kGlobalMapPage, 0});
        free_.assign(file_.pageCount(), false);
        for (const std::uint32_t page : pages) {
            if (page < free_.size()) free_[page] = true;
        }
    });
    for (std::uint32_t number = kCatalogPage; number < file_.pageCount(); ++number) {
        const bool read = readable([&] {
            const PagePtr page = file_.page(number);
            const auto type = static_cast<PageType>((*page)[0]);
            if (type == PageType::kData) dataPages_[loadU32(&(*page)[kPageOwner])].push_back(number);
            if (type == PageType::kDefinition) definitionPages_.push_back(number);
        });
        complete_ = complete_ && read;
    }
}

RebuildSource Salvage::everything() {
    RebuildSource source{file_, systemTable(kCatalogPage), {}, {}, {}, {}};
    source.access = systemTable(catalog::kAccessPage);
    source.queries = systemTable(catalog::kQueriesPage);
    source.relations = systemTable(catalog::kRelationsPage);
    addNamedTables(source.objects, source);
    if (!complete_) addNamelessTables(*source.objects.definition, source);
    return source;
}

RebuildTable Salvage::systemTable(std::uint32_t page) {
    std::shared_ptr<const TableDef> table;
    const bool read = readable([&] { table = loadTableDef(file_, page, {}); });
    const std::shared_ptr<const TableDef> standard = loadTableDef(fresh_, page, {});
    const bool asUsual =
        read && std::all_of(standard->columns.begin(), standard->columns.end(), [&](const Column& c) {
            const std::optional<std::size_t> column = table->findColumn(c.name);
            return column && table->columns[*column].type == c.type;
        });
    if (!asUsual) {
        // These tables are the same in all files, only their pages are not.
        const auto substitute = std::make_shared<TableDef>(*standard);
        substitute->ownedPages = {};
        table = substitute;
        complete_ = false;
    }
    known_.insert(table->definitionPages.begin(), table->definitionPages.end());
    return withRows(std::move(table));
}

RebuildTable Salvage::withRows(std::shared_ptr<const TableDef> table) {
    std::set<std::uint32_t> pages;
    const bool mapped = readable([&] {
        for (const std::uint32_t page : readUsageMap(file_, table->ownedPages)) {
            if (page < file_.pageCount()) pages.insert(page);
        }
    });
    const bool before = complete_;
    std::vector<RowId> rows = rowsOn(pages, *table);
    if (!mapped || rows.size() < table->rowCount) {
        for (const std::uint32_t page : dataPages_[table->page]) {
            if (!isFree(page)) pages.insert(page);
        }
        complete_ = before;
        rows = rowsOn(pages, *table);
    }
    complete_ = complete_ && mapped && rows.size() >= table->rowCount;
    return {std::move(table), std::move(rows)};
}

std::vector<RowId> Salvage::rowsOn(const std::set<std::uint32_t>& pages, const TableDef& table) {
    std::vector<RowId> rows;
    for (const std::uint32_t page : pages) {
        const bool read = readable([&] { addRowsOf(page, table, rows); });
        complete_ = complete_ && read;
    }
    return rows;
}

void Salvage::addRowsOf(std::uint32_t number, const TableDef& table, std::vector<RowId>& rows) {
    const PagePtr page = file_.page(number);
    const DataPage data(file_, *page);
    if (!data.isDataOf(table.page)) return;
    const bool wide = file_.layout().rowCountSize == 2;
    for (unsigned slot = 0; slot < data.slotCount(); ++slot) {
        if ((data.flags(slot) & kSlotTarget) != 0) continue;
        const RowId id = makeRowId(number, static_cast<std::uint8_t>(slot));
        bool sound = false;
        const bool read = readable([&] {
            RowView row;
            const std::span<const std::uint8_t> bytes = data.row(slot);
            if (!fetchRow(file_, table, id, row)) return;
            const bool moved = data.flags(slot) == kSlotPointer;
            const std::size_t columns = wide ? loadU16(bytes.data()) : bytes[0];
            sound = moved || (columns > 0 && columns <= table.maxColumns);
        });
        if (sound) rows.push_back(id);
        complete_ = complete_ && read && sound;
    }
}

void Salvage::addNamedTables(const RebuildTable& objects, RebuildSource& source) {
    const TableDef& table = *objects.definition;
    const std::size_t id = table.findColumn("Id").value(), name = table.findColumn("Name").value(),
                      type = table.findColumn("Type").value(), flags = table.findColumn("Flags").value();
    for (const RowId row : objects.rows) {
        std::uint32_t page = 0;
        const bool read = readable([&] {
            RowView view;
            fetchRow(file_, table, row, view);
            const auto number = static_cast<std::uint32_t>(view.asInteger(id));
            if (view.asInteger(type) != catalog::kTypeTable || number <= catalog::kRelationsPage) return;
            page = number & catalog::kPageOfId;
            std::string tableName;
            view.appendText(name, tableName);
            std::shared_ptr<const TableDef> found = loadTableDef(file_, page, std::move(tableName));
            known_.insert(found->definitionPages.begin(), found->definitionPages.end());
            const auto marks = static_cast<std::uint32_t>(view.asInteger(flags));
            if (isDesign(*found) && (marks & catalog::kSystemFlags) != 0) return;
            source.tables.push_back(withRows(std::move(found)));
        });
        complete_ = complete_ && read;
    }
}

// The page of a dropped table can still hold its definition, so only pages in use count.
void Salvage::addNamelessTables(const TableDef& objects, RebuildSource& source) {
    std::map<std::uint32_t, std::string> names = namesFromIndexes(file_, objects);
    for (const std::uint32_t page : definitionPages_) {
        if (known_.contains(page) || isFree(page) || !isDefinition(page)) continue;
        readable([&] {
            std::string& name = names[page];
            if (name.empty()) name = "Gerettete Tabelle " + std::to_string(page);
            std::shared_ptr<const TableDef> found = loadTableDef(file_, page, name);
            if (found->columns.empty() || isDesign(*found)) return;
            known_.insert(found->definitionPages.begin(), found->definitionPages.end());
            source.tables.push_back(withRows(std::move(found)));
        });
    }
}

// The first page of a definition, no continuation.
bool Salvage::isDefinition(std::uint32_t number) const {
    const PagePtr page = file_.page(number);
    const std::uint8_t kind = (*page)[file_.layout().defTableKind];
    const bool marked = file_.version() == Version::kJet4
                            ? loadU32(&(*page)[kDefinitionConstantAt]) == kDefinitionConstant
                            : loadU16(&(*page)[kDefinitionFreeSpace]) == kJet3DefinitionMark;
    return marked && kind == kTableKindUser;
}

bool isPlainMapPage(std::string_view start, const Layout& layout) {
    const auto* page = reinterpret_cast<const std::uint8_t*>(start.data()) + layout.pageSize;
    return page[0] == static_cast<std::uint8_t>(PageType::kData) && page[1] == 1 &&
           loadU32(page + kPageOwner) == kGlobalMapPage;
}

bool isDatabaseOf(std::string_view start, const Layout& layout) {
    return isPlainMapPage(start, layout) &&
           start[2 * layout.pageSize] == static_cast<char>(PageType::kDefinition);
}

// Which kind of database the file is or was; nullptr: none that is known. Its header may be lost.
const Layout* layoutOf(std::string_view start) {
    const std::string_view name = start.substr(kHeaderSignature, 12);
    if (name == "Standard ACE") return nullptr;
    if (name == "Standard Jet") {
        if (start[kHeaderVersion] == static_cast<char>(Version::kJet4)) return &kJet4Layout;
        return start[kHeaderVersion] == static_cast<char>(Version::kJet3) ? &kJet3Layout : nullptr;
    }
    if (isDatabaseOf(start, kJet4Layout)) return &kJet4Layout;
    return isDatabaseOf(start, kJet3Layout) ? &kJet3Layout : nullptr;
}

std::string startOf(const std::string& path) {
    std::string start(3 * std::size_t{kJet4Layout.pageSize}, '\0');
    std::ifstream(path, std::ios::binary).read(start.data(), static_cast<std::streamsize>(start.size()));
    return start;
}

// The header contradicts what it describes: pages that it calls encoded can be read, or the catalog has
// another sort order.
bool isHeaderDamaged(File& file, const std::string& path) {
    if (file.encoded()) return isPlainMapPage(startOf(path), file.layout());
    bool differs = false;
    readable([&] {
        const std::shared_ptr<const TableDef> objects = loadTableDef(file, kCatalogPage, {});
        const std::optional<std::size_t> name = objects->findColumn("Name");
        differs = name && objects->columns[*name].sortOrder != file.sortOrder();
    });
    return differs;
}

// The damaged file, or a copy of it that can be opened: with whole pages, and a new header where the old one
// is destroyed.
class DamagedFile {
  public:
    explicit DamagedFile(const std::string& path) {
        try {
            file_ = std::make_unique<File>(path, Access::kReadOnly, kCacheBytes);
            if (isHeaderDamaged(*file_, path)) openCopy(path, true);
        } catch (const Fehler& e) {
            const bool known = e.nummer() == jetfehler::kDamaged || e.nummer() == jetfehler::kUnknownFormat;
            if (!known || layoutOf(startOf(path)) == nullptr) throw;
            openCopy(path, e.nummer() == jetfehler::kUnknownFormat);
        }
    }

    File& file() { return *file_; }
    bool isCopy() const { return copy_ != nullptr; }

  private:
    void openCopy(const std::string& path, bool newHeader);

    std::unique_ptr<NewFile> copy_;
    std::unique_ptr<File> file_;
};

void DamagedFile::openCopy(const std::string& path, bool withNewHeader) {
    namespace fs = std::filesystem;
    const Layout& layout = *layoutOf(startOf(path));
    copy_ = std::make_unique<NewFile>(path, path + ".kopie");
    std::error_code error;
    fs::copy_file(path, copy_->path(), fs::copy_options::overwrite_existing, error);
    const std::uintmax_t pages = (fs::file_size(path) + layout.pageSize - 1) / layout.pageSize;
    if (!error) fs::resize_file(copy_->path(), pages * layout.pageSize, error);
    // Why copying failed is not told reliably; a full disk is what it nearly always is.
    if (error) throwWriteError(copy_->path(), ENOSPC);
    if (withNewHeader) {
        const std::vector<std::uint8_t> header = newHeader(layout.version);
        std::fstream out(copy_->path(), std::ios::binary | std::ios::in | std::ios::out);
        out.write(reinterpret_cast<const char*>(header.data()), static_cast<std::streamsize>(header.size()));
        if (!out.flush()) throwWriteError(copy_->path(), ENOSPC);
    }
    file_ = std::make_unique<File>(copy_->path(), Access::kReadOnly, kCacheBytes);
}

// Where files cannot have two names. The copy is complete before the original goes.
void copyDamaged(const std::string& path, const std::string& kept) {
    std::error_code error;
    if (std::filesystem::copy_file(path, kept, error)) return;
    ::unlink(kept.c_str());
    throwWriteError(kept, ENOSPC);
}

// A second name for the file that is going to be replaced; never that of an earlier one.
void keepDamaged(const std::string& path) {
    std::string kept = path + ".defekt";
    for (int n = 2; ::link(path.c_str(), kept.c_str()) != 0; ++n) {
        if (errno != EEXIST) return copyDamaged(path, kept);
        kept = path + ".defekt" + std::to_string(n);
    }
}

}  // namespace

void repairDatabaseFile(const std::string& nativePath) {
    const std::string path = resolvedPath(nativePath);
    const ReplacingLock lock(path);
    auto damaged = std::make_unique<DamagedFile>(path);
    File& file = damaged->file();
    if (file.encoded()) throwWriteError(jetfehler::kReadOnly);

    NewFile fresh(path, path + ".rep");
    writeEmptyDatabase(fresh.path(), *file.page(0));
    bool complete = !damaged->isCopy();
    {
        File target(fresh.path(), Access::kReadWrite, kCacheBytes);
        Salvage salvage(file, target);
        const RebuildSource source = salvage.everything();
        if (source.tables.empty() && !salvage.complete()) file.throwDamaged("Keine Tabelle ist lesbar");
        Rebuild rebuild(source, target, Rebuild::Damage::kPassOver);
        rebuild.run();
        finish(target, path);
        complete = complete && salvage.complete() && rebuild.complete();
    }
    damaged.reset();
    if (!complete) keepDamaged(path);
    fresh.replaceTarget();
}

}  // namespace wendel::jet
