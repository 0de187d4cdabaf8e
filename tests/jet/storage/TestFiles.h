#pragma once
// Example databases of other programs beside the project and what is known of their contents.

#include <string>
#include <string_view>
#include <vector>

#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Row.h"

namespace wendel::jet::test {

// "../shared/data/<name>" as seen from the project.
std::string dataPath(const std::string& name);
bool haveData();

// The lines of expectations.py for this description, each cut into its fields; `member` may be empty.
std::vector<std::vector<std::string>> expectations(const std::string& jsonName,
                                                   const std::string& member = "");

// Lower-case hex of the SHA-256 of the text (FIPS 180-4).
std::string sha256(std::string_view text);
std::string hex(std::string_view bytes);
std::string unhex(std::string_view digits);

// A cell as the descriptions write it: Null "\N", yes/no 1/0, dates yyyy-mm-dd hh:mm:ss, single %.9g, double
// %.17g, currency with four decimals, binary as lower-case hex; backslash, TAB, CR, LF, NUL escaped in texts.
std::string cellText(const RowView& row, std::size_t column);

// A cell as a value to look for; texts and bytes live in the buffer, which must be empty.
KeyValue keyValue(const RowView& row, std::size_t column, std::string& buffer);

// A copy of the file in a folder of its own that is removed at the end.
class TemporaryCopy {
  public:
    explicit TemporaryCopy(const std::string& source);
    explicit TemporaryCopy();  // no file yet
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
