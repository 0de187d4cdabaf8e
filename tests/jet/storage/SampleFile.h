#pragma once
// The smallest file that File takes for a Jet 4 database: a header and pages without meaning.

#include <cstdint>
#include <string>

#include "jet/storage/Rc4.h"

namespace wendel::jet::test {

inline std::string sampleFile(unsigned pages, char filler = '\0') {
    std::string bytes(std::size_t{pages} * 4096, filler);
    std::string head("\0\1\0\0Standard Jet DB\0\1\0\0\0", 24);
    head.resize(0x98);
    head[0x6E] = 0x09;  // sort order General
    head[0x6F] = 0x04;
    const std::uint8_t key[] = {0xC7, 0xDA, 0x39, 0x6B};
    rc4(key, {reinterpret_cast<std::uint8_t*>(head.data()) + 0x18, 128});
    return bytes.replace(0, head.size(), head);
}

}  // namespace wendel::jet::test
