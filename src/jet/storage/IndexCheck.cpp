#include "jet/storage/IndexCheck.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/IndexPage.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Table.h"
#include "jet/storage/UsageMap.h"

namespace wendel::jet {
namespace {

// One row as the index has it. The key itself would take too much room in large tables.
struct Entry {
    RowId row;
    std::size_t keyHash;
};

std::size_t hashOf(std::string_view key) { return std::hash<std::string_view>()(key); }

class Check {
  public:
    Check(File& file, const TableDef& table, const Index& index)
        : file_(file), table_(table), index_(index), ownPages_(readUsageMap(file, index.pages)) {
        for (const IndexColumn& c : index.columns)
            nullKey_ += static_cast<char>(c.descending ? kKeyNullDescending : kKeyNullAscending);
    }

    void examineTree() {
        examine(index_.root, 0, {});
        for (std::size_t level = 0; level < levels_.size(); ++level)
            checkLinks(levels_[level], level == 0);
    }

    // Behind examineTree.
    void compareRows() {
        const auto byRow = [](const Entry& a, const Entry& b) { return a.row < b.row; };
        std::sort(entries_.begin(), entries_.end(), byRow);
        const auto twice = std::adjacent_find(entries_.begin(), entries_.end(),
                                              [](const Entry& a, const Entry& b) { return a.row == b.row; });
        if (twice != entries_.end()) failRow(twice->row, "zweimal im Index");

        std::vector<std::size_t> columns;
        for (const IndexColumn& c : index_.columns)
            columns.push_back(c.column);
        RowValues values;
        std::size_t found = 0;
        for (TableScan scan(file_, table_); scan.next();) {
            values.assign(scan.row(), columns);
            const RowId row = scan.row().id();
            const auto entry = std::lower_bound(entries_.begin(), entries_.end(), Entry{row, 0}, byRow);
            const bool present = entry != entries_.end() && entry->row == row;
            found += present ? 1 : 0;
            checkRow(row, values.cells(), present ? &*entry : nullptr);
        }
        if (found != entries_.size()) fail(index_.root, "Eintrag ohne Zeile");
    }

  private:
    struct Kid {
        std::size_t height = 0;
        std::string last;  // the greatest entry; empty when there is none
    };

    [[noreturn]] void fail(std::uint32_t page, const std::string& what) const {
        file_.throwDamaged("Index '" + index_.name + "' der Tabelle '" + table_.name + "', Seite " +
                           std::to_string(page) + ": " + what);
    }

    // Walks through everything below this page; all of it must lie behind `before`.
    Kid examine(std::uint32_t number, std::size_t depth, std::string before) {
        if (depth > kMaxIndexDepth) fail(number, "zu tiefer Baum");
        if (!visited_.insert(number).second) fail(number, "zweimal im Baum");
        if (!std::binary_search(ownPages_.begin(), ownPages_.end(), number)) {
            fail(number, "fehlt in der Seitenliste");
        }
        const IndexPage page(file_, file_.page(number), table_.page);
        if (page.freeBytes() != indexPageCapacity(file_.layout()) - page.end()) {
            fail(number, "falscher freier Platz");
        }
        const Kid result = page.isLeaf() ? examineLeaf(page, number, std::move(before))
                                         : examineNode(page, number, depth, std::move(before));
        // Some writers leave the level of their nodes at 0.
        if (page.level() != 0 && page.level() != result.height) fail(number, "falsche Ebene");
        if (levels_.size() <= result.height) levels_.resize(result.height + 1);
        levels_[result.height].push_back(number);
        return result;
    }

    // The entries of a page in order; the shared prefix must leave them at least the slot of the row id.
    template <class Use>
    void eachEntry(const IndexPage& page, std::uint32_t number, std::string before, const Use& use) {
        std::string entry;
        for (std::size_t start = 0; start != page.end(); start = page.endOf(start)) {
            page.readEntry(start, entry);
            if (page.prefixLength() >= entry.size()) fail(number, "zu langer gemeinsamer Anfang");
            if (entry <= before) fail(number, "falsche Reihenfolge");
            use(start, entry);
            before = entry;
        }
    }

