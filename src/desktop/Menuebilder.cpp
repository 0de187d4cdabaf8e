#include "desktop/Menuebilder.h"

#include <QImage>
#include <QtMath>

#include "desktop/LinuxDateisystem.h"
#include "desktop/Programmordner.h"
#include "desktop/QtText.h"
#include "desktop/Symbole.h"
#include "traymenu/Menuemasse.h"

namespace wendel {
namespace {

constexpr const char* kTippdatei = "wendelttp.bmp";
constexpr int kMittelhell = 140;

// The writing stands on the left half.
bool istHell(const QImage& bild) {
    const QImage probe = bild.copy(0, 0, bild.width() / 2, bild.height())
                             .scaled(4, 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int summe = 0;
    for (int i = 0; i < 16; ++i)
        summe += qGray(probe.pixel(i % 4, i / 4));
    return summe > 16 * kMittelhell;
}

}  // namespace

const QIcon& Menuebilder::symbol(const std::string& name) {
    const auto [stelle, neu] = symbole_.try_emplace(name);
    if (neu) stelle->second = Symbole::symbol(name);
    return stelle->second;
}

const Tippbild& Menuebilder::tippbild(qreal geraetepixel) {
    if (qFuzzyCompare(geraetepixel, geraetepixel_)) return tippbild_;
    geraetepixel_ = geraetepixel;
    const std::string datei = vorhandeneDatei(mitgelieferteDatei(programmordner_, kTippdatei));
    tippbild_ = {};
    if (datei.empty()) return tippbild_;
    const QImage bild(qtText(datei));
    if (bild.isNull()) return tippbild_;
    const int hoehe = qRound(Menuemasse::kTippHoehe * geraetepixel);
    tippbild_.bild = QPixmap::fromImage(bild.scaledToHeight(hoehe, Qt::SmoothTransformation));
    tippbild_.bild.setDevicePixelRatio(geraetepixel);
    tippbild_.hell = istHell(bild);
    return tippbild_;
}

}  // namespace wendel
