#pragma once
// What a screen reader is told of the painted menu: PicPaint is a menu whose children are its entries, each
// with name, description, state and a press.

class QWidget;

namespace wendel {

class PicPaint;

namespace Menuezugang {

// After the application, before the first menu window.
void bekanntmachen();

// The entry of that index, or the whole widget, is what the user is at now.
void meldeHervorgehoben(PicPaint& flaeche, int index);
void meldeHervorgehoben(QWidget& widget);

}  // namespace Menuezugang
}  // namespace wendel
