#include "lp/factor/factor.h"

#include <algorithm>
#include <cmath>

#include "lp/factor/builder.h"
#include "lp/factor/joint_solver.h"
#include "lp/factor/lu.h"
#include "lp/factor/solver.h"
#include "lp/factor/update.h"

namespace tovik::lp::factor {

namespace {

constexpr int kMinUpdates = 20;      // no rebuild for the sake of work before so many updates
constexpr double kFileGrowth = 6.0;  // rebuild when updates have made the files so many times larger
constexpr int kFileSlack = 10000;    // entries of growth that never matter

/* A cap for the sake of accuracy; the work rule mostly acts before. Large very sparse bases want long
 * periods. */
int default_update_limit(int rows) {
  return std::min(5000, 100 + rows / 20);
}

/* Deterministic signs for the accuracy test. */
class Signs {
 public:
  double next() {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return (state_ >> 63) != 0 ? 1.0 : -1.0;
  }

 private:
  std::uint64_t state_ = 12345;
};

}  // namespace

namespace {

/* What decides when another build pays, beside the running counts. */
struct RebuildRule {
  std::int64_t build_work = 0;  // of the build that the factor comes from
  int fresh_entries = 0;
  double least_average = 0.0;  // least (build + extra work) / updates since the build
  bool past_optimum = false;
};

}  // namespace

struct Factor::Saved {
  Lu lu;
  std::vector<int> head;
  RebuildRule rule;
  std::int64_t extra_work = 0;  // since the build
};

struct Factor::Impl {
  explicit Impl(const Matrix& a) : matrix(&a), builder(a), solver(lu), joint_solver(lu) {}

  const Matrix* matrix;
  Settings settings;
  Lu lu;
  Builder builder;
  Solver solver;
  JointSolver joint_solver;
  Stats stats;
  std::vector<int> head;
  std::int64_t overhead = 0;
  std::int64_t extra_work_at_build = 0;
  RebuildRule rule;
  RebuildRule rule_at_record;
  SparseVector check;

