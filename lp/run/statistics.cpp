#include "lp/run/statistics.h"

#include <array>
#include <memory>

namespace tovik::lp::run {
namespace {

void write_size(JsonWriter& out, const char* name, const ModelSize& size) {
  out.object(name, [&] {
    out.count("rows", size.rows);
    out.count("columns", size.columns);
    out.count("nonzeros", size.nonzeros);
  });
}

void write_presolve(JsonWriter& out, const PresolveStatistics& presolve) {
  const presolve::Counts& counts = presolve.counts;
  out.object("presolve", [&] {
    out.count("rounds", counts.rounds);
    out.count("aggregator_rounds", counts.aggregator_rounds);
    out.object("reductions", [&] {
      for (const presolve::RuleTraits& rule : presolve::kRuleTable)
        out.count(rule.name, counts.hits[static_cast<std::size_t>(rule.rule)]);
    });
    out.count("rows_eliminated", counts.rows_eliminated);
    out.count("columns_eliminated", counts.columns_eliminated);
    out.count("substitutions", counts.substitutions);
    out.count("bounds_improved", counts.bounds_improved);
    out.count("coefficients_modified", counts.coefficients_modified);
    write_size(out, "before", presolve.before);
    write_size(out, "after", presolve.after);
    out.flag("dual_form", presolve.dual_form);
  });
}

void write_algorithm(JsonWriter& out, const simplex::AlgorithmCounters& counters) {
  out.count("phase1_iterations", counters.phase1);
  out.count("phase2_iterations", counters.phase2);
  out.count("bound_flips", counters.bound_flips);
  out.count("perturbations", counters.perturbations);
  out.count("restores", counters.restores);
  out.count("weight_resets", counters.weight_resets);
}

void write_factorizations(JsonWriter& out, const simplex::Counters& counters) {
  constexpr std::array<const char*, simplex::kFactorReasons> kReasons = {"start", "growth", "update",
                                                                         "pivot", "check",  "accuracy"};
  out.object("factorizations", [&] {
    out.count("all", counters.factorizations);
    for (std::size_t k = 0; k < kReasons.size(); ++k)
      out.count(kReasons[k], counters.factorizations_by_reason[k]);
    out.count("singular_bases", counters.singular_bases);
    out.count("columns_replaced", counters.columns_replaced);
  });
}

void write_simplex(JsonWriter& out, const simplex::Statistics& simplex) {
  const simplex::Counters& counters = simplex.counters;
  out.object("simplex", [&] {
    out.count("iterations", counters.iterations);
    out.object("dual", [&] {
      write_algorithm(out, counters.dual);
      out.count("rows_scanned", counters.rows_scanned);
      out.count("rows_rejected", counters.rows_rejected);
    });
    out.object("primal", [&] { write_algorithm(out, counters.primal); });
    out.object("sifting", [&] {
      out.count("rounds", counters.sifting_rounds);
      out.count("iterations", counters.sifting_iterations);
    });
    out.count("shifts", counters.shifts);
    write_factorizations(out, counters);
    out.object("densities", [&] {
      out.ratio("ftran", simplex.densities.ftran);
      out.ratio("btran", simplex.densities.btran);
      out.ratio("row", simplex.densities.row);
      out.ratio("dse", simplex.densities.dse);
      out.ratio("flips", simplex.densities.flips);
    });
  });
}

void write_factor(JsonWriter& out, const simplex::Statistics& simplex) {
  const factor::Stats& last = simplex.factor;
  const factor::Counts& counts = simplex.work.factor;
  out.object("factor", [&] {
    out.count("basis_nonzeros", last.basis_nonzeros);
    out.count("l_nonzeros", last.l_nonzeros);
    out.count("u_nonzeros", last.u_nonzeros);
    if (last.basis_nonzeros > 0) {
      out.ratio("fill", static_cast<double>(last.factor_nonzeros) / static_cast<double>(last.basis_nonzeros));
    } else {
      out.null("fill");
    }
    out.count("kernel", last.bump);
    out.count("builds", counts.builds);
    out.count("updates", counts.updates);
    out.count("refused_updates", counts.refused_updates);
    out.count("sparse_sweeps", counts.sparse_sweeps);
    out.count("plain_sweeps", counts.plain_sweeps);
    out.count("switched_sweeps", counts.switched_sweeps);
    out.count("joint_solves", counts.joint_solves);
  });
}

void write_barrier(JsonWriter& out, const BarrierCounts& barrier) {
  out.object("barrier", [&] {
    out.count("iterations", barrier.iterations);
    out.count("factorizations", barrier.factorizations);
    out.count("solves", barrier.solves);
    out.count("rows", barrier.rows);
    out.count("factor_nonzeros", barrier.factor_entries);
    out.ratio("factor_flops", barrier.factor_flops);
    out.ratio("ordering_seconds", barrier.ordering_seconds);
    out.ratio("seconds", barrier.seconds);
  });
  const crossover::Counts& crossover = barrier.crossover;
  out.object("crossover", [&] {
    out.count("primal_pushes", crossover.primal_pushes);
    out.count("primal_exchanges", crossover.primal_exchanges);
    out.count("dual_pushes", crossover.dual_pushes);
    out.count("dual_exchanges", crossover.dual_exchanges);
    out.ratio("seconds", barrier.crossover_seconds);
  });
}

void write_network(JsonWriter& out, const NetworkCounts& network) {
  out.object("network", [&] {
    out.count("nodes", network.nodes);
    out.count("arcs", network.arcs);
    out.count("iterations", network.iterations);
    out.count("phase1_iterations", network.phase1_iterations);
    out.ratio("extraction_seconds", network.extraction_seconds);
    out.ratio("seconds", network.seconds);
  });
}

void write_ticks(JsonWriter& out, const OptimizationStatistics& statistics) {
  const simplex::Work& work = statistics.simplex.work;
  const std::int64_t presolve = statistics.presolve ? statistics.presolve->counts.ticks : 0;
  out.object("ticks", [&] {
    out.count("presolve", presolve);
    out.count("sifting", work.sifting_ticks);
    out.count("factor_builds", work.factor.build_ticks);
    out.count("factor_solves", work.factor.solve_ticks);
    out.count("factor_updates", work.factor.update_ticks);
    out.count("simplex", work.other_ticks);
    out.count("barrier", statistics.barrier ? statistics.barrier->ticks : 0);
    out.count("network", statistics.network ? statistics.network->ticks : 0);
  });
}

}  // namespace

std::int64_t total_ticks(const OptimizationStatistics& statistics) {
  if (statistics.search != nullptr) return statistics.search->ticks();
  const simplex::Work& work = statistics.simplex.work;
  const std::int64_t presolve = statistics.presolve ? statistics.presolve->counts.ticks : 0;
  const std::int64_t barrier = statistics.barrier ? statistics.barrier->ticks : 0;
  const std::int64_t network = statistics.network ? statistics.network->ticks : 0;
  return presolve + barrier + network + work.sifting_ticks + work.factor.build_ticks +
         work.factor.solve_ticks + work.factor.update_ticks + work.other_ticks;
}

OptimizationStatistics& statistics_of(Problem& problem) {
  if (problem.statistics == nullptr) problem.statistics = std::make_unique<KeptStatistics>();
  return static_cast<KeptStatistics*>(problem.statistics.get())->value;
}

const OptimizationStatistics* kept_statistics(const Problem& problem) {
  if (problem.statistics == nullptr) return nullptr;
  return &static_cast<const KeptStatistics*>(problem.statistics.get())->value;
}

void note_threads(Problem& problem, int count) {
  if (problem.statistics != nullptr) statistics_of(problem).threads = count;
}

PresolveStatistics statistics_of(const Presolved& record) {
  const auto size = [](const LpData& lp) {
    return ModelSize{lp.num_rows(), lp.num_columns(), static_cast<std::int64_t>(lp.matrix.index.size())};
  };
  return {record.reduction.counts, size(record.original), size(record.reduction.lp)};
}

std::string json_text(const OptimizationStatistics& statistics) {
  JsonWriter out;
  out.open();
  if (statistics.presolve) {
    write_presolve(out, *statistics.presolve);
  } else {
    out.null("presolve");
  }
  if (statistics.barrier) write_barrier(out, *statistics.barrier);
  if (statistics.network) write_network(out, *statistics.network);
  write_simplex(out, statistics.simplex);
  write_factor(out, statistics.simplex);
  write_ticks(out, statistics);
  if (statistics.search != nullptr) statistics.search->write(out);
  out.count("threads", statistics.threads);
  out.close();
  return out.release();
}

}  // namespace tovik::lp::run
