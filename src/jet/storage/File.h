#pragma once
// A Jet database file as a row of pages: opens and checks it, reads single pages through a small cache and
// tells when another process has changed it. Knows nothing of what the pages hold; all other classes of
// this folder read through it. Never writes, creates nothing beside the file.

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "jet/storage/Format.h"

struct stat;

namespace wendel::jet {

// Errors of the engine that come out of this folder.
namespace jetfehler {
inline constexpr int kFileNotFound = 3024;
inline constexpr int kInvalidPath = 3044;
inline constexpr int kDamaged = 3049;
inline constexpr int kNoAccess = 3051;
inline constexpr int kUnknownFormat = 3343;
}  // namespace jetfehler

enum class Access { kReadOnly, kReadWrite };

// Language rules of a text column or a file: LCID and version of the rules.
struct SortOrder {
    std::uint16_t lcid = 0;
    std::uint8_t version = 0;
    friend bool operator==(const SortOrder&, const SortOrder&) = default;
};

// The bytes of one page, decoded; whoever holds the pointer keeps them alive and unchanged.
using Page = std::vector<std::uint8_t>;
using PagePtr = std::shared_ptr<const Page>;

class File {
  public:
    static constexpr std::size_t kDefaultCacheBytes = 1 << 20;

    // Opens an existing file; path is native UTF-8. With kReadWrite a file that may only be read is opened
    // for reading all the same (writable() tells). Throws Fehler 3024 when there is no file, 3044 when its
    // folder is missing, 3051 when it must not be read, 3343 when it is no Jet 3 or Jet 4 file, 3049 when it
    // is cut off.
    File(const std::string& path, Access access, std::size_t cacheBytes = kDefaultCacheBytes);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const Layout& layout() const { return *layout_; }
    Version version() const { return layout_->version; }
    bool writable() const { return writable_; }
    // True when the pages are RC4-encoded on the disk ("encrypted" file).
    bool encoded() const { return pageKey_ != 0; }
    // Code page of all text in a Jet 3 file (1252 as a rule); without use in Jet 4.
    std::uint16_t codePage() const { return codePage_; }
    // The order of new columns; each column carries its own.
    SortOrder sortOrder() const { return sortOrder_; }

    std::uint32_t pageCount() const { return pageCount_; }
    // Throws Fehler 3049 for a page number outside the file or when the page cannot be read.
    PagePtr page(std::uint32_t number);

    // Whether the file may have been written since it was opened, or another one lies in its place. Whoever
    // wants to see the new state opens it anew: what still reads this one must not have its pages, or even
    // their layout, exchanged under it. False when the file is gone: there is nothing newer to see.
    bool changed() const;

    // Requests for pages so far, and how many of them went to the disk.
    std::uint64_t pagesRequested() const { return pagesRequested_; }
    std::uint64_t pagesRead() const { return pagesRead_; }

    // Throws Fehler 3049 naming the file; `what` says in a few German words which structure is broken.
    [[noreturn]] void throwDamaged(std::string_view what) const;

  private:
    // What tells one state of the file from another.
    struct State {
        std::uint64_t device = 0, inode = 0, size = 0;
        std::int64_t modifiedNs = 0, changedNs = 0;
        friend bool operator==(const State&, const State&) = default;
    };
    struct Slot {
        std::uint32_t number;
        PagePtr page;
    };

    void openAndCheck(Access access);
    void readHeader();
    void closeDescriptor();
    static State stateOf(const struct stat& info);
    void rememberState(const State& state);
    PagePtr readPage(std::uint32_t number);
    std::shared_ptr<Page> freeBuffer();

    std::string path_;
    std::size_t cacheSlots_ = 0;
    std::size_t cacheBytes_;
    int fd_ = -1;
    bool writable_ = false;
    const Layout* layout_ = nullptr;
    std::uint32_t pageKey_ = 0;
    std::uint16_t codePage_ = 0;
    SortOrder sortOrder_;
    std::uint32_t pageCount_ = 0;
    State state_;
    // The file was written so shortly before it was looked at that a second write can carry the same time.
    bool stateUncertain_ = false;

    // Most recently used first.
    std::list<Slot> cache_;
    std::unordered_map<std::uint32_t, std::list<Slot>::iterator> cached_;
    std::uint64_t pagesRequested_ = 0;
    std::uint64_t pagesRead_ = 0;
};

}  // namespace wendel::jet
