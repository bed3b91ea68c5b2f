#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "engines/language/dialect.h"
#include "engines/sqlite/connection.h"

namespace voxa {

/// A statement ready to run. Results that it described hold its translation for longer.
struct Prepared {
  std::shared_ptr<const dialect::Translation> translation;  ///< none for a statement of the engine's own
  Statement statement;
  std::optional<Statement> numbers = {};  ///< only the row numbers of the same rows; once they were asked for
};

/// Prepared statements by their text. When it is full, the one that was unused for longest goes. A reference
/// that it gives holds until the next add() or clear().
class StatementCache {
 public:
  /// The statement of that text, or nullptr.
  [[nodiscard]] Prepared* find(std::string_view key) {
    if (!entries_.empty() && entries_.front().first == key) return &entries_.front().second;
    const auto found = positions_.find(key);
    if (found == positions_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, found->second);
    return &found->second->second;
  }

  Prepared& add(std::string key, Prepared prepared) {
    if (entries_.size() == capacity) {
      positions_.erase(entries_.back().first);
      entries_.pop_back();
    }
    entries_.emplace_front(std::move(key), std::move(prepared));
    positions_.emplace(entries_.front().first, entries_.begin());
    return entries_.front().second;
  }

  void clear() {
    positions_.clear();
    entries_.clear();
  }

 private:
  static constexpr std::size_t capacity = 256;

  std::list<std::pair<std::string, Prepared>>
      entries_;  ///< last used first; the keys of the map point into this list
  std::unordered_map<std::string_view, std::list<std::pair<std::string, Prepared>>::iterator> positions_;
};

}  // namespace voxa
