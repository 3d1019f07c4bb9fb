#include "lp/cholesky/quotient_graph.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "lp/cholesky/ordering.h"

namespace tovik::lp::cholesky {
namespace {

constexpr double kDenseFactor = 10;  // rows with more than this times sqrt(n) neighbours come last
constexpr int kFewestDense = 16;
constexpr int kPivotsBetweenLooks = 256;

/* Vertices by score, the least first; ties go to the smaller index. */
class ScoreHeap {
 public:
  explicit ScoreHeap(int size) : place_(size, -1), score_(size, 0) {}

  bool empty() const { return heap_.empty(); }
  int least() const { return heap_.front(); }
  void put(int vertex, double score) {
    const bool fresh = place_[vertex] < 0;
    score_[vertex] = score;
    if (fresh) {
      place_[vertex] = static_cast<int>(heap_.size());
      heap_.push_back(vertex);
    }
    sift_up(place_[vertex]);
    if (!fresh) sift_down(place_[vertex]);
  }
  void remove(int vertex) {
    const int hole = place_[vertex];
    if (hole < 0) return;
    place_[vertex] = -1;
    const int last = heap_.back();
    heap_.pop_back();
    if (last == vertex) return;
    move(last, hole);
    sift_up(hole);
    sift_down(place_[last]);
  }

 private:
  bool before(int a, int b) const { return score_[a] < score_[b] || (score_[a] == score_[b] && a < b); }
  void move(int vertex, int place) {
    heap_[place] = vertex;
    place_[vertex] = place;
  }
  void sift_up(int place) {
    const int vertex = heap_[place];
    for (; place > 0 && before(vertex, heap_[(place - 1) / 2]); place = (place - 1) / 2)
      move(heap_[(place - 1) / 2], place);
    move(vertex, place);
  }
  void sift_down(int place) {
    const int vertex = heap_[place], size = static_cast<int>(heap_.size());
    for (int child = 2 * place + 1; child < size; child = 2 * place + 1) {
      if (child + 1 < size && before(heap_[child + 1], heap_[child])) ++child;
      if (!before(heap_[child], vertex)) break;
      move(heap_[child], place);
      place = child;
    }
    move(vertex, place);
  }

  std::vector<int> heap_, place_;
  std::vector<double> score_;
};

/* The quotient graph: eliminated vertices are elements, cliques of what they touch; each variable keeps a list of elements,
 * then of variables, in the place of its first neighbours, which never need more room. Variables that cannot be told apart
 * are one. */
class QuotientGraph {
 public:
  QuotientGraph(const Graph& graph, Score score, Control& control)
      : control_(control),
        score_(score),
        size_(graph.size),
        start_(graph.start.begin(), graph.start.end() - 1),
        list_(graph.neighbour),
        length_(size_),
        elements_(size_, 0),
        weight_(size_, 1),
        degree_(size_),
        clique_start_(size_, 0),
        clique_end_(size_, 0),
        flag_(size_, 1),
        member_(size_, -1),
        last_member_(size_),
        bucket_(size_, -1),
        next_(size_, -1),
        hash_(size_, 0),
        seen_(size_, 0),
        heap_(size_) {
    std::iota(last_member_.begin(), last_member_.end(), 0);
    for (int i = 0; i < size_; ++i)
      degree_[i] = length_[i] = static_cast<int>(graph.start[i + 1] - graph.start[i]);
  }

  std::vector<int> order() {
    std::vector<int> order;
    order.reserve(size_);
    put_dense_last();
    for (int pivots = 1; !heap_.empty(); ++pivots) {
      if (pivots % kPivotsBetweenLooks == 0) {
        control_.add_work(work_);
        work_ = 0;
        if (control_.poll_clock() != Stop::none) return {};
      }
      const int pivot = heap_.least();
      eliminate(pivot);
      for (int i = pivot; i >= 0; i = member_[i]) order.push_back(i);
    }
    for (const int i : dense_) order.push_back(i);
    control_.add_work(work_);
    return order;
  }

