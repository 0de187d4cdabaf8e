#pragma once
// A Jet database file as a row of pages: opens and checks it, reads single pages through a small cache,
// changes them statement by statement, and tells when another process has changed it. Knows nothing of what
// the pages hold; all other classes of this folder read and write through it. A statement's changes go to the
// journal beside the file (Journal.h) and from there, at a checkpoint, into the file; so whoever else reads
// the file sees whole statements only. Locks: FileLocks.h.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "jet/storage/FileIo.h"
#include "jet/storage/FileLocks.h"
#include "jet/storage/Format.h"
#include "jet/storage/LockFile.h"
#include "jet/storage/PageCache.h"

namespace wendel::jet {

class Journal;

// Errors of the engine that come out of this folder.
namespace jetfehler {
inline constexpr int kTableExists = 3010;
inline constexpr int kDuplicateKey = 3022;
inline constexpr int kFileNotFound = 3024;
inline constexpr int kDiskFull = 3026;
inline constexpr int kReadOnly = 3027;
inline constexpr int kInvalidPath = 3044;
inline constexpr int kRowTooLarge = 3047;
inline constexpr int kDamaged = 3049;
inline constexpr int kCannotLock = 3050;
inline constexpr int kNoAccess = 3051;
inline constexpr int kNullInPrimaryKey = 3058;
inline constexpr int kSystemTable = 3112;
inline constexpr int kInvalidName = 3125;
inline constexpr int kBracketsInName = 3126;
inline constexpr int kTextTooLong = 3163;
inline constexpr int kRecordDeleted = 3167;
inline constexpr int kTooManyColumns = 3190;
inline constexpr int kDuplicateColumn = 3191;
inline constexpr int kDatabaseExists = 3204;
inline constexpr int kWrongColumnType = 3259;
inline constexpr int kLockedByUser = 3260;
inline constexpr int kTooManyIndexColumns = 3277;
inline constexpr int kInRelation = 3281;
inline constexpr int kPrimaryKeyExists = 3283;
inline constexpr int kIndexExists = 3284;
inline constexpr int kNullInIndex = 3314;
inline constexpr int kUnknownFormat = 3343;
inline constexpr int kNumericOverflow = 3349;
inline constexpr int kNoTableToIndex = 3371;
inline constexpr int kNoSuchIndex = 3372;
inline constexpr int kNoSuchTable = 3376;
inline constexpr int kWrongIndexColumns = 3409;
inline constexpr int kWrongValue = 3421;
inline constexpr int kTooManyIndexes = 3626;
}  // namespace jetfehler

enum class Access { kReadOnly, kReadWrite };

// What a finished statement survives: kNow a power cut as well, kSoon the end of this process by whatever
// means; a power cut may then take the last statements, but never the file's consistency.
enum class Durability { kNow, kSoon };

// Language rules of a text column or a file: LCID and version of the rules.
struct SortOrder {
    std::uint16_t lcid = 0;
    std::uint8_t version = 0;
    friend bool operator==(const SortOrder&, const SortOrder&) = default;
};

// The bytes of one page, decoded; whoever holds the pointer keeps them alive and unchanged.
using Page = PageCache::Page;
using PagePtr = PageCache::PagePtr;

class File {
  public:
    static constexpr std::size_t kDefaultCacheBytes = 1 << 20;
    // A statement that leaves the journal longer than this brings it into the file, if it can.
    static constexpr std::uint64_t kCheckpointBytes = 4 << 20;

    // Opens an existing file; path is native UTF-8. With kReadWrite a file that may only be read is opened
    // for reading all the same (writable() tells). Throws Fehler 3024 when there is no file, 3044 when its
    // folder is missing, 3051 when it must not be read, 3343 when it is no Jet 3 or Jet 4 file, 3049 when it
    // is cut off, 3050 when it stays locked for a second. What a killed process left in the journal is
    // brought into the file when nobody else has it open; else, or where that is not possible, it is read
    // from there.
    // A file is read under a lock from the first byte on. With kReading and kWriting it is kept for the first
    // Reading or Writing, which takes it over: what both read is one state of the file, and the newest.
    // kWriting throws as Writing does.
    enum class Opening { kDone, kReading, kWriting };
    File(const std::string& path, Access access, std::size_t cacheBytes = kDefaultCacheBytes,
         Opening opening = Opening::kDone);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const Layout& layout() const { return *layout_; }
    Version version() const { return layout_->version; }
    // False where Writing ends with 3027: no permission, an encoded file, or another sort order than General.
    bool writable() const { return writable_; }
    // True when the pages are RC4-encoded on the disk ("encrypted" file).
    bool encoded() const { return pageKey_ != 0; }
    // Code page of all text in a Jet 3 file (1252 as a rule); without use in Jet 4.
    std::uint16_t codePage() const { return codePage_; }
    // The order of new columns; each column carries its own.
    SortOrder sortOrder() const { return sortOrder_; }

