#include "lp/basis_query/quality_report.h"

#include <span>

#include "env/environment.h"
#include "include/tovik.h"
#include "lp/basis_query/quality.h"

namespace tovik::lp::run {
namespace {

struct QualityName {
  const char* name;
  int what;
};
constexpr QualityName kPrimalQuality[] = {{"maxPrimalInfeas", TVK_QUALITY_MAX_PRIMAL_INFEAS},
                                          {"maxPrimalResidual", TVK_QUALITY_MAX_PRIMAL_RESIDUAL},
                                          {"maxX", TVK_QUALITY_MAX_X},
                                          {"maxSlack", TVK_QUALITY_MAX_SLACK}};
constexpr QualityName kMixedIntegerQuality[] = {{"maxIntInfeas", TVK_QUALITY_MAX_INT_INFEAS},
                                                {"maxPrimalInfeas", TVK_QUALITY_MAX_PRIMAL_INFEAS},
                                                {"maxPrimalResidual", TVK_QUALITY_MAX_PRIMAL_RESIDUAL},
                                                {"maxX", TVK_QUALITY_MAX_X},
                                                {"maxSlack", TVK_QUALITY_MAX_SLACK}};
constexpr QualityName kQuality[] = {{"maxPrimalInfeas", TVK_QUALITY_MAX_PRIMAL_INFEAS},
                                    {"maxDualInfeas", TVK_QUALITY_MAX_DUAL_INFEAS},
                                    {"maxPrimalResidual", TVK_QUALITY_MAX_PRIMAL_RESIDUAL},
                                    {"maxDualResidual", TVK_QUALITY_MAX_DUAL_RESIDUAL},
                                    {"maxX", TVK_QUALITY_MAX_X},
                                    {"maxPi", TVK_QUALITY_MAX_PI},
                                    {"maxSlack", TVK_QUALITY_MAX_SLACK},
                                    {"maxRedCost", TVK_QUALITY_MAX_RED_COST},
                                    {"kappa", TVK_QUALITY_KAPPA}};

}  // namespace

std::vector<std::pair<const char*, double>> quality_report(Environment& env, Problem& problem,
                                                           const QualityScope& scope) {
  std::vector<std::pair<const char*, double>> report;
  if (problem.mixed_integer()) report.emplace_back("epInt", env.settings.real(TVK_PARAM_EPINT));
  report.emplace_back("epRHS", env.settings.real(TVK_PARAM_EPRHS));
  if (scope.duals) report.emplace_back("epOpt", env.settings.real(TVK_PARAM_EPOPT));
  const std::span<const QualityName> measures = problem.mixed_integer()
                                                    ? std::span<const QualityName>(kMixedIntegerQuality)
                                                : scope.duals ? std::span<const QualityName>(kQuality)
                                                              : kPrimalQuality;
  for (const auto& [name, what] : measures) {
    Measure measure;
    if (what == TVK_QUALITY_KAPPA && !scope.basis) continue;
    if (measure_quality(env, problem, what, &measure).ok()) report.emplace_back(name, measure.value);
  }
  return report;
}

std::vector<std::pair<const char*, double>> quality_of_point(const Environment& env, const Problem& problem,
                                                             const Solution& solution) {
  std::vector<std::pair<const char*, double>> report{{"epInt", env.settings.real(TVK_PARAM_EPINT)},
                                                     {"epRHS", env.settings.real(TVK_PARAM_EPRHS)}};
  for (const auto& [name, what] : kMixedIntegerQuality) {
    Measure measure;
    if (measure_point(*problem.model, solution, what, &measure).ok())
      report.emplace_back(name, measure.value);
  }
  return report;
}

}  // namespace tovik::lp::run
