#pragma once
// The program's pictures by the names that the forms use. They are drawn at build time from assets/symbole
// into the sizes that the desktop asks for, so that the running program carries no SVG renderer.

#include <QIcon>
#include <QPixmap>
#include <string_view>

namespace wendel::Symbole {

// "wendel", "terminuhr1", "terminuhr2", "terminaufz", "infobanner". An unknown name gives an empty icon.
QIcon symbol(std::string_view name);

// "hinweis" or "aufzeichnung" for a screen of the given device pixel ratio; its size in device-independent
// pixels is always the same.
QPixmap bild(std::string_view name, qreal geraetepixel);

}  // namespace wendel::Symbole
