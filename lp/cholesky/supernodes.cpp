#include "lp/cholesky/supernodes.h"

#include <algorithm>
#include <numeric>

namespace tovik::lp::cholesky {
namespace {

/* In operations at full speed (some 40 of them a nanosecond), measured on fronts of all sizes. */
constexpr double kPerFront = 20000;        // calls, lists, clearing
constexpr double kPerColumn = 600;         // a pivot and its division
constexpr double kPerPanelEntry = 40;      // cleared, scaled, and read twice by every solve
constexpr double kPerSquareEntry = 12;     // written
constexpr double kPerAssembledEntry = 40;  // read and added elsewhere
constexpr double kHalfSpeedWidth = 6;      // fronts of this width run at half the speed

double assembly_cost(double below) {
  return kPerAssembledEntry * below * (below + 1) / 2;
}

/* The tree of supernodes while it shrinks: each is a list of chains of columns, and stands for its group's parent. */
class Merger {
 public:
  Merger(const Elimination& elimination, bool merge) : elimination_(elimination) {
    find_exact();
    link_tree();
    if (merge)
      for (int s = 0; s < count(); ++s) merge_children(s);
    sort_children();
  }

  Supernodes result() const {
    Supernodes nodes;
    nodes.start.push_back(0);
    nodes.order.reserve(elimination_.order.size());
    std::vector<int> number(count(), -1);
    for (const int s : postorder_of_tree()) {
      number[s] = static_cast<int>(nodes.below.size());
      nodes.below.push_back(below_[s]);
      for (int part = first_part_[s]; part >= 0; part = next_part_[part])
        for (int j = begin_[part]; j < begin_[part + 1]; ++j) nodes.order.push_back(elimination_.order[j]);
      nodes.start.push_back(static_cast<int>(nodes.order.size()));
    }
    nodes.parent.assign(nodes.below.size(), -1);
    for (int s = 0; s < count(); ++s)
      for (int c = child_[s]; c >= 0; c = sibling_[c]) nodes.parent[number[c]] = number[s];
    return nodes;
  }

 private:
  int count() const { return static_cast<int>(below_.size()); }

  void find_exact() {
    const std::vector<int>& parent = elimination_.parent;
    const std::vector<int>& rows = elimination_.count;
    const int n = static_cast<int>(parent.size());
    for (int j = 0; j < n; ++j) {
      if (j == 0 || parent[j - 1] != j || rows[j] != rows[j - 1] - 1) begin_.push_back(j);
    }
    begin_.push_back(n);
    for (std::size_t s = 0; s + 1 < begin_.size(); ++s) {
      width_.push_back(begin_[s + 1] - begin_[s]);
      below_.push_back(rows[begin_[s + 1] - 1] - 1);
    }
  }

  void link_tree() {
    const std::size_t n = below_.size();
    std::vector<int> owner(elimination_.parent.size());
    for (std::size_t s = 0; s < n; ++s)
      std::fill(owner.begin() + begin_[s], owner.begin() + begin_[s + 1], static_cast<int>(s));
    child_.assign(n, -1);
    sibling_.assign(n, -1);
    is_root_.assign(n, false);
    first_part_.resize(n);
    std::iota(first_part_.begin(), first_part_.end(), 0);
    next_part_.assign(n, -1);
    for (std::size_t s = n; s-- > 0;) {
      const int up = elimination_.parent[begin_[s + 1] - 1];
      if (up < 0) {
        is_root_[s] = true;
        continue;
      }
      sibling_[s] = child_[owner[up]];
      child_[owner[up]] = static_cast<int>(s);
    }
  }

  double gain(int child, int parent) const {
    const double apart = front_cost(width_[child], below_[child]) + assembly_cost(below_[child]) +
                         front_cost(width_[parent], below_[parent]);
    return apart - front_cost(width_[child] + width_[parent], below_[parent]);
  }

  /* The best children first, as they look before any is merged; a child that is merged hands its children up, which have
   * been offered to it and are not offered again. */
  void merge_children(int s) {
    candidates_.clear();
    for (int c = child_[s]; c >= 0; c = sibling_[c]) candidates_.push_back({gain(c, s), c});
    std::sort(candidates_.begin(), candidates_.end(), [](const Candidate& a, const Candidate& b) {
      return a.gain > b.gain || (a.gain == b.gain && a.child < b.child);
    });
    children_.clear();
    for (const Candidate& candidate : candidates_) {
      if (gain(candidate.child, s) > 0)
        absorb(candidate.child, s);
      else
        children_.push_back(candidate.child);
    }
    child_[s] = -1;
    for (const int c : children_) {
      sibling_[c] = child_[s];
      child_[s] = c;
    }
  }

  void absorb(int child, int parent) {
    width_[parent] += width_[child];
    next_part_[child] = first_part_[parent];  // the child's columns come first; its own part is its last
    first_part_[parent] = first_part_[child];
    for (int c = child_[child]; c >= 0; c = sibling_[c]) children_.push_back(c);
    child_[child] = -1;
  }

  /* Least memory for contributions: children by the peak below them less what they leave, largest first. Numbers ascend from
   * children to parents still. */
  void sort_children() {
    std::vector<double> peak(count(), 0), leaves(count());
    std::vector<int> list;
    for (int s = 0; s < count(); ++s) {
      list.clear();
      for (int c = child_[s]; c >= 0; c = sibling_[c]) list.push_back(c);
      std::sort(list.begin(), list.end(), [&](int a, int b) {
        const double need_a = peak[a] - leaves[a], need_b = peak[b] - leaves[b];
        return need_a > need_b || (need_a == need_b && a < b);
      });
      double held = 0;
      for (const int c : list) {
        peak[s] = std::max(peak[s], held + peak[c]);
        held += leaves[c];
      }
      leaves[s] = static_cast<double>(below_[s]) * below_[s];
      peak[s] = std::max(peak[s], held + leaves[s]);
      child_[s] = -1;
      for (std::size_t k = list.size(); k-- > 0;) {
        sibling_[list[k]] = child_[s];
        child_[s] = list[k];
      }
    }
  }

  std::vector<int> postorder_of_tree() const {
    std::vector<int> order, stack, next = child_;
    for (int root = 0; root < count(); ++root) {
      if (!is_root_[root]) continue;
      stack.push_back(root);
      while (!stack.empty()) {
        const int s = stack.back();
        if (next[s] >= 0) {
          stack.push_back(next[s]);
          next[s] = sibling_[next[s]];
        } else {
          order.push_back(s);
          stack.pop_back();
        }
      }
    }
    return order;
  }

  struct Candidate {
    double gain;
    int child;
  };

  const Elimination& elimination_;
  std::vector<int> begin_;  // of the exact supernodes, which are the parts of merged ones
  std::vector<int> width_, below_;
  std::vector<int> child_, sibling_;
  std::vector<bool> is_root_;
  std::vector<int> first_part_, next_part_;  // the parts of a supernode in order
  std::vector<Candidate> candidates_;
  std::vector<int> children_;
};

}  // namespace

double front_cost(double width, double below) {
  const double rows = width + below;
  const double operations = width * below * below + width * width * below + width * width * width / 3;
  return kPerFront + kPerColumn * width + kPerPanelEntry * rows * width + kPerSquareEntry * below * below +
         operations * (1 + kHalfSpeedWidth / width);
}

Supernodes find_supernodes(const Elimination& elimination, bool merge) {
  return Merger(elimination, merge).result();
}

}  // namespace tovik::lp::cholesky
