#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engines/language/dialect.h"
#include "engines/language/syntax.h"
#include "platform/error.h"

namespace voxa::dialect {

/// The SQLite text of an expression, and what is known of its value.
struct Term {
  std::string sql = {};
  std::optional<DataType> type = {};  ///< none for Null
  /// How the text can become an operand. 0: as it is. An operator: the text is a chain of this operator,
  /// which can go on to the right. '?': any other text that needs parentheses.
  char chain = 0;
  bool condition = false;                ///< its value is SQLite's truth value, 1 for True and not -1
  const FieldDef* field = nullptr;       ///< set when it is a column of a table
  std::size_t table = 0;                 ///< of a column: index of its table in the scope
  std::optional<std::size_t> slot = {};  ///< set when it is a placeholder
  bool secret = false;                   ///< a column that only a star may have: there `sql` is the mask
  double most = 0;      ///< no computed number is further from 0; 0: as far as its type reaches
  bool summed = false;  ///< `sql` is a sum within a call of vx_finite
  int factors = 0;      ///< `sql` is a call of vx_product with so many
};

/// A table of a FROM clause, or a query in its place.
struct ScopeTable {
  const TableDef* definition = nullptr;
  std::string query;  ///< its text in parentheses; "" for a table
  std::string alias;
  std::string
      prefix;  ///< what stands before a column's name in SQLite: the quoted alias and a dot, or nothing
  std::vector<double> most = {};  ///< Term::most of the columns of a query
};

/// A GROUP BY expression: its text without the numbers of its placeholders, and which placeholders these are.
struct Group {
  std::string shape;
  std::size_t firstSlot = 0;
  std::size_t slotCount = 0;
};

/// The names that an expression may use: the tables of its SELECT, and those of the SELECT around it.
struct Scope {
  std::vector<ScopeTable> tables;
  Scope* outer = nullptr;

  bool aggregatesAllowed = false;
  bool aggregated = false;       ///< an aggregate was written
  bool insideAggregate = false;  ///< an aggregate's argument is being written
  std::vector<Group> groups;     ///< what GROUP BY lists
  int ownColumns = 0;            ///< columns of this scope's own tables that were written
  int outerColumns = 0;          ///< columns of outer tables that were written
  int ungroupedCount = 0;        ///< columns that were written outside of aggregates and groups
  std::string ungrouped;         ///< the last of these
};

/// Writes the expressions of a statement in SQLite's language and collects their placeholders. Names,
/// conversions and whole queries are in writer.cpp; the parts that are in other files are marked below.
class Writer {
 public:
  /// parameters: the declared ones. Those that stored queries declare are put behind them, and then names
  /// that are none.
  Writer(std::string_view sql, const Schema& schema, std::vector<FieldDef>& parameters,
         std::vector<Slot>& slots)
      : sql_(sql), schema_(schema), parameters_(parameters), declared_(parameters.size()), slots_(slots) {}

  [[nodiscard]] Term write(const syntax::Expression& e, Scope& scope);
  /// The expression as a condition that SQLite tests.
  [[nodiscard]] std::string condition(const syntax::Expression& e, Scope& scope);
  /// The expression as the value of a field.
  [[nodiscard]] std::string stored(const syntax::Expression& e, const FieldDef& field, Scope& scope);

  /// A SELECT that was written. Its items are not yet joined into one text.
  struct Query {
    Scope scope;
    std::vector<Term> items;
    std::vector<const syntax::Expression*> sources;  ///< one for each item; null for a column of a star
    std::vector<std::string> names;                  ///< the result's names of the items
    bool distinct = false;
    bool single = false;   ///< it has one row at most
    bool grouped = false;  ///< its rows do not belong to single rows of a table
    std::string rest;      ///< the text from FROM on, without an ordering
    struct Key {
      std::string sql;
      bool isText = false;
      bool descending = false;
    };
    std::vector<Key> keys;    ///< the ordering
    bool rowsDiffer = false;  ///< no two rows are equal anyhow
    bool keysDiffer = false;  ///< no two rows are equal in it
    std::string top;          ///< how many rows, and all that are equal to the last of them; "" for all rows
    bool percent = false;     ///< they are hundredths

