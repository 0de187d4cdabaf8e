#include "desktop/Desktopmenues.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "desktop/FormBrannikMenueFenster.h"
#include "desktop/Menuezugang.h"

namespace wendel {
namespace {

int abstand(const QRect& flaeche, const QPoint& ort) {
    const QPoint naechster(std::clamp(ort.x(), flaeche.left(), flaeche.right()),
                           std::clamp(ort.y(), flaeche.top(), flaeche.bottom()));
    return (ort - naechster).manhattanLength();
}

}  // namespace

Desktopmenues::Desktopmenues(const std::string& programmordner) : bilder_(programmordner) {
    Menuezugang::bekanntmachen();
}

// Widgets whose views are gone wait for the event loop, which may have ended before them.
Desktopmenues::~Desktopmenues() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

std::unique_ptr<FormBrannikMenueView> Desktopmenues::neueView(FormBrannikMenue& form) {
    return std::make_unique<FormBrannikMenueFenster>(form, bilder_);
}

Fensterhandle Desktopmenues::aktivesFenster() {
    const QWidget* aktiv = QApplication::activeWindow();
    return aktiv ? aktiv->internalWinId() : 0;
}

Arbeitsbereich Desktopmenues::freieFlaeche(Punkt ort) {
    const QPoint punkt(ort.x, ort.y);
    const QList<QScreen*> schirme = QGuiApplication::screens();
    const auto schirm = std::min_element(schirme.begin(), schirme.end(), [&](QScreen* a, QScreen* b) {
        return abstand(a->geometry(), punkt) < abstand(b->geometry(), punkt);
    });
    if (schirm == schirme.end()) return {};
    const QRect frei = (*schirm)->availableGeometry();
    return {.oben = frei.top(),
            .links = frei.left(),
            .rechts = frei.left() + frei.width(),
            .unten = frei.top() + frei.height()};
}

}  // namespace wendel
