#include "jet/sql/Functions.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "jet/sql/Errors.h"
#include "jet/sql/Lexer.h"
#include "jet/sql/LikePattern.h"
#include "platform/Datum.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"

namespace wendel::jet::sql {
namespace {

[[noreturn]] void throwInvalidArgument() {
    throw Fehler(fehlernummer::kUngueltigesArgument, "SQL",
                 "Ungültiger Prozeduraufruf oder ungültiges Argument");
}
[[noreturn]] void throwOverflow() { throw Fehler(fehlernummer::kUeberlauf, "SQL", "Überlauf"); }

// The arguments of one call. Functions marked "null in, null out" are not called with a Null.
class Call {
  public:
    Call(sqlite3_context* context, int count, sqlite3_value** values)
        : context_(context), count_(count), values_(values) {}

    int count() const { return count_; }
    bool isNull(int i) const { return sqlite3_value_type(values_[i]) == SQLITE_NULL; }
    bool isText(int i) const { return sqlite3_value_type(values_[i]) == SQLITE_TEXT; }
    bool isWhole(int i) const { return sqlite3_value_type(values_[i]) == SQLITE_INTEGER; }
    double number(int i) const { return isText(i) ? Val(text(i)) : sqlite3_value_double(values_[i]); }
    std::int64_t whole(int i) const {
        if (isWhole(i)) {
            return sqlite3_value_int64(values_[i]);
        }
        const double rounded = std::nearbyint(number(i));
        if (!(std::abs(rounded) < 9e18)) {
            throwOverflow();
        }
        return static_cast<std::int64_t>(rounded);
    }
    std::string_view text(int i) const {
        const auto* data = reinterpret_cast<const char*>(sqlite3_value_text(values_[i]));
        return data ? std::string_view(data, static_cast<std::size_t>(sqlite3_value_bytes(values_[i])))
                    : std::string_view();
    }
    Datum moment(int i) const { return isText(i) ? momentOf(text(i)) : Datum::ausTageszahl(number(i)); }

    // A text that is a date, as between "#".
    static Datum momentOf(std::string_view text) {
        const auto moment = parseDateLiteral(text);
        if (!moment) {
            throw sqlError(kTypeMismatch);
        }
        return *moment;
    }

