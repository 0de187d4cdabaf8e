#pragma once
// Stands between the storage and the system in this test program: counts the calls that change files, lets
// one of them fail or end the process, and notes them all, so that a power cut can be played afterwards.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace wendel::jet::test {

enum class Fault { kNone, kKilled, kKilledHalfWay, kDiskFull, kInputOutput };

// From now on; the n-th call (from 1) meets the fault. kDiskFull and kInputOutput last until the next
// order, and concern what writes and syncs.
void orderFault(Fault fault, unsigned nth);

// Every call between start and end, of files below the folder.
void startNoting(const std::string& folder);
struct Call {
    enum class Kind { kWrite, kTruncate, kSync, kRemove } kind;
    std::string path;
    std::uint64_t offset = 0;  // or the new length
    std::string bytes;
};
std::size_t callsNoted();
std::vector<Call> endNoting();

// What a power cut after the first `count` calls may leave of the files: all that was synced, and of the
// rest, disk block by disk block, what the seed says.
using Files = std::map<std::string, std::string>;
Files afterPowerCut(Files before, const std::vector<Call>& calls, std::size_t count, unsigned seed);

}  // namespace wendel::jet::test
