#include "jet/storage/Journal.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <random>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/FileIo.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};
// Equal bytes between two changes that cost less than another record.
constexpr std::size_t kBridge = 16;
// A page with more changes than this is written whole: reading it stays cheap.
constexpr std::uint32_t kMostChanges = 32;
constexpr std::size_t kBufferBytes = 1 << 18;
constexpr std::size_t kBatchPages = 64;
// Where the magic of a journal that was set aside differs.
constexpr std::uint64_t kAtMagicEnd = 7;

using Bytes = std::span<const std::uint8_t>;

std::uint64_t randomSalt() {
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

// First position from `from` on where both differ; their size if nowhere.
std::size_t firstDifference(Bytes a, Bytes b, std::size_t from) {
    while (from + 8 <= a.size() && loadU64(&a[from]) == loadU64(&b[from]))
        from += 8;
    while (from < a.size() && a[from] == b[from])
        ++from;
    return from;
}

// Behind the last difference before the next kBridge equal bytes.
std::size_t differenceEnd(Bytes a, Bytes b, std::size_t begin) {
    std::size_t end = begin + 1;
    for (std::size_t i = end; i < a.size() && i - end < kBridge; ++i)
        if (a[i] != b[i]) end = i + 1;
    return end;
}

struct Piece {
    std::size_t begin, end;
};

std::vector<Piece> differences(Bytes a, Bytes b) {
    std::vector<Piece> pieces;
    for (std::size_t i = firstDifference(a, b, 0); i < a.size();) {
        const std::size_t end = differenceEnd(a, b, i);
        pieces.push_back({i, end});
        i = firstDifference(a, b, end);
    }
    return pieces;
}

std::size_t cost(const std::vector<Piece>& pieces) {
    std::size_t bytes = 0;
    for (const Piece& piece : pieces)
        bytes += piece.end - piece.begin + kJournalRecordHead;
    return bytes;
}

// Whether the times and the size are the same; a copy elsewhere may keep them.
bool sameTimes(const FileStamp& a, const FileStamp& b) {
    return a.size == b.size && a.modifiedNs == b.modifiedNs;
}

}  // namespace

Journal::~Journal() {
    if (fd_ >= 0) ::close(fd_);
}

// --- What is there ---------------------------------------------------------------------------------------

void Journal::open() {
    // A link would have us write into whatever somebody made it lead to.
    constexpr int kFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW;
    fd_ = ::open(path_.c_str(), O_RDWR | kFlags);
    writable_ = fd_ >= 0;
    if (fd_ < 0) fd_ = ::open(path_.c_str(), O_RDONLY | kFlags);
    struct stat info {};
    if (fd_ < 0) {
        const bool filled =
            ::stat(path_.c_str(), &info) == 0 && info.st_size > static_cast<off_t>(kJournalRuns);
        if (filled) {
            throw Fehler(
                jetfehler::kNoAccess, "Datenbankdatei",
                "Die Datei '" + path_ +
                    "' kann nicht gelesen werden. Sie enthält die letzten Änderungen der Datenbank.");
        }
        return;
    }
    if (::fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(std::exchange(fd_, -1));
        return;
    }
    contents_ = scanJournal(source());
    // Zeros are what a power cut may leave of a journal before anything was promised.
    std::array<std::uint8_t, kJournalHeaderSize> head{};
    const bool zeros = !readFully(fd_, head, 0) ||
                       std::all_of(head.begin(), head.end(), [](std::uint8_t byte) { return byte == 0; });
    disregarded_ = !contents_.header && !zeros;
}

JournalSource Journal::source() const {
    return [fd = fd_](std::uint64_t offset, std::span<std::uint8_t> buffer) -> std::size_t {
        const ssize_t n = ::pread(fd, buffer.data(), buffer.size(), static_cast<off_t>(offset));
        return n < 0 ? 0 : static_cast<std::size_t>(n);
    };
}

bool Journal::fits(int database, const FileStamp& stamp) const {
    if (empty()) return true;
    const JournalHeader& header = *contents_.header;
    const bool started = contents_.startedEnd != 0;
    if (!started && header.exact && sameTimes(header.database, stamp)) return true;
    const bool sizeFits = started ? stamp.size >= header.database.size : stamp.size == header.database.size;
    return sizeFits && beforesMatch(database) && finalsMatch(database);
}

bool Journal::beforesMatch(int database) const {
    std::vector<std::uint8_t> bytes(pageSize());
    return std::all_of(contents_.before.begin(), contents_.before.end(), [&](const auto& entry) {
        const auto& [page, hash] = entry;
        if (contents_.finals.contains(page)) return true;
        return readFully(database, bytes, std::uint64_t{page} * pageSize()) && journalHash(bytes, 0) == hash;
    });
}

