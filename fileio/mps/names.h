/* Names that stand in free MPS records: not empty, no blank or control character. */
#pragma once

#include "fileio/record/writer_names.h"

namespace tovik::fileio::mps {

class MpsNameRules final : public NameRules {
 public:
  bool acceptable(std::string_view name) const override;
  std::string legal(std::string_view name) const override;
};

/* The column that carries the constant of the objective, which the format has no place for: fixed at 1, the
 * last one, without entries; underscores make its name distinct. The reader turns it back. */
inline constexpr std::string_view kConstantColumn = "OBJCONST";

}  // namespace tovik::fileio::mps
