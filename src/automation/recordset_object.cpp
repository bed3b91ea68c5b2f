#include <cmath>

#include "open_options.h"
#include "open_rows.h"
#include "row_arrays.h"

namespace voxa::automation {

namespace {

/// A number for the bookmarks of rows that no others have.
std::uint32_t newRowsNumber() {
  static std::uint32_t last = 0;
  return ++last;
}

SeekComparison comparisonOf(const std::string& sign) {
  if (sign == "=") return SeekComparison::equal;
  if (sign == ">=") return SeekComparison::greaterOrEqual;
  if (sign == ">") return SeekComparison::greater;
  if (sign == "<=") return SeekComparison::lessOrEqual;
  if (sign == "<") return SeekComparison::less;
  throw Error(err::dbInvalidArgument,
              "Invalid argument: Seek compares by =, >=, >, <= or <, not by '" + sign + "'");
}

class RecordsetObject final : public Object<::IRecordset> {
 public:
  RecordsetObject(std::shared_ptr<Database> database, std::unique_ptr<Recordset> rows, std::uint32_t number)
      : database_(std::move(database)), rows_(std::make_shared<OpenRows>(std::move(rows))), number_(number) {
    open().push_back(this);
  }
  RecordsetObject(const RecordsetObject&) = delete;
  RecordsetObject& operator=(const RecordsetObject&) = delete;

  /// Those that are not closed, the newest last.
  static std::vector<RecordsetObject*>& open() {
    static std::vector<RecordsetObject*> all;
    return all;
  }
  [[nodiscard]] const std::shared_ptr<Database>& database() const { return database_; }
  [[nodiscard]] const std::string& name() const { return rows().name(); }

  STDMETHODIMP get_Fields(::IFields** fields) override {
    return give(fields, [&] {
      const auto rows = rows_;
      return makeCollection<::IFields, ::IField>({
          .count = [rows] { return rows->get().fieldCount(); },
          .item = [rows](std::size_t i) -> IDispatch* { return makeRowField(rows, i); },
          .find = [rows](const std::string& name) { return rows->get().fieldIndex(name); },
          .append = nullptr,
          .remove = nullptr,
      });
    });
  }
  STDMETHODIMP get_BOF(VARIANT_BOOL* value) override {
    return give(value, [&] { return rows().bof(); });
  }
  STDMETHODIMP get_EOF(VARIANT_BOOL* value) override {
    return give(value, [&] { return rows().eof(); });
  }
  STDMETHODIMP MoveFirst() override {
    return call([&] { rows().moveFirst(); });
  }
  STDMETHODIMP MoveNext() override {
    return call([&] { rows().moveNext(); });
  }
  STDMETHODIMP MoveLast() override {
    return call([&] { rows().moveLast(); });
  }
  STDMETHODIMP MovePrevious() override {
    return call([&] { rows().movePrevious(); });
  }
  STDMETHODIMP Edit() override {
    return call([&] { rows_->edit(); });
  }
  STDMETHODIMP AddNew() override {
    return call([&] { rows_->addNew(); });
  }
  STDMETHODIMP Update() override {
    return call([&] { rows().update(); });
  }
  STDMETHODIMP CancelUpdate() override {
    return call([&] { rows().cancelUpdate(); });
  }
  STDMETHODIMP Delete() override {
    return call([&] { rows().remove(); });
  }
  STDMETHODIMP FindFirst(BSTR criteria) override {
    return call([&] { noMatch_ = !rows().findFirst(fromBstr(criteria)); });
  }
  STDMETHODIMP FindNext(BSTR criteria) override {
    return call([&] { noMatch_ = !rows().findNext(fromBstr(criteria)); });
  }
  STDMETHODIMP FindLast(BSTR criteria) override {
    return call([&] { noMatch_ = !rows().findLast(fromBstr(criteria)); });
  }
  STDMETHODIMP FindPrevious(BSTR criteria) override {
    return call([&] { noMatch_ = !rows().findPrevious(fromBstr(criteria)); });
  }
  STDMETHODIMP get_NoMatch(VARIANT_BOOL* value) override {
    return give(value, [&] { return noMatch_; });
  }
  STDMETHODIMP get_RecordCount(long* count) override {
    return give(count, [&] { return static_cast<std::int32_t>(rows().recordCount()); });
  }
  STDMETHODIMP Close() override {
    return call([&] {
      rows_->close();
      forget();
    });
  }

