#pragma once
// The sentence that tells the user when the live update of the TV data starts, and the program that makes it.

#include <cstdint>
#include <string>
#include <string_view>

namespace wendel {

// In the programme folder.
inline constexpr const char* kLiveUpdateProgramm = "skarvel.exe";

// modus 2 is the weekly schedule, whose text holds seven "0"/"1" characters, Sunday first, then the time; the
// time is shown trimmed as it was stored. A schedule of fewer than seven characters is taken as it is.
std::string liveUpdateEinstellungenText(bool aktiv, std::int16_t modus, std::string_view zeitplan);

}  // namespace wendel
