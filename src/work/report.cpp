#include "work/report.h"

#include <algorithm>
#include <iterator>

namespace voxa {

std::vector<Notice> Report::allNotices() const {
  std::vector<Notice> all;
  for (const Row& row : rows) all.insert(all.end(), row.notices.begin(), row.notices.end());
  all.insert(all.end(), notices.begin(), notices.end());
  return all;
}

bool Report::failed() const {
  const std::vector<Notice> all = allNotices();
  return broken || rowsWith(Outcome::failed) > 0 ||
         std::any_of(all.begin(), all.end(),
                     [](const Notice& notice) { return notice.kind == Notice::Kind::failure; });
}

std::size_t Report::rowsWith(Outcome outcome) const {
  const auto count =
      std::count_if(rows.begin(), rows.end(), [&](const Row& row) { return row.outcome == outcome; });
  return static_cast<std::size_t>(count);
}

void Report::add(Report other) {
  std::move(other.rows.begin(), other.rows.end(), std::back_inserter(rows));
  std::move(other.controllers.begin(), other.controllers.end(), std::back_inserter(controllers));
  std::move(other.notices.begin(), other.notices.end(), std::back_inserter(notices));
  broken = broken || other.broken;
}

std::vector<std::string> namesOf(const std::vector<Report::Controller>& controllers) {
  std::vector<std::string> names;
  names.reserve(controllers.size());
  for (const Report::Controller& controller : controllers) names.push_back(controller.name);
  return names;
}

}  // namespace voxa
