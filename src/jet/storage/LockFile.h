#pragma once
// The .ldb file beside a database: a list of who has it open, as other programs show it. It guards nothing
// (FileLocks.h does that); a file that cannot be made or written is no error.

#include <string>

#include "jet/storage/FileIo.h"

namespace wendel::jet {

class LockFile {
  public:
    struct User {
        std::string computer, name;  // UTF-8; empty when the list does not tell
    };

    LockFile() = default;
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    // Makes or opens the list of this database, with these rights when it is new, takes the first free place
    // and writes this computer into it.
    void enter(const std::string& databasePath, const FileRights& rights);
    // The own place, 1 to 255; 0 without one.
    unsigned slot() const { return slot_; }
    // Who has this place in a database's list.
    static User user(const std::string& databasePath, unsigned slot);
    // How many places of a database's list are held at this moment; takes none.
    static unsigned users(const std::string& databasePath);
    // Removes the list, unless somebody else has a place in it. For the last user, while nobody can enter.
    void remove();

  private:
    std::string path_;
    int fd_ = -1;
    unsigned slot_ = 0;
};

}  // namespace wendel::jet
