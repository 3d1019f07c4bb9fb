/* Feeds bytes to the MPS reader and checks what every reader promises about its result. Seeds:
 * tests/fileio/corpus/mps. */
#include "fuzz/reader_harness.h"

namespace {

using namespace tovik::fileio;
using fuzz::require;

void check_families(const FileModel& model) {
  const std::size_t columns = model.objective.size();
  const auto check_terms = [columns](const SparseTerms& terms) {
    require(terms.index.size() == terms.value.size());
    for (std::size_t k = 0; k < terms.index.size(); ++k)
      require(terms.index[k] >= 0 && static_cast<std::size_t>(terms.index[k]) < columns &&
              std::isfinite(terms.value[k]));
  };
  const auto check_row = [&](const NamedRow& row) {
    require(!row.name.empty() && (row.sense == 'L' || row.sense == 'E' || row.sense == 'G') &&
            std::isfinite(row.rhs));
    check_terms(row.terms);
  };
  const auto check_quadratic = [columns](const std::vector<QuadraticTerm>& terms) {
    for (const QuadraticTerm& term : terms)
      require(term.column >= 0 && term.column <= term.other &&
              static_cast<std::size_t>(term.other) < columns);
  };
  check_quadratic(model.quadratic_objective);
  for (const QuadraticRow& row : model.quadratic_rows) {
    check_row(row.linear);
    check_quadratic(row.quadratic);
  }
  for (const IndicatorRow& indicator : model.indicators) {
    check_row(indicator.row);
    require(indicator.column >= 0 && static_cast<std::size_t>(indicator.column) < columns);
  }
  for (const NamedRow& row : model.user_cuts) check_row(row);
  for (const NamedRow& row : model.lazy_constraints) check_row(row);
  for (const SpecialOrderedSet& set : model.sets) {
    require(set.type == '1' || set.type == '2');
    check_terms(set.members);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::SlowSource source({reinterpret_cast<const char*>(data), size});
  fuzz::SilentLog log;
  FileModel model;
  const ReadFailure failure = read_mps(source, {}, log, model);
  if (failure) {
    const bool about_lines =
        failure.code >= TVK_ERROR_TOO_MANY_ROWS && failure.code <= TVK_ERROR_LINE_NO_SOS_TYPE;
    require(about_lines || failure.code == TVK_ERROR_DUPLICATE_PAIR ||
            failure.code == TVK_ERROR_Q_NOT_SYMMETRIC);
  } else {
    fuzz::check(model);
    check_families(model);
  }
  return 0;
}
