/* What has changed in the rows and columns of a problem's model since the problem's simplex engine was last
 * synchronized with it. The engine applies what is on record instead of comparing itself with the whole model.
 *
 * - Holds: of rows and of columns: those whose values changed, in the present numbering, perhaps more than
 *   once; those that were deleted, in the numbering of the engine, ascending; and the number of added ones,
 *   which are the last of the model.
 * - Order: start() when an engine is made from the model, clear() when it has been synchronized.
 * - Memory: is reserved by start(): recording a change allocates nothing and cannot fail. What exceeds it or
 *   is not named is lost: values then have to be compared one by one, lost structure needs a new engine.
 * - Errors: bad_alloc from start(). */
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tovik {

/* One change of the model. */
struct Edit {
  enum class Dimension { rows, columns };
  enum class Kind { values, added, deleted, deleted_marked };
  Dimension dimension;
  Kind kind;
  std::span<const int> which;  // values: indices; deleted_marked: one mark each, 1 deletes
  int first = 0, last = -1;    // deleted; added: last - first + 1 of them

  static Edit values(Dimension dimension, std::span<const int> which) {
    return {dimension, Kind::values, which, 0, -1};
  }
  static Edit added(Dimension dimension, int count) { return {dimension, Kind::added, {}, 0, count - 1}; }
  static Edit deleted(Dimension dimension, int first, int last) {
    return {dimension, Kind::deleted, {}, first, last};
  }
  static Edit deleted(Dimension dimension, std::span<const int> marks) {
    return {dimension, Kind::deleted_marked, marks, 0, -1};
  }
};

class Journal {
 public:
  /* Rows, or columns. */
  class Changes {
   public:
    std::span<const int> touched() const { return touched_; }
    std::span<const int> deleted() const { return deleted_; }
    int added() const { return added_; }
    bool structure_changed() const { return added_ > 0 || !deleted_.empty(); }  // added or deleted

   private:
    friend class Journal;
    void start(std::size_t known);
    void clear() noexcept;
    bool record_values(std::span<const int> which) noexcept;
    bool record_deletions(int first, int last) noexcept;
    bool record_deletion(int k) noexcept;

    std::vector<int> touched_, deleted_;
    std::size_t known_ = 0;  // to the engine
    int added_ = 0;
  };

  void start(std::size_t rows, std::size_t columns);
  void clear() noexcept;
  void record(const Edit& edit) noexcept;
  void lose_values() noexcept { values_lost_ = true; }
  void lose_structure() noexcept { values_lost_ = structure_lost_ = true; }

  const Changes& rows() const { return rows_; }
  const Changes& columns() const { return columns_; }
  bool values_lost() const { return values_lost_; }
  bool structure_lost() const { return structure_lost_; }
  /* Rows or columns have come or gone. */
  bool structure_changed() const {
    return structure_lost_ || rows_.structure_changed() || columns_.structure_changed();
  }

 private:
  Changes rows_, columns_;
  bool values_lost_ = true, structure_lost_ = true;  // nothing is on record before start()
};

}  // namespace tovik
