#pragma once
// Adds and removes the objects of the catalog: rows of MSysObjects and, with them, the access entries without
// which the engine does not open a table. Schema and Compact use it inside File::Writing.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "jet/storage/Catalog.h"
#include "jet/storage/TableWriter.h"

namespace wendel::jet {

// The security ids of a file as it stores them: two bytes each, masked by a value that belongs to the header.
struct SecurityIds {
    std::string engine, creator, users, admin;
    explicit SecurityIds(std::uint16_t mask);
};
// The mask of new files of this version; it belongs to the header that createDatabaseFile writes.
std::uint16_t newSecurityMask(Version version);

struct CatalogObject {
    std::uint32_t id = 0, parent = 0;
    std::string_view name;
    std::int32_t type = 0;
    std::string_view owner;
    std::uint32_t flags = 0;
    double created = 0;  // day number
};

class CatalogWriter {
  public:
    // Reads the mask of the security ids from the catalog's rows; files without them get that of new files.
    CatalogWriter(File& file, std::shared_ptr<PageAllocator> allocator);

    const SecurityIds& ids() const { return ids_; }

    // Whether tables and queries have an object of this name, compared as the catalog's index does.
    bool contains(std::string_view name);

    void add(const CatalogObject& object);
    void allow(std::uint32_t objectId, std::string_view securityId, std::uint32_t rights, bool inheritable);
    // What every user may do with a new table.
    void allowUsers(std::uint32_t objectId);
    // A user table of the user Admin.
    void addTable(std::uint32_t page, std::string_view name, double created);
    // The object and its access entries.
    void remove(std::uint32_t objectId);

  private:
    std::uint16_t findMask();

    File& file_;
    std::shared_ptr<const TableDef> objects_, access_;
    TableWriter objectWriter_, accessWriter_;
    SecurityIds ids_;
};

// Now, as the day number of local time that date columns hold.
double currentDay();

}  // namespace wendel::jet
