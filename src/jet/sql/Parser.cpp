#include "jet/sql/Parser.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "jet/sql/StatementParser.h"

namespace wendel::jet::sql {
namespace {

constexpr std::array<std::string_view, 38> kReserved{
    "select", "from", "where",  "group",    "order",  "having", "inner",  "left",  "right", "outer",
    "join",   "on",   "as",     "and",      "or",     "not",    "xor",    "eqv",   "imp",   "in",
    "like",   "is",   "null",   "distinct", "by",     "asc",    "desc",   "true",  "false", "mod",
    "union",  "set",  "values", "between",  "exists", "into",   "update", "delete"};

bool isReserved(const Token& token) {
    return std::any_of(kReserved.begin(), kReserved.end(),
                       [&](std::string_view word) { return token.isKeyword(word); });
}
bool startsWithSelect(std::string_view text) {
    try {
        return Lexer(text).next().isKeyword("select");
    } catch (const Fehler&) {
        return false;  // no token at all: then it is no statement either
    }
}

}  // namespace

bool isName(const Token& token) {
    return token.kind == TokenKind::Bracket || (token.kind == TokenKind::Name && !isReserved(token));
}

// --- tokens ---

const Token& Parser::peek(std::size_t n) {
    while (ahead_.size() <= n) {
        ahead_.push_back(lexer_.next());
    }
    return ahead_[n];
}

Token Parser::take() {
    peek();
    Token token = std::move(ahead_.front());
    ahead_.pop_front();
    return token;
}

bool Parser::takeKeyword(std::string_view word) {
    if (!peek().isKeyword(word)) {
        return false;
    }
    take();
    return true;
}

bool Parser::takeSymbol(std::string_view symbol) {
    if (!peek().isSymbol(symbol)) {
        return false;
    }
    take();
    return true;
}

void Parser::expectSymbol(std::string_view symbol, int error) {
    if (takeSymbol(symbol)) {
        return;
    }
    if (error == kExpressionSyntax) {
        expressionError();
    }
    throw sqlError(error);
}

void Parser::expectKeyword(std::string_view word, int error) {
    if (!takeKeyword(word)) {
        throw sqlError(error);
    }
}

// Shows the expression up to and with the token that does not fit.
void Parser::expressionError() {
    const std::size_t end = std::max(peek().end, expressionBegin_);
    throw sqlError(kExpressionSyntax, lexer_.text().substr(expressionBegin_, end - expressionBegin_));
}

// --- statements and clauses ---

Statement Parser::statement() {
    struct Kind {
        std::string_view word;
        int error;  // for text behind what could be read
        Statement (*parse)(Parser&);
    };
    static constexpr std::array kKinds{
        Kind{"select", kSelectSyntax, [](Parser& p) { return Statement{p.select()}; }},
        Kind{"insert", kInsertSyntax, [](Parser& p) { return Statement{p.insertStatement()}; }},
        Kind{"update", kUpdateSyntax, [](Parser& p) { return Statement{p.updateStatement()}; }},
        Kind{"delete", kFromSyntax, [](Parser& p) { return Statement{p.deleteStatement()}; }},
        Kind{"create", kCreateTableSyntax, [](Parser& p) { return p.createStatement(); }},
        Kind{"drop", kDropSyntax, [](Parser& p) { return p.dropStatement(); }},
    };
    const auto kind =
        std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& k) { return peek().isKeyword(k.word); });
    if (kind == kKinds.end()) {
        throw sqlError(kNoStatement);
    }
    Statement result = kind->parse(*this);
    if (takeSymbol(";") && peek().kind != TokenKind::End) {
        throw sqlError(kTextAfterEnd);
    }
    if (peek().kind != TokenKind::End) {
        throw sqlError(kind->error);
    }
    return result;
}

SelectPtr Parser::wholeSelect() {
    SelectPtr result = select();
    if (peek().kind != TokenKind::End) {
        throw sqlError(kFromSyntax);
    }
    return result;
}

