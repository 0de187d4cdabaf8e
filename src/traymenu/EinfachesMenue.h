#pragma once
// The tray menu for hosts that show none but plain menus of their own: the same entries as texts, as a tree
// of values. How it gets to such a host is left to the desktop; choosing an entry is
// Menuebefehle::ausfuehren.

#include <string>
#include <string_view>
#include <vector>

#include "traymenu/FormBrannikMenue.h"
#include "traymenu/Menuebefehle.h"

namespace wendel {

struct EinfacherEintrag {
    std::string text;  // plain: nothing in it marks an access key
    bool freigegeben = true;
    bool linieDarueber = false;
    Menuebefehl befehl;  // of an enabled entry without children
    std::vector<EinfacherEintrag> kinder;
    friend bool operator==(const EinfacherEintrag&, const EinfacherEintrag&) = default;
};

// tooltip is that of the icon; what it says of the next appointment becomes the first row, which can't be
// chosen. No such row when it says nothing.
std::vector<EinfacherEintrag> einfachesMenue(const FormBrannikMenue& obermenue, const Sendersammlung& sender,
                                             std::string_view tooltip);

}  // namespace wendel
