#include "engines/dao/row_blocks.h"

#include "platform/error.h"

namespace voxa::dao {

namespace {

constexpr std::int32_t rowsOfBlock = 100;

/// The values of a block as they lie there: those of a row side by side.
class Block {
 public:
  explicit Block(const VARIANT& rows) : array_(rows.parray) {
    LONG last = -1;
    if (rows.vt != (VT_ARRAY | VT_VARIANT) || ::SafeArrayGetDim(array_) != 2 ||
        FAILED(::SafeArrayGetUBound(array_, 1, &last)) ||
        FAILED(::SafeArrayGetUBound(array_, 2, &lastRow_)) ||
        FAILED(::SafeArrayAccessData(array_, reinterpret_cast<void**>(&values_)))) {
      throw Error(err::internalError, "The data objects give no block of rows");
    }
    width_ = static_cast<std::size_t>(last) + 1;
  }
  ~Block() { (void)::SafeArrayUnaccessData(array_); }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;

  [[nodiscard]] std::size_t rows() const { return static_cast<std::size_t>(lastRow_ + 1); }
  void read(std::size_t row, std::vector<Value>& out) const {
    out.clear();
    for (std::size_t i = 0; i < width_; ++i) out.push_back(valueOf(values_[row * width_ + i]));
  }

 private:
  SAFEARRAY* array_;
  VARIANT* values_ = nullptr;
  std::size_t width_ = 0;
  LONG lastRow_ = -1;
};

}  // namespace

void visitBlocks(const Object& rows, const std::function<bool(const Value* row)>& visit) {
  std::vector<Value> row;
  while (!rows.flag("EOF")) {
    const OwnVariant got = rows.call("GetRows", rowsOfBlock);
    const Block block(*got);
    if (block.rows() == 0) throw Error(err::dbRecordDeleted, "A row went away while the rows were read");
    for (std::size_t i = 0; i < block.rows(); ++i) {
      block.read(i, row);
      if (!visit(row.data())) return;
    }
  }
}

}  // namespace voxa::dao
