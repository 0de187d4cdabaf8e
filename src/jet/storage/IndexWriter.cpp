#include "jet/storage/IndexWriter.h"

#include <algorithm>

#include "jet/storage/Bytes.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/UsageMap.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

// A page that is less than half full is joined with a neighbour, if both together leave an eighth free:
// without that room the next entry would part them again.
bool isSparse(std::size_t used, std::size_t capacity) { return used < capacity / 2; }
// Whether to look for such a neighbour: not after every single entry that goes.
bool becameSparser(std::size_t before, std::size_t after, std::size_t capacity) {
    return isSparse(after, capacity) && before * 16 / capacity != after * 16 / capacity;
}
bool fitTogether(std::size_t used, std::size_t capacity) { return used <= capacity - capacity / 8; }

std::string_view keyOf(std::string_view entry) { return entry.substr(0, entry.size() - kEntryRowIdSize); }

bool hasKey(std::string_view entry, std::string_view key) {
    return entry.size() == key.size() + kEntryRowIdSize && entry.starts_with(key);
}

RowId rowOf(std::string_view entry) {
    const auto* p = reinterpret_cast<const std::uint8_t*>(entry.data()) + entry.size() - kEntryRowIdSize;
    return makeRowId(loadU24Big(p), p[3]);
}

std::string entryOf(std::string_view key, RowId row) {
    std::string entry(key);
    appendBig(entry, static_cast<std::uint64_t>(row), kEntryRowIdSize);
    return entry;
}

// Where to part sorted entries so that both sides weigh about the same: the left one takes those before it.
std::size_t middleOf(const std::vector<std::string>& entries) {
    const std::size_t shared = sharedPrefix(entries.front(), entries.back());
    std::size_t total = 0, left = 0;
    for (const std::string& entry : entries)
        total += entry.size() - shared;
    std::size_t i = 0;
    for (; 2 * left + (entries[i].size() - shared) <= total; ++i)
        left += entries[i].size() - shared;
    return std::clamp<std::size_t>(i, 1, entries.size() - 1);
}

}  // namespace

IndexWriter::IndexWriter(File& file, PageAllocator& allocator, const TableDef& table, const Index& index)
    : file_(&file), allocator_(&allocator), table_(&table), index_(&index) {}

std::size_t IndexWriter::capacity() const { return indexPageCapacity(file_->layout()); }

IndexPage IndexWriter::load(std::uint32_t number) const {
    return IndexPage(*file_, file_->page(number), table_->page);
}

IndexPage IndexWriter::loadLeaf(std::uint32_t number) const {
    IndexPage page = load(number);
    if (!page.isLeaf()) file_->throwDamaged("Indexseite");
    return page;
}

// Two entries with their children must fit into a node, or it could not be parted.
void IndexWriter::refuseTooLong(std::string_view key) const {
    if (key.size() + kEntryRowIdSize + kEntryChildSize <= capacity() / 2) return;
    throw Fehler(jetfehler::kRowTooLarge, "Index",
                 "Die Felder des Index '" + index_->name + "' sind zusammen zu lang.");
}

// --- Pages ---

std::uint32_t IndexWriter::addPage() {
    const std::uint32_t page = allocator_->allocate();
    addToUsageMap(*file_, *allocator_, index_->pages, page);
    return page;
}

void IndexWriter::releasePage(std::uint32_t number) {
    // A damaged node can lead into another index of the table.
    if (number == index_->root || !inUsageMap(*file_, index_->pages, number)) {
        file_->throwDamaged("Index: fremde Seite");
    }
    removeFromUsageMap(*file_, index_->pages, number);
    allocator_->release(number);
}

// Changes a link of a neighbour; its old value tells whether the neighbours know each other. Nobody reads the
// links of nodes, and not every writer keeps them.
void IndexWriter::setLink(std::uint32_t page, std::size_t field, std::uint32_t expected,
                          std::uint32_t value) {
    if (page == 0) return;
    const bool leaf = load(page).isLeaf();
    const std::shared_ptr<Page> bytes = file_->edit(page);
    if (loadU32(&(*bytes)[field]) != expected) {
        if (!leaf) return;
        file_->throwDamaged("Index: falscher Nachbar");
    }
    storeU32(&(*bytes)[field], value);
}

