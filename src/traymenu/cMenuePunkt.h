#pragma once
// One entry of the tray menu: an action, a broadcast or the head of a sub-menu. A menu window owns its
// entries, an entry owns its sub-menu. What the keys do is left to Menuebefehle, painting to
// FormBrannikMenue.

#include <cstdint>
#include <memory>
#include <string>

#include "platform/Datum.h"

namespace wendel {

class FormBrannikMenue;

// Kinds of entries. A row of another kind than the one above it begins a new group.
namespace menueart {
inline constexpr std::int16_t kAktion = 1;
inline constexpr std::int16_t kSendung = 2;
inline constexpr std::int16_t kProgrammkopf = 3;
inline constexpr std::int16_t kErinnernkopf = 4;
}  // namespace menueart

class cMenuePunkt {
  public:
    cMenuePunkt();
    ~cMenuePunkt();
    cMenuePunkt(const cMenuePunkt&) = delete;
    cMenuePunkt& operator=(const cMenuePunkt&) = delete;

    std::int16_t Art = menueart::kAktion;
    std::string Aktionstext;  // unused, always empty
    std::string Name;         // the key
    std::string Text;
    bool Trenner = false;  // a line, not an entry
    Datum Zeit;            // start of a broadcast
    std::int16_t Star = 0;
    std::string Beschreibung;
    std::string SenderKennung;
    std::unique_ptr<FormBrannikMenue> UnterMenue;  // null for an entry that acts
    std::int32_t DBPos = 0;                        // 0: no broadcast of the database
    bool Visible = true;
    FormBrannikMenue* ParentForm = nullptr;  // the window that holds this entry
    std::string Tooltiptext;

    // Opens the sub-menu beside the parent window, in the place of the one that is open there. y is the top
    // of this entry's row in the parent window, in twips. Does nothing without a sub-menu, without a parent
    // window, or when the sub-menu has no entries.
    void ShowUnterMenue(int y);
};

}  // namespace wendel
