#include "mip/cuts/clique_cuts.h"

#include <algorithm>
#include <utility>

#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

constexpr std::size_t kVertices = 2000;
constexpr double kFractional = 1e-4;  // from 0 and 1
constexpr double kViolated = 1.01;    // least sum of values
constexpr int kSteps = 500;           // of one search
constexpr std::size_t kExtensions = 300;

}  // namespace

Verdict CliqueCuts::call(Worker& worker, const Moment& moment) {
  const CliqueTable& table = worker.global.cliques;
  if (table.size() == 0) return Verdict::nothing;
  const std::span<const double> x = worker.relaxation->primal();
  work_ = 0;
  find_vertices(worker, x);
  find_neighbours(table);
  bool found = false;
  std::vector<char> is_covered(vertices_.size());
  for (std::size_t v = 0; v < vertices_.size(); ++v) {
    if (work_ > moment.budget || worker.must_stop()) break;
    if (is_covered[v] != 0) continue;
    std::vector<std::size_t> clique{v}, candidates;
    for (std::size_t w = 0; w < vertices_.size(); ++w) {
      if (are_adjacent(v, w)) candidates.push_back(w);
    }
    best_.clear();
    best_value_ = kViolated;
    steps_ = 0;
    grow(clique, vertices_[v].value, candidates);
    if (best_.empty()) continue;
    std::vector<Literal> literals;
    for (const std::size_t w : best_) {
      is_covered[w] = 1;
      literals.push_back(vertices_[w].literal);
    }
    extend(table, literals);
    std::sort(literals.begin(), literals.end());
    Cut cut;
    cut.kind = CutClass::clique;
    cut.side = 1;
    for (const Literal l : literals) {
      cut.columns.push_back(column_of(l));
      cut.values.push_back(is_true(l) ? 1 : -1);
      if (!is_true(l)) cut.side -= 1;
    }
    if (!finish_cut(worker, x, &cut)) continue;
    worker.out.cuts.push_back(std::move(cut));
    found = true;
  }
  worker.out.work += work_;
  return found ? Verdict::found : Verdict::nothing;
}

/* The literals of fractional columns that are in a clique; the largest values first. */
void CliqueCuts::find_vertices(const Worker& worker, std::span<const double> x) {
  vertices_.clear();
  for (const int j : worker.global.integer_columns) {
    if (!worker.domain.is_binary_globally(j) || x[j] < kFractional || x[j] > 1 - kFractional) continue;
    for (const bool truth : {true, false}) {
      const Literal l = literal(j, truth);
      if (!worker.global.cliques.cliques_of(l).empty()) vertices_.push_back({l, truth ? x[j] : 1 - x[j]});
    }
  }
  std::sort(vertices_.begin(), vertices_.end(), [](const Vertex& a, const Vertex& b) {
    return a.value != b.value ? a.value > b.value : a.literal < b.literal;
  });
  if (vertices_.size() > kVertices) vertices_.resize(kVertices);
  vertex_of_.assign(2 * x.size(), -1);
  for (std::size_t v = 0; v < vertices_.size(); ++v) vertex_of_[vertices_[v].literal] = static_cast<int>(v);
}

void CliqueCuts::find_neighbours(const CliqueTable& table) {
  words_ = vertices_.size() / 64 + 1;
  neighbours_.assign(words_ * vertices_.size(), 0);
  for (std::size_t v = 0; v < vertices_.size(); ++v) {
    for (const int c : table.cliques_of(vertices_[v].literal)) {
      work_ += static_cast<std::int64_t>(table.clique(c).size());
      for (const Literal l : table.clique(c)) {
        const int w = vertex_of_[l];
        if (w < 0 || w == static_cast<int>(v)) continue;
        neighbours_[v * words_ + static_cast<std::size_t>(w) / 64] |= std::uint64_t{1} << (w % 64);
      }
    }
  }
}

/* candidates: adjacent to all of the clique, by falling value. */
void CliqueCuts::grow(std::vector<std::size_t>& clique, double value,
                      const std::vector<std::size_t>& candidates) {
  if (value > best_value_ && clique.size() > 1) {
    best_value_ = value;
    best_ = clique;
  }
  double left = 0;
  for (const std::size_t w : candidates) left += vertices_[w].value;
  for (std::size_t k = 0; k < candidates.size(); ++k) {
    if (value + left <= best_value_ || ++steps_ > kSteps) return;
    const std::size_t v = candidates[k];
    left -= vertices_[v].value;
    std::vector<std::size_t> next;
    for (std::size_t m = k + 1; m < candidates.size(); ++m) {
      if (are_adjacent(v, candidates[m])) next.push_back(candidates[m]);
    }
    work_ += static_cast<std::int64_t>(candidates.size());
    clique.push_back(v);
    grow(clique, value + vertices_[v].value, next);
    clique.pop_back();
  }
}

/* Adds literals that exclude all members: among the neighbours of the member with the shortest cliques. */
void CliqueCuts::extend(const CliqueTable& table, std::vector<Literal>& literals) {
  const auto neighbours = [&](Literal l) {
    std::vector<Literal> all;
    for (const int c : table.cliques_of(l)) {
      const std::span<const Literal> members = table.clique(c);
      all.insert(all.end(), members.begin(), members.end());
    }
    work_ += static_cast<std::int64_t>(all.size());
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    std::erase(all, l);
    return all;
  };
  const auto narrow = [](std::vector<Literal>& set, const std::vector<Literal>& by) {
    std::erase_if(set, [&](Literal l) { return !std::binary_search(by.begin(), by.end(), l); });
  };
  std::vector<Literal> common = neighbours(literals.front());
  for (std::size_t k = 1; k < literals.size() && !common.empty(); ++k)
    narrow(common, neighbours(literals[k]));
  for (std::size_t added = 0; !common.empty() && added < kExtensions; ++added) {
    const Literal l = common.front();
    literals.push_back(l);
    narrow(common, neighbours(l));
  }
}

}  // namespace tovik::mip
