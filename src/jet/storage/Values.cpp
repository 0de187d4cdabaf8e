#include "jet/storage/Values.h"

#include <algorithm>

namespace wendel::jet {

std::string Decimal::toText() const {
    std::array<std::uint32_t, 4> rest = magnitude;
    std::string digits;  // the last one first
    const auto isZero = [&rest] {
        return std::all_of(rest.begin(), rest.end(), [](auto w) { return w == 0; });
    };
    for (unsigned places = 0; !isZero() || places <= scale; ++places) {
        if (places == scale && scale > 0) digits.push_back('.');
        std::uint64_t remainder = 0;
        for (std::uint32_t& word : rest) {
            const std::uint64_t part = remainder << 32 | word;
            word = static_cast<std::uint32_t>(part / 10);
            remainder = part % 10;
        }
        digits.push_back(static_cast<char>('0' + remainder));
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
