#pragma once
// Marks an action as being under way for as long as the object lives, also over boxes and errors. Whoever is
// called from inside such a box asks the flag and leaves the action to the one that runs.

#include <utility>

namespace wendel {

class Laufend {
  public:
    // The flag outlives the object and is put back as it was.
    explicit Laufend(bool& merker) : merker_(merker), vorher_(std::exchange(merker, true)) {}
    ~Laufend() { merker_ = vorher_; }
    Laufend(const Laufend&) = delete;
    Laufend& operator=(const Laufend&) = delete;

  private:
    bool& merker_;
    bool vorher_;
};

}  // namespace wendel
