#include "core/Wachdienst.h"

namespace wendel {

void Wachdienst::halteWach(bool wach, const std::string& grund) {
    if (wach == wach_) return;
    wach_ = wach;
    if (wach_) {
        energie_.wachhalten(grund);
    } else {
        energie_.schlafErlauben();
    }
}

bool Wachdienst::wecke(std::optional<Datum> moment) {
    if (moment == weckzeit_) return true;
    weckzeit_ = moment;
    return energie_.weckenUm(moment) || !moment;
}

}  // namespace wendel
