/* Where a search lets its caller take part. A search without callbacks has none of this: a null pointer is all it looks at.
 *
 * - Order at a node: choose_node; solve (in place of every solve of the relaxation) until nothing more is found: cuts, then
 *   once heuristic; a candidate, wherever it comes from: cuts at the candidate, then accepts; branch; delete_node when the
 *   node is done with or dropped.
 * - Space: everything is said of the problem that is searched, in minimization form. Where it comes of presolve, and cuts,
 *   candidates or children are asked for, every point of the origin is one of its own: see presolved_search.h.
 * - Stop: one that wants the search to stop makes the control say so too; what it returned is then not used.
 * - Trust: cuts and rejections are taken as they are. Solutions are judged, solves are repeated from the caller's basis,
 *   bounds of children only ever tighten. */
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "lp/base/basis.h"
#include "mip/branching/branching.h"
#include "mip/pool/cut.h"

namespace tovik::mip {

struct Solution;

/* What there is to look at while a callback runs. */
struct Sight {
  int slot = -1;                // of the node that is being processed; -1: none
  bool has_point = false;       // there is a point in question
  std::span<const double> x{};  // that point
  double objective = kInf;      // of the point, or the bound of the node
  bool is_relaxation = false;   // the point is the optimum of the node's relaxation
  const Solution* given =
      nullptr;  // a candidate as the origin's judge has accepted it; null: none, or there is no origin
};

/* What is known of a child by which its parent is to be replaced. */
struct NewChild {
  std::int64_t id;
  double estimate;
  std::vector<NodeChange> changes;
  std::vector<Cut> rows;  // hold in the child and below
  void* handle;           // the caller's
};

/* How the search would branch. */
struct Proposal {
  const Branching* branching = nullptr;  // null: not at all
  double estimate = -kInf;
  bool has_relaxation = true;  // it was solved
};

/* What the caller has done about a relaxation. */
struct OwnSolve {
  enum class Result { none, solved, no_solution } result = Result::none;
  lp::Basis basis;  // solved: to be made sure of from here; may be empty
};

struct OwnCuts {
  std::vector<Cut> everywhere, in_subtree;
};

class SearchCallbacks {
 public:
  /* What is asked for. */
  struct Kinds {
    bool branch = false, branch_without_solution = false, cut = false, node = false, heuristic = false,
         incumbent = false, solve = false, delete_node = false;

    bool judge_solutions() const { return cut || incumbent; }
    /* State, or rule out, what is not in the problem. */
    bool shape_the_problem() const {
      return branch || branch_without_solution || cut || heuristic || incumbent;
    }
  };
  explicit SearchCallbacks(const Kinds& kinds) : kinds_(kinds) {}
  SearchCallbacks(const SearchCallbacks&) = delete;
  SearchCallbacks& operator=(const SearchCallbacks&) = delete;
  virtual ~SearchCallbacks() = default;
  const Kinds& kinds() const { return kinds_; }

  /* The slot of an open node; proposed: the one that the search would go on with. */
  virtual int choose_node(int proposed) = 0;
  /* The relaxation has the node's bounds and rows; it is not solved. */
  virtual OwnSolve solve(const Sight& sight) = 0;
  virtual OwnCuts cuts(const Sight& sight) = 0;
  /* A point that may be a solution; empty: none. */
  virtual std::vector<double> heuristic(const Sight& sight) = 0;
  /* The point has passed the judge. */
  virtual bool accepts(const Sight& sight) = 0;
  /* The children that replace the node; null: as proposed. */
  virtual std::optional<std::vector<NewChild>> branch(const Sight& sight, const Proposal& proposal) = 0;
  virtual void delete_node(std::int64_t id, void* handle) = 0;

  /* One of them has failed: the search ends as soon as it can. */
  bool wants_to_stop() const { return wants_to_stop_; }

 protected:
  void stop() { wants_to_stop_ = true; }

 private:
  Kinds kinds_;
  bool wants_to_stop_ = false;
};

}  // namespace tovik::mip
