#include <algorithm>
#include <utility>

#include "fileio/sav/file.h"
#include "fileio/sav/output.h"

namespace tovik::fileio {
namespace {

using namespace sav;

/* Joins stretches of memory that follow one another, so that they go out in one piece. */
template <class T>
class ContiguousRuns {
 public:
  explicit ContiguousRuns(Output& out) : out_(out) {}
  ~ContiguousRuns() { flush(); }
  ContiguousRuns(const ContiguousRuns&) = delete;
  ContiguousRuns& operator=(const ContiguousRuns&) = delete;
  void add(const T* first, std::size_t count) {
    if (count == 0) return;
    if (first != first_ + count_) {
      flush();
      first_ = first;
      count_ = 0;
    }
    count_ += count;
  }

 private:
  void flush() {
    if (count_ != 0) out_.add(std::span<const T>(first_, count_));
  }
  Output& out_;
  const T* first_ = nullptr;
  std::size_t count_ = 0;
};

/* Numbers that are made one by one, in pieces. */
template <class T>
class BufferedArray {
 public:
  explicit BufferedArray(Output& out) : out_(out) {}
  ~BufferedArray() { flush(); }
  BufferedArray(const BufferedArray&) = delete;
  BufferedArray& operator=(const BufferedArray&) = delete;
  void add(T value) {
    if (used_ == kPiece) flush();
    values_[used_++] = value;
  }

 private:
  static constexpr std::size_t kPiece = 512;
  void flush() { out_.add(std::span<const T>(values_, std::exchange(used_, 0))); }
  Output& out_;
  T values_[kPiece];
  std::size_t used_ = 0;
};

class SavWriter {
 public:
  SavWriter(const SavSource& source, ByteSink& sink) : source_(source), model_(source.model), out_(sink) {}

  bool write() {
    problem();
    columns();
    rows();
    vectors(kMatrix, model_.num_columns(), [this](int j) { return model_.column(j); });
    sets();
    indicators();
    row_family(kUserCuts, model_.families().user_cuts);
    row_family(kLazy, model_.families().lazy_constraints);
    starts();
    order();
    objective_form();
    quadratic_rows();
    state();
    return out_.close();
  }

 private:
  template <class T>
  void if_any(std::uint32_t kind, std::span<const T> values, std::uint8_t flags = 0) {
    if (!values.empty()) out_.array(kind, values, flags);
  }
  void text(std::uint32_t kind, std::string_view text) { if_any<char>(kind, {text.data(), text.size()}); }
  /* Of `count` values that value(k) makes. */
  template <class T, class Value>
  void made(std::uint32_t kind, int count, Value&& value, std::uint8_t flags = 0) {
    out_.begin<T>(kind, static_cast<std::uint64_t>(count), flags);
    BufferedArray<T> pieces(out_);
    for (int k = 0; k < count; ++k) pieces.add(value(k));
  }

  /* Vector k is at(k): index, value and count. */
  template <class At>
  void vectors(const VectorKinds& kinds, int count, At&& at) {
    std::int64_t entries = 0;
    {
      out_.begin<std::int64_t>(kinds.start, static_cast<std::uint64_t>(count) + 1);
      BufferedArray<std::int64_t> pieces(out_);
      pieces.add(0);
      for (int k = 0; k < count; ++k) pieces.add(entries += at(k).count);
    }
    out_.begin<int>(kinds.index, static_cast<std::uint64_t>(entries));
    {
      ContiguousRuns<int> runs(out_);
      for (int k = 0; k < count; ++k) runs.add(at(k).index, static_cast<std::size_t>(at(k).count));
    }
    out_.begin<double>(kinds.value, static_cast<std::uint64_t>(entries));
    ContiguousRuns<double> runs(out_);
    for (int k = 0; k < count; ++k) runs.add(at(k).value, static_cast<std::size_t>(at(k).count));
  }

  void names(std::uint32_t kind, const model::NameTable& table) {
    if (table.empty()) return;
    std::vector<std::pair<const char*, std::size_t>> stretches;
    std::uint64_t bytes = 0;
    for (int k = 0; k < table.size(); ++k) {
      const char* const name = table.name(k);
      const std::size_t size = table.length(k) + 1;
      bytes += size;
      if (!stretches.empty() && stretches.back().first + stretches.back().second == name) {
        stretches.back().second += size;
      } else {
        stretches.emplace_back(name, size);
      }
    }
    out_.begin<char>(kind, bytes);
    for (const auto& [first, size] : stretches) out_.add(std::span<const char>(first, size));
  }

  void problem() {
    const std::int64_t sizes[] = {model_.num_columns(), model_.num_rows(), model_.num_nonzeros(),
                                  source_.problem_type, model_.objective_sense()};
    const double offset = model_.objective_offset();
    out_.array<std::int64_t>(kind("PROB"), sizes);
    out_.array<double>(kind("POFF"), {&offset, 1});
    text(kind("PNAM"), source_.problem_name);
    text(kind("ONAM"), model_.objective_name());
    text(kind("BNAM"), model_.bounds_name());
  }
  void columns() {
    out_.array(kind("CCST"), model_.objective());
    out_.array(kind("CLOW"), model_.lower());
    out_.array(kind("CUPP"), model_.upper());
    if_any(kind("CTYP"), model_.column_types());
    names(kind("CNAM"), model_.column_names());
  }
  void rows() {
    out_.array(kind("RRHS"), model_.rhs());
    out_.array(kind("RSEN"), model_.sense());
    if (model_.has_ranges()) out_.array(kind("RRNG"), model_.range());
    names(kind("RNAM"), model_.row_names());
  }

