#pragma once
// The class behind translate(), for the files that share its work: Translator.cpp the statement and its
// clauses, Changes.cpp what writes, Expressions.cpp what stands in them, Calls.cpp the functions. Nobody else
// includes this.

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "jet/sql/Translator.h"
#include "jet/sql/Value.h"
#include "platform/Text.h"

namespace wendel::jet::sql {

// One of Count, Sum, Avg, Min, Max.
bool isAggregate(std::string_view name);

// A table in the From clause as its columns are reached.
struct Source {
    std::string name;   // as statements call it
    std::string alias;  // in the SQL
    std::vector<SchemaColumn> columns;
    bool isTable = false;
    std::string table;  // its name in the file, where it is one
    std::string sql;    // what stands in the From clause for it
};
struct Scope {
    const Scope* outer = nullptr;
    std::vector<Source> sources;
};

// One select as SQL, its columns named c0, c1, ...
struct SelectSql {
    std::string sql;
    std::vector<SchemaColumn> columns;
    // As in Translation; filled where the identity of the rows was wanted and they have one.
    std::string table{};
    std::vector<std::optional<std::size_t>> tableColumns{};
};

class StatementTranslator {
  public:
    StatementTranslator(Schema& schema, Datum jetzt) : schema_(schema), jetzt_(jetzt) {}

    Translation translated(const Select& whole);
    Change change(const Insert& insert);
    Change change(const Update& update);
    Change change(const Delete& deletion);

  private:
    struct Item {
        const Expr* expr;  // null for a column of a star
        Value value;
        std::string name;
        std::string qualifiedName;  // of a column without alias
    };

    // The select whose expressions are being written.
    struct Context {
        Scope scope;
        bool aggregatesAllowed = true;
        bool insideAggregate = false;
        bool hasAggregate = false;
    };

    // inner: the result is compared again outside, and its columns keep their collation.
    SelectSql select(const Select& select, const Context* outer, bool inner);
    std::string fromAndWhere(const std::vector<FromPtr>& tables, const ExprPtr& where, Context& context);
    std::string from(const FromItem& item, Context& context, std::size_t& source);
    std::string bracketedJoin(const FromItem& item, Context& context, std::size_t& source);
    static std::optional<std::size_t> columnOf(const Source& source, const Value& value);
    void requireKnownNames() const;
    Change insertedSelect(const Insert& insert, const SchemaTable& table);
    Change insertedValues(const Insert& insert, const SchemaTable& table);
    // One assignment of an Update, its column by source and position.
    struct Set {
        std::size_t source, column;
        const Expr* value;
    };
    std::optional<std::pair<std::size_t, std::size_t>> assigned(const ColumnRef& column,
                                                                const Context& context);
    std::vector<Set> setsOf(const Update& update, Context& context);
    void collectSources(const FromItem& item, Context& context);
    std::vector<Item> items(const Select& select, Context& context);
    void addStar(const Source& source, std::vector<Item>& items);
    static void nameItems(std::vector<Item>& items);
    std::string orderBy(const Select& select, const std::vector<Item>& items, Context& context);
    std::string orderTerm(const OrderItem& order, const Select& select, const std::vector<Item>& items,
                          Context& context);
    void checkGrouping(const Select& select, Context& context);
    void checkGrouped(const Expr& expr, const std::set<std::string>& groups, Context& context);
    static std::string finished(const Item& item, bool keepCollation);

    // Every expression's SQL passes through here. Some of it is written twice, and groups are compared as
    // SQL, so that nested conditions or selects could grow without bound; throws Fehler 3360 then.
    Value counted(Value v);
    Value value(const Expr& expr, Context& context);
    std::string condition(const Expr& expr, Context& context);
    // A condition as SQLite's truth value, or (type not Boolean) a number as it is.
    Value truth(const Expr& expr, Context& context);

    Value literal(const WholeLiteral& node);
    Value literal(const RealLiteral& node);
    Value moment(Datum moment);
    Value column(const ColumnRef& node, Context& context);
    std::optional<Value> findColumn(const ColumnRef& node, const Context& context, bool firstOfMany);
    Value unary(const Unary& node, Context& context);
    Value binary(const Binary& node, Context& context);
    Value sum(BinaryOp op, const Value& left, const Value& right);
    Value product(const Value& left, const Value& right);
    Value logicOnBits(const Binary& node, Context& context);
    Value logic(const Logic& node, Context& context);
    Value like(const LikeExpr& node, Context& context);
    Value inList(const InList& node, Context& context);
    Value inSelect(const InSelect& node, Context& context);
    Value call(const Call& node, Context& context);
    Value aggregate(const Call& node, Context& context);
    Value iif(const Call& node, Context& context);
    Value nz(const Call& node, Context& context);
    Value inStr(const Call& node, Context& context);
    Value format(const Call& node, Context& context);
    Value scalar(const ScalarSelect& node, Context& context);

    std::string compare(CompareOp op, const Value& left, const Value& right);

    Schema& schema_;
    Datum jetzt_;
    int aliases_ = 0;
    bool identityWanted_ = false;  // for the select that is begun next
    std::size_t written_ = 0;      // bytes of SQL, pieces of pieces included
    std::set<std::string> unknownNames_;
};

}  // namespace wendel::jet::sql
