#include "jet/storage/IndexCursor.h"

#include "jet/storage/Bytes.h"

namespace wendel::jet {

IndexCursor::IndexCursor(File& file, const TableDef& table, const Index& index)
    : file_(&file), table_(&table), index_(&index) {}

void IndexCursor::descend(std::string_view bound, bool strictly, bool toLast) {
    leaf_ = IndexPage(*file_, file_->page(index_->root), table_->page);
    for (std::size_t depth = 0; !leaf_.isLeaf(); ++depth) {
        if (depth == kMaxIndexDepth) file_->throwDamaged("Index");
        const std::size_t start = toLast ? leaf_.end() : leaf_.find(bound, strictly);
        leaf_ = IndexPage(*file_, file_->page(leaf_.child(start)), table_->page);
    }
    position_ = toLast ? leaf_.end() : leaf_.find(bound, strictly);
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
bool IndexCursor::step(std::uint32_t neighbour) {
    if (neighbour == 0) return false;
    if (++leavesVisited_ > file_->pageCount()) file_->throwDamaged("Index");  // the leaves run in a circle
    leaf_ = IndexPage(*file_, file_->page(neighbour), table_->page);
    if (!leaf_.isLeaf()) file_->throwDamaged("Indexseite");
    return true;
}

bool IndexCursor::next() {
    if (done_) return false;
    done_ = true;  // until an entry has been found
    if (direction_ == Direction::kForward) {
        while (position_ == leaf_.end()) {
            if (!step(leaf_.next())) return false;
            position_ = 0;
        }
        if (!isInside(position_)) return false;
        takeEntry(position_);
        position_ = leaf_.endOf(position_);
    } else {
        while (position_ == 0) {
            if (!step(leaf_.previous())) return false;
            position_ = leaf_.end();
        }
        const std::size_t start = leaf_.startBefore(position_);
        if (!isInside(start)) return false;
        takeEntry(start);
        position_ = start;
    }
    done_ = false;
    return true;
}

// Whether the entry lies before the end that the cursor walks towards.
bool IndexCursor::isInside(std::size_t start) const {
    if (direction_ == Direction::kForward) {
        if (range_.upper.empty()) return true;
        const int order = leaf_.compare(start, range_.upper);
        return range_.upperInclusive ? order <= 0 : order < 0;
    }
    if (range_.lower.empty()) return true;
    const int order = leaf_.compare(start, range_.lower);
    return range_.lowerInclusive ? order >= 0 : order > 0;
}

void IndexCursor::takeEntry(std::size_t start) {
    leaf_.readEntry(start, key_);
    const std::size_t keySize = key_.size() - kEntryRowIdSize;
    const auto* place = reinterpret_cast<const std::uint8_t*>(key_.data()) + keySize;
    rowId_ = makeRowId(loadU24Big(place), place[3]);
    key_.resize(keySize);
}

}  // namespace wendel::jet
