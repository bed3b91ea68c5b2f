#include "work/row_copy.h"

#include <algorithm>
#include <utility>

#include "platform/text.h"

namespace voxa {

namespace {

/// Whether a field's values are not to be shown: a reason or key can come to a terminal.
bool isPersonal(const std::string& field) {
  return equalNoCase(field, "PINCode");
}

}  // namespace

bool isAboutRow(const Error& error) {
  constexpr int ofRows[] = {err::overflow,         err::typeMismatch, err::invalidNull,
                            err::dbDuplicate,      err::dbNullKey,    err::dbTextTooLong,
                            err::dbRelatedMissing, err::dbRequired,   err::dbZeroLength,
                            err::dbValidationRule, err::dbConversion, err::dbTypeMismatch};
  return std::find(std::begin(ofRows), std::end(ofRows), error.number()) != std::end(ofRows);
}

RowCopy::RowCopy(Database& to, const TableDef& target, std::vector<std::string> fields, OnRefused refused)
    : to_(to),
      target_(target),
      fields_(std::move(fields)),
      refused_(std::move(refused)),
      insert_(to.prepare(insertionOf(target.name, fields_))),
      values_(fields_.size()) {
  for (const std::string& field : fields_) definitions_.push_back(target.field(field));
}

void RowCopy::write(const Value* row) {
  ++read_;
  const FieldDef* at = nullptr;  // the field whose value is converted
  try {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      const FieldDef& field = *definitions_[i];
      if (isStoredAsIs(row[i], field)) {
        values_[i] = row[i];
        continue;
      }
      at = &field;
      values_[i] = convertForField(row[i], field.type, field.size);
    }
    at = nullptr;
    (void)insert_->execute(values_);
  } catch (const Error& error) {
    if (!isAboutRow(error)) throw;
    const bool personal = at != nullptr && isPersonal(at->name);
    refused_(
        {target_.name,
         keyOfRow(target_, fields_, row, read_),
         (at == nullptr ? "" : at->name + ": ") + (personal ? "the value does not fit" : error.description()),
         fields_,
         {row, row + fields_.size()}});
    return;
  }
  written_.add(values_.data(), values_.size());
}

std::string keyOfRow(const TableDef& table, const std::vector<std::string>& fields, const Value* row,
                     std::size_t number) {
  std::string key;
  const auto primary = std::find_if(table.indexes.begin(), table.indexes.end(),
                                    [](const IndexDef& index) { return index.primary; });
  if (primary != table.indexes.end()) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const auto isKey = [&](const std::string& field) { return equalNoCase(field, fields[i]); };
      if (std::none_of(primary->fields.begin(), primary->fields.end(), isKey)) continue;
      key += (key.empty() ? "" : ", ") + fields[i] + " " +
             (row[i].isNull()         ? "Null"
              : isPersonal(fields[i]) ? "****"
                                      : row[i].toText());
    }
  }
  return key.empty() ? "row " + std::to_string(number) : key;
}

void RowCopy::compare() {
  requireSame(target_.name, written_, digestOf(to_, target_.name, fields_));
}

void requireSame(const std::string& table, const TableDigest& original, const TableDigest& copy) {
  if (original == copy) return;
  throw Error(err::internalError, "The table " + table +
                                      " does not hold the rows that were written to it; nothing of them is "
                                      "kept. Try again, on another disk if it fails again");
}

}  // namespace voxa