    [[nodiscard]] std::vector<std::string> columns()
        const;  ///< the items as the text of the result's columns
    /// called: names for the columns, where they are needed.
    [[nodiscard]] std::string text(const std::vector<std::string>& columns,
                                   const std::vector<std::string>& called = {}) const;
  };
  [[nodiscard]] Query select(const syntax::Select& select, Scope* outer);
  /// The FROM and WHERE of a statement that changes rows of one of several tables.
  [[nodiscard]] std::string sources(const std::vector<syntax::Source>& sources,
                                    const syntax::ExpressionPtr& where, Scope& scope);
  /// A term of a query as the value of that field.
  [[nodiscard]] std::string stored(Term term, const FieldDef& field);

  /// Adds a table or query to a scope; 3078 when there is none.
  const TableDef& addTable(const syntax::Source& source, Scope& scope);
  /// `"Table" AS "alias"` for a table of the scope.
  [[nodiscard]] static std::string tableText(const ScopeTable& table);

  // The text of a term as another kind of expression needs it. Values that are text convert as in
  // comparisons.
  [[nodiscard]] static std::string value(const Term& term);
  [[nodiscard]] static std::string operand(const Term& term);
  [[nodiscard]] std::string number(Term term);
  [[nodiscard]] std::string date(Term term);
  [[nodiscard]] static std::string text(const Term& term);  ///< True is -1, False 0
  /// As ORDER BY and GROUP BY need it: a text without regard to case.
  [[nodiscard]] static std::string sortable(const Term& term);
  [[nodiscard]] static std::string words(const Term& term);  ///< the same with True and False as words

  [[noreturn]] void fail(std::size_t position, const std::string& what) const;
  /// Raises 3112 when one of the terms is secret: for where a star's columns are used, not shown.
  static void requireUsable(const std::vector<Term>& terms);

  /// How many of the parameters are declared by now.
  [[nodiscard]] std::size_t declared() const { return declared_; }
  /// Translation::sameLiterals for what was written.
  [[nodiscard]] const LiteralPairs& sameLiterals() const { return sameLiterals_; }

 private:
  Term placeholder(Slot slot, DataType type);
  /// The group that a written term and its placeholders make.
  [[nodiscard]] Group groupOf(const Term& term, std::size_t firstSlot) const;
  bool isGrouped(const Group& term, const Scope& scope);
  Term name(const syntax::Expression& e, Scope& scope);
  /// The parameter of that name in any case, or nullptr.
  [[nodiscard]] const FieldDef* parameter(std::string_view name) const;
  std::optional<Term> column(std::string_view qualifier, std::string_view name, Scope& scope) const;
  std::optional<Term> findColumn(std::string_view qualifier, std::string_view name, Scope& scope) const;
  Term any(const syntax::Expression& e, Scope& scope);
  Term query(const syntax::Expression& e, Scope& scope);
  Term quantified(const syntax::Expression& e, Query query, Scope& scope);
  std::string truth(Term term);
  void convert(Term& term, DataType type);
  void makeComparable(std::vector<Term>& terms);

  // Operators (operators.cpp)
  Term binary(const syntax::Expression& e, Scope& scope);
  Term arithmetic(syntax::Operator op, Term left, Term right);
  Term multiply(Term left, Term right);
  Term add(syntax::Operator op, Term left, Term right);
  Term concatenate(Term left, const Term& right);
  std::string part(Term term);
  Term linked(const syntax::Expression& e, Scope& scope);
  Term logic(syntax::Operator op, Term left, Term right);
  Term between(const syntax::Expression& e, Scope& scope);
  Term inList(const syntax::Expression& e, Scope& scope);

