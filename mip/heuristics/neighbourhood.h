/* Searches in a neighbourhood: integer columns are fixed to the values of a point where that says enough, the rest is left to
 * a small search of its own.
 *
 * - Rens (Berthold, Math. Programming Comp. 6 (2014)): the relaxation's point. What is whole there is fixed, what is not may
 *   take the next whole numbers on its two sides.
 * - Rins (Danna, Rothberg, Le Pape, Math. Programming 102 (2005)): what the relaxation and the incumbent agree on is fixed.
 * Fixings are tried one after another on a domain of its own that holds what holds globally, each is propagated, and one that
 * fails is left out. Too few fixings: no search. What the search spends counts as the worker's iterations. */
#pragma once

#include <span>

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class NeighbourhoodSearch : public Plugin {
 public:
  Verdict call(Worker& worker, const Moment& moment) final;

 protected:
  explicit NeighbourhoodSearch(double least_fixed) : least_fixed_(least_fixed) {}
  virtual bool applies(const Worker&) const { return true; }
  struct Range {
    double lower, upper;
  };
  /* What an integer column may take, given its value in the relaxation. */
  virtual Range range(const Worker& worker, int column, double value) const = 0;

 private:
  bool restrict_domain(const Worker& worker, std::span<const double> x, Domain& domain) const;

  double least_fixed_;  // share of the integer columns
};

class Rens : public NeighbourhoodSearch {
 public:
  Rens() : NeighbourhoodSearch(0.5) {}
  const char* name() const override { return "relaxation neighbourhood"; }

 protected:
  Range range(const Worker& worker, int column, double value) const override;
};

class Rins : public NeighbourhoodSearch {
 public:
  Rins() : NeighbourhoodSearch(0.3) {}
  const char* name() const override { return "incumbent neighbourhood"; }

 protected:
  bool applies(const Worker& worker) const override { return worker.global.has_incumbent_point(); }
  Range range(const Worker& worker, int column, double value) const override;
};

}  // namespace tovik::mip
