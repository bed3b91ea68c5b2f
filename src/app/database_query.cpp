#include "app/database_query.h"

#include <algorithm>

#include "app/open_database.h"
#include "platform/text.h"
#include "work/refusal.h"

namespace voxa {

namespace {

/// Runs `work`, with what its failures mean to a person.
template <typename Work>
decltype(auto) refusing(Work&& work) {
  try {
    return work();
  } catch (const Error& error) {
    switch (error.number()) {
      case err::dbLocked:
        throw;
      case err::dbInvalidOperation:
        throw Refusal("the statement changes rows or tables, which it may with --write only");
      case err::dbSelectExecuted:
        throw Refusal("the statement only reads: call it without --write");
      case err::dbNoPermission:
        throw Refusal(error.description() + "; with --show-pins it is a column like others");
      default:
        throw Refusal(error.description());
    }
  }
}

/// The names with a number behind those that came before. In a result two aliases can be the same.
std::vector<std::string> allDifferent(const std::vector<std::string>& names) {
  std::vector<std::string> out;
  for (const std::string& name : names) {
    std::string own = name;
    const auto taken = [&](const std::string& other) { return equalNoCase(other, own); };
    for (int n = 2; std::any_of(out.begin(), out.end(), taken); ++n) own = name + "_" + std::to_string(n);
    out.push_back(std::move(own));
  }
  return out;
}

}  // namespace

DatabaseQuery::DatabaseQuery(const Clock& clock, const std::string& file, FileRights rights)
    : engine_(makeFileEngine(clock, rights)) {
  refusing([&] { database_ = engine_->open(file); });
  if (!rights.write || !isLedger(*database_)) return;
  throw Refusal(
      file +
      " is a ledger, which nothing but the sends themselves may write: what it says of the controllers "
      "is believed when doors are opened or shut");
}

DatabaseQuery::Rows::Rows(std::unique_ptr<Recordset> rows) : rows_(std::move(rows)) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < rows_->fieldCount(); ++i) names.push_back(rows_->field(i).name);
  columns_ = allDifferent(names);
}

void DatabaseQuery::Rows::each(const std::function<void(const std::vector<Value>&)>& row) const {
  std::vector<Value> values(columns_.size());
  const auto read = [&] {
    try {
      for (std::size_t i = 0; i < values.size(); ++i) values[i] = rows_->get(i);
      return true;
    } catch (const Error& error) {
      if (error.number() != err::dbRecordDeleted) throw;
      return false;
    }
  };
  for (rows_->moveFirst(); !rows_->eof(); rows_->moveNext()) {
    if (refusing(read)) row(values);
  }
}

DatabaseQuery::Rows DatabaseQuery::select(const std::string& statement) const {
  return refusing([&] { return Rows(database_->openRecordset(statement)); });
}

int DatabaseQuery::change(const std::string& statement) const {
  return refusing([&] { return database_->execute(statement); });
}

}  // namespace voxa
