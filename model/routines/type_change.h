/* Changes of a problem's type, and the warnings about the data that they free. */
#pragma once

#include <vector>

#include "env/environment.h"
#include "env/problem.h"

namespace tovik::model {

/* Kinds of data that make a problem's type; a set of them is a sum. */
enum TypeData : unsigned { kMixedIntegerData = 1, kQuadraticObjectiveData = 2, kQuadraticRowData = 4 };

/* What the problem holds. */
unsigned held_data(const Problem& problem);

/* While TVK_PARAM_DATACHECK is 1: a line on the warning channel for each of the kinds that the problem
 * holds. */
void announce_freeing(Environment& env, const Problem& problem, unsigned kinds);

/* Gives the problem another type: frees the data that do not belong to it. 1024, 1029, 9019 for a fixed type
 * that cannot be reached, 1022 for a number that is no type. */
Status change_problem_type(Environment& env, Problem& problem, int type);

/* Turns a problem into the mixed-integer kind of its type, all columns 'C'; does nothing to one that is.
 * Constructed before the change that needs it, since only the construction can fail. */
class MixedInteger {
 public:
  explicit MixedInteger(Problem& problem);
  void commit() noexcept;

 private:
  Problem& problem_;
  std::vector<char> types_;
};

}  // namespace tovik::model
