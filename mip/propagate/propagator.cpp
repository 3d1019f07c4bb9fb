#include "mip/propagate/propagator.h"

#include <algorithm>

#include "mip/propagate/rows.h"

namespace tovik::mip {
namespace {

// After that what has been found must do: looks a row, and entries in all, some tenths of a second.
constexpr int kRounds = 100;
constexpr std::int64_t kMostEntries = 30000000;

}  // namespace

bool Propagator::run(Domain& domain) {
  std::int64_t looks = static_cast<std::int64_t>(kRounds) * (domain.problem().num_rows() + 1);
  const std::int64_t most_work = work_ + kMostEntries;
  if (clauses_.has_new()) clauses_.propagate_new(domain);
  while (!domain.is_infeasible()) {
    if (seen_ < domain.position()) {
      const BoundMove move = domain.trail()[seen_++];
      objects_.propagate(domain, move.column);
      if (!clauses_.empty()) clauses_.propagate(domain, move);
    } else if (domain.has_queued_row() && looks > 0 && work_ < most_work) {
      --looks;
      const int row = domain.take_queued_row();
      work_ += static_cast<std::int64_t>(domain.row(row).columns.size());
      propagate_row(domain, row);
    } else {
      break;
    }
  }
  domain.forget_queued_rows();
  return !domain.is_infeasible();
}

bool Propagator::run_all(Domain& domain) {
  domain.queue_all_rows();
  objects_.propagate_all(domain);
  return run(domain);
}

void Propagator::went_back(const Domain& domain) {
  seen_ = std::min(seen_, domain.position());
}

}  // namespace tovik::mip
