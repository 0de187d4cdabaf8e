#pragma once
// The RC4 stream cipher, by which the format masks its header and encodes the pages of "encrypted" files.

#include <cstdint>
#include <span>

namespace wendel::jet {

// Encodes or decodes in place; doing it twice gives the original bytes. The key must not be empty.
void rc4(std::span<const std::uint8_t> key, std::span<std::uint8_t> data);

}  // namespace wendel::jet
