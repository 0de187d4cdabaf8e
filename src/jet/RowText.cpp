#include "jet/RowText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "platform/Datum.h"

namespace wendel::jet {
namespace {

using sql::JetType;

// What follows the backslash for the few characters that are written with one; 0 for all others.
constexpr auto kEscapes = [] {
    std::array<char, 256> letters{};
    letters['\\'] = '\\';
    letters['\t'] = 't';
    letters['\r'] = 'r';
    letters['\n'] = 'n';
    letters['\0'] = '0';
    return letters;
}();

void appendEscaped(std::string_view text, std::string& out) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const char letter = kEscapes[static_cast<unsigned char>(text[i])]) {
            out.append(text, begin, i - begin);
            out += '\\';
            out += letter;
            begin = i + 1;
        }
    }
    out.append(text, begin);
}

void appendWhole(std::int64_t value, std::string& out) {
    std::array<char, 24> buffer;
    out.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr);
}

// As "%.<digits>g".
void appendReal(double value, int digits, std::string& out) {
    std::array<char, 64> buffer;
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, digits)
            .ptr;
    out.append(buffer.data(), end);
}

void appendDigits(int value, int places, std::string& out) {
    std::array<char, 8> buffer;
    for (int i = places; i-- > 0; value /= 10) {
        buffer[static_cast<std::size_t>(i)] = static_cast<char>('0' + value % 10);
    }
    out.append(buffer.data(), static_cast<std::size_t>(places));
}

void appendDate(double days, std::string& out) {
    if (!(days > -657435 && days < 2958466)) {
        appendReal(days, 17, out);  // no moment of the calendar
        return;
    }
    const Datumsteile parts = zerlegt(Datum::ausTageszahl(days));
    appendDigits(parts.jahr, 4, out);
    out += '-';
    appendDigits(parts.monat, 2, out);
    out += '-';
    appendDigits(parts.tag, 2, out);
    out += ' ';
    appendDigits(parts.stunde, 2, out);
    out += ':';
    appendDigits(parts.minute, 2, out);
    out += ':';
    appendDigits(parts.sekunde, 2, out);
}

void appendCurrency(std::int64_t tenThousandths, std::string& out) {
    const auto magnitude = tenThousandths < 0 ? 0 - static_cast<std::uint64_t>(tenThousandths)
                                              : static_cast<std::uint64_t>(tenThousandths);
    if (tenThousandths < 0) {
        out += '-';
    }
    appendWhole(static_cast<std::int64_t>(magnitude / 10000), out);
    out += '.';
    appendDigits(static_cast<int>(magnitude % 10000), 4, out);
}

void appendHex(std::string_view bytes, std::string& out) {
    static constexpr std::string_view kDigits = "0123456789abcdef";
    for (const char c : bytes) {
        out += kDigits[static_cast<unsigned char>(c) >> 4];
        out += kDigits[static_cast<unsigned char>(c) & 15];
    }
}

void appendUntyped(const Query& query, std::size_t column, Query::Storage storage, std::string& out) {
    switch (storage) {
        case Query::Storage::Whole: appendWhole(query.whole(column), out); break;
        case Query::Storage::Real: appendReal(query.real(column), 17, out); break;
        case Query::Storage::Text: appendEscaped(query.text(column), out); break;
        default: appendHex(query.bytes(column), out); break;
    }
}

void appendCell(const Query& query, std::size_t column, JetType type, std::string& out) {
    const Query::Storage storage = query.storage(column);
    if (storage == Query::Storage::Null) {
        out += "\\N";
        return;
    }
    switch (type) {
        case JetType::Boolean: out += query.whole(column) ? "-1" : "0"; break;
        case JetType::Currency: appendCurrency(query.whole(column), out); break;
        case JetType::Single:
            appendReal(static_cast<double>(static_cast<float>(query.real(column))), 9, out);
            break;
        case JetType::Date: appendDate(query.real(column), out); break;
        case JetType::Double: appendReal(query.real(column), 17, out); break;
        default: appendUntyped(query, column, storage, out); break;
    }
}

}  // namespace

void appendHeaderLine(const Query& query, std::string& out) {
    for (std::size_t i = 0; i < query.columns().size(); ++i) {
        out += i ? "\t" : "";
        appendEscaped(query.columns()[i].name, out);
    }
    out += '\n';
}

void appendRowLine(const Query& query, std::string& out) {
    const auto& columns = query.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i) {
            out += '\t';
        }
        appendCell(query, i, columns[i].type, out);
    }
    out += '\n';
}

}  // namespace wendel::jet
