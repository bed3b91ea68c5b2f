#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/door_change.h"

namespace voxa {

class Installation;

/// A station, a communication line, as a person writes it. What is not given stays as it is.
struct StationTexts {
  std::optional<std::string> name = {};
  std::optional<std::string> port = {};                   ///< serial port, from 1 to 256
  std::optional<std::string> speed = {};                  ///< 4800, 9600, 19200 or 38400 bit/s
  std::optional<std::string> phone = {};                  ///< of a modem line
  std::optional<std::string> modem = {};                  ///< file that initialises the modem
  std::optional<std::string> timeout = {}, waiting = {};  ///< ms
  std::optional<bool> active = {};                        ///< whether the line is in use
};

struct StationRow {
  std::int16_t id = 0;
  std::string name;
  std::int32_t port = 1;  ///< from 1
  Value speed;            ///< bit/s
  Value phone, modem;
  Value timeout, waiting;  ///< ms
  bool active = false;
  std::int32_t readers = 0;  ///< how many are on the line
};

struct AddedStation {
  std::int16_t id = 0;
  std::int16_t port = 1;  ///< from 1
};

// What cannot be as it is written, and a port on which another line is in use, is a Refusal; nothing is
// changed then. Both write the file from which the driver knows the line: its failure is raised, and undoes
// the row.

/// Adds a station: in use unless told otherwise or it has a telephone number, and on the first port without a
/// line in use unless one is given.
AddedStation addStation(Installation& installation, const StationTexts& texts);
/// Changes a station. One that comes into use has all programs and holidays marked to be sent: they count as
/// sent once the lines in use have them.
void changeStation(Installation& installation, const std::string& name, const StationTexts& texts);

/// What went to another station with a deletion.
struct DeletedStation {
  ChangedDoors doors;
  std::vector<std::string> moved;  ///< "reader Garage", "lift output Third floor"
};
/// Deletes a station, its file for the driver, and what is known of who answers there. moveTo: the station
/// that its readers, lift outputs and alarms go to, each to the same address; "" when it has none. What its
/// controllers hold they erase first (changeDoors). A Refusal names what uses it, places that are taken
/// there, and controllers of two types that would meet; so it does for the only station, and for one that is
/// connected by telephone and has nothing to move. A connected one that has is hung up in between. gone:
/// DoorChange::gone.
DeletedStation deleteStation(Installation& installation, const std::string& name,
                             const std::string& moveTo = "", bool gone = false);

/// Has the controllers of a line change to another speed, and notes it when they were told. A Refusal with
/// what the line answered otherwise: they may listen at the old speed.
void changeLineSpeed(Installation& installation, const std::string& name, const std::string& speed);

/// Calls a station that has a telephone number, and leaves it connected and in use; hangs it up. A Refusal
/// when it has none, and with what the driver said otherwise.
void connectStation(Installation& installation, const std::string& name);
void disconnectStation(Installation& installation, const std::string& name);

/// A Refusal when there is none of that name.
[[nodiscard]] StationRow findStation(Installation& installation, const std::string& name);
[[nodiscard]] std::vector<StationRow> listStations(Installation& installation);  ///< by id

}  // namespace voxa
