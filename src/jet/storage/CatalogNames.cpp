#include "jet/storage/CatalogNames.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/IndexCursor.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789 _&#$%()+,;=@";
// Each Umlaut has the weight of its vowel and differs only in what follows the weights.
constexpr std::pair<char, const char*> kUmlauts[] = {{'a', "ä"}, {'o', "ö"}, {'u', "ü"}};
constexpr std::size_t kMaxVowels = 10;
constexpr std::size_t kNumberKeySize = 5;

// The part of a key that has one weight per letter.
std::string_view weights(TextOrder order, std::string_view key) {
    const std::uint8_t least = order == TextOrder::kGeneralJet3 ? 0x10 : 0x02;
    const auto end = std::find_if(key.begin(), key.end(),
                                  [least](char c) { return static_cast<std::uint8_t>(c) < least; });
    return key.substr(0, static_cast<std::size_t>(end - key.begin()));
}

std::optional<std::string> lettersOf(TextOrder order, std::string_view wanted) {
    std::string text;
    while (!wanted.empty()) {
        char best = 0;
        std::size_t length = 0;
        for (const char letter : kLetters) {
            const std::string key = sortKey(order, std::string_view(&letter, 1));
            const std::string_view weight = weights(order, key);
            if (weight.size() > length && wanted.starts_with(weight)) {
                best = letter;
                length = weight.size();
            }
        }
        if (length == 0) return std::nullopt;
        text += best;
        wanted.remove_prefix(length);
    }
    return text;
}

// The text with every choice of vowels replaced by Umlauts, until one has the key.
std::optional<std::string> withUmlauts(TextOrder order, const std::string& text, std::string_view key) {
    const auto isVowel = [](char c) { return c == 'a' || c == 'o' || c == 'u'; };
    const auto vowels = std::min<std::size_t>(
        static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isVowel)), kMaxVowels);
    for (std::size_t choice = 0; choice < std::size_t{1} << vowels; ++choice) {
        std::string candidate;
        std::size_t vowel = 0;
        for (const char c : text) {
            const auto umlaut = std::find_if(std::begin(kUmlauts), std::end(kUmlauts),
                                             [c](const auto& entry) { return entry.first == c; });
            const bool replaced = umlaut != std::end(kUmlauts) && (choice >> vowel++ & 1) != 0;
            candidate += replaced ? umlaut->second : std::string(1, c);
        }
        if (sortKey(order, candidate) == key) return candidate;
    }
    return std::nullopt;
}

std::optional<std::string> textOf(TextOrder order, std::string_view key) {
    const std::optional<std::string> letters = lettersOf(order, weights(order, key));
    return letters ? withUmlauts(order, *letters, key) : std::nullopt;
}

std::uint32_t numberOf(std::string_view key) {
    return loadU32Big(reinterpret_cast<const std::uint8_t*>(key.data()) + 1) ^ 0x80000000;
}

// Calls step(key, row) for every entry up to where the index cannot be read.
template <class Step>
void forEachEntry(File& file, const TableDef& table, const Index* index, Step step) {
    if (index == nullptr || !index->searchable) return;
    try {
        IndexCursor cursor(file, table, *index);
        for (cursor.seek({}); cursor.next();) {
            if (cursor.key().size() >= kNumberKeySize) step(std::string_view(cursor.key()), cursor.rowId());
        }
    } catch (const Fehler& e) {
        if (e.nummer() != jetfehler::kDamaged) throw;  // what was found so far is of use
    }
}

}  // namespace

std::map<std::uint32_t, std::string> namesFromIndexes(File& file, const TableDef& objects) {
    std::map<RowId, std::uint32_t> pages;
    forEachEntry(file, objects, objects.findIndex("Id"), [&](std::string_view key, RowId row) {
        const std::uint32_t id = numberOf(key);
        if (id < catalog::kRootId) pages[row] = id;
    });
    std::map<std::uint32_t, std::string> names;
    const std::optional<std::size_t> column = objects.findColumn("Name");
    if (!column) return names;
    const TextOrder order = objects.columns[*column].textOrder;
    forEachEntry(file, objects, objects.findIndex("ParentIdName"), [&](std::string_view key, RowId row) {
        const auto page = pages.find(row);
        if (page == pages.end() || numberOf(key) != catalog::kTablesId || key.size() <= kNumberKeySize)
            return;
        if (auto name = textOf(order, key.substr(kNumberKeySize + 1))) names[page->second] = *std::move(name);
    });
    return names;
}

}  // namespace wendel::jet
