#include "model/families/sets.h"

#include "model/base/entry_packer.h"

namespace tovik::model {

void Sets::add(const NewSet& set) {
  reserve_one(type_);
  EntryPacker packer;
  members_.append(packer.keep_last(set.members.index, set.members.value, set.members.count), set.name);
  type_.push_back(set.type);
}

void Sets::truncate(Extent extent) noexcept {
  members_.truncate(extent);
  type_.resize(static_cast<std::size_t>(members_.size()));
}

void Sets::renumber(std::span<const int> renumber) noexcept {
  members_.renumber(renumber);
  compact_values(type_, renumber);
}

}  // namespace tovik::model
