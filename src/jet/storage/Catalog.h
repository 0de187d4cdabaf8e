#pragma once
// The tables of a database file by name, and their definitions, as they were when the file was opened. One
// Database is one open file as the SQL layer sees it; when file().changed(), the next statement takes a new
// one.

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// The fixed places of the catalog.
namespace catalog {
inline constexpr std::uint32_t kAccessPage = 3, kQueriesPage = 4, kRelationsPage = 5;
inline constexpr std::uint32_t kRootId = 0x0F000000;
inline constexpr std::uint32_t kTablesId = 0x0F000001, kDatabasesId = 0x0F000002, kRelationsId = 0x0F000003;
inline constexpr std::uint32_t kDatabaseObjectId = 0x10000000;
inline constexpr std::int32_t kTypeTable = 1, kTypeDatabase = 2, kTypeContainer = 3;
// A table's id is the page of its definition.
inline constexpr std::uint32_t kPageOfId = 0x00FFFFFF;
inline constexpr std::uint32_t kSystemObject = 0x80000000;
// Either of them: a table that users do not see, the engine's or the Access program's.
inline constexpr std::uint32_t kSystemFlags = 0x80000002;
}  // namespace catalog

struct CatalogEntry {
    std::string name;
    std::uint32_t page = 0;  // of the definition
    bool system = false;
};

class Database {
  public:
    // Throws as File does, and Fehler 3049 when the catalog is damaged.
    Database(const std::string& path, Access access, std::size_t cacheBytes = File::kDefaultCacheBytes,
             File::Opening opening = File::Opening::kDone);

    File& file() { return file_; }
    const File& file() const { return file_; }

    // Local tables, system tables included, in the order of the catalog. Linked tables and queries are not
    // here.
    const std::vector<CatalogEntry>& entries() const { return entries_; }

    // The definition by name without regard to case; nullptr when there is no such table. Throws Fehler 3049
    // when the definition is damaged.
    std::shared_ptr<const TableDef> table(std::string_view name);

  private:
    void readCatalog();

    File file_;
    std::vector<CatalogEntry> entries_;
    std::map<std::string, std::size_t> byFoldedName_;
    std::map<std::uint32_t, std::shared_ptr<const TableDef>> definitions_;
};

}  // namespace wendel::jet
