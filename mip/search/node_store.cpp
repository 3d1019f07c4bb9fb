#include "mip/search/node_store.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

namespace tovik::mip {
namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 16;

using lp::BasisStatus;

template <class Value>
void append(std::vector<char>& bytes, const Value* values, std::size_t count) {
  static_assert(std::is_trivially_copyable_v<Value>);
  const auto* const from = reinterpret_cast<const char*>(values);
  bytes.insert(bytes.end(), from, from + count * sizeof(Value));
}
template <class Value>
void append(std::vector<char>& bytes, const Value& value) {
  append(bytes, &value, 1);
}

class Bytes {
 public:
  explicit Bytes(const char* at) : at_(at) {}
  template <class Value>
  void take(Value* values, std::size_t count) {
    if (count > 0) std::memcpy(values, at_, count * sizeof(Value));
    at_ += count * sizeof(Value);
  }
  template <class Value>
  Value take() {
    Value value;
    take(&value, 1);
    return value;
  }

 private:
  const char* at_;
};

struct Head {
  double relaxation;
  BranchRecord branch;
  int columns, rows;  // of the basis; -1: none
  int cut_rows;       // which list of the block's; -1: none
  int weights;        // 1: there are some
};

/* f(weight) for each basic variable, columns first. */
template <class Weights, class F>
void each_basic(const lp::Basis& basis, Weights& weights, F f) {
  const std::size_t columns = basis.columns.size();
  for (std::size_t j = 0; j < columns; ++j) {
    if (basis.columns[j] == BasisStatus::basic) f(weights[j]);
  }
  for (std::size_t i = 0; i < basis.rows.size(); ++i) {
    if (basis.rows[i] == BasisStatus::basic) f(weights[columns + i]);
  }
}

void pack(const NodeDetail& detail, int cut_rows, std::vector<char>& bytes) {
  Head head;
  std::memset(static_cast<void*>(&head), 0, sizeof head);  // gaps between members are written, too
  head.relaxation = detail.relaxation;
  head.branch = detail.branch;
  head.columns = head.rows = -1;
  head.cut_rows = cut_rows;
  if (detail.basis == nullptr) return append(bytes, head);
  const lp::Basis& basis = detail.basis->basis;
  head.columns = static_cast<int>(basis.columns.size());
  head.rows = static_cast<int>(basis.rows.size());
  head.weights = basis.dual_weights.empty() ? 0 : 1;
  append(bytes, head);
  append(bytes, basis.columns.data(), basis.columns.size());
  append(bytes, basis.rows.data(), basis.rows.size());
  if (head.weights != 0) each_basic(basis, basis.dual_weights, [&](double w) { append(bytes, w); });
}

int position_of(std::vector<std::shared_ptr<const std::vector<std::int64_t>>>& lists,
                const std::shared_ptr<const std::vector<std::int64_t>>& list) {
  if (list == nullptr) return -1;
  const auto at = std::find(lists.begin(), lists.end(), list);
  const auto position = static_cast<int>(at - lists.begin());
  if (at == lists.end()) lists.push_back(list);
  return position;
}

}  // namespace

void NodeStore::configure(const NodeFileSettings& settings) {
  blocks_.configure(settings.compressed, settings.on_disk, settings.directory);
}

/* Stores what has been packed; the places that belong to it learn where. */
NodeStore::State NodeStore::close(std::vector<char>* bytes, Block* block, std::span<Place> places) {
  const int slot = kept_.take();
  const State state = blocks_.put(*bytes, &block->number);
  if (state != State::done) {
    kept_.give_back(slot);
    return state;
  }
  block->nodes = static_cast<int>(places.size());
  kept_[slot] = std::exchange(*block, {});
  for (Place& place : places) place.block = slot;
  bytes->clear();
  return State::done;
}

NodeStore::State NodeStore::put(std::span<const NodeDetail* const> details, std::span<Place> places,
                                std::size_t* stored) {
  std::vector<char> bytes;
  Block block;
  *stored = 0;
  for (std::size_t k = 0; k < details.size(); ++k) {
    const NodeDetail& detail = *details[k];
    places[k].at = static_cast<int>(bytes.size());
    pack(detail, detail.basis == nullptr ? -1 : position_of(block.cut_rows, detail.basis->cut_rows), bytes);
    if (bytes.size() < kBlockBytes && k + 1 < details.size()) continue;
    const State state = close(&bytes, &block, places.subspan(*stored, k + 1 - *stored));
    if (state != State::done) return state;
    *stored = k + 1;
  }
  return State::done;
}

NodeStore::State NodeStore::bring(int block) {
  if (at_hand_ == block) return State::done;
  at_hand_ = -1;
  const State state = blocks_.get(kept_[block].number, &bytes_);
  if (state == State::done) at_hand_ = block;
  return state;
}

NodeStore::State NodeStore::take(Place place, NodeDetail* detail) {
  if (const State state = bring(place.block); state != State::done) return state;
  Bytes from(bytes_.data() + place.at);
  const Head head = from.take<Head>();
  NodeDetail read;
  read.relaxation = head.relaxation;
  read.branch = head.branch;
  if (head.columns >= 0) {
    auto basis = std::make_shared<StoredBasis>();
    lp::Basis& b = basis->basis;
    b.columns.resize(static_cast<std::size_t>(head.columns));
    b.rows.resize(static_cast<std::size_t>(head.rows));
    from.take(b.columns.data(), b.columns.size());
    from.take(b.rows.data(), b.rows.size());
    if (head.weights != 0) {
      b.dual_weights.assign(b.columns.size() + b.rows.size(), 1.0);
      each_basic(b, b.dual_weights, [&](double& w) { w = from.take<double>(); });
    }
    if (head.cut_rows >= 0)
      basis->cut_rows = kept_[place.block].cut_rows[static_cast<std::size_t>(head.cut_rows)];
    read.basis = std::move(basis);
  }
  *detail = std::move(read);
  forget(place);
  return State::done;
}

void NodeStore::forget(Place place) {
  Block& block = kept_[place.block];
  if (--block.nodes > 0) return;
  blocks_.drop(block.number);
  block = {};
  kept_.give_back(place.block);
  if (at_hand_ == place.block) at_hand_ = -1;
}

}  // namespace tovik::mip
