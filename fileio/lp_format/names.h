/* Names that the LP reader takes for names, and the replacement of those that it would not. */
#pragma once

#include "fileio/lp_format/keywords.h"
#include "fileio/record/writer_names.h"

namespace tovik::fileio::lp_format {

/* Characters that cannot stand in a name become letters or '_'; a first character that cannot start one gets
 * a '_' in front, and so do e and E, which could belong to a number. */
class LpNameRules : public NameRules {
 public:
  bool acceptable(std::string_view name) const override;
  std::string legal(std::string_view name) const override;
};

/* Columns: no word for infinity, and no section header when alone in a list. */
class LpColumnRules final : public LpNameRules {
 public:
  bool acceptable(std::string_view name) const override;
};

/* Names with a colon behind them: together no section header within `section`. */
class LpLabelRules final : public LpNameRules {
 public:
  explicit LpLabelRules(Section section) : section_(section) {}
  bool acceptable(std::string_view name) const override;

 private:
  Section section_;
};

}  // namespace tovik::fileio::lp_format
