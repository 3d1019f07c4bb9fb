/* The record of a problem object: its construction, which takes the model and every engine's data with it. */
#include "env/problem.h"

#include "model/store/model.h"

namespace tovik {

Problem::Problem(Environment& environment)
    : env(&environment), model(std::make_unique<model::Model>()), live(this, HandleKind::problem) {}

Problem::~Problem() = default;

std::size_t Problem::rows() const {
  return static_cast<std::size_t>(model->num_rows());
}

std::size_t Problem::columns() const {
  return static_cast<std::size_t>(model->num_columns());
}

}  // namespace tovik
