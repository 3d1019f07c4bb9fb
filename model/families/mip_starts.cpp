#include "model/families/mip_starts.h"

#include "model/base/entry_packer.h"

namespace tovik::model {

void MipStarts::add(const NewStart& start) {
  reserve_one(effort_);
  EntryPacker packer;
  values_.append(packer.keep_last(start.values.index, start.values.value, start.values.count), start.name);
  effort_.push_back(start.effort);
}

void MipStarts::merge(int k, VectorView values) {
  for (int p = 0; p < values.count; ++p) values_.set(k, values.index[p], values.value[p]);
}

void MipStarts::truncate(Extent extent) noexcept {
  values_.truncate(extent);
  effort_.resize(static_cast<std::size_t>(values_.size()));
}

void MipStarts::renumber(std::span<const int> renumber) noexcept {
  values_.renumber(renumber);
  compact_values(effort_, renumber);
}

}  // namespace tovik::model
