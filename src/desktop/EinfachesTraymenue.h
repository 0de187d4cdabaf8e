#pragma once
// The tray menu for panels that show no menu but one exported over the bus: a toolkit menu that the tray icon
// exports, filled with plain entries. What the entries are and do is the main program's.

#include <QMenu>
#include <QTimer>
#include <functional>
#include <vector>

#include "traymenu/EinfachesMenue.h"

namespace wendel {

class EinfachesTraymenue final : public QObject {
  public:
    // The entries as they are now; with frisch asked anew where they may have changed.
    using Quelle = std::function<std::vector<EinfacherEintrag>(bool frisch)>;
    using Befehl = std::function<void(const Menuebefehl&)>;

    // True on desktops whose panel shows exported menus only, and where the user wants that.
    static bool gewuenscht();

    EinfachesTraymenue(Quelle quelle, Befehl befehl);

    // Asks again by itself whenever a panel is about to show it. Owned by this object.
    QMenu& menue() { return menue_; }
    // The next appointment has changed.
    void erneuern() { fuelle(false); }

  private:
    void fuelle(bool frisch);
    void haengeAn(QMenu& menue, const std::vector<EinfacherEintrag>& eintraege);

    Quelle quelle_;
    Befehl befehl_;
    QMenu menue_;
    QTimer gleich_;
    std::vector<EinfacherEintrag> gezeigt_;
};

}  // namespace wendel