    void result(std::int64_t v) const { sqlite3_result_int64(context_, v); }
    void result(double v) const { sqlite3_result_double(context_, v); }
    void result(Datum v) const { sqlite3_result_double(context_, v.tageszahl()); }
    void result(std::string_view v) const {
        const char* data = v.data() ? v.data() : "";  // no pointer would be Null
        sqlite3_result_text64(context_, data, v.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }

    sqlite3_context* context() const { return context_; }
    sqlite3_value* value(int i) const { return values_[i]; }

  private:
    sqlite3_context* context_;
    int count_;
    sqlite3_value** values_;
};

std::size_t length(const Call& call, int i) {
    const std::int64_t n = call.whole(i);
    if (n < 0) {
        throwInvalidArgument();
    }
    return static_cast<std::size_t>(n);
}

// --- dates ---

// Months and what is made of them clip to the last day of the target month.
Datum addMonths(Datum d, std::int64_t months) {
    const Datumsteile parts = zerlegt(d);
    const std::int64_t month = static_cast<std::int64_t>(parts.jahr) * 12 + parts.monat - 1 + months;
    if (month < 100 * 12 || month >= 10000 * 12) {
        throwInvalidArgument();
    }
    const int year = static_cast<int>(month / 12);
    int day = parts.tag;
    while (!istKalendertag(year, static_cast<int>(month % 12) + 1, day))
        --day;
    return DateSerial(year, month % 12 + 1, day) + d.uhrzeitteil();
}

Datum added(std::string_view unit, std::int64_t count, Datum d) {
    if (std::abs(count) > 400'000'000'000) {
        throwOverflow();
    }
    if (unit == "yyyy") return addMonths(d, count * 12);
    if (unit == "q") return addMonths(d, count * 3);
    if (unit == "m") return addMonths(d, count);
    if (unit == "ww") return DateAdd(Einheit::Tag, count * 7, d);
    if (unit == "d" || unit == "y" || unit == "w") return DateAdd(Einheit::Tag, count, d);
    if (unit == "h") return DateAdd(Einheit::Stunde, count, d);
    if (unit == "n") return DateAdd(Einheit::Minute, count, d);
    if (unit == "s") return DateAdd(Einheit::Sekunde, count, d);
    throwInvalidArgument();
}

std::int64_t difference(std::string_view unit, Datum a, Datum b) {
    const auto months = [](Datum d) {
        const Datumsteile parts = zerlegt(d);
        return static_cast<std::int64_t>(parts.jahr) * 12 + parts.monat - 1;
    };
    const auto sundays = [](Datum d) {  // weeks begin on Sunday
        return DateDiff(Einheit::Tag, Datum(), d.datumsteil()) - (Weekday(d) - 1);
    };
    if (unit == "yyyy") return zerlegt(b).jahr - zerlegt(a).jahr;
    if (unit == "q") return months(b) / 3 - months(a) / 3;
    if (unit == "m") return months(b) - months(a);
    if (unit == "ww") return (sundays(b) - sundays(a)) / 7;
    if (unit == "w") return DateDiff(Einheit::Tag, a, b) / 7;
    if (unit == "d" || unit == "y") return DateDiff(Einheit::Tag, a, b);
    if (unit == "h") return DateDiff(Einheit::Stunde, a, b);
    if (unit == "n") return DateDiff(Einheit::Minute, a, b);
    if (unit == "s") return DateDiff(Einheit::Sekunde, a, b);
    throwInvalidArgument();
}

std::int64_t part(std::string_view unit, Datum d) {
    const Datumsteile parts = zerlegt(d);
    if (unit == "yyyy") return parts.jahr;
    if (unit == "q") return (parts.monat + 2) / 3;
    if (unit == "m") return parts.monat;
    if (unit == "y") return DateDiff(Einheit::Tag, DateSerial(parts.jahr, 1, 1), d) + 1;
    if (unit == "d") return parts.tag;
    if (unit == "w") return parts.wochentag;
    if (unit == "h") return parts.stunde;
    if (unit == "n") return parts.minute;
    if (unit == "s") return parts.sekunde;
    throwInvalidArgument();
}

void datePart(const Call& call, int Datumsteile::*member) {
    call.result(static_cast<std::int64_t>(zerlegt(call.moment(0)).*member));
}

// The first day of the week comes as 1 (Sunday) to 7.
void weekday(const Call& call) {
    const std::int64_t first = call.count() > 1 ? std::clamp<std::int64_t>(call.whole(1), 1, 7) : 1;
    call.result((Weekday(call.moment(0)) - first + 7) % 7 + 1);
}

// --- numbers ---

void divide(const Call& call) {
    const double divisor = call.number(1);
    if (divisor == 0) {
        throw sqlError(kDivisionByZero);
    }
    call.result(call.number(0) / divisor);
}

void wholeDivide(const Call& call, bool remainder) {
    const std::int64_t a = call.whole(0);
    const std::int64_t b = call.whole(1);
    if (b == 0) {
        throw sqlError(kDivisionByZero);
    }
    if (b == -1) {  // the processor traps on the one quotient that does not fit
        call.result(remainder ? std::int64_t{0} : a == INT64_MIN ? INT64_MAX : -a);
        return;
    }
    call.result(remainder ? a % b : a / b);
}

void rounded(const Call& call) {
    const std::int64_t places = call.count() > 1 ? std::clamp<std::int64_t>(call.whole(1), 0, 15) : 0;
    const double power = std::pow(10.0, static_cast<double>(places));
    const double scaled = call.number(0) * power;
    call.result(std::abs(scaled) < 1e15 ? std::nearbyint(scaled) / power : call.number(0));
}

void wholePart(const Call& call, double (*cut)(double)) {
    if (call.isWhole(0)) {
        call.result(call.whole(0));
    } else {
        call.result(cut(call.number(0)));
    }
}

void tenThousandths(const Call& call) {
    const double scaled = std::nearbyint(call.number(0) * 10000.0);
    if (!(std::abs(scaled) < 9.2e18)) {
        throwOverflow();
    }
    call.result(static_cast<std::int64_t>(scaled));
}

void wholeSeconds(const Call& call) {
    if (call.isText(0)) {
        call.result(call.moment(0).sekunden());
        return;
    }
    const double seconds = std::round(call.number(0) * 86400.0);
    if (std::abs(seconds) < 9e18) {
        call.result(static_cast<std::int64_t>(seconds));
    } else {
        call.result(seconds);
    }
}

// --- text ---

std::string numberText(const Call& call, int i) {
    return call.isWhole(i) ? std::string(call.text(i)) : zahlAlsText(call.number(i));
}

std::string asText(const Call& call, int i) {
    return call.isText(i) ? std::string(call.text(i)) : numberText(call, i);
}

std::string cutBlanks(std::string_view text, bool left, bool right) {
    while (left && text.starts_with(' '))
        text.remove_prefix(1);
    while (right && text.ends_with(' '))
        text.remove_suffix(1);
    return std::string(text);
}

// Position of the first occurrence without regard to case; start counts from 1.
void inStr(const Call& call) {
    const std::size_t start = length(call, 0);
    if (start == 0) {
        throwInvalidArgument();
    }
    call.result(static_cast<std::int64_t>(InStr(LCase(call.text(1)), LCase(call.text(2)), start)));
}

void like(const Call& call) {
    // The pattern is the same for all rows as a rule: SQLite keeps what was made of it.
    auto* pattern = static_cast<LikePattern*>(sqlite3_get_auxdata(call.context(), 0));
    if (pattern) {
        call.result(std::int64_t{pattern->matches(call.text(1))});
        return;
    }
    auto made = std::make_unique<LikePattern>(call.text(0));
    call.result(std::int64_t{made->matches(call.text(1))});
    sqlite3_set_auxdata(call.context(), 0, made.release(),
                        [](void* p) { delete static_cast<LikePattern*>(p); });
}

bool isNumberPattern(std::string_view pattern) {
    return !pattern.empty() && pattern.find_first_not_of("0#.,%") == std::string_view::npos;
}

// Patterns of digits: "00", "0.00", "#,##0". German separators, as numbers are shown to users.
std::string formatNumber(double value, std::string_view pattern) {
    if (pattern.ends_with('%')) {
        return formatNumber(value * 100, pattern.substr(0, pattern.size() - 1)) + "%";
    }
    const std::size_t point = std::min(pattern.find('.'), pattern.size());
    const std::string_view before = pattern.substr(0, point);
    const auto places = static_cast<int>(pattern.size() - point - (point < pattern.size() ? 1 : 0));
    const auto zeros = static_cast<int>(std::count(before.begin(), before.end(), '0'));
    const double power = std::pow(10.0, std::min(places, 15));
    const double magnitude = std::floor(std::abs(value) * power + 0.5);
    if (!(magnitude < 9e18)) {
        return zahlAlsText(value);
    }
    const auto digits = static_cast<std::int64_t>(magnitude);
    const auto scale = static_cast<std::int64_t>(power);
    std::string whole = digits / scale == 0 && zeros == 0 ? "" : mitNullen(digits / scale, zeros);
    if (before.find(',') != std::string_view::npos) {
        for (int i = static_cast<int>(whole.size()) - 3; i > 0; i -= 3) {
            whole.insert(static_cast<std::size_t>(i), ".");
        }
    }
    if (places > 0) {
        whole += "," + mitNullen(digits % scale, std::min(places, 15));
    }
    return value < 0 && digits != 0 ? "-" + whole : whole;
}

// Value, pattern, and d, n or t for what the value is in the tree.
void format(const Call& call) {
    if (call.isNull(0)) {
        call.result(std::string_view());
        return;
    }
    const std::string_view pattern = call.isNull(1) ? std::string_view() : call.text(1);
    const bool isMoment = call.text(2) == "d";
    if (call.isText(0)) {
        const auto moment =
            isNumberPattern(pattern) || pattern.empty() ? std::nullopt : parseDateLiteral(call.text(0));
        call.result(moment ? Format(*moment, pattern) : std::string(call.text(0)));
    } else if (pattern.empty()) {
        call.result(isMoment ? datumAlsText(call.moment(0)) : numberText(call, 0));
    } else if (isNumberPattern(pattern)) {
        call.result(formatNumber(call.number(0), pattern));
    } else {
        call.result(Format(call.moment(0), pattern));
    }
}

// --- registration ---

using Body = void (*)(const Call&);
struct Entry {
    const char* name;
    int arguments;
    bool acceptsNull;
    Body body;
};

constexpr std::array kEntries{
    Entry{"j_dateadd", 3, false,
          [](const Call& c) { c.result(added(LCase(c.text(0)), c.whole(1), c.moment(2))); }},
    Entry{"j_datediff", 3, false,
          [](const Call& c) { c.result(difference(LCase(c.text(0)), c.moment(1), c.moment(2))); }},
    Entry{"j_datepart", 2, false, [](const Call& c) { c.result(part(LCase(c.text(0)), c.moment(1))); }},
    Entry{"j_year", 1, false, [](const Call& c) { datePart(c, &Datumsteile::jahr); }},
    Entry{"j_month", 1, false, [](const Call& c) { datePart(c, &Datumsteile::monat); }},
    Entry{"j_day", 1, false, [](const Call& c) { datePart(c, &Datumsteile::tag); }},
    Entry{"j_hour", 1, false, [](const Call& c) { datePart(c, &Datumsteile::stunde); }},
    Entry{"j_minute", 1, false, [](const Call& c) { datePart(c, &Datumsteile::minute); }},
    Entry{"j_second", 1, false, [](const Call& c) { datePart(c, &Datumsteile::sekunde); }},
    Entry{"j_weekday", -1, false, weekday},
    Entry{"j_dateserial", 3, false,
          [](const Call& c) { c.result(DateSerial(c.whole(0), c.whole(1), c.whole(2))); }},
    Entry{"j_timeserial", 3, false,
          [](const Call& c) { c.result(TimeSerial(c.whole(0), c.whole(1), c.whole(2))); }},
    Entry{"j_datevalue", 1, false, [](const Call& c) { c.result(c.moment(0).datumsteil()); }},
    Entry{"j_timevalue", 1, false, [](const Call& c) { c.result(c.moment(0).uhrzeitteil()); }},
    Entry{"j_cdate", 1, false, [](const Call& c) { c.result(c.moment(0)); }},
    Entry{"j_datetext", 1, false, [](const Call& c) { c.result(datumAlsText(c.moment(0))); }},
    Entry{"j_sec", 1, false, wholeSeconds},
    Entry{"j_val", 1, false, [](const Call& c) { c.result(c.number(0)); }},
    Entry{"j_cdbl", 1, false, [](const Call& c) { c.result(c.number(0)); }},
    Entry{"j_clng", 1, false, [](const Call& c) { c.result(c.whole(0)); }},
    Entry{"j_tenthousandths", 1, false, tenThousandths},
    Entry{"j_int", 1, false, [](const Call& c) { wholePart(c, [](double x) { return std::floor(x); }); }},
    Entry{"j_fix", 1, false, [](const Call& c) { wholePart(c, [](double x) { return std::trunc(x); }); }},
    Entry{"j_round", -1, false, rounded},
    Entry{"j_div", 2, false, divide},
    Entry{"j_idiv", 2, false, [](const Call& c) { wholeDivide(c, false); }},
    Entry{"j_mod", 2, false, [](const Call& c) { wholeDivide(c, true); }},
    Entry{"j_pow", 2, false, [](const Call& c) { c.result(std::pow(c.number(0), c.number(1))); }},
    Entry{"j_text", 1, false, [](const Call& c) { c.result(asText(c, 0)); }},
    Entry{"j_concat", 2, true,
          [](const Call& c) {
              c.result((c.isNull(0) ? std::string() : asText(c, 0)) +
                       (c.isNull(1) ? std::string() : asText(c, 1)));
          }},
    Entry{"j_len", 1, false,
          [](const Call& c) { c.result(static_cast<std::int64_t>(zeichenzahl(c.text(0)))); }},
    Entry{"j_left", 2, false, [](const Call& c) { c.result(Left(c.text(0), length(c, 1))); }},
    Entry{"j_right", 2, false, [](const Call& c) { c.result(Right(c.text(0), length(c, 1))); }},
    Entry{"j_mid", -1, false,
          [](const Call& c) {
              c.result(c.count() > 2 ? Mid(c.text(0), length(c, 1), length(c, 2))
                                     : Mid(c.text(0), length(c, 1)));
          }},
    Entry{"j_ucase", 1, false, [](const Call& c) { c.result(UCase(c.text(0))); }},
    Entry{"j_lcase", 1, false, [](const Call& c) { c.result(LCase(c.text(0))); }},
    Entry{"j_trim", 1, false, [](const Call& c) { c.result(cutBlanks(c.text(0), true, true)); }},
    Entry{"j_ltrim", 1, false, [](const Call& c) { c.result(cutBlanks(c.text(0), true, false)); }},
    Entry{"j_rtrim", 1, false, [](const Call& c) { c.result(cutBlanks(c.text(0), false, true)); }},
    Entry{"j_instr", 3, false, inStr},
    Entry{"j_like", 2, false, like},
    Entry{"j_format", 3, true, format},
};

// What one registered function needs when it is called; owned by the connection.
struct Registered {
    const Entry* entry;
    FailureSlot* slot;
};

void invoke(sqlite3_context* context, int count, sqlite3_value** values) {
    const auto* registered = static_cast<const Registered*>(sqlite3_user_data(context));
    const Call call(context, count, values);
    for (int i = 0; i < count && !registered->entry->acceptsNull; ++i) {
        if (call.isNull(i)) {
            return;  // the result stays Null
        }
    }
    // No exception may pass through SQLite.
    try {
        registered->entry->body(call);
    } catch (const Fehler& failure) {
        registered->slot->failure = failure;
        sqlite3_result_error(context, failure.what(), -1);
    } catch (const std::exception& failure) {
        sqlite3_result_error(context, failure.what(), -1);
    }
}

}  // namespace

void registerFunctions(sqlite3* connection, FailureSlot& slot) {
    for (const Entry& entry : kEntries) {
        sqlite3_create_function_v2(connection, entry.name, entry.arguments,
                                   SQLITE_UTF8 | SQLITE_DETERMINISTIC, new Registered{&entry, &slot}, invoke,
                                   nullptr, nullptr, [](void* p) { delete static_cast<Registered*>(p); });
    }
}

}  // namespace wendel::jet::sql
