#pragma once
// The journal beside a database file ("<file>-journal"): what statements have changed and nobody has written
// into the file itself yet. A redo journal: a statement is done when its run (JournalScan.h) is sealed;
// bringing it in only repeats overwrites, so it can be cut off and done again at any time. File takes the
// locks that each call needs and says here.
//
// Is a journal found beside a file the one of this file? A killed process leaves one, and then a program that
// knows nothing of journals may change the file, or somebody may put a backup in its place. So contents
// decide, not times: a journal fits when each page that it changes is still what it was before (its hash is
// kept), and, once a checkpoint was begun, when each page becomes what the checkpoint meant it to be, whether
// it was written already, in part, or not. Copies of both files to anywhere stay good; a file that was
// changed in a page of the journal, or that grew, is left as it is. The file's size and times only spare the
// comparison where they are those that this program itself left.

#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/JournalScan.h"

namespace wendel::jet {

class Journal {
  public:
    // Opens nothing yet.
    explicit Journal(const std::string& databasePath) : path_(databasePath + "-journal") {}
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    // Reads the journal if there is one. kReaders held. Throws Fehler 3051 when there is one with contents
    // that must not be read.
    void open();
    // Whether the journal belongs to this state of the database file, see above; an empty one always does.
    bool fits(int database, const FileStamp& stamp) const;
    // A journal that does not fit counts for nothing from now on, in this object.
    void disregard();
    // Renames it to "...-journal.alt", for somebody to look into. kWriter held. False when that cannot be
    // done, or somebody else has done it.
    bool setAside();

    bool empty() const { return contents_.index.empty(); }
    std::uint64_t size() const { return contents_.end; }
    // The page count that the last statement left; only when not empty.
    std::uint32_t pageCount() const { return contents_.pageCount; }
    // 0 without a header.
    std::uint32_t pageSize() const { return contents_.header ? contents_.header->pageSize : 0; }
    // The database file is exactly as a checkpoint left it.
    bool knows(const FileStamp& stamp) const;
    // Whether another process has done statements or a checkpoint since this object knows the journal.
    bool movedOn() const;

    bool startsWhole(std::uint32_t page) const { return contents_.index.startsWhole(page); }
    // Puts the page's changes over what the database file has. False when the journal cannot be read.
    [[nodiscard]] bool apply(std::uint32_t page, std::span<std::uint8_t> bytes) const;

    // A new run; kWriter held, movedOn() false. All these throw Fehler 3026 on a full disk, 3027 when there
    // can be no journal and 3051 when it cannot be written; abandon() is then the next call.
    struct Database {
        FileStamp stamp;
        bool stampExact = false;
        std::uint32_t pageSize = 0;
        FileRights rights;
    };
    void begin(const Database& database);
    // `before` is the last version, empty when that is of no use. Nothing is written when both are the same.
    void add(std::uint32_t page, std::span<const std::uint8_t> bytes, std::span<const std::uint8_t> before);
    // The page, whole, for taken() until the end of the run; its memory can be given away.
    void spill(std::uint32_t page, std::span<const std::uint8_t> bytes, std::span<const std::uint8_t> before);
    void flush();
    bool spilled(std::uint32_t page) const { return spilled_.contains(page); }
    [[nodiscard]] bool readSpilled(std::uint32_t page, std::span<std::uint8_t> bytes) const;
    bool anythingSpilled() const { return !spilled_.empty(); }
    // False when the run has no changes: nothing is written then.
    bool commit(std::uint32_t pageCount, Durability durability);
    // Takes back what has been written of the run. No error: what stays is without a seal.
    void abandon();

    // Writes all changes into the database file and empties the journal. kWriter and kReaders held, alone; no
    // run begun; the journal fits. False when the disk does not allow it; the journal stays then.
    bool bringInto(int database);
    // For the last user, when it is empty.
    void remove();

  private:
    JournalSource source() const;
    [[noreturn]] void throwReadOnly() const;
    bool beforesMatch(int database) const;
    bool finalsMatch(int database) const;
    bool readFromDatabase(int database, std::uint32_t page, std::span<std::uint8_t> bytes,
                          std::uint64_t upTo) const;
    bool applyUpTo(std::uint32_t page, std::span<std::uint8_t> bytes, std::uint64_t upTo) const;
    void create(const FileRights& rights);
    [[nodiscard]] bool writeHeader(const JournalHeader& header);
    void appendRecord(JournalRecord kind, std::uint32_t page, std::size_t offset,
                      std::span<const std::uint8_t> bytes);
    void appendHash(JournalRecord kind, std::uint32_t page, std::uint64_t hash);
    void appendWhole(std::uint32_t page, std::span<const std::uint8_t> bytes);
    void seal(JournalRecord kind, std::uint32_t pageCount);
    void noteBefore(std::uint32_t page, std::span<const std::uint8_t> before);
    void startRun();
    bool announceCheckpoint(int database, const std::vector<std::uint32_t>& pages);
    bool writePages(int database, std::span<const std::uint32_t> pages);
    bool writeDatabase(int database, const std::vector<std::uint32_t>& pages);
    bool reset(const FileStamp& database);

    struct Pending {
        std::uint32_t page;
        bool whole;
        JournalIndex::Change change;
    };

    std::string path_;
    int fd_ = -1;
    bool writable_ = false;
    JournalContents contents_;
    // Nothing of the file counts; it is to be set aside before a run is begun.
    bool disregarded_ = false;

    // The run in progress: what is not written yet, and where the whole run will be.
    std::vector<std::uint8_t> buffer_;
    std::uint64_t bufferAt_ = 0;
    std::uint64_t runHash_ = 0;
    std::vector<Pending> pending_;
    std::unordered_map<std::uint32_t, JournalIndex::Change> spilled_;
};

}  // namespace wendel::jet
