#pragma once
// Changes one index: puts entries in, takes them out, builds the whole tree anew. Keeps the tree, the index's
// page map and its statistics right; the rows, and whether a key may be there twice, are the caller's
// business (TableWriter). Keys come from rowKey (KeyEncoder.h).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/storage/IndexPage.h"
#include "jet/storage/TableDef.h"
#include "jet/storage/Values.h"

namespace wendel::jet {

class PageAllocator;

// May be kept over many statements: it remembers nothing of the tree that could become wrong. All changes
// belong inside File::Writing. Every function throws Fehler 3049 when the tree is damaged; what is half done
// then, the rollback of the statement undoes.
class IndexWriter {
  public:
    // All four must outlive the writer; the definition must be that of the file as it is.
    IndexWriter(File& file, PageAllocator& allocator, const TableDef& table, const Index& index);

    // Whether any entry has exactly this key. Rows whose indexed columns are all Null are never duplicates:
    // do not ask for them.
    bool contains(std::string_view key);

    // Nothing happens when this entry is there already. Throws Fehler 3047 when the key is too long for a
    // page to hold at least two of its kind.
    void insert(std::string_view key, RowId row);

    // False, and nothing changed, when there is no such entry.
    bool remove(std::string_view key, RowId row);

    // For rows whose key another writer coded differently: looks through all leaves for an entry of the row.
    bool removeByRow(RowId row);

    // Replaces the whole tree by these entries, in whatever order they come: full leaves, nodes above them,
    // the root where it was; the old pages are released. Throws Fehler 3047 as insert does.
    void build(std::vector<std::pair<std::string, RowId>> entries);

  private:
    // One child of a node. `last` is the greatest entry below it (key and row id).
    struct Kid {
        std::string last;
        std::uint32_t page = 0;
    };
    // A node taken apart. With a tail the last kid has no entry of its own, and `last` of that kid is not
    // known (or not stored).
    struct Node {
        std::vector<Kid> kids;
        bool tail = false;
    };
    // A node on the way from the root to a leaf, and where in it the way goes on: the start of the entry, or
    // the end of the entries for the tail.
    struct Step {
        std::uint32_t page = 0;
        std::size_t position = 0;
    };
    // What happened to the child at path_[depth], for the node to take note of.
    struct Change {
        bool gone = false;
        std::optional<std::string>
            last;                   // the greatest entry below the child (or below `behind`) is this now
        std::optional<Kid> before;  // a new page directly before the child
        std::uint32_t behind = 0;   // a new page directly behind the child, which is the node's last one
        std::string lastOfChild;    // with `behind`: the greatest entry of the child itself
        bool appended = false;      // behind all others of the index

        static Change removed() {
            Change change;
            change.gone = true;
            return change;
        }
        static Change newLast(const std::string& entry) {
            Change change;
            change.last = entry;
            return change;
        }
        bool any() const { return gone || last || before || behind != 0; }
    };

    IndexPage load(std::uint32_t number) const;
    IndexPage loadLeaf(std::uint32_t number) const;
    std::uint32_t addPage();
    void releasePage(std::uint32_t number);
    std::size_t capacity() const;
    void refuseTooLong(std::string_view key) const;

    // Goes from the root to the leaf where the entry is or belongs; fills path_.
    IndexPage descend(std::string_view entry);
    bool isNewKey(const IndexPage& leaf, std::size_t at, std::string_view entry) const;
    void countKey();

    void rebuildLeaf(const std::string& entry, bool last);
    bool appendToLeft(const std::string& entry);
    void noteLast(const std::string& entry);
    void splitLeaf(const std::vector<std::string>& entries, std::size_t inserted);
    void appendLeaf(std::string_view entry);
    void pushRootDown();
    std::uint32_t addLeftNeighbour(std::uint32_t page);
    void unlink(std::uint32_t page);
    void setLink(std::uint32_t page, std::size_t field, std::uint32_t expected, std::uint32_t value);

    static std::size_t storedSize(const Node& node);
    Node readNode(const Step& step, std::size_t& kid) const;
    void writeNode(std::uint32_t page, const Node& node, std::size_t level);
    void propagate(std::size_t depth, Change change);
    void applyChange(Node& node, std::size_t kid, Change& change, Change& up) const;
    void forgetKid(Node& node, std::size_t kid, Change& up);
    bool storeNode(std::size_t depth, Node node, Change& up);
    void clearRoot();
    std::optional<std::string> greatestBelow(std::uint32_t page) const;
    std::size_t positionOf(std::uint32_t page, std::size_t entry) const;

    void balance(const std::string& entry);
    std::size_t joinedSize(const IndexPage& left, const IndexPage& right) const;
    bool mergeLeaf();
    bool mergeNode(std::size_t depth);
    void collapseRoot();

    void releaseTree();
    std::vector<std::uint32_t> addLevel(std::size_t pages, PageType type, std::size_t level);
    std::vector<Kid> buildLeaves(const std::vector<std::string>& entries);
    std::vector<Kid> buildNodes(std::vector<Kid> kids, std::size_t level);
    void setStatistics(std::uint32_t entries, std::uint32_t keys);

    File* file_;
    PageAllocator* allocator_;
    const TableDef* table_;
    const Index* index_;
    std::vector<Step> path_;  // root first
    std::uint32_t leaf_ = 0;  // where the path leads
    std::string lastInserted_;
};

}  // namespace wendel::jet
