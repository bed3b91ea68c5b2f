#include "engines/sqlite/functions.h"

#include <new>

#include "engines/language/dialect.h"
#include "engines/sqlite/function_table.h"
#include "platform/clock.h"

namespace voxa {

namespace {

/// What SQLite passes to each call of a function. SQLite deletes it together with the function.
struct Registered {
  const SqlFunction* function = nullptr;
  PendingError* pending = nullptr;
  const Clock* clock = nullptr;
};

constexpr int traits = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;

void fail(sqlite3_context* context, PendingError& pending, const Error& error) {
  pending.error = error;
  sqlite3_result_error(context, error.what(), -1);
}

void call(sqlite3_context* context, int count, sqlite3_value** arguments) {
  const auto& self = *static_cast<const Registered*>(sqlite3_user_data(context));
  if (!self.function->takesNull) {
    for (int i = 0; i < count; ++i) {
      if (sqlite3_value_type(arguments[i]) == SQLITE_NULL) return;
    }
  }
  try {
    self.function->body(context, arguments, count);
  } catch (const Error& error) {
    fail(context, *self.pending, error);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

void now(sqlite3_context* context, int, sqlite3_value**) {
  sqlite3_result_double(context, static_cast<const Clock*>(sqlite3_user_data(context))->now().days);
}

int compareTexts(void* order, int leftSize, const void* left, int rightSize, const void* right) {
  const auto text = [](const void* bytes, int size) {
    return std::string_view(static_cast<const char*>(bytes), static_cast<std::size_t>(size));
  };
  return reinterpret_cast<TextOrder>(order)(text(left, leftSize), text(right, rightSize));
}

void check(int code) {
  if (code != SQLITE_OK)
    throw Error(err::outOfMemory, "The functions of the database could not be registered");
}

}  // namespace

const Clock* clockOf(sqlite3_context* context) {
  return static_cast<const Registered*>(sqlite3_user_data(context))->clock;
}

void registerFunctions(sqlite3* db, PendingError& pending, const Clock& clock, TextOrder compare) {
  check(sqlite3_create_collation_v2(db, dialect::collation, SQLITE_UTF8, reinterpret_cast<void*>(compare),
                                    compareTexts, nullptr));
  check(sqlite3_create_function_v2(db, "vx_now", 0, traits, const_cast<Clock*>(&clock), now, nullptr, nullptr,
                                   nullptr));
  for (const auto table : {valueFunctions(), textFunctions(), searchFunctions(), momentFunctions()}) {
    for (const SqlFunction& function : table) {
      check(sqlite3_create_function_v2(db, function.name, function.arguments, traits,
                                       new Registered{&function, &pending, &clock}, call, nullptr, nullptr,
                                       [](void* self) { delete static_cast<Registered*>(self); }));
    }
  }
  for (const SqlAggregate& function : aggregateFunctions()) {
    check(sqlite3_create_function_v2(db, function.name, 1, traits, nullptr, nullptr, function.step,
                                     function.final, nullptr));
  }
}

}  // namespace voxa