  STDMETHODIMP get_Name(BSTR* text) override {
    return give(text, [&] { return name(); });
  }
  STDMETHODIMP get_Type(short* type) override {
    return give(type, [&] { return static_cast<std::int16_t>(rows().kind()); });
  }
  STDMETHODIMP get_Updatable(VARIANT_BOOL* value) override {
    return give(value, [&] { return rows().updatable(); });
  }
  STDMETHODIMP get_Bookmarkable(VARIANT_BOOL* value) override {
    return give(value, [&] { return rows().kind() != RecordsetKind::forwardOnly; });
  }
  STDMETHODIMP get_Restartable(VARIANT_BOOL* value) override {
    return give(value, [&] { return rows().kind() != RecordsetKind::table; });
  }
  STDMETHODIMP get_Transactions(VARIANT_BOOL* value) override {
    return give(value, [&] {
      return rows().kind() == RecordsetKind::table || rows().kind() == RecordsetKind::dynaset;
    });
  }
  STDMETHODIMP get_EditMode(short* mode) override {
    return give(mode, [&] { return static_cast<std::int16_t>(rows().editMode()); });
  }
  STDMETHODIMP get_LockEdits(VARIANT_BOOL* lock) override {
    return give(lock, [] { return false; });
  }
  STDMETHODIMP put_LockEdits(VARIANT_BOOL lock) override {
    return call([&] {
      if (lock == 0) return;
      throw Error(err::dbNotSupported,
                  "Rows are not locked one by one; a transaction locks the file at Edit");
    });
  }
  STDMETHODIMP get_Bookmark(VARIANT* bookmark) override {
    return give(bookmark, [&] { return BookmarkBytes{number_, rows().bookmark()}; });
  }
  STDMETHODIMP put_Bookmark(VARIANT bookmark) override {
    return call([&] { goTo(bookmark); });
  }
  STDMETHODIMP get_LastModified(VARIANT* bookmark) override {
    return give(bookmark, [&] { return BookmarkBytes{number_, rows().lastModified()}; });
  }
  STDMETHODIMP Move(long count, VARIANT startBookmark) override {
    return call([&] {
      if (!isMissing(startBookmark)) goTo(startBookmark);
      rows().move(count);
    });
  }
  STDMETHODIMP get_AbsolutePosition(long* position) override {
    return give(position, [&] { return static_cast<std::int32_t>(rows().absolutePosition()); });
  }
  STDMETHODIMP put_AbsolutePosition(long position) override {
    return call([&] { rows().setAbsolutePosition(position); });
  }
  STDMETHODIMP get_PercentPosition(float* position) override {
    return give(position, [&] {
      const auto place = static_cast<float>(rows().absolutePosition());
      if (place < 0) throw Error(err::dbNoCurrentRecord, "There is no current record");
      return 100 * place / static_cast<float>(rows().recordCount());
    });
  }
  STDMETHODIMP put_PercentPosition(float position) override {
    return call([&] {
      if (!(position >= 0 && position <= 100)) {
        throw Error(err::dbInvalidArgument, "Invalid argument: PercentPosition is from 0 to 100");
      }
      const auto count = static_cast<std::ptrdiff_t>(rows().recordCount());
      const auto place = static_cast<std::ptrdiff_t>(std::lround(position / 100 * static_cast<float>(count)));
      rows().setAbsolutePosition(std::min(place, count - 1));
    });
  }
  STDMETHODIMP Requery() override {
    return call([&] {
      if (rows().kind() == RecordsetKind::table) {
        throw Error(err::dbNotSupported, "The rows of a table are always there: they need no Requery");
      }
      rows().requery();
      number_ = newRowsNumber();
    });
  }
  STDMETHODIMP Clone(::IRecordset** clone) override {
    return give(clone,
                [&]() -> ::IRecordset* { return new RecordsetObject(database_, rows().clone(), number_); });
  }
  STDMETHODIMP GetRows(VARIANT count, VARIANT* values) override {
    return give(values, [&] {
      const std::int32_t most = isMissing(count) ? 1 : fromVariant(count).toInt32();
      if (most < 1) throw Error(err::dbInvalidArgument, "Invalid argument: GetRows reads one row or more");
      std::vector<DataType> types;
      for (std::size_t i = 0; i < rows().fieldCount(); ++i) types.push_back(rows().field(i).type);
      return RowArray{getRows(rows(), static_cast<std::size_t>(most)), std::move(types)};
    });
  }
  STDMETHODIMP get_Index(BSTR* index) override {
    return give(index, [&] { return rows().index(); });
  }
  STDMETHODIMP put_Index(BSTR index) override {
    return call([&] {
      rows().setIndex(fromBstr(index));
      number_ = newRowsNumber();
    });
  }
  STDMETHODIMP Seek(BSTR comparison, VARIANT key1, VARIANT key2, VARIANT key3, VARIANT key4, VARIANT key5,
                    VARIANT key6, VARIANT key7, VARIANT key8, VARIANT key9, VARIANT key10, VARIANT key11,
                    VARIANT key12, VARIANT key13) override {
    return call([&] {
      std::vector<Value> keys = {fromVariant(key1)};
      for (const VARIANT* key :
           {&key2, &key3, &key4, &key5, &key6, &key7, &key8, &key9, &key10, &key11, &key12, &key13}) {
        if (isMissing(*key)) break;
        keys.push_back(fromVariant(*key));
      }
      noMatch_ = !rows().seek(comparisonOf(fromBstr(comparison)), keys);
    });
  }
  STDMETHODIMP get_Filter(BSTR* filter) override {
    return give(filter, [&] { return filter_; });
  }
  STDMETHODIMP put_Filter(BSTR filter) override {
    return call([&] {
      requireQuery();
      filter_ = fromBstr(filter);
    });
  }
  STDMETHODIMP get_Sort(BSTR* sort) override {
    return give(sort, [&] { return sort_; });
  }
  STDMETHODIMP put_Sort(BSTR sort) override {
    return call([&] {
      requireQuery();
      sort_ = fromBstr(sort);
    });
  }
  STDMETHODIMP OpenRecordset(VARIANT type, VARIANT options, ::IRecordset** opened) override {
    return give(opened, [&] {
      return makeRecordset(database_, rows().openFrom(filter_, sort_, rowOptions(type, options)));
    });
  }
  STDMETHODIMP get_ValidationRule(BSTR* rule) override {
    return give(rule, [] { return std::string(); });
  }
  STDMETHODIMP get_ValidationText(BSTR* text) override {
    return give(text, [] { return std::string(); });
  }
  STDMETHODIMP get_Properties(::IProperties** properties) override {
    return give(properties, [&] { return makeProperties(this); });
  }

