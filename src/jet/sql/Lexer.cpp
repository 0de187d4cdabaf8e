#include "jet/sql/Lexer.h"

#include <array>
#include <charconv>

#include "jet/sql/Errors.h"

namespace wendel::jet::sql {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// Bytes beyond ASCII are letters: the suite's names have umlauts.
bool isNameStart(char c) {
    return (lower(c) >= 'a' && lower(c) <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool isNamePart(char c) { return isNameStart(c) || isDigit(c); }

bool isHexDigit(char c) { return isDigit(c) || (lower(c) >= 'a' && lower(c) <= 'f'); }

// Digits that no letter follows: in "Titel &Haus" the name is a name.
bool isHexNumber(std::string_view text) {
    std::size_t digits = 0;
    while (digits < text.size() && isHexDigit(text[digits]))
        ++digits;
    return digits > 0 && (digits == text.size() || !isNamePart(text[digits]));
}

// Cursor over the inside of a date literal.
class DateText {
  public:
    explicit DateText(std::string_view text) : text_(text) {}

    void skipBlanks() {
        while (at_ < text_.size() && isBlank(text_[at_]))
            ++at_;
    }
    bool atEnd() {
        skipBlanks();
        return at_ == text_.size();
    }
    bool take(char c) {
        if (at_ < text_.size() && text_[at_] == c) {
            ++at_;
            return true;
        }
        return false;
    }
    bool takeWord(std::string_view lowerCase) {
        if (text_.size() - at_ < lowerCase.size()) {
            return false;
        }
        for (std::size_t i = 0; i < lowerCase.size(); ++i) {
            if (lower(text_[at_ + i]) != lowerCase[i]) {
                return false;
            }
        }
        at_ += lowerCase.size();
        return true;
    }
    // Up to four digits; -1 when there is none.
    int number() {
        int value = -1;
        for (int digits = 0; digits < 4 && at_ < text_.size() && isDigit(text_[at_]); ++digits) {
            value = (value < 0 ? 0 : value * 10) + (text_[at_++] - '0');
        }
        return value;
    }

  private:
    std::string_view text_;
    std::size_t at_ = 0;
};

int fullYear(int year) {
    if (year >= 0 && year < 30) {
        return 2000 + year;
    }
    return year >= 30 && year < 100 ? 1900 + year : year;
}

std::optional<Datum> day(int a, int b, int c) {
    struct Order {
        int year, month, day;
    };
    const std::array<Order, 3> readings{{{fullYear(c), a, b}, {fullYear(c), b, a}, {a, b, c}}};
    for (const Order& r : readings) {
        if (r.year >= 100 && r.year <= 9999 && istKalendertag(r.year, r.month, r.day)) {
            return DateSerial(r.year, r.month, r.day);
        }
    }
    return std::nullopt;
}

// The rest of a time whose hour has been read and is followed by ":".
std::optional<Datum> timeAfterHour(DateText& text, int hour) {
    const int minute = text.number();
    const int second = text.take(':') ? text.number() : 0;
    text.skipBlanks();
    if (text.takeWord("am") || text.takeWord("a.m.")) {
        hour = hour == 12 ? 0 : hour;
    } else if (text.takeWord("pm") || text.takeWord("p.m.")) {
        hour = hour < 12 ? hour + 12 : hour;
    }
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
        return std::nullopt;
    }
    return Datum::ausSekunden(hour * 3600 + minute * 60 + second);
}

}  // namespace

std::optional<Datum> parseDateLiteral(std::string_view literal) {
    DateText text(literal);
    text.skipBlanks();
    const int first = text.number();
    if (first < 0) {
        return std::nullopt;
    }
    if (text.take(':')) {
        const auto time = timeAfterHour(text, first);
        return text.atEnd() ? time : std::nullopt;
    }
    const char separator = text.take('/') ? '/' : '-';
    if (separator == '-' && !text.take('-')) {
        return std::nullopt;
    }
    const int second = text.number();
    if (second < 0 || !text.take(separator)) {
        return std::nullopt;
    }
    const auto date = day(first, second, text.number());
    if (!date || text.atEnd()) {
        return date;
    }
    const int hour = text.number();
    if (hour < 0 || !text.take(':')) {
        return std::nullopt;
    }
    const auto time = timeAfterHour(text, hour);
    if (!time || !text.atEnd()) {
        return std::nullopt;
    }
    return *date + *time;
}

bool Token::isKeyword(std::string_view lowerCase) const {
    if (kind != TokenKind::Name || text.size() != lowerCase.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (lower(text[i]) != lowerCase[i]) {
            return false;
        }
    }
    return true;
}

void Lexer::skipBlanks() {
    while (at_ < text_.size() && isBlank(text_[at_]))
        ++at_;
}

Token Lexer::finish(TokenKind kind, std::size_t begin) const {
    Token token;
    token.kind = kind;
    token.begin = begin;
    token.end = at_;
    return token;
}

Token Lexer::next() {
    skipBlanks();
    if (at_ >= text_.size()) {
        return finish(TokenKind::End, at_);
    }
    const char c = text_[at_];
    const char following = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
    if (isNameStart(c)) {
        return name();
    }
    if (isDigit(c) || (c == '.' && isDigit(following))) {
        return number();
    }
    if (c == '&' && lower(following) == 'h' && isHexNumber(text_.substr(at_ + 2))) {
        return hexNumber();
    }
    switch (c) {
        case '\'':
        case '"': return quoted(c);
        case '[': return bracket();
        case '#': return date();
        default: return symbol();
    }
}

Token Lexer::name() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && isNamePart(text_[at_]))
        ++at_;
    Token token = finish(TokenKind::Name, begin);
    token.text = text_.substr(begin, at_ - begin);
    return token;
}

