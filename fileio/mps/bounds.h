/* The section BOUNDS: bounds and the column types that bounds declare. Only the first set counts.
 *
 * close() then settles what the lines left open, in the order of the columns: a negative upper bound without
 * a lower one opens the lower bound, a semi-continuous column without a lower bound gets 1, and doubtful
 * bounds are reported.
 * - Errors: 1434, 1435, 1449, 1454 .. 1460. */
#pragma once

#include <string>
#include <vector>

#include "fileio/mps/context.h"
#include "fileio/mps/rim.h"

namespace tovik::fileio::mps {

enum class BoundType { up, ui, lo, li, fx, fr, mi, pl, bv, sc, none };

class BoundSection {
 public:
  BoundSection(Context& context, RowDirectory& rows) : context_(context), rows_(rows) {}
  bool record(const Record& record);
  void close();  // call once, at the end of the file; without lines it does nothing

 private:
  struct Line {
    Field type, set, column, value;
  };
  enum Given : unsigned char { kLower = 1, kUpper = 2 };

  /* The bound that a line states; `why` holds the error when the line has no such reading. */
  struct Bound {
    BoundType type = BoundType::none;
    int column = -1;
    double value = 0;
    bool counts = true;
    bool empty_value = false;
  };
  bool read_free(const Record& record, Line& line, Bound& bound, ParseError& why);
  bool read_card(const Record& record, Line& line, Bound& bound, ParseError& why);
  bool split_free(const Record& record, BoundType type, Line& line);
  bool resolve(const Line& line, Bound& bound, ParseError& why);
  int find_column(const Field& name);
  bool apply(const Bound& bound, int line);
  bool mark_given(std::size_t column, unsigned which, int line);
  bool mark_both_given(std::size_t column, int code, int line);
  void set_type(std::size_t column, char type);
  char type_of(std::size_t column) const {
    return context_.model.types.empty() ? 'C' : context_.model.types[column];
  }
  void finalize(std::size_t column);
  void note_unbounded_integers();
  void check_integrality(std::size_t column);

  Context& context_;
  RowDirectory& rows_;
  ChosenSet set_{"bound"};
  std::vector<unsigned char> given_;  // by column
  int last_ = -1;                     // the column of the line before: the next one is likely its neighbour
  WarningLimit free_, minus_infinity_, fixed_, semicontinuous_, integrality_;
};

}  // namespace tovik::fileio::mps
