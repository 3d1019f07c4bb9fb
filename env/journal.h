/* What has changed in the rows and columns of a problem's model since the engine that lives with the problem
 * last looked. The engine follows what is on record instead of comparing itself with the whole model.
 *
 * - Holds: of rows and of columns: those whose values changed, in the present numbering, perhaps more than
 *   once; those that are gone, in the numbering of the engine, ascending; and the number of new ones, which
 *   are the last of the model.
 * - Order: start() when an engine is made from the model, clear() when it has followed.
 * - Room: is made by start(): noting a change takes no memory and cannot fail. What finds no room or is not
 *   named is lost: values then have to be compared one by one, lost structure needs a new engine.
 * - Errors: bad_alloc from start(). */
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tovik {

/* One change, as told to those who follow. */
struct Edit {
  enum class Lines { rows, columns };
  enum class Kind { values, added, deleted, deleted_marked };
  Lines lines;
  Kind kind;
  std::span<const int> which;  // values: indices; deleted_marked: one mark a line, 1 deletes
  int first = 0, last = -1;    // deleted; added: last - first + 1 lines

  static Edit values(Lines lines, std::span<const int> which) { return {lines, Kind::values, which, 0, -1}; }
  static Edit added(Lines lines, int count) { return {lines, Kind::added, {}, 0, count - 1}; }
  static Edit deleted(Lines lines, int first, int last) { return {lines, Kind::deleted, {}, first, last}; }
  static Edit deleted(Lines lines, std::span<const int> marks) {
    return {lines, Kind::deleted_marked, marks, 0, -1};
  }
};

class Journal {
 public:
  /* Rows, or columns. */
  class Lines {
   public:
    std::span<const int> touched() const { return touched_; }
    std::span<const int> gone() const { return gone_; }
    int added() const { return added_; }
    bool moved() const { return added_ > 0 || !gone_.empty(); }  // added or deleted

   private:
    friend class Journal;
    void start(std::size_t known);
    void clear() noexcept;
    bool touch(std::span<const int> which) noexcept;
    bool erase(int first, int last) noexcept;
    bool erase_one(int k) noexcept;

    std::vector<int> touched_, gone_;
    std::size_t known_ = 0;  // to the engine
    int added_ = 0;
  };

  void start(std::size_t rows, std::size_t columns);
  void clear() noexcept;
  void note(const Edit& edit) noexcept;
  void lose_values() noexcept { values_lost_ = true; }
  void lose_structure() noexcept { values_lost_ = structure_lost_ = true; }

  const Lines& rows() const { return rows_; }
  const Lines& columns() const { return columns_; }
  bool values_lost() const { return values_lost_; }
  bool structure_lost() const { return structure_lost_; }
  /* Rows or columns have come or gone. */
  bool moved() const { return structure_lost_ || rows_.moved() || columns_.moved(); }

 private:
  Lines rows_, columns_;
  bool values_lost_ = true, structure_lost_ = true;  // nothing is on record before start()
};

}  // namespace tovik
