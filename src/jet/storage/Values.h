#pragma once
// The small values that the reading classes hand out: a row's place, decimal numbers, GUIDs.

#include <array>
#include <cstdint>
#include <string>

namespace wendel::jet {

// A row's place for its whole life: page * 256 + slot. Positive, fits SQLite's rowid.
using RowId = std::int64_t;
constexpr RowId makeRowId(std::uint32_t page, std::uint8_t slot) {
    return static_cast<RowId>(page) << 8 | slot;
}
constexpr std::uint32_t pageOf(RowId id) { return static_cast<std::uint32_t>(id >> 8); }
constexpr std::uint8_t slotOf(RowId id) { return static_cast<std::uint8_t>(id & 0xFF); }

// A Decimal (NUMERIC) value: magnitude / 10^scale, the magnitude as 128 bits, most significant word first.
struct Decimal {
    bool negative = false;
    std::array<std::uint32_t, 4> magnitude{};
    std::uint8_t scale = 0;

    static Decimal of(std::int64_t units, std::uint8_t scale = 0);

    bool isZero() const;
    // The magnitude times ten and this digit; false, with a magnitude of no use, when 128 bits do not hold
    // it.
    bool appendDigit(unsigned digit);
    // The magnitude without its last digit, which is returned.
    unsigned dropDigit();

    // All digits, with exactly `scale` decimals: "-0.0010".
    std::string toText() const;

    friend bool operator==(const Decimal&, const Decimal&) = default;
};

// The 16 bytes in the order in which a GUID is printed.
using Guid = std::array<std::uint8_t, 16>;
// "{022D1AFB-7FB9-D861-2CFB-FFA4FB84FB79}".
std::string guidText(const Guid& guid);

}  // namespace wendel::jet