  // Functions (functions.cpp)
  Term call(const syntax::Expression& e, Scope& scope);
  Term aggregate(const syntax::Expression& e, Scope& scope);
  Term choice(const syntax::Expression& e, Scope& scope);
  Term cases(const syntax::Expression& e, Scope& scope);
  Term format(const syntax::Expression& e, Scope& scope);

  // Parts of a SELECT (select.cpp, what it reads from in sources.cpp)
  using Conditions = std::vector<const syntax::Expression*>;
  Query member(const syntax::Select& select, Scope* outer);
  Query compound(const syntax::Select& select, Scope* outer);
  const TableDef& derive(const Query& query, ScopeTable& table);
  void storedQuery(const std::string& text, ScopeTable& table);
  void declare(const FieldDef& parameter);
  std::string from(const syntax::Source& source, Scope& scope, Conditions& filter);
  std::string allOf(const Conditions& conditions, Scope& scope);
  void items(const syntax::Select& select, Query& out);
  void order(const syntax::Select& select, Query& out, bool within);
  std::size_t columnOf(const syntax::Expression& number, std::size_t columns) const;

  std::string_view sql_;
  const Schema& schema_;
  std::vector<FieldDef>& parameters_;
  std::size_t declared_;
  std::vector<Slot>& slots_;
  std::vector<Value> literals_;  ///< only of a statement that groups, and of a stored query
  int stored_ = 0;               ///< stored queries within one another that are being written
  std::vector<std::unique_ptr<TableDef>> derived_;   ///< of queries in the place of tables
  std::vector<std::unique_ptr<std::string>> texts_;  ///< of stored queries, into which names point
  LiteralPairs sameLiterals_;
};

/// `"name"`, quotes inside doubled.
[[nodiscard]] std::string quotedName(std::string_view name);
/// The number of a type as the vx_ functions take it.
[[nodiscard]] std::string typeCode(DataType type);
/// The failure of a statement that uses a secret column.
[[nodiscard]] Error secretColumn(const FieldDef& field);
/// A chain mark: this text binds closer than AND and OR, and looser than everything else.
inline constexpr char comparison = 'c';
/// The type of a sum, difference or product.
[[nodiscard]] DataType numericType(const std::optional<DataType>& a, const std::optional<DataType>& b);
/// A number as an amount: the digits behind the fourth are none of it.
[[nodiscard]] std::string asAmount(const std::string& sql);
/// The greatest number of a Double.
inline constexpr double greatest = std::numeric_limits<double>::max();
inline const std::string finiteCall = "vx_finite(";
/// How far from 0 the number of a term can be.
[[nodiscard]] double mostOf(const Term& term);
/// A computed number. It is looked at only where it may be too large for a Double, which is error 6.
[[nodiscard]] Term computed(std::string sql, DataType type, double most, char chain = 0);
/// The term of a condition.
[[nodiscard]] Term logical(std::string sql, char chain = comparison);
/// Texts in a row.
[[nodiscard]] std::string joined(const std::vector<std::string>& parts, const char* separator);
/// The type of a value that may be any of several terms. mixed: only text can hold them all.
struct Common {
  std::optional<DataType> type = {};
  bool mixed = false;
  double most = 0;  ///< Term::most of any of them
};
[[nodiscard]] Common commonOf(const std::vector<const Term*>& terms);
[[nodiscard]] std::string collated(const std::string& operand);
/// Written text without the numbers of its placeholders. It is the same for expressions that differ only in
/// these numbers.
[[nodiscard]] std::string withoutNumbers(const std::string& sql);

[[nodiscard]] inline bool isTextType(const std::optional<DataType>& type) {
  return type && isText(*type);
}
[[nodiscard]] inline bool isBinaryType(const std::optional<DataType>& type) {
  return type && isBinary(*type);
}
[[nodiscard]] inline bool isWholeType(const std::optional<DataType>& type) {
  return type == DataType::Boolean || type == DataType::Byte || type == DataType::Integer ||
         type == DataType::Long;
}

}  // namespace voxa::dialect
