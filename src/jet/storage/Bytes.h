#pragma once
// Integers in pages and keys: little-endian in pages, big-endian in index entries; and bytes as text and
// back. The callers check bounds before; these functions only copy.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace wendel::jet {

inline std::uint16_t loadU16(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }

inline std::uint32_t loadU24(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]) << 16;
}

inline std::uint32_t loadU32(const std::uint8_t* p) {
    return loadU24(p) | static_cast<std::uint32_t>(p[3]) << 24;
}

inline std::uint64_t loadU64(const std::uint8_t* p) {
    return static_cast<std::uint64_t>(loadU32(p)) | static_cast<std::uint64_t>(loadU32(p + 4)) << 32;
}

inline void storeU16(std::uint8_t* p, std::uint16_t value) {
    p[0] = static_cast<std::uint8_t>(value);
    p[1] = static_cast<std::uint8_t>(value >> 8);
}

inline void storeU24(std::uint8_t* p, std::uint32_t value) {
    storeU16(p, static_cast<std::uint16_t>(value));
    p[2] = static_cast<std::uint8_t>(value >> 16);
}

inline void storeU32(std::uint8_t* p, std::uint32_t value) {
    storeU24(p, value);
    p[3] = static_cast<std::uint8_t>(value >> 24);
}

inline void storeU64(std::uint8_t* p, std::uint64_t value) {
    storeU32(p, static_cast<std::uint32_t>(value));
    storeU32(p + 4, static_cast<std::uint32_t>(value >> 32));
}

inline std::uint32_t loadU24Big(const std::uint8_t* p) {
    return static_cast<std::uint32_t>(p[0]) << 16 | static_cast<std::uint32_t>(p[1]) << 8 |
           static_cast<std::uint32_t>(p[2]);
}

inline std::uint32_t loadU32Big(const std::uint8_t* p) {
    return loadU24Big(p) << 8 | static_cast<std::uint32_t>(p[3]);
}

// Appends the low `bytes` bytes of the value, most significant first.
inline void appendBig(std::string& out, std::uint64_t value, unsigned bytes) {
    for (unsigned i = bytes; i-- > 0;)
        out.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

// The same, least significant first.
inline void appendLittle(std::string& out, std::uint64_t value, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

inline std::span<const std::uint8_t> asBytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline std::string_view asText(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace wendel::jet
