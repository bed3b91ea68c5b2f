// Places among rows: bookmarks, positions, and what is sought.

#include "engines/dao/dao_recordset.h"

namespace voxa {

using dao::Kind;
using dao::Object;

namespace {

const char* signOf(SeekComparison comparison) {
  switch (comparison) {
    case SeekComparison::equal:
      return "=";
    case SeekComparison::greaterOrEqual:
      return ">=";
    case SeekComparison::greater:
      return ">";
    case SeekComparison::lessOrEqual:
      return "<=";
    case SeekComparison::less:
      break;
  }
  return "<";
}

std::string bytesOf(const Value& bookmark) {
  if (const auto* bytes = std::get_if<Bytes>(&bookmark.data())) return bytes->data;
  throw Error(err::dbNoCurrentRecord, "There is no current record");
}

dao::Arguments single(std::string_view text) {
  dao::Arguments out;
  out.push_back(dao::argument(std::string(text)));
  return out;
}

}  // namespace

Bookmark DaoRecordset::numberOf(const char* member) const {
  return guarded([&] {
    const std::string bytes = bytesOf(rows_.value(member));
    const auto [entry, isNew] =
        places_->numbers.try_emplace(bytes, static_cast<Bookmark>(places_->bookmarks.size()));
    if (isNew) places_->bookmarks.push_back(bytes);
    return entry->second;
  });
}

Bookmark DaoRecordset::bookmark() const {
  return numberOf("Bookmark");
}

Bookmark DaoRecordset::lastModified() const {
  return numberOf("LastModified");
}

void DaoRecordset::goToBytes(const std::string& bookmark) const {
  rows_.put("Bookmark", Value(Bytes{bookmark}));
}

void DaoRecordset::goTo(Bookmark place) {
  guarded([&] {
    if (place >= places_->bookmarks.size())
      throw Error(err::dbNotABookmark, "Not a valid bookmark: these rows have no such place");
    goToBytes(places_->bookmarks[place]);
  });
}

std::ptrdiff_t DaoRecordset::absolutePosition() const {
  return guarded([&] { return static_cast<std::ptrdiff_t>(rows_.number("AbsolutePosition")); });
}

void DaoRecordset::setAbsolutePosition(std::ptrdiff_t position) {
  guarded([&] { rows_.put("AbsolutePosition", static_cast<std::int32_t>(position)); });
}

bool DaoRecordset::search(const char* member, dao::Arguments arguments) const {
  return guarded([&] {
    const bool isBehind = rows_.flag("EOF");
    const bool isBefore = rows_.flag("BOF");
    const std::string before = isBehind || isBefore ? "" : bytesOf(rows_.value("Bookmark"));
    (void)rows_.callWith(member, std::move(arguments));
    if (!rows_.flag("NoMatch")) return true;
    if (!before.empty()) {
      goToBytes(before);
    } else if (isBehind != isBefore) {
      (void)rows_.call(isBehind ? "MoveLast" : "MoveFirst");
      (void)rows_.call(isBehind ? "MoveNext" : "MovePrevious");
    }
    return false;
  });
}

bool DaoRecordset::findFirst(std::string_view condition) {
  return search("FindFirst", single(condition));
}

bool DaoRecordset::findLast(std::string_view condition) {
  return search("FindLast", single(condition));
}

bool DaoRecordset::findNext(std::string_view condition) {
  return search("FindNext", single(condition));
}

bool DaoRecordset::findPrevious(std::string_view condition) {
  return search("FindPrevious", single(condition));
}

const std::string& DaoRecordset::index() const {
  return guarded([&]() -> const std::string& {
    index_ = rows_.text("Index");
    return index_;
  });
}

void DaoRecordset::setIndex(std::string_view name) {
  guarded([&] {
    rows_.put("Index", std::string(name));
    places_ = std::make_shared<Places>();
    moveFirst();
  });
}

bool DaoRecordset::seek(SeekComparison comparison, const std::vector<Value>& keys) {
  constexpr std::size_t mostKeys = 13;
  return guarded([&] {
    if (keys.empty() || keys.size() > mostKeys)
      throw Error(err::dbInvalidArgument, "Invalid argument: Seek takes 1 to 13 keys");
    dao::Arguments arguments = single(signOf(comparison));
    for (const Value& key : keys) arguments.push_back(dao::argument(key));
    return search("Seek", std::move(arguments));
  });
}

}  // namespace voxa