SelectPtr Parser::select() {
    const Level level(selectDepth_, kMaxSelectDepth);
    expectKeyword("select", kSelectSyntax);
    auto result = std::make_unique<Select>();
    result->distinct = takeKeyword("distinct");
    selectItems(*result);
    if (takeKeyword("from")) {
        result->from = fromClause();
    }
    if (takeKeyword("where")) {
        result->where = expression();
    }
    groupByClause(*result);
    if (takeKeyword("having")) {
        result->having = expression();
    }
    orderByClause(*result);
    const Token& next = peek();
    if (next.kind != TokenKind::End && !next.isSymbol(";") && !next.isSymbol(")")) {
        if (result->orderBy.empty() && (result->where || !result->groupBy.empty() || result->having)) {
            expressionError();
        }
        throw sqlError(!result->orderBy.empty() ? kOrderBySyntax
                       : result->from.empty()   ? kSelectSyntax
                                                : kFromSyntax);
    }
    return result;
}

void Parser::selectItems(Select& select) {
    do {
        select.items.push_back(selectItem());
    } while (takeSymbol(","));
}

SelectItem Parser::selectItem() {
    SelectItem item;
    if (takeSymbol("*")) {
        return item;
    }
    if (isName(peek()) && peek(1).isSymbol(".") && peek(2).isSymbol("*")) {
        item.starTable = take().text;
        take();
        take();
        return item;
    }
    const Token& first = peek();
    if (first.kind == TokenKind::End || first.isKeyword("from") || first.isSymbol(",")) {
        throw sqlError(kSelectSyntax);
    }
    item.value = expression();
    if (takeKeyword("as")) {
        item.alias = requiredAlias();
    } else if (isName(peek())) {
        item.alias = take().text;
    }
    const Token& next = peek();
    const bool fits = next.kind == TokenKind::End || next.isSymbol(",") || next.isSymbol(";") ||
                      next.isSymbol(")") || isReserved(next);
    if (!fits) {
        expressionError();
    }
    return item;
}

std::string Parser::requiredAlias() {
    if (!isName(peek())) {
        throw sqlError(kSelectSyntax);
    }
    return take().text;
}

std::vector<FromPtr> Parser::fromClause() {
    std::vector<FromPtr> result;
    do {
        result.push_back(joinedTables());
    } while (takeSymbol(","));
    return result;
}

FromPtr Parser::joinedTables() {
    const Level level(nesting_, kMaxNesting);
    FromPtr left = tablePrimary();
    for (int joins = 0;; ++joins) {
        JoinKind kind;
        if (takeKeyword("inner")) {
            kind = JoinKind::Inner;
        } else if (takeKeyword("left")) {
            kind = JoinKind::Left;
            takeKeyword("outer");
        } else if (takeKeyword("right")) {
            kind = JoinKind::Right;
            takeKeyword("outer");
        } else if (peek().isKeyword("join") || joins > kMaxNesting) {
            throw sqlError(joins > kMaxNesting ? kTooComplex : kFromSyntax);
        } else {
            return left;
        }
        expectKeyword("join", kFromSyntax);
        FromPtr right = tablePrimary();
        expectKeyword("on", kJoinSyntax);
        Join join{kind, std::move(left), std::move(right), expression()};
        left = std::make_unique<FromItem>(FromItem{std::move(join)});
    }
}

FromPtr Parser::tablePrimary() {
    if (takeSymbol("(")) {
        return parenthesized();
    }
    if (peek().kind == TokenKind::Bracket && startsWithSelect(peek().text)) {
        return bracketedSelect();
    }
    if (!isName(peek())) {
        throw sqlError(kFromSyntax);
    }
    TableName table{take().text, {}};
    if (takeKeyword("as")) {
        if (!isName(peek())) {
            throw sqlError(kFromSyntax);
        }
        table.alias = take().text;
    } else if (isName(peek())) {
        table.alias = take().text;
    }
    return std::make_unique<FromItem>(FromItem{std::move(table)});
}

