#pragma once
// Pieces of SQLite's SQL with what is known of them, and their conversions: a number where a number is asked
// for, moments as seconds, texts under the database's order. Knows no names and no clauses; Translator puts
// the pieces together.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "jet/sql/JetType.h"

namespace wendel::jet::sql {

// How tightly the outermost operator of a piece of SQL binds; a piece is bracketed where a tighter one is
// needed.
enum Tightness { kAtom, kProduct, kSum, kLoose };

// A piece of SQLite SQL and what is known of it.
struct Value {
    std::string sql;
    JetType type = JetType::Null;
    Tightness tightness = kLoose;
    bool scaled = false;  // Currency as whole ten thousandths
    bool tableColumn =
        false;  // a bare column of a table, where SQLite can use an index and knows the collation
    std::optional<std::int64_t> tenThousandths{};  // of a number literal
    std::optional<double> dayNumber{};             // of a literal that can be compared with a moment
};

// Literals and names as SQL.
std::string realText(double value);
std::string wholeText(std::int64_t value);
std::string quotedText(std::string_view text);
std::string quotedName(std::string_view name);

// The piece, in brackets where its operator binds less tightly than asked for.
std::string atom(const Value& v, Tightness atMost = kAtom);
// As a number, a text, a day number, whole seconds. Texts are read as numbers or dates row by row; number()
// throws Fehler 3464 for types that are none.
std::string number(const Value& v, Tightness atMost = kAtom);
std::string text(const Value& v);
std::string momentNumber(const Value& v);
std::string seconds(const Value& v);
// As whole ten thousandths, where nothing is lost.
std::optional<std::string> scaledForm(const Value& v);
// Text that SQLite compares as the database does, also where no column stands.
std::string collated(const Value& v);

JetType arithmeticType(JetType left, JetType right);
// Two values that become one column: the type that holds both (the result has no SQL yet), and both in that
// type's form.
Value merged(const Value& left, const Value& right, std::string& leftSql, std::string& rightSql);

}  // namespace wendel::jet::sql
