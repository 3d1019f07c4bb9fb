/* The comments of a network file that carry names. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "fileio/stream/output.h"
#include "model/base/name_block.h"

namespace tovik::fileio {

inline constexpr std::string_view kNoteStart = "c @";

/* Names of nodes or arcs as they come, in whatever order. Memory is bounded by the items that have one: names of an item
 * that was named again later are dropped now and then. */
class CommentNames {
 public:
  explicit CommentNames(char letter) : letter_(letter) {}
  void add(int item, std::string_view name);
  std::size_t size() const { return items_.size(); }
  /* One name for each of `count` items: the last that was noted for it, or one generated with the letter. Empty
   * when none of them was named. Takes the names away. */
  model::NameBlock collect(int count);

 private:
  void drop_replaced();

  static constexpr std::size_t kFirstDrop = std::size_t{1} << 16;
  char letter_;
  std::vector<int> items_;
  model::NameBlock names_;
  bool in_order_ = true;  // item k is the k-th to be named
  std::size_t drop_at_ = kFirstDrop;
};

/* Writes a name and a line feed; the bytes that would break the line as \n, \r and \\. */
void put_note_text(TextWriter& out, std::string_view name);
/* The name that such a text stands for. */
std::string note_text(std::string_view text);

}  // namespace tovik::fileio