 private:
  void put_dense_last() {
    const int limit =
        std::max(kFewestDense, static_cast<int>(kDenseFactor * std::sqrt(static_cast<double>(size_))));
    for (int i = 0; i < size_; ++i)
      if (degree_[i] > limit) dense_.push_back(i);
    std::stable_sort(dense_.begin(), dense_.end(), [&](int a, int b) { return degree_[a] < degree_[b]; });
    for (const int i : dense_) weight_[i] = 0;
    alive_ = size_ - static_cast<int>(dense_.size());
    for (int i = 0; i < size_; ++i)
      if (weight_[i] > 0) heap_.put(i, score(i, degree_[i], 0));
  }

  /* Of fill, what elimination would cause: pairs of neighbours, but those of one clique are neighbours already. */
  double score(int i, double degree, double clique) const {
    if (score_ == Score::degree) return degree;
    return (degree * (degree - 1) - clique * (clique - 1)) / weight_[i];
  }

  void eliminate(int pivot) {
    heap_.remove(pivot);
    form_clique(pivot);
    measure_overlaps(pivot);
    for (std::int64_t k = clique_start_[pivot]; k < clique_end_[pivot]; ++k) update_variable(pivot, pool_[k]);
    join_twins(pivot);
    finish(pivot);
  }

  /* The clique of the pivot: its variables and those of its elements, which it absorbs. Weights of members are negative until
   * the pivot is done. */
  void form_clique(int pivot) {
    alive_ -= weight_[pivot];
    weight_[pivot] = -weight_[pivot];
    clique_start_[pivot] = static_cast<std::int64_t>(pool_.size());
    clique_weight_ = 0;
    const std::int64_t begin = start_[pivot];
    for (int k = 0; k < elements_[pivot]; ++k) {
      const int element = list_[begin + k];
      if (flag_[element] == 0) continue;
      for (std::int64_t m = clique_start_[element]; m < clique_end_[element]; ++m) take(pool_[m]);
      flag_[element] = 0;
    }
    for (int k = elements_[pivot]; k < length_[pivot]; ++k) take(list_[begin + k]);
    clique_end_[pivot] = static_cast<std::int64_t>(pool_.size());
    work_ += static_cast<std::uint64_t>(clique_end_[pivot] - clique_start_[pivot] + length_[pivot]);
  }

  void take(int i) {
    if (weight_[i] <= 0) return;
    clique_weight_ += weight_[i];
    weight_[i] = -weight_[i];
    pool_.push_back(i);
  }

  /* flag[e] - base_ = weight of the part of e outside the clique, for every element that touches it. */
  void measure_overlaps(int pivot) {
    base_ += longest_ + 1;
    for (std::int64_t m = clique_start_[pivot]; m < clique_end_[pivot]; ++m) {
      const int i = pool_[m], own = -weight_[i];
      for (int k = 0; k < elements_[i]; ++k) {
        const int element = list_[start_[i] + k];
        if (flag_[element] >= base_)
          flag_[element] -= own;
        else if (flag_[element] != 0)
          flag_[element] = base_ + degree_[element] - own;
      }
      work_ += static_cast<std::uint64_t>(elements_[i]);
    }
    longest_ = std::max(longest_, static_cast<std::int64_t>(clique_weight_));
  }

  /* Drops from the lists of i what the pivot covers, sums up its degree outside the clique and puts the pivot first. */
  void update_variable(int pivot, int i) {
    const std::int64_t begin = start_[i];
    std::int64_t write = begin;
    std::uint64_t hash = static_cast<std::uint64_t>(pivot);
    std::int64_t outside = 0;
    for (int k = 0; k < elements_[i]; ++k) {
      const int element = list_[begin + k];
      if (flag_[element] == 0) continue;
      if (flag_[element] == base_) {  // it lies inside the clique: the pivot absorbs it
        flag_[element] = 0;
        continue;
      }
      outside += flag_[element] - base_;
      hash += static_cast<std::uint64_t>(element);
      list_[write++] = element;
    }
    const std::int64_t variables = write;
    for (int k = elements_[i]; k < length_[i]; ++k) {
      const int other = list_[begin + k];
      if (weight_[other] <= 0) continue;
      outside += weight_[other];
      hash += static_cast<std::uint64_t>(other);
      list_[write++] = other;
    }
    work_ += static_cast<std::uint64_t>(length_[i]);
    if (write == begin) return absorb(i, pivot);  // nothing but the clique: eliminated with the pivot
    list_[write] = list_[variables];
    list_[variables] = list_[begin];
    list_[begin] = pivot;
    elements_[i] = static_cast<int>(variables - begin) + 1;
    length_[i] = static_cast<int>(write - begin) + 1;
    degree_[i] = static_cast<int>(std::min<std::int64_t>(degree_[i], outside));
    hash_[i] = static_cast<int>(hash % static_cast<std::uint64_t>(size_));
    next_[i] = bucket_[hash_[i]];
    bucket_[hash_[i]] = i;
  }

