#include "desktop/Statuszeile.h"

#include <QHelpEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include "desktop/Farben.h"

namespace wendel {
namespace {

// In line with what stands above.
constexpr QMargins kRand(12, 2, 12, 4);

class Einzeiler final : public QLabel {
  public:
    explicit Einzeiler(QWidget* eltern) : QLabel(eltern) {
        setObjectName(QStringLiteral("LabelStatus"));
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        setContentsMargins(kRand);
    }
    void setzeHinweis(bool hinweis) { hinweis_ = hinweis; }

  protected:
    bool event(QEvent* ereignis) override {
        if (ereignis->type() != QEvent::ToolTip) return QLabel::event(ereignis);
        const bool abgeschnitten = fontMetrics().horizontalAdvance(text()) > contentsRect().width();
        QToolTip::showText(static_cast<QHelpEvent*>(ereignis)->globalPos(),
                           abgeschnitten ? text() : QString(), this);
        return true;
    }
    void paintEvent(QPaintEvent*) override {
        QPainter maler(this);
        const QColor schrift = palette().color(QPalette::WindowText);
        maler.setPen(hinweis_ ? gedaempft(schrift, palette().color(QPalette::Window)) : schrift);
        maler.drawText(contentsRect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                       fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()));
    }

  private:
    bool hinweis_ = true;
};

}  // namespace

Statuszeile::Statuszeile(QWidget* eltern) : QStatusBar(eltern), label_(new Einzeiler(this)) {
    setObjectName(QStringLiteral("StatusBar"));
    setAccessibleName(QStringLiteral("Statuszeile"));
    setSizeGripEnabled(false);
    addWidget(label_, 1);
}

void Statuszeile::melde(const QString& text) {
    static_cast<Einzeiler*>(label_)->setzeHinweis(false);
    setze(text);
}

void Statuszeile::weiseHin(const QString& text) {
    static_cast<Einzeiler*>(label_)->setzeHinweis(true);
    setze(text);
}

void Statuszeile::setze(const QString& text) {
    label_->setText(text);
    label_->setAccessibleName(text);
    label_->update();
}

}  // namespace wendel
