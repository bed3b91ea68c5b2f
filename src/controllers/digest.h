#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace voxa {

// Digests tell without a comparison that what rows want of a part of a controller is what it was. They are
// kept on the disk, so a change of how they are made needs another seed.

/// 64 bits over values, in their order.
class Digest {
 public:
  void add(std::string_view text) {
    for (const char c : text) step(static_cast<unsigned char>(c));
    step(separator);
  }
  void add(std::uint64_t number) {
    for (int i = 0; i < 8; ++i) step(static_cast<unsigned char>(number >> (8 * i)));
  }
  [[nodiscard]] std::uint64_t value() const { return hash_; }

 private:
  static constexpr std::uint64_t prime = 1'099'511'628'211U;
  static constexpr unsigned separator = 256;  // no character

  void step(unsigned value) { hash_ = (hash_ ^ value) * prime; }

  std::uint64_t hash_ = 14'695'981'039'346'656'037U ^ 1U;  // of FNV-1a; the seed
};

// The parts of a controller: buckets of 64 card numbers, and one for all that are no cards.

inline constexpr std::int32_t cardsOfBucket = 64;
inline constexpr std::int32_t bucketOfThings = 255;
inline constexpr std::int32_t bucketsOfController = 256;
[[nodiscard]] constexpr std::int32_t bucketOfCard(std::int32_t number) {
  return number / cardsOfBucket;
}
inline constexpr std::int32_t cardBuckets = 9999 / cardsOfBucket + 1;

}  // namespace voxa
