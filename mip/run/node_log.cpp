#include "mip/run/node_log.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "env/channel.h"
#include "include/tovik.h"
#include "mip/run/cut_names.h"
#include "model/store/model.h"

namespace tovik::mip::run {
namespace {

constexpr double kNoValue = 1e75;  // values from here on are none
constexpr double kNoBound = 1e36;
constexpr double kWideNumber = 1e7;  // from here on in exponents
constexpr double kWideCount = 1e8;   // of iterations
constexpr double kWideSolutions = 99999;
constexpr double kMegabyte = 9.5367431640625e-7;  // of a byte
constexpr std::uint64_t kTicksPerUnit = 1000000;

std::string text(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string text(const char* format, ...) {
  char buffer[400];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  return buffer;
}

/* The name of the class where there is but one; blank without cuts. */
std::string cuts_field(const CutCounts& cuts) {
  int total = 0;
  std::size_t classes = 0, last = 0;
  for (std::size_t k = 0; k < kCutClasses; ++k) {
    if (cuts[k] == 0) continue;
    total += cuts[k];
    ++classes;
    last = k;
  }
  if (classes == 0) return "";
  return classes == 1 ? text("%s: %d", kCutNames[last], total) : text("Cuts: %d", total);
}

/* Rows come ever more seldom. */
double spacing(std::int64_t rows) {
  return rows < 10 ? 0.25 : rows < 100 ? 1 : rows < 1000 ? 4 : rows < 10000 ? 16 : 64;
}

/* In percent, of minimization values; blank without an incumbent. */
std::string gap_field(double incumbent, double bound) {
  if (incumbent >= kNoValue) return "";
  double gap = 0;
  if (bound < kNoBound) {
    gap = (incumbent - bound) / (std::fabs(incumbent) + 1e-10);
    if (std::fabs(gap) <= 1e-10 || std::fabs(incumbent - bound) <= 1e-9) gap = 0;
  }
  return std::fabs(100 * gap) < 999.99 ? text("%7.2f%%", 100 * gap) : "--- ";
}

}  // namespace

NodeLog::NodeLog(Environment& env, const tovik::Problem& problem) : env_(env), problem_(problem) {}

void NodeLog::begin() {
  start_ = clock_seconds(env_);
}

void NodeLog::team(const TeamTimes& times) {
  if (times.threads < 2 || display() == 0) return;
  const auto say = [this](const std::string& line) { message(env_.results_channel, "%s", line.c_str()); };
  say(text("\nRoot node processing (before b&c):\n  Real time             = %7.2f\n", times.before));
  say(text("Parallel b&c, %d threads:\n  Real time             = %7.2f\n", times.threads, times.together));
  say(text("  Sync time (average)   = %7.2f\n  Wait time (average)   = %7.2f\n", times.meetings,
           times.waiting));
  say(text("                          -------\nTotal (root+branch&cut) = %7.2f sec.\n",
           times.before + times.together));
}

double NodeLog::seconds() const {
  return clock_seconds(env_) - start_;
}

double NodeLog::in_users_sense(double value) const {
  return problem_.model->objective_sense() * value + 0.0;
}

std::string NodeLog::number(double value) const {
  return text(std::fabs(value) < kWideNumber ? "%13.4f" : "%13.5e", in_users_sense(value));
}

/* Solutions of the search are told by the row of their node, others here. */
void NodeLog::solution(double objective, std::span<const double>) {
  incumbent_ = objective;
  if (in_search_ || display() < 1) return;
  const double value = in_users_sense(objective);
  message(env_.results_channel,
          std::fabs(objective) >= kWideNumber ? "Found feasible solution after %.2f sec.  Objective = %.4e\n"
                                              : "Found feasible solution after %.2f sec.  Objective = %.4f\n",
          seconds(), value);
}

void NodeLog::header() {
  if (has_header_) return;
  has_header_ = true;
  if (display() < 2) {
    message(env_.results_channel, "\nNode log . . .\n");
    return;
  }
  message(env_.results_channel, "\n        Nodes                                         Cuts/\n");
  message(env_.results_channel,
          "   Node  Left     Objective  IInf  Best Integer     Best Node    ItCnt     Gap");
  if (env_.settings.integer(TVK_PARAM_MIPSEARCH) == 1) {
    message(env_.log_channel, "         Variable B NodeID Parent  Depth");
  }
  message(env_.results_channel, "\n\n");
}

bool NodeLog::is_due(const NodeEvent& event) const {
  if (event.new_incumbent || event.nodes == 0 || rows_ == 0) return true;
  const int interval = env_.settings.integer(TVK_PARAM_MIPINTERVAL);
  if (interval > 0) return event.nodes % interval == 0;
  const double base = interval == 0 ? 1000 : -static_cast<double>(interval);
  const double ticks = base * spacing(rows_) * kTicksPerUnit;
  return static_cast<double>(env_.work->ticks) >= static_cast<double>(last_row_ticks_) + ticks;
}

void NodeLog::node(const NodeEvent& event) {
  if (display() < 1) return;
  if (display() == 1) {
    if (event.new_incumbent) brief_line(event, search_->progress());
    return;
  }
  if (is_due(event)) row(event, search_->progress());
}

void NodeLog::cuts(const CutCounts& added) {
  for (std::size_t k = 0; k < kCutClasses; ++k) cuts_[k] += added[k];
  if (display() < 3) return;
  header();
  message(env_.results_channel, "%c%6s%c%5s %19s %13s %13s %8s %8s\n", ' ', "", ' ', "", "", "",
          cuts_field(cuts_).c_str(), "", "");
  cuts_ = {};
  for (Channel* channel : {env_.results_channel, env_.log_channel}) {
    if (channel != nullptr) channel->flush();
  }
}

void NodeLog::brief_line(const NodeEvent& event, const Progress& progress) {
  header();
  std::string bound = text("%14.6le\n", in_users_sense(progress.best_bound));
  if (std::fabs(progress.best_bound) >= 1e74) {
    bound = in_users_sense(progress.best_bound) < 0 ? "-inf\n" : "+inf\n";
  }
  message(env_.results_channel, "Best integer = %14.6le  Node = %7d  Best node = %s",
          in_users_sense(incumbent_), static_cast<int>(event.nodes), bound.c_str());
}

std::string NodeLog::objective_field(const NodeEvent& event) const {
  if (event.new_incumbent && event.by_heuristic) return "";
  if (event.new_incumbent) return text("%-13s %5d", "     integral", 0);
  if (event.end == NodeEnd::infeasible) return text("%-19s", "   infeasible");
  if (event.end == NodeEnd::cutoff) return text("%-19s", "       cutoff");
  if (event.objective >= kNoValue)
    return text("%-19s", incumbent_ < kNoValue ? "       cutoff" : "   infeasible");
  return text("%s %5d", number(event.objective).c_str(), event.infeasibilities);
}

void NodeLog::row(const NodeEvent& event, const Progress& progress) {
  header();
  const bool blank_integer = incumbent_ >= kNoValue;
  std::string bound = cuts_field(cuts_);
  if (bound.empty() && std::fabs(progress.best_bound) < kNoBound) bound = number(progress.best_bound);
  cuts_ = {};
  const auto iterations = static_cast<double>(progress.iterations);
  message(env_.results_channel, "%c%6d%c%5d %19s %13s %13s %s %8s\n", event.new_incumbent ? '*' : ' ',
          static_cast<int>(event.nodes), event.new_incumbent && event.by_heuristic ? '+' : ' ',
          static_cast<int>(event.left), objective_field(event).c_str(),
          blank_integer ? "" : number(incumbent_).c_str(), bound.c_str(),
          text(iterations < kWideCount ? "%8.0f" : "%8.2e", iterations).c_str(),
          gap_field(incumbent_, progress.best_bound).c_str());
  if (env_.settings.integer(TVK_PARAM_MIPSEARCH) == 1) branch_line(event);
  if (rows_ % 10 == 0) elapsed_line(progress);
  ++rows_;
  last_row_ticks_ = env_.work->ticks;
}

void NodeLog::branch_line(const NodeEvent& event) {
  std::string name;
  const int j = event.branch_column;
  if (j >= 0 && j < problem_.model->num_columns()) {
    const model::NameTable& names = problem_.model->column_names();
    name = names.empty() ? "x" + std::to_string(j + 1) : std::string(names.name(j));
  }
  const char letter = j < 0 ? 'X' : event.branch_direction == Direction::down ? 'C' : 'A';
  if (event.parent_id < 0) {
    message(env_.log_channel, "%-16s %c %6d %6s %6d\n", name.c_str(), letter, static_cast<int>(event.id), "",
            event.depth);
  } else {
    message(env_.log_channel, "%-16s %c %6d %6d %6d\n", name.c_str(), letter, static_cast<int>(event.id),
            static_cast<int>(event.parent_id), event.depth);
  }
}

void NodeLog::elapsed_line(const Progress& progress) {
  const bool wall = env_.settings.integer(TVK_PARAM_CLOCKTYPE) != 1;
  const auto solutions = static_cast<double>(progress.solutions);
  message(env_.results_channel, "%s%6.2f sec. (tree size = %5.2f MB%s)\n",
          wall ? "Elapsed real time = " : "Elapsed time = ", seconds(), progress.tree_bytes * kMegabyte,
          solutions >= kWideSolutions ? text(", solutions = %.1e", solutions).c_str()
                                      : text(", solutions = %d", static_cast<int>(solutions)).c_str());
  if (progress.parked_bytes > 0) node_file_line(progress);
  if (env_.results_channel != nullptr) env_.results_channel->flush();
}

void NodeLog::node_file_line(const Progress& progress) {
  if (progress.stored_bytes == progress.parked_bytes) {
    message(env_.results_channel, "Nodefile size = %5.2f MB\n", progress.parked_bytes * kMegabyte);
  } else {
    message(env_.results_channel, "Nodefile size = %5.2f MB (%.2f MB after compression)\n",
            progress.parked_bytes * kMegabyte, progress.stored_bytes * kMegabyte);
  }
}

}  // namespace tovik::mip::run
