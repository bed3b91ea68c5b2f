#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {

class Installation;

/// Which cards a person wants, as it was written. What is not given, every card has.
struct CardFilter {
  std::optional<std::string> group = {};          ///< name or number of the access group
  std::optional<std::string> door = {};           ///< name of a reader that the group opens
  std::optional<std::string> name = {};           ///< a part of the name, in any case
  std::optional<std::string> text = {};           ///< the number, the code, or a part of the name
  std::optional<std::string> valid = {};          ///< yes or no
  std::optional<std::string> supervisor = {};     ///< yes or no
  std::optional<std::string> expiresBefore = {};  ///< a day: the last day is before it, and not over yet
  bool expired = false;                           ///< the last day is over
  bool neverUsed = false;                         ///< the journal has no transaction of the card
  bool pending = false;                           ///< marked: a controller has yet to be told of a change
  bool deleted = false;                           ///< the deleted cards instead of the others
  std::optional<std::string> sort = {};           ///< number, which it is unless given, name, group or until
  std::optional<std::string> limit = {};          ///< how many at most, 1 and more
};

/// The same of conditions: group=, door=, name=, valid=, supervisor= and expires-before= with a value, and
/// expired, never-used, pending, deleted. A Refusal for any other, and for one that is there twice.
[[nodiscard]] CardFilter cardFilterOf(const std::vector<std::string>& conditions);

/// A card of a list. Values as the table has them, Null where it has none.
struct CardRow {
  Value number, name, code;
  Value group;  ///< its name
  Value valid, supervisor, until, credit;
  std::string pin;      ///< four digits, "" for none
  bool toSend = false;  ///< whether a controller has yet to be told of a change
  std::int32_t id = 0;  ///< of the row
};

/// The cards that pass a filter. A Refusal for a filter that cannot be understood, or that names what there
/// is not.
[[nodiscard]] std::vector<CardRow> listCards(Installation& installation, const CardFilter& filter = {});

}  // namespace voxa
