#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include "env/method_code.h"
#include "fileio/xml/solution_file.h"
#include "fileio/xml/xml_writer.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

constexpr const char* kRoot = "TOVIKSolution";
constexpr const char* kSeveral = "TOVIKSolutions";
constexpr const char* kVersion = "1.2";
constexpr const char* kStatusWords[] = {"LL", "BS", "UL", "SB"};

const char* type_word(int type) {
  constexpr const char* kWords[] = {"unknown", "basic", "nonbasic", "primal"};
  return kWords[type >= 1 && type <= 3 ? type : 0];
}

const char* method_word(int method) {
  switch (method) {
    case method_code::kPrimal:
      return "primal";
    case method_code::kDual:
      return "dual";
    case method_code::kBarrier:
      return "barrier";
    case method_code::kMixedInteger:
      return "mip";
    default:
      return "unknown";
  }
}

bool is_latin1(const model::NameTable& names) {
  for (int k = 0; k < names.size(); ++k) {
    if (xml_text(names.name(k)) == XmlText::latin1) return true;
  }
  return false;
}

bool is_latin1(const WriteSource& source) {
  return is_latin1(source.model.column_names()) || is_latin1(source.model.row_names()) ||
         is_latin1(source.model.families().starts.names()) ||
         is_latin1(source.model.families().indicators.names()) ||
         is_latin1(source.model.families().quadratic_rows.names()) ||
         xml_text(source.name) == XmlText::latin1;
}

class Writer {
 public:
  Writer(const WriteSource& source, WriteLevel level, TextWriter& out)
      : source_(source), model_(source.model), level_(level), xml_(out, is_latin1(source)) {}

  int write(const SolutionReport& report);
  int write(int begin, int end);
  /* element: void(int) */
  template <class Element>
  int write_several(int count, Element&& element);
  void write_one(const SolutionReport& report);
  void write_as_start(const SolutionReport& report);

 private:
  void write_header(const SolutionReport& report);
  void write_quality(const SolutionReport& report);
  void write_rows(const SolutionReport& report);
  void write_families(const SolutionReport& report);
  /* slack: double(int) */
  template <class Slack>
  void write_family(const char* element, const model::NameTable& names, int count, Slack&& slack);
  void write_columns(const SolutionReport& report);
  void write_start(int k);
  void write_start_header(std::string_view name, int index, int effort);
  void write_value(int j, double value);
  void write_identity(const model::NameTable& names, int k);
  bool is_written(int j, double value) const;
  int result() const { return xml_.finite() ? 0 : TVK_ERROR_NUMBER_NOT_REPRESENTABLE; }

  const WriteSource& source_;
  const model::Model& model_;
  WriteLevel level_;
  XmlWriter xml_;
};

bool Writer::is_written(int j, double value) const {
  const auto types = model_.column_types();
  const bool discrete = !types.empty() && types[static_cast<std::size_t>(j)] != 'C';
  const bool nonzero = !(std::fabs(value) <= std::numeric_limits<double>::epsilon());
  const bool discrete_only = level_ == WriteLevel::discrete || level_ == WriteLevel::discrete_nonzero;
  const bool nonzero_only = level_ == WriteLevel::nonzero || level_ == WriteLevel::discrete_nonzero;
  return (discrete || !discrete_only) && (nonzero || !nonzero_only);
}

void Writer::write_identity(const model::NameTable& names, int k) {
  if (!names.empty() && xml_text(names.name(k)) != XmlText::impossible) xml_.attribute("name", names.name(k));
  xml_.attribute("index", k);
}

