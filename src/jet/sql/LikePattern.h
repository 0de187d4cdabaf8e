#pragma once
// Patterns of the dialect's Like: * any run, ? one character, # one digit, [a-z] [!x] one of a set. Letters
// match without regard to case; everything else is itself.

#include <string_view>
#include <vector>

namespace wendel::jet::sql {

class LikePattern {
  public:
    // Throws Fehler 93 for an open "[" and for a range that runs backwards.
    explicit LikePattern(std::string_view pattern);

    bool matches(std::string_view text) const;

  private:
    enum class Kind { Run, Any, Digit, Literal, Set };
    struct Range {
        char32_t first, last;
    };
    struct Element {
        Kind kind;
        char32_t literal = 0;
        bool negated = false;
        std::vector<Range> ranges;
    };

    static bool matchesOne(const Element& element, char32_t c);
    static Element parseSet(const std::vector<char32_t>& pattern, std::size_t& at);

    std::vector<Element> elements_;
};

}  // namespace wendel::jet::sql
