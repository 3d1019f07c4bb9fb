#include "lp/run/barrier_log.h"

#include <algorithm>

#include "env/channel.h"
#include "include/tovik.h"
#include "lp/run/barrier_optimizer.h"
#include "lp/run/numbers.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

/* As TVK_PARAM_BARORDER numbers them. */
const char* ordering_name(cholesky::Ordering ordering) {
  switch (ordering) {
    case cholesky::Ordering::minimum_degree:
      return "approximate-min-degree";
    case cholesky::Ordering::minimum_fill:
      return "approximate-min-fill";
    case cholesky::Ordering::nested_dissection:
      return "nested dissection";
    default:
      return "automatic";
  }
}

}  // namespace

BarrierLog::BarrierLog(const Environment& env, const Problem& problem, const barrier::Options& options)
    : env_(env),
      sense_(problem.model->objective_sense()),
      options_(options),
      display_(env.settings.integer(TVK_PARAM_BARDISPLAY)),
      with_complementarity_(options.algorithm == barrier::Algorithm::predictor_corrector) {}

void BarrierLog::begin() {
  if (display_ > 0 && options_.factorization.threads > 1)
    message(env_.results_channel, "Parallel mode: using up to %d threads for barrier.\n",
            options_.factorization.threads);
}

void BarrierLog::dense_columns(int limit, int found) {
  if (display_ == 0) return;
  message(env_.results_channel, "Looking for dense columns with more than %d nonzeros.\n", limit);
  if (found > 0) message(env_.results_channel, "\n***NOTE: Found %d dense columns.\n\n", found);
}

void BarrierLog::setup(const barrier::Setup& setup) {
  if (display_ == 0) return;
  const cholesky::Counts& counts = setup.counts;
  message(env_.results_channel, counts.used == cholesky::Ordering::nested_dissection
                                    ? "Using Nested Dissection ordering\n"
                                    : "Using Approximate Minimum Degree ordering\n");
  message(env_.results_channel, "Total time for %s ordering = %.2f sec.\n",
          ordering_name(options_.factorization.ordering), counts.ordering_seconds);
  message(env_.results_channel, "Number of nonzeros in lower triangle of %s = %.0f\n", "A*A'",
          static_cast<double>(setup.lower_entries));
  message(env_.results_channel, "Summary statistics for Cholesky factor:\n");
  message(env_.results_channel, "  Rows in Factor            = %d\n", counts.rows);
  message(env_.results_channel, "  Integer space required    = %.0f\n", static_cast<double>(counts.integers));
  message(env_.results_channel, "  Total non-zeros in factor = %.0f\n", static_cast<double>(counts.entries));
  message(env_.results_channel, "  Total FP ops to factor    = %.0f\n", counts.flops);
  if (display_ > 1)
    message(env_.results_channel, "Max number of central corrections is %d\n", setup.correctors);
}

void BarrierLog::out_of_core(const cholesky::Storage& storage) {
  if (display_ == 0) return;
  Channel* const channel = env_.results_channel;
  message(channel, "Creating directory %s for Barrier out-of-core files\n", storage.directory.c_str());
  message(channel, "Out-of-core factorization with %.0fMB of working storage\n",
          storage.work_memory / kMegabyte);
  if (storage.needed > storage.work_memory) {
    message(channel, "WARNING: not enough working storage allocated,");
    message(channel, "increasing to %.2fMB\n", storage.needed / kMegabyte);
  }
  constexpr double kUpdatesInFile = 0;  // contributions stay in memory
  message(channel, "Writing %.0fMB factor matrix and %.0fMB update matrix\n", storage.file_bytes / kMegabyte,
          kUpdatesInFile);
}

void BarrierLog::heading(bool with_ratio) {
  if (with_complementarity_) {
    message(env_.results_channel, " %3s %15s %15s %9s %9s %9s %9s\n", "Itn", "Primal Obj", "Dual Obj",
            "Prim Inf", "Dual Inf", "Comple", "");
  } else {
    message(env_.results_channel, " %3s %15s %15s %9s %9s %9s %9s\n", "Itn", "Primal Obj", "Dual Obj",
            "Prim Inf", "Upper Inf", "Dual Inf", with_ratio ? "Inf Ratio" : "");
  }
  has_heading_ = true;
  heading_has_ratio_ = with_ratio;
}

void BarrierLog::iteration(const barrier::Iteration& now) {
  if (display_ == 0) return;
  if (!has_heading_ || heading_has_ratio_ != now.has_ratio) heading(now.has_ratio);
  const int number = static_cast<int>(now.number);
  const double primal = times(sense_, now.primal_objective), dual = times(sense_, now.dual_objective);
  if (with_complementarity_) {
    message(env_.results_channel, " %3d %15.7e %15.7e %9.2e %9.2e %9.2e\n", number, primal, dual,
            std::max(now.primal_infeasibility, now.upper_infeasibility), now.dual_infeasibility,
            now.complementarity);
    return;
  }
  message(env_.results_channel, " %3d %15.7e %15.7e %9.2e %9.2e %9.2e", number, primal, dual,
          now.primal_infeasibility, now.upper_infeasibility, now.dual_infeasibility);
  if (now.has_ratio) message(env_.results_channel, " %9.2e", now.ratio);
  message(env_.results_channel, "\n");
  if (env_.results_channel != nullptr) env_.results_channel->flush();
}

void BarrierLog::corrections(std::int64_t iteration, int count, std::int64_t pairs) {
  if (display_ < 2) return;
  message(env_.results_channel, "Iteration %d did %d central corrections %d vars\n",
          static_cast<int>(iteration), count, static_cast<int>(pairs));
}

void BarrierLog::end(const barrier::Result& result, double seconds) {
  using barrier::Ending;
  constexpr double kClearly = 10;  // times the tolerance
  const Ending ending = result.ending;
  if (ending == Ending::optimal && result.gap_without_offset > kClearly * options_.tolerance)
    message(env_.warning_channel,
            "\nWarning:  Barrier optimality criterion affected by large objective shift.\n");
  if (ending == Ending::no_progress)
    message(env_.warning_channel, with_complementarity_ ? "Numerical difficulties encountered.\n"
                                                        : "Numerical difficulties in barrier algorithm.\n");
  if (display_ == 0) return;
  const auto say = [this](const char* text) { message(env_.results_channel, "%s", text); };
  switch (ending) {
    case Ending::iteration_limit:
      say(" Barrier iteration limit exceeded.\n");
      break;
    case Ending::time_limit:
      say(" Barrier time limit exceeded.\n");
      break;
    case Ending::no_progress:
      say(" Barrier - no progress.\n");
      break;
    case Ending::infeasible_or_unbounded:
      say(" Barrier cannot determine infeasibility.\n");
      break;
    case Ending::unbounded_face:
      say(" Barrier detects unbounded optimal face.\n");
      break;
    case Ending::primal_objective_limit:
      say(" Barrier limit on primal objective exceeded.\n");
      say(" Unbounded barrier solution (dependent on objective limit).\n");
      break;
    case Ending::dual_objective_limit:
      say(" Barrier limit on dual objective exceeded.\n");
      say(" Infeasible barrier solution (dependent on objective limit).\n");
      break;
    default:
      break;
  }
  message(env_.results_channel, "Barrier time = %7.2f sec.\n", seconds);
  if (options_.factorization.threads > 1)
    message(env_.results_channel, "Parallel barrier real time = %7.2f sec.\n", seconds);
}

}  // namespace tovik::lp::run