bool Journal::finalsMatch(int database) const {
    std::vector<std::uint8_t> bytes(pageSize());
    return std::all_of(contents_.finals.begin(), contents_.finals.end(), [&](const auto& entry) {
        const auto& [page, hash] = entry;
        bool replacedSince = false;
        contents_.index.forEach(page, [&](const JournalIndex::Change& change, bool whole) {
            replacedSince = whole && change.at >= contents_.startedEnd;
            return false;
        });
        if (replacedSince) return true;
        return readFromDatabase(database, page, bytes, contents_.startedEnd) && journalHash(bytes, 0) == hash;
    });
}

void Journal::disregard() {
    contents_.index.clear();
    contents_.before.clear();
    contents_.finals.clear();
    disregarded_ = true;
}

bool Journal::setAside() {
    struct stat info {};
    // Another process may have done it, and what is there now be its own.
    if (fd_ < 0 || ::fstat(fd_, &info) != 0 || !leadsTo(path_, info)) return false;
    if (::rename(path_.c_str(), (path_ + ".alt").c_str()) != 0) return false;
    // Others that have it open find that it is none any more.
    constexpr std::uint8_t kNoMagic = 'X';
    if (writable_ && !writeFully(fd_, {&kNoMagic, 1}, kAtMagicEnd)) return false;
    ::close(std::exchange(fd_, -1));
    contents_ = {};
    disregarded_ = false;
    return true;
}

bool Journal::knows(const FileStamp& stamp) const {
    if (!contents_.header || !contents_.header->exact) return false;
    const FileStamp& left = contents_.header->database;
    return sameTimes(left, stamp) && left.inode == stamp.inode && left.changedNs == stamp.changedNs;
}

bool Journal::movedOn() const {
    if (fd_ < 0) {
        Journal newer("");
        newer.path_ = path_;
        try {
            newer.open();
        } catch (const Fehler&) {
            return true;  // there is something now; opening the database anew tells what is wrong with it
        }
        return !newer.empty();
    }
    struct stat info {};
    std::array<std::uint8_t, kJournalHeaderSize> head{};
    if (::fstat(fd_, &info) != 0 || !leadsTo(path_, info)) return true;
    const auto size = static_cast<std::uint64_t>(info.st_size);
    const bool read = readFully(fd_, head, 0);
    const std::optional<JournalHeader> now = JournalHeader::decoded(head);
    if (!contents_.header) return read && now;
    if (!read || !now || now->salt != contents_.header->salt || size < contents_.end) return true;
    return size > contents_.end && hasSealedRun(source(), *now, contents_.end);
}

bool Journal::apply(std::uint32_t page, std::span<std::uint8_t> bytes) const {
    return applyUpTo(page, bytes, kNoLimit);
}

bool Journal::applyUpTo(std::uint32_t page, std::span<std::uint8_t> bytes, std::uint64_t upTo) const {
    bool read = true;
    contents_.index.forEach(page, [&](const JournalIndex::Change& change, bool whole) {
        if (change.at >= upTo) return false;
        if (whole) std::fill(bytes.begin() + change.length, bytes.end(), std::uint8_t{0});
        read = readFully(fd_, bytes.subspan(change.offset, change.length), change.at);
        return read;
    });
    return read;
}

// The page of the file with the changes that stand before `upTo` in the journal.
bool Journal::readFromDatabase(int database, std::uint32_t page, std::span<std::uint8_t> bytes,
                               std::uint64_t upTo) const {
    if (!startsWhole(page) && !readFully(database, bytes, std::uint64_t{page} * pageSize())) return false;
    return applyUpTo(page, bytes, upTo);
}

// --- A statement -----------------------------------------------------------------------------------------

void Journal::begin(const Database& database) {
    if (disregarded_ && !setAside()) throwReadOnly();
    if (fd_ < 0) create(database.rights);
    if (!writable_) throwReadOnly();
    // Without its name the journal would be lost with the power, and with it what kNow promises. Whoever made
    // it may have been killed before.
    if (!contents_.header && !syncFolderOf(path_)) throwWriteError(path_, errno);
    const bool headerFits = contents_.header && contents_.header->pageSize == database.pageSize &&
                            (!empty() || knows(database.stamp));
    if (!headerFits) {
        if (!writeHeader({database.pageSize, randomSalt(), database.stamp, database.stampExact}))
            throwWriteError(path_, errno);
    }
    bufferAt_ = contents_.end;
    startRun();
    struct stat info {};
    const bool torn = ::fstat(fd_, &info) == 0 && static_cast<std::uint64_t>(info.st_size) > contents_.end;
    if (torn) abandon();
}

