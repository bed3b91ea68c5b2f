#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/value.h"

namespace voxa {

class Database;
class Recordset;
class TableContext;

/// A controller as the ledger knows it. Station numbers are used again, so that a place alone does not say
/// which controller is meant: each generation has a number of its own.
struct LedgerController {
  std::int32_t id = 0;
  ControllerPlace place;
  std::string type;          ///< "VRMD1", or "QSX3" for any other; "" without a reader, or with two forms
  std::int32_t changes = 0;  ///< how often something was noted of it
  DateTime since;
  std::optional<DateTime> retired;
  std::optional<DateTime> lastContact;  ///< when it acknowledged something last
  std::string stationName;              ///< as it was called last
};
inline constexpr const char* ledgerControllerColumns =
    "Id, Station, Address, Type, Changes, Since, StationName, Retired, LastContact";
/// One as a row of the ledger's table has it. row: of a query that begins with `ledgerControllerColumns`.
[[nodiscard]] LedgerController ledgerController(const Recordset& row);

/// The controllers in use, by place. It is read once, and holds for one piece of work.
///
/// A station that is deleted retires its controllers. When name, port and telephone number of one have all
/// changed, it is another station under the same number, or the same one: of what its controllers hold
/// nothing is known any more. Nor of a controller whose type was corrected, or which was exchanged for one of
/// another type, nothing is known any more: lines in the other form may have been acknowledged and thrown
/// away.
class ControllerList {
 public:
  /// Brings the ledger's list in line with the stations and readers of the main database, as far as that can
  /// be read. Within a transaction of the ledger.
  ControllerList(Database& ledger, TableContext& context);

  /// The controller at a place. One that was not known is added; where one was that is retired, of what that
  /// one held nothing is known.
  LedgerController& at(const ControllerPlace& place);
  /// Brings the entries of places up to date. Those of them where another process has noted something of the
  /// controller since the list knew of it, or put another one in its place.
  [[nodiscard]] std::set<ControllerPlace> refresh(const std::set<ControllerPlace>& places);
  [[nodiscard]] const LedgerController* find(const ControllerPlace& place) const;
  /// The known controllers of a line.
  [[nodiscard]] std::vector<ControllerPlace> ofStation(std::int16_t station) const;
  [[nodiscard]] const std::map<ControllerPlace, LedgerController>& all() const { return controllers_; }
  /// Raises why the main database could not be read; nothing when there is none.
  void requireInstallation() const;
  /// The places with readers, each with the type of its controller.
  [[nodiscard]] const std::map<ControllerPlace, std::string>& installed() const { return types_; }
  /// Name of a station that there is; "" of any other.
  [[nodiscard]] std::string nameOf(std::int16_t station) const;
  /// Retires the controller at a place: the one that is there now is another one, which holds nothing.
  LedgerController& replace(const ControllerPlace& place);
  /// The readers of the controller at `from` are at `to` from now on, where none was before. It may be the
  /// same controller: of what that one may have held nothing is known there.
  void carryOver(const ControllerPlace& from, const ControllerPlace& to);

 private:
  struct Line {
    std::string name;
    Value port;
    std::string phone;
  };
  void readLedger();
  void readInstallation(Database& main);
  void align();
  /// typeBefore: of one without readers, that of the controller before it.
  LedgerController& add(const ControllerPlace& place, const std::string& typeBefore = "");
  [[nodiscard]] std::optional<std::int32_t> lastRetired(const ControllerPlace& place) const;
  void retire(const LedgerController& controller);
  void forgetHoldings(const LedgerController& controller);
  /// Of what the one held, as far as the other one is not said to hold it, nothing is known at the other one.
  void mayHoldWhatWasAt(std::int32_t before, const LedgerController& controller);
  void forgetDigests(const LedgerController& controller);
  [[nodiscard]] static bool isAnother(const Line& known, const Line& now);

  Database& ledger_;
  TableContext& context_;
  std::map<ControllerPlace, LedgerController> controllers_;
  std::map<ControllerPlace, Line> knownLines_;    // as the ledger has them
  std::optional<Error> unread_;                   // why the main database could not be read
  std::map<std::int16_t, Line> lines_;            // of the stations, as they are now
  std::map<ControllerPlace, std::string> types_;  // of the readers
};

}  // namespace voxa
