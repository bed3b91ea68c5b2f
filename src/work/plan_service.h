#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/value.h"
#include "work/access_questions.h"
#include "work/carry_out.h"

namespace voxa {

/// Plans, downloads and questions for a program that wants texts and numbers. Each member is a public
/// operation: a failure is shown, and so is why something is refused.
class PlanService {
 public:
  explicit PlanService(Installation& installation) : installation_(installation) {}

  /// A thing that a controller misses, or a row that is left out.
  struct Item {
    std::string controller, thing, action, reason;
  };
  /// Of the last plan, or what the last download has left.
  [[nodiscard]] const std::vector<Item>& items() const { return items_; }

  /// Makes the plan of a station's controllers, of a reader's, or of all. How many items it has; -1 on
  /// failure.
  std::int32_t plan(const std::string& station, const std::string& reader);

  static constexpr std::int16_t incomplete = 3;  ///< something is missing or left out
  /// 0 when every controller in question holds what it should; incomplete; or an error's number.
  std::int16_t download(const std::string& station, const std::string& reader, bool full, bool dial);
  std::int16_t downloadCard(std::int32_t number);
  std::int16_t replaced(const std::string& station, std::int16_t address, bool usedElsewhere);

  // Of a failure False and "".
  bool mayOpen(const std::string& card, const std::string& door, DateTime at);
  std::string whyOpen(const std::string& card, const std::string& door, DateTime at);
  /// A line each, with CR LF between.
  std::string whoOpens(const std::string& door, DateTime at);
  std::string whatOpens(const std::string& card, DateTime at);

 private:
  template <typename Body>
  std::int16_t attempt(const char* method, Body body);
  std::int16_t carryOut(const char* method, const CarryOut& how);
  void take(const std::string& controller, const std::vector<PlanItem>& items,
            const std::vector<LeftOut>& rows);

  Installation& installation_;
  std::vector<Item> items_;
};

}  // namespace voxa
