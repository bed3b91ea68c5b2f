#include <charconv>

#include "engines/language/dialect.h"
#include "engines/language/parser.h"
#include "engines/language/writer.h"
#include "platform/error.h"

namespace voxa::dialect {

namespace {

/// A rule sees no table: it is about its own field alone.
class NoTables : public Schema {
 public:
  [[nodiscard]] const TableDef* table(std::string_view) const override { return nullptr; }
};

struct ConstantText {
  std::string operator()(std::monostate) const { return "NULL"; }
  std::string operator()(bool v) const { return v ? "-1" : "0"; }
  std::string operator()(DateTime v) const { return (*this)(v.days); }
  std::string operator()(std::uint8_t v) const { return std::to_string(v); }
  std::string operator()(std::int16_t v) const { return std::to_string(v); }
  std::string operator()(std::int32_t v) const { return std::to_string(v); }
  std::string operator()(double v) const {
    char digits[32];
    std::string out(digits, std::to_chars(std::begin(digits), std::end(digits), v).ptr);
    // Without a point or an exponent SQLite would take it for a whole number, and divide it as one.
    if (out.find_first_of(".e") == std::string::npos) out += ".0";
    return out;
  }
  std::string operator()(const std::string& v) const {
    if (v.find('\0') != std::string::npos) throw Error(err::dbSyntax, "A text of a rule holds a zero byte");
    std::string out(1, '\'');
    for (const char c : v) out.append(c == '\'' ? 2 : 1, c);
    return out += '\'';
  }
  std::string operator()(const Bytes& v) const { return "X'" + hexText(v) + "'"; }
};

/// Replaces the placeholders by their literals.
std::string withConstants(const std::string& sql, const std::vector<Slot>& slots,
                          const std::vector<Value>& literals, const Clock* clock) {
  std::string out;
  char quote = 0;
  for (std::size_t i = 0; i < sql.size(); ++i) {
    const char c = sql[i];
    if (quote == 0 && c == '?') {
      std::size_t number = 0;
      i = static_cast<std::size_t>(std::from_chars(sql.data() + i + 1, sql.data() + sql.size(), number).ptr -
                                   sql.data()) -
          1;
      const Slot& slot = slots[number - 1];
      const Value& literal = literals[*slot.literal];
      const Value value = slot.convertTo
                              ? convertForField(literal, slot.convertTo->type, slot.convertTo->size, clock)
                              : literal;
      out += std::visit(ConstantText{}, value.data());
      continue;
    }
    if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '"' || c == '\'')) {
      quote = c;
    }
    out += c;
  }
  return out;
}

}  // namespace

std::string translateRule(std::string_view rule, const FieldDef& field, const Clock* clock) {
  Scanned scanned;
  scan(rule, scanned, clock);
  const syntax::ExpressionPtr parsed = Parser(rule).rule();
  TableDef table;
  table.fields.push_back(field);
  Scope scope;
  scope.tables.push_back({.definition = &table, .query = {}, .alias = {}, .prefix = {}});
  std::vector<Slot> slots;
  const NoTables schema;
  std::vector<FieldDef> parameters;
  Writer writer(rule, schema, parameters, slots);
  try {
    const std::string condition = writer.condition(*parsed, scope);
    if (!parameters.empty())
      throw Error(err::dbSyntax, "it names \"" + parameters[0].name + "\", which is not the field");
    return withConstants(condition, slots, scanned.literals, clock);
  } catch (const Error& error) {
    if (error.number() == err::dbSyntax) throw;
    throw Error(err::dbSyntax,
                "The validation rule of \"" + field.name + "\" is none: " + error.description());
  }
}

}  // namespace voxa::dialect
