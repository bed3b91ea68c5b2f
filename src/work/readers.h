#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "comm/com_types.h"
#include "platform/value.h"
#include "work/door_change.h"
#include "work/reader_settings.h"

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

/// What a list is narrowed to; "" for all.
struct ReaderFilter {
  std::string station;  ///< readers of this one
  std::string group;    ///< readers that this access group is granted, by name or number
};
/// By id.
[[nodiscard]] std::vector<ReaderRow> listReaders(Installation& installation, const ReaderFilter& filter = {});

/// One reader, with all that is known of it.
struct ReaderDetails {
  struct Grant {
    std::int16_t group = 0;
    std::string groupName, program;  ///< name of the weekly program, its number when there is none
  };
  ReaderRow row;
  std::vector<Grant> groups;  ///< that it is granted to, by number
  std::vector<ReaderSetting> settings;
};
[[nodiscard]] ReaderDetails findReader(Installation& installation, const std::string& reader);

/// A change of a reader. What is not given stays as it is.
struct ReaderChange {
  std::optional<std::string> station = {}, address = {}, position = {};
  /// Of its controller, and so of all its readers. A reader that goes to a controller takes its type.
  std::optional<std::string> type = {};
  ReaderSettingTexts settings = {};
  bool gone = false;  ///< DoorChange::gone
};
struct ChangedReader {
  ChangedDoors doors;
  std::vector<std::string> typeToo;    ///< other readers of the controller whose type has changed with it
  std::vector<std::string> liftsLeft;  ///< lift outputs of the controller that has lost its last reader
};
/// Changes a reader. A controller that loses cards by it erases them first (changeDoors), and the files from
/// which the driver knows the lines are written.
ChangedReader changeReader(Installation& installation, const std::string& reader, const ReaderChange& change);
void renameReader(Installation& installation, const std::string& reader, const std::string& name);

/// What becomes of the access groups that open a reader which is deleted. The default group just loses it.
struct ReaderRemoval {
  std::string moveTo = {};  ///< the reader that they open instead, at the same times
  bool revoke = false;      ///< they lose the door
  bool gone = false;        ///< DoorChange::gone
};
struct DeletedReader {
  ChangedDoors doors;
  /// Groups that open another reader now: "Staff opens Back door by Office".
  std::vector<std::string> grants;
  std::vector<std::string> liftsLeft;  ///< as of ChangedReader
};
/// Deletes a reader. A Refusal names the groups that open it when nobody says what becomes of them. A
/// controller that loses cards by it erases them first (changeDoors).
DeletedReader deleteReader(Installation& installation, const std::string& reader,
                           const ReaderRemoval& removal = {});

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
