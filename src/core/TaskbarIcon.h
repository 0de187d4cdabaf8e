#pragma once
// The record by which the notification-area icon is described to the system, in its 88-byte form. The tooltip
// must have been cut before: this only lays out bytes.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace wendel {

inline constexpr std::size_t kIconDatensatzGroesse = 88;
inline constexpr std::uint32_t kIconKennung = 1;
inline constexpr std::uint32_t kIconNachricht = 1025;  // first user message + 1
inline constexpr std::uint32_t kIconProgrammbild = 1;  // the program's own picture
inline constexpr std::size_t kIconTippLaenge = 63;     // characters, without the terminator

// What the icon sends in the second parameter of its message.
inline constexpr std::uint32_t kMausLinksDoppelklick = 515;
inline constexpr std::uint32_t kMausRechtsLos = 517;

// Places in the record, which is little endian.
inline constexpr std::size_t kIconStelleKennung = 8, kIconStelleNachricht = 16, kIconStelleTipp = 24;

using IconDatensatz = std::array<std::uint8_t, kIconDatensatzGroesse>;

// Size, window, identifier, flags (7), callback message, picture, then 64 bytes of tooltip in
// Windows-1252, filled with zeros. A tooltip (UTF-8) beyond 63 characters is cut.
IconDatensatz iconDatensatz(std::uint32_t fenster, std::uint32_t bild, std::string_view tipp);

}  // namespace wendel
