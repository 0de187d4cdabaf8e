#pragma once
// Types into the window that has the input of an X display, as a keyboard would. Which window that is, others
// see to.

#include <span>

#include "platform/Tastenereignis.h"

namespace wendel {

// Sends the events to the display of the environment and returns when the server has taken them all; keys
// that are still down then are released. What the layout lacks is put on unused keys meanwhile, which are
// free again afterwards. Keys that the user holds down are let go first and locks but Num Lock are off while
// it types, so that what arrives is what was asked for; the locks return.
//
// The calling thread waits: 0.3 s where unused keys are needed, 3 ms between two strokes of the same key,
// little more than 5 s in all. False when there is no display, it takes no keys from programs, a character
// can't be typed on it, or the time is over.
[[nodiscard]] bool tippe(std::span<const Tastenereignis> ereignisse);

}  // namespace wendel