// A new page of the same kind and level to the left of this one.
std::uint32_t IndexWriter::addLeftNeighbour(std::uint32_t page) {
    const Layout& layout = file_->layout();
    const std::uint32_t fresh = addPage();
    const IndexPage right = load(page);
    const std::uint32_t previous = right.previous();
    const std::shared_ptr<Page> bytes = file_->edit(fresh);
    clearIndexPage(layout, *bytes, right.isLeaf() ? PageType::kIndexLeaf : PageType::kIndexNode, table_->page,
                   right.level());
    storeU32(&(*bytes)[layout.indexPrevious], previous);
    storeU32(&(*bytes)[layout.indexNext], page);
    setLink(previous, layout.indexNext, page, fresh);
    setLink(page, layout.indexPrevious, previous, fresh);
    return fresh;
}

// Takes the page out of the chain of its level.
void IndexWriter::unlink(std::uint32_t page) {
    const Layout& layout = file_->layout();
    const IndexPage gone = load(page);
    const std::uint32_t previous = gone.previous(), next = gone.next();
    setLink(previous, layout.indexNext, page, next);
    setLink(next, layout.indexPrevious, page, previous);
}

// --- Finding ---

IndexPage IndexWriter::descend(std::string_view entry) {
    path_.clear();
    leaf_ = index_->root;
    IndexPage page = load(leaf_);
    while (!page.isLeaf()) {
        if (path_.size() == kMaxIndexDepth) file_->throwDamaged("Index");
        std::size_t position = page.find(entry);
        const std::uint32_t child = page.child(position);
        if (position == page.end() && page.tail() == 0) position = page.startBefore(position);
        path_.push_back({leaf_, position});
        leaf_ = child;
        page = load(leaf_);
    }
    return page;
}

bool IndexWriter::contains(std::string_view key) {
    IndexPage page = descend(key);
    std::string entry;
    std::size_t position = page.find(key);
    for (std::uint32_t visited = 0;;) {
        if (position == page.end()) {
            if (page.next() == 0) return false;
            if (++visited > file_->pageCount()) file_->throwDamaged("Index");  // the leaves run in a circle
            page = loadLeaf(page.next());
            position = 0;
            continue;
        }
        if (page.compare(position, key) != 0) return false;
        // Only keys of empty binary values are the beginning of others.
        page.readEntry(position, entry);
        if (hasKey(entry, key)) return true;
        position = page.endOf(position);
    }
}

// Whether no neighbour of the place has the key of the entry, which is not in the leaf yet.
bool IndexWriter::isNewKey(const IndexPage& leaf, std::size_t at, std::string_view entry) const {
    const std::string_view key = keyOf(entry);
    const auto has = [key](const IndexPage& page, std::size_t start) {
        return page.compare(start, key) == 0 && hasKey(page.entry(start), key);
    };
    if (at < leaf.end() && has(leaf, at)) return false;
    if (at > 0) return !has(leaf, leaf.startBefore(at));
    if (leaf.previous() == 0) return true;
    const IndexPage before = loadLeaf(leaf.previous());
    return before.empty() || !has(before, before.startBefore(before.end()));
}

void IndexWriter::countKey() {
    const Layout& layout = file_->layout();
    const std::size_t at = layout.defVariablePart + index_->real * layout.statisticsSize + kStatisticsKeys;
    const std::shared_ptr<Page> definition = file_->edit(table_->page);
    storeU32(&(*definition)[at], loadU32(&(*definition)[at]) + 1);
}

void IndexWriter::setStatistics(std::uint32_t entries, std::uint32_t keys) {
    const Layout& layout = file_->layout();
    const std::size_t at = layout.defVariablePart + index_->real * layout.statisticsSize;
    const std::shared_ptr<Page> definition = file_->edit(table_->page);
    storeU32(&(*definition)[at + kStatisticsEntries], entries);
    storeU32(&(*definition)[at + kStatisticsKeys], keys);
}