// "[ select ... ]. as t1": one bracketed name to the lexer, since no bracket stands inside.
FromPtr Parser::bracketedSelect() {
    const std::string inside = take().text;
    expectSymbol(".", kFromSyntax);
    takeKeyword("as");
    if (!isName(peek())) {
        throw sqlError(kFromSyntax);
    }
    const std::string alias = take().text;
    return std::make_unique<FromItem>(
        FromItem{DerivedTable{Parser(inside, selectDepth_).wholeSelect(), alias}});
}

FromPtr Parser::parenthesized() {
    if (!peek().isKeyword("select")) {
        FromPtr inside = joinedTables();
        expectSymbol(")", kFromSyntax);
        return inside;
    }
    DerivedTable derived{select(), {}};
    expectSymbol(")", kFromSyntax);
    takeKeyword("as");
    if (!isName(peek())) {
        throw sqlError(kFromSyntax);
    }
    derived.alias = take().text;
    return std::make_unique<FromItem>(FromItem{std::move(derived)});
}

void Parser::groupByClause(Select& select) {
    if (!takeKeyword("group")) {
        return;
    }
    expectKeyword("by", kGroupBySyntax);
    do {
        select.groupBy.push_back(expression());
    } while (takeSymbol(","));
}

void Parser::orderByClause(Select& select) {
    if (!takeKeyword("order")) {
        return;
    }
    expectKeyword("by", kOrderBySyntax);
    do {
        if (peek().kind == TokenKind::End || peek().isSymbol(";")) {
            throw sqlError(kOrderBySyntax);
        }
        OrderItem item{expression()};
        item.descending = takeKeyword("desc");
        if (!item.descending) {
            takeKeyword("asc");
        }
        select.orderBy.push_back(std::move(item));
    } while (takeSymbol(","));
}

// --- expressions, loosest operator first ---

namespace {

int depthOf(const ExprPtr& e) { return e ? e->depth : 0; }

// x 10 000 as a whole number, where that is exact.
std::optional<std::int64_t> tenThousandths(double value) {
    const double scaled = std::round(value * 10000.0);
    if (std::abs(scaled) >= 9e15 || scaled / 10000.0 != value) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(scaled);
}

}  // namespace

ExprPtr Parser::binary(BinaryOp op, ExprPtr left, ExprPtr right) {
    const int depth = std::max(depthOf(left), depthOf(right));
    return make(Binary{op, std::move(left), std::move(right)}, depth);
}

ExprPtr Parser::logic(LogicOp op, std::vector<ExprPtr> operands) {
    if (operands.size() == 1) {
        return std::move(operands.front());
    }
    int depth = 0;
    for (const ExprPtr& operand : operands) {
        depth = std::max(depth, operand->depth);
    }
    return make(Logic{op, std::move(operands)}, depth);
}

ExprPtr Parser::expression() {
    const Level level(nesting_, kMaxNesting);
    if (nesting_ == 1) {
        expressionBegin_ = peek().begin;
    }
    return impExpression();
}

ExprPtr Parser::impExpression() {
    ExprPtr left = orExpression();
    for (;;) {
        BinaryOp op;
        if (takeKeyword("xor")) {
            op = BinaryOp::Xor;
        } else if (takeKeyword("eqv")) {
            op = BinaryOp::Eqv;
        } else if (takeKeyword("imp")) {
            op = BinaryOp::Imp;
        } else {
            return left;
        }
        left = binary(op, std::move(left), orExpression());
    }
}

ExprPtr Parser::orExpression() {
    std::vector<ExprPtr> operands;
    do {
        operands.push_back(andExpression());
    } while (takeKeyword("or"));
    return logic(LogicOp::Or, std::move(operands));
}

ExprPtr Parser::andExpression() {
    std::vector<ExprPtr> operands;
    do {
        operands.push_back(notExpression());
    } while (takeKeyword("and"));
    return logic(LogicOp::And, std::move(operands));
}

ExprPtr Parser::notExpression() {
    if (!takeKeyword("not")) {
        return comparison();
    }
    const Level level(nesting_, kMaxNesting);
    ExprPtr operand = notExpression();
    const int depth = operand->depth;
    return make(Unary{UnaryOp::Not, std::move(operand)}, depth);
}

