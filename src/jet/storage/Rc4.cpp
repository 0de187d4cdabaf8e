#include "jet/storage/Rc4.h"

#include <array>
#include <numeric>
#include <utility>

namespace wendel::jet {

void rc4(std::span<const std::uint8_t> key, std::span<std::uint8_t> data) {
    std::array<std::uint8_t, 256> s;
    std::iota(s.begin(), s.end(), std::uint8_t{0});
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < s.size(); ++i) {
        j = static_cast<std::uint8_t>(j + s[i] + key[i % key.size()]);
        std::swap(s[i], s[j]);
    }
    std::uint8_t i = 0;
    j = 0;
    for (std::uint8_t& byte : data) {
        i = static_cast<std::uint8_t>(i + 1);
        j = static_cast<std::uint8_t>(j + s[i]);
        std::swap(s[i], s[j]);
        byte ^= s[static_cast<std::uint8_t>(s[i] + s[j])];
    }
}

}  // namespace wendel::jet
