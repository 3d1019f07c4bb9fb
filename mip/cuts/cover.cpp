#include "mip/cuts/cover.h"

#include "mip/cuts/rounding.h"

namespace tovik::mip {

Verdict CoverCuts::call(Worker& worker, const Moment& moment) {
  const std::span<const double> x = worker.relaxation->primal();
  std::int64_t work = -cover_.work();
  bool found = false;
  for (int i = 0; i < worker.global.problem.num_rows(); ++i) {
    if (work + cover_.work() > moment.budget || worker.must_stop()) break;
    const RelaxationRow row = worker.row(i);
    work += static_cast<std::int64_t>(row.columns.size());
    for (const double sign : {1.0, -1.0}) {
      if (!KnapsackRow::is_tight(row, sign, x) || !row_.read(worker, row, sign, x)) continue;
      cover_.clear();
      for (const KnapsackRow::Item& item : row_.items()) cover_.add(item.weight, item.value);
      if (!cover_.find(row_.capacity(), false)) continue;
      cover_.complete();
      Cut cut;
      cut.kind = CutClass::cover;
      write(&cut);
      if (cut.columns.empty() || !finish_cut(worker, x, &cut)) continue;
      worker.out.cuts.push_back(std::move(cut));
      found = true;
    }
  }
  worker.out.work += work + cover_.work();
  return found ? Verdict::found : Verdict::nothing;
}

void CoverCuts::write(Cut* cut) const {
  double side = cover_.side();
  for (std::size_t k = 0; k < row_.items().size(); ++k) {
    const double lifted = cover_.coefficient(k);
    if (lifted == 0) continue;
    const KnapsackRow::Item& item = row_.items()[k];
    cut->columns.push_back(item.column);
    cut->values.push_back(item.complemented ? -lifted : lifted);
    if (item.complemented) side -= lifted;
  }
  cut->side = side;
}

}  // namespace tovik::mip