    // While one lives, the pages read belong to one state of the file: nobody brings the journal into it.
    // Several may nest. Ask changed() behind the first, unless it has taken over the lock of the opening.
    // Without one, pages can be read as well, but another process may exchange them meanwhile.
    class Reading {
      public:
        // Waits up to a second for a checkpoint of another process; then throws Fehler 3050.
        explicit Reading(File& file);
        ~Reading();
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

      private:
        File& file_;
    };

    // One statement that changes pages; one at a time. Without commit() nothing has happened at its end.
    class Writing {
      public:
        // Waits up to a second for another process that writes; then throws Fehler 3260 naming it. 3027 when
        // the file cannot be written, 3050 where files cannot be locked. Ask changed() behind it, as with
        // Reading: a changed file refuses the first change with 3260.
        explicit Writing(File& file);
        ~Writing();
        Writing(const Writing&) = delete;
        Writing& operator=(const Writing&) = delete;
        // To be called once. Writes nothing when no page differs. Throws Fehler 3026 on a full disk and 3051
        // when the journal cannot be written; nothing has happened then, and the File can be used on.
        void commit(Durability durability);

      private:
        File& file_;
    };

    std::uint32_t pageCount() const { return pageCount_; }
    // Throws Fehler 3049 for a page number outside the file or when the page cannot be read. Within a Writing
    // these are the statement's own pages, which go on changing with it.
    PagePtr page(std::uint32_t number);

    // The statement's own copy of a page; only within a Writing. Hold the pointer only while you change the
    // page: those that nobody holds may leave memory. Throws as page() does.
    std::shared_ptr<Page> edit(std::uint32_t number);
    // The same, filled with zeros, for a page whose old content is of no use.
    std::shared_ptr<Page> replace(std::uint32_t number);
    // Number of a new page, zeroed, at the end of the file; a rollback takes it back. Throws Fehler 3026 at
    // the format's limit.
    std::uint32_t appendPage();

    // Whether the file has other contents than when it was opened, by other hands than this File's, or
    // another one lies in its place. Whoever wants to see the new state opens it anew: what still reads this
    // one must not have its pages, or even their layout, exchanged under it. False when the file is gone:
    // there is nothing newer to see. Exact within Reading and Writing, except that it may be true for a file
    // that was written by others a moment before it was opened.
    bool changed() const;

    // Brings the journal into the file, if nobody else is reading or writing; false when that, or the disk,
    // does not allow it now. Never needed for correctness. Not within a Writing with uncommitted changes.
    bool checkpoint();
    bool journalEmpty() const;

    // Requests for pages so far, wherever they came from: what a statement costs, for tests and measurements.
    std::uint64_t pagesRequested() const { return pagesRequested_; }

    // Throws Fehler 3049 naming the file; `what` says in a few German words which structure is broken.
    [[noreturn]] void throwDamaged(std::string_view what) const;

  private:
    struct Changed {
        std::shared_ptr<Page> page;
        PagePtr before;  // last version; null when it is of no use
        std::uint64_t lastUse = 0;
    };
    struct Statement {
        std::uint32_t pageCountBefore = 0;
        bool overtaken = false;  // changes would not belong to what the file is now
        bool begun = false;      // something may be in the journal
        bool committed = false;
        std::uint64_t uses = 0;
        std::unordered_map<std::uint32_t, Changed> pages;
    };

    void openAndCheck(Access access, Opening opening);
    void openDescriptor(Access access, Opening opening);
    void lockReaders();
    void lockWriter();
    void requireWritable(bool writable) const;
    void adoptJournal();
    void readHeader();
    std::size_t cachePages() const;
    void overlayHeader(std::span<std::uint8_t> header) const;
    void rememberStamp();
    // Whether the path leads to this file.
    bool inPlace() const;
    bool overtaken() const;
    bool alone();
    void endReading();
    void leave();
    bool bringJournalIn();

    [[noreturn]] void throwLocked() const;
    Statement& changingStatement();
    Changed& changedPage(std::uint32_t number, std::shared_ptr<Page> page, PagePtr before);
    void makeRoom();
    void beginRun();
    void journalChanges();
    void rollBack();
    PagePtr readPage(std::uint32_t number);

    std::string path_;
    std::size_t cacheBytes_;
    int fd_ = -1;
    bool descriptorWritable_ = false;
    bool writable_ = false;
    FileRights rights_;
    FileLocks locks_;
    LockFile lockFile_;
    std::unique_ptr<Journal> journal_;
    const Layout* layout_ = nullptr;
    std::uint32_t pageKey_ = 0;
    std::uint16_t codePage_ = 0;
    SortOrder sortOrder_;
    std::uint32_t pageCount_ = 0;
    FileStamp stamp_;
    // The file was written so shortly before it was looked at that a second write can carry the same time.
    bool stampUncertain_ = false;

    PageCache cache_;
    Opening kept_ = Opening::kDone;  // whose lock waits to be taken over
    unsigned readings_ = 0;
    std::unique_ptr<Statement> statement_;
    std::uint64_t pagesRequested_ = 0;
};

}  // namespace wendel::jet
