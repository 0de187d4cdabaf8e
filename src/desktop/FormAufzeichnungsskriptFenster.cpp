#include "desktop/FormAufzeichnungsskriptFenster.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include "desktop/Bildschirm.h"
#include "desktop/Farben.h"
#include "desktop/QtText.h"
#include "desktop/Schrift.h"
#include "desktop/Symbole.h"

namespace wendel {
namespace {

// In heights of the font.
constexpr int kBreite = 26;
constexpr int kMenuebreite = 40;
constexpr int kAbstand = 12;  // from the edges of the free area; device-independent pixels
constexpr int kStreifen = 4;

// As the entry of a menu: what would be taken for an access key or a shortcut is text.
QString eintragstext(const QString& text, const QFontMetrics& schrift) {
    QString zeile = text;
    zeile.replace(u'\t', u' ').replace(u'\n', u' ');
    return schrift.elidedText(zeile, Qt::ElideMiddle, kMenuebreite * schrift.height())
        .replace(u'&', QStringLiteral("&&"));
}

}  // namespace

// LabelAktuelleAktion: a text that can be clicked. Where it is too long its middle goes, since how a step
// went stands at its end.
class Aktionszeile final : public QPushButton {
  public:
    explicit Aktionszeile(QWidget* eltern) : QPushButton(eltern) {
        setCursor(Qt::PointingHandCursor);
        setFocusPolicy(Qt::NoFocus);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override { return {kBreite * fontMetrics().height(), 2 * fontMetrics().height()}; }

    void setzeText(const QString& text) {
        setText(text);
        setAccessibleName(text);
        // The next step may keep the event loop waiting.
        if (isVisible()) repaint();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter maler(this);
        maler.setPen(palette().color(QPalette::WindowText));
        const QString zeile = QString(text()).replace(u'\n', u' ');
        maler.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter,
                       fontMetrics().elidedText(zeile, Qt::ElideMiddle, width()));
    }
};

FormAufzeichnungsskriptFenster::FormAufzeichnungsskriptFenster()
    : QWidget(nullptr,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus) {
    setObjectName(QStringLiteral("FormAufzeichnungsskript"));
    setWindowTitle(qtText(FormAufzeichnungsskript::kFenstertitel));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_ShowWithoutActivating);
}

void FormAufzeichnungsskriptFenster::baueAuf() {
    if (labelAktuelleAktion_ != nullptr) return;
    setWindowIcon(Symbole::symbol("wendel"));
    setFont(schrift(9.5));

    const int hoehe = fontMetrics().height();
    auto* aufbau = new QHBoxLayout(this);
    aufbau->setContentsMargins(kStreifen + hoehe / 2, hoehe / 4, hoehe / 2, hoehe / 4);
    aufbau->setSpacing(hoehe / 2);
    auto* pictureInfoSymbol = new QLabel(this);
    pictureInfoSymbol->setObjectName(QStringLiteral("PictureInfoSymbol"));
    pictureInfoSymbol->setAccessibleName(QStringLiteral("Aufzeichnung"));
    const int bild = hoehe * 3 / 2;
    pictureInfoSymbol->setPixmap(
        Symbole::symbol("terminaufz").pixmap(QSize(bild, bild), devicePixelRatioF()));
    aufbau->addWidget(pictureInfoSymbol);

    labelAktuelleAktion_ = new Aktionszeile(this);
    labelAktuelleAktion_->setObjectName(QStringLiteral("LabelAktuelleAktion"));
    labelAktuelleAktion_->setToolTip(qtText(FormAufzeichnungsskript::kTooltip));
    connect(labelAktuelleAktion_, &QPushButton::clicked, this,
            [this] { form_->LabelAktuelleAktion_Click(); });
    aufbau->addWidget(labelAktuelleAktion_, 1);

    mnuPopupVerlauf_.setObjectName(QStringLiteral("mnuPopupVerlauf"));
    mnuPopupVerlauf_.setAccessibleName(QStringLiteral("Verlauf"));
    mnuPopupVerlauf_.setToolTipsVisible(true);
}

void FormAufzeichnungsskriptFenster::zeigen() {
    adjustSize();
    const QRect frei = freieFlaeche();
    move(frei.right() + 1 - kAbstand - width(), frei.bottom() + 1 - kAbstand - height());
    show();
    raise();
}

void FormAufzeichnungsskriptFenster::verbergen() {
    mnuPopupVerlauf_.close();
    hide();
}

void FormAufzeichnungsskriptFenster::setzeAktuelleAktion(const std::string& text) {
    baueAuf();
    labelAktuelleAktion_->setzeText(qtZeilen(text));
}

void FormAufzeichnungsskriptFenster::zeigePopupVerlauf(const std::vector<std::string>& verlauf) {
    mnuPopupVerlauf_.clear();
    for (std::size_t i = 0; i < verlauf.size(); ++i) {
        const QString text = qtZeilen(verlauf[i]);
        QAction* mnuVerlauf = mnuPopupVerlauf_.addAction(eintragstext(text, mnuPopupVerlauf_.fontMetrics()));
        mnuVerlauf->setObjectName(QStringLiteral("mnuVerlauf%1").arg(i + 1));
        mnuVerlauf->setToolTip(text);
    }
    mnuPopupVerlauf_.addSeparator()->setObjectName(QStringLiteral("trenn1"));
    QAction* mnuSchliessen = mnuPopupVerlauf_.addAction(QStringLiteral("&Schließen"), this,
                                                        [this] { form_->mnuSchließen_Click(); });
    mnuSchliessen->setObjectName(QStringLiteral("mnuSchließen"));
    mnuSchliessen->setToolTip(QString());
    const QSize groesse = mnuPopupVerlauf_.sizeHint();
    mnuPopupVerlauf_.popup(QPoint(frameGeometry().right() + 1 - groesse.width(), y() - groesse.height()));
}

void FormAufzeichnungsskriptFenster::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    form_->mnuSchließen_Click();
}

void FormAufzeichnungsskriptFenster::paintEvent(QPaintEvent*) {
    QPainter maler(this);
    maler.fillRect(rect(), palette().color(QPalette::Base));
    maler.setPen(palette().color(QPalette::Mid));
    maler.drawRect(rect().adjusted(0, 0, -1, -1));
    maler.fillRect(QRect(0, 0, kStreifen, height()), QColor(kAkzent));
}

}  // namespace wendel
