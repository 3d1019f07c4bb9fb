/* What the fuzz targets of the model readers share: a source of small reads, and the promises that every
 * reader makes about its result. */
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "fileio/record/model_reader.h"
#include "include/tovik.h"

namespace tovik::fileio::fuzz {

inline void require(bool condition) {
  if (!condition) std::abort();
}

class SilentLog final : public ReaderLog {
 public:
  void warning(std::string_view text) override { require(text.ends_with('\n')); }
  void result(std::string_view text) override { require(text.ends_with('\n')); }
};

/* Small reads, so that pieces and refills of lines are met by small inputs. */
class SlowSource final : public ByteSource {
 public:
  explicit SlowSource(std::string_view bytes) : bytes_(bytes) {}
  std::size_t read(char* buffer, std::size_t capacity) override {
    return bytes_.read(buffer, capacity < 37 ? capacity : 37);
  }
  bool finish() override { return true; }

 private:
  MemorySource bytes_;
};

inline void check(const FileModel& model) {
  const std::size_t columns = model.objective.size(), rows = model.rhs.size();
  require(static_cast<std::size_t>(model.columns.size()) == columns);
  require(static_cast<std::size_t>(model.rows.size()) == rows);
  require(model.lower.size() == columns && model.upper.size() == columns &&
          model.start.size() == columns + 1);
  require(model.types.empty() || model.types.size() == columns);
  require(model.sense.size() == rows && (model.range.empty() || model.range.size() == rows));
  require(model.start.front() == 0 && static_cast<std::size_t>(model.start.back()) == model.index.size());
  require(model.value.size() == model.index.size());
  for (std::size_t j = 0; j < columns; ++j) {
    require(model.start[j] <= model.start[j + 1]);
    require(std::isfinite(model.objective[j]));
    require(std::fabs(model.lower[j]) <= kInfinity && std::fabs(model.upper[j]) <= kInfinity);
    const std::string_view name = model.columns.name(static_cast<int>(j));
    require(!name.empty() && name.size() <= kMaxNameLength &&
            model.columns.find(name) == static_cast<int>(j));
  }
  for (std::size_t k = 0; k < model.index.size(); ++k) {
    require(model.index[k] >= 0 && static_cast<std::size_t>(model.index[k]) < rows &&
            std::isfinite(model.value[k]));
  }
  for (std::size_t i = 0; i < rows; ++i) {
    require(model.sense[i] == 'L' || model.sense[i] == 'E' || model.sense[i] == 'G' || model.sense[i] == 'R');
    require(std::isfinite(model.rhs[i]) &&
            model.rows.find(model.rows.name(static_cast<int>(i))) == static_cast<int>(i));
  }
}

}  // namespace tovik::fileio::fuzz