void Writer::write_header(const SolutionReport& report) {
  const Solution& solution = *report.solution;
  xml_.begin("header", true);
  xml_.attribute("problemName", title(source_.name));
  if (!report.name.empty()) {
    xml_.attribute("solutionName", title(report.name));
    xml_.attribute("solutionIndex", report.index);
  }
  xml_.attribute("objectiveValue", solution.objective);
  xml_.attribute("solutionTypeValue", report.type);
  xml_.attribute("solutionTypeString", type_word(report.type));
  xml_.attribute("solutionStatusValue", report.status);
  xml_.attribute("solutionStatusString", report.status_text);
  xml_.attribute("solutionMethodString", method_word(solution.method));
  xml_.attribute("primalFeasible", solution.primal_feasible ? 1 : 0);
  xml_.attribute("dualFeasible", solution.dual_feasible ? 1 : 0);
  if (report.mixed_integer) {
    xml_.attribute("MIPNodes", static_cast<int>(std::min<std::int64_t>(report.nodes, INT_MAX)));
    xml_.attribute("MIPIterations", solution.iterations);
  } else {
    const bool barrier = solution.method == method_code::kBarrier;
    if (solution.method == method_code::kPrimal || solution.method == method_code::kDual)
      xml_.attribute("simplexIterations", solution.iterations);
    if (barrier || solution.barrier_iterations != 0)
      xml_.attribute("barrierIterations", solution.barrier_iterations);
  }
  xml_.attribute("writeLevel", static_cast<int>(level_));
  xml_.end();
}

void Writer::write_quality(const SolutionReport& report) {
  xml_.begin("quality", true);
  for (const auto& [name, value] : report.quality) xml_.attribute(name, value);
  xml_.end();
}

void Writer::write_rows(const SolutionReport& report) {
  xml_.open("linearConstraints");
  for (int i = 0; i < model_.num_rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    xml_.begin("constraint");
    write_identity(model_.row_names(), i);
    if (!report.row_status.empty()) xml_.attribute("status", kStatusWords[report.row_status[at]]);
    xml_.attribute("slack", report.solution->slack[at]);
    if (!report.solution->pi.empty()) xml_.attribute("dual", report.solution->pi[at]);
    xml_.end();
  }
  xml_.close("linearConstraints");
}

template <class Slack>
void Writer::write_family(const char* element, const model::NameTable& names, int count, Slack&& slack) {
  if (count == 0) return;
  xml_.open(element);
  for (int k = 0; k < count; ++k) {
    xml_.begin("constraint");
    write_identity(names, k);
    xml_.attribute("slack", slack(k));
    xml_.end();
  }
  xml_.close(element);
}

double slack_of(const model::RowPool& rows, int k, const std::vector<double>& x) {
  double slack = rows.rhs()[static_cast<std::size_t>(k)];
  const model::VectorView row = rows.row(k);
  for (int t = 0; t < row.count; ++t) slack -= row.value[t] * x[static_cast<std::size_t>(row.index[t])];
  return slack;
}

/* An indicator constraint that is switched off leaves all the room there is. */
void Writer::write_families(const SolutionReport& report) {
  const model::Indicators& indicators = model_.families().indicators;
  const model::QuadraticRows& quadratic = model_.families().quadratic_rows;
  const std::vector<double>& x = report.solution->x;
  write_family("indicatorConstraints", indicators.names(), indicators.size(), [&](int k) {
    const double at = x[static_cast<std::size_t>(indicators.column()[static_cast<std::size_t>(k)])];
    const bool active = indicators.complemented(k) ? at < 0.5 : at > 0.5;
    return active ? slack_of(indicators.rows(), k, x) : model::kInfinity;
  });
  write_family("quadraticConstraints", quadratic.names(), quadratic.size(), [&](int k) {
    double slack = slack_of(quadratic.linear(), k, x);
    for (const model::QuadraticTerm& term : quadratic.terms(k)) {
      slack -=
          term.value * x[static_cast<std::size_t>(term.column)] * x[static_cast<std::size_t>(term.other)];
    }
    return slack;
  });
}

