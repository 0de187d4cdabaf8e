#pragma once
// The pictures of the tray menu, shared by all its windows and made once: the icons of the rows, and the
// bitmap behind the day's tip, which the user may have replaced by another.

#include <QIcon>
#include <QPixmap>
#include <map>
#include <string>

namespace wendel {

// The bitmap at the panel's height in device-independent pixels, as wide as it then is. hell: dark writing is
// read on it. No bitmap where there is no such file.
struct Tippbild {
    QPixmap bild;
    bool hell = false;
};

class Menuebilder {
  public:
    // The folder is the one that is searched before the shipped files, in logic form.
    explicit Menuebilder(std::string programmordner) : programmordner_(std::move(programmordner)) {}

    // "favorit", "erinnerung", "bewertung1" to "bewertung5"; other names have no picture.
    const QIcon& symbol(const std::string& name);
    // "wendelttp.bmp" for a screen of that device pixel ratio. The file is read at the first call and when
    // the ratio is another one than before.
    const Tippbild& tippbild(qreal geraetepixel);

  private:
    const std::string programmordner_;
    std::map<std::string, QIcon> symbole_;
    Tippbild tippbild_;
    qreal geraetepixel_ = 0;
};

}  // namespace wendel