    Kid examineLeaf(const IndexPage& page, std::uint32_t number, std::string before) {
        if (page.tail() != 0) fail(number, "Verweis in einem Blatt");
        Kid result;
        eachEntry(page, number, std::move(before), [&](std::size_t, const std::string& entry) {
            const auto* p = reinterpret_cast<const std::uint8_t*>(entry.data()) + entry.size();
            const std::string key = entry.substr(0, entry.size() - kEntryRowIdSize);
            if (index_.unique && key == lastKey_ && key != nullKey_) fail(number, "doppelter Schlüssel");
            lastKey_ = key;
            entries_.push_back({makeRowId(loadU24Big(p - 4), p[-1]), hashOf(key)});
            result.last = entry;
        });
        return result;
    }

    Kid examineNode(const IndexPage& page, std::uint32_t number, std::size_t depth, std::string before) {
        Kid result;
        std::optional<std::size_t> height;
        const auto descend = [&](std::uint32_t child) {
            Kid kid = examine(child, depth + 1, before);
            if (height && *height != kid.height) fail(number, "ungleiche Tiefe");
            height = kid.height;
            if (!kid.last.empty()) before = result.last = kid.last;
            return kid;
        };
        eachEntry(page, number, before, [&](std::size_t start, const std::string& entry) {
            const Kid kid = descend(page.child(start));
            // An emptied leaf may keep the entry that it had.
            if (!kid.last.empty() && kid.last != entry) fail(number, "falscher Trennschlüssel");
            before = entry;
        });
        if (page.tail() != 0) descend(page.tail());
        if (!height) fail(number, "leerer Knoten");
        result.height = *height + 1;
        return result;
    }

    // Leaves form one chain. Nodes of some writers are linked only below one parent, or not at all.
    void checkLinks(const std::vector<std::uint32_t>& pages, bool leaves) const {
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const IndexPage page(file_, file_.page(pages[i]), table_.page);
            const std::uint32_t before = i == 0 ? 0 : pages[i - 1];
            const std::uint32_t behind = i + 1 == pages.size() ? 0 : pages[i + 1];
            const auto isRight = [leaves](std::uint32_t link, std::uint32_t neighbour) {
                return link == neighbour || (!leaves && link == 0);
            };
            if (!isRight(page.previous(), before) || !isRight(page.next(), behind)) {
                fail(pages[i], "falscher Nachbar");
            }
        }
    }

    void checkRow(RowId row, std::span<const Cell> cells, const Entry* entry) const {
        if (index_.columns.empty()) return;
        const std::optional<std::string> key = rowKey(table_, index_, cells);
        if (!key && entry != nullptr) failRow(row, "im Index trotz Null");
        if (!key) return;
        if (entry == nullptr) failRow(row, "fehlt im Index");
        if (index_.searchable && rowKeyIsKnown(table_, index_, cells) && entry->keyHash != hashOf(*key)) {
            failRow(row, "unter falschem Schlüssel im Index");
        }
    }

    [[noreturn]] void failRow(RowId row, const std::string& what) const {
        fail(pageOf(row), "Zeile " + std::to_string(slotOf(row)) + " " + what);
    }

    File& file_;
    const TableDef& table_;
    const Index& index_;
    std::vector<std::uint32_t> ownPages_;
    std::string nullKey_;
    std::set<std::uint32_t> visited_;
    std::vector<std::vector<std::uint32_t>> levels_;  // pages from left to right, leaves first
    std::vector<Entry> entries_;
    std::optional<std::string> lastKey_;
};

}  // namespace

void checkIndex(File& file, const TableDef& table, const Index& index) {
    Check check(file, table, index);
    check.examineTree();
    check.compareRows();
}

void checkIndexTree(File& file, const TableDef& table, const Index& index) {
    Check(file, table, index).examineTree();
}

}  // namespace wendel::jet
