#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engines/dao/dao_database.h"
#include "platform/database/recordset.h"

namespace voxa {

/// Rows of the installed engine. Finding, seeking and bookmarks are in recordset_places.cpp.
class DaoRecordset final : public Recordset {
 public:
  /// source: what the rows were opened with.
  DaoRecordset(std::shared_ptr<DaoDatabase> database, std::string source, dao::Object rows);

  [[nodiscard]] RecordsetKind kind() const override { return kind_; }
  [[nodiscard]] const std::string& name() const override { return source_; }
  [[nodiscard]] bool updatable() const override;

  [[nodiscard]] bool eof() const override;
  [[nodiscard]] bool bof() const override;
  void moveFirst() override;
  void moveLast() override;
  void moveNext() override;
  void movePrevious() override;
  void move(std::ptrdiff_t rows) override;
  [[nodiscard]] std::size_t recordCount() const override;

  [[nodiscard]] Bookmark bookmark() const override;
  void goTo(Bookmark place) override;
  [[nodiscard]] Bookmark lastModified() const override;
  [[nodiscard]] std::ptrdiff_t absolutePosition() const override;
  void setAbsolutePosition(std::ptrdiff_t position) override;

  bool findFirst(std::string_view condition) override;
  bool findLast(std::string_view condition) override;
  bool findNext(std::string_view condition) override;
  bool findPrevious(std::string_view condition) override;

  [[nodiscard]] const std::string& index() const override;
  void setIndex(std::string_view name) override;
  bool seek(SeekComparison comparison, const std::vector<Value>& keys) override;

  void requery() override;
  [[nodiscard]] std::unique_ptr<Recordset> clone() override;
  [[nodiscard]] std::unique_ptr<Recordset> openFrom(std::string_view filter, std::string_view sort,
                                                    RowOptions options) override;

  [[nodiscard]] std::size_t fieldCount() const override { return fields_.size(); }
  [[nodiscard]] const FieldDef& field(std::size_t index) const override;
  [[nodiscard]] Source source(std::size_t index) const override;
  [[nodiscard]] std::size_t fieldIndex(std::string_view name) const override;

  [[nodiscard]] Value get(std::size_t index) const override;
  void edit() override;
  void addNew() override;
  void set(std::size_t index, const Value& value) override;
  void update() override;
  void cancelUpdate() override;
  [[nodiscard]] EditMode editMode() const override;
  void remove() override;

 private:
  /// The library's bookmarks of these rows and their clones, by the numbers that callers get.
  struct Places {
    std::vector<std::string> bookmarks{};
    std::map<std::string, Bookmark> numbers{};
  };
  /// A field of the library; its value is always that of the current row.
  struct Column {
    dao::Object field;
    std::string name;
    std::optional<FieldDef> stored{};      ///< name, type and size, for values that are set
    std::optional<FieldDef> definition{};  ///< the whole one
  };

  template <typename Operation>
  decltype(auto) guarded(Operation&& operation) const {
    return database_->session().guarded(std::forward<Operation>(operation));
  }
  void call(const char* member) const;
  [[nodiscard]] bool isEmpty() const;
  [[nodiscard]] Column& column(std::size_t index) const { return fields_.at(index); }
  [[nodiscard]] Bookmark numberOf(const char* member) const;
  void goToBytes(const std::string& bookmark) const;
  /// Runs a search; without a match the current row stays, which the library does not promise.
  bool search(const char* member, dao::Arguments arguments) const;
  [[nodiscard]] std::unique_ptr<DaoRecordset> beside(dao::Object rows) const;

  std::shared_ptr<DaoDatabase> database_;
  std::string source_;
  dao::Object rows_;
  RecordsetKind kind_;
  mutable std::vector<Column> fields_;
  std::shared_ptr<Places> places_ = std::make_shared<Places>();
  mutable std::string index_;
};

}  // namespace voxa
