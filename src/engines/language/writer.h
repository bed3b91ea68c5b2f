#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engines/language/dialect.h"
#include "engines/language/syntax.h"

namespace voxa::dialect {

/// Written SQLite text of an expression, with what is known of its value.
struct Term {
  std::string sql = {};
  std::optional<DataType> type = {};  ///< none: Null
  /// Empty: can be an operand as it is. An operator: a chain of it, which can go on to the right. '?': any
  /// other text that needs parentheses.
  char chain = 0;
  bool condition = false;                ///< of SQLite's truth values 0 and 1, not -1
  const FieldDef* field = nullptr;       ///< it is a column of a table
  std::size_t table = 0;                 ///< then: index of the table in its scope
  std::optional<std::size_t> slot = {};  ///< it is that placeholder
};

/// A table of a FROM clause.
struct ScopeTable {
  const TableDef* definition = nullptr;
  std::string alias;
  std::string
      prefix;  ///< what stands before a column's name in SQLite: the quoted alias and a dot, or nothing
};

/// A GROUP BY expression: its text without the numbers of its placeholders, and which placeholders they are.
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
  int ownColumns = 0;            ///< columns written of this scope's tables
  int outerColumns = 0;          ///< columns written in this scope of tables outside
  int ungroupedCount = 0;        ///< columns written outside of aggregates and groups
  std::string ungrouped;         ///< the last of them
};

/// Writes the expressions of a statement in SQLite's language and collects their placeholders.
class Writer {
 public:
  Writer(std::string_view sql, const Schema& schema, const std::vector<FieldDef>& parameters,
         std::vector<Slot>& slots)
      : sql_(sql), schema_(schema), parameters_(parameters), slots_(slots) {}

  [[nodiscard]] Term write(const syntax::Expression& e, Scope& scope);
  /// The expression as a condition that SQLite tests.
  [[nodiscard]] std::string condition(const syntax::Expression& e, Scope& scope);
  /// The expression as the value of a field.
  [[nodiscard]] std::string stored(const syntax::Expression& e, const FieldDef& field, Scope& scope);

  /// A SELECT that is written; its items are still to be joined to a text.
  struct Query {
    Scope scope;
    std::vector<Term> items;
    std::vector<const syntax::Expression*> sources;  ///< of the items; none for a column of a star
    std::vector<std::string> names;                  ///< the result's names of the items
    bool distinct = false;
    bool grouped = false;  ///< its rows are no rows of a table
    std::string rest;      ///< from FROM on

    [[nodiscard]] std::vector<std::string> columns() const;  ///< the items as columns of the result
    [[nodiscard]] std::string text(const std::vector<std::string>& columns) const;
  };
  [[nodiscard]] Query select(const syntax::Select& select, Scope* outer);
  /// What a term of a query is as a value of that field.
  [[nodiscard]] std::string stored(Term term, const FieldDef& field);

  /// Adds a table to a scope; 3078 when there is none.
  const TableDef& addTable(const syntax::Source& source, Scope& scope) const;
  /// `"Table" AS "alias"`, of the scope's last table.
  [[nodiscard]] static std::string tableText(const ScopeTable& table);

  // The value of a term as another kind of expression wants it; text and values convert as comparisons do.
  [[nodiscard]] static std::string value(const Term& term);
  [[nodiscard]] static std::string operand(const Term& term);
  [[nodiscard]] std::string number(Term term);
  [[nodiscard]] std::string date(Term term);
  [[nodiscard]] static std::string text(const Term& term);

  [[noreturn]] void fail(std::size_t position, const std::string& what) const;

  /// Translation::sameLiterals of what was written.
  [[nodiscard]] const LiteralPairs& sameLiterals() const { return sameLiterals_; }

 private:
  Term placeholder(Slot slot, DataType type);
  /// The group of a term that was written and of the placeholders in it.
  [[nodiscard]] Group groupOf(const Term& term, std::size_t firstSlot) const;
  bool isGrouped(const Group& term, const Scope& scope);
  Term name(const syntax::Expression& e, Scope& scope);
  std::optional<Term> column(std::string_view qualifier, std::string_view name, Scope& scope) const;
  Term any(const syntax::Expression& e, Scope& scope);
  Term query(const syntax::Expression& e, Scope& scope);
  std::string truth(Term term);
  void convert(Term& term, DataType type);
  void makeComparable(std::vector<Term>& terms);

  // Operators (operators.cpp)
  Term binary(const syntax::Expression& e, Scope& scope);
  Term arithmetic(syntax::Operator op, Term left, Term right);
  Term add(syntax::Operator op, Term left, Term right);
  Term logic(syntax::Operator op, Term left, Term right);
  Term between(const syntax::Expression& e, Scope& scope);
  Term inList(const syntax::Expression& e, Scope& scope);

  // Functions (functions.cpp)
  Term call(const syntax::Expression& e, Scope& scope);
  Term aggregate(const syntax::Expression& e, Scope& scope);
  Term choice(const syntax::Expression& e, Scope& scope);
  Term format(const syntax::Expression& e, Scope& scope);

  // Parts of a SELECT (select.cpp)
  using Conditions = std::vector<const syntax::Expression*>;
  std::string from(const syntax::Source& source, Scope& scope, Conditions& filter);
  std::string allOf(const Conditions& conditions, Scope& scope);
  void items(const syntax::Select& select, Query& out);
  std::string order(const syntax::Select& select, Query& out, bool within);

  std::string_view sql_;
  const Schema& schema_;
  const std::vector<FieldDef>& parameters_;
  std::vector<Slot>& slots_;
  std::vector<Value> literals_;  ///< of a statement that groups
  LiteralPairs sameLiterals_;
};

/// `"name"`, quotes inside doubled.
[[nodiscard]] std::string quotedName(std::string_view name);
/// The number of a type as the functions of ours take it.
[[nodiscard]] std::string typeCode(DataType type);
/// Mark of a text that binds closer than AND and OR, and looser than everything else.
inline constexpr char comparison = 'c';
/// The term of a condition.
[[nodiscard]] Term logical(std::string sql, char chain = comparison);
[[nodiscard]] std::string collated(const std::string& operand);
/// Written text without the numbers of its placeholders: the same for expressions that differ in them alone.
[[nodiscard]] std::string withoutNumbers(const std::string& sql);

[[nodiscard]] inline bool isTextType(const std::optional<DataType>& type) {
  return type == DataType::Text || type == DataType::Memo;
}
[[nodiscard]] inline bool isWholeType(const std::optional<DataType>& type) {
  return type == DataType::Boolean || type == DataType::Byte || type == DataType::Integer ||
         type == DataType::Long;
}

}  // namespace voxa::dialect
