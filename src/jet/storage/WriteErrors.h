#pragma once
// The engine's descriptions of what can be wrong with a value or a row that is to be written. Damaged files
// and missing ones are File's.

#include <string_view>

namespace wendel::jet {

// Throws the Fehler with one of the numbers of jetfehler that concern writing; detail takes the place that
// the description leaves for a name.
[[noreturn]] void throwWriteError(int number, std::string_view detail = {});

}  // namespace wendel::jet
