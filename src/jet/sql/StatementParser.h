#pragma once
// The class behind parse(), for the files that share its work: Parser.cpp tokens, selects and expressions,
// ParserChanges.cpp the statements that change the database. Nobody else includes this.

#include <algorithm>
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/Ast.h"
#include "jet/sql/Errors.h"
#include "jet/sql/Lexer.h"

namespace wendel::jet::sql {

// Both bounds together keep every walk over the tree within a small stack.
inline constexpr int kMaxExpressionDepth = 120;
inline constexpr int kMaxNesting = 60;  // brackets and prefixes, counted while parsing
inline constexpr int kMaxSelectDepth = 10;

// A name as it may stand without brackets, or one in brackets.
bool isName(const Token& token);

class Parser {
  public:
    Parser(std::string_view text, int selectDepth) : lexer_(text), selectDepth_(selectDepth) {}

    Statement statement();
    // A whole text that is one select and nothing else: the inside of "[ select ... ]. as t".
    SelectPtr wholeSelect();

  private:
    // Counts nesting while it lives.
    class Level {
      public:
        Level(int& counter, int most) : counter_(counter) {
            if (++counter_ > most) {
                --counter_;
                throw sqlError(kTooComplex);
            }
        }
        ~Level() { --counter_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

      private:
        int& counter_;
    };

    const Token& peek(std::size_t n = 0);
    Token take();
    bool takeKeyword(std::string_view word);
    bool takeSymbol(std::string_view symbol);
    void expectSymbol(std::string_view symbol, int error);
    void expectKeyword(std::string_view word, int error);
    [[noreturn]] void expressionError();

    Insert insertStatement();
    Update updateStatement();
    Delete deleteStatement();
    Statement createStatement();
    Statement dropStatement();
    CreateTable createTable();
    CreateIndex createIndex(bool unique);
    void tableElement(CreateTable& table);
    void columnDefinition(CreateTable& table);
    void columnConstraints(CreateTable& table, ColumnDefinition& column);
    void tableConstraint(CreateTable& table);
    std::vector<IndexField> indexFields(int error);
    int number(int error);
    std::string name(int error);
    std::vector<std::string> names(int error);

    SelectPtr select();
    void selectItems(Select& select);
    SelectItem selectItem();
    std::vector<FromPtr> fromClause();
    FromPtr joinedTables();
    FromPtr tablePrimary();
    FromPtr bracketedSelect();
    FromPtr parenthesized();
    std::string requiredAlias();
    void groupByClause(Select& select);
    void orderByClause(Select& select);

    // Sets where an expression begins, for the text of its syntax error; then parses it.
    ExprPtr expression();
    ExprPtr impExpression();
    ExprPtr orExpression();
    ExprPtr andExpression();
    ExprPtr notExpression();
    ExprPtr comparison();
    ExprPtr comparisonTail(ExprPtr left, bool& more);
    ExprPtr inTail(ExprPtr value, bool negated);
    ExprPtr concatenation();
    ExprPtr sum();
    ExprPtr modulus();
    ExprPtr intQuotient();
    ExprPtr product();
    ExprPtr unary();
    ExprPtr power();
    ExprPtr primary();
    ExprPtr nameOrCall();
    ExprPtr call(std::string name);
    ExprPtr parenthesizedExpression();

    template <class Node>
    ExprPtr make(Node node, int childDepth = 0) {
        if (childDepth >= kMaxExpressionDepth) {
            throw sqlError(kTooComplex);
        }
        return std::make_unique<Expr>(Expr{std::move(node), childDepth + 1});
    }
    ExprPtr binary(BinaryOp op, ExprPtr left, ExprPtr right);
    ExprPtr logic(LogicOp op, std::vector<ExprPtr> operands);

    Lexer lexer_;
    std::deque<Token> ahead_;
    std::size_t expressionBegin_ = 0;
    int nesting_ = 0;
    int selectDepth_;
};

}  // namespace wendel::jet::sql
