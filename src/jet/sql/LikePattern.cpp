#include "jet/sql/LikePattern.h"

#include <algorithm>
#include <string>

#include "jet/sql/Errors.h"
#include "platform/Text.h"

namespace wendel::jet::sql {
namespace {

// Code points in lower case; a byte that belongs to no character stands for itself.
std::vector<char32_t> folded(std::string_view text) {
    const std::string lower = LCase(text);
    std::vector<char32_t> result;
    result.reserve(lower.size());
    for (std::size_t i = 0; i < lower.size();) {
        const auto lead = static_cast<unsigned char>(lower[i]);
        const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
        if (length == 1 || i + length > lower.size()) {
            result.push_back(lead);
            ++i;
            continue;
        }
        char32_t c = lead & (0xFFu >> (length + 1));
        for (std::size_t k = 1; k < length; ++k) {
            c = c << 6 | (static_cast<unsigned char>(lower[i + k]) & 0x3Fu);
        }
        result.push_back(c);
        i += length;
    }
    return result;
}

}  // namespace

LikePattern::LikePattern(std::string_view pattern) {
    const std::vector<char32_t> text = folded(pattern);
    for (std::size_t at = 0; at < text.size(); ++at) {
        switch (text[at]) {
            case U'*': elements_.push_back({Kind::Run, 0, false, {}}); break;
            case U'?': elements_.push_back({Kind::Any, 0, false, {}}); break;
            case U'#': elements_.push_back({Kind::Digit, 0, false, {}}); break;
            case U'[': {
                Element set = parseSet(text, at);
                if (!set.ranges.empty() || set.negated) {
                    elements_.push_back(std::move(set));  // "[]" stands for nothing
                }
                break;
            }
            default: elements_.push_back({Kind::Literal, text[at], false, {}});
        }
    }
}

// at is at the "[" and left at the "]".
LikePattern::Element LikePattern::parseSet(const std::vector<char32_t>& pattern, std::size_t& at) {
    Element set{Kind::Set, 0, false, {}};
    ++at;
    const auto end = std::find(pattern.begin() + static_cast<std::ptrdiff_t>(at), pattern.end(), U']');
    if (end == pattern.end()) {
        throw sqlError(kPattern);
    }
    const auto last = static_cast<std::size_t>(end - pattern.begin());
    if (at + 1 < last && pattern[at] == U'!') {  // alone it is a character
        set.negated = true;
        ++at;
    }
    while (at < last) {
        const char32_t first = pattern[at];
        if (at + 2 < last && pattern[at + 1] == U'-') {
            if (pattern[at + 2] < first) {
                throw sqlError(kPattern);
            }
            set.ranges.push_back({first, pattern[at + 2]});
            at += 3;
        } else {
            set.ranges.push_back({first, first});
            ++at;
        }
    }
    return set;
}

bool LikePattern::matchesOne(const Element& element, char32_t c) {
    switch (element.kind) {
        case Kind::Literal: return c == element.literal;
        case Kind::Digit: return c >= U'0' && c <= U'9';
        case Kind::Set:
            return element.negated !=
                   std::any_of(element.ranges.begin(), element.ranges.end(),
                               [&](const Range& r) { return c >= r.first && c <= r.last; });
        default: return true;
    }
}

// After a mismatch only the last run can take more: earlier runs need never be tried again, so that the work
// is bounded by pattern times text.
bool LikePattern::matches(std::string_view utf8) const {
    const std::vector<char32_t> text = folded(utf8);
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::size_t element = 0, at = 0, run = kNone, runAt = 0;
    while (at < text.size()) {
        if (element < elements_.size() && elements_[element].kind == Kind::Run) {
            run = element++;
            runAt = at;
        } else if (element < elements_.size() && matchesOne(elements_[element], text[at])) {
            ++element;
            ++at;
        } else if (run != kNone) {
            element = run + 1;
            at = ++runAt;
        } else {
            return false;
        }
    }
    return std::all_of(elements_.begin() + static_cast<std::ptrdiff_t>(element), elements_.end(),
                       [](const Element& e) { return e.kind == Kind::Run; });
}

}  // namespace wendel::jet::sql
