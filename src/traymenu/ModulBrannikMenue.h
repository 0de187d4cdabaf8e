#pragma once
// All loaded menu windows at once: hidden when something was chosen or another window is activated, discarded
// before a new tree is built and at the end of the program.

#include <memory>
#include <vector>

namespace wendel {

class FormBrannikMenue;

// The list of loaded menu windows, in the order of their making, and the owner of the top window, which owns
// all others. Made once, by the main program; outlives every menu window.
class GeladeneMenues {
  public:
    GeladeneMenues();
    ~GeladeneMenues();
    GeladeneMenues(const GeladeneMenues&) = delete;
    GeladeneMenues& operator=(const GeladeneMenues&) = delete;

    const std::vector<FormBrannikMenue*>& formen() const { return formen_; }
    // Null while there is no menu.
    FormBrannikMenue* obermenue() const { return obermenue_.get(); }

    // A tree that is there already has to be unloaded before.
    void setzeObermenue(std::unique_ptr<FormBrannikMenue> obermenue);
    // For the windows' own use: they come and go by themselves.
    void aufnehmen(FormBrannikMenue& form) { formen_.push_back(&form); }
    void streichen(const FormBrannikMenue& form) { std::erase(formen_, &form); }

    // A window was asked to become active; until it is, for some ticks of the closing watch no other window's
    // being active closes the menu.
    void erwarteAktivierung() { schonfrist_ = kSchonfristTicks; }
    // A tick of one window's closing watch; zaehlt: it shortens the respite. True when the menu has to close.
    bool zuSchliessen(bool menueAktiv, bool zaehlt);

  private:
    static constexpr int kSchonfristTicks = 10;

    std::vector<FormBrannikMenue*> formen_;
    std::unique_ptr<FormBrannikMenue> obermenue_;
    int schonfrist_ = 0;
};

namespace ModulBrannikMenue {

// They can be shown again without rebuilding.
void HideAllMenues(GeladeneMenues& geladene);

// Also from inside an event of a menu window, whose form is gone afterwards.
void UnloadAllMenues(GeladeneMenues& geladene);

}  // namespace ModulBrannikMenue
}  // namespace wendel
