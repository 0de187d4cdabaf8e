#pragma once
// Tells screen readers that the program's plain windows are windows. The toolkit says so of dialogs only and
// calls the others a space between controls, which is passed over in silence.

namespace wendel::Fensterrolle {

// After the application, before the first window.
void bekanntmachen();

}  // namespace wendel::Fensterrolle
