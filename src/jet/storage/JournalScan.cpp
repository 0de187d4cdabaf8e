#include "jet/storage/JournalScan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "jet/storage/Bytes.h"

namespace wendel::jet {
namespace {

constexpr std::array<std::uint8_t, 8> kMagic = {'W', 'E', 'N', 'D', 'E', 'L', 'J', '1'};
constexpr std::size_t kAtPageSize = 8, kAtFlags = 12, kAtSalt = 16, kAtSize = 24, kAtModified = 32,
                      kAtChanged = 40, kAtInode = 48, kAtHash = 56;
constexpr std::uint32_t kFlagExact = 1;
constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
constexpr std::size_t kChunk = 1 << 16;

// The journal from some offset on, a few bytes at a time.
class Reader {
  public:
    Reader(const JournalSource& source, std::uint64_t offset) : source_(source), offset_(offset) {}

    std::uint64_t offset() const { return offset_ + used_; }
    // The next `size` bytes without taking them; empty when there are fewer. Valid until the next call.
    std::span<const std::uint8_t> peek(std::size_t size) {
        if (filled_ - used_ < size) refill(size);
        if (filled_ - used_ < size) return {};
        return std::span(buffer_).subspan(used_, size);
    }
    void skip(std::size_t size) { used_ += size; }

  private:
    void refill(std::size_t size) {
        buffer_.resize(std::max(kChunk, size));
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(used_),
                  buffer_.begin() + static_cast<std::ptrdiff_t>(filled_), buffer_.begin());
        offset_ += used_;
        filled_ -= used_;
        used_ = 0;
        filled_ += source_(offset_ + filled_, std::span(buffer_).subspan(filled_));
    }

    const JournalSource& source_;
    std::uint64_t offset_;
    std::vector<std::uint8_t> buffer_;
    std::size_t used_ = 0, filled_ = 0;
};

struct Record {
    JournalRecord kind;
    std::uint32_t page;
    std::uint16_t offset, length;
    std::uint64_t at;    // of its bytes
    std::uint64_t hash;  // its bytes, where they are one
};

bool isSeal(JournalRecord kind) { return kind == JournalRecord::kSeal || kind == JournalRecord::kStarted; }

bool wellFormed(const Record& record, std::uint32_t pageSize) {
    if (record.page >= kMaxPages && !(isSeal(record.kind) && record.page == kMaxPages)) return false;
    switch (record.kind) {
        case JournalRecord::kRange:
            return record.length > 0 && std::uint32_t{record.offset} + record.length <= pageSize;
        case JournalRecord::kWhole: return record.offset == 0 && record.length <= pageSize;
        case JournalRecord::kBefore:
        case JournalRecord::kFinal:
        case JournalRecord::kSeal:
        case JournalRecord::kStarted: return record.offset == 0 && record.length == kJournalHashSize;
    }
    return false;
}

// Takes the next record and adds it to the run's hash; a seal is compared with it instead.
std::optional<Record> nextRecord(Reader& reader, std::uint32_t pageSize, std::uint64_t& runHash) {
    const auto head = reader.peek(kJournalRecordHead);
    if (head.empty()) return std::nullopt;
    Record record{static_cast<JournalRecord>(head[0]),
                  loadU24(&head[1]),
                  loadU16(&head[4]),
                  loadU16(&head[6]),
                  reader.offset() + kJournalRecordHead,
                  0};
    if (!wellFormed(record, pageSize)) return std::nullopt;
    const auto bytes = reader.peek(kJournalRecordHead + record.length);
    if (bytes.empty()) return std::nullopt;
    if (record.length == kJournalHashSize) record.hash = loadU64(&bytes[kJournalRecordHead]);
    if (isSeal(record.kind)) {
        if (journalHash(bytes.first(kJournalRecordHead), runHash) != record.hash) return std::nullopt;
    } else {
        runHash = journalHash(bytes, runHash);
    }
    reader.skip(bytes.size());
    return record;
}

// The records of the next run, its seal last; empty when it is not whole.
std::vector<Record> nextRun(Reader& reader, const JournalHeader& header) {
    std::vector<Record> run;
    std::uint64_t runHash = journalRunSeed(header.salt, reader.offset());
    while (const auto record = nextRecord(reader, header.pageSize, runHash)) {
        run.push_back(*record);
        if (isSeal(record->kind)) return run;
    }
    return {};
}

void take(const Record& record, std::uint64_t end, JournalContents& contents) {
    switch (record.kind) {
        case JournalRecord::kRange:
        case JournalRecord::kWhole:
            contents.index.add(record.page, record.kind == JournalRecord::kWhole,
                               {record.at, 0, record.offset, record.length});
            break;
        case JournalRecord::kBefore: contents.before.emplace(record.page, record.hash); break;
        case JournalRecord::kFinal: contents.finals[record.page] = record.hash; break;
        case JournalRecord::kStarted: contents.startedEnd = end; [[fallthrough]];
        case JournalRecord::kSeal:
            contents.pageCount = record.page;
            contents.end = end;
            break;
    }
}

}  // namespace

