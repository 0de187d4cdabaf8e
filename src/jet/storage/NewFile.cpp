#include "jet/storage/NewFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/CatalogWriter.h"
#include "jet/storage/FileIo.h"
#include "jet/storage/Rc4.h"
#include "jet/storage/Schema.h"
#include "jet/storage/TableBuilder.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr char kSource[] = "Datenbankdatei";
constexpr ::mode_t kNewFileMode = 0666;

std::string quoted(const std::string& path) { return "'" + path + "'"; }

[[noreturn]] void throwExists(const std::string& path) {
    throw Fehler(jetfehler::kDatabaseExists, kSource,
                 "Die Datenbank " + quoted(path) + " existiert bereits.");
}

// A missing folder is no matter of rights or room.
[[noreturn]] void throwCannotMake(const std::string& path, int error) {
    if (error != ENOENT && error != ENOTDIR && error != ENAMETOOLONG && error != ELOOP)
        throwWriteError(path, error);
    throw Fehler(jetfehler::kInvalidPath, kSource, quoted(path) + " ist kein zulässiger Pfad.");
}

void writeAll(const std::string& path, std::span<const std::uint8_t> bytes) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0) throwWriteError(path, errno);
    const int error = writeFully(fd, bytes, 0) ? 0 : errno;
    ::close(fd);
    if (error != 0) throwWriteError(path, error);
}

// Pages 2 to 5 with their tables. Sizes in bytes are those of Jet 4; Jet 3 holds at most 255.
struct SystemColumn {
    const char* name;
    ColumnType type;
    std::uint16_t bytes = 0;
    bool jet4Only = false;
};

struct SystemIndex {
    const char* name;
    std::vector<std::uint16_t> columns;
    std::uint8_t flags, kind;
};

struct SystemTable {
    std::uint32_t page;
    std::vector<SystemColumn> columns;
    std::vector<SystemIndex> indexes;
};

constexpr std::uint16_t kTextBytes = 510;
constexpr std::uint8_t kSystemFixed = 0x13, kSystemVariable = 0x12, kSystemSecurity = 0x32;

std::vector<SystemTable> systemTables() {
    using enum ColumnType;
    return {
        {kCatalogPage,
         {{"Id", kLong},
          {"ParentId", kLong},
          {"Name", kText, kTextBytes},
          {"Type", kInteger},
          {"DateCreate", kDate},
          {"DateUpdate", kDate},
          {"Owner", kBinary, kTextBytes},
          {"Flags", kLong},
          {"Database", kMemo},
          {"Connect", kMemo},
          {"ForeignName", kText, kTextBytes},
          {"RmtInfoShort", kBinary, kTextBytes},
          {"RmtInfoLong", kOle},
          {"Lv", kOle},
          {"LvProp", kOle},
          {"LvModule", kOle},
          {"LvExtra", kOle}},
         {{"ParentIdName", {1, 2}, kIndexUnique, kIndexKindOrdinary},
          {"Id", {0}, kIndexUnique, kIndexKindPrimary}}},
        {catalog::kAccessPage,
         {{"ObjectId", kLong}, {"SID", kBinary, kTextBytes}, {"ACM", kLong}, {"FInheritable", kBoolean}},
         {{"ObjectId", {0}, kIndexRequired, kIndexKindOrdinary}}},
        {catalog::kQueriesPage,
         {{"ObjectId", kLong},
          {"Attribute", kByte},
          {"Order", kBinary, kTextBytes},
          {"Name1", kText, kTextBytes},
          {"Name2", kText, kTextBytes},
          {"Expression", kMemo},
          {"Flag", kInteger},
          {"LvExtra", kLong, 0, true}},
         {{"ObjectIdAttribute", {0, 1, 2}, kIndexUnique, kIndexKindPrimary}}},
        {catalog::kRelationsPage,
         {{"szRelationship", kText, kTextBytes},
          {"grbit", kLong},
          {"ccolumn", kLong},
          {"icolumn", kLong},
          {"szObject", kText, kTextBytes},
          {"szColumn", kText, kTextBytes},
          {"szReferencedObject", kText, kTextBytes},
          {"szReferencedColumn", kText, kTextBytes}},
         {{"szRelationship", {0}, kIndexIgnoreNulls, kIndexKindOrdinary},
          {"szObject", {4}, kIndexIgnoreNulls, kIndexKindOrdinary},
          {"szReferencedObject", {6}, kIndexIgnoreNulls, kIndexKindOrdinary}}},
    };
}

