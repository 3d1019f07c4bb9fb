#include "lp/crossover/crossover.h"

#include "lp/crossover/dual_push.h"
#include "lp/crossover/initial_basis.h"
#include "lp/crossover/primal_push.h"

namespace tovik::lp::crossover {

namespace {

constexpr int kPhases = 12;  // before what is left is left to the simplex

}  // namespace

Result cross_over(simplex::Core& core, const Point& point, const Options& options, Observer* observer) {
  const ComplementaryStart start = make_complementary(core, point);
  const std::vector<char> basic = choose_basis(core, start);
  std::vector<BasisStatus> status(basic.size(), BasisStatus::lower);
  for (std::size_t j = 0; j < basic.size(); ++j) {
    if (basic[j]) status[j] = BasisStatus::basic;
  }
  core.set_basis(status);
  Path path(core, start, observer);
  path.refactor();
  if (observer != nullptr)
    observer->begin(static_cast<int>(path.nonbasics_to_push().size()),
                    static_cast<int>(path.basics_to_push().size()));
  // An exchange of one kind may leave a little to the other.
  bool primal = options.first == First::primal;
  for (int phase = 0; phase < kPhases; ++phase, primal = !primal) {
    if (primal) {
      PrimalPush(path).run();
    } else {
      DualPush(path).run();
    }
    if (!path.has_arrived()) continue;
    if (core.factor.updates() == 0) break;
    path.refactor();  // which may find that the basis is none to end with
    if (path.has_arrived()) break;
  }
  path.finish();
  core.use_original_bounds();
  if (core.factor.updates() > 0) core.refactor(simplex::FactorReason::check);
  core.compute_primal();
  core.compute_dual();
  Result result = path.result;
  result.primal = core.primal_infeasibility();
  result.dual = core.dual_infeasibility();
  core.report_work();
  return result;
}

}  // namespace tovik::lp::crossover
