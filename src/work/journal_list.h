#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/journal_condition.h"
#include "work/journal_filter.h"
#include "work/journal_scan.h"
#include "work/transaction_type.h"

namespace voxa {

class Database;
class Installation;

/// Which transactions a person wants to see. An empty text asks for all.
struct JournalFilter {
  std::string since = {};    ///< from the beginning of this on, as writtenSpan reads it
  std::string until = {};    ///< the same, up to its end
  std::string reader = {};   ///< name, in any case, of now or of then
  std::string card = {};     ///< number, holder's name, or the code of a card that was not known
  std::string type = {};     ///< granted, refused, time, rights, unknown, other, in any case, or two digits
  std::string person = {};   ///< name or card number: what this person did, under any name he had
  std::string station = {};  ///< name, in any case, of now or of then
  std::string last = {};     ///< only so many, the newest
  std::optional<std::int32_t> after = {};  ///< only rows with a higher number, which were read later
};

/// A transaction of the journal. A name that was not known then is "".
struct JournalRow {
  std::int32_t id = 0;  ///< in the order of reading
  DateTime date;        ///< a minute; 0 in a row without a date
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
///
/// The newest are those of the latest dates, and of one minute those that were read last: a controller that
/// was read late brings old transactions behind newer ones. A reader or station is found by its name, and by
/// the number that the one of that name has now, since it has it (place_history.h): so it is found under the
/// names that it had before, too.
class JournalList {
 public:
  /// A Refusal for a filter that cannot be read, a time that ends before it begins, and when the journal
  /// cannot be opened.
  JournalList(Installation& installation, JournalFilter filter);
  /// Hands them over by date, and returns how many they are. The file is locked for no call of `take`, which
  /// may take long. The memory does not grow with their number. A Refusal at the end when there was none and
  /// requireKnown says so: the journal keeps the names of those that are gone, and a name that is in neither
  /// is a mistake. Not with `after`: whoever follows has asked that before.
  std::size_t each(const std::function<void(const JournalRow&)>& take) const;
  /// A Refusal when the installation does not know, and did not know, the filter's reader, station, person or
  /// card, and for digits of a type of which the journal has nothing.
  void requireKnown() const;
  /// The greatest number that `last` can be.
  static constexpr std::int32_t mostLast = 100'000;

 private:
  /// Goes through the rows that pass, in no order, until `take` returns false.
  void visit(const JournalCondition& condition, ScanOrder order,
             const std::function<bool(JournalRow row)>& take) const;
  [[nodiscard]] bool passes(const JournalRow& row) const;
  [[nodiscard]] std::vector<JournalRow> newest() const;

  Installation& installation_;
  JournalFilter filter_;
  std::shared_ptr<Database> journal_;
  JournalCondition condition_;  ///< that all rows of the list meet, and with a person some others
  std::optional<JournalPerson> person_;
  std::size_t last_ = 0;  ///< 0: all
};

}  // namespace voxa
