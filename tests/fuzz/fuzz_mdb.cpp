// Feeds whole database files to the reading engine: opening, the catalog, all rows, all index entries. Good
// seeds are small .mdb files of either version. Anything but a sound result or one of the engine's errors is
// a find.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/PageMutator.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/ReadEverything.h"

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
