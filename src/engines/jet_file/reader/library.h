#pragma once

#include <mdbtools.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace voxa::jet {

/// The library's own objects, with their ends.
struct Closer {
  void operator()(MdbHandle* file) const { mdb_close(file); }
  void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
using File = std::unique_ptr<MdbHandle, Closer>;
using Table = std::unique_ptr<MdbTableDef, Closer>;

[[nodiscard]] inline bool isJet3(const MdbHandle& file) {
  return file.f->jet_version == MDB_VER_JET3;
}

/// A number of so many bytes, at most four, the lowest first.
[[nodiscard]] inline std::uint32_t wholeAt(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < count; ++i)
    value |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[at + i])) << (8 * i);
  return value;
}

}  // namespace voxa::jet