std::uint8_t systemFlags(const SystemColumn& column) {
    const std::string_view name = column.name;
    if (name == "Owner" || name == "SID") return kSystemSecurity;
    switch (column.type) {
        case ColumnType::kText:
        case ColumnType::kBinary:
        case ColumnType::kMemo:
        case ColumnType::kOle: return kSystemVariable;
        default: return kSystemFixed;
    }
}

// Jet 4 lists the columns of its system tables by name. Returns the page with the maps, for the next table.
std::uint32_t makeSystemTable(File& file, PageAllocator& allocator, const SystemTable& table,
                              std::uint32_t mapPage) {
    const bool jet4 = file.version() == Version::kJet4;
    std::vector<DefinitionParts::Named> columns;
    for (const SystemColumn& column : table.columns) {
        if (column.jet4Only && !jet4) continue;
        const std::uint16_t bytes = jet4 ? column.bytes : std::min<std::uint16_t>(column.bytes, 255);
        columns.push_back(newColumn(file, column.name, column.type, bytes, systemFlags(column)));
    }
    TableBuilder builder(file, allocator, table.page, true, mapPage);
    builder.addColumns(std::move(columns));
    if (jet4) {
        auto& parts = builder.parts().columns;
        std::sort(parts.begin(), parts.end(),
                  [](const auto& a, const auto& b) { return LCase(a.name) < LCase(b.name); });
    }
    for (const SystemIndex& index : table.indexes) {
        RealIndexPart real;
        for (const std::uint16_t column : index.columns)
            real.columns.emplace_back(column, false);
        real.flags = index.flags;
        const std::uint32_t number = builder.addRealIndex(real);
        addLogicalIndex(file.layout(), builder.parts(), index.name, number, index.kind);
    }
    builder.store();
    return builder.mapPage();
}

// Page 1: the map of free pages, in which everything behind these first pages counts as free, and a second
// map that is always empty.
void fillGlobalMap(const Layout& layout, std::uint32_t usedPages, std::uint8_t* page) {
    const std::size_t row = kUsageInlineHead + layout.usageMapBytes;
    const std::size_t first = layout.pageSize - row, second = first - row;
    page[0] = static_cast<std::uint8_t>(PageType::kData);
    page[1] = 1;
    storeU16(page + kDataFreeSpace, static_cast<std::uint16_t>(second - layout.dataSlots - 4));
    storeU32(page + kPageOwner, kGlobalMapPage);
    storeU16(page + layout.dataSlotCount, 2);
    storeU16(page + layout.dataSlots, static_cast<std::uint16_t>(first));
    storeU16(page + layout.dataSlots + 2, static_cast<std::uint16_t>(second));
    for (std::uint32_t number = usedPages; number < 8 * layout.usageMapBytes; ++number)
        page[first + kUsageInlineHead + number / 8] |= static_cast<std::uint8_t>(1u << number % 8);
}

}  // namespace

NewFile::NewFile(std::string target) : target_(std::move(target)) {
    path_ = target_ + ".XXXXXX";
    const int fd = ::mkostemp(path_.data(), O_CLOEXEC);
    if (fd < 0) throwCannotMake(target_, errno);
    // As any other new file, not for its maker alone.
    const ::mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, kNewFileMode & ~mask);
    ::close(fd);
}

NewFile::NewFile(std::string target, std::string path) : target_(std::move(target)), path_(std::move(path)) {
    remove();
    const int fd = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
    if (fd < 0) throwCannotMake(path_, errno);
    ::close(fd);
}

NewFile::~NewFile() {
    if (!named_) remove();
}

// With the journal that a full disk or a killed process has left.
void NewFile::remove() {
    ::unlink(path_.c_str());
    ::unlink((path_ + "-journal").c_str());
}

void NewFile::sync() {
    const int fd = ::open(path_.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) throwWriteError(path_, errno);
    const int error = ::fsync(fd) == 0 ? 0 : errno;
    ::close(fd);
    if (error != 0) throwWriteError(path_, error);
}

