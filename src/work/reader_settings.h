#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"

namespace voxa {
class Recordset;
}

namespace voxa {

class Installation;

// How a reader and its door work. It is kept for other programs: this system sends no lines for it.

/// As a person writes it. What is not given stays as it is. "none" takes a locking input and a code away.
struct ReaderSettingTexts {
  std::optional<std::string> orientation = {}, accessCriteria = {}, antipassback = {}, openDelay = {},
                             closeDelay = {}, alarmMode = {}, doorMode = {}, program = {}, lockingInput = {},
                             pin = {}, supervisorMode = {}, counting = {};

  [[nodiscard]] bool any() const;
};

/// One as the table has it; the weekly program by name.
struct ReaderSetting {
  std::string name;  ///< "OpenDelay"
  Value value;
  bool marked = false;  ///< to be sent, by a program that does
  bool secret = false;  ///< the door's code
};

/// Sets what is given, marked, in a reader's row that is being edited. A Refusal for what cannot be.
void setReaderSettings(Installation& installation, Recordset& row, const ReaderSettingTexts& texts);
/// All of them, in the order in which they are shown.
[[nodiscard]] std::vector<ReaderSetting> readerSettings(Installation& installation, const Recordset& row);

}  // namespace voxa