ExprPtr Parser::comparison() {
    ExprPtr left = concatenation();
    bool more = true;
    while (more) {
        left = comparisonTail(std::move(left), more);
    }
    return left;
}

ExprPtr Parser::comparisonTail(ExprPtr left, bool& more) {
    static constexpr std::array<std::pair<std::string_view, CompareOp>, 6> kOperators{
        {{"=", CompareOp::Equal},
         {"<>", CompareOp::NotEqual},
         {"<=", CompareOp::LessEqual},
         {">=", CompareOp::GreaterEqual},
         {"<", CompareOp::Less},
         {">", CompareOp::Greater}}};
    for (const auto& [symbol, op] : kOperators) {
        if (takeSymbol(symbol)) {
            ExprPtr right = concatenation();
            const int depth = std::max(left->depth, right->depth);
            return make(Compare{op, std::move(left), std::move(right)}, depth);
        }
    }
    if (takeKeyword("is")) {
        const bool negated = takeKeyword("not");
        if (!takeKeyword("null")) {
            expressionError();
        }
        const int depth = left->depth;
        return make(IsNull{negated, std::move(left)}, depth);
    }
    const bool negated = peek().isKeyword("not") && (peek(1).isKeyword("in") || peek(1).isKeyword("like") ||
                                                     peek(1).isKeyword("between"));
    if (negated) {
        take();
    }
    if (takeKeyword("in")) {
        return inTail(std::move(left), negated);
    }
    if (takeKeyword("like")) {
        ExprPtr pattern = concatenation();
        const int depth = std::max(left->depth, pattern->depth);
        return make(LikeExpr{negated, std::move(left), std::move(pattern)}, depth);
    }
    if (takeKeyword("between")) {
        ExprPtr low = concatenation();
        if (!takeKeyword("and")) {
            expressionError();
        }
        ExprPtr high = concatenation();
        const int depth = std::max({left->depth, low->depth, high->depth});
        return make(Between{negated, std::move(left), std::move(low), std::move(high)}, depth);
    }
    more = false;
    return left;
}

ExprPtr Parser::inTail(ExprPtr value, bool negated) {
    expectSymbol("(", kExpressionSyntax);
    if (peek().isKeyword("select")) {
        const int depth = value->depth;
        SelectPtr inner = select();
        expectSymbol(")", kExpressionSyntax);
        return make(InSelect{negated, std::move(value), std::move(inner)}, depth);
    }
    InList list{negated, std::move(value), {}};
    int depth = list.value->depth;
    do {
        if (peek().kind == TokenKind::Whole && (peek(1).isSymbol(",") || peek(1).isSymbol(")"))) {
            list.wholes.push_back(take().whole);
        } else {
            list.items.push_back(expression());
            depth = std::max(depth, list.items.back()->depth);
        }
    } while (takeSymbol(","));
    expectSymbol(")", kExpressionSyntax);
    return make(std::move(list), depth);
}

ExprPtr Parser::concatenation() {
    ExprPtr left = sum();
    while (takeSymbol("&")) {
        left = binary(BinaryOp::Concat, std::move(left), sum());
    }
    return left;
}

ExprPtr Parser::sum() {
    ExprPtr left = modulus();
    for (;;) {
        if (takeSymbol("+")) {
            left = binary(BinaryOp::Add, std::move(left), modulus());
        } else if (takeSymbol("-")) {
            left = binary(BinaryOp::Subtract, std::move(left), modulus());
        } else {
            return left;
        }
    }
}

ExprPtr Parser::modulus() {
    ExprPtr left = intQuotient();
    while (takeKeyword("mod")) {
        left = binary(BinaryOp::Mod, std::move(left), intQuotient());
    }
    return left;
}

ExprPtr Parser::intQuotient() {
    ExprPtr left = product();
    while (takeSymbol("\\")) {
        left = binary(BinaryOp::IntDivide, std::move(left), product());
    }
    return left;
}

