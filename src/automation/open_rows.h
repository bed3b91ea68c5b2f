#pragma once

#include <algorithm>

#include "data_objects.h"

namespace voxa::automation {

/// Rows that the object of a recordset shares with the objects of its columns.
class OpenRows {
 public:
  explicit OpenRows(std::unique_ptr<Recordset> rows) : rows_(std::move(rows)) {}

  /// 3420 when they are closed.
  [[nodiscard]] Recordset& get() const {
    if (rows_ == nullptr) throw Error(err::dbInvalidObject, "The rows are closed");
    return *rows_;
  }
  void close() { rows_.reset(); }

  void edit() {
    get().edit();
    appended_.clear();
  }
  void addNew() {
    get().addNew();
    appended_.clear();
  }
  /// Adds a text or bytes to a field; the first time in a row that is edited or added they take the place of
  /// what was there.
  void append(std::size_t index, const Value& part) {
    const bool first = std::find(appended_.begin(), appended_.end(), index) == appended_.end();
    const Value before = first ? Value() : get().get(index);
    const auto* there = std::get_if<Bytes>(&before.data());
    const auto* added = std::get_if<Bytes>(&part.data());
    get().set(index, before.isNull()  ? part
                     : there && added ? Value(Bytes{there->data + added->data})
                                      : Value(before.toText() + part.toText()));
    if (first) appended_.push_back(index);
  }

 private:
  std::unique_ptr<Recordset> rows_;
  std::vector<std::size_t> appended_;  ///< columns that got a part since the row is edited or added
};

/// A column of rows.
[[nodiscard]] ::IField* makeRowField(std::shared_ptr<OpenRows> rows, std::size_t index);

}  // namespace voxa::automation
