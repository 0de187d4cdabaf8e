#pragma once
// The options text of a mark: entries key=value, joined with ";". Other writers also use "|", "," and line
// breaks; all are read, and kept where they stand.

#include <string>
#include <string_view>

namespace wendel::Optionen {

// The value of the first entry of this key (blanks around the key and case ignored): everything after its
// first "="; ersatz when there is none.
std::string GetOption(std::string_view optionen, std::string_view schluessel, std::string_view ersatz = "");

// The text with the entry replaced in its place, or appended with the separator that the text already uses.
// The new entry is exactly schluessel=wert, since database queries search for it in this spelling.
std::string SetOption(std::string_view optionen, std::string_view schluessel, std::string_view wert);

}  // namespace wendel::Optionen