ExprPtr Parser::product() {
    ExprPtr left = unary();
    for (;;) {
        if (takeSymbol("*")) {
            left = binary(BinaryOp::Multiply, std::move(left), unary());
        } else if (takeSymbol("/")) {
            left = binary(BinaryOp::Divide, std::move(left), unary());
        } else {
            return left;
        }
    }
}

ExprPtr Parser::unary() {
    const bool minus = peek().isSymbol("-");
    if (!minus && !peek().isSymbol("+")) {
        return power();
    }
    take();
    const Level level(nesting_, kMaxNesting);
    ExprPtr operand = unary();
    const int depth = operand->depth;
    return make(Unary{minus ? UnaryOp::Minus : UnaryOp::Plus, std::move(operand)}, depth);
}

ExprPtr Parser::power() {
    ExprPtr left = primary();
    while (takeSymbol("^")) {
        ExprPtr right = peek().isSymbol("-") || peek().isSymbol("+") ? unary() : primary();
        left = binary(BinaryOp::Power, std::move(left), std::move(right));
    }
    return left;
}

ExprPtr Parser::primary() {
    const Token& token = peek();
    switch (token.kind) {
        case TokenKind::Text: return make(TextLiteral{take().text});
        case TokenKind::Date: return make(DateLiteral{take().moment});
        case TokenKind::Whole: return make(WholeLiteral{take().whole});
        case TokenKind::Real: {
            const double value = take().real;
            return make(RealLiteral{value, tenThousandths(value)});
        }
        case TokenKind::Bracket: return nameOrCall();
        case TokenKind::Name: break;
        case TokenKind::Symbol:
            if (takeSymbol("(")) {
                return parenthesizedExpression();
            }
            expressionError();
        case TokenKind::End: expressionError();
    }
    if (takeKeyword("true")) {
        return make(BoolLiteral{true});
    }
    if (takeKeyword("false")) {
        return make(BoolLiteral{false});
    }
    if (takeKeyword("null")) {
        return make(NullLiteral{});
    }
    if (peek().isKeyword("exists") && peek(1).isSymbol("(") && peek(2).isKeyword("select")) {
        take();
        take();
        SelectPtr inner = select();
        expectSymbol(")", kExpressionSyntax);
        return make(Exists{std::move(inner)});
    }
    return nameOrCall();
}

ExprPtr Parser::parenthesizedExpression() {
    if (peek().isKeyword("select")) {
        SelectPtr inner = select();
        expectSymbol(")", kExpressionSyntax);
        return make(ScalarSelect{std::move(inner)});
    }
    ExprPtr inner = expression();
    expectSymbol(")", kExpressionSyntax);
    return inner;
}

ExprPtr Parser::nameOrCall() {
    const bool callable = peek().kind == TokenKind::Name && peek(1).isSymbol("(");
    const bool functionNamedAsKeyword = callable && (peek().isKeyword("left") || peek().isKeyword("right"));
    if (!isName(peek()) && !functionNamedAsKeyword) {
        expressionError();
    }
    std::string first = take().text;
    if (callable) {
        return call(std::move(first));
    }
    if (!takeSymbol(".") && !takeSymbol("!")) {
        return make(ColumnRef{{}, std::move(first)});
    }
    // Behind the point even a reserved word is a name.
    if (peek().kind != TokenKind::Name && peek().kind != TokenKind::Bracket) {
        expressionError();
    }
    return make(ColumnRef{std::move(first), take().text});
}

ExprPtr Parser::call(std::string name) {
    take();  // "("
    Call result;
    result.name = std::move(name);
    int depth = 0;
    if (peek().isSymbol("*") && peek(1).isSymbol(")")) {
        take();
        result.star = true;
    } else if (!peek().isSymbol(")")) {
        do {
            result.arguments.push_back(expression());
            depth = std::max(depth, result.arguments.back()->depth);
        } while (takeSymbol(","));
    }
    expectSymbol(")", kExpressionSyntax);
    return make(std::move(result), depth);
}

Statement parse(std::string_view text) { return Parser(text, 0).statement(); }

}  // namespace wendel::jet::sql
