#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/value.h"

namespace voxa {

class Installation;

/// A reader, one side of a door, as a person writes it.
struct ReaderTexts {
  std::string name;
  std::string station;        ///< name of its line
  std::string address;        ///< of its controller on the line, 1 to 16
  std::string position;       ///< on the controller, 1 to 4; 1 and 3, 2 and 4 are the two sides of one door
  std::string type = "QSX3";  ///< of its controller: QSX3 or VRMD1
};

struct ReaderRow {
  std::int32_t id = 0;
  std::string name;
  std::int16_t stationId = 0;
  std::string station;
  Value address, position;  ///< Null of a reader that is not connected
  Value type;
};

struct AddedReader {
  std::int16_t id = 0;
  bool newController = false;  ///< the first reader of its controller
  bool cardsToSend = false;    ///< the default group has cards, and the line is in use: see sendDefaultGroup
};

/// Adds a reader, which the default group opens always, marks that group when it has cards, and writes the
/// file from which the driver knows the line. All programs and holidays are marked to be sent when its
/// controller is new: it may hold none of them. What cannot be as it is written is a Refusal, and nothing is
/// changed then.
AddedReader addReader(Installation& installation, const ReaderTexts& texts);

[[nodiscard]] std::vector<ReaderRow> listReaders(Installation& installation);  ///< by id

/// Where a reader is connected.
struct ReaderPlace {
  ControllerPlace controller;
  std::int16_t position = 0;
};
/// A Refusal when there is no such reader or station, when the reader is on another station, and when it is
/// not connected.
[[nodiscard]] ReaderPlace placeOf(Installation& installation, const std::string& station,
                                  const std::string& reader);

/// A controller's address as a person writes it, 1 to 16; a Refusal for any other text.
[[nodiscard]] std::int16_t controllerAddress(const std::string& text);

}  // namespace voxa
