#include "desktop/Symbole.h"

#include <QFile>
#include <QImageReader>

#include "desktop/QtText.h"

namespace wendel::Symbole {
namespace {

// Every height that the build may have drawn; a name has some of them.
constexpr int kHoehen[] = {16, 20, 22, 24, 30, 32, 36, 40, 48, 60, 64, 72, 80, 96, 120, 128, 160};

// Qt would load every reader of pictures that the system has, to ask each whether the file is its own.
QPixmap gelesen(const QString& datei) {
    QImageReader leser(datei, "png");
    leser.setAutoDetectImageFormat(false);
    return QPixmap::fromImageReader(&leser);
}

}  // namespace

QIcon symbol(std::string_view name) {
    QIcon icon;
    for (const int hoehe : kHoehen) {
        const QString datei = QStringLiteral(":/symbole/%1-%2.png").arg(qtText(name)).arg(hoehe);
        if (QFile::exists(datei)) icon.addPixmap(gelesen(datei));
    }
    return icon;
}

QPixmap bild(std::string_view name, qreal geraetepixel) {
    const int stufe = geraetepixel > 1.0 ? 2 : 1;
    QPixmap pixmap = gelesen(QStringLiteral(":/symbole/%1@%2x.png").arg(qtText(name)).arg(stufe));
    pixmap.setDevicePixelRatio(stufe);
    return pixmap;
}

}  // namespace wendel::Symbole