 protected:
  ~RecordsetObject() override { forget(); }

 private:
  [[nodiscard]] Recordset& rows() const { return rows_->get(); }
  void requireQuery() const {
    if (rows().kind() != RecordsetKind::table) return;
    throw Error(err::dbNotSupported,
                "The rows of a table have neither Filter nor Sort; those of a dynaset have");
  }
  void goTo(const VARIANT& given) {
    const BookmarkBytes bookmark = bookmarkFrom(given);
    if (bookmark.rows != number_) throw Error(err::dbNotABookmark, "The bookmark is one of other rows");
    rows().goTo(bookmark.place);
  }
  void forget() {
    database_ = nullptr;
    auto& all = open();
    const auto found = std::find(all.rbegin(), all.rend(), this);
    if (found != all.rend()) all.erase(std::next(found).base());
  }

  std::shared_ptr<Database> database_;
  std::shared_ptr<OpenRows> rows_;
  std::uint32_t number_;  ///< of the rows, in their bookmarks
  bool noMatch_ = false;
  std::string filter_;
  std::string sort_;
};

}  // namespace

::IRecordset* makeRecordset(std::shared_ptr<Database> database, std::unique_ptr<Recordset> rows) {
  return new RecordsetObject(std::move(database), std::move(rows), newRowsNumber());
}

::IRecordsets* openRecordsets(const std::shared_ptr<Database>& database) {
  const auto all = [database] {
    std::vector<RecordsetObject*> found;
    for (RecordsetObject* rows : RecordsetObject::open()) {
      if (rows->database() == database) found.push_back(rows);
    }
    return found;
  };
  return makeCollection<::IRecordsets, ::IRecordset>({
      .count = [all] { return all().size(); },
      .item = [all](std::size_t i) -> IDispatch* { return all().at(i); },
      .find =
          [all](const std::string& name) {
            const std::vector<RecordsetObject*> found = all();
            return findName(name, found.size(), [&](std::size_t i) { return found[i]->name(); });
          },
      .append = nullptr,
      .remove = nullptr,
  });
}

}  // namespace voxa::automation
