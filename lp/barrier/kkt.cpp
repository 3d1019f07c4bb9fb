#include "lp/barrier/kkt.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/barrier/gmres.h"

namespace tovik::lp::barrier {
namespace {

constexpr double kTickShare = 0.1;  // work of an operation in dense loops against one by lists

/* Fewest entries from which on a column is dense: an empty stretch in the counts below which nearly all lie. */
int dense_threshold(std::vector<int> counts) {
  constexpr int kNeverBelow = 40;
  constexpr int kJump = 10;  // times the longest column that is not dense
  std::sort(counts.begin(), counts.end());
  for (std::size_t k = 1; k < counts.size(); ++k) {
    if (counts[k] > kNeverBelow && counts[k] > kJump * std::max(1, counts[k - 1])) return counts[k - 1];
  }
  return counts.empty() ? 0 : counts.back();
}

}  // namespace

int Kkt::dense_limit(const Options& options) const {
  if (options.dense_column > 0) return options.dense_column;
  std::vector<int> counts;
  for (int j = 0; j < form_.n; ++j) counts.push_back(form_.a.start[j + 1] - form_.a.start[j]);
  return std::max(1, dense_threshold(std::move(counts)));
}

Kkt::Layout Kkt::make_layout(const std::vector<char>& keep) const {
  Layout layout;
  layout.place.assign(static_cast<std::size_t>(form_.n), -1);
  for (int j = 0; j < form_.n; ++j) {
    if (!keep[j]) continue;
    layout.place[j] = static_cast<int>(layout.kept.size());
    layout.kept.push_back(j);
  }
  cholesky::Pattern& pattern = layout.pattern;
  pattern.size = form_.m + static_cast<int>(layout.kept.size());
  pattern.start.assign(1, 0);
  std::vector<int> mark(static_cast<std::size_t>(form_.m), -1);
  for (int i = 0; i < form_.m; ++i) {
    const std::size_t begin = pattern.index.size();
    pattern.index.push_back(i);
    mark[i] = i;
    for (int k = form_.rows.start[i]; k < form_.rows.start[i + 1]; ++k) {
      const int j = form_.rows.index[k];
      if (keep[j]) continue;
      const int end = form_.a.start[j + 1];
      layout.forming += end - position_[k];
      for (int p = position_[k]; p < end; ++p) {
        const int row = form_.a.index[p];
        if (mark[row] == i) continue;
        mark[row] = i;
        pattern.index.push_back(row);
      }
    }
    std::sort(pattern.index.begin() + static_cast<std::ptrdiff_t>(begin), pattern.index.end());
    for (int k = form_.rows.start[i]; k < form_.rows.start[i + 1]; ++k) {
      const int j = form_.rows.index[k];
      if (keep[j]) pattern.index.push_back(form_.m + layout.place[j]);
    }
    pattern.start.push_back(static_cast<std::int64_t>(pattern.index.size()));
  }
  for (std::size_t k = 0; k < layout.kept.size(); ++k) {
    pattern.index.push_back(form_.m + static_cast<int>(k));
    pattern.start.push_back(static_cast<std::int64_t>(pattern.index.size()));
  }
  return layout;
}

cholesky::State Kkt::analyze(const Options& options, Control& control, Observer* observer) {
  position_.assign(form_.rows.index.size(), 0);
  std::vector<int> next(form_.rows.start.begin(), form_.rows.start.end() - 1);
  for (int j = 0; j < form_.n; ++j) {
    for (int p = form_.a.start[j]; p < form_.a.start[j + 1]; ++p) position_[next[form_.a.index[p]]++] = p;
  }
  setup_.dense_limit = dense_limit(options);
  std::vector<char> must_stay(static_cast<std::size_t>(form_.n), 0), may_stay = must_stay;
  double normal_work = 0;  // least work to form the normal equations
  for (int j = 0; j < form_.n; ++j) {
    const int entries = form_.a.start[j + 1] - form_.a.start[j];
    const bool dense = entries > setup_.dense_limit;
    setup_.dense_columns += dense;
    must_stay[j] = dense || (!form_.has_lower[j] && entries > 0);
    may_stay[j] = must_stay[j] || entries > 1;
    if (!must_stay[j]) normal_work += 0.5 * entries * entries;
  }
  if (observer != nullptr) observer->dense_columns(setup_.dense_limit, setup_.dense_columns);

  /* The augmented system is looked at only where the normal equations are not sure to be the cheaper ones. Both are
   * compared by a quick ordering, and only the one that is taken has more time for a better one. */
  constexpr double kHopeless = 2e9;  // entries not even formed to be counted
  constexpr double kCheap = 300;     // factor's work by entry of A up to which nobody asks for another system
  constexpr double kAdvantage =
      2;  // of the augmented system's work, for which the normal equations are given up
  const auto preview = [&](const Layout& layout, cholesky::Cholesky& factor, double& work) {
    const cholesky::State state = factor.preview(layout.pattern, options.factorization, control);
    work = state == cholesky::State::done ? factor.counts().flops + 2 * layout.forming : kInf;
    return state == cholesky::State::stopped ? state : cholesky::State::done;
  };
  setup_.augmented =
      options.system == System::augmented || (options.system == System::automatic && normal_work > kHopeless);
  layout_ = make_layout(setup_.augmented ? may_stay : must_stay);
  if (options.system == System::automatic && !setup_.augmented) {
    double normal = 0, other = 0;
    if (preview(layout_, factor_, normal) == cholesky::State::stopped) return cholesky::State::stopped;
    if (normal > kCheap * static_cast<double>(form_.a.index.size())) {
      Layout layout = make_layout(may_stay);
      cholesky::Cholesky augmented;
      if (preview(layout, augmented, other) == cholesky::State::stopped) return cholesky::State::stopped;
      if (kAdvantage * other < normal) {
        layout_ = std::move(layout);
        factor_ = std::move(augmented);
        setup_.augmented = true;
      }
    }
  }
  cholesky::State state = factor_.analyze(layout_.pattern, options.factorization, control);
  if (state == cholesky::State::out_of_memory && options.system == System::automatic && !setup_.augmented) {
    layout_ = make_layout(may_stay);
    factor_ = cholesky::Cholesky();
    setup_.augmented = true;
    state = factor_.analyze(layout_.pattern, options.factorization, control);
  }
  if (state != cholesky::State::done) return state;
  setup_.counts = factor_.counts();
  setup_.lower_entries = static_cast<std::int64_t>(layout_.pattern.index.size()) - layout_.pattern.size;
  signs_.assign(static_cast<std::size_t>(layout_.pattern.size), 1);
  std::fill(signs_.begin() + form_.m, signs_.end(), static_cast<signed char>(-1));
  values_.resize(layout_.pattern.index.size());
  inverse_.resize(static_cast<std::size_t>(form_.n));
  diagonal_.resize(static_cast<std::size_t>(form_.n));
  work_.resize(static_cast<std::size_t>(layout_.pattern.size));
  return state;
}

void Kkt::form_matrix(const std::vector<double>& d, const Regularization& regularization) {
  for (int j = 0; j < form_.n; ++j) {
    diagonal_[j] = d[j] + (!form_.has_lower[j]     ? regularization.free
                           : layout_.place[j] >= 0 ? regularization.kept
                                                   : regularization.eliminated);
    inverse_[j] = 1 / diagonal_[j];
  }
  std::vector<double>& column = work_;
  std::fill(column.begin(), column.end(), 0.0);
  for (int i = 0; i < form_.m; ++i) {
    column[i] = setup_.augmented ? regularization.kept : regularization.rows;
    for (int k = form_.rows.start[i]; k < form_.rows.start[i + 1]; ++k) {
      const int j = form_.rows.index[k];
      if (layout_.place[j] >= 0) {
        column[form_.m + layout_.place[j]] = form_.rows.value[k];
        continue;
      }
      const double t = form_.rows.value[k] * inverse_[j];
      const int end = form_.a.start[j + 1];
      for (int p = position_[k]; p < end; ++p) column[form_.a.index[p]] += t * form_.a.value[p];
    }
    const cholesky::Pattern& pattern = layout_.pattern;
    for (std::int64_t p = pattern.start[i]; p < pattern.start[i + 1]; ++p) {
      values_[p] = column[pattern.index[p]];
      column[pattern.index[p]] = 0;
    }
  }
  for (std::size_t k = 0; k < layout_.kept.size(); ++k) {
    const int j = layout_.kept[k];
    values_[layout_.pattern.start[form_.m + k]] = -diagonal_[j];
    diagonal_[j] = d[j];
  }
}

cholesky::State Kkt::factorize(const std::vector<double>& d, const Regularization& regularization,
                               Control& control) {
  form_matrix(d, regularization);
  double largest = 0;
  for (const double v : values_) largest = std::max(largest, std::fabs(v));
  constexpr double kSmallestPivot = 1e-30;  // share of the largest entry
  cholesky::Pivoting pivoting;
  pivoting.smallest = kSmallestPivot * largest;
  pivoting.replacement = 0;  // infinite: its unknown becomes 0
  control.add_work(static_cast<std::uint64_t>(kTickShare * 2 * layout_.forming));
  return factor_.factorize(values_.data(), signs_.data(), pivoting, control, &report_);
}

void Kkt::multiply(const std::vector<double>& in, std::vector<double>& out) const {
  std::fill(out.begin(), out.end(), 0.0);
  for (int j = 0; j < form_.n; ++j) {
    const int place = layout_.place[j] < 0 ? -1 : form_.m + layout_.place[j];
    double sum = 0;
    for (int p = form_.a.start[j]; p < form_.a.start[j + 1]; ++p)
      sum += form_.a.value[p] * in[form_.a.index[p]];
    if (place >= 0) out[place] = sum - diagonal_[j] * in[place];
    const double t = place >= 0 ? in[place] : inverse_[j] * sum;
    for (int p = form_.a.start[j]; p < form_.a.start[j + 1]; ++p)
      out[form_.a.index[p]] += form_.a.value[p] * t;
  }
}

void Kkt::solve(std::vector<double>& primal, std::vector<double>& dual, Accuracy accuracy,
                Control& control) const {
  /* dx_1 = (D + R)^-1 (A_1'dy - dual_1) in the rows. */
  std::vector<double>& work = work_;
  for (int i = 0; i < form_.m; ++i) work[i] = primal[i];
  for (std::size_t k = 0; k < layout_.kept.size(); ++k) work[form_.m + k] = dual[layout_.kept[k]];
  for (int j = 0; j < form_.n; ++j) {
    if (layout_.place[j] >= 0) continue;
    const double t = inverse_[j] * dual[j];
    for (int p = form_.a.start[j]; p < form_.a.start[j + 1]; ++p)
      work[form_.a.index[p]] += form_.a.value[p] * t;
  }
  if (accuracy == Accuracy::iterated) {
    const std::vector<double> right = work;
    std::fill(work.begin(), work.end(), 0.0);
    gmres([this](const std::vector<double>& in, std::vector<double>& out) { multiply(in, out); },
          [&](std::vector<double>& v) {
            factor_.solve(v.data());
            control.add_work(static_cast<std::uint64_t>(kTickShare * solve_cost()));
          },
          right, GmresLimits{}, work);
  } else {
    factor_.solve(work.data());
  }
  for (int i = 0; i < form_.m; ++i) primal[i] = work[i];
  for (int j = 0; j < form_.n; ++j) {
    if (layout_.place[j] >= 0) {
      dual[j] = work[form_.m + layout_.place[j]];
      continue;
    }
    double sum = 0;
    for (int p = form_.a.start[j]; p < form_.a.start[j + 1]; ++p)
      sum += form_.a.value[p] * primal[form_.a.index[p]];
    dual[j] = inverse_[j] * (sum - dual[j]);
  }
  control.add_work(static_cast<std::uint64_t>(kTickShare * solve_cost()));
}

double Kkt::solve_cost() const {
  return 2 * static_cast<double>(setup_.counts.entries) + 4 * static_cast<double>(form_.a.index.size());
}

double Kkt::factor_cost() const {
  return setup_.counts.flops + 2 * layout_.forming;
}

}  // namespace tovik::lp::barrier
