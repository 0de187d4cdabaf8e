#include "jet/storage/IndexPage.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "jet/storage/Bytes.h"

namespace wendel::jet {
namespace {

constexpr std::size_t kWordBits = 64;
constexpr std::size_t kMaxMaskWords = 57;
static_assert(kMaxMaskWords * 8 >= kJet4Layout.indexMaskSize);
constexpr std::size_t kNoBit = SIZE_MAX;

int sign(int value) { return (value > 0) - (value < 0); }

// The entry mask: a set bit is the end of an entry. Words may reach a few bytes into the entries behind the
// mask; such bits lie beyond the capacity and are left out of account.
std::uint64_t maskWord(const Layout& layout, const Page& page, std::size_t word) {
    return loadU64(&page[layout.indexMask + 8 * word]);
}

// The first set bit behind this one, kNoBit when there is none.
std::size_t nextBit(const Layout& layout, const Page& page, std::size_t after) {
    const std::size_t capacity = indexPageCapacity(layout);
    std::size_t word = (after + 1) / kWordBits;
    std::uint64_t bits = maskWord(layout, page, word) & (~std::uint64_t{0} << ((after + 1) % kWordBits));
    while (bits == 0) {
        if (++word * kWordBits > capacity) return kNoBit;
        bits = maskWord(layout, page, word);
    }
    const std::size_t bit = word * kWordBits + static_cast<std::size_t>(std::countr_zero(bits));
    return bit <= capacity ? bit : kNoBit;
}

// The last set bit up to and including this one, 0 when there is none: the first entry starts there.
std::size_t lastBit(const Layout& layout, const Page& page, std::size_t upTo) {
    std::size_t word = upTo / kWordBits;
    std::uint64_t bits =
        maskWord(layout, page, word) & (~std::uint64_t{0} >> (kWordBits - 1 - upTo % kWordBits));
    while (bits == 0) {
        if (word == 0) return 0;
        bits = maskWord(layout, page, --word);
    }
    return word * kWordBits + kWordBits - 1 - static_cast<std::size_t>(std::countl_zero(bits));
}

std::size_t prefixLengthOf(const Layout& layout, const Page& page) {
    // The byte behind a one-byte prefix length is the level of the page.
    const std::uint8_t* p = &page[layout.indexPrefixLength];
    return layout.indexPrefixSize == 1 ? *p : loadU16(p);
}

void setPrefixLength(const Layout& layout, Page& page, std::size_t length) {
    std::uint8_t* p = &page[layout.indexPrefixLength];
    if (layout.indexPrefixSize == 1) {
        *p = static_cast<std::uint8_t>(length);
    } else {
        storeU16(p, static_cast<std::uint16_t>(length));
    }
}

void setFreeBytes(const Layout& layout, Page& page, std::size_t end) {
    storeU16(&page[kIndexFreeBytes], static_cast<std::uint16_t>(indexPageCapacity(layout) - end));
}

// The mask of a page taken out, to move its upper part.
class MovableMask {
  public:
    MovableMask(const Layout& layout, const Page& page)
        : size_(layout.indexMaskSize), count_((size_ + 7) / 8) {
        std::array<std::uint8_t, kMaxMaskWords * 8> bytes{};
        std::memcpy(bytes.data(), &page[layout.indexMask], size_);
        for (std::size_t i = 0; i < count_; ++i)
            words_[i] = loadU64(&bytes[8 * i]);
    }

    void set(std::size_t bit) { words_[bit / kWordBits] |= std::uint64_t{1} << bit % kWordBits; }
    void clear(std::size_t bit) { words_[bit / kWordBits] &= ~(std::uint64_t{1} << bit % kWordBits); }

    // Moves all bits behind this one up, or down by at most their distance from it.
    void moveUp(std::size_t behind, std::size_t distance) {
        const Words upper = cutBehind(behind);
        const std::size_t whole = distance / kWordBits, part = distance % kWordBits;
        for (std::size_t i = whole; i < count_; ++i) {
            words_[i] |= upper[i - whole] << part;
            if (part != 0 && i > whole) words_[i] |= upper[i - whole - 1] >> (kWordBits - part);
        }
    }
    void moveDown(std::size_t behind, std::size_t distance) {
        const Words upper = cutBehind(behind);
        const std::size_t whole = distance / kWordBits, part = distance % kWordBits;
        for (std::size_t i = whole; i < count_; ++i) {
            words_[i - whole] |= upper[i] >> part;
            if (part != 0 && i > whole) words_[i - whole - 1] |= upper[i] << (kWordBits - part);
        }
    }

    void store(const Layout& layout, Page& page) const {
        std::array<std::uint8_t, kMaxMaskWords * 8> bytes{};
        for (std::size_t i = 0; i < count_; ++i)
            storeU64(&bytes[8 * i], words_[i]);
        std::memcpy(&page[layout.indexMask], bytes.data(), size_);
    }

  private:
    using Words = std::array<std::uint64_t, kMaxMaskWords>;

