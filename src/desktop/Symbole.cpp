#include "desktop/Symbole.h"

#include <QFile>

#include "desktop/QtText.h"

namespace wendel::Symbole {
namespace {

// Every size that the build may have drawn; a name has some of them.
constexpr int kGroessen[] = {16, 22, 24, 32, 48, 64, 128};

}  // namespace

QIcon symbol(std::string_view name) {
    QIcon icon;
    for (const int groesse : kGroessen) {
        const QString datei = QStringLiteral(":/symbole/%1-%2.png").arg(qtText(name)).arg(groesse);
        if (QFile::exists(datei)) icon.addFile(datei, QSize(groesse, groesse));
    }
    return icon;
}

QPixmap bild(std::string_view name, qreal geraetepixel) {
    const int stufe = geraetepixel > 1.0 ? 2 : 1;
    QPixmap pixmap(QStringLiteral(":/symbole/%1@%2x.png").arg(qtText(name)).arg(stufe));
    pixmap.setDevicePixelRatio(stufe);
    return pixmap;
}

}  // namespace wendel::Symbole
