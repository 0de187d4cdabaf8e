#pragma once
// Identifiers of any length as keys that fit a column of the database: readable where they can be, and the
// same for the same identifier in every run.

#include <cstddef>
#include <string>
#include <string_view>

namespace wendel::skarvel {

// Thirteen letters and digits that stand for the text; the same on every machine.
std::string streuzeichen(std::string_view text);

// The identifier itself when it has at most `breite` characters, all of them printable ASCII, which the
// database tells apart but for case. Any other becomes its beginning, "~" and ten characters for the whole.
std::string kennungFuer(std::string_view kennung, std::size_t breite);

// Always the long form: for one whose short form is taken. `versuch` gives another each time.
std::string gestreuteKennung(std::string_view kennung, std::size_t breite, int versuch);

}  // namespace wendel::skarvel