void Writer::write_columns(const SolutionReport& report) {
  xml_.open("variables");
  for (int j = 0; j < model_.num_columns(); ++j) {
    const auto at = static_cast<std::size_t>(j);
    if (!is_written(j, report.solution->x[at])) continue;
    xml_.begin("variable");
    write_identity(model_.column_names(), j);
    if (!report.column_status.empty()) xml_.attribute("status", kStatusWords[report.column_status[at]]);
    xml_.attribute("value", report.solution->x[at]);
    if (!report.solution->dj.empty()) xml_.attribute("reducedCost", report.solution->dj[at]);
    xml_.end();
  }
  xml_.close("variables");
}

int Writer::write(const SolutionReport& report) {
  if (report.all_digits) xml_.use_all_digits();
  write_one(report);
  return result();
}

void Writer::write_one(const SolutionReport& report) {
  xml_.open_with_version(kRoot, kVersion);
  write_header(report);
  write_quality(report);
  write_rows(report);
  write_families(report);
  write_columns(report);
  xml_.close(kRoot);
}

template <class Element>
int Writer::write_several(int count, Element&& element) {
  xml_.open(kSeveral);
  for (int k = 0; k < count; ++k) element(k);
  xml_.close(kSeveral);
  return result();
}

void Writer::write_start_header(std::string_view name, int index, int effort) {
  xml_.begin("header", true);
  xml_.attribute("problemName", title(source_.name));
  if (!name.empty()) xml_.attribute("solutionName", title(name));
  xml_.attribute("solutionIndex", index);
  xml_.attribute("MIPStartEffortLevel", std::max(0, effort));
  xml_.attribute("writeLevel", static_cast<int>(level_));
  xml_.end();
}

void Writer::write_value(int j, double value) {
  if (!is_written(j, value)) return;
  xml_.begin("variable");
  write_identity(model_.column_names(), j);
  xml_.attribute("value", value);
  xml_.end();
}

void Writer::write_start(int k) {
  const model::MipStarts& starts = model_.families().starts;
  xml_.open_with_version(kRoot, kVersion);
  write_start_header(starts.names().empty() ? std::string_view() : starts.names().name(k), k,
                     starts.effort()[static_cast<std::size_t>(k)]);
  xml_.open("variables");
  const model::VectorView values = starts.values(k);
  for (int e = 0; e < values.count; ++e) write_value(values.index[e], values.value[e]);
  xml_.close("variables");
  xml_.close(kRoot);
}

void Writer::write_as_start(const SolutionReport& report) {
  xml_.open_with_version(kRoot, kVersion);
  write_start_header(report.name, report.index, 0);
  xml_.open("variables");
  for (int j = 0; j < model_.num_columns(); ++j)
    write_value(j, report.solution->x[static_cast<std::size_t>(j)]);
  xml_.close("variables");
  xml_.close(kRoot);
}

int Writer::write(int begin, int end) {
  if (begin != end) xml_.open(kSeveral);
  for (int k = begin; k <= end; ++k) write_start(k);
  if (begin != end) xml_.close(kSeveral);
  return result();
}

}  // namespace

int write_solution(const WriteSource& source, const SolutionReport& report, TextWriter& out) {
  return Writer(source, report.level, out).write(report);
}

int write_solutions(const WriteSource& source, WriteLevel level, int count,
                    const std::function<SolutionReport(int)>& report, TextWriter& out) {
  Writer writer(source, level, out);
  return writer.write_several(count, [&](int k) { writer.write_one(report(k)); });
}

int write_solutions_as_starts(const WriteSource& source, WriteLevel level, int count,
                              const std::function<SolutionReport(int)>& report, TextWriter& out) {
  Writer writer(source, level, out);
  return writer.write_several(count, [&](int k) { writer.write_as_start(report(k)); });
}

int write_starts(const WriteSource& source, int begin, int end, WriteLevel level, TextWriter& out) {
  return Writer(source, level, out).write(begin, end);
}

}  // namespace tovik::fileio