void Journal::throwReadOnly() const {
    throw Fehler(jetfehler::kReadOnly, "Datenbankdatei",
                 "Aktualisieren nicht möglich. Die Datei '" + path_ + "' kann nicht geschrieben werden.");
}

void Journal::create(const FileRights& rights) {
    if (!folderTakesFiles(path_)) throwReadOnly();
    fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, rights.mode);
    if (fd_ < 0 && errno == EEXIST) {
        open();
        return;
    }
    if (fd_ < 0 && (errno == ENOSPC || errno == EDQUOT)) throwWriteError(path_, errno);
    if (fd_ < 0) throwReadOnly();
    writable_ = true;
    giveRights(fd_, rights);
}

bool Journal::writeHeader(const JournalHeader& header) {
    std::vector<std::uint8_t> bytes = header.encoded();
    bytes.resize(kJournalRuns);
    if (!writeFully(fd_, bytes, 0)) return false;
    contents_ = {};
    contents_.header = header;
    contents_.end = kJournalRuns;
    return true;
}

void Journal::startRun() {
    buffer_.clear();
    pending_.clear();
    spilled_.clear();
    runHash_ = journalRunSeed(contents_.header->salt, contents_.end);
}

void Journal::appendRecord(JournalRecord kind, std::uint32_t page, std::size_t offset, Bytes bytes) {
    const std::size_t at = buffer_.size();
    buffer_.resize(at + kJournalRecordHead + bytes.size());
    std::uint8_t* const head = buffer_.data() + at;
    head[0] = static_cast<std::uint8_t>(kind);
    storeU24(head + 1, page);
    storeU16(head + 4, static_cast<std::uint16_t>(offset));
    storeU16(head + 6, static_cast<std::uint16_t>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), head + kJournalRecordHead);
    runHash_ = journalHash(Bytes(buffer_).subspan(at), runHash_);
    if (kind == JournalRecord::kRange || kind == JournalRecord::kWhole) {
        pending_.push_back({page,
                            kind == JournalRecord::kWhole,
                            {bufferAt_ + at + kJournalRecordHead, 0, static_cast<std::uint16_t>(offset),
                             static_cast<std::uint16_t>(bytes.size())}});
    }
    if (buffer_.size() >= kBufferBytes) flush();
}

void Journal::appendHash(JournalRecord kind, std::uint32_t page, std::uint64_t hash) {
    std::array<std::uint8_t, kJournalHashSize> bytes{};
    storeU64(bytes.data(), hash);
    appendRecord(kind, page, 0, bytes);
}

void Journal::appendWhole(std::uint32_t page, Bytes bytes) {
    while (!bytes.empty() && bytes.back() == 0)
        bytes = bytes.first(bytes.size() - 1);
    appendRecord(JournalRecord::kWhole, page, 0, bytes);
}

// The first change of a page notes what it was, so that the journal can tell its file from others.
void Journal::noteBefore(std::uint32_t page, Bytes before) {
    if (before.empty() || contents_.index.contains(page) || spilled_.contains(page)) return;
    appendHash(JournalRecord::kBefore, page, journalHash(before, 0));
}

void Journal::add(std::uint32_t page, Bytes bytes, Bytes before) {
    if (before.empty()) return appendWhole(page, bytes);
    const std::vector<Piece> pieces = differences(bytes, before);
    if (pieces.empty()) return;
    noteBefore(page, before);
    const bool many = contents_.index.changes(page) + pieces.size() > kMostChanges;
    if (many || cost(pieces) >= bytes.size()) return appendWhole(page, bytes);
    for (const Piece& piece : pieces)
        appendRecord(JournalRecord::kRange, page, piece.begin,
                     bytes.subspan(piece.begin, piece.end - piece.begin));
}

void Journal::spill(std::uint32_t page, Bytes bytes, Bytes before) {
    noteBefore(page, before);
    appendWhole(page, bytes);
    spilled_[page] = pending_.back().change;
}

void Journal::flush() {
    if (!writeFully(fd_, buffer_, bufferAt_)) throwWriteError(path_, errno);
    bufferAt_ += buffer_.size();
    buffer_.clear();
}

bool Journal::readSpilled(std::uint32_t page, std::span<std::uint8_t> bytes) const {
    const JournalIndex::Change& change = spilled_.at(page);
    std::fill(bytes.begin() + change.length, bytes.end(), std::uint8_t{0});
    return readFully(fd_, bytes.first(change.length), change.at);
}