// --- Inserting ---

void IndexWriter::insert(std::string_view key, RowId row) {
    refuseTooLong(key);
    std::string entry = entryOf(key, row);
    std::size_t at = 0;
    bool last = false;
    {
        const IndexPage leaf = descend(entry);
        at = leaf.find(entry);
        last = at == leaf.end();
        if (!last && leaf.compare(at, entry) == 0 && leaf.entry(at) == entry) return;
        if (isNewKey(leaf, at, entry)) countKey();
    }
    if (insertIndexEntry(file_->layout(), *file_->edit(leaf_), at, entry)) {
        if (last) noteLast(entry);
    } else {
        rebuildLeaf(entry, last);
    }
    lastInserted_ = std::move(entry);
}

// Inserts where the entry does not simply fit: with another shared prefix, or into two leaves.
void IndexWriter::rebuildLeaf(const std::string& entry, bool last) {
    const IndexPage leaf = load(leaf_);
    std::vector<std::string> entries = leaf.entries();
    const auto place = std::lower_bound(entries.begin(), entries.end(), entry);
    const auto inserted = static_cast<std::size_t>(place - entries.begin());
    entries.insert(place, entry);
    if (inserted == 0 && appendToLeft(entry)) return;
    if (storeIndexEntries(file_->layout(), *file_->edit(leaf_), entries)) {
        if (last) noteLast(entry);
    } else if (last && leaf.next() == 0) {
        appendLeaf(entry);
    } else {
        splitLeaf(entries, inserted);
    }
}

// Puts the entry, which is smaller than all in the leaf, behind the last one of the leaf before. It is more
// like those where a new row of many with the same key comes behind the others.
bool IndexWriter::appendToLeft(const std::string& entry) {
    if (path_.empty() || path_.back().position == 0) return false;
    const IndexPage parent = load(path_.back().page);
    const std::size_t position = parent.startBefore(path_.back().position);
    const std::uint32_t page = parent.child(position);
    const IndexPage left = loadLeaf(page);
    if (page == leaf_ || left.next() != leaf_ || left.empty()) return false;
    if (!insertIndexEntry(file_->layout(), *file_->edit(page), left.end(), entry)) {
        std::vector<std::string> entries = left.entries();
        entries.push_back(entry);
        if (!storeIndexEntries(file_->layout(), *file_->edit(page), entries)) return false;
    }
    path_.back().position = position;
    leaf_ = page;
    noteLast(entry);
    return true;
}

// The greatest entry of the leaf is this now. Above a tail there is nothing to write, except by those who
// name the whole node.
void IndexWriter::noteLast(const std::string& entry) {
    std::size_t depth = path_.size();
    while (depth > 0 && path_[depth - 1].position == load(path_[depth - 1].page).end())
        --depth;
    if (depth > 0) propagate(depth, Change::newLast(entry));
}

// Gives the root's content to a page of its own, so that the root becomes a node with one child.
void IndexWriter::pushRootDown() {
    const Layout& layout = file_->layout();
    const std::uint32_t fresh = addPage();
    const std::shared_ptr<Page> root = file_->edit(index_->root);
    *file_->edit(fresh) = *root;
    clearIndexPage(layout, *root, PageType::kIndexNode, table_->page, path_.size() + 1);
    storeU32(&(*root)[layout.indexTail], fresh);
    if (path_.empty()) {
        leaf_ = fresh;
    } else {
        path_.front().page = fresh;
    }
    path_.insert(path_.begin(), Step{index_->root, 0});
}

