#include "desktop/Fensterrolle.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace wendel::Fensterrolle {
namespace {

QAccessibleInterface* fenster(const QString& klasse, QObject* objekt) {
    auto* widget = qobject_cast<QWidget*>(objekt);
    if (klasse != QLatin1String("QWidget") || widget == nullptr || !widget->isWindow()) return nullptr;
    return new QAccessibleWidget(widget, QAccessible::Window);
}

}  // namespace

void bekanntmachen() { QAccessible::installFactory(fenster); }

}  // namespace wendel::Fensterrolle
