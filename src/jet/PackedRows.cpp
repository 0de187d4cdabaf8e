#include "jet/PackedRows.h"

#include <algorithm>
#include <cstring>

namespace wendel::jet {
namespace {

constexpr std::size_t kPieceBytes = 1 << 16;
constexpr std::size_t kMostHeadBytes = 11;

enum Kind : char { kNull, kWhole, kReal, kText, kBytes };

}  // namespace

// A value never lies in two pieces.
std::string& PackedRows::piece(std::size_t room) {
    if (pieces_.empty() || pieces_.back().capacity() - pieces_.back().size() < room) {
        pieces_.emplace_back().reserve(std::max(room, kPieceBytes));
    }
    return pieces_.back();
}

// The kind, and a number of seven bits a byte.
void PackedRows::addHead(char kind, std::uint64_t number, std::size_t following) {
    std::string& out = piece(kMostHeadBytes + following);
    const std::size_t before = out.size();
    out += kind;
    for (; number >= 0x80; number >>= 7) {
        out += static_cast<char>(number | 0x80);
    }
    out += static_cast<char>(number);
    bytes_ += out.size() - before + following;
}

void PackedRows::addNull() {
    piece(1) += static_cast<char>(kNull);
    ++bytes_;
}

// The sign goes to the lowest bit, so that small negative numbers are short as well.
void PackedRows::addWhole(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value) << 1;
    addHead(kWhole, value < 0 ? ~bits : bits, 0);
}

void PackedRows::addReal(double value) {
    std::string& out = piece(1 + sizeof value);
    out += static_cast<char>(kReal);
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
    bytes_ += 1 + sizeof value;
}

void PackedRows::addText(std::string_view value) {
    addHead(kText, value.size(), value.size());
    pieces_.back() += value;
}

void PackedRows::addBytes(std::string_view value) {
    addHead(kBytes, value.size(), value.size());
    pieces_.back() += value;
}

std::uint64_t PackedRows::number() {
    std::uint64_t value = 0;
    for (int shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(pieces_[readPiece_][readAt_++]);
        value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
        if (byte < 0x80) {
            return value;
        }
    }
}

bool PackedRows::next(std::vector<KeyValue>& row) {
    for (KeyValue& value : row) {
        while (readPiece_ < pieces_.size() && readAt_ == pieces_[readPiece_].size()) {
            ++readPiece_;
            readAt_ = 0;
        }
        if (readPiece_ == pieces_.size()) {
            return false;
        }
        const std::string& piece = pieces_[readPiece_];
        switch (piece[readAt_++]) {
            case kWhole: {
                const std::uint64_t bits = number();
                value = static_cast<std::int64_t>(bits & 1 ? ~(bits >> 1) : bits >> 1);
                break;
            }
            case kReal: {
                double real;
                std::memcpy(&real, piece.data() + readAt_, sizeof real);
                readAt_ += sizeof real;
                value = real;
                break;
            }
            case kText: {
                const auto length = static_cast<std::size_t>(number());
                value = std::string_view(piece).substr(readAt_, length);
                readAt_ += length;
                break;
            }
            case kBytes: {
                const auto length = static_cast<std::size_t>(number());
                value = KeyBytes{std::string_view(piece).substr(readAt_, length)};
                readAt_ += length;
                break;
            }
            default: value = std::monostate(); break;
        }
    }
    return true;
}

}  // namespace wendel::jet
