#pragma once
// The columns of a menu window: icon, time, channel, text, arrow. They follow from the entries and the width
// of their texts; a window without broadcasts has no columns but text and arrow.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "traymenu/cMenuePunkt.h"
#include "tvdb/Senderliste.h"

namespace wendel {

// Left edges and widths in logical pixels. Captions of other entries than broadcasts begin at zeitX.
struct Menuespalten {
    int symbolX = 0;
    int zeitX = 0, zeitbreite = 0;
    int senderX = 0, senderbreite = 0;
    int textX = 0;
    int rechts = 0;  // where texts end
    int breite = 0;  // of the whole, with the arrow and the spaces at both sides

    friend bool operator==(const Menuespalten&, const Menuespalten&) = default;
};

using Textbreite = std::function<int(const std::string&)>;

// As wide as the widest row, but neither below mindestens nor above hoechstens.
Menuespalten menuespalten(const std::vector<std::unique_ptr<cMenuePunkt>>& punkte,
                          const Sendersammlung& sender, const Textbreite& textbreite, int mindestens,
                          int hoechstens);

}  // namespace wendel
