#pragma once

#include <cstdint>
#include <iterator>

namespace voxa::cli {

/// The same numbers on every machine and in every run.
class DemoRandom {
 public:
  /// 0 to below `limit`, which is far below 2^32.
  std::uint32_t below(std::uint32_t limit) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>((state_ >> 32U) % limit);
  }
  [[nodiscard]] bool percent(std::uint32_t chance) { return below(100) < chance; }
  template <typename List>
  const auto& of(const List& list) {
    return list[below(static_cast<std::uint32_t>(std::size(list)))];
  }

 private:
  std::uint64_t state_ = 20261221;
};

}  // namespace voxa::cli
