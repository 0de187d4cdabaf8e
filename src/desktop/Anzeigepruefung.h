#pragma once
// Whether a display can be connected. Asked before the toolkit starts, which would abort the process.

namespace wendel {

// Looks where the toolkit will look: at X for QT_QPA_PLATFORM=xcb, at Wayland for "wayland", at both when it
// is unset. A platform that needs no display (offscreen, minimal, ...) is always there.
bool anzeigeErreichbar();

// By DISPLAY and WAYLAND_DISPLAY alone.
bool xErreichbar();
bool waylandErreichbar();

inline constexpr const char* kKeinBildschirm =
    "Kein Bildschirm gefunden: Es kann weder eine X- noch eine Wayland-Anzeige erreicht werden. "
    "Bitte Lomrick in einer Desktop-Sitzung starten.";

}  // namespace wendel
