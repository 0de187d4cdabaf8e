#include "jet/storage/IndexCursor.h"

#include <algorithm>
#include <bit>

#include "jet/storage/Bytes.h"

namespace wendel::jet {
namespace {

// A tree of this height would not fit into a file.
constexpr int kMaxDepth = 24;

int sign(int value) { return (value > 0) - (value < 0); }

}  // namespace

IndexCursor::IndexCursor(File& file, const TableDef& table, const Index& index)
    : file_(&file), table_(&table), index_(&index) {}

void IndexCursor::load(std::uint32_t number, EntryPage& out) {
    const Layout& layout = file_->layout();
    out.page = file_->page(number);
    const Page& bytes = *out.page;
    out.leaf = bytes[0] == static_cast<std::uint8_t>(PageType::kIndexLeaf);
    const bool node = bytes[0] == static_cast<std::uint8_t>(PageType::kIndexNode);
    if ((!out.leaf && !node) || loadU32(&bytes[kPageOwner]) != table_->page)
        file_->throwDamaged("Indexseite");
    // The byte behind a one-byte prefix length is the level of the page.
    const std::uint8_t* prefix = &bytes[layout.indexPrefixLength];
    out.prefix = layout.version == Version::kJet4 ? loadU16(prefix) : *prefix;

    out.ends.clear();
    for (std::size_t i = 0; i < layout.indexMaskSize; ++i) {
        for (unsigned bits = bytes[layout.indexMask + i]; bits != 0; bits &= bits - 1) {
            out.ends.push_back(
                static_cast<std::uint16_t>(8 * i + static_cast<unsigned>(std::countr_zero(bits))));
        }
    }
    const std::size_t smallest = out.leaf ? 1 : 1 + kEntryChildSize;
    const std::size_t behindKey = out.leaf ? kEntryRowIdSize : kEntryRowIdSize + kEntryChildSize;
    std::size_t start = 0;
    for (const std::uint16_t end : out.ends) {
        const std::size_t shared = start == 0 ? 0 : out.prefix;
        if (end < start + smallest || end - start + shared < behindKey) file_->throwDamaged("Indexeintrag");
        start = end;
    }
    const bool tooLong = start > layout.pageSize - layout.indexEntries;
    if (tooLong || (out.ends.size() > 1 && out.prefix > out.ends[0])) file_->throwDamaged("Indexeintrag");
}

std::string_view IndexCursor::prefixOf(const EntryPage& page, std::size_t entry) const {
    if (entry == 0) return {};
    return {reinterpret_cast<const char*>(page.page->data()) + file_->layout().indexEntries, page.prefix};
}

std::string_view IndexCursor::entryRest(const EntryPage& page, std::size_t entry) const {
    const std::size_t start = entry == 0 ? 0 : page.ends[entry - 1];
    return {reinterpret_cast<const char*>(page.page->data()) + file_->layout().indexEntries + start,
            page.ends[entry] - start};
}

// Below zero when the entry (key and row id) lies before all that begin with the bound, zero when it begins
// with it, above zero behind.
int IndexCursor::compareEntry(const EntryPage& page, std::size_t entry, std::string_view bound) const {
    const std::string_view prefix = prefixOf(page, entry);
    const std::size_t inPrefix = std::min(prefix.size(), bound.size());
    const int first = prefix.substr(0, inPrefix).compare(bound.substr(0, inPrefix));
    if (first != 0 || inPrefix == bound.size()) return sign(first);
    std::string_view rest = entryRest(page, entry);
    if (!page.leaf) rest.remove_suffix(kEntryChildSize);
    bound.remove_prefix(inPrefix);
    const int second = rest.substr(0, bound.size()).compare(bound.substr(0, rest.size()));
    if (second != 0) return sign(second);
    return rest.size() < bound.size() ? -1 : 0;
}

// The first entry that is not before the bound; strictly: that is behind everything that begins with it.
std::size_t IndexCursor::firstBeyond(const EntryPage& page, std::string_view bound, bool strictly) const {
    std::size_t low = 0, high = page.ends.size();
    while (low < high) {
        const std::size_t middle = (low + high) / 2;
        const int order = compareEntry(page, middle, bound);
        if (strictly ? order > 0 : order >= 0) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

// The page below entry number `entry`; behind the last entry comes the tail, where the node has one.
std::uint32_t IndexCursor::childPage(const EntryPage& page, std::size_t entry) const {
    if (entry == page.ends.size()) {
        const std::uint32_t tail = loadU32(&(*page.page)[file_->layout().indexTail]);
        if (tail != 0) return tail;
        if (entry == 0) file_->throwDamaged("Indexseite");
        --entry;
    }
    const std::string_view rest = entryRest(page, entry);
    return loadU32Big(reinterpret_cast<const std::uint8_t*>(rest.data()) + rest.size() - kEntryChildSize);
}

void IndexCursor::descend(std::string_view bound, bool strictly, bool toLast) {
    load(index_->root, leaf_);
    for (int depth = 0; !leaf_.leaf; ++depth) {
        if (depth == kMaxDepth) file_->throwDamaged("Index");
        const std::size_t entry = toLast ? leaf_.ends.size() : firstBeyond(leaf_, bound, strictly);
        load(childPage(leaf_, entry), leaf_);
    }
    position_ = toLast ? leaf_.ends.size() : firstBeyond(leaf_, bound, strictly);
}

void IndexCursor::seek(const KeyRange& range, Direction direction) {
    range_ = range;
    direction_ = direction;
    done_ = range.empty;
    leavesVisited_ = 0;
    if (done_) return;
    if (direction == Direction::kForward) {
        descend(range_.lower, !range_.lower.empty() && !range_.lowerInclusive, false);
    } else {
        descend(range_.upper, range_.upperInclusive, range_.upper.empty());
    }
}

// Goes to the neighbouring leaf; false when there is none.
bool IndexCursor::step(std::size_t linkOffset) {
    const std::uint32_t neighbour = loadU32(&(*leaf_.page)[linkOffset]);
    if (neighbour == 0) return false;
    if (++leavesVisited_ > file_->pageCount()) file_->throwDamaged("Index");  // the leaves run in a circle
    load(neighbour, leaf_);
    if (!leaf_.leaf) file_->throwDamaged("Indexseite");
    return true;
}

bool IndexCursor::next() {
    if (done_) return false;
    done_ = true;  // until an entry has been found
    if (direction_ == Direction::kForward) {
        while (position_ == leaf_.ends.size()) {
            if (!step(file_->layout().indexNext)) return false;
            position_ = 0;
        }
        if (!isInside(position_)) return false;
        takeEntry(position_++);
    } else {
        while (position_ == 0) {
            if (!step(file_->layout().indexPrevious)) return false;
            position_ = leaf_.ends.size();
        }
        if (!isInside(position_ - 1)) return false;
        takeEntry(--position_);
    }
    done_ = false;
    return true;
}

// Whether the entry lies before the end that the cursor walks towards.
bool IndexCursor::isInside(std::size_t entry) const {
    if (direction_ == Direction::kForward) {
        if (range_.upper.empty()) return true;
        const int order = compareEntry(leaf_, entry, range_.upper);
        return range_.upperInclusive ? order <= 0 : order < 0;
    }
    if (range_.lower.empty()) return true;
    const int order = compareEntry(leaf_, entry, range_.lower);
    return range_.lowerInclusive ? order >= 0 : order > 0;
}

void IndexCursor::takeEntry(std::size_t entry) {
    key_.assign(prefixOf(leaf_, entry)).append(entryRest(leaf_, entry));
    const std::size_t keySize = key_.size() - kEntryRowIdSize;
    const auto* place = reinterpret_cast<const std::uint8_t*>(key_.data()) + keySize;
    rowId_ = makeRowId(loadU24Big(place), place[3]);
    key_.resize(keySize);
}

}  // namespace wendel::jet