  int build(std::vector<int>& basis);
  bool update(const SparseVector& column, const SparseVector& row, int r);
  double multiply(const std::vector<double>& x, std::vector<double>& product) const;
  double multiply_transposed(const std::vector<double>& y, std::vector<double>& product) const;
  double residual(bool transposed);
};

int Factor::Impl::build(std::vector<int>& basis) {
  const int rows = static_cast<int>(basis.size());
  lu.update_limit = default_update_limit(rows);
  lu.recording = false;
  lu.recorded = 0;
  lu.etas.line.resize(lu.update_limit);
  lu.etas.retired.resize(lu.update_limit);
  const int deficiency = builder.build(basis, settings, lu);
  head = basis;
  solver.resize();
  extra_work_at_build = solver.counts().update_solve_ticks;
  rule = {builder.work(), lu.l_columns.used + lu.u_columns.used, 0.0, false};
  solver.counts().build_ticks += builder.work();
  ++solver.counts().builds;
  stats.bump = builder.bump();
  stats.basis_nonzeros = builder.basis_nonzeros();
  stats.l_nonzeros = lu.l_columns.used;
  stats.u_nonzeros = lu.u_columns.used;
  stats.factor_nonzeros = rule.fresh_entries + rows;
  return deficiency;
}

bool Factor::Impl::update(const SparseVector& column, const SparseVector& row, int r) {
  if (lu.updates >= lu.update_limit) return false;
  solver.counts().update_ticks +=
      static_cast<std::int64_t>(3 * column.packed_index.size() + 2 * row.packed_index.size());
  if (!replace_column(column, row, r, solver.workspace().x, lu)) return false;
  const double extra = static_cast<double>(solver.counts().update_solve_ticks - extra_work_at_build);
  const double average = (static_cast<double>(rule.build_work + overhead) + extra) / lu.updates;
  if (lu.updates == 1 || average < rule.least_average) {
    rule.least_average = average;
  } else if (lu.updates >= kMinUpdates && average > 1.02 * rule.least_average) {
    rule.past_optimum = true;
  }
  return true;
}

double Factor::Impl::multiply(const std::vector<double>& x, std::vector<double>& product) const {
  std::fill(product.begin(), product.end(), 0.0);
  double largest = 0.0;
  for (int r = 0; r < lu.rows; ++r) {
    const int j = head[r];
    if (j >= matrix->columns) {
      product[j - matrix->columns] += x[r];
      largest = std::max(largest, 1.0);
      continue;
    }
    double sum = 0.0;
    for (int k = matrix->start[j]; k < matrix->start[j + 1]; ++k) {
      product[matrix->index[k]] += matrix->value[k] * x[r];
      sum += std::fabs(matrix->value[k]);
    }
    largest = std::max(largest, sum);
  }
  return largest;
}

double Factor::Impl::multiply_transposed(const std::vector<double>& y, std::vector<double>& product) const {
  double largest = 0.0;
  for (int r = 0; r < lu.rows; ++r) {
    const int j = head[r];
    if (j >= matrix->columns) {
      product[r] = y[j - matrix->columns];
      largest = std::max(largest, 1.0);
      continue;
    }
    double sum = 0.0, size = 0.0;
    for (int k = matrix->start[j]; k < matrix->start[j + 1]; ++k) {
      sum += matrix->value[k] * y[matrix->index[k]];
      size = std::max(size, std::fabs(matrix->value[k]));
    }
    product[r] = sum;
    largest = std::max(largest, size);
  }
  return largest;
}

double Factor::Impl::residual(bool transposed) {
  if (check.dimension() != lu.rows) check.resize(lu.rows);
  check.clear();
  std::vector<double> right(lu.rows), product(lu.rows);
  Signs signs;
  for (double& value : right) value = signs.next();
  check.array = right;
  check.count = -1;
  if (transposed) {
    solver.btran(check, 1.0);
  } else {
    solver.ftran(check, 1.0);
  }
  const double norm = transposed ? multiply_transposed(check.array, product) : multiply(check.array, product);
  double error = 0.0, size = 0.0;
  for (int i = 0; i < lu.rows; ++i) {
    error = std::max(error, std::fabs(product[i] - right[i]));
    size = std::max(size, std::fabs(check.array[i]));
  }
  return error / (1.0 + norm * size);
}

Factor::Factor(const Matrix& matrix) : impl_(std::make_unique<Impl>(matrix)) {}
Factor::~Factor() = default;

void Factor::set(const Settings& settings) {
  impl_->settings = settings;
}
void Factor::use_matrix(const Matrix& matrix) {
  impl_->matrix = &matrix;
  impl_->builder.use_matrix(matrix);
}
void Factor::set_rebuild_overhead(std::int64_t ticks) {
  impl_->overhead = ticks;
}
int Factor::build(std::vector<int>& head) {
  return impl_->build(head);
}
const std::vector<Exchange>& Factor::exchanges() const {
  return impl_->builder.exchanges();
}
double Factor::residual_check() {
  return std::max(impl_->residual(false), impl_->residual(true));
}

void Factor::ftran(SparseVector& v, double expected_density) {
  impl_->solver.ftran(v, expected_density);
}
void Factor::ftran(std::span<SparseVector* const> vectors) {
  impl_->joint_solver.ftran(vectors, impl_->solver.counts());
}
void Factor::btran(SparseVector& v, double expected_density) {
  impl_->solver.btran(v, expected_density);
}

bool Factor::update(const SparseVector& column, const SparseVector& row, int r) {
  const bool done = impl_->update(column, row, r);
  Counts& counts = impl_->solver.counts();
  ++(done ? counts.updates : counts.refused_updates);
  return done;
}

int Factor::updates() const {
  return impl_->lu.updates;
}

std::int64_t Factor::work() const {
  const Counts& counts = impl_->solver.counts();
  return counts.build_ticks + counts.solve_ticks + counts.update_ticks;
}

bool Factor::wants_rebuild() const {
  const Lu& lu = impl_->lu;
  if (lu.updates >= lu.update_limit || impl_->rule.past_optimum) return true;
  const double entries = static_cast<double>(lu.l_columns.used + lu.u_columns.used + lu.etas.file.used);
  return entries > kFileGrowth * impl_->rule.fresh_entries + kFileSlack;
}

std::shared_ptr<const Factor::Saved> Factor::save() const {
  auto saved = std::make_shared<Saved>();
  saved->lu.copy(impl_->lu);
  saved->head = impl_->head;
  saved->rule = impl_->rule;
  saved->extra_work = impl_->solver.counts().update_solve_ticks - impl_->extra_work_at_build;
  return saved;
}

void Factor::restore(const Saved& saved) {
  impl_->lu.copy(saved.lu);
  impl_->head = saved.head;
  impl_->rule = saved.rule;
  impl_->extra_work_at_build = impl_->solver.counts().update_solve_ticks - saved.extra_work;
  impl_->solver.resize();
}

void Factor::record_updates() {
  impl_->lu.recording = true;
  impl_->lu.recorded = 0;
  impl_->rule_at_record = impl_->rule;
}

void Factor::undo_updates() {
  while (impl_->lu.recorded > 0) undo_update(impl_->lu);
  impl_->lu.recording = false;
  impl_->rule = impl_->rule_at_record;
}

const Stats& Factor::stats() const {
  return impl_->stats;
}

const Counts& Factor::counts() const {
  return impl_->solver.counts();
}

void Factor::force_mode(SolveMode mode) {
  impl_->solver.force(mode);
}

}  // namespace tovik::lp::factor
