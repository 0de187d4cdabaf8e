#include "desktop/DeutscheTexte.h"

#include <QHash>

namespace wendel {
namespace {

struct Paar {
    const char* text;
    const char* deutsch;
};
constexpr Paar kPaare[] = {
    // Keys, as menus show them.
    {"Ctrl", "Strg"},
    {"Shift", "Umschalt"},
    {"Ins", "Einfg"},
    {"Del", "Entf"},
    {"Return", "Eingabe"},
    {"Enter", "Eingabe"},
    // Text fields.
    {"&Undo", "&Rückgängig"},
    {"&Redo", "&Wiederherstellen"},
    {"Cu&t", "&Ausschneiden"},
    {"&Copy", "&Kopieren"},
    {"&Paste", "&Einfügen"},
    {"Delete", "Löschen"},
    {"Select All", "Alles auswählen"},
    // Scroll bars.
    {"Scroll here", "Hierher blättern"},
    {"Top", "Anfang"},
    {"Bottom", "Ende"},
    {"Page up", "Eine Seite nach oben"},
    {"Page down", "Eine Seite nach unten"},
    {"Scroll up", "Nach oben"},
    {"Scroll down", "Nach unten"},
    {"Left edge", "Linker Rand"},
    {"Right edge", "Rechter Rand"},
    {"Page left", "Eine Seite nach links"},
    {"Page right", "Eine Seite nach rechts"},
    {"Scroll left", "Nach links"},
    {"Scroll right", "Nach rechts"},
    // What a screen reader offers to do.
    {"Press", "Drücken"},
    {"Triggers the action", "Löst die Aktion aus"},
    {"SetFocus", "Fokus setzen"},
    {"Sets the focus", "Setzt den Fokus"},
    {"ShowMenu", "Menü zeigen"},
    {"Shows the menu", "Zeigt das Menü"},
    {"Toggle", "Umschalten"},
    {"Toggles the state", "Schaltet um"},
    {"Open the combo box selection popup", "Öffnet die Auswahlliste"},
};

QHash<QByteArray, QString> woerterbuch() {
    QHash<QByteArray, QString> woerter;
    for (const Paar& paar : kPaare)
        woerter.insert(paar.text, QString::fromUtf8(paar.deutsch));
    return woerter;
}

}  // namespace

// The texts are told apart by themselves: none has two meanings here.
QString DeutscheTexte::translate(const char*, const char* text, const char*, int) const {
    static const QHash<QByteArray, QString> kWoerter = woerterbuch();
    return kWoerter.value(QByteArray::fromRawData(text, static_cast<qsizetype>(qstrlen(text))));
}

}  // namespace wendel
