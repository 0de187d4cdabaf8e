#pragma once
// Where a window that comes up by itself belongs: on the screen that the user is looking at.

#include <QCursor>
#include <QGuiApplication>
#include <QRect>
#include <QScreen>
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

}  // namespace wendel
