#include "desktop/FormWendelFenster.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QProxyStyle>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSettings>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "core/FormWendel.h"
#include "desktop/QtText.h"
#include "desktop/Symbole.h"
#include "desktop/X11.h"

namespace wendel {
namespace {

enum Spalte { kZeit, kText, kRest, kSpalten };

// Device-independent pixels.
constexpr int kZeilenhoehe = 30;
constexpr int kLuft = 9;  // between a text and the edge of its cell
constexpr int kHoehe = 460;

const QString kLage = QStringLiteral("FormWendel/Lage");

// A row that fits into the window as it opens for the first time.
const QString kMusterzeile = QStringLiteral(
    "24.12.12 20:15 20:10 Das Übermorgen-Magazin (KABEL) (Aufzeichnung 19:35 bis 20:20) Restzeit");
constexpr int kNebenDenTexten = 130;  // icon, margins, scroll bar

// The desktop's style, but with air beside the texts of header and rows: most styles set them at the very
// edge.
class Listenstil final : public QProxyStyle {
  public:
    int pixelMetric(PixelMetric mass, const QStyleOption* option, const QWidget* widget) const override {
        const int wert = QProxyStyle::pixelMetric(mass, option, widget);
        return mass == PM_FocusFrameHMargin ? std::max(wert, kLuft - 1) : wert;
    }
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* maler,
                     const QWidget* widget) const override {
        const auto* kopf = qstyleoption_cast<const QStyleOptionHeader*>(option);
        if (element != CE_HeaderLabel || kopf == nullptr) {
            QProxyStyle::drawControl(element, option, maler, widget);
            return;
        }
        QStyleOptionHeader eingerueckt = *kopf;
        eingerueckt.rect.adjust(kLuft - 2, 0, 2 - kLuft, 0);  // 2 is what styles leave by themselves
        QProxyStyle::drawControl(element, &eingerueckt, maler, widget);
    }
    QSize sizeFromContents(ContentsType art, const QStyleOption* option, const QSize& inhalt,
                           const QWidget* widget) const override {
        const QSize groesse = QProxyStyle::sizeFromContents(art, option, inhalt, widget);
        return art == CT_HeaderSection ? groesse + QSize(2 * (kLuft - 2), 0) : groesse;
    }
};

// A list without rows says so instead of looking broken.
class TermineListView final : public QTreeWidget {
  public:
    using QTreeWidget::QTreeWidget;

  protected:
    void paintEvent(QPaintEvent* ereignis) override {
        QTreeWidget::paintEvent(ereignis);
        if (topLevelItemCount() > 0) return;
        QPainter maler(viewport());
        maler.setPen(palette().color(QPalette::PlaceholderText));
        maler.drawText(viewport()->rect(), Qt::AlignCenter, QStringLiteral("Keine Termine vorgemerkt"));
    }
};

// Rows with air between them; a broadcast's text of several lines stays one row. What does not fit is told by
// a tooltip.
class Zeilenmaler final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize groesse = QStyledItemDelegate::sizeHint(option, index);
        return {groesse.width(), std::max(groesse.height() + 8, kZeilenhoehe)};
    }
    bool helpEvent(QHelpEvent* ereignis, QAbstractItemView* liste, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        if (ereignis->type() != QEvent::ToolTip)
            return QStyledItemDelegate::helpEvent(ereignis, liste, option, index);
        const bool abgeschnitten = sizeHint(option, index).width() > liste->visualRect(index).width();
        QToolTip::showText(ereignis->globalPos(), abgeschnitten ? hinweistext(index) : QString(), liste);
        return true;
    }

  private:
    // As markup, since only that is wrapped; nothing in the text itself is.
    static QString hinweistext(const QModelIndex& index) {
        QString text = index.data(Qt::ToolTipRole).toString().toHtmlEscaped();
        return QStringLiteral("<p>%1</p>").arg(text.replace(u'\n', QStringLiteral("<br>")));
    }
};

QString einzeilig(const std::string& text) {
    QString zeile = qtZeilen(text);
    return zeile.replace(u'\n', u' ');
}

}  // namespace

FormWendelFenster::FormWendelFenster(QString merkdatei) : merkdatei_(std::move(merkdatei)) {
    setObjectName(QStringLiteral("FormWendel"));
    setWindowTitle(QStringLiteral("Lomrick"));
    setAccessibleName(windowTitle());
    setWindowIcon(Symbole::symbol("wendel"));
    QFont font(QStringList{QStringLiteral("Verdana"), QStringLiteral("DejaVu Sans")});
    font.setPointSizeF(9.5);
    setFont(font);

    baueListe();
    baueMenue();
    auto* aufbau = new QVBoxLayout(this);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->setSpacing(0);
    aufbau->addWidget(listViewTermineListe_, 1);
    aufbau->addWidget(baueFussleiste());
    stelleHin();
}

