#include <algorithm>
#include <array>
#include <utility>

#include "jet/sql/Errors.h"
#include "jet/sql/StatementTranslator.h"

namespace wendel::jet::sql {
namespace {

// What a function makes of its arguments: n number, d moment, t text, x as it is.
struct FunctionRule {
    std::string_view name;
    std::string_view arguments;  // optional ones behind "|"
    std::string_view sqlName;
    JetType result;
    bool keepsType = false;  // the result has the type of the first argument
};

constexpr std::array kFunctions{
    FunctionRule{"dateadd", "tnd", "j_dateadd", JetType::Date},
    FunctionRule{"datediff", "tdd", "j_datediff", JetType::Long},
    FunctionRule{"datepart", "td", "j_datepart", JetType::Integer},
    FunctionRule{"year", "d", "j_year", JetType::Integer},
    FunctionRule{"month", "d", "j_month", JetType::Integer},
    FunctionRule{"day", "d", "j_day", JetType::Integer},
    FunctionRule{"hour", "d", "j_hour", JetType::Integer},
    FunctionRule{"minute", "d", "j_minute", JetType::Integer},
    FunctionRule{"second", "d", "j_second", JetType::Integer},
    FunctionRule{"weekday", "d|n", "j_weekday", JetType::Integer},
    FunctionRule{"dateserial", "nnn", "j_dateserial", JetType::Date},
    FunctionRule{"timeserial", "nnn", "j_timeserial", JetType::Date},
    FunctionRule{"datevalue", "d", "j_datevalue", JetType::Date},
    FunctionRule{"timevalue", "d", "j_timevalue", JetType::Date},
    FunctionRule{"val", "t", "j_val", JetType::Double},
    FunctionRule{"len", "t", "j_len", JetType::Long},
    FunctionRule{"left", "tn", "j_left", JetType::Text},
    FunctionRule{"right", "tn", "j_right", JetType::Text},
    FunctionRule{"mid", "tn|n", "j_mid", JetType::Text},
    FunctionRule{"ucase", "t", "j_ucase", JetType::Text},
    FunctionRule{"lcase", "t", "j_lcase", JetType::Text},
    FunctionRule{"trim", "t", "j_trim", JetType::Text},
    FunctionRule{"ltrim", "t", "j_ltrim", JetType::Text},
    FunctionRule{"rtrim", "t", "j_rtrim", JetType::Text},
    FunctionRule{"cstr", "t", "j_text", JetType::Text},
    FunctionRule{"int", "n", "j_int", JetType::Double, true},
    FunctionRule{"fix", "n", "j_fix", JetType::Double, true},
    FunctionRule{"abs", "n", "abs", JetType::Double, true},
    FunctionRule{"sgn", "n", "sign", JetType::Integer},
    FunctionRule{"round", "n|n", "j_round", JetType::Double, true},
    FunctionRule{"cint", "n", "j_clng", JetType::Integer},
    FunctionRule{"clng", "n", "j_clng", JetType::Long},
    FunctionRule{"cdbl", "n", "j_cdbl", JetType::Double},
    FunctionRule{"csng", "n", "j_cdbl", JetType::Single},
    FunctionRule{"ccur", "n", "j_cdbl", JetType::Currency},
    FunctionRule{"cdate", "d", "j_cdbl", JetType::Date},
};

[[noreturn]] void wrongArguments(const Call& node) { throw sqlError(kExpressionSyntax, node.name + "(...)"); }

}  // namespace

bool isAggregate(std::string_view name) {
    const std::string lower = LCase(name);
    return lower == "count" || lower == "sum" || lower == "avg" || lower == "min" || lower == "max";
}

Value StatementTranslator::call(const Call& node, Context& context) {
    const std::string name = LCase(node.name);
    if (isAggregate(name)) {
        return aggregate(node, context);
    }
    if (node.star) {
        wrongArguments(node);
    }
    if (name == "now" || name == "date" || name == "time") {
        if (!node.arguments.empty()) {
            wrongArguments(node);
        }
        return moment(name == "now" ? jetzt_ : name == "date" ? jetzt_.datumsteil() : jetzt_.uhrzeitteil());
    }
    if (name == "iif") return iif(node, context);
    if (name == "nz") return nz(node, context);
    if (name == "instr") return inStr(node, context);
    if (name == "format") return format(node, context);
    if (name == "isnull" && node.arguments.size() == 1) {
        return Value{"(-(" + atom(value(*node.arguments[0], context)) + " IS NULL))", JetType::Boolean,
                     kAtom};
    }
    const auto rule = std::find_if(kFunctions.begin(), kFunctions.end(),
                                   [&](const FunctionRule& r) { return r.name == name; });
    if (rule == kFunctions.end()) {
        throw sqlError(kUnknownFunction, node.name);
    }
    const std::size_t required = std::min(rule->arguments.find('|'), rule->arguments.size());
    const std::string kinds = ersetzt(rule->arguments, "|", "");
    if (node.arguments.size() < required || node.arguments.size() > kinds.size()) {
        wrongArguments(node);
    }
    std::string sql = std::string(rule->sqlName) + "(";
    JetType type = rule->result;
    for (std::size_t i = 0; i < node.arguments.size(); ++i) {
        const Value argument = value(*node.arguments[i], context);
        sql += i ? "," : "";
        sql += kinds[i] == 't'   ? text(argument)
               : kinds[i] == 'd' ? momentNumber(argument)
                                 : number(argument, kLoose);
        if (i == 0 && rule->keepsType && !isText(argument.type) && argument.type != JetType::Decimal) {
            type = argument.type;
        }
    }
    return Value{sql + ")", type, kAtom};
}

Value StatementTranslator::aggregate(const Call& node, Context& context) {
    if (!context.aggregatesAllowed || context.insideAggregate) {
        throw sqlError(kAggregateInWhere, node.name);
    }
    context.hasAggregate = true;
    const std::string name = LCase(node.name);
    if (node.star && name == "count") {
        return Value{"count(*)", JetType::Long, kAtom};
    }
    if (node.star || node.arguments.size() != 1) {
        wrongArguments(node);
    }
    context.insideAggregate = true;
    const Value argument = value(*node.arguments[0], context);
    context.insideAggregate = false;
    if (name == "count") {
        return Value{"count(" + argument.sql + ")", JetType::Long, kAtom};
    }
    if (name == "min" || name == "max") {
        const bool decimal = argument.type == JetType::Decimal;
        return Value{name + "(" + (decimal ? number(argument) : collated(argument)) + ")",
                     decimal ? JetType::Double : argument.type, kAtom, argument.scaled};
    }
    if (isText(argument.type) || argument.type == JetType::Guid) {
        throw sqlError(kTypeMismatch);
    }
    if (name == "sum" && argument.scaled) {
        return Value{"sum(" + argument.sql + ")", JetType::Currency, kAtom, true};
    }
    const JetType type = argument.type == JetType::Currency        ? JetType::Currency
                         : name == "sum" && isWhole(argument.type) ? JetType::Long
                                                                   : JetType::Double;
    return Value{name + "(" + number(argument, kLoose) + ")", type, kAtom};
}

Value StatementTranslator::iif(const Call& node, Context& context) {
    if (node.arguments.size() != 3) {
        wrongArguments(node);
    }
    std::string yes, no;
    Value result = merged(value(*node.arguments[1], context), value(*node.arguments[2], context), yes, no);
    result.sql =
        "CASE WHEN " + condition(*node.arguments[0], context) + " THEN " + yes + " ELSE " + no + " END";
    result.tightness = kLoose;
    return result;
}

// Without a second argument Null becomes "", or 0 where the value is a number.
Value StatementTranslator::nz(const Call& node, Context& context) {
    if (node.arguments.empty() || node.arguments.size() > 2) {
        wrongArguments(node);
    }
    const Value tested = value(*node.arguments[0], context);
    const bool textual = isText(tested.type) || tested.type == JetType::Null;
    const Value empty =
        textual ? Value{"''", JetType::Text, kAtom} : Value{"0", tested.type, kAtom, tested.scaled};
    const Value other = node.arguments.size() == 2 ? value(*node.arguments[1], context) : empty;
    std::string first, second;
    Value result = merged(tested, other, first, second);
    result.sql = "coalesce(" + first + "," + second + ")";
    return result;
}

Value StatementTranslator::inStr(const Call& node, Context& context) {
    const std::size_t count = node.arguments.size();
    if (count != 2 && count != 3) {
        wrongArguments(node);
    }
    const std::string start = count == 3 ? number(value(*node.arguments[0], context), kLoose) : "1";
    return Value{"j_instr(" + start + "," + text(value(*node.arguments[count - 2], context)) + "," +
                     text(value(*node.arguments[count - 1], context)) + ")",
                 JetType::Long, kAtom};
}

Value StatementTranslator::format(const Call& node, Context& context) {
    if (node.arguments.empty() || node.arguments.size() > 2) {
        wrongArguments(node);
    }
    const Value formatted = value(*node.arguments[0], context);
    const std::string pattern =
        node.arguments.size() == 2 ? text(value(*node.arguments[1], context)) : std::string("''");
    const char* kind = isMoment(formatted.type) ? "'d'" : isText(formatted.type) ? "'t'" : "'n'";
    const std::string sql =
        isText(formatted.type) || formatted.type == JetType::Null ? formatted.sql : number(formatted, kLoose);
    return Value{"j_format(" + sql + "," + pattern + "," + kind + ")", JetType::Text, kAtom};
}

}  // namespace wendel::jet::sql
