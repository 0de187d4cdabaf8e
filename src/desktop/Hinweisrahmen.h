#pragma once
// What the notices have in common: a picture and a text on a page, a bar with controls below, both under a
// coloured strip. The window comes up above everything without taking the focus, and no control has the focus
// at first, so that typing meant for another program answers nothing. It never closes by itself. What it
// holds comes into being with the first notice.

#include <QWidget>
#include <string>
#include <string_view>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace wendel {

class Hinweisrahmen : public QWidget {
  protected:
    // Object names of window, picture and text; the title, the picture's file and what it is called.
    struct Namen {
        const char* fenster;
        const char* bild;
        const char* text;
        std::string_view titel;
        const char* bilddatei;
        const char* bildname;
    };
    explicit Hinweisrahmen(const Namen& namen);

    // To be called before anything of the following; does nothing from the second time on.
    void baueAuf();
    // Puts the heading and the controls in.
    virtual void baueInhalt() = 0;

    // Above the text, in larger letters.
    QLabel* baueUeberschrift(const char* name);
    // cmdOK, at the right of the bar. Whoever adds more to the bar does so before.
    QPushButton* baueOK();
    QHBoxLayout& leiste() { return *leiste_; }
    QWidget& fussleiste() { return *fussleiste_; }

    // Scrolls in a window that would not fit the screen.
    void zeigeText(const std::string& text);
    // The height follows text and bar.
    void passeAn();
    // On the screen already: raised where it is.
    void komm();

    // Close box and Esc.
    virtual void willSchliessen() = 0;

    void closeEvent(QCloseEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;
    void changeEvent(QEvent* ereignis) override;

  private:
    void baueSeite();
    void faerbe();
    int hoeheOhneText() const;

    Namen namen_;
    QWidget* seite_ = nullptr;  // until there is something in the window
    QVBoxLayout* spalte_;
    QLabel* text_;
    QScrollArea* textbereich_;
    QWidget* fussleiste_;
    QHBoxLayout* leiste_;
};

}  // namespace wendel
