#pragma once
// Colours that a palette does not have.

#include <QColor>

namespace wendel {

// The strip at the edge of what comes up by itself: it is from this program.
inline constexpr QRgb kAkzent = 0xfff0901c;

// A text that steps back before the others, and is still read without effort on its ground, be it light or
// dark. Palettes' own colours for this differ too much between desktops.
inline QColor gedaempft(const QColor& text, const QColor& grund) {
    const auto anteil = [](int a, int b) { return (a * 64 + b * 36) / 100; };
    return {anteil(text.red(), grund.red()), anteil(text.green(), grund.green()),
            anteil(text.blue(), grund.blue())};
}

}  // namespace wendel
