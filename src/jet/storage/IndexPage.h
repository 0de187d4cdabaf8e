#pragma once
// One page of an index tree, leaf or node: finds entries in it without taking it apart, and changes its
// bytes. Leaves the tree, that is what page stands where, to IndexCursor and IndexWriter.
//
// Entries are named by their start, counted from the beginning of the entry area. An entry is the key and the
// row id; in nodes the child page follows, which is no part of what is compared.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/storage/File.h"

namespace wendel::jet {

// A tree of this height would not fit into a file.
inline constexpr std::size_t kMaxIndexDepth = 24;

// How many bytes of entries a page takes.
std::size_t indexPageCapacity(const Layout& layout);

// A look at a page; keeps it alive. Everything throws Fehler 3049 when it meets damaged entries.
class IndexPage {
  public:
    IndexPage() = default;
    // Throws Fehler 3049 when this is no page of an index of the table.
    IndexPage(const File& file, PagePtr page, std::uint32_t tablePage);

    bool isLeaf() const { return leaf_; }
    std::size_t prefixLength() const { return prefix_; }
    std::uint8_t level() const;
    std::uint32_t previous() const;
    std::uint32_t next() const;
    std::uint32_t tail() const;
    // As noted in the page.
    std::size_t freeBytes() const;

    // Behind the last entry; 0 in an empty page.
    std::size_t end() const { return end_; }
    bool empty() const { return end_ == 0; }
    std::size_t count() const;
    std::size_t endOf(std::size_t start) const;
    // The start of the entry that ends here.
    std::size_t startBefore(std::size_t end) const;

    // Below zero when the entry lies before all that begin with the bound, zero when it begins with it, above
    // zero behind.
    int compare(std::size_t start, std::string_view bound) const;
    // The first entry that is not before the bound; strictly: that is behind everything that begins with it.
    // end() when there is none.
    std::size_t find(std::string_view bound, bool strictly = false) const;
    // Key and row id.
    std::string entry(std::size_t start) const;
    void readEntry(std::size_t start, std::string& out) const;
    std::string lastEntry() const { return entry(startBefore(end_)); }
    // Nodes only. The page below the entry; at end() the tail or, in a node without one, that of the last
    // entry.
    std::uint32_t child(std::size_t start) const;
    // All entries in full, with their child pages in nodes.
    std::vector<std::string> entries() const;

  private:
    std::string_view rest(std::size_t start) const;
    std::string_view prefixOf(std::size_t start) const;

    const File* file_ = nullptr;
    PagePtr page_;
    bool leaf_ = false;
    std::size_t prefix_ = 0;
    std::size_t end_ = 0;
};

// The bytes that two entries of a leaf and all between them can share: never the slot of a row id.
std::size_t sharedPrefix(std::string_view first, std::string_view last);
// The same, as far as the version can note the length.
std::size_t storablePrefix(const Layout& layout, std::string_view first, std::string_view last);

// Makes an empty page without neighbours of it.
void clearIndexPage(const Layout& layout, Page& page, PageType type, std::uint32_t tablePage,
                    std::size_t level = 0);

// Puts a full entry in front of the one that starts here (or at the end). False when it has no room or the
// page shares a prefix that it does not have; nothing happened then.
bool insertIndexEntry(const Layout& layout, Page& page, std::size_t start, std::string_view entry);

// Takes out the entry that starts here.
void removeIndexEntry(const Layout& layout, Page& page, std::size_t start);

// Replaces all entries of the page. Without a shared prefix where they fit so, else leaves share what they
// can; false when they do not fit even then, and nothing happened.
bool storeIndexEntries(const Layout& layout, Page& page, std::span<const std::string> entries);

}  // namespace wendel::jet
