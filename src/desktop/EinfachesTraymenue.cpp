#include "desktop/EinfachesTraymenue.h"

#include <utility>

#include "desktop/QtText.h"

namespace wendel {
namespace {

// Panels take "_" for the mark of an access key, and the toolkit turns the first "&" into one: written twice,
// both are characters.
QString beschriftung(const std::string& text) {
    QString zeile = qtText(text);
    zeile.replace(QLatin1Char('_'), QStringLiteral("__"));
    const auto stelle = zeile.indexOf(QLatin1Char('&'));
    if (stelle >= 0) zeile.insert(stelle, QLatin1Char('&'));
    return zeile;
}

}  // namespace

bool EinfachesTraymenue::gewuenscht() {
    return qEnvironmentVariable("WENDEL_MENUE") == QLatin1String("einfach") ||
           qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains(QLatin1String("GNOME"));
}

// Filled from the event loop: a panel waits for its call to come back, and the entries may come from a
// database that is busy.
EinfachesTraymenue::EinfachesTraymenue(Quelle quelle, Befehl befehl)
    : quelle_(std::move(quelle)), befehl_(std::move(befehl)) {
    menue_.setObjectName(QStringLiteral("FormBrannikMenue"));
    gleich_.setSingleShot(true);
    connect(&gleich_, &QTimer::timeout, this, [this] { fuelle(true); });
    connect(&menue_, &QMenu::aboutToShow, this, [this] { gleich_.start(0); });
    fuelle(false);
}

void EinfachesTraymenue::fuelle(bool frisch) {
    std::vector<EinfacherEintrag> eintraege = quelle_(frisch);
    if (eintraege == gezeigt_) return;
    gezeigt_ = std::move(eintraege);
    qDeleteAll(menue_.findChildren<QMenu*>(Qt::FindDirectChildrenOnly));
    menue_.clear();
    haengeAn(menue_, gezeigt_);
}

void EinfachesTraymenue::haengeAn(QMenu& menue, const std::vector<EinfacherEintrag>& eintraege) {
    for (const EinfacherEintrag& eintrag : eintraege) {
        if (eintrag.linieDarueber) menue.addSeparator();
        if (!eintrag.kinder.empty()) {
            haengeAn(*menue.addMenu(beschriftung(eintrag.text)), eintrag.kinder);
            continue;
        }
        QAction* aktion = menue.addAction(beschriftung(eintrag.text));
        aktion->setEnabled(eintrag.freigegeben);
        // Queued: the panel waits for its call here as well.
        connect(
            aktion, &QAction::triggered, this, [this, befehl = eintrag.befehl] { befehl_(befehl); },
            Qt::QueuedConnection);
    }
}

}  // namespace wendel
