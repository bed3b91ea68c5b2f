#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/variant.h"

namespace voxa {

struct DaoSession;

namespace dao {

/// The kinds of the library's objects. All objects of a kind have the same members under the same numbers.
enum class Kind : std::uint8_t {
  engine,
  errors,
  error,
  workspaces,
  workspace,
  database,
  properties,
  property,
  tableDefs,
  tableDef,
  fields,
  field,
  indexes,
  index,
  relations,
  relation,
  queryDefs,
  queryDef,
  parameters,
  parameter,
  recordset
};

/// The name of a kind: "TableDef".
[[nodiscard]] const char* nameOf(Kind kind);

/// Whether the process is ending, and libraries may be gone already whose objects are still held.
[[nodiscard]] bool processEnds();

/// The option of OpenRecordset for rows that are not changed.
inline constexpr std::int32_t readOnlyRows = 4;

/// An argument that is left out, with others behind it.
struct LeftOut {};

class Object;

// Arguments as the library takes them.
[[nodiscard]] OwnVariant argument(const std::string& text);
[[nodiscard]] OwnVariant argument(const char* text);
[[nodiscard]] OwnVariant argument(std::int32_t number);
[[nodiscard]] OwnVariant argument(bool flag);
[[nodiscard]] OwnVariant argument(const Value& value);
[[nodiscard]] OwnVariant argument(const ColumnValue& value);
[[nodiscard]] OwnVariant argument(const Object& object);
[[nodiscard]] OwnVariant argument(LeftOut);
[[nodiscard]] inline OwnVariant argument(OwnVariant&& variant) {
  return std::move(variant);
}

using Arguments = std::vector<OwnVariant>;

/// A held object of the library. What a member raises is thrown as an Error (failures.h).
class Object {
 public:
  Object() = default;
  /// Counts a reference.
  Object(DaoSession& session, Kind kind, IDispatch* object);
  ~Object();
  Object(const Object& other);
  Object(Object&& other) noexcept : session_(other.session_), object_(other.object_), kind_(other.kind_) {
    other.object_ = nullptr;
  }
  Object& operator=(Object other) noexcept {
    std::swap(session_, other.session_);
    std::swap(object_, other.object_);
    std::swap(kind_, other.kind_);
    return *this;
  }

  [[nodiscard]] IDispatch* dispatch() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  /// Calls a method or reads a property.
  template <typename... Given>
  OwnVariant call(const char* member, Given&&... given) const {
    Arguments arguments;
    arguments.reserve(sizeof...(given));
    (arguments.push_back(argument(std::forward<Given>(given))), ...);
    return invoke(member, false, std::move(arguments));
  }
  OwnVariant callWith(const char* member, Arguments arguments) const {
    return invoke(member, false, std::move(arguments));
  }
  template <typename Given>
  void put(const char* member, Given&& given) const {
    Arguments arguments;
    arguments.push_back(argument(std::forward<Given>(given)));
    (void)invoke(member, true, std::move(arguments));
  }

  // The same with a result of a type.
  template <typename... Given>
  [[nodiscard]] Object object(Kind kind, const char* member, Given&&... given) const {
    return fromResult(kind, call(member, std::forward<Given>(given)...));
  }
  [[nodiscard]] Object objectWith(Kind kind, const char* member, Arguments arguments) const {
    return fromResult(kind, callWith(member, std::move(arguments)));
  }
  /// The item of a collection, by its position or name.
  template <typename Index>
  [[nodiscard]] Object item(Index&& index) const {
    return object(itemKind(), "Item", std::forward<Index>(index));
  }
  [[nodiscard]] std::string text(const char* member) const;
  [[nodiscard]] std::int32_t number(const char* member) const;
  [[nodiscard]] bool flag(const char* member) const;
  [[nodiscard]] Value value(const char* member) const;

 private:
  /// The one way to the library. Put and call of other members go through it.
  OwnVariant invoke(const char* member, bool isPut, Arguments arguments) const;
  [[nodiscard]] Object fromResult(Kind kind, const OwnVariant& result) const;
  [[nodiscard]] Kind itemKind() const;

  DaoSession* session_ = nullptr;
  IDispatch* object_ = nullptr;
  Kind kind_ = Kind::engine;
};

/// Calls `visit` with each item of a collection.
template <typename Visit>
void forEach(const Object& collection, Visit&& visit) {
  const std::int32_t count = collection.number("Count");
  for (std::int32_t i = 0; i < count; ++i) visit(collection.item(i));
}

/// What a variant of the library holds, as values of its type are in this system.
[[nodiscard]] Value valueOf(const VARIANT& variant);

}  // namespace dao
}  // namespace voxa
