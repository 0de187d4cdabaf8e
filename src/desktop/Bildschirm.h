#pragma once
// Where a window belongs: one that comes up by itself on the screen that the user is looking at, one that is
// about the list beside that.

#include <QCursor>
#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace wendel {

inline QScreen* bildschirmDesZeigers() {
    QScreen* schirm = QGuiApplication::screenAt(QCursor::pos());
    return schirm != nullptr ? schirm : QGuiApplication::primaryScreen();
}

// Without its panels.
inline QRect freieFlaeche() { return bildschirmDesZeigers()->availableGeometry(); }

// The upper left corner of a window in the middle of the area; one that is too large begins at the area's.
inline QPoint inDerMitte(QSize groesse, const QRect& flaeche) {
    QRect fenster(QPoint(0, 0), groesse);
    fenster.moveCenter(flaeche.center());
    return {std::max(flaeche.left(), fenster.left()), std::max(flaeche.top(), fenster.top())};
}

inline bool istZuSehen(const QWidget& fenster) { return fenster.isVisible() && !fenster.isMinimized(); }

// The area for what is about the list: of its screen while it can be seen.
inline QRect flaecheBei(const QWidget& liste) {
    return istZuSehen(liste) ? liste.screen()->availableGeometry() : freieFlaeche();
}

// Moves the window over the middle of the list while that can be seen, else of the area, and inside of it.
inline void stelleZu(QWidget& fenster, const QWidget& liste) {
    const QRect frei = flaecheBei(liste);
    QRect platz(QPoint(0, 0), fenster.size());
    platz.moveCenter(istZuSehen(liste) ? liste.frameGeometry().center() : frei.center());
    const auto bis = [](int anfang, int ende, int laenge) { return std::max(anfang, ende + 1 - laenge); };
    fenster.move(std::clamp(platz.left(), frei.left(), bis(frei.left(), frei.right(), platz.width())),
                 std::clamp(platz.top(), frei.top(), bis(frei.top(), frei.bottom(), platz.height())));
}

}  // namespace wendel
