#include "work/table_digest.h"

#include <bit>
#include <string_view>
#include <type_traits>

#include "platform/database/database.h"

namespace voxa {

namespace {

/// A step of a hash that lets every bit of the word reach every bit of the result.
std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0x9e3779b97f4a7c15U;
  return hash ^ (hash >> 29U);
}

std::uint64_t mixed(std::uint64_t hash, std::string_view bytes) {
  hash = mixed(hash, std::uint64_t{bytes.size()});
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    word = word << 8U | static_cast<unsigned char>(bytes[i]);
    if (i % sizeof(word) == sizeof(word) - 1) hash = mixed(hash, word);
  }
  return mixed(hash, word);
}

std::uint64_t mixed(std::uint64_t hash, double number) {
  return mixed(hash, std::bit_cast<std::uint64_t>(number + 0.0));  // -0 is 0
}

std::uint64_t mixed(std::uint64_t hash, const Value& value) {
  hash = mixed(hash, std::uint64_t{value.data().index()});
  return std::visit(
      [&](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          return hash;
        } else if constexpr (std::is_same_v<Held, std::string>) {
          return mixed(hash, std::string_view(held));
        } else if constexpr (std::is_same_v<Held, Bytes>) {
          return mixed(hash, std::string_view(held.data));
        } else if constexpr (std::is_same_v<Held, DateTime>) {
          return mixed(hash, held.days);
        } else if constexpr (std::is_same_v<Held, double>) {
          return mixed(hash, held);
        } else {
          return mixed(hash, static_cast<std::uint64_t>(held));
        }
      },
      value.data());
}

}  // namespace

void TableDigest::add(const Value* row, std::size_t fields) {
  std::uint64_t hash = fields;
  for (std::size_t i = 0; i < fields; ++i) hash = mixed(hash, row[i]);
  sum += mixed(hash, std::uint64_t{0});
  ++rows;
}

std::string selectionOf(const std::string& table, const std::vector<std::string>& fields) {
  return "SELECT " + nameList(fields) + " FROM [" + table + "]";
}

TableDigest digestOf(Database& database, const std::string& table, const std::vector<std::string>& fields) {
  TableDigest digest;
  database.visitRows(selectionOf(table, fields), [&](const Value* row) {
    digest.add(row, fields.size());
    return true;
  });
  return digest;
}

}  // namespace voxa