void FormWendelFenster::stelleHin() {
    const QSize frei = screen()->availableGeometry().size();
    const int breite = fontMetrics().horizontalAdvance(kMusterzeile) + kNebenDenTexten;
    resize(QSize(breite, kHoehe).boundedTo(frei * 0.9));
    lage_ = QSettings(merkdatei_, QSettings::IniFormat).value(kLage).toByteArray();
}

void FormWendelFenster::baueListe() {
    listViewTermineListe_ = new TermineListView(this);
    auto& liste = *listViewTermineListe_;
    liste.setObjectName(QStringLiteral("ListViewTermineListe"));
    liste.setAccessibleName(QStringLiteral("Termine"));
    liste.setColumnCount(kSpalten);
    liste.setHeaderLabels({QStringLiteral("Zeit"), QStringLiteral("Termin"), QStringLiteral("Restzeit")});
    liste.setItemDelegate(new Zeilenmaler(&liste));
    auto* stil = new Listenstil;
    stil->setParent(&liste);
    liste.setStyle(stil);
    liste.header()->setStyle(stil);
    liste.setRootIsDecorated(false);
    liste.setUniformRowHeights(true);
    liste.setAlternatingRowColors(true);
    liste.setAllColumnsShowFocus(true);
    liste.setFrameShape(QFrame::NoFrame);
    liste.setIconSize(QSize(20, 20));
    liste.setTextElideMode(Qt::ElideRight);
    liste.header()->setMinimumHeight(kZeilenhoehe);
    liste.header()->setMinimumSectionSize(90);
    liste.header()->setSectionsMovable(false);
    liste.header()->setStretchLastSection(false);
    liste.header()->setSectionResizeMode(kZeit, QHeaderView::ResizeToContents);
    liste.header()->setSectionResizeMode(kText, QHeaderView::Stretch);
    liste.header()->setSectionResizeMode(kRest, QHeaderView::ResizeToContents);
    liste.headerItem()->setTextAlignment(kRest, Qt::AlignRight | Qt::AlignVCenter);
    liste.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&liste, &QTreeWidget::currentItemChanged, this, [this] { meldeAuswahl(); });
    connect(&liste, &QTreeWidget::itemSelectionChanged, this, [this] { meldeAuswahl(); });
    connect(&liste, &QTreeWidget::customContextMenuRequested, this, [this](const QPoint& stelle) {
        popupTerminliste_.popup(listViewTermineListe_->viewport()->mapToGlobal(stelle));
    });
}

void FormWendelFenster::baueMenue() {
    popupTerminliste_.setObjectName(QStringLiteral("PopupTerminliste"));
    popupTerminliste_.setAccessibleName(QStringLiteral("Terminliste"));
    QAction* beenden = popupTerminliste_.addAction(QStringLiteral("&Beenden .."));
    beenden->setObjectName(QStringLiteral("mnuBeenden"));
    connect(beenden, &QAction::triggered, this, [this] { form_->mnuBeenden_Click(); });
}

QWidget* FormWendelFenster::baueFussleiste() {
    auto* flaeche = new QWidget(this);
    auto* aufbau = new QHBoxLayout(flaeche);
    aufbau->setContentsMargins(14, 10, 14, 10);
    aufbau->setSpacing(14);

    pictureInfoBanner_ = new QLabel(flaeche);
    pictureInfoBanner_->setObjectName(QStringLiteral("PictureInfoBanner"));
    pictureInfoBanner_->setAccessibleName(QStringLiteral("Lomrick"));
    pictureInfoBanner_->setPixmap(Symbole::bild("infobanner", devicePixelRatioF()));
    aufbau->addWidget(pictureInfoBanner_);

    labelAnzLiveUpdateEinstellungen_ = new QLabel(flaeche);
    labelAnzLiveUpdateEinstellungen_->setObjectName(QStringLiteral("LabelAnzLiveUpdateEinstellungen"));
    labelAnzLiveUpdateEinstellungen_->setTextFormat(Qt::PlainText);
    labelAnzLiveUpdateEinstellungen_->setWordWrap(true);
    aufbau->addWidget(labelAnzLiveUpdateEinstellungen_, 1);

    cmdAusblenden_ = new QPushButton(QStringLiteral("&Ausblenden"), flaeche);
    cmdAusblenden_->setObjectName(QStringLiteral("cmdAusblenden"));
    cmdAusblenden_->setAccessibleName(QStringLiteral("Ausblenden"));
    cmdAusblenden_->setMinimumSize(112, 32);
    connect(cmdAusblenden_, &QPushButton::clicked, this, [this] { form_->cmdAusblenden_Click(); });
    aufbau->addWidget(cmdAusblenden_);
    return flaeche;
}

