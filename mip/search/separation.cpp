#include "mip/search/separation.h"

#include <algorithm>
#include <utility>

#include "mip/cuts/separators.h"

namespace tovik::mip {
namespace {

constexpr int kPatience = 5;  // solves that a cut row may be slack
constexpr int kFewRows = 200;
constexpr std::size_t kWindow = 6;    // rounds over which a stall is judged
constexpr double kLeastShare = 0.03;  // of the gain of all rounds
constexpr int kFailures = 3;          // of a separator before it waits
constexpr int kRootCuts = 2000, kNodeCuts = 100;
constexpr double kRoomShare = 0.25;  // of all rows that may be; with less left, slack ones leave at once
constexpr std::int64_t kBudget = 20000000;  // entries that one separator may touch in a round
constexpr int kEffortShift = 1;             // twice as many for each degree of effort

}  // namespace

Separation::Separation(const Global& global) : global_(global), pool_(global.problem) {
  for (SeparatorEntry& entry : make_separators(global)) {
    const char* name = entry.plugin->name();
    separators_.push_back({entry.effort, std::move(entry.plugin)});
    separators_.back().counts.name = name;
  }
}

int Separation::round(Worker& worker, std::span<const double> x, const Moment& moment) {
  if (stalls(worker.relaxation->objective(), moment)) return 0;
  const double most = most_rows();
  if (most - worker.num_rows() < kRoomShare * most) drop_slack_rows(worker, true);
  call_separators(worker, moment);
  for (Cut& cut : worker.out.cuts) pool_.add(std::move(cut));
  worker.out.cuts.clear();
  SelectionRules rules;
  rules.limit = moment.root ? kRootCuts : kNodeCuts;
  rules.limit = static_cast<int>(std::clamp(most - worker.num_rows(), 0.0, static_cast<double>(rules.limit)));
  std::vector<Cut> chosen;
  if (rules.limit > 0) chosen = pool_.select(x, rules);
  const std::int64_t work = pool_.work() + worker.out.work;
  worker.control.add_work(static_cast<std::uint64_t>(work - work_told_));
  work_told_ = work;
  limit_classes(chosen);
  if (!chosen.empty()) add_rows(worker, chosen);
  return static_cast<int>(chosen.size());
}

/* The last rounds brought little of what all have. */
bool Separation::stalls(double objective, const Moment& moment) {
  if (moment.round == 0) objectives_.clear();
  objectives_.push_back(objective);
  if (objectives_.size() <= kWindow) return false;
  const double all = objective - objectives_.front();
  return objective - objectives_[objectives_.size() - 1 - kWindow] < kLeastShare * all;
}

Verdict Separation::call(Separator& separator, Worker& worker, const Moment& moment) {
  const std::size_t before = worker.out.cuts.size();
  const TimedCall timed(separator.counts, worker.control);
  const Verdict verdict = separator.plugin->call(worker, moment);
  const std::size_t found = worker.out.cuts.size() - before;
  separator.counts.found += static_cast<std::int64_t>(found);
  if (found > 0) ++separator.counts.successes;
  return verdict;
}

void Separation::call_separators(Worker& worker, const Moment& moment) {
  Moment now = moment;
  for (Separator& separator : separators_) {
    if (separator.effort < moment.least_effort) continue;
    now.budget = kBudget << (kEffortShift * separator.effort);
    if (separator.waits > 0) {
      --separator.waits;
      continue;
    }
    const Verdict verdict = call(separator, worker, now);
    if (verdict == Verdict::infeasible) break;
    separator.failures = verdict == Verdict::found ? 0 : separator.failures + 1;
    if (separator.failures >= kFailures && separator.effort == 0) separator.waits = separator.failures;
  }
}

Effort Separation::most_effort() const {
  Effort most = 0;
  for (const Separator& separator : separators_) most = std::max(most, separator.effort);
  return most;
}

/* Few rows may have more cuts than their number says. */
double Separation::most_rows() const {
  const int rows = global_.problem.num_rows();
  return rows + (global_.settings.cuts.rows_factor - 1) * std::max(rows, kFewRows);
}

void Separation::limit_classes(std::vector<Cut>& cuts) {
  std::erase_if(cuts, [&](const Cut& cut) {
    int& count = all_counts_[static_cast<std::size_t>(cut.kind)];
    return count >= global_.settings.cuts.most_of_a_class || (++count, false);
  });
}

void Separation::add_rows(Worker& worker, std::vector<Cut>& cuts) {
  lp::simplex::RowBlock block;
  block.entries.rows = global_.problem.num_columns();
  for (const Cut& cut : cuts) {
    append_row(cut, block);
    ++counts_[static_cast<std::size_t>(cut.kind)];
  }
  worker.relaxation->add_rows(block);
  slack_for_.insert(slack_for_.end(), cuts.size(), 0);
  for (std::size_t k = 0; k < cuts.size(); ++k) numbers_.push_back(next_number_++);
  told_numbers_.reset();
  for (Cut& cut : cuts) worker.cut_rows.push_back(std::move(cut));
}

std::shared_ptr<const std::vector<std::int64_t>> Separation::row_numbers() {
  if (told_numbers_ == nullptr) told_numbers_ = std::make_shared<const std::vector<std::int64_t>>(numbers_);
  return told_numbers_;
}

bool Separation::drop_slack_rows(Worker& worker, bool at_once) {
  const int first = global_.problem.num_rows();
  const int count = rows();
  std::vector<char> is_basic(static_cast<std::size_t>(count));
  const int columns = global_.problem.num_columns();
  for (const int variable : worker.relaxation->basis_head()) {
    if (variable >= columns + first) is_basic[variable - columns - first] = 1;
  }
  std::vector<int> leaving;
  for (int k = 0; k < count; ++k) {
    const Cut& cut = worker.cut_rows[k];
    slack_for_[k] = is_basic[k] != 0 && !cut.stays ? slack_for_[k] + 1 : 0;
    if (slack_for_[k] <= (at_once ? 0 : kPatience)) continue;
    leaving.push_back(first + k);
    if (cut.kind == CutClass::user) left_.push_back(cut);
  }
  if (leaving.empty()) return false;
  delete_rows(worker, leaving);
  return true;
}

void Separation::delete_rows(Worker& worker, const std::vector<int>& rows) {
  const int first = global_.problem.num_rows();
  worker.relaxation->delete_rows(rows);
  for (const int row : rows) {
    slack_for_[row - first] = -1;
    numbers_[row - first] = -1;
    worker.cut_rows[row - first].columns.clear();
  }
  std::erase_if(worker.cut_rows, [](const Cut& cut) { return cut.columns.empty(); });
  std::erase(slack_for_, -1);
  std::erase(numbers_, -1);
  told_numbers_.reset();
}

std::vector<PluginCounts> Separation::plugin_counts() const {
  std::vector<PluginCounts> counts;
  for (const Separator& separator : separators_) counts.push_back(separator.counts);
  return counts;
}

CutCounts Separation::take_counts() {
  return std::exchange(counts_, {});
}

}  // namespace tovik::mip
