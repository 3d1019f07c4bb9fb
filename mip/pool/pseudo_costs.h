/* What branching on a column has brought so far: gain of the bound per unit of distance, and how often a branch was
 * infeasible or beyond the cutoff, and how much it moved elsewhere. Averages over all columns stand in for columns
 * without history. Reliability branching: "Branching rules revisited", Oper. Res. Letters 33 (2005). */
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace tovik::mip {

enum class Direction : unsigned char { down, up };

class PseudoCosts {
 public:
  explicit PseudoCosts(int columns) : columns_(static_cast<std::size_t>(columns)) {}

  /* A branch by `distance` raised the bound by `gain` >= 0. weight: share of an observation. */
  void add_gain(int column, Direction d, double distance, double gain, double weight = 1) {
    if (!(distance > 0)) return;
    for (Sum* s : {&columns_[column].gain[index(d)], &all_gain_[index(d)]}) s->add(gain / distance, weight);
  }
  void add_cutoff(int column, Direction d, bool was_cut_off) {
    for (Sum* s : {&columns_[column].cutoff[index(d)], &all_cutoff_[index(d)]})
      s->add(was_cut_off ? 1 : 0, 1);
  }
  void add_inference(int column, Direction d, double moves) {
    for (Sum* s : {&columns_[column].inference[index(d)], &all_inference_[index(d)]}) s->add(moves, 1);
  }

  /* Gains seen. */
  double observations(int column, Direction d) const { return columns_[column].gain[index(d)].weight; }
  double gain(int column, Direction d) const {
    return blended(columns_[column].gain[index(d)], all_gain_[index(d)], 1.0);
  }
  double cutoff(int column, Direction d) const {
    return blended(columns_[column].cutoff[index(d)], all_cutoff_[index(d)], 0);
  }
  double inference(int column, Direction d) const {
    return blended(columns_[column].inference[index(d)], all_inference_[index(d)], 0);
  }
  double average_gain() const { return (all_gain_[0].mean(1.0) + all_gain_[1].mean(1.0)) / 2; }
  double average_inference() const { return (all_inference_[0].mean(0) + all_inference_[1].mean(0)) / 2; }
  double average_cutoff() const { return (all_cutoff_[0].mean(0) + all_cutoff_[1].mean(0)) / 2; }

  /* What `now` has seen since it was `before`. */
  void add_difference(const PseudoCosts& now, const PseudoCosts& before) {
    for (std::size_t j = 0; j < columns_.size(); ++j) {
      for (std::size_t d = 0; d < 2; ++d) {
        columns_[j].gain[d].add_difference(now.columns_[j].gain[d], before.columns_[j].gain[d]);
        columns_[j].cutoff[d].add_difference(now.columns_[j].cutoff[d], before.columns_[j].cutoff[d]);
        columns_[j].inference[d].add_difference(now.columns_[j].inference[d],
                                                before.columns_[j].inference[d]);
      }
    }
    for (std::size_t d = 0; d < 2; ++d) {
      all_gain_[d].add_difference(now.all_gain_[d], before.all_gain_[d]);
      all_cutoff_[d].add_difference(now.all_cutoff_[d], before.all_cutoff_[d]);
      all_inference_[d].add_difference(now.all_inference_[d], before.all_inference_[d]);
    }
  }

 private:
  struct Sum {
    double total = 0, weight = 0;
    void add_difference(const Sum& now, const Sum& before) {
      total += now.total - before.total;
      weight += now.weight - before.weight;
    }
    void add(double value, double w) {
      total += w * value;
      weight += w;
    }
    double mean(double none) const { return weight > 0 ? total / weight : none; }
  };
  struct Column {
    Sum gain[2], cutoff[2], inference[2];
  };
  static std::size_t index(Direction d) { return d == Direction::down ? 0 : 1; }
  static double blended(const Sum& own, const Sum& all, double none) {
    return own.weight > 0 ? own.total / own.weight : all.mean(none);
  }

  std::vector<Column> columns_;
  Sum all_gain_[2], all_cutoff_[2], all_inference_[2];
};

}  // namespace tovik::mip
