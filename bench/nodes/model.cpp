#include "bench/nodes/model.h"

#include <tovik.h>

#include <cmath>
#include <filesystem>

namespace bench {

namespace {

using tovik::lp::kInf;

/* A problem object that holds the model while it is copied out. */
class Reader {
 public:
  explicit Reader(const std::string& file) : env_(TVKopenTOVIK(&code_)) {
    lp_ = TVKcreateprob(env_, &code_, "bench");
    ready_ = TVKreadcopyprob(env_, lp_, file.c_str(), nullptr) == 0;
  }
  ~Reader() { TVKcloseTOVIK(&env_); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  bool copy(Model& model) {
    if (!ready_ || TVKgetnumrows(env_, lp_) == 0 || !copy_columns(model)) return false;
    copy_matrix(model.lp.matrix);
    copy_rows(model.lp);
    if (TVKgetobjsen(env_, lp_) < 0) turn(model.lp);
    model.by_rows = transpose(model.lp.matrix);
    return true;
  }

 private:
  bool copy_columns(Model& model) {
    tovik::lp::LpData& lp = model.lp;
    const int n = TVKgetnumcols(env_, lp_);
    for (std::vector<double>* v : {&lp.cost, &lp.lower, &lp.upper}) v->resize(n);
    TVKgetobj(env_, lp_, lp.cost.data(), 0, n - 1);
    TVKgetlb(env_, lp_, lp.lower.data(), 0, n - 1);
    TVKgetub(env_, lp_, lp.upper.data(), 0, n - 1);
    TVKgetobjoffset(env_, lp_, &lp.offset);
    for (double& v : lp.lower) v = v <= -TVK_INFBOUND ? -kInf : v;
    for (double& v : lp.upper) v = v >= TVK_INFBOUND ? kInf : v;
    std::vector<char> types(n, 'C');
    TVKgetctype(env_, lp_, types.data(), 0, n - 1);  // a model without integers leaves them as they are
    model.integer.resize(n);
    for (int j = 0; j < n; ++j) {
      model.integer[j] = types[j] == 'I' || types[j] == 'B';
      if (!model.integer[j] && types[j] != 'C') return false;
    }
    return true;
  }

  void copy_matrix(tovik::lp::Matrix& matrix) {
    matrix.rows = TVKgetnumrows(env_, lp_);
    matrix.columns = TVKgetnumcols(env_, lp_);
    const int entries = TVKgetnumnz(env_, lp_);
    matrix.start.resize(matrix.columns + 1);
    matrix.index.resize(entries);
    matrix.value.resize(entries);
    int count = 0, surplus = 0;
    TVKgetcols(env_, lp_, &count, matrix.start.data(), matrix.index.data(), matrix.value.data(), entries,
               &surplus, 0, matrix.columns - 1);
    matrix.start[matrix.columns] = entries;
  }

  void copy_rows(tovik::lp::LpData& lp) {
    const int m = lp.matrix.rows;
    std::vector<char> sense(m);
    std::vector<double> rhs(m), range(m);
    TVKgetsense(env_, lp_, sense.data(), 0, m - 1);
    TVKgetrhs(env_, lp_, rhs.data(), 0, m - 1);
    TVKgetrngval(env_, lp_, range.data(), 0, m - 1);
    lp.row_lower = rhs;
    lp.row_upper = rhs;
    for (int i = 0; i < m; ++i) {
      if (sense[i] == 'L') lp.row_lower[i] = -kInf;
      if (sense[i] == 'G') lp.row_upper[i] = kInf;
      if (sense[i] == 'R') (range[i] < 0 ? lp.row_lower : lp.row_upper)[i] += range[i];
    }
  }

  static void turn(tovik::lp::LpData& lp) {
    for (double& c : lp.cost) c = -c;
    lp.offset = -lp.offset;
  }

  int code_ = 0;
  EnvHandle env_;
  ProbHandle lp_ = nullptr;
  bool ready_ = false;
};

}  // namespace

std::vector<int> Model::integer_columns() const {
  std::vector<int> found;
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (integer[j]) found.push_back(j);
  }
  return found;
}

bool read_model(const std::string& file, Model& model) {
  std::filesystem::path name = std::filesystem::path(file).filename();
  while (name.has_extension()) name = name.stem();
  model.name = name.string();
  return Reader(file).copy(model);
}

double fraction(double value) {
  return std::fabs(value - std::round(value));
}

std::vector<int> fractional_columns(const Model& model, std::span<const double> x) {
  std::vector<int> found;
  for (const int j : model.integer_columns()) {
    if (fraction(x[j]) > kIntegral) found.push_back(j);
  }
  return found;
}

}  // namespace bench
