#include "lp/network/extraction.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "lp/base/sum.h"

namespace tovik::lp::network {
namespace {

constexpr double kSameRatio = 1e-12;    // relative
constexpr double kLargestFactor = 1e6;  // of a row against others that columns join it with

/* Rows in sets that columns join, with the ratio of each row's factor to that of its set's root. */
class RatioForest {
 public:
  explicit RatioForest(int rows) : parent_(rows), ratio_(rows, 1.0) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }
  struct Place {
    int root;
    double ratio;
  };
  Place find(int row) {
    Place place{row, 1.0};
    while (parent_[place.root] != place.root) {
      place.ratio *= ratio_[place.root];
      place.root = parent_[place.root];
    }
    double ratio = place.ratio;
    while (parent_[row] != row) {  // the path is shortened
      const int up = parent_[row];
      const double own = ratio_[row];
      parent_[row] = place.root;
      ratio_[row] = ratio;
      ratio /= own;
      row = up;
    }
    return place;
  }
  /* factor(child) = ratio * factor(root); child is a root, too. */
  void hang(int child, int root, double ratio) {
    parent_[child] = root;
    ratio_[child] = ratio;
  }

 private:
  std::vector<int> parent_;
  std::vector<double> ratio_;
};

class Extraction {
 public:
  Extraction(const LpData& lp, Reach reach)
      : lp_(lp),
        reach_(reach),
        rows_(transpose(lp.matrix)),
        forest_(lp.num_rows()),
        count_(lp.num_columns(), 0),
        first_(lp.num_columns()),
        second_(lp.num_columns()) {}

  ExtractedNetwork run(Control& control) {
    std::vector<int> order;
    for (int i = 0; i < lp_.num_rows(); ++i) {
      const bool bound = lp_.row_lower[i] > -kInf || lp_.row_upper[i] < kInf;
      if (bound && length(i) > 0) order.push_back(i);
    }
    std::ranges::stable_sort(order, {}, [this](int i) { return length(i); });
    for (const int i : order) {
      if (take(i)) result_.row.push_back(i);
    }
    control.add_work(2 * rows_.index.size() + order.size());
    std::ranges::sort(result_.row);
    make_nodes();
    make_arcs();
    CompensatedSum sum;
    for (const double s : result_.supply) sum.add(-s);
    result_.supply.push_back(sum.value());
    return std::move(result_);
  }

 private:
  struct Entry {
    int row = -1;
    double value = 0;
  };
  struct Link {  // of the row that is looked at
    int root;
    double ratio;  // of its factor to the root's
  };

  int length(int i) const { return rows_.start[i + 1] - rows_.start[i]; }

  /* What the columns that row i shares with rows of the network demand of its factor. */
  bool collect_links(int i) {
    links_.clear();
    for (int k = rows_.start[i]; k < rows_.start[i + 1]; ++k) {
      const int j = rows_.index[k];
      const double value = rows_.value[k];
      if (value == 0 || count_[j] == 2 || (reach_ != Reach::scaled && std::fabs(value) != 1)) return false;
      if (count_[j] == 0) continue;
      const RatioForest::Place at = forest_.find(first_[j].row);
      const double ratio = -first_[j].value / value * at.ratio;
      if (reach_ == Reach::natural && ratio != 1) return false;
      if (std::fabs(ratio) > kLargestFactor || std::fabs(ratio) * kLargestFactor < 1) return false;
      links_.push_back({at.root, ratio});
    }
    std::ranges::stable_sort(links_, {}, &Link::root);
    for (std::size_t k = 1; k < links_.size(); ++k) {
      if (links_[k].root == links_[k - 1].root &&
          std::fabs(links_[k].ratio - links_[k - 1].ratio) > kSameRatio * std::fabs(links_[k].ratio))
        return false;
    }
    return true;
  }

  bool take(int i) {
    if (!collect_links(i)) return false;
    for (const Link& link : links_) {
      if (forest_.find(link.root).root == link.root && link.root != i)
        forest_.hang(link.root, i, 1 / link.ratio);
    }
    for (int k = rows_.start[i]; k < rows_.start[i + 1]; ++k) {
      const int j = rows_.index[k];
      (count_[j]++ == 0 ? first_ : second_)[j] = {i, rows_.value[k]};
    }
    return true;
  }

