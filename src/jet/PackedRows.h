#pragma once
// Rows of values packed into a few large pieces of memory: what a statement has read before it begins to
// write, and what a recordset has read ahead. Written once, then read once from the beginning.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "jet/storage/KeyEncoder.h"

namespace wendel::jet {

class PackedRows {
  public:
    // The values of a row one behind the other; the reader knows how many there are.
    void addNull();
    void addWhole(std::int64_t value);
    void addReal(double value);
    void addText(std::string_view value);
    void addBytes(std::string_view value);

    std::size_t bytes() const { return bytes_; }

    // Puts the next values into the row, as many as it has; false when all are read. Texts and bytes lie in
    // the pieces and stay valid as long as the rows.
    bool next(std::vector<KeyValue>& row);

  private:
    std::string& piece(std::size_t room);
    void addHead(char kind, std::uint64_t number, std::size_t following);
    std::uint64_t number();

    std::vector<std::string> pieces_;
    std::size_t bytes_ = 0;
    std::size_t readPiece_ = 0, readAt_ = 0;
};

}  // namespace wendel::jet