std::vector<std::uint8_t> JournalHeader::encoded() const {
    std::vector<std::uint8_t> bytes(kJournalHeaderSize);
    std::copy(kMagic.begin(), kMagic.end(), bytes.begin());
    storeU32(&bytes[kAtPageSize], pageSize);
    storeU32(&bytes[kAtFlags], exact ? kFlagExact : 0);
    storeU64(&bytes[kAtSalt], salt);
    storeU64(&bytes[kAtSize], database.size);
    storeU64(&bytes[kAtModified], static_cast<std::uint64_t>(database.modifiedNs));
    storeU64(&bytes[kAtChanged], static_cast<std::uint64_t>(database.changedNs));
    storeU64(&bytes[kAtInode], database.inode);
    storeU64(&bytes[kAtHash], journalHash(std::span(bytes).first(kAtHash), 0));
    return bytes;
}

std::optional<JournalHeader> JournalHeader::decoded(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < kJournalHeaderSize || !std::equal(kMagic.begin(), kMagic.end(), bytes.begin()) ||
        loadU64(&bytes[kAtHash]) != journalHash(bytes.first(kAtHash), 0)) {
        return std::nullopt;
    }
    JournalHeader header;
    header.pageSize = loadU32(&bytes[kAtPageSize]);
    header.exact = (loadU32(&bytes[kAtFlags]) & kFlagExact) != 0;
    header.salt = loadU64(&bytes[kAtSalt]);
    header.database.size = loadU64(&bytes[kAtSize]);
    header.database.modifiedNs = static_cast<std::int64_t>(loadU64(&bytes[kAtModified]));
    header.database.changedNs = static_cast<std::int64_t>(loadU64(&bytes[kAtChanged]));
    header.database.inode = loadU64(&bytes[kAtInode]);
    if (header.pageSize != kJet3Layout.pageSize && header.pageSize != kJet4Layout.pageSize)
        return std::nullopt;
    return header;
}

std::uint64_t journalHash(std::span<const std::uint8_t> bytes, std::uint64_t seed) {
    std::uint64_t hash = seed ^ bytes.size() * kMultiplier;
    std::size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8)
        hash = std::rotl((hash ^ loadU64(&bytes[i])) * kMultiplier, 29);
    for (; i < bytes.size(); ++i)
        hash = std::rotl((hash ^ bytes[i]) * kMultiplier, 29);
    hash = (hash ^ hash >> 32) * kMultiplier;
    return hash ^ hash >> 29;
}

std::uint64_t journalRunSeed(std::uint64_t salt, std::uint64_t offset) { return salt ^ offset * kMultiplier; }

void JournalIndex::add(std::uint32_t page, bool whole, Change change) {
    const auto index = static_cast<std::uint32_t>(changes_.size());
    changes_.push_back(change);
    Chain& chain = chains_[page];
    if (whole || chain.count == 0) {
        chain = {index, index, 1, whole};
        return;
    }
    changes_[chain.last].next = index;
    chain.last = index;
    ++chain.count;
}

std::uint32_t JournalIndex::changes(std::uint32_t page) const {
    const auto found = chains_.find(page);
    return found == chains_.end() ? 0 : found->second.count;
}

bool JournalIndex::startsWhole(std::uint32_t page) const {
    const auto found = chains_.find(page);
    return found != chains_.end() && found->second.whole;
}

std::vector<std::uint32_t> JournalIndex::pages() const {
    std::vector<std::uint32_t> pages;
    pages.reserve(chains_.size());
    for (const auto& [page, chain] : chains_)
        pages.push_back(page);
    std::sort(pages.begin(), pages.end());
    return pages;
}

void JournalIndex::clear() {
    changes_ = {};
    chains_ = {};
}

JournalContents scanJournal(const JournalSource& source) {
    JournalContents contents;
    std::array<std::uint8_t, kJournalHeaderSize> head{};
    if (source(0, head) != head.size()) return contents;
    contents.header = JournalHeader::decoded(head);
    if (!contents.header) return contents;
    contents.end = kJournalRuns;
    Reader reader(source, kJournalRuns);
    for (auto run = nextRun(reader, *contents.header); !run.empty();
         run = nextRun(reader, *contents.header)) {
        for (const Record& record : run)
            take(record, reader.offset(), contents);
    }
    return contents;
}

bool hasSealedRun(const JournalSource& source, const JournalHeader& header, std::uint64_t offset) {
    Reader reader(source, offset);
    return !nextRun(reader, header).empty();
}

}  // namespace wendel::jet