  /* i goes with `into`: eliminated together. */
  void absorb(int i, int into) {
    weight_[into] += weight_[i];
    weight_[i] = 0;
    heap_.remove(i);
    member_[last_member_[into]] = i;
    last_member_[into] = last_member_[i];
  }

  void join_twins(int pivot) {
    for (std::int64_t m = clique_start_[pivot]; m < clique_end_[pivot]; ++m) {
      if (weight_[pool_[m]] == 0) continue;
      const int bucket = hash_[pool_[m]];
      int first = bucket_[bucket];
      bucket_[bucket] = -1;
      for (; first >= 0; first = next_[first]) {
        if (next_[first] < 0) break;
        mark_list(first);
        for (int before = first, other = next_[first]; other >= 0; other = next_[before]) {
          if (same_list(first, other)) {
            absorb(other, first);
            next_[before] = next_[other];
          } else {
            before = other;
          }
        }
      }
    }
  }

  void mark_list(int i) {
    ++mark_;
    for (int k = 0; k < length_[i]; ++k) seen_[list_[start_[i] + k]] = mark_;
    work_ += static_cast<std::uint64_t>(length_[i]);
  }
  bool same_list(int i, int other) const {
    if (length_[i] != length_[other] || elements_[i] != elements_[other]) return false;
    for (int k = 0; k < length_[other]; ++k)
      if (seen_[list_[start_[other] + k]] != mark_) return false;
    return true;
  }

  void finish(int pivot) {
    std::int64_t write = clique_start_[pivot];
    const std::int64_t end = clique_end_[pivot];
    std::int64_t left = 0;  // weight of the clique without what went with the pivot
    for (std::int64_t m = write; m < end; ++m) left -= weight_[pool_[m]];
    alive_ -= static_cast<int>(clique_weight_ - left);
    for (std::int64_t m = write; m < end; ++m) {
      const int i = pool_[m];
      if (weight_[i] == 0) continue;
      weight_[i] = -weight_[i];
      const std::int64_t inside = left - weight_[i];
      degree_[i] = static_cast<int>(std::min<std::int64_t>(degree_[i] + inside, alive_ - weight_[i]));
      heap_.put(i, score(i, degree_[i], static_cast<double>(inside)));
      pool_[write++] = i;
    }
    clique_end_[pivot] = write;
    pool_.resize(static_cast<std::size_t>(write));
    degree_[pivot] = static_cast<int>(left);
    weight_[pivot] = 0;
    flag_[pivot] = write > clique_start_[pivot] ? 1 : 0;
  }

  Control& control_;
  Score score_;
  int size_;
  std::vector<std::int64_t> start_;
  std::vector<int> list_;               // by variable: elements, then variables
  std::vector<int> length_, elements_;  // of both, of the elements
  std::vector<int> weight_;             // vertices of the variable; 0 where it is gone
  std::vector<int> degree_;             // upper bound of neighbours' weight; of an element its weight
  std::vector<std::int64_t> clique_start_, clique_end_;  // in the pool, by element
  std::vector<int> pool_;
  std::vector<std::int64_t> flag_;         // by element: 0 where it is absorbed
  std::vector<int> member_, last_member_;  // chains of vertices that are one variable
  std::vector<int> bucket_, next_, hash_;
  std::vector<int> seen_;
  std::vector<int> dense_;
  ScoreHeap heap_;
  std::int64_t base_ = 1, longest_ = 0;
  std::int64_t clique_weight_ = 0;
  int alive_ = 0, mark_ = 0;
  std::uint64_t work_ = 0;
};

}  // namespace

std::vector<int> least_score_order(const Graph& graph, Score score, Control& control) {
  return QuotientGraph(graph, score, control).order();
}

std::vector<int> minimum_fill_order(const Graph& graph, Control& control) {
  return least_score_order(graph, Score::fill, control);
}

}  // namespace tovik::lp::cholesky