// A new last leaf for the greatest entry of all; the leaf before it stays full.
void IndexWriter::appendLeaf(std::string_view entry) {
    const Layout& layout = file_->layout();
    if (path_.empty()) pushRootDown();
    const std::uint32_t fresh = addPage();
    const std::shared_ptr<Page> bytes = file_->edit(fresh);
    clearIndexPage(layout, *bytes, PageType::kIndexLeaf, table_->page);
    storeU32(&(*bytes)[layout.indexPrevious], leaf_);
    insertIndexEntry(layout, *bytes, 0, entry);
    setLink(leaf_, layout.indexNext, 0, fresh);
    Change change;
    change.last = std::string(entry);
    change.behind = fresh;
    change.lastOfChild = load(leaf_).lastEntry();
    change.appended = true;
    propagate(path_.size(), std::move(change));
}

// Parts the leaf by a new one to its left. Half and half, as random insertions and deletions will have it;
// entries that come in order, or in reverse order at the very beginning, leave a full page behind.
void IndexWriter::splitLeaf(const std::vector<std::string>& entries, std::size_t inserted) {
    const Layout& layout = file_->layout();
    if (path_.empty()) pushRootDown();
    std::size_t at = middleOf(entries);
    if (inserted >= at && entries[inserted - 1] == lastInserted_) at = inserted;
    if (inserted == 0 && load(leaf_).previous() == 0) at = 1;
    const std::span<const std::string> all(entries);
    const std::uint32_t left = addLeftNeighbour(leaf_);
    const auto store = [&] {
        return storeIndexEntries(layout, *file_->edit(left), all.first(at)) &&
               storeIndexEntries(layout, *file_->edit(leaf_), all.subspan(at));
    };
    // Half of the page can need more room than all of it when an entry at the edge has another beginning:
    // that one gets a page for itself.
    bool stored = store();
    for (const std::size_t other : {middleOf(entries), inserted == 0 ? 1 : entries.size() - 1}) {
        if (stored) break;
        at = other;
        stored = store();
    }
    if (!stored) file_->throwDamaged("Index: zu lange Schlüssel");
    Change change;
    change.before = Kid{entries[at - 1], left};
    if (inserted + 1 == entries.size()) change.last = entries.back();
    propagate(path_.size(), std::move(change));
}

// --- Nodes ---

// The bytes of the entries in the page.
std::size_t IndexWriter::storedSize(const Node& node) {
    std::size_t size = 0;
    for (std::size_t i = 0; i + (node.tail ? 1 : 0) < node.kids.size(); ++i)
        size += node.kids[i].last.size() + kEntryChildSize;
    return size;
}

// Takes the node apart and tells which kid the step leads to.
IndexWriter::Node IndexWriter::readNode(const Step& step, std::size_t& kid) const {
    const IndexPage page = load(step.page);
    Node node;
    for (std::size_t start = 0; start != page.end(); start = page.endOf(start)) {
        if (start == step.position) kid = node.kids.size();
        node.kids.push_back({page.entry(start), page.child(start)});
    }
    node.tail = page.tail() != 0;
    if (!node.tail) return node;
    if (step.position == page.end()) kid = node.kids.size();
    node.kids.push_back({{}, page.tail()});
    return node;
}

void IndexWriter::writeNode(std::uint32_t page, const Node& node, std::size_t level) {
    const Layout& layout = file_->layout();
    std::vector<std::string> entries;
    for (std::size_t i = 0; i + (node.tail ? 1 : 0) < node.kids.size(); ++i) {
        entries.push_back(node.kids[i].last);
        appendBig(entries.back(), node.kids[i].page, kEntryChildSize);
    }
    const std::shared_ptr<Page> bytes = file_->edit(page);
    if (!storeIndexEntries(layout, *bytes, entries)) file_->throwDamaged("Index");
    storeU32(&(*bytes)[layout.indexTail], node.tail ? node.kids.back().page : 0);
    (*bytes)[layout.indexLevel] = static_cast<std::uint8_t>(level);
}

