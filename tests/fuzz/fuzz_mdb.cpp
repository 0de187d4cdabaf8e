// Feeds whole database files to the reading engine: opening, the catalog, all rows, all index entries. Good
// seeds are small .mdb files of either version. Anything but a sound result or one of the engine's errors is
// a find.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>

#include "jet/storage/Catalog.h"
#include "jet/storage/ReadEverything.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

// The engine opens files by their path; one in memory, reused for all inputs, has a path too.
int memoryFile() {
    static const int fd = ::memfd_create("fuzz", 0);
    return fd;
}

bool fill(const std::uint8_t* data, std::size_t size) {
    return ::ftruncate(memoryFile(), 0) == 0 &&
           ::pwrite(memoryFile(), data, size, 0) == static_cast<ssize_t>(size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!fill(data, size)) std::abort();
    try {
        wendel::jet::Database database("/proc/self/fd/" + std::to_string(memoryFile()),
                                       wendel::jet::Access::kReadOnly, 64 * 1024);
        wendel::jet::test::readEverything(database, 2000);
    } catch (const wendel::Fehler& e) {
        const int number = e.nummer();
        if (number != wendel::jet::jetfehler::kDamaged && number != wendel::jet::jetfehler::kUnknownFormat)
            throw;
    }
    return 0;
}

// Inserted or deleted bytes would shift all later pages and end at the first check, so the file keeps its
// size but for whole pages at its end; what changes are numbers, mostly in the heads of pages.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    constexpr std::size_t kPage = 2048;
    std::minstd_rand engine(seed);
    const auto random = [&engine] { return static_cast<std::uint32_t>(engine()); };
    if (size < 2 * kPage) return LLVMFuzzerMutate(data, size, maxSize);
    for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
        const std::size_t page = random() % (size / kPage) * kPage;
        const std::size_t within = random() % 3 == 0 ? random() % kPage : random() % 96;
        const std::size_t at = std::min(page + within, size - 4);
        const auto pages = static_cast<std::uint32_t>(size / kPage);
        const std::uint32_t values[] = {
            0, 1, 0xFF, 0xFFFFFFFF, 0x80000000, random() % 64, random() % pages, random()};
        const std::uint32_t value = values[random() % std::size(values)];
        for (unsigned i = 0, bytes = 1u << random() % 3; i < bytes; ++i) {
            data[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
    }
    return random() % 50 == 0 ? size - size % (2 * kPage) - 2 * kPage : size;
}
