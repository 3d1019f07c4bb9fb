/* What open nodes hold besides their place in the queue, put away until they are processed.
 *
 * - put() packs the details of many nodes into blocks of some ten thousand bytes; take() gives one back, the same to the last bit,
 *   and leaves the rest of its block where it is. Which rows of cuts a basis stands on is kept in memory, as the very list that it
 *   was: many nodes share one.
 * - Weights of a basis are kept for its basic variables; the others are 1.
 * - Failures: BlockStore::State; nothing is lost then. Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "lp/base/basis.h"
#include "mip/branching/branch.h"
#include "mip/search/block_store.h"
#include "mip/search/slot_pool.h"
#include "mip/worker/settings.h"

namespace tovik::mip {

/* Where the rows of the basis stand: behind the problem's rows those of cuts, by their numbers. */
struct StoredBasis {
  lp::Basis basis;
  std::shared_ptr<const std::vector<std::int64_t>> cut_rows;
};

struct NodeDetail {
  double relaxation = 0;  // objective of the parent's relaxation
  BranchRecord branch;
  std::shared_ptr<const StoredBasis> basis;  // of the parent's optimum; null: none
};

class NodeStore {
 public:
  using State = BlockStore::State;
  struct Place {
    int block = -1, at = 0;  // bytes
  };

  void configure(const NodeFileSettings& settings);
  /* Stores details[k], and writes its place; where it fails, those before the first block that did not go are stored: their
   * number is in *stored. */
  [[nodiscard]] State put(std::span<const NodeDetail* const> details, std::span<Place> places,
                          std::size_t* stored);
  [[nodiscard]] State take(Place place, NodeDetail* detail);
  /* The detail is not needed any more. */
  void forget(Place place);

  std::int64_t bytes() const { return blocks_.bytes(); }
  std::int64_t stored_bytes() const { return blocks_.stored_bytes(); }

 private:
  using CutRows = std::shared_ptr<const std::vector<std::int64_t>>;
  struct Block {
    int number = -1;  // in the store
    int nodes = 0;    // that are still needed
    std::vector<CutRows> cut_rows;
  };

  State close(std::vector<char>* bytes, Block* block, std::span<Place> places);
  State bring(int block);

  BlockStore blocks_;
  SlotPool<Block> kept_;
  int at_hand_ = -1;  // block whose bytes are here
  std::vector<char> bytes_;
};

}  // namespace tovik::mip