  void sets() {
    const model::Sets& sets = model_.families().sets;
    if (sets.empty()) return;
    vectors(kSets, sets.size(), [&](int k) { return sets.members(k); });
    out_.array(kind("STYP"), sets.type());
    names(kind("SNAM"), sets.names());
  }
  void row_family(const RowKinds& kinds, const model::RowPool& pool) {
    if (pool.empty()) return;
    vectors(kinds.terms, pool.size(), [&](int k) { return pool.row(k); });
    out_.array(kinds.rhs, pool.rhs());
    out_.array(kinds.sense, pool.sense());
    names(kinds.names, pool.names());
  }
  void indicators() {
    const model::Indicators& indicators = model_.families().indicators;
    if (indicators.empty()) return;
    row_family(kIndicators, indicators.rows());
    out_.array(kind("ICOL"), indicators.column());
    made<char>(kind("ICMP"), indicators.size(),
               [&](int k) { return indicators.complemented(k) ? '\1' : '\0'; });
  }
  void starts() {
    const model::MipStarts& starts = model_.families().starts;
    if (starts.empty()) return;
    vectors(kStarts, starts.size(), [&](int k) { return starts.values(k); });
    out_.array(kind("TEFF"), starts.effort());
    names(kind("TNAM"), starts.names());
  }
  void order() {
    const model::PriorityOrder& order = model_.families().order;
    if (order.empty()) return;
    const auto field = [&](std::uint32_t kind, int model::OrderEntry::*member) {
      made<int>(kind, order.size(),
                [&](int k) { return order.entries()[static_cast<std::size_t>(k)].*member; });
    };
    field(kind("OCOL"), &model::OrderEntry::column);
    field(kind("OPRI"), &model::OrderEntry::priority);
    field(kind("ODIR"), &model::OrderEntry::direction);
  }
  void terms(const std::uint32_t (&kinds)[3], std::span<const model::QuadraticTerm> terms) {
    const int count = static_cast<int>(terms.size());
    const auto at = [&](int k) { return terms[static_cast<std::size_t>(k)]; };
    made<int>(kinds[0], count, [&](int k) { return at(k).column; });
    made<int>(kinds[1], count, [&](int k) { return at(k).other; });
    made<double>(kinds[2], count, [&](int k) { return at(k).value; });
  }
  void objective_form() {
    const model::QuadraticObjective& form = model_.families().quadratic_objective;
    if (form.empty()) return;
    static constexpr std::uint32_t kKinds[] = {kind("FCOL"), kind("FROW"), kind("FVAL")};
    terms(kKinds, form.matrix());
  }
  void quadratic_rows() {
    const model::QuadraticRows& rows = model_.families().quadratic_rows;
    if (rows.empty()) return;
    row_family(kQuadraticRows, rows.linear());
    std::vector<std::int64_t> start(1, 0);
    std::vector<model::QuadraticTerm> all;
    for (int k = 0; k < rows.size(); ++k) {
      all.insert(all.end(), rows.terms(k).begin(), rows.terms(k).end());
      start.push_back(static_cast<std::int64_t>(all.size()));
    }
    out_.array<std::int64_t>(kind("QPST"), start);
    static constexpr std::uint32_t kKinds[] = {kind("QPCL"), kind("QPOT"), kind("QPVL")};
    terms(kKinds, all);
  }

  void statuses(std::uint32_t kind, std::span<const int> status) {
    if (status.empty()) return;
    made<char>(
        kind, static_cast<int>(status.size()),
        [&](int k) { return static_cast<char>(status[static_cast<std::size_t>(k)]); }, kOptional);
  }
  /* Whoever wants the model alone may skip these sections. */
  void state() {
    const SavStateView& state = source_.state;
    statuses(kind("BCOL"), state.column_status);
    statuses(kind("BROW"), state.row_status);
    if_any(kind("VPRI"), state.primal, kOptional);
    if_any(kind("VROW"), state.row_primal, kOptional);
    if_any(kind("VDUA"), state.dual, kOptional);
    if_any(kind("VRDU"), state.row_dual, kOptional);
    if_any(kind("NHED"), state.norm_head, kOptional);
    if_any(kind("NDUA"), state.dual_norms, kOptional);
    if_any(kind("XINT"), state.counts, kOptional);
    if_any(kind("XNUM"), state.numbers, kOptional);
    if_any(kind("XVAL"), state.x, kOptional);
    if_any(kind("XSLK"), state.slack, kOptional);
    if_any(kind("XDUA"), state.pi, kOptional);
    if_any(kind("XRED"), state.dj, kOptional);
    if_any(kind("XRAY"), state.ray, kOptional);
    if_any(kind("XFAR"), state.farkas, kOptional);
  }

  const SavSource& source_;
  const model::Model& model_;
  Output out_;
};

}  // namespace

bool write_sav(const SavSource& source, ByteSink& sink) {
  return SavWriter(source, sink).write();
}

}  // namespace tovik::fileio
