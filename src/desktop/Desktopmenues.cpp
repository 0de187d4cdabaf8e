#include "desktop/Desktopmenues.h"

#include <QApplication>
#include <QWidget>

#include "desktop/Desktopfenster.h"
#include "desktop/FormBrannikMenueFenster.h"
#include "desktop/Menuezugang.h"

namespace wendel {

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

Arbeitsbereich Desktopmenues::freieFlaeche(Punkt ort) { return Desktopfenster::freieFlaeche(ort); }

}  // namespace wendel