Token Lexer::number() {
    const std::size_t begin = at_;
    bool whole = true;
    while (at_ < text_.size() && isDigit(text_[at_]))
        ++at_;
    if (at_ < text_.size() && text_[at_] == '.') {
        whole = false;
        ++at_;
        while (at_ < text_.size() && isDigit(text_[at_]))
            ++at_;
    }
    if (at_ < text_.size() && lower(text_[at_]) == 'e') {
        std::size_t exponent = at_ + 1;
        if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) ++exponent;
        if (exponent < text_.size() && isDigit(text_[exponent])) {
            whole = false;
            at_ = exponent;
            while (at_ < text_.size() && isDigit(text_[at_]))
                ++at_;
        }
    }
    Token token = finish(whole ? TokenKind::Whole : TokenKind::Real, begin);
    token.text = text_.substr(begin, at_ - begin);
    const char* first = token.text.data();
    const char* last = first + token.text.size();
    if (whole && std::from_chars(first, last, token.whole).ec == std::errc()) {
        return token;
    }
    token.kind = TokenKind::Real;  // also a whole number of more than 64 bits
    if (std::from_chars(first, last, token.real).ec != std::errc()) {
        throw sqlError(kExpressionSyntax, token.text);
    }
    return token;
}

// 16 and 32 bits, as the number's digits ask for: &HFFFF is -1.
Token Lexer::hexNumber() {
    const std::size_t begin = at_;
    at_ += 2;
    const std::size_t digits = at_;
    while (at_ < text_.size() && isHexDigit(text_[at_]))
        ++at_;
    std::uint32_t value = 0;
    const auto result = std::from_chars(text_.data() + digits, text_.data() + at_, value, 16);
    if (result.ec != std::errc()) {
        throw sqlError(kExpressionSyntax, text_.substr(begin, at_ - begin));
    }
    Token token = finish(TokenKind::Whole, begin);
    token.text = text_.substr(begin, at_ - begin);
    token.whole = at_ - digits <= 4 ? static_cast<std::int16_t>(value) : static_cast<std::int32_t>(value);
    return token;
}

Token Lexer::quoted(char quote) {
    const std::size_t begin = at_++;
    std::string value;
    for (;;) {
        const std::size_t end = text_.find(quote, at_);
        if (end == std::string_view::npos) {
            throw sqlError(kExpressionSyntax, text_.substr(begin));
        }
        value += text_.substr(at_, end - at_);
        at_ = end + 1;
        if (at_ >= text_.size() || text_[at_] != quote) {
            break;
        }
        value += quote;
        ++at_;
    }
    Token token = finish(TokenKind::Text, begin);
    token.text = std::move(value);
    return token;
}

Token Lexer::bracket() {
    const std::size_t begin = at_;
    const std::size_t end = text_.find(']', at_);
    if (end == std::string_view::npos) {
        throw sqlError(kExpressionSyntax, text_.substr(begin));
    }
    at_ = end + 1;
    Token token = finish(TokenKind::Bracket, begin);
    token.text = text_.substr(begin + 1, end - begin - 1);
    return token;
}

Token Lexer::date() {
    const std::size_t begin = at_;
    const std::size_t end = text_.find('#', at_ + 1);
    if (end == std::string_view::npos) {
        throw sqlError(kExpressionSyntax, text_.substr(begin));
    }
    const auto moment = parseDateLiteral(text_.substr(begin + 1, end - begin - 1));
    at_ = end + 1;
    if (!moment) {
        throw sqlError(kExpressionSyntax, text_.substr(begin, at_ - begin));
    }
    Token token = finish(TokenKind::Date, begin);
    token.text = text_.substr(begin, at_ - begin);
    token.moment = *moment;
    return token;
}

Token Lexer::symbol() {
    const std::size_t begin = at_;
    const std::string_view two = text_.substr(at_, 2);
    if (two == "<=" || two == ">=" || two == "<>") {
        at_ += 2;
    } else if (std::string_view("(),.;*/\\+-^&=<>!").find(text_[at_]) != std::string_view::npos) {
        ++at_;
    } else {
        throw sqlError(kExpressionSyntax, text_.substr(begin));
    }
    Token token = finish(TokenKind::Symbol, begin);
    token.text = text_.substr(begin, at_ - begin);
    return token;
}

}  // namespace wendel::jet::sql
