#pragma once
// The format of the journal, and what a journal holds. Journal.h writes one and lives with it; here one is
// only read, with every byte distrusted: whatever it contains, nothing of it is used that does not fit the
// page size and the limits of the database format, or is not sealed by its checksum.
//
// All numbers little-endian. The header, 64 bytes: magic, page size, flags, salt, what the database file
// looked like, hash of these. From kJournalRuns on: runs, one for each statement, one behind the other. A run
// is a row of records; its last, the seal, holds the hash of the run, that begins with the salt and the run's
// place, so that no leftover of earlier contents is taken for a run. The first run without a valid seal ends
// the journal. A record: kind (1 byte), page (3), offset in the page (2), length (2), then `length` bytes.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "jet/storage/FileIo.h"
#include "jet/storage/Format.h"

namespace wendel::jet {

inline constexpr std::size_t kJournalHeaderSize = 64;
inline constexpr std::size_t kJournalRuns = 512;  // in a disk block of its own: nothing overwrites the header
inline constexpr std::size_t kJournalRecordHead = 8;
inline constexpr std::size_t kJournalHashSize = 8;

enum class JournalRecord : std::uint8_t {
    kRange = 'R',    // these bytes belong at this offset of the page
    kWhole = 'W',    // the page begins with these bytes, the rest is zeros; what was before is of no use
    kBefore = 'B',   // hash of the page in the database file, before its first change in this journal
    kFinal = 'F',    // in a checkpoint's run: hash of the page with all changes up to here
    kSeal = 'S',     // end of a run; "page" is the number of pages now
    kStarted = 'C',  // the same for a checkpoint's run: from now on the database file is being written
};

struct JournalHeader {
    std::uint32_t pageSize = 0;
    // Random, another one for each new life of the journal.
    std::uint64_t salt = 0;
    // The database file that the changes belong to (the device is not kept).
    FileStamp database;
    // The stamp cannot be that of an earlier state: another write would have changed it.
    bool exact = false;

    std::vector<std::uint8_t> encoded() const;
    // nullopt when this is no header, or a damaged one.
    static std::optional<JournalHeader> decoded(std::span<const std::uint8_t> bytes);
};

// A hash that finds every damage but chance; seed is that of what comes before.
std::uint64_t journalHash(std::span<const std::uint8_t> bytes, std::uint64_t seed);
// The seed of the run that starts at this offset of the journal.
std::uint64_t journalRunSeed(std::uint64_t salt, std::uint64_t offset);

// Where in the journal the changes of each page stand. 16 bytes for each change and about 48 for each page.
class JournalIndex {
  public:
    struct Change {
        std::uint64_t at = 0;  // of the bytes in the journal
        std::uint32_t next = 0;
        std::uint16_t offset = 0, length = 0;
    };
    // Changes of one page must come in their order.
    void add(std::uint32_t page, bool whole, Change change);

    bool empty() const { return chains_.empty(); }
    bool contains(std::uint32_t page) const { return chains_.contains(page); }
    // How many changes reading the page takes.
    std::uint32_t changes(std::uint32_t page) const;
    // Whether the page can be had without the database file.
    bool startsWhole(std::uint32_t page) const;
    // Ascending.
    std::vector<std::uint32_t> pages() const;
    // visit(change, whole) for each change of the page, oldest first, until it returns false.
    template <typename Visit>
    void forEach(std::uint32_t page, Visit visit) const {
        const auto found = chains_.find(page);
        if (found == chains_.end()) return;
        const Chain& chain = found->second;
        std::uint32_t index = chain.first;
        for (std::uint32_t n = 0; n < chain.count; ++n, index = changes_[index].next)
            if (!visit(changes_[index], chain.whole && n == 0)) return;
    }
    void clear();

  private:
    struct Chain {
        std::uint32_t first = 0, last = 0, count = 0;
        bool whole = false;
    };
    std::vector<Change> changes_;
    std::unordered_map<std::uint32_t, Chain> chains_;
};

struct JournalContents {
    std::optional<JournalHeader> header;
    JournalIndex index;
    std::uint64_t end = 0;        // behind the last sealed run
    std::uint32_t pageCount = 0;  // of the database, as the last run says; 0 without a run
    // Offset behind the last checkpoint's run; 0 when none was begun.
    std::uint64_t startedEnd = 0;
    std::unordered_map<std::uint32_t, std::uint64_t> before, finals;  // hashes by page
};

// Reads up to the buffer's size at the offset; returns how many bytes there were.
using JournalSource = std::function<std::size_t(std::uint64_t offset, std::span<std::uint8_t> buffer)>;

// Everything up to the first thing that is not right. Never fails; without a header there is nothing else.
JournalContents scanJournal(const JournalSource& source);
// Whether a sealed run begins at this offset.
bool hasSealedRun(const JournalSource& source, const JournalHeader& header, std::uint64_t offset);

}  // namespace wendel::jet
