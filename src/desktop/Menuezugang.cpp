#include "desktop/Menuezugang.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <QWindow>
#include <algorithm>
#include <cstddef>
#include <map>

#include "desktop/Menuemaler.h"
#include "desktop/PicPaint.h"
#include "desktop/QtText.h"

namespace wendel::Menuezugang {
namespace {

// One entry, found by its index again at each question: the rows are replaced whenever they are painted anew.
class Eintrag final : public QAccessibleInterface, public QAccessibleActionInterface {
  public:
    Eintrag(PicPaint& flaeche, int index) : flaeche_(&flaeche), index_(index) {}

    int index() const { return index_; }

    bool isValid() const override { return zeile() != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return flaeche_ ? flaeche_->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(flaeche_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::MenuItem; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text art) const override {
        const Zeilenbild* gefunden = zeile();
        if (!gefunden) return {};
        if (art == QAccessible::Name) return qtText(gefunden->name);
        return art == QAccessible::Description ? qtText(gefunden->beschreibung) : QString();
    }

    QRect rect() const override {
        const Zeilenbild* gefunden = zeile();
        if (!gefunden) return {};
        const QRect platz = Menuemaler::qtRechteck(gefunden->rechteck);
        return {flaeche_->mapToGlobal(platz.topLeft()), platz.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State zustand;
        const Zeilenbild* gefunden = zeile();
        zustand.invalid = !gefunden;
        if (!gefunden) return zustand;
        zustand.invisible = !flaeche_->isVisible();
        zustand.disabled = !gefunden->freigegeben;
        zustand.focusable = zustand.selectable = true;
        zustand.focused = zustand.selected = gefunden->hervorgehoben;
        zustand.hasPopup = zustand.expandable = gefunden->pfeil;
        zustand.expanded = gefunden->offen;
        zustand.collapsed = gefunden->pfeil && !gefunden->offen;
        return zustand;
    }

    void* interface_cast(QAccessible::InterfaceType art) override {
        return art == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& aktion) override {
        if (flaeche_ && aktion == pressAction()) flaeche_->waehle(index_);
    }

  private:
    const Zeilenbild* zeile() const {
        if (!flaeche_) return nullptr;
        const auto& zeilen = flaeche_->zeilen();
        const auto stelle =
            std::find_if(zeilen.begin(), zeilen.end(), [this](const auto& z) { return z.index == index_; });
        return stelle == zeilen.end() ? nullptr : &*stelle;
    }

    const QPointer<PicPaint> flaeche_;
    const int index_;
};

class Flaeche final : public QAccessibleWidget {
  public:
    explicit Flaeche(PicPaint& flaeche) : QAccessibleWidget(&flaeche, QAccessible::PopupMenu) {}

    int childCount() const override { return static_cast<int>(eintraege().size()); }
    QAccessibleInterface* child(int stelle) const override {
        const auto alle = eintraege();
        const bool vorhanden = stelle >= 0 && static_cast<std::size_t>(stelle) < alle.size();
        return vorhanden ? eintrag(*alle[static_cast<std::size_t>(stelle)]) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* kind) const override {
        const auto* gesucht = dynamic_cast<const Eintrag*>(kind);
        const auto alle = eintraege();
        for (std::size_t i = 0; gesucht && i < alle.size(); ++i) {
            if (alle[i]->index == gesucht->index()) return static_cast<int>(i);
        }
        return -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const Zeilenbild* zeile = flaeche().zeileBei(flaeche().mapFromGlobal(QPoint(x, y)));
        return zeile ? eintrag(*zeile) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        for (const Zeilenbild* zeile : eintraege()) {
            if (zeile->hervorgehoben) return eintrag(*zeile);
        }
        return nullptr;
    }

  protected:
    ~Flaeche() override {
        for (const auto& [index, kennung] : kennungen_)
            QAccessible::deleteAccessibleInterface(kennung);
    }

  private:
    PicPaint& flaeche() const { return static_cast<PicPaint&>(*widget()); }

    std::vector<const Zeilenbild*> eintraege() const {
        std::vector<const Zeilenbild*> alle;
        for (const Zeilenbild& zeile : flaeche().zeilen()) {
            if (!zeile.trenner) alle.push_back(&zeile);
        }
        return alle;
    }

    // Made when asked for; screen readers expect the same one each time.
    QAccessibleInterface* eintrag(const Zeilenbild& zeile) const {
        const auto [stelle, neu] = kennungen_.try_emplace(zeile.index);
        if (neu)
            stelle->second = QAccessible::registerAccessibleInterface(new Eintrag(flaeche(), zeile.index));
        return QAccessible::accessibleInterface(stelle->second);
    }

    mutable std::map<int, QAccessible::Id> kennungen_;
};

QAccessibleInterface* menueflaeche(const QString&, QObject* objekt) {
    auto* flaeche = dynamic_cast<PicPaint*>(objekt);
    return flaeche ? new Flaeche(*flaeche) : nullptr;
}

}  // namespace

void bekanntmachen() { QAccessible::installFactory(menueflaeche); }

void meldeHervorgehoben(PicPaint& flaeche, int index) {
    if (!QAccessible::isActive()) return;
    QAccessibleInterface* menue = QAccessible::queryAccessibleInterface(&flaeche);
    for (int i = 0; menue && i < menue->childCount(); ++i) {
        const auto* eintrag = dynamic_cast<const Eintrag*>(menue->child(i));
        if (!eintrag || eintrag->index() != index) continue;
        QAccessibleEvent ereignis(&flaeche, QAccessible::Focus);
        ereignis.setChild(i);
        QAccessible::updateAccessibility(&ereignis);
    }
}

void meldeHervorgehoben(QWidget& widget) {
    if (!QAccessible::isActive()) return;
    QAccessibleEvent ereignis(&widget, QAccessible::Focus);
    QAccessible::updateAccessibility(&ereignis);
}

}  // namespace wendel::Menuezugang