void NewFile::giveName() {
    sync();
    // Some file systems do not know this kind of renaming; what is left to chance there is a moment.
    if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) != 0) {
        if (errno == EEXIST) throwExists(target_);
        if (errno != EINVAL && errno != ENOSYS) throwWriteError(target_, errno);
        refuseExisting(target_);
        if (::rename(path_.c_str(), target_.c_str()) != 0) throwWriteError(target_, errno);
    }
    named_ = true;
    // The file is there and whole; a folder that cannot be synced is no reason to call it a failure.
    static_cast<void>(syncFolderOf(target_));
}

void NewFile::replaceTarget() {
    struct stat info {};
    if (::stat(target_.c_str(), &info) == 0) ::chmod(path_.c_str(), info.st_mode & 07777);
    sync();
    if (::rename(path_.c_str(), target_.c_str()) != 0) throwWriteError(target_, errno);
    named_ = true;
    static_cast<void>(syncFolderOf(target_));
}

void refuseExisting(const std::string& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) == 0) throwExists(path);
}

std::vector<std::uint8_t> newHeader(Version version) {
    // Day of creation, a number beside it and the mask of the security ids belong together; how, is not
    // known, so all new files have those of one database.
    constexpr std::array<std::uint8_t, 8> kCreated = {0x3E, 0x85, 0xD3, 0x3B, 0x3E, 0xAB, 0xE4, 0x40};
    constexpr std::array<std::uint8_t, 4> kDay = {0x59, 0xA5, 0, 0};
    constexpr std::uint32_t kUnknownNumber = 0x261C;
    constexpr std::size_t kPassword = 0x42, kPasswordSize = 40, kUnknownNumberJet4 = 0x6A, kCreatedAt = 0x72,
                          kUnknownNumberJet3 = 0x56, kUnknownFlagJet3 = 0x38;
    constexpr std::array<std::uint8_t, 8> kJet4Constant = {0x54, 0x06, 0, 0, '4', '.', '0', 0};
    constexpr std::size_t kJet4ConstantAt = 0x98, kCommitSlotsJet4 = 0xE00, kCommitSlotsJet3 = 0x600;
    constexpr std::uint16_t kGeneral = 0x0409, kWindows1252 = 1252;

    const bool jet4 = version == Version::kJet4;
    const Layout& layout = jet4 ? kJet4Layout : kJet3Layout;
    std::vector<std::uint8_t> page(layout.pageSize, 0);
    page[1] = 1;
    std::copy_n("Standard Jet DB", 16, page.begin() + kHeaderSignature);
    page[kHeaderVersion] = static_cast<std::uint8_t>(version);
    const std::array<std::uint32_t, 6> constants = {0x100, 0x101, 2, 3, 4, 5};
    for (std::size_t i = 0; i < constants.size(); ++i)
        storeU32(&page[kHeaderMasked + 4 * i], constants[i]);
    storeU16(&page[kHeaderCodePage], kWindows1252);
    storeU16(&page[layout.headerSortOrder], kGeneral);
    storeU32(&page[jet4 ? kUnknownNumberJet4 : kUnknownNumberJet3], kUnknownNumber);
    if (jet4) {
        for (std::size_t i = 0; i < kPasswordSize; ++i)
            page[kPassword + i] = kDay[i % 4];
        std::copy(kCreated.begin(), kCreated.end(), page.begin() + kCreatedAt);
        std::copy(kJet4Constant.begin(), kJet4Constant.end(), page.begin() + kJet4ConstantAt);
    } else {
        storeU16(&page[kUnknownFlagJet3], 1);
    }
    rc4(kHeaderMaskKey, std::span(page).subspan(kHeaderMasked, layout.maskedLength));
    const std::size_t slots = jet4 ? kCommitSlotsJet4 : kCommitSlotsJet3;
    for (std::size_t i = slots; i < slots + 512; i += 2)
        page[i + 1] = 1;
    page[slots] = 1;
    return page;
}

