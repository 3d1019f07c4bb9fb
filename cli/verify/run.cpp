#include "cli/verify/run.h"

#include <algorithm>
#include <cstdio>
#include <system_error>

#include "cli/console.h"
#include "cli/input.h"
#include "cli/text.h"
#include "cli/verify/report.h"

namespace tovik::cli {

namespace {

constexpr std::size_t kNamesShown = 5;

struct NoVerdict : std::runtime_error {
  using std::runtime_error::runtime_error;
};

Tolerances tolerances_of(const Environment& environment, const Options& options) {
  const auto parameter = [&](int number) { return environment.double_parameter(number); };
  return {options.tolerance.value_or(parameter(TVK_PARAM_EPRHS)),
          options.tolerance.value_or(parameter(TVK_PARAM_EPINT)), parameter(TVK_PARAM_EPOPT)};
}

/* Values for columns that there are not, or columns without a value: the files do not belong together. */
void require_match(const Model& model, const Claim& claim) {
  if (claim.unknown > 0)
    throw NoVerdict("no verdict: " + counted(claim.unknown, "name") + " that the model does not have");
  const std::vector<int> missing = columns_without_value(claim);
  if (missing.empty()) return;
  std::string text =
      "no verdict: " + counted(static_cast<long>(missing.size()), "column") + " without a value:";
  for (std::size_t k = 0; k < std::min(kNamesShown, missing.size()); ++k)
    text += (k == 0 ? " " : ", ") + model.column_name(missing[k]);
  if (missing.size() > kNamesShown) text += " ...";
  throw NoVerdict(text + " (--zeros takes them for 0)");
}

class Task {
 public:
  Task(const Environment& environment, Console& console, const Options& options)
      : environment_(environment), console_(console), options_(options) {}

  ExitStatus run() {
    report_.model_file = options_.models[0];
    report_.solution_file = options_.models[1];
    report_.pick = options_.pick;
    report_.tolerances = tolerances_of(environment_, options_);
    const ExitStatus status = guarded();
    if (options_.json) std::fputs(verify_json(report_).c_str(), stdout);
    if (!options_.json && report_.verdict) std::fputs(verify_text(report_).c_str(), stdout);
    return status;
  }

 private:
  ExitStatus guarded() {
    try {
      return examine();
    } catch (const LibraryError& error) {
      report_.error = console_.first_error().empty() ? error.what() : console_.first_error();
      return exit_status_of_read_error(error.code);
    } catch (const NoVerdict& reason) {
      report_.error = reason.what();
    } catch (const std::system_error& error) {
      report_.error = error.what();
    }
    console_.print_error(report_.error);
    return ExitStatus::bad_input;
  }

  ExitStatus examine() {
    Model model(environment_, report_.model_file);
    console_.set_label(report_.model_file);
    read_model_file(model, report_.model_file);
    if (options_.relax) model.relax();
    report_.problem_type = type_name(model.type());
    console_.set_label(report_.solution_file);
    report_.claim = read_claim(model, report_.solution_file, options_.pick - 1, options_.zeros);
    require_match(model, report_.claim);
    console_.set_label("");
    report_.verdict = verify(model, report_.claim, report_.tolerances);
    return report_.verdict->holds ? ExitStatus::solved : ExitStatus::numerical_failure;
  }

  const Environment& environment_;
  Console& console_;
  const Options& options_;
  VerifyReport report_;
};

}  // namespace

ExitStatus verify_file(const Environment& environment, const Options& options) {
  Console console(environment, stderr, Verbosity::results);
  return Task(environment, console, options).run();
}

}  // namespace tovik::cli
