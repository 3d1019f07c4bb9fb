/* What the last optimization of a problem has counted, and the one place that turns it into text.
 * Engines count into plain structs of their own (presolve::Counts, simplex::Statistics, factor::Counts) and know no
 * format; a new engine adds its struct here and a member in statistics.cpp.
 * - Order: statistics_of() before the optimization begins to change the problem, because it may need memory; the
 *   counts are stored when it ends.
 * - Cost: a copy of some fifty numbers an optimization; the text is made when it is asked for. */
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "env/problem.h"
#include "lp/presolve_record/presolved.h"
#include "lp/run/json_writer.h"
#include "lp/run/start_counts.h"
#include "lp/simplex/statistics.h"

namespace tovik::lp::run {

struct ModelSize {
  std::int64_t rows = 0, columns = 0, nonzeros = 0;
};

struct PresolveStatistics {
  presolve::Counts counts;
  ModelSize before, after;
  bool dual_form = false;  // the dual of what was left was solved in its place
};

/* What an optimizer of a room behind this one has counted. */
struct FurtherStatistics {
  FurtherStatistics() = default;
  FurtherStatistics(const FurtherStatistics&) = delete;
  FurtherStatistics& operator=(const FurtherStatistics&) = delete;
  virtual ~FurtherStatistics() = default;
  virtual void write(JsonWriter& out) const = 0;  // its members
  virtual std::int64_t ticks() const = 0;         // of everything
};

struct OptimizationStatistics {
  std::optional<PresolveStatistics> presolve;  // where it ran, or had run before
  simplex::Statistics simplex;                 // of a search: of the relaxation of its tree
  std::optional<BarrierCounts> barrier;        // where it ran
  std::optional<NetworkCounts> network;        // likewise
  std::shared_ptr<const FurtherStatistics> search;
  int threads = 0;  // that worked
};

/* As it hangs on a problem. */
struct KeptStatistics : Derived {
  OptimizationStatistics value;
};

/* The problem's, made when there are none. */
OptimizationStatistics& statistics_of(Problem& problem);
/* ... or null. */
const OptimizationStatistics* kept_statistics(const Problem& problem);

/* Of the problem's last optimization, where it has come so far that there are statistics. */
void note_threads(Problem& problem, int count);

PresolveStatistics statistics_of(const Presolved& record);

/* All kinds of work together. */
std::int64_t total_ticks(const OptimizationStatistics& statistics);

/* One JSON object on one line; TVKgetstatistics in tovik.h has its members. */
std::string json_text(const OptimizationStatistics& statistics);

}  // namespace tovik::lp::run
