#pragma once
// Cuts a statement of the dialect into tokens, one at a time: a list of fifty thousand keys never stands in
// memory as tokens. Keywords are plain names here; the parser decides where they mean something.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Datum.h"

namespace wendel::jet::sql {

enum class TokenKind {
    End,
    Name,     // text as written
    Bracket,  // [ ... ], text without the brackets
    Text,     // '...' or "...", text without quotes, doubled quotes made single
    Date,     // #...#, moment
    Whole,
    Real,
    Symbol,  // one of ( ) , . ; * / \ + - ^ & = < > <= >= <> !
};

struct Token {
    TokenKind kind = TokenKind::End;
    std::string text;
    std::int64_t whole = 0;
    double real = 0;
    Datum moment;
    std::size_t begin = 0;  // bytes in the statement
    std::size_t end = 0;

    // Keywords compare without case; bracketed names are never keywords.
    bool isKeyword(std::string_view lowerCase) const;
    bool isSymbol(std::string_view symbol) const { return kind == TokenKind::Symbol && text == symbol; }
};

class Lexer {
  public:
    // The text outlives the lexer.
    explicit Lexer(std::string_view text) : text_(text) {}

    // The next token; End for ever at the end. Throws Fehler 3075 for an open string, bracket or date, for a
    // date that is none, and for a character that begins nothing.
    Token next();

    std::string_view text() const { return text_; }

  private:
    void skipBlanks();
    Token name();
    Token number();
    Token hexNumber();
    Token quoted(char quote);
    Token bracket();
    Token date();
    Token symbol();
    Token finish(TokenKind kind, std::size_t begin) const;

    std::string_view text_;
    std::size_t at_ = 0;
};

// A date as between "#": m/d/yyyy, with d/m where that is the only reading, or yyyy-mm-dd; a time h:nn[:ss]
// [AM|PM]; or both. Nothing when it is none.
std::optional<Datum> parseDateLiteral(std::string_view text);

}  // namespace wendel::jet::sql
