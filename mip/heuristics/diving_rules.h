/* The rules by which dives choose.
 *
 * - FractionalDive: what is nearest to a whole number, to that number.
 * - LockDive: to the side that fewer rows mind, fewest first.
 * - PseudoCostDive: to the side that costs less, where the sides differ most first.
 * - GuidedDive: to the incumbent, what is nearest to it first.
 * - ProbingDive: a few of those nearest to whole numbers are probed by short dual simplex runs; the least rise goes first.
 * Columns that can be rounded without harm to any row come last, for they need no dive (all but the guided and probing
 * dives). */
#pragma once

#include "mip/heuristics/dive.h"

namespace tovik::mip {

class FractionalDive : public Dive {
 public:
  const char* name() const override { return "fractional dive"; }

 protected:
  void rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) override;
};

class LockDive : public Dive {
 public:
  const char* name() const override { return "lock dive"; }

 protected:
  void rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) override;
};

class PseudoCostDive : public Dive {
 public:
  const char* name() const override { return "pseudo-cost dive"; }

 protected:
  void rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) override;
};

class GuidedDive : public Dive {
 public:
  const char* name() const override { return "guided dive"; }

 protected:
  bool applies(const Worker& worker) const override { return worker.global.has_incumbent_point(); }
  void rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) override;
};

class ProbingDive : public Dive {
 public:
  const char* name() const override { return "probing dive"; }

 protected:
  void rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) override;
};

}  // namespace tovik::mip
