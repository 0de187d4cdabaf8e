#pragma once
// The history of recordings as a small list, newest first: what became of each planned one. It reads what the
// recording flow has written (Aufzeichnungsprotokoll); its window is a FormAufzeichnungsverlaufView.

#include <cstddef>
#include <string>
#include <vector>

namespace wendel {

class Aufzeichnungsprotokoll;

// One row: the four columns, and whether the recording came about, which the row's picture tells.
struct Aufzeichnungsverlaufszeile {
    std::string zeit;    // "24.12.2012 20:15"
    std::string sender;  // as the list of entries names it
    std::string sendung;
    std::string ergebnis;
    bool gelungen = false;

    friend bool operator==(const Aufzeichnungsverlaufszeile&, const Aufzeichnungsverlaufszeile&) = default;
};

class FormAufzeichnungsverlaufView {
  public:
    virtual ~FormAufzeichnungsverlaufView() = default;
    // Without rows the window says "Noch keine Aufzeichnungen.".
    virtual void setzeZeilen(const std::vector<Aufzeichnungsverlaufszeile>& zeilen) = 0;
    // Visible, in front and activated: the user has asked for it. Not modal.
    virtual void zeigen() = 0;
    virtual void verbergen() = 0;
};

class FormAufzeichnungsverlauf {
  public:
    static constexpr std::size_t kHoechstzahl = 500;

    // Both outlive the form.
    FormAufzeichnungsverlauf(const Aufzeichnungsprotokoll& protokoll, FormAufzeichnungsverlaufView& view);

    // Reads and shows it; one that is open already comes to the front.
    void oeffnen();
    // To be called when a recording has got its line: reads anew if the window is open.
    void auffrischen();
    void schliessen();  // also the close box and Esc
    bool offen() const { return offen_; }

  private:
    void lese();

    const Aufzeichnungsprotokoll& protokoll_;
    FormAufzeichnungsverlaufView& view_;
    bool offen_ = false;
};

}  // namespace wendel
