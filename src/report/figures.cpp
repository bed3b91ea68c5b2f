#include "report/figures.h"

#include <numeric>

#include "platform/clock.h"
#include "report/period.h"
#include "report/presentations.h"
#include "report/standing.h"
#include "work/installation.h"

namespace voxa {

std::uint64_t Outcomes::presentations() const {
  return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
}

std::uint64_t Outcomes::refused() const {
  return presentations() - of(TransactionMeaning::granted);
}

Figures gatherFigures(Installation& installation, const ReportQuestion& question) {
  Figures figures;
  figures.asked = question;
  figures.made = installation.clock().now();
  const Period period = periodOf(question, installation.clock());
  figures.since = period.since;
  figures.until = period.until;
  countPresentations(installation, figures);
  addControllers(installation, figures);
  addExpiringCards(installation, figures);
  return figures;
}

}  // namespace voxa