  void make_nodes() {
    node_.assign(lp_.num_rows(), -1);
    for (const int i : result_.row) {
      const int node = static_cast<int>(result_.row_factor.size());
      node_[i] = node;
      const double factor = forest_.find(i).ratio;
      result_.row_factor.push_back(factor);
      const double one = factor * lp_.row_lower[i], other = factor * lp_.row_upper[i];
      const double least = std::min(one, other), most = std::max(one, other);
      result_.supply.push_back(most < kInf ? most : least);
      if (least == most) continue;
      // A slack takes away from the upper side, or from the activity where that has none.
      const int ground = result_.ground();
      add_arc(-1, 1, most < kInf ? node : ground, most < kInf ? ground : node);
      result_.lower.push_back(0);
      result_.upper.push_back(most < kInf ? most - least : kInf);
      result_.cost.push_back(0);
    }
  }

  void add_arc(int column, double factor, int tail, int head) {
    result_.column.push_back(column);
    result_.column_factor.push_back(factor);
    result_.tail.push_back(tail);
    result_.head.push_back(head);
  }

  void make_arcs() {
    for (int j = 0; j < lp_.num_columns(); ++j) {
      if (count_[j] == 0) continue;
      const int node = node_[first_[j].row];
      const int other = count_[j] == 2 ? node_[second_[j].row] : result_.ground();
      const double entry = result_.row_factor[static_cast<std::size_t>(node)] * first_[j].value;
      const double factor = 1 / std::fabs(entry);
      add_arc(j, factor, entry > 0 ? node : other, entry > 0 ? other : node);
      result_.cost.push_back(lp_.cost[j] * factor);
      result_.lower.push_back(lp_.lower[j] / factor);
      result_.upper.push_back(lp_.upper[j] / factor);
    }
  }

  const LpData& lp_;
  const Reach reach_;
  const Matrix rows_;
  RatioForest forest_;
  std::vector<int> count_;             // by column: its entries in rows of the network
  std::vector<Entry> first_, second_;  // by column
  std::vector<int> node_;              // by row
  std::vector<Link> links_;
  ExtractedNetwork result_;
};

}  // namespace

ExtractedNetwork extract_network(const LpData& lp, Reach reach, Control& control) {
  return Extraction(lp, reach).run(control);
}

Basis basis_of_lp(const LpData& lp, const ExtractedNetwork& network, const FlowBasis& basis) {
  Basis result;
  for (int j = 0; j < lp.num_columns(); ++j)
    result.columns.push_back(lp.lower[j] > -kInf  ? BasisStatus::lower
                             : lp.upper[j] < kInf ? BasisStatus::upper
                                                  : BasisStatus::free);
  result.rows.assign(static_cast<std::size_t>(lp.num_rows()), BasisStatus::basic);
  const int ground = network.ground();
  // The node whose logical is basic is of the ground's component or not: there the ground takes its place.
  RatioForest components(ground + 1);
  for (std::size_t a = 0; a < basis.arcs.size(); ++a) {
    if (basis.arcs[a] != BasisStatus::basic) continue;
    const int tail = components.find(network.tail[a]).root, head = components.find(network.head[a]).root;
    if (tail != head) components.hang(tail, head, 1);
  }
  const int grounded = components.find(ground).root;
  for (int v = 0; v < ground; ++v) {
    const bool own = basis.nodes[v] == BasisStatus::basic && components.find(v).root != grounded;
    if (!own) result.rows[network.row[v]] = BasisStatus::lower;
  }
  for (std::size_t a = 0; a < basis.arcs.size(); ++a) {
    const int column = network.column[a];
    if (column >= 0) {
      result.columns[column] = basis.arcs[a];
      continue;
    }
    const bool from_upper = network.head[a] == ground;
    const int node = from_upper ? network.tail[a] : network.head[a];
    BasisStatus& at = result.rows[network.row[node]];
    if (basis.arcs[a] == BasisStatus::basic) {
      at = BasisStatus::basic;
    } else if (at != BasisStatus::basic) {
      // A slack of 0 is the most of the balance or the least, which a negative factor turns round.
      const bool most = from_upper == (basis.arcs[a] == BasisStatus::lower);
      at = most == (network.row_factor[node] > 0) ? BasisStatus::upper : BasisStatus::lower;
    }
  }
  return result;
}

}  // namespace tovik::lp::network