// Tells the nodes from path_[depth - 1] upwards what happened to the child there, as far as it concerns them.
void IndexWriter::propagate(std::size_t depth, Change change) {
    while (depth-- > 0 && change.any()) {
        std::size_t kid = 0;
        Node node = readNode(path_[depth], kid);
        Change up;
        up.appended = change.appended;
        if (change.gone) {
            forgetKid(node, kid, up);
        } else {
            applyChange(node, kid, change, up);
        }
        if (node.kids.empty()) {
            if (depth == 0) return clearRoot();
            unlink(path_[depth].page);
            releasePage(path_[depth].page);
            up.gone = true;
        } else if (storeNode(depth, std::move(node), up)) {
            ++depth;
        }
        change = std::move(up);
    }
}

void IndexWriter::applyChange(Node& node, std::size_t kid, Change& change, Change& up) const {
    const bool isLast = kid + 1 == node.kids.size();
    if (isLast) up.last = change.last;
    if (change.behind != 0) {
        if (!isLast) file_->throwDamaged("Index: falscher Nachbar");
        node.kids[kid].last = std::move(change.lastOfChild);
        node.kids.push_back({{}, change.behind});
        node.tail = true;
    } else if (change.last) {
        node.kids[kid].last = std::move(*change.last);
    }
    if (change.before) {
        node.kids.insert(node.kids.begin() + static_cast<std::ptrdiff_t>(kid), std::move(*change.before));
    }
    // The engine's nodes end in a tail; those of other writers that do not are brought in line.
    node.tail = node.tail || node.kids.size() > 1;
}

void IndexWriter::clearRoot() {
    clearIndexPage(file_->layout(), *file_->edit(index_->root), PageType::kIndexLeaf, table_->page);
}

void IndexWriter::forgetKid(Node& node, std::size_t kid, Change& up) {
    const bool wasLast = kid + 1 == node.kids.size();
    node.kids.erase(node.kids.begin() + static_cast<std::ptrdiff_t>(kid));
    if (node.kids.empty()) return;
    Kid& last = node.kids.back();
    if (wasLast) up.last = last.last;
    if (node.kids.size() > 1 || !node.tail) return;
    // An only child has an entry, so that the node does not look empty.
    if (last.last.empty()) last.last = greatestBelow(last.page).value_or("");
    node.tail = last.last.empty();
}

// Nothing when the way to the right ends in an empty leaf.
std::optional<std::string> IndexWriter::greatestBelow(std::uint32_t page) const {
    IndexPage at = load(page);
    for (std::size_t depth = 0; !at.isLeaf(); ++depth) {
        if (depth == kMaxIndexDepth) file_->throwDamaged("Index");
        at = load(at.child(at.end()));
    }
    if (at.empty()) return std::nullopt;
    return at.lastEntry();
}

// Writes the node, in two pages when it does not fit into one. True when the root was pushed down for that,
// so that the node is one step further down in the path.
bool IndexWriter::storeNode(std::size_t depth, Node node, Change& up) {
    const std::size_t level = path_.size() - depth;
    const std::size_t total = storedSize(node);
    if (total <= capacity()) {
        writeNode(path_[depth].page, node, level);
        return false;
    }
    if (node.kids.size() < 3) file_->throwDamaged("Index: zu lange Schlüssel");
    const bool isRoot = depth == 0;
    if (isRoot) pushRootDown();
    const std::uint32_t page = path_[isRoot ? 1 : depth].page;
    // What grows at its end leaves a full node behind.
    std::size_t at = node.kids.size() - 2;
    if (!up.appended) {
        std::size_t left = 0;
        for (at = 0; left < total / 2; ++at)
            left += node.kids[at].last.size() + kEntryChildSize;
    }
    at = std::clamp<std::size_t>(at, 2, node.kids.size() - 1);
    const auto middle = node.kids.begin() + static_cast<std::ptrdiff_t>(at);
    const Node left{{node.kids.begin(), middle}, true};
    node.kids.erase(node.kids.begin(), middle);
    const std::uint32_t leftPage = addLeftNeighbour(page);
    writeNode(leftPage, left, level);
    writeNode(page, node, level);
    up.before = Kid{left.kids.back().last, leftPage};
    return isRoot;
}

// --- Removing ---

