#include "work/journal_condition.h"

namespace voxa {

void JournalCondition::add(std::string_view condition) {
  conditions_.append(conditions_.empty() ? " where (" : " and (").append(condition).append(")");
}

std::string JournalCondition::declare(std::string_view type, const Value& value) {
  const std::string name = "p" + std::to_string(values_.size() + 1);
  declared_.append(values_.empty() ? "parameters " : ", ").append(name).append(" ").append(type);
  values_.emplace_back(name, value);
  return name;
}

void JournalCondition::add(std::string_view condition, std::string_view type, const Value& value) {
  const std::string name = declare(type, value);
  std::string text(condition);
  for (std::size_t at = 0; (at = text.find('?', at)) != std::string::npos;) text.replace(at, 1, name);
  add(text);
}

void JournalCondition::addAnyOf(const std::string& column, std::string_view type,
                                const std::vector<Value>& values) {
  std::string names;
  for (const Value& value : values) names += (names.empty() ? "" : ", ") + declare(type, value);
  add(column + " in (" + names + ")");
}

bool JournalCondition::isIndexed() const {
  return conditions_.find("([Date]") != std::string::npos ||
         conditions_.find("(CardholderName in") != std::string::npos;
}

std::string JournalCondition::change(const std::string& what) const {
  return (declared_.empty() ? "" : declared_ + "; ") + what + conditions_;
}

std::string JournalCondition::statement(const std::string& columns, const std::string& order) const {
  const std::string text = change("select " + columns + " from Journal");
  return order.empty() ? text : text + " " + order;
}

}  // namespace voxa