    // Takes the bits behind this one away and returns them.
    Words cutBehind(std::size_t bit) {
        Words upper{};
        const std::size_t word = (bit + 1) / kWordBits;
        for (std::size_t i = word; i < count_; ++i) {
            const std::uint64_t taken =
                i == word ? ~std::uint64_t{0} << ((bit + 1) % kWordBits) : ~std::uint64_t{0};
            upper[i] = words_[i] & taken;
            words_[i] &= ~taken;
        }
        return upper;
    }

    std::size_t size_, count_;
    Words words_{};
};

}  // namespace

std::size_t indexPageCapacity(const Layout& layout) { return layout.pageSize - layout.indexEntries; }

IndexPage::IndexPage(const File& file, PagePtr page, std::uint32_t tablePage)
    : file_(&file), page_(std::move(page)) {
    const Page& bytes = *page_;
    leaf_ = bytes[0] == static_cast<std::uint8_t>(PageType::kIndexLeaf);
    const bool node = bytes[0] == static_cast<std::uint8_t>(PageType::kIndexNode);
    if ((!leaf_ && !node) || loadU32(&bytes[kPageOwner]) != tablePage) file.throwDamaged("Indexseite");
    const Layout& layout = file.layout();
    end_ = lastBit(layout, bytes, indexPageCapacity(layout));
    prefix_ = prefixLengthOf(layout, bytes);
    if (prefix_ == 0 || end_ == 0) return;
    const std::size_t first = endOf(0);
    if (prefix_ < first) return;
    // A single entry shares its bytes with nobody, whatever was noted when it had company.
    if (first != end_) file.throwDamaged("Indexseite");
    prefix_ = 0;
}

std::uint8_t IndexPage::level() const { return (*page_)[file_->layout().indexLevel]; }
std::uint32_t IndexPage::previous() const { return loadU32(&(*page_)[file_->layout().indexPrevious]); }
std::uint32_t IndexPage::next() const { return loadU32(&(*page_)[file_->layout().indexNext]); }
std::uint32_t IndexPage::tail() const { return loadU32(&(*page_)[file_->layout().indexTail]); }
std::size_t IndexPage::freeBytes() const { return loadU16(&(*page_)[kIndexFreeBytes]); }

std::size_t IndexPage::count() const {
    std::size_t n = 0;
    for (std::size_t start = 0; start != end_; start = endOf(start))
        ++n;
    return n;
}

std::size_t IndexPage::endOf(std::size_t start) const {
    const std::size_t end = nextBit(file_->layout(), *page_, start);
    if (end == kNoBit) file_->throwDamaged("Indexseite");
    return end;
}

std::size_t IndexPage::startBefore(std::size_t end) const {
    return end == 0 ? 0 : lastBit(file_->layout(), *page_, end - 1);
}

std::string_view IndexPage::prefixOf(std::size_t start) const {
    if (start == 0) return {};
    return {reinterpret_cast<const char*>(page_->data()) + file_->layout().indexEntries, prefix_};
}

// The bytes of the entry that lie at its place.
std::string_view IndexPage::rest(std::size_t start) const {
    const std::size_t size = endOf(start) - start;
    const std::size_t child = leaf_ ? 0 : kEntryChildSize;
    const std::size_t shared = start == 0 ? 0 : prefix_;
    if (size < 1 + child || size + shared < kEntryRowIdSize + child) file_->throwDamaged("Indexeintrag");
    return {reinterpret_cast<const char*>(page_->data()) + file_->layout().indexEntries + start, size};
}

int IndexPage::compare(std::size_t start, std::string_view bound) const {
    const std::string_view prefix = prefixOf(start);
    const std::size_t inPrefix = std::min(prefix.size(), bound.size());
    const int first = prefix.substr(0, inPrefix).compare(bound.substr(0, inPrefix));
    if (first != 0 || inPrefix == bound.size()) return sign(first);
    std::string_view own = rest(start);
    if (!leaf_) own.remove_suffix(kEntryChildSize);
    bound.remove_prefix(inPrefix);
    const int second = own.substr(0, bound.size()).compare(bound.substr(0, own.size()));
    if (second != 0) return sign(second);
    return own.size() < bound.size() ? -1 : 0;
}

std::size_t IndexPage::find(std::string_view bound, bool strictly) const {
    std::size_t low = 0, high = end_;
    while (low < high) {
        const std::size_t middle = std::max(low, lastBit(file_->layout(), *page_, (low + high) / 2));
        const int order = compare(middle, bound);
        if (strictly ? order > 0 : order >= 0) {
            high = middle;
        } else {
            low = endOf(middle);
        }
    }
    return low;
}

void IndexPage::readEntry(std::size_t start, std::string& out) const {
    out.assign(prefixOf(start)).append(rest(start));
    if (!leaf_) out.resize(out.size() - kEntryChildSize);
}

std::string IndexPage::entry(std::size_t start) const {
    std::string bytes;
    readEntry(start, bytes);
    return bytes;
}

std::uint32_t IndexPage::child(std::size_t start) const {
    if (start == end_) {
        if (tail() != 0) return tail();
        if (end_ == 0) file_->throwDamaged("Indexseite");
        start = startBefore(end_);
    }
    const std::string_view own = rest(start);
    return loadU32Big(reinterpret_cast<const std::uint8_t*>(own.data()) + own.size() - kEntryChildSize);
}

std::vector<std::string> IndexPage::entries() const {
    std::vector<std::string> all;
    for (std::size_t start = 0; start != end_; start = endOf(start))
        all.emplace_back(prefixOf(start)).append(rest(start));
    return all;
}

std::size_t sharedPrefix(std::string_view first, std::string_view last) {
    const std::size_t limit = std::min(first.size(), last.size()) - 1;
    const auto end = first.begin() + static_cast<std::ptrdiff_t>(limit);
    return static_cast<std::size_t>(std::mismatch(first.begin(), end, last.begin()).first - first.begin());
}

std::size_t storablePrefix(const Layout& layout, std::string_view first, std::string_view last) {
    const std::size_t prefix = sharedPrefix(first, last);
    return layout.indexPrefixSize == 1 ? std::min<std::size_t>(prefix, 0xFF) : prefix;
}

void clearIndexPage(const Layout& layout, Page& page, PageType type, std::uint32_t tablePage,
                    std::size_t level) {
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    page[0] = static_cast<std::uint8_t>(type);
    page[1] = 1;
    storeU32(&page[kPageOwner], tablePage);
    page[layout.indexLevel] = static_cast<std::uint8_t>(level);
    setFreeBytes(layout, page, 0);
}

bool insertIndexEntry(const Layout& layout, Page& page, std::size_t start, std::string_view entry) {
    const std::size_t end = lastBit(layout, page, indexPageCapacity(layout));
    const std::size_t prefix = end == 0 ? 0 : prefixLengthOf(layout, page);
    char* const area = reinterpret_cast<char*>(page.data()) + layout.indexEntries;
    // The shared bytes stand once, in front of all: a new first entry takes them over from the old one.
    std::size_t at = start;
    if (prefix > 0) {
        if (prefix >= nextBit(layout, page, 0) || prefix >= entry.size()) return false;
        if (entry.substr(0, prefix) != std::string_view(area, prefix)) return false;
        at = std::max(start, prefix);
        entry.remove_prefix(prefix);
    }
    if (end + entry.size() > indexPageCapacity(layout)) return false;
    std::memmove(area + at + entry.size(), area + at, end - std::min(at, end));
    std::memcpy(area + at, entry.data(), entry.size());
    MovableMask mask(layout, page);
    mask.moveUp(at, entry.size());
    mask.set(at + entry.size());
    mask.store(layout, page);
    if (end == 0) setPrefixLength(layout, page, 0);
    setFreeBytes(layout, page, end + entry.size());
    return true;
}

void removeIndexEntry(const Layout& layout, Page& page, std::size_t start) {
    const std::size_t end = lastBit(layout, page, indexPageCapacity(layout));
    const std::size_t entryEnd = nextBit(layout, page, start);
    const std::size_t prefix = prefixLengthOf(layout, page);
    // The shared bytes stay for the entry that becomes the first.
    const std::size_t from = start == 0 && entryEnd != end ? prefix : start;
    std::uint8_t* const area = page.data() + layout.indexEntries;
    std::memmove(area + from, area + entryEnd, end - entryEnd);
    MovableMask mask(layout, page);
    mask.clear(entryEnd);
    mask.moveDown(entryEnd, entryEnd - from);
    mask.store(layout, page);
    setFreeBytes(layout, page, end - (entryEnd - from));
    if (start == 0 && entryEnd == end) setPrefixLength(layout, page, 0);
}

bool storeIndexEntries(const Layout& layout, Page& page, std::span<const std::string> entries) {
    std::size_t size = 0, shortest = layout.pageSize;
    for (const std::string& entry : entries) {
        size += entry.size();
        shortest = std::min(shortest, entry.size());
    }
    std::size_t prefix = 0;
    if (size > indexPageCapacity(layout)) {
        if (page[0] != static_cast<std::uint8_t>(PageType::kIndexLeaf)) return false;
        prefix = std::min(storablePrefix(layout, entries.front(), entries.back()), shortest - 1);
        size -= (entries.size() - 1) * prefix;
        if (size > indexPageCapacity(layout)) return false;
    }
    std::fill_n(&page[layout.indexMask], layout.indexMaskSize, std::uint8_t{0});
    std::size_t at = 0;
    for (const std::string& entry : entries) {
        const std::string_view own = at == 0 ? entry : std::string_view(entry).substr(prefix);
        std::memcpy(&page[layout.indexEntries + at], own.data(), own.size());
        at += own.size();
        page[layout.indexMask + at / 8] |= static_cast<std::uint8_t>(1u << at % 8);
    }
    setPrefixLength(layout, page, prefix);
    setFreeBytes(layout, page, size);
    return true;
}

}  // namespace wendel::jet
