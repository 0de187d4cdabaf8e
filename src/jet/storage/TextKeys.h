#pragma once
// Sort keys of text: what an index stores for a text column, and thereby the order and equality of texts in
// the database ("Straße" = "strasse", trailing blanks do not count). Used by the key encoder and as SQL
// collation.

#include <string>
#include <string_view>

namespace wendel::jet {

// The rules whose keys are known.
enum class TextOrder {
    kGeneralJet4,  // "General", since Access 2010 called "General Legacy"
    kGeneralJet3,  // "General" of Access 97, on Windows-1252
    kUnsupported,
};

// Appends the ascending key of a text without the leading flag byte. Only the first 255 characters (UTF-16
// units) count. kUnsupported is treated as kGeneralJet4, which is good for comparing, not for searching.
void appendTextKey(TextOrder order, std::string_view utf8, std::string& out);

// False when the text holds characters whose codes are not known (they leave no trace in the key): the
// engine's own key differs then, and an index must not be searched for it.
bool textKeyIsKnown(TextOrder order, std::string_view utf8);

// The key as a value of its own.
std::string sortKey(TextOrder order, std::string_view utf8);

// Compares as the keys would, mostly without building them: below, equal or above zero.
int compareText(TextOrder order, std::string_view a, std::string_view b);

}  // namespace wendel::jet
