// Changes whole damaged database files: random rows into, out of and in the tables of what the fuzzer gives.
// Good seeds are small .mdb files of either version. Anything but a done change or one of the engine's
// refusals is a find. Which changes follows from the bytes of the file.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz/PageMutator.h"
#include "jet/proof/RandomChanges.h"
#include "jet/storage/ReadEverything.h"

namespace {

// A folder in memory where there is one; the journal lies beside the file.
std::string databasePath() {
    static const std::string path = [] {
        std::string pattern =
            std::filesystem::exists("/dev/shm") ? "/dev/shm/fuzz-XXXXXX" : "/tmp/fuzz-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        return pattern + "/probe.mdb";
    }();
    return path;
}

unsigned hash(const std::uint8_t* data, std::size_t size) {
    unsigned value = 2166136261u;
    for (std::size_t i = 0; i < size; i += 61)
        value = (value ^ data[i]) * 16777619u;
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace wendel::jet;
    std::filesystem::remove(databasePath() + "-journal");
    std::ofstream(databasePath(), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    proof::Random random(hash(data, size));
    try {
        Database database(databasePath(), Access::kReadWrite, 64 * 1024);
        int tables = 0;
        for (const CatalogEntry& entry : database.entries()) {
            if (tables++ == 8) break;
            try {
                proof::changeAtRandom(database, database.table(entry.name), random, 6);
            } catch (const wendel::Fehler& failure) {
                if (!proof::isRefusal(failure.nummer())) throw;
            }
        }
        test::readEverything(database, 500);
    } catch (const wendel::Fehler& failure) {
        if (!proof::isRefusal(failure.nummer())) throw;
    }
    return 0;
}
