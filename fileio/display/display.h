/* A model in words for people to read: rows, bounds, types and the like in the form of an LP file, chosen by
 * range and by a pattern of their names, and a summary. Problems without names show generated ones; names stand
 * as they are, also where a file could not hold them. Ranged rows have their two ends.
 *
 * The text of one call is made whole before anybody sees it, so that a destination of the channel may do what
 * it likes to the model.
 *
 * - Errors: 1200 a range beyond the items. */
#pragma once

#include <string>

#include "env/error.h"
#include "model/store/model.h"

namespace tovik {
struct Environment;
struct Problem;
}  // namespace tovik

namespace tovik::fileio {

enum class Item { row, quadratic_row, indicator, user_cut, lazy_constraint, set, bound };

/* Items begin..end whose name matches; begin > end: none. */
struct Selection {
  const char* routine;  // for messages about the range
  const char* pattern;  // null: every name
  int begin, end;
};

/* '*' stands for any characters, '?' for one. */
bool matches(std::string_view pattern, std::string_view name);

Status display_items(Environment& env, const model::Model& model, Item item, const Selection& selection,
                     std::string& text);
/* The names of the columns of one type, a letter of the model. */
Status display_types(Environment& env, const model::Model& model, char type, const Selection& selection,
                     std::string& text);
void display_objective(const model::Model& model, std::string& text);
/* All of it; what the columns and rows are called is never rewritten. */
void display_model(const model::Model& model, std::string& text);
/* Name, type, sizes, and how large the numbers are. */
void display_summary(const Problem& problem, std::string& text);

}  // namespace tovik::fileio
