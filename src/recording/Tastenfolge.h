#pragma once
// Key strings of scripts: German and English key names in brackets, then the platform's notation ("%" Alt,
// "+" Shift, "^" Ctrl for the next key or group in parentheses, "~" Enter, "{NAME}", "{NAME 5}", "{+}"). The
// whole string is parsed before the first key is sent.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Tastenereignis.h"

namespace wendel {

// "[STRG][ENTF]" to "^{DELETE}": the names of the table, in its order, without regard to case.
std::string tastennamenErsetzen(std::string_view text);

// The events of a string in the platform's notation; nothing when it has unknown names, unbalanced braces or
// parentheses, or would send more than kHoechstzahlTasten keys.
inline constexpr int kHoechstzahlTasten = 10000;
std::optional<std::vector<Tastenereignis>> tastenereignisse(std::string_view notation);

}  // namespace wendel
