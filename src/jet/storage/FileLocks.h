#pragma once
// The locks by which processes share a database file: bytes of the file itself, far behind anything it can
// hold, locked per open file description. They need no file beside it, work where only reading is allowed,
// and go with the process that holds them, however it ends. What they mean is told here; File takes them.

#include <chrono>
#include <cstdint>

namespace wendel::jet {

// How long a statement waits for a lock before it ends with an error.
inline constexpr std::chrono::milliseconds kLockPatience{1000};

enum class LockPlace : std::uint8_t {
    kUsers,    // shared while a file is open; exclusive: nobody else has it open
    kReaders,  // shared while pages are read that must belong together; exclusive while the file is written
    kWriter,   // exclusive while a statement changes pages, or a checkpoint writes the file
};

class FileLocks {
  public:
    enum class Result { kGot, kBusy, kImpossible };  // the last: the file system has no locks

    // fd stays the caller's; exclusive locks need one that is open for writing.
    explicit FileLocks(int fd = -1) : fd_(fd) {}

    // Each changes a lock already held into the wanted one, or leaves it as it is on failure.
    Result tryShared(LockPlace place);
    // slot: who locks, for holderOfWriter(); 1 to 255, or 0 for somebody unknown.
    Result tryExclusive(LockPlace place, unsigned slot = 0);
    // The same, with pauses of a few milliseconds until kLockPatience is over.
    Result waitShared(LockPlace place);
    Result waitExclusive(LockPlace place, unsigned slot = 0);
    void release(LockPlace place);

    // The slot that the present holder of kWriter gave; 0 when nobody holds it or the holder gave none.
    unsigned holderOfWriter() const;

  private:
    int fd_;
};

}  // namespace wendel::jet
