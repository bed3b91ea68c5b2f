#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/database/schema.h"

/// A parsed statement. All names point into the statement's text, which must outlive it. Brackets are taken
/// off.
namespace voxa::dialect::syntax {

struct Expression;
struct Select;
using ExpressionPtr = std::unique_ptr<Expression>;
using SelectPtr = std::unique_ptr<Select>;

enum class Operator : std::uint8_t {
  add,
  subtract,
  multiply,
  divide,
  divideWhole,
  modulo,
  power,
  concatenate,
  equal,
  notEqual,
  less,
  lessOrEqual,
  greater,
  greaterOrEqual,
  like,
  logicalAnd,
  logicalOr,
  exclusiveOr,
  equivalent,
  implies
};

struct Expression {
  enum class Kind : std::uint8_t {
    literal,        ///< `literal` is its index, `type` its type
    shapingNumber,  ///< a number in an ordering; `name` holds its digits
    word,           ///< True, False or Null; `name` holds the word
    name,           ///< [qualifier.]name, or a declared parameter
    call,           ///< name(arguments); count(*) has `star`
    negative,       ///< -a
    logicalNot,     ///< not a
    binary,         ///< a op b; AND and OR link two or more
    between,        ///< a [not] between b and c
    inList,         ///< a [not] in (b, c, ...)
    inSelect,       ///< a [not] in (select)
    isNull,         ///< a is [not] null
    exists,         ///< exists (select)
    scalar,         ///< (select)
    quantified,     ///< a op ANY (select); `negated`: a op ALL (select)
    subject         ///< the field that a validation rule is about
  };
  Kind kind = Kind::name;
  Operator op = Operator::equal;
  bool negated = false;
  bool star = false;
  bool bracketed = false;  ///< the name was written in brackets, so it is neither a function nor a constant
  DataType type = DataType::Text;
  std::size_t literal = 0;
  std::size_t position = 0;  ///< in the statement; for messages
  int height = 1;            ///< levels of the tree from here down
  std::string_view qualifier;
  std::string_view name;
  std::vector<ExpressionPtr> arguments;
  SelectPtr select;
};

/// A table, a query, or a join of two of these.
struct Source {
  enum class Join : std::uint8_t { none, inner, left, right };
  Join join = Join::none;
  std::size_t position = 0;
  std::string_view table;  ///< or a stored query; "" for one that is written here
  std::string_view alias;  ///< its name in the rest of the statement: the table's own when none was given
  SelectPtr query;
  std::unique_ptr<Source> left;
  std::unique_ptr<Source> right;
  ExpressionPtr on;
};

struct SelectItem {
  bool star = false;
  std::string_view starQualifier;  ///< of t.*
  std::size_t position = 0;
  ExpressionPtr expression;
  std::string_view alias;  ///< "" for none
  // Where they end in the statement.
  std::size_t expressionEnd = 0;
  std::size_t end = 0;  ///< with the alias
};

struct OrderItem {
  ExpressionPtr expression;
  bool descending = false;
};

struct Select {
  std::size_t position = 0;
  bool distinct = false;
  bool distinctRow = false;
  std::string_view top;  ///< digits; "" when there is no TOP
  bool percent = false;  ///< they are hundredths of the rows
  std::vector<SelectItem> items;
  std::string_view into;  ///< the table that is made of the rows; "" for none
  std::vector<Source> from;
  ExpressionPtr where;
  std::vector<ExpressionPtr> groupBy;
  ExpressionPtr having;
  /// The queries that UNION puts behind this one. The ordering is that of the whole.
  struct Member {
    bool all = false;  ///< rows that are there already come again
    SelectPtr select;
  };
  std::vector<Member> unions;
  std::vector<OrderItem> orderBy;
};

struct FieldName {
  std::string_view qualifier;
  std::string_view name;
  std::size_t position = 0;
};

struct Statement {
  enum class Kind : std::uint8_t { select, insert, update, remove };
  Kind kind = Kind::select;
  std::vector<FieldDef> parameters;
  SelectPtr select;                   ///< of select, and of insert ... select
  Source target;                      ///< of insert: one table
  std::vector<Source> from;           ///< of update and remove
  std::string_view rowsOf;            ///< of remove: the table of `from` that loses rows; "" when not given
  std::vector<FieldName> fields;      ///< of update and insert; an insert without any means all fields
  std::vector<ExpressionPtr> values;  ///< for each of `fields`, unless `select` gives them
  ExpressionPtr where;                ///< of update and remove
};

}  // namespace voxa::dialect::syntax
