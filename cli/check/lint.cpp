#include "cli/check/lint.h"

#include <cstdio>
#include <system_error>

#include "cli/check/lint_model.h"
#include "cli/check/report.h"
#include "cli/console.h"
#include "cli/input.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr Kind kDropped = {"text-ignored", Severity::error, "text of the file is not in the model",
                           "the model says something else than its file: correct the line"};
constexpr Kind kReadWarning = {"read-warning", Severity::note, "what the reader warned of",
                               "make the file say what is meant"};
constexpr Kind kReadNote = {"reads-otherwise", Severity::note, "what other programs may read otherwise",
                            "state the bounds: a PL record for none, an UP record for 1"};

void reading(const Model& model, Findings& findings) {
  const Model::ReadWarnings said = model.read_warnings();
  const Kind& kind = said.dropped > 0 ? kDropped : kReadWarning;
  for (const std::string& line : said.warnings) findings.add(kind, 0, [&] { return line; });
  for (const std::string& line : said.notes) findings.add(kReadNote, 0, [&] { return line; });
}

Findings examine(const Model& model, int most) {
  Findings findings(most);
  reading(model, findings);
  const LintModel data(model);
  for (const auto check : {lint_columns, lint_rows, lint_families, lint_parallel, lint_ranges, lint_big_m,
                           lint_fractions, lint_names, lint_propagation})
    check(data, findings);
  return findings;
}

ExitStatus exit_status(const Findings& findings, bool strict) {
  const bool bad = findings.count(Severity::error) > 0 || (strict && findings.count(Severity::warning) > 0);
  return bad ? ExitStatus::numerical_failure : ExitStatus::solved;
}

ExitStatus examine_file(const Environment& environment, Console& console, const Options& options,
                        LintReport& report) {
  console.begin_model(report.file == "-" ? "standard input" : report.file);
  try {
    const Model model(environment, report.file);
    read_model_file(model, report.file);
    console.set_label("");
    report.problem_type = type_name(model.type());
    report.rows = model.rows();
    report.columns = model.columns();
    report.nonzeros = TVKgetnumnz(environment.handle(), model.handle());
    report.findings = examine(model, options.most);
    return exit_status(*report.findings, options.strict);
  } catch (const LibraryError& error) {
    report.error = console.first_error().empty() ? error.what() : console.first_error();
    return exit_status_of_read_error(error.code);
  } catch (const std::system_error& error) {
    report.error = error.what();
    console.print_error(report.error);
    return ExitStatus::bad_input;
  }
}

}  // namespace

ExitStatus check_models(const Environment& environment, const Options& options) {
  Console console(environment, stderr, Verbosity::results);
  ExitStatus worst = ExitStatus::solved;
  for (const std::string& file : options.models) {
    LintReport report;
    report.file = file;
    const ExitStatus status = examine_file(environment, console, options, report);
    if (static_cast<int>(status) > static_cast<int>(worst)) worst = status;
    if (options.json) std::fputs(lint_json(report).c_str(), stdout);
    if (!options.json && report.findings) std::fputs(lint_text(report, !options.quiet).c_str(), stdout);
  }
  return worst;
}

}  // namespace tovik::cli