void writeEmptyDatabase(const std::string& path, std::span<const std::uint8_t> header) {
    constexpr std::uint32_t kPages = catalog::kRelationsPage + 1;
    const Layout& layout = header.size() == kJet4Layout.pageSize ? kJet4Layout : kJet3Layout;
    std::vector<std::uint8_t> image(header.begin(), header.end());
    image.resize(std::size_t{kPages} * layout.pageSize, 0);
    fillGlobalMap(layout, kPages, &image[layout.pageSize]);
    writeAll(path, image);

    File file(path, Access::kReadWrite);
    File::Writing writing(file);
    PageAllocator allocator(file);
    std::uint32_t mapPage = 0;
    for (const SystemTable& table : systemTables())
        mapPage = makeSystemTable(file, allocator, table, mapPage);
    writing.commit(Durability::kSoon);
}

void addStandardObjects(CatalogWriter& catalog, double created, const std::set<std::uint32_t>& except) {
    const SecurityIds& ids = catalog.ids();
    const struct {
        std::uint32_t id, parent;
        const char* name;
        std::int32_t type;
        const std::string& owner;
    } objects[] = {
        {catalog::kTablesId, catalog::kRootId, "Tables", catalog::kTypeContainer, ids.engine},
        {catalog::kDatabasesId, catalog::kRootId, "Databases", catalog::kTypeContainer, ids.engine},
        {catalog::kRelationsId, catalog::kRootId, "Relationships", catalog::kTypeContainer, ids.engine},
        {catalog::kDatabaseObjectId, catalog::kDatabasesId, "MSysDb", catalog::kTypeDatabase, ids.admin},
        {kCatalogPage, catalog::kTablesId, "MSysObjects", catalog::kTypeTable, ids.engine},
        {catalog::kAccessPage, catalog::kTablesId, "MSysACEs", catalog::kTypeTable, ids.engine},
        {catalog::kQueriesPage, catalog::kTablesId, "MSysQueries", catalog::kTypeTable, ids.engine},
        {catalog::kRelationsPage, catalog::kTablesId, "MSysRelationships", catalog::kTypeTable, ids.engine},
    };
    for (const auto& o : objects) {
        if (except.contains(o.id)) continue;
        catalog.add({o.id, o.parent, o.name, o.type, o.owner, catalog::kSystemObject, created});
    }
}

void addStandardAccess(CatalogWriter& catalog, const std::set<std::uint32_t>& except) {
    const SecurityIds& ids = catalog.ids();
    const struct {
        std::uint32_t object;
        const std::string& who;
        std::uint32_t rights;
        bool inheritable;
    } entries[] = {
        {kCatalogPage, ids.admin, 0x60000, false},
        {catalog::kAccessPage, ids.admin, 0x60000, false},
        {catalog::kQueriesPage, ids.admin, 0x60000, false},
        {catalog::kRelationsPage, ids.admin, 0xE0000, false},
        {catalog::kTablesId, ids.creator, 0xF00FE, true},
        {catalog::kTablesId, ids.admin, 0x60001, false},
        {catalog::kRelationsId, ids.creator, 0xF00FE, true},
        {catalog::kRelationsId, ids.admin, 0x60001, false},
        {catalog::kDatabasesId, ids.admin, 0x60000, false},
        {catalog::kDatabaseObjectId, ids.admin, 0x6000E, false},
        {catalog::kDatabaseObjectId, ids.users, 0x0E, false},
        {catalog::kQueriesPage, ids.users, 0x14, false},
        {catalog::kRelationsPage, ids.users, 0x14, false},
        {kCatalogPage, ids.users, 0x14, false},
        {catalog::kTablesId, ids.users, 0xFFEFF, true},
        {catalog::kRelationsId, ids.users, 0xFFFFF, true},
    };
    for (const auto& e : entries) {
        if (!except.contains(e.object)) catalog.allow(e.object, e.who, e.rights, e.inheritable);
    }
}

void finish(File& file, const std::string& path) {
    if (!file.checkpoint()) throwWriteError(path, ENOSPC);
}

void createDatabaseFile(const std::string& nativePath, Version version) {
    refuseExisting(nativePath);
    NewFile fresh(nativePath);
    writeEmptyDatabase(fresh.path(), newHeader(version));
    {
        File file(fresh.path(), Access::kReadWrite);
        File::Writing writing(file);
        CatalogWriter catalog(file, std::make_shared<PageAllocator>(file));
        addStandardObjects(catalog, currentDay());
        addStandardAccess(catalog);
        writing.commit(Durability::kSoon);
        finish(file, fresh.path());
    }
    fresh.giveName();
}

}  // namespace wendel::jet
