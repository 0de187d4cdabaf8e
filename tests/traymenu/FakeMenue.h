#pragma once
// The tray menu's windows without a screen: they keep what they are to show. Text is 6 pixels wide per
// character; the desktop has two monitors.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Text.h"
#include "traymenu/FormBrannikMenue.h"

namespace wendel {

struct FakeMenueView;

struct FakeMenueumgebung : Menueumgebung {
    std::map<Fensterhandle, FakeMenueView*> views;
    Fensterhandle aktiv = 0, letztes = 100;

    // Of the top window; null while there is no menu.
    FakeMenueView* oben() const;
    std::unique_ptr<FormBrannikMenueView> neueView(FormBrannikMenue&) override;
    Fensterhandle aktivesFenster() override { return aktiv; }
    Arbeitsbereich freieFlaeche(Punkt ort) override {
        return ort.x < 1920 ? Arbeitsbereich{0, 0, 1920, 1040} : Arbeitsbereich{30, 1920, 3200, 1024};
    }
};

struct FakeMenueView : FormBrannikMenueView {
    FakeMenueView(FakeMenueumgebung& u, FormBrannikMenue& f, Fensterhandle h)
        : umgebung(u), form(f), handle(h) {
        u.views[h] = this;
    }
    ~FakeMenueView() override { umgebung.views.erase(handle); }

    FakeMenueumgebung& umgebung;
    FormBrannikMenue& form;
    const Fensterhandle handle;
    Menuebild bild;
    std::vector<Zeilenbild> gemalt;
    std::vector<Kontextmenue> kontextmenues;
    bool sichtbar = false;
    int einblendungMs = 0, unloadMs = 0;

    Fensterhandle hwnd() override { return handle; }
    void setzeSchrift(const std::string&, int) override {}
    int textbreite(const std::string& text) override { return static_cast<int>(zeichenzahl(text)) * 6; }
    Menuefarben farben() override { return {1, 2, 3, 4, 5, 6, 7}; }
    void zeichne(const Menuebild& neu) override { bild = neu; }
    void zeichneZeile(const Zeilenbild& zeile) override { gemalt.push_back(zeile); }
    void zeichneTipp(bool hervorgehoben) override { bild.tippHervorgehoben = hervorgehoben; }
    void zeigen(const Rechteck&, Fensterhandle) override { sichtbar = true, aktivieren(); }
    void verbergen() override { sichtbar = false; }
    void aktivieren() override { umgebung.aktiv = handle; }
    void setzeTimerEinblendung(int ms) override { einblendungMs = ms; }
    void setzeTimerUnload(int ms) override { unloadMs = ms; }
    void zeigeMenueMenue(const Kontextmenue& menue) override { kontextmenues.push_back(menue); }
};

inline FakeMenueView* FakeMenueumgebung::oben() const {
    for (const auto& [handle, view] : views)
        if (!view->form.eltern()) return view;
    return nullptr;
}

inline std::unique_ptr<FormBrannikMenueView> FakeMenueumgebung::neueView(FormBrannikMenue& form) {
    return std::make_unique<FakeMenueView>(*this, form, ++letztes);
}

}  // namespace wendel
