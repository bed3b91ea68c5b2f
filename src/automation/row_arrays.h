#pragma once

#include <oaidl.h>

#include <cstdint>
#include <vector>

#include "platform/database/recordset.h"

namespace voxa::automation {

/// A bookmark as callers hold it: an array of bytes, with the rows that it is one of. Those of other rows are
/// 3159.
struct BookmarkBytes {
  std::uint32_t rows = 0;  ///< the same number for a recordset and its clones, and for no others
  Bookmark place = 0;
};
/// A new variant, which the caller clears.
[[nodiscard]] VARIANT toVariant(const BookmarkBytes& bookmark);
/// From an array of bytes, or from a text that was made of one; 3159 for anything else.
[[nodiscard]] BookmarkBytes bookmarkFrom(const VARIANT& variant);

/// Values as [field][row], and the types of the fields. Callers get an array of these two dimensions.
struct RowArray {
  std::vector<std::vector<Value>> values;
  std::vector<DataType> types;
};
[[nodiscard]] VARIANT toVariant(const RowArray& rows);

inline void put(VARIANT* out, const BookmarkBytes& bookmark) {
  *out = toVariant(bookmark);
}
inline void put(VARIANT* out, const RowArray& rows) {
  *out = toVariant(rows);
}

}  // namespace voxa::automation
