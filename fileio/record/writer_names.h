/* The names that a model writer uses for one kind of items (columns, rows, sets ...).
 *
 * They are the model's own; or generated ones (letter and number from 1) where the model has none or generic
 * ones are asked for; or, when one name of the kind cannot stand in the format or stands there twice, all of
 * them rewritten: forbidden characters replaced and "#" with the position (from 0) appended. Generated and
 * rewritten names go to the file only, never into the model. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/base/names.h"
#include "model/base/vector_file.h"

namespace tovik::fileio {

/* What one format takes for a name. */
class NameRules {
 public:
  virtual ~NameRules() = default;
  virtual bool acceptable(std::string_view name) const = 0;
  /* The name with every forbidden character replaced; `#` and digits may follow it. */
  virtual std::string legal(std::string_view name) const = 0;
};

class WriterNames {
 public:
  enum class Origin { own, generated, rewritten };

  WriterNames() = default;
  WriterNames(WriterNames&&) = default;
  WriterNames& operator=(WriterNames&&) = default;

  static WriterNames generated(char letter, int count);
  /* `names` holds one name per item, or is empty. */
  static WriterNames from(std::vector<std::string_view> names, char letter, int count,
                          const NameRules& rules);
  static WriterNames from(const model::NameTable& names, char letter, int count, const NameRules& rules);

  /* For people, not for readers: whatever the names are, of each the first 255 characters. */
  static WriterNames unchanged(const model::NameTable& names, char letter, int count);

  std::string_view operator[](int k) const { return views_[static_cast<std::size_t>(k)]; }
  int size() const { return static_cast<int>(views_.size()); }
  Origin origin() const { return origin_; }
  bool contains(std::string_view name) const;  // looks at all of them

  /* For writers that take names in no order: sends for the names of these items. First where their texts
   * stand, then, some time later, the texts. */
  void prefetch_places(model::VectorView items) const {
    for (int k = 0; k < items.count; ++k)
      __builtin_prefetch(&views_[static_cast<std::size_t>(items.index[k])]);
  }
  void prefetch_texts(model::VectorView items) const {
    for (int k = 0; k < items.count; ++k) __builtin_prefetch((*this)[items.index[k]].data());
  }

 private:
  std::vector<std::string_view> views_;
  std::vector<char> text_;  // of names that the model does not own
  Origin origin_ = Origin::own;
};

/* `wanted`, with underscores appended until no item of `names` is called so. */
std::string distinct_name(std::string wanted, const WriterNames& names);

/* The name in its rewritten form. */
std::string rewritten_name(std::string_view name, int position, const NameRules& rules);

/* One name by itself, such as the objective's: rewritten as item 0 when it is not acceptable. */
std::string single_name(std::string_view name, const NameRules& rules, bool& rewritten);

}  // namespace tovik::fileio
