#pragma once
// Files in the making: a database is built under a name of its own and gets the wanted one when it is whole
// and on the disk, so that a crash never leaves half a database where others look for one. And what every new
// database starts with: header, page map, the four system tables.

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "jet/storage/File.h"

namespace wendel::jet {

class NewFile {
  public:
    // Makes an empty file of its own name beside the target. Throws Fehler 3044 when the folder is missing,
    // 3051 when nothing may be made there, 3026 when the disk is full.
    explicit NewFile(std::string target);
    // The same under this name; whatever is left there from a repair that was killed goes.
    NewFile(std::string target, std::string path);
    // Removes the file unless it has got its name.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    const std::string& path() const { return path_; }

    // Both bring the file to the disk first; nobody may have it open any more. Throw Fehler 3026 or 3051 when
    // that fails; the target is untouched then.
    // Throws Fehler 3204 when there is a file of this name.
    void giveName();
    // Takes the place of the target, whose access rights it gets.
    void replaceTarget();

  private:
    void sync();
    void remove();

    std::string target_, path_;
    bool named_ = false;
};

// Page 0 of a new database of this version.
std::vector<std::uint8_t> newHeader(Version version);

// Fills the empty file with a database that has the four system tables and no rows in them; the header is
// taken over. Throws Fehler 3026 and 3051.
void writeEmptyDatabase(const std::string& path, std::span<const std::uint8_t> header);

// The rows of the catalog that every database has, and their access entries; without those of the objects in
// `except`. Only inside File::Writing.
class CatalogWriter;
void addStandardObjects(CatalogWriter& catalog, double created, const std::set<std::uint32_t>& except = {});
void addStandardAccess(CatalogWriter& catalog, const std::set<std::uint32_t>& except = {});

// Throws Fehler 3204 when something of this name exists.
void refuseExisting(const std::string& path);

// Brings the journal of the finished new file of this path into it. Throws Fehler 3026 when that is
// impossible.
void finish(File& file, const std::string& path);

}  // namespace wendel::jet
