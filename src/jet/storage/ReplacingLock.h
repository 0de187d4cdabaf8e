#pragma once
// Keeps other writers out of a database file that is going to be replaced by another one under its name, as
// repairing does; readers may come and go, keep the old one and find it changed. Also for files that File
// would not open. A journal left by a killed process is brought in before.

#include <string>

#include "jet/storage/FileLocks.h"

namespace wendel::jet {

class ReplacingLock {
  public:
    // path is native UTF-8. Throws Fehler 3050 when anybody else, another File of this process included, has
    // the file open at this moment, or it cannot be locked; 3024, 3044 and 3051 when it cannot be opened for
    // writing.
    explicit ReplacingLock(const std::string& path);
    ~ReplacingLock();
    ReplacingLock(const ReplacingLock&) = delete;
    ReplacingLock& operator=(const ReplacingLock&) = delete;

  private:
    void lock(const std::string& path);
    void bringJournalIn(const std::string& path);

    int fd_;
    FileLocks locks_;
};

}  // namespace wendel::jet
