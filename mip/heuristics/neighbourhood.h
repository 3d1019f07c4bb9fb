/* Searches in a neighbourhood: integer columns are fixed to the values of a point, the rest is left to a small search of its own.
 *
 * - Rens (Math. Programming Comp. 6 (2014)): the relaxation's point. What is whole there is fixed, what is not may take
 *   the next whole numbers on its two sides.
 * - Rins (Math. Programming 102 (2005)): what the relaxation and the incumbent agree on is fixed.
 * - ReducedCostNeighbourhood: whole columns of the relaxation, the larger the reduced cost the sooner.
 * - Crossover: what the last incumbents agree on.
 * - Region: all but the columns about one on which relaxation and incumbent differ, as rows connect them.
 * - Mutation: columns at random stay as they are in the incumbent.
 * - LocalBranching (Math. Programming 98 (2003)): nothing is fixed, but all binaries together may move away from the incumbent
 *   by so many only.
 * Fixings are tried one after another on a domain of its own that holds what holds globally, each is propagated, and one that
 * fails is left out. Too few fixings: no search. Where a neighbourhood turns out to hold nothing the next one of its kind is
 * larger, where its search could not be ended it is smaller. What the search spends counts as the worker's iterations. */
#pragma once

#include <span>
#include <vector>

#include "mip/heuristics/reduced_problem.h"
#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class NeighbourhoodSearch : public Plugin {
 public:
  Verdict call(Worker& worker, const Moment& moment) final;

 protected:
  /* Shares of the integer columns that are open globally: fixed at least, or there is no search; fixed at most, at first. */
  NeighbourhoodSearch(double least_fixed, double most_fixed)
      : least_fixed_(least_fixed), most_fixed_(most_fixed), first_most_fixed_(most_fixed) {}
  struct Fixing {
    int column;
    double lower, upper;
    double rank;  // least first
  };
  /* What integer columns may take; those that are not named stay free. Nothing: no search, unless none need be fixed. */
  virtual void propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) = 0;
  /* Rows that restrict what is left. False: there are none, and no search. */
  virtual bool restrict(const Global&, ReducedProblem&) { return true; }
  /* What the search in the last neighbourhood has said of its size. */
  virtual void adapt(bool found, bool exhausted);

 private:
  bool restrict_domain(const Worker& worker, Domain& domain);

  double least_fixed_, most_fixed_, first_most_fixed_;
  std::vector<Fixing> fixings_;
};

class Rens : public NeighbourhoodSearch {
 public:
  Rens() : NeighbourhoodSearch(0.5, 1) {}
  const char* name() const override { return "relaxation neighbourhood"; }

 protected:
  void propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) override;
};

class Rins : public NeighbourhoodSearch {
 public:
  Rins() : NeighbourhoodSearch(0.3, 1) {}
  const char* name() const override { return "incumbent neighbourhood"; }

 protected:
  void propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) override;
};

class ReducedCostNeighbourhood : public NeighbourhoodSearch {
 public:
  ReducedCostNeighbourhood() : NeighbourhoodSearch(0.5, 0.8) {}
  const char* name() const override { return "reduced cost neighbourhood"; }

 protected:
  void propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) override;
};

class Crossover : public NeighbourhoodSearch {
 public:
  Crossover() : NeighbourhoodSearch(0.3, 0.95) {}
  const char* name() const override { return "crossover"; }

 protected:
  void propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) override;
};

class Region : public NeighbourhoodSearch {
 public:
  Region() : NeighbourhoodSearch(0.1, 0.7) {}
  const char* name() const override { return "region"; }

 protected:
  void propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) override;

 private:
  void walk(const Worker& worker, int first);

  std::vector<int> reached_;      // in order
  std::vector<char> is_reached_;  // by column
};

class Mutation : public NeighbourhoodSearch {
 public:
  Mutation() : NeighbourhoodSearch(0.1, 0.8) {}
  const char* name() const override { return "mutation"; }

 protected:
  void propose(Worker& worker, std::span<const double> x, std::vector<Fixing>& fixings) override;
};

class LocalBranching : public NeighbourhoodSearch {
 public:
  explicit LocalBranching(double radius = 20) : NeighbourhoodSearch(0, 1), radius_(radius) {}
  const char* name() const override { return "local branching"; }

 protected:
  void propose(Worker&, std::span<const double>, std::vector<Fixing>&) override {}
  bool restrict(const Global& global, ReducedProblem& reduced) override;
  void adapt(bool found, bool exhausted) override;

 private:
  double radius_;  // binaries that may change; grows where there is nothing, shrinks where there is too much
};

}  // namespace tovik::mip
