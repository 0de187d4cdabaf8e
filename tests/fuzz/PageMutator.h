#pragma once
// How the fuzzers of database files damage them; to be included by the one source of a fuzzer.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// Inserted or deleted bytes would shift all later pages and end at the first check, so the file keeps its
// size but for whole pages at its end; what changes are numbers, mostly in the heads of pages.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    constexpr std::size_t kPage = 2048;
    std::minstd_rand engine(seed);
    const auto random = [&engine] { return static_cast<std::uint32_t>(engine()); };
    if (size < 2 * kPage) return LLVMFuzzerMutate(data, size, maxSize);
    for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
        const std::size_t page = random() % (size / kPage) * kPage;
        const std::size_t within = random() % 3 == 0 ? random() % kPage : random() % 96;
        const std::size_t at = std::min(page + within, size - 4);
        const auto pages = static_cast<std::uint32_t>(size / kPage);
        const std::uint32_t values[] = {
            0, 1, 0xFF, 0xFFFFFFFF, 0x80000000, random() % 64, random() % pages, random()};
        const std::uint32_t value = values[random() % std::size(values)];
        for (unsigned i = 0, bytes = 1u << random() % 3; i < bytes; ++i) {
            data[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
    }
    return random() % 50 == 0 ? size - size % (2 * kPage) - 2 * kPage : size;
}