bool IndexWriter::remove(std::string_view key, RowId row) {
    const std::string entry = entryOf(key, row);
    std::size_t at = 0;
    std::size_t before = 0;
    bool wasLast = false;
    {
        const IndexPage leaf = descend(entry);
        at = leaf.find(entry);
        if (at == leaf.end() || leaf.entry(at) != entry) return false;
        before = leaf.end();
        wasLast = leaf.endOf(at) == before;
    }
    removeIndexEntry(file_->layout(), *file_->edit(leaf_), at);
    if (path_.empty()) return true;
    const IndexPage leaf = load(leaf_);
    if (leaf.empty()) {
        unlink(leaf_);
        releasePage(leaf_);
        propagate(path_.size(), Change::removed());
        balance(entry);
        return true;
    }
    const bool sparse = becameSparser(before, leaf.end(), capacity());
    if (!wasLast && !sparse) return true;
    const std::string last = leaf.lastEntry();
    if (wasLast) noteLast(last);
    if (sparse) balance(last);
    return true;
}

bool IndexWriter::removeByRow(RowId row) {
    IndexPage page = load(index_->root);
    for (std::size_t depth = 0; !page.isLeaf(); ++depth) {
        if (depth == kMaxIndexDepth) file_->throwDamaged("Index");
        page = load(page.child(0));
    }
    std::string entry;
    for (std::uint32_t visited = 0;;) {
        for (std::size_t start = 0; start != page.end(); start = page.endOf(start)) {
            page.readEntry(start, entry);
            if (rowOf(entry) != row) continue;
            if (!remove(keyOf(entry), row)) file_->throwDamaged("Index: falsche Reihenfolge");
            return true;
        }
        if (page.next() == 0) return false;
        if (++visited > file_->pageCount()) file_->throwDamaged("Index");
        page = loadLeaf(page.next());
    }
}

// Joins sparse pages on the way to where this entry was.
void IndexWriter::balance(const std::string& entry) {
    for (bool merged = true; merged;) {
        descend(entry);
        merged = mergeLeaf();
        for (std::size_t depth = path_.size(); !merged && depth-- > 1;)
            merged = mergeNode(depth);
    }
    collapseRoot();
}

// The bytes that the entries of two leaves take in one, left before right.
std::size_t IndexWriter::joinedSize(const IndexPage& left, const IndexPage& right) const {
    if (left.empty() || right.empty() || !fitTogether(left.end() + right.end(), capacity())) {
        return left.end() + right.end();
    }
    const std::size_t inLeft = left.count(), inRight = right.count();
    const std::size_t full =
        left.end() + (inLeft - 1) * left.prefixLength() + right.end() + (inRight - 1) * right.prefixLength();
    if (full <= capacity()) return full;
    return full - (inLeft + inRight - 1) * storablePrefix(file_->layout(), left.entry(0), right.lastEntry());
}

// Puts the leaf and a neighbour under the same node together; the left page goes.
bool IndexWriter::mergeLeaf() {
    if (path_.empty() || !isSparse(loadLeaf(leaf_).end(), capacity())) return false;
    Step& step = path_.back();
    const IndexPage parent = load(step.page);
    const std::size_t here = step.position;
    const std::size_t behind = here == parent.end() ? here : parent.endOf(here);
    const bool hasRight = here != parent.end() && (behind != parent.end() || parent.tail() != 0);
    for (const bool toRight : {true, false}) {
        if (toRight ? !hasRight : here == 0) continue;
        const std::size_t leftAt = toRight ? here : parent.startBefore(here);
        const std::uint32_t leftPage = parent.child(leftAt);
        const std::uint32_t rightPage = parent.child(toRight ? behind : here);
        if (leftPage == rightPage) file_->throwDamaged("Index: Seite zweimal im Baum");
        const IndexPage left = loadLeaf(leftPage), right = loadLeaf(rightPage);
        if (left.next() != rightPage || !fitTogether(joinedSize(left, right), capacity())) continue;
        std::vector<std::string> entries = left.entries(), more = right.entries();
        entries.insert(entries.end(), std::make_move_iterator(more.begin()),
                       std::make_move_iterator(more.end()));
        if (!storeIndexEntries(file_->layout(), *file_->edit(rightPage), entries)) continue;
        unlink(leftPage);
        releasePage(leftPage);
        step.position = leftAt;
        propagate(path_.size(), Change::removed());
        return true;
    }
    return false;
}

