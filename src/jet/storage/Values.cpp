#include "jet/storage/Values.h"

#include <algorithm>

namespace wendel::jet {

Decimal Decimal::of(std::int64_t units, std::uint8_t scale) {
    const auto bits = static_cast<std::uint64_t>(units);
    const std::uint64_t magnitude = units < 0 ? 0 - bits : bits;
    return {units < 0,
            {0, 0, static_cast<std::uint32_t>(magnitude >> 32), static_cast<std::uint32_t>(magnitude)},
            scale};
}

bool Decimal::isZero() const {
    return std::all_of(magnitude.begin(), magnitude.end(), [](std::uint32_t word) { return word == 0; });
}

bool Decimal::appendDigit(unsigned digit) {
    std::uint64_t carry = digit;
    for (std::size_t i = magnitude.size(); i-- > 0;) {
        carry += std::uint64_t{magnitude[i]} * 10;
        magnitude[i] = static_cast<std::uint32_t>(carry);
        carry >>= 32;
    }
    return carry == 0;
}

unsigned Decimal::dropDigit() {
    std::uint64_t remainder = 0;
    for (std::uint32_t& word : magnitude) {
        const std::uint64_t part = remainder << 32 | word;
        word = static_cast<std::uint32_t>(part / 10);
        remainder = part % 10;
    }
    return static_cast<unsigned>(remainder);
}

std::string Decimal::toText() const {
    Decimal rest = *this;
    std::string digits;  // the last one first
    for (unsigned places = 0; !rest.isZero() || places <= scale; ++places) {
        if (places == scale && scale > 0) digits.push_back('.');
        digits.push_back(static_cast<char>('0' + rest.dropDigit()));
    }
    if (negative) digits.push_back('-');
    std::reverse(digits.begin(), digits.end());
    return digits;
}

std::string guidText(const Guid& guid) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "{";
    for (std::size_t i = 0; i < guid.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += kDigits[guid[i] >> 4];
        text += kDigits[guid[i] & 15];
    }
    return text + '}';
}

}  // namespace wendel::jet
