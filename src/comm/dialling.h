#pragma once

#include <cstdint>
#include <string>

namespace voxa {

class CommContext;

// Stations with a telephone number. A station is in use from a call that came through until it is hung up.

/// Calls a station. It is noted before, so that whoever sends next hangs up what a killed process has left.
/// stays: the line is meant to stay up when this process ends; it is not noted then. 0, or what the driver
/// said, which stands in `Com.errorList` then.
std::int16_t callStation(CommContext& context, std::int16_t station, bool stays);
/// Hangs up, and puts the station out of use whatever the driver says.
std::int16_t hangUpStation(CommContext& context, std::int16_t station);
/// Hangs up what processes that are no longer at work have left. Nothing while communications are inhibited.
void hangUpAbandoned(CommContext& context);

/// Seconds that a line is left alone before it is called, and until its controllers can be spoken to.
inline constexpr int secondsBeforeCall = 20;
inline constexpr int secondsBehindCall = 5;

/// A call for one piece of work: made with a second attempt, hung up at its end.
class StationCall {
 public:
  StationCall(CommContext& context, std::int16_t station);
  ~StationCall();
  StationCall(const StationCall&) = delete;
  StationCall& operator=(const StationCall&) = delete;

  [[nodiscard]] bool isUp() const { return failure_.empty(); }
  [[nodiscard]] const std::string& failure() const { return failure_; }

 private:
  CommContext& context_;
  std::int16_t station_;
  std::string failure_;
};

}  // namespace voxa
