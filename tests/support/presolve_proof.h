/* Proof of one presolve run on a tiny LP: the reduced problem is equivalent, and each of its optimal bases
 * comes back as an optimal basis of the original. All in exact arithmetic but presolve itself. */
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "lp/presolve/crush.h"
#include "lp/presolve/presolve.h"
#include "support/dense_lp.h"
#include "support/exact_lp.h"

namespace support {

using tovik::lp::Control;
using tovik::lp::Stop;
using tovik::lp::presolve::Reduction;
using tovik::lp::presolve::Rule;
using tovik::lp::presolve::Settings;
using tovik::lp::presolve::StatusCode;

/* Says nothing; asks to stop after a number of polls. */
class QuietControl : public Control {
 public:
  explicit QuietControl(std::int64_t polls = INT64_MAX) : allowed_(polls) {}
  void log(const char*) override {}
  void flush() override {}
  void add_work(std::uint64_t) override {}
  double seconds() override { return 0; }
  Stop poll() override { return allowed_-- > 0 ? Stop::none : Stop::user_abort; }
  Stop poll_clock() override { return poll(); }
  Stop iteration_callback(const tovik::lp::ProgressSource&) override { return poll(); }

 private:
  std::int64_t allowed_;
};

struct Tally {
  long lps = 0, reduced = 0, optimal = 0, verdicts = 0, unproved = 0, bases = 0, unchecked = 0;
  std::array<long, tovik::lp::presolve::kRules> hits{};
};

/* Do bounds that cross, or the multipliers of rows, prove that no point is feasible? */
inline bool proves_infeasible(const LpData& lp, const std::vector<double>& y) {
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (lp.lower[j] > lp.upper[j]) return true;
  }
  if (y.empty()) return false;
  double least = 0, most = 0, size = 0;
  const auto add = [&size](double& sum, double factor, double low, double high) {
    if (factor == 0) return;
    sum += factor * (factor > 0 ? low : high);
    size += std::fabs(factor * (factor > 0 ? low : high));
  };
  double largest = 0;
  for (int i = 0; i < lp.num_rows(); ++i) {
    add(least, y[i], lp.row_lower[i], lp.row_upper[i]);
    largest = std::max(largest, std::fabs(y[i]));
  }
  for (int j = 0; j < lp.num_columns(); ++j) {
    double sum = 0, terms = 0;
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
      const double term = y[lp.matrix.index[k]] * lp.matrix.value[k];
      sum += term;
      terms += std::fabs(term);
    }
    if (std::fabs(sum) > 1e-12 * terms) add(most, sum, lp.upper[j], lp.lower[j]);
  }
  return least > most + 1e-9 * std::max(size, 1e-3 * largest);
}

/* Were columns fixed or rows changed because of what their duals are at an optimum, with bounds that other
 * rows imply? Multipliers of rows alone do not repeat such an argument. */
inline bool by_reduced_costs(const Reduction& r) {
  long hits = 0;
  for (const auto rule : {Rule::dominated_column, Rule::dual_equation, Rule::parallel_columns})
    hits += r.counts.hits[static_cast<size_t>(rule)];
  return hits > 0;
}

/* Some form of the original's columns. */
inline tovik::lp::presolve::LinearForm some_form(const LpData& lp) {
  tovik::lp::presolve::LinearForm form;
  for (int j = 0; j < lp.num_columns(); ++j) form.coefficients.push_back((j * 7 + 3) % 5 - 2);
  return form;
}

/* Crush against postsolve: points and duals return, and a form has the same value on both sides.
 */
inline std::string crush_fault(const LpData& lp, const Reduction& r, const Answer& reduced,
                               const Answer& undone) {
  namespace presolve = tovik::lp::presolve;
  const auto differs = [](double a, double b) { return std::fabs(a - b) > 1e-9 * (1 + std::fabs(a)); };
  const std::vector<double> x = presolve::crush_point(r, undone.x), y = presolve::crush_duals(r, undone.y);
  for (size_t k = 0; k < x.size(); ++k) {
    if (differs(x[k], reduced.x[k])) return "crushed point, reduced column " + std::to_string(k);
  }
  for (size_t k = 0; k < y.size(); ++k) {
    if (differs(y[k], reduced.y[k])) return "crushed duals, reduced row " + std::to_string(k);
  }
  presolve::LinearForm form = some_form(lp);
  double value = 0;
  for (size_t j = 0; j < undone.x.size(); ++j) value += form.coefficients[j] * undone.x[j];
  if (!presolve::crush_form(r, form)) return {};
  double image = form.constant;
  for (size_t k = 0; k < x.size(); ++k) image += form.coefficients[k] * reduced.x[k];
  return differs(value, image) ? "crushed form" : "";
}

class PresolveProof {
 public:
  Tally tally;