void Journal::seal(JournalRecord kind, std::uint32_t pageCount) {
    std::array<std::uint8_t, kJournalRecordHead> head{};
    head[0] = static_cast<std::uint8_t>(kind);
    storeU24(&head[1], pageCount);
    storeU16(&head[6], kJournalHashSize);
    appendHash(kind, pageCount, journalHash(head, runHash_));
    flush();
}

bool Journal::commit(std::uint32_t pageCount, Durability durability) {
    if (pending_.empty()) return false;
    seal(JournalRecord::kSeal, pageCount);
    if (durability == Durability::kNow && ::fdatasync(fd_) != 0) throwWriteError(path_, errno);
    for (const Pending& pending : pending_)
        contents_.index.add(pending.page, pending.whole, pending.change);
    contents_.end = bufferAt_;
    contents_.pageCount = pageCount;
    startRun();
    return true;
}

void Journal::abandon() {
    if (fd_ < 0 || !contents_.header) return;
    // Should this fail, a run without a seal stays; the next one overwrites it.
    (void)!::ftruncate(fd_, static_cast<off_t>(contents_.end));
    bufferAt_ = contents_.end;
    startRun();
}

// --- Checkpoint ------------------------------------------------------------------------------------------

bool Journal::bringInto(int database) {
    if (empty()) return true;
    const std::vector<std::uint32_t> pages = contents_.index.pages();
    try {
        if (!announceCheckpoint(database, pages)) return false;
    } catch (const Fehler&) {  // not announced: nothing is lost, later is good enough
        abandon();
        return false;
    }
    struct stat info {};
    if (!writeDatabase(database, pages) || ::fsync(database) != 0 || ::fstat(database, &info) != 0)
        return false;
    return reset(stampOf(info));
}

// Notes, durably, what the pages will be, before the first of them is written.
bool Journal::announceCheckpoint(int database, const std::vector<std::uint32_t>& pages) {
    // Who noted it may have been killed before it was durable.
    if (contents_.startedEnd == contents_.end) return ::fdatasync(fd_) == 0;
    bufferAt_ = contents_.end;
    startRun();
    std::vector<std::uint8_t> bytes(pageSize());
    for (const std::uint32_t page : pages) {
        if (!readFromDatabase(database, page, bytes, kNoLimit)) return false;
        appendHash(JournalRecord::kFinal, page, journalHash(bytes, 0));
    }
    seal(JournalRecord::kStarted, contents_.pageCount);
    if (::fdatasync(fd_) != 0) throwWriteError(path_, errno);
    contents_.startedEnd = contents_.end = bufferAt_;
    return true;
}

bool Journal::writeDatabase(int database, const std::vector<std::uint32_t>& pages) {
    const std::uint64_t oldSize = contents_.header->database.size;
    const auto firstNew =
        std::lower_bound(pages.begin(), pages.end(), static_cast<std::uint32_t>(oldSize / pageSize()));
    // What needs room comes first: on a full disk the file stays what it was.
    if (!writePages(database, {firstNew, pages.end()})) {
        (void)!::ftruncate(database, static_cast<off_t>(oldSize));
        return false;
    }
    return writePages(database, {pages.begin(), firstNew});
}

// Neighbours go in one call.
bool Journal::writePages(int database, std::span<const std::uint32_t> pages) {
    std::vector<std::uint8_t> batch;
    while (!pages.empty()) {
        std::size_t count = 1;
        while (count < std::min(pages.size(), kBatchPages) && pages[count] == pages[0] + count)
            ++count;
        batch.resize(count * pageSize());
        for (std::size_t i = 0; i < count; ++i) {
            const auto bytes = std::span(batch).subspan(i * pageSize(), pageSize());
            if (!readFromDatabase(database, pages[i], bytes, kNoLimit)) return false;
        }
        if (!writeFully(database, batch, std::uint64_t{pages[0]} * pageSize())) return false;
        pages = pages.subspan(count);
    }
    return true;
}

// From the new header on the old runs count for nothing; before it they can be repeated. Only when it is on
// the disk may runs come behind it.
bool Journal::reset(const FileStamp& database) {
    if (!writeHeader({pageSize(), randomSalt(), database, true})) return false;
    return ::ftruncate(fd_, static_cast<off_t>(kJournalRuns)) == 0 && ::fdatasync(fd_) == 0;
}

void Journal::remove() {
    if (fd_ >= 0 && empty() && !disregarded_) ::unlink(path_.c_str());
}

}  // namespace wendel::jet
