#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engines/language/lexer.h"
#include "engines/language/syntax.h"

namespace voxa::dialect {

/// Reads statements and rules of the language. Every failure is 3075. Tokens and statements are in
/// parser.cpp, rules and expressions in parser_expressions.cpp.
class Parser {
 public:
  explicit Parser(std::string_view sql);

  /// Reads the whole text as one statement. A semicolon may stand at the end.
  [[nodiscard]] syntax::Statement statement();
  /// Reads the whole text as a validation rule. That is a condition in which left operands may be missing:
  /// the field stands for them. A value alone is compared with the field.
  [[nodiscard]] syntax::ExpressionPtr rule();

 protected:
  // Tokens
  [[nodiscard]] const Token& current() const { return tokens_[at_]; }
  [[nodiscard]] const Token& following() const;
  void advance() { at_ += current().kind == TokenKind::end ? 0 : 1; }
  [[nodiscard]] bool atWord(std::string_view keyword) const;
  [[nodiscard]] bool atSymbol(char symbol) const;
  bool skipWord(std::string_view keyword);
  bool skipSymbol(char symbol);
  void expectWord(std::string_view keyword, const char* what);
  void expectSymbol(char symbol, const char* what);
  [[nodiscard]] bool atName() const;
  std::string_view name(const char* what);
  [[nodiscard]] std::string_view sql() const { return sql_; }
  [[nodiscard]] std::size_t end() const;  ///< behind the last token that was read
  [[noreturn]] void fail(const std::string& what) const;

 private:
  using ExpressionPtr = syntax::ExpressionPtr;

  /// One level of nesting for its own lifetime; 3075 when there are too many levels.
  class Nesting {
   public:
    explicit Nesting(Parser& parser);
    ~Nesting() { --parser_.nesting_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    Parser& parser_;
  };

  // Statements
  void parameters(std::vector<FieldDef>& out);
  syntax::SelectPtr select();
  syntax::SelectPtr selectMember();
  void selectItem(std::vector<syntax::SelectItem>& out);
  std::vector<syntax::Source> sources();
  syntax::Source source();
  syntax::Source joinOperand();
  syntax::Source table();
  void insertInto(syntax::Statement& out);
  void update(syntax::Statement& out);
  void remove(syntax::Statement& out);
  syntax::FieldName fieldName();
  std::vector<ExpressionPtr> expressions();

  // Expressions (parser_expressions.cpp), those that bind loosest first
  ExpressionPtr expression();
  ExpressionPtr subquery(syntax::Expression::Kind kind, std::size_t position);
  ExpressionPtr chain(std::size_t level);
  ExpressionPtr logicalNot();
  ExpressionPtr condition();
  ExpressionPtr comparison(ExpressionPtr left);
  ExpressionPtr in(ExpressionPtr left);
  ExpressionPtr negative();
  ExpressionPtr power();
  ExpressionPtr primary();
  ExpressionPtr literal();
  ExpressionPtr named();
  ExpressionPtr call(const Token& function);
  [[nodiscard]] ExpressionPtr make(syntax::Expression::Kind kind, std::size_t position) const;
  void adopt(syntax::Expression& parent, ExpressionPtr child) const;
  ExpressionPtr binary(syntax::Operator op, std::size_t position, ExpressionPtr left,
                       ExpressionPtr right) const;

  std::string_view sql_;
  std::vector<Token> tokens_;
  std::vector<std::size_t> literals_;  ///< for each token, how many literals are before it
  std::size_t at_ = 0;
  int nesting_ = 0;
  bool rule_ = false;          ///< the text is a validation rule
  bool impliesField_ = false;  ///< the rule's field stands for an operand that is missing
};

}  // namespace voxa::dialect