  /* What is wrong; empty when nothing is. */
  std::string fault(const LpData& lp, const Settings& settings, std::int64_t polls = INT64_MAX,
                    const std::vector<char>& kept = {}) {
    ++tally.lps;
    QuietControl control(polls);
    const Reduction r = tovik::lp::presolve::presolve(lp, settings, control, kept, false);
    for (size_t k = 0; k < r.counts.hits.size(); ++k) tally.hits[k] += r.counts.hits[k];
    for (size_t j = 0; j < kept.size(); ++j) {
      if (kept[j] && r.column_removal[j] != tovik::lp::presolve::RemovalReason::kept)
        return "protected column went";
    }
    try {
      const ExactLp original(lp);
      if (r.status.code != StatusCode::reduced) return verdict_fault(lp, r, original);
      if (!r.changed) return {};
      ++tally.reduced;
      const std::string fault = bases_fault(lp, r, original);
      return fault.empty() ? promise_fault(lp, r, settings) : fault;
    } catch (const std::overflow_error&) {
      ++tally.unchecked;
      return {};
    }
  }

  /* The same for a reduction that took over a change: lp is the problem after it. */
  std::string fault_after_change(const LpData& lp, const Reduction& r) {
    try {
      return bases_fault(lp, r, ExactLp(lp));
    } catch (const std::overflow_error&) {
      ++tally.unchecked;
      return {};
    }
  }

 private:
  /* Without reductions that look at the objective any other form has the same minimum in both problems; while
   * only linear functions are allowed each form has an image. */
  std::string promise_fault(const LpData& lp, const Reduction& r, const Settings& settings) {
    LpData original = lp, reduced = r.lp;
    tovik::lp::presolve::LinearForm form = some_form(lp);
    original.cost = form.coefficients;
    original.offset = 0;
    if (!crush_form(r, form)) return settings.linear_only ? "a form without image" : "";
    if (settings.dual) return {};
    reduced.cost = form.coefficients;
    reduced.offset = form.constant;
    const std::optional<Rational> here = ExactLp(original).optimum(), there = ExactLp(reduced).optimum();
    return here == there ? "" : "another minimum of a form, although the objective was to be left aside";
  }

  /* The undo of sparsify is promised for bases without one only. */
  static bool has_basic_equation(const LpData& lp, const std::vector<BasisStatus>& at) {
    for (int i = 0; i < lp.num_rows(); ++i) {
      if (lp.row_lower[i] == lp.row_upper[i] && at[lp.num_columns() + i] == BasisStatus::basic) return true;
    }
    return false;
  }
  std::string verdict_fault(const LpData& lp, const Reduction& r, const ExactLp& original) {
    ++tally.verdicts;
    if (!r.status.primal_infeasible()) return original.has_optimum() ? "called dual infeasible" : "";
    if (original.feasible()) return "called infeasible";
    if (proves_infeasible(lp, tovik::lp::presolve::infeasibility_proof(lp, r))) return {};
    if (by_reduced_costs(r)) {
      ++tally.unproved;
      return {};
    }
    return "the proof of infeasibility proves nothing";
  }

  std::string bases_fault(const LpData& lp, const Reduction& r, const ExactLp& original) {
    std::string fault;
    Rational best;
    const auto translate = [&r]() -> std::optional<ExactLp> {
      try {
        return ExactLp(r.lp);
      } catch (const std::domain_error&) {
        return {};
      }
    };
    const std::optional<ExactLp> reduced = translate();
    if (!reduced) return "noise in the reduced problem:\n" + describe(r.lp);
    const int columns = r.lp.num_columns();
    const bool sparsified = r.counts.hits[static_cast<size_t>(Rule::sparsify)] > 0;
    const int found = reduced->each_optimal_basis([&](const auto& at, const auto& value, const auto& dual) {
      if (!fault.empty() || (sparsified && has_basic_equation(r.lp, at))) return;
      ++tally.bases;
      Answer point;
      point.column_status.assign(at.begin(), at.begin() + columns);
      point.row_status.assign(at.begin() + columns, at.end());
      for (int k = 0; k < static_cast<int>(at.size()); ++k) {
        if (k < columns) point.x.push_back(value[k].real());
        (k < columns ? point.d : point.y).push_back(dual[k].real());
      }
      const Answer undone = tovik::lp::presolve::postsolve(lp, r, point);
      fault = original.fault(undone, &best);
      if (fault.empty()) fault = crush_fault(lp, r, point, undone);
      if (fault.empty() && !(best == reduced->objective(value)))
        fault = "objective " + std::to_string(best.real()) + " after undo, " +
                std::to_string(reduced->objective(value).real()) + " before";
      if (!fault.empty()) {
        fault += "\nreduced:\n" + describe(r.lp) + "statuses:";
        for (const BasisStatus a : at) fault += " " + std::to_string(static_cast<int>(a));
        fault += "\n";
      }
    });
    tally.optimal += found > 0;
    if (found == 0 && original.has_optimum())
      return "reduced to a problem without an optimum:\n" + describe(r.lp);
    return fault;
  }
};

}  // namespace support