// The same for a node that is not the root.
bool IndexWriter::mergeNode(std::size_t depth) {
    if (!isSparse(load(path_[depth].page).end(), capacity())) return false;
    std::size_t here = 0, ignored = 0;
    const Node parent = readNode(path_[depth - 1], here);
    for (const bool toRight : {true, false}) {
        if (toRight ? here + 1 == parent.kids.size() : here == 0) continue;
        const std::size_t at = toRight ? here : here - 1;
        const std::uint32_t leftPage = parent.kids[at].page, rightPage = parent.kids[at + 1].page;
        if (leftPage == rightPage) file_->throwDamaged("Index: Seite zweimal im Baum");
        Node left = readNode({leftPage, 0}, ignored);
        Node right = readNode({rightPage, 0}, ignored);
        left.kids.back().last = parent.kids[at].last;
        right.kids.insert(right.kids.begin(), left.kids.begin(), left.kids.end());
        right.tail = true;
        if (!fitTogether(storedSize(right), capacity())) continue;
        unlink(leftPage);
        releasePage(leftPage);
        writeNode(rightPage, right, path_.size() - depth);
        path_[depth - 1].position = positionOf(path_[depth - 1].page, at);
        propagate(depth, Change::removed());
        return true;
    }
    return false;
}

std::size_t IndexWriter::positionOf(std::uint32_t page, std::size_t entry) const {
    const IndexPage node = load(page);
    std::size_t start = 0;
    for (; entry > 0; --entry)
        start = node.endOf(start);
    return start;
}

// A root with an only child takes over its content.
void IndexWriter::collapseRoot() {
    const Layout& layout = file_->layout();
    for (std::size_t depth = 0; depth < kMaxIndexDepth; ++depth) {
        const IndexPage root = load(index_->root);
        if (root.isLeaf()) return;
        const bool alone = root.empty() || (root.tail() == 0 && root.endOf(0) == root.end());
        if (!alone) return;
        const std::uint32_t child = root.child(0);
        const IndexPage only = load(child);
        if (only.isLeaf() && (only.previous() != 0 || only.next() != 0)) return;
        const std::shared_ptr<Page> bytes = file_->edit(index_->root);
        *bytes = *file_->page(child);
        storeU32(&(*bytes)[layout.indexPrevious], 0);
        storeU32(&(*bytes)[layout.indexNext], 0);
        releasePage(child);
    }
}

// --- Building ---

void IndexWriter::build(std::vector<std::pair<std::string, RowId>> entries) {
    std::vector<std::string> sorted;
    sorted.reserve(entries.size());
    for (const auto& [key, row] : entries) {
        refuseTooLong(key);
        sorted.push_back(entryOf(key, row));
    }
    entries = {};
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    std::uint32_t keys = sorted.empty() ? 0 : 1;
    for (std::size_t i = 1; i < sorted.size(); ++i)
        keys += keyOf(sorted[i]) != keyOf(sorted[i - 1]) ? 1 : 0;

    releaseTree();
    std::vector<Kid> kids = buildLeaves(sorted);
    for (std::size_t level = 1; !kids.empty(); ++level)
        kids = buildNodes(std::move(kids), level);
    setStatistics(static_cast<std::uint32_t>(sorted.size()), keys);
}

void IndexWriter::releaseTree() {
    const auto isOwn = [this](std::uint32_t number) {
        if (number == index_->root || number >= file_->pageCount()) return false;
        const PagePtr page = file_->page(number);
        const std::uint8_t type = (*page)[0];
        return (type == static_cast<std::uint8_t>(PageType::kIndexLeaf) ||
                type == static_cast<std::uint8_t>(PageType::kIndexNode)) &&
               loadU32(&(*page)[kPageOwner]) == table_->page;
    };
    for (const std::uint32_t page : readUsageMap(*file_, index_->pages)) {
        if (isOwn(page)) releasePage(page);
    }
    clearRoot();
    addToUsageMap(*file_, *allocator_, index_->pages, index_->root);
}

