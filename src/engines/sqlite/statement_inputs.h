#pragma once

// What goes into the slots of a statement, whoever runs it.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "engines/sqlite/sqlite_database.h"
#include "platform/text.h"

namespace voxa {

/// So many times a statement is translated again because another user keeps changing the schema.
inline constexpr int schemaRetries = 20;

/// The value for a slot, and, for a parameter, its declaration.
using Input = std::pair<const Value*, const FieldDef*>;

/// rows: whether the statement must give rows.
inline void requireKind(const dialect::Translation& translation, bool rows) {
  if (rows == (translation.kind == dialect::Translation::Kind::select)) return;
  if (rows) throw Error(err::dbInvalidOperation, "A statement that makes changes has no rows to open");
  throw Error(err::dbSelectExecuted, "A query that selects rows cannot be executed");
}

/// Which declared parameter a slot stands for. The translation makes slots for declared ones only.
inline std::size_t declaredIndex(const dialect::Translation& translation, std::string_view name) {
  const auto found = std::find_if(translation.parameters.begin(), translation.parameters.end(),
                                  [&](const FieldDef& declared) { return equalNoCase(declared.name, name); });
  return static_cast<std::size_t>(found - translation.parameters.begin());
}

inline bool isDeclared(const dialect::Translation& translation, const FieldDef& parameter) {
  return &parameter < translation.parameters.data() + translation.declared;
}

[[noreturn]] inline void failUndeclared(const std::string& name) {
  throw Error(err::dbTooFewParameters,
              "Too few parameters: \"" + name + "\" is neither a field nor a parameter");
}

inline const Value& parameterValue(const SqliteDatabase::Parameters& parameters, std::string_view name,
                                   bool declared) {
  for (const auto& [given, value] : parameters) {
    if (equalNoCase(given, name)) return value;
  }
  if (!declared) failUndeclared(std::string(name));
  throw Error(err::dbTooFewParameters, "Parameter '" + std::string(name) + "' has no value");
}

/// What goes into a slot of a statement that is run with its literals and with values for its parameters.
inline Input inputOf(const dialect::Translation& translation, std::size_t index,
                     const std::vector<Value>& literals, const SqliteDatabase::Parameters& parameters) {
  const dialect::Slot& slot = translation.slots[index];
  if (slot.literal) return {&literals[*slot.literal], nullptr};
  if (slot.constant) return {&*slot.constant, nullptr};
  const FieldDef& parameter = translation.parameters[declaredIndex(translation, slot.parameter)];
  return {&parameterValue(parameters, slot.parameter, isDeclared(translation, parameter)), &parameter};
}

/// The value of a slot that is no parameter; nullptr for one that is.
inline const Value* ownedLiteral(const SqliteDatabase::Owned& owned, std::size_t index) {
  const dialect::Slot& slot = owned.prepared.translation->slots[index];
  if (slot.literal) return &owned.literals[*slot.literal];
  return slot.constant ? &*slot.constant : nullptr;
}

template <typename InputOf>
void SqliteDatabase::bind(Statement& statement, const dialect::Translation& translation, InputOf&& inputOf) {
  const std::vector<dialect::Slot>& slots = translation.slots;
  converted_.clear();  // room for two values a slot, since bound values must not move
  converted_.reserve(2 * slots.size());
  const auto convert = [&](const Value& value, const FieldDef& field) -> const Value& {
    if (isStoredAsIs(value, field)) return value;
    return converted_.emplace_back(convertForField(value, field.type, field.size, &session_->clock));
  };
  for (std::size_t i = 0; i < slots.size(); ++i) {
    const auto [input, declared] = inputOf(i);
    const Value* value = input;
    // What no declaration tells is what it stands beside.
    const bool told = declared != nullptr && (isDeclared(translation, *declared) || !slots[i].convertTo);
    if (told) value = &convert(*value, *declared);
    if (slots[i].convertTo) value = &convert(*value, *slots[i].convertTo);
    statement.bind(static_cast<int>(i) + 1, *value);
  }
}

}  // namespace voxa