// A list that goes tells that its selection goes: nobody is left to hear it.
FormWendelFenster::~FormWendelFenster() { listViewTermineListe_->disconnect(this); }

Fensterhandle FormWendelFenster::hwnd() { return winId(); }

void FormWendelFenster::zeigen() {
    if (isMinimized()) {
        showNormal();
        return;
    }
    if (!isVisible()) geheZurueck();
    show();
}

// A window that does not ask for its place is placed anew by the window manager each time it comes up. Qt
// asks for it only where the program has set it, and be it to what it is.
void FormWendelFenster::geheZurueck() {
    if (restoreGeometry(lage_) && windowHandle() != nullptr) windowHandle()->setGeometry(geometry());
}

void FormWendelFenster::verstecken() { hide(); }

void FormWendelFenster::nachVorn() {
    if (isMinimized()) showNormal();
    raise();
    activateWindow();
    if (const auto x11 = X11::verbindung()) x11->aktiviere(static_cast<xcb_window_t>(winId()));
}

void FormWendelFenster::setzeZeilen(const std::vector<Terminzeile>& zeilen,
                                    std::optional<std::size_t> auswahl) {
    QTreeWidget& liste = *listViewTermineListe_;
    const QSignalBlocker still(&liste);  // only choices of the user are told
    const int stelle = liste.verticalScrollBar()->value();
    liste.clear();
    QList<QTreeWidgetItem*> eintraege;
    eintraege.reserve(static_cast<qsizetype>(zeilen.size()));
    for (const Terminzeile& zeile : zeilen) {
        auto* eintrag = new QTreeWidgetItem({qtText(zeile.zeit), einzeilig(zeile.text), qtText(zeile.rest)});
        eintrag->setIcon(kZeit, Symbole::symbol(zeile.symbol));
        eintrag->setTextAlignment(kRest, Qt::AlignRight | Qt::AlignVCenter);
        eintrag->setToolTip(kText, qtZeilen(zeile.text));
        if (zeile.rest.empty()) {  // switched off
            for (int spalte = 0; spalte < kSpalten; ++spalte) {
                eintrag->setForeground(spalte, palette().brush(QPalette::PlaceholderText));
            }
        }
        eintraege.push_back(eintrag);
    }
    liste.addTopLevelItems(eintraege);
    if (auswahl && *auswahl < zeilen.size())
        liste.setCurrentItem(liste.topLevelItem(static_cast<int>(*auswahl)));
    liste.verticalScrollBar()->setValue(stelle);
}

void FormWendelFenster::setzeLiveUpdateEinstellungen(const std::string& text) {
    labelAnzLiveUpdateEinstellungen_->setText(qtZeilen(text));
    labelAnzLiveUpdateEinstellungen_->setAccessibleName(labelAnzLiveUpdateEinstellungen_->text());
}

void FormWendelFenster::entladen() {
    hide();
    // Not quit(): that asks the windows first, and ours hide instead of closing.
    QCoreApplication::exit(0);
}

void FormWendelFenster::meldeAuswahl() {
    const QList<QTreeWidgetItem*> gewaehlt = listViewTermineListe_->selectedItems();
    std::optional<std::size_t> zeile;
    if (!gewaehlt.isEmpty()) {
        zeile = static_cast<std::size_t>(listViewTermineListe_->indexOfTopLevelItem(gewaehlt.front()));
    }
    form_->zeileGewaehlt(zeile);
}

void FormWendelFenster::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    form_->fensterSchliessen();
}

// Hidden by the program or its user, not minimised.
void FormWendelFenster::hideEvent(QHideEvent* ereignis) {
    if (!ereignis->spontaneous()) {
        lage_ = saveGeometry();
        QSettings(merkdatei_, QSettings::IniFormat).setValue(kLage, lage_);
    }
    QWidget::hideEvent(ereignis);
}

void FormWendelFenster::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->key() == Qt::Key_Escape) {
        form_->cmdAusblenden_Click();
        return;
    }
    QWidget::keyPressEvent(ereignis);
}

}  // namespace wendel