// Pages of one level of the tree that is being built, each linked to its neighbours.
std::vector<std::uint32_t> IndexWriter::addLevel(std::size_t pages, PageType type, std::size_t level) {
    const Layout& layout = file_->layout();
    std::vector<std::uint32_t> numbers;
    for (std::size_t i = 0; i < pages; ++i)
        numbers.push_back(pages == 1 ? index_->root : addPage());
    for (std::size_t i = 0; i < pages; ++i) {
        const std::shared_ptr<Page> bytes = file_->edit(numbers[i]);
        clearIndexPage(layout, *bytes, type, table_->page, level);
        storeU32(&(*bytes)[layout.indexPrevious], i == 0 ? 0 : numbers[i - 1]);
        storeU32(&(*bytes)[layout.indexNext], i + 1 == pages ? 0 : numbers[i + 1]);
    }
    return numbers;
}

// The leaves of the tree as kids of the level above; nothing when the root takes all entries.
std::vector<IndexWriter::Kid> IndexWriter::buildLeaves(const std::vector<std::string>& entries) {
    const Layout& layout = file_->layout();
    // Where each page ends: as many entries as it takes when they share what they can.
    std::vector<std::size_t> ends;
    for (std::size_t first = 0; first < entries.size(); first = ends.back()) {
        std::size_t size = entries[first].size(), shortest = size, end = first + 1;
        for (; end < entries.size(); ++end) {
            const std::size_t full = size + entries[end].size();
            shortest = std::min(shortest, entries[end].size());
            const std::size_t prefix =
                std::min(storablePrefix(layout, entries[first], entries[end]), shortest - 1);
            if (full > capacity() && full - (end - first) * prefix > capacity()) break;
            size = full;
        }
        ends.push_back(end);
    }
    if (ends.empty()) return {};
    const std::vector<std::uint32_t> pages = addLevel(ends.size(), PageType::kIndexLeaf, 0);
    const std::span<const std::string> all(entries);
    std::vector<Kid> kids;
    for (std::size_t i = 0, first = 0; i < pages.size(); first = ends[i++]) {
        storeIndexEntries(layout, *file_->edit(pages[i]), all.subspan(first, ends[i] - first));
        kids.push_back({entries[ends[i] - 1], pages[i]});
    }
    if (pages.size() == 1) kids.clear();
    return kids;
}

// The nodes above these kids, as kids of the next level; nothing when the root takes all.
std::vector<IndexWriter::Kid> IndexWriter::buildNodes(std::vector<Kid> kids, std::size_t level) {
    std::vector<std::size_t> ends;
    for (std::size_t first = 0; first < kids.size(); first = ends.back()) {
        std::size_t size = 0, end = first + 1;
        for (; end < kids.size(); ++end) {
            size += kids[end - 1].last.size() + kEntryChildSize;
            if (size > capacity()) break;
        }
        // A node has no only child: a neighbour gives one away.
        if (end + 1 == kids.size() && end - first > 2) --end;
        ends.push_back(end);
    }
    const std::vector<std::uint32_t> pages = addLevel(ends.size(), PageType::kIndexNode, level);
    std::vector<Kid> above;
    for (std::size_t i = 0, first = 0; i < pages.size(); first = ends[i++]) {
        const auto begin = kids.begin() + static_cast<std::ptrdiff_t>(first);
        const auto end = kids.begin() + static_cast<std::ptrdiff_t>(ends[i]);
        above.push_back({std::prev(end)->last, pages[i]});
        writeNode(pages[i], Node{{begin, end}, true}, level);
    }
    if (pages.size() == 1) above.clear();
    return above;
}

}  // namespace wendel::jet
