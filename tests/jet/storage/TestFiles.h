#pragma once
// Example databases of other programs beside the project and what is known of their contents.

#include <string>
#include <string_view>
#include <vector>

namespace wendel::jet::test {

// "../shared/data/<name>" as seen from the project.
std::string dataPath(const std::string& name);
bool haveData();

// What expectations.py prints for these arguments, line by line.
std::vector<std::string> expectations(const std::vector<std::string>& arguments);

// Lower-case digits.
std::string hex(std::string_view bytes);

// A file, once it is written, in a folder of its own that is removed at the end.
class TemporaryCopy {
  public:
    TemporaryCopy();
    ~TemporaryCopy();
    TemporaryCopy(const TemporaryCopy&) = delete;
    const std::string& path() const { return path_; }
    const std::string& folder() const { return folder_; }
    void write(std::string_view bytes) const;

  private:
    std::string folder_, path_;
};
std::string readFile(const std::string& path);

}  // namespace wendel::jet::test
