#include "jet/sql/Value.h"

#include <array>
#include <charconv>
#include <cmath>

#include "jet/sql/Errors.h"
#include "jet/sql/Translator.h"
#include "platform/Text.h"

namespace wendel::jet::sql {

std::string realText(double value) {
    std::array<char, 40> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    std::string text(buffer.data(), end);
    if (text.find_first_of(".en") == std::string::npos) {
        text += ".0";
    }
    return value < 0 ? "(" + text + ")" : text;
}

std::string wholeText(std::int64_t value) {
    if (value == INT64_MIN) {
        return "(-9223372036854775807-1)";  // SQLite reads the digits before the sign
    }
    return value < 0 ? "(" + std::to_string(value) + ")" : std::to_string(value);
}

std::string quotedText(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) {
        static constexpr std::string_view kHex = "0123456789abcdef";
        std::string hex;
        for (const char c : text) {
            hex += kHex[static_cast<unsigned char>(c) >> 4];
            hex += kHex[static_cast<unsigned char>(c) & 15];
        }
        return "CAST(x'" + hex + "' AS TEXT)";  // a statement's text ends at a NUL
    }
    return "'" + ersetzt(text, "'", "''") + "'";
}

std::string quotedName(std::string_view name) { return "\"" + ersetzt(name, "\"", "\"\"") + "\""; }

std::string atom(const Value& v, Tightness atMost) {
    return v.tightness <= atMost ? v.sql : "(" + v.sql + ")";
}

std::string number(const Value& v, Tightness atMost) {
    switch (v.type) {
        case JetType::Text:
        case JetType::Memo: return "j_val(" + v.sql + ")";
        case JetType::Decimal: return "CAST(" + v.sql + " AS REAL)";
        case JetType::Binary:
        case JetType::Ole:
        case JetType::Guid: throw sqlError(kTypeMismatch);
        case JetType::Currency:
            if (v.scaled) {
                return "(" + atom(v, kProduct) + "/10000.0)";
            }
            break;
        default: break;
    }
    return atom(v, atMost);
}

std::string text(const Value& v) {
    if (isText(v.type) || v.type == JetType::Guid || v.type == JetType::Decimal || v.type == JetType::Null) {
        return v.sql;
    }
    if (isMoment(v.type)) {
        return "j_datetext(" + v.sql + ")";
    }
    return "j_text(" + number(v, kLoose) + ")";
}

std::string momentNumber(const Value& v) {
    return isText(v.type) ? "j_cdate(" + v.sql + ")" : number(v, kLoose);
}

std::string seconds(const Value& v) {
    if (v.dayNumber) {
        return wholeText(std::llround(*v.dayNumber * 86400.0));
    }
    return "j_sec(" + number(v, kLoose) + ")";
}

std::optional<std::string> scaledForm(const Value& v) {
    if (v.type == JetType::Currency && v.scaled) {
        return atom(v);
    }
    if (v.tenThousandths) {
        return wholeText(*v.tenThousandths);
    }
    if (isWhole(v.type)) {
        return "(" + atom(v, kProduct) + "*10000)";
    }
    return std::nullopt;
}

std::string collated(const Value& v) {
    return v.tableColumn || !isText(v.type) ? atom(v) : atom(v) + " COLLATE " + kCollation;
}

JetType arithmeticType(JetType left, JetType right) {
    const auto either = [&](JetType t) { return left == t || right == t; };
    if (left == JetType::Null || right == JetType::Null) {
        return left == JetType::Null ? right : left;
    }
    if (isWhole(left) && isWhole(right)) {
        return JetType::Long;
    }
    if (either(JetType::Currency) && (left == right || isWhole(left) || isWhole(right))) {
        return JetType::Currency;
    }
    if (either(JetType::Single) && !either(JetType::Long) &&
        (left == right || isWhole(left) || isWhole(right))) {
        return JetType::Single;
    }
    return JetType::Double;
}

Value merged(const Value& left, const Value& right, std::string& leftSql, std::string& rightSql) {
    Value result;
    result.tightness = kAtom;
    leftSql = left.sql;
    rightSql = right.sql;
    if (left.type == right.type || left.type == JetType::Null || right.type == JetType::Null) {
        result.type = left.type == JetType::Null ? right.type : left.type;
        result.scaled = left.scaled || right.scaled;
    } else if (isText(left.type) || isText(right.type)) {
        result.type = JetType::Text;
        leftSql = text(left);
        rightSql = text(right);
        return result;
    } else {
        result.type = isMoment(left.type) && isMoment(right.type) ? JetType::DaySum
                                                                  : arithmeticType(left.type, right.type);
    }
    if (result.type == JetType::Currency && !(left.scaled && right.scaled)) {
        result.scaled = false;
        leftSql = number(left, kLoose);
        rightSql = number(right, kLoose);
    } else if (left.type != right.type && left.type != JetType::Null && right.type != JetType::Null) {
        leftSql = number(left, kLoose);
        rightSql = number(right, kLoose);
    }
    return result;
}

}  // namespace wendel::jet::sql
