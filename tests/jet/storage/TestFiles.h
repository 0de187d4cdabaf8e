#pragma once
// Example databases of other programs beside the project and what is known of their contents.

#include <string>
#include <string_view>
#include <vector>

#include "platform/Fehler.h"

namespace wendel::jet::test {

// "../shared/data/<name>" as seen from the project.
std::string dataPath(const std::string& name);
bool haveData();

// What expectations.py prints for these arguments, line by line.
std::vector<std::string> expectations(const std::vector<std::string>& arguments);

// Lower-case digits.
std::string hex(std::string_view bytes);

// Calls action; the number of the Fehler that it throws, 0 when it succeeds.
template <class Action>
int errorOf(const Action& action) {
    try {
        action();
    } catch (const Fehler& e) {
        return e.nummer();
    }
    return 0;
}

// A copy of the file in a folder of its own that is removed at the end.
class TemporaryCopy {
  public:
    explicit TemporaryCopy(const std::string& source = "");  // "": no file yet
    ~TemporaryCopy();
    TemporaryCopy(const TemporaryCopy&) = delete;
    TemporaryCopy& operator=(const TemporaryCopy&) = delete;
    const std::string& path() const { return path_; }
    const std::string& folder() const { return folder_; }
    void write(std::string_view bytes) const;

  private:
    std::string folder_, path_;
};
std::string readFile(const std::string& path);

}  // namespace wendel::jet::test
