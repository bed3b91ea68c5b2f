#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/value.h"
#include "work/transaction_type.h"

namespace voxa {

class Database;
class Installation;

/// Which transactions a person wants to see. An empty text asks for all.
struct JournalFilter {
  std::string since = {};   ///< a day, or a day and minute: from its beginning on
  std::string until = {};   ///< the same, up to its end
  std::string reader = {};  ///< name, in any case
  std::string card = {};    ///< number, holder's name, or the code of a card that was not known
  std::string type = {};    ///< granted, refused, time, rights, unknown, other, or two digits
};

/// A transaction of the journal. A name that was not known then is "".
struct JournalRow {
  DateTime date;  ///< a minute
  std::int32_t stationId = 0;
  std::string station;
  std::int32_t readerId = 0;
  std::string reader;
  std::string type;  ///< two digits
  TransactionMeaning meaning = TransactionMeaning::other;
  std::string cardholder;
  std::string data;  ///< as the controller recorded it
  std::string code;  ///< of a card that was not known, in 0 to 9 and A to F; "" for every other
};

/// The database of the journal; a Refusal when it is not open.
[[nodiscard]] std::shared_ptr<Database> openedJournal(Installation& installation);

/// The transactions that pass a filter.
class JournalList {
 public:
  /// A Refusal for a filter that cannot be read, and when the journal cannot be opened.
  JournalList(Installation& installation, JournalFilter filter);
  /// Hands them over by date, and returns how many they are. A Refusal at the end when there was none and the
  /// installation does not know the filter's reader either: the journal keeps the names of readers that are
  /// gone, and a name that is in neither is a mistake.
  std::size_t each(const std::function<void(const JournalRow&)>& take) const;

 private:
  [[nodiscard]] bool passes(const JournalRow& row) const;

  Installation& installation_;
  JournalFilter filter_;
  std::shared_ptr<Database> journal_;
  std::optional<DateTime> since_;
  std::optional<DateTime> until_;
};

}  // namespace voxa
