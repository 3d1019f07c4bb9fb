/* Blocks of bytes, put away by number: in memory or in temporary files, as they are or compressed.
 *
 * - Files are made below a directory as they are needed, each larger than the last; their names are removed as soon as they are
 *   open, so that nothing is left behind however the program ends. Their room is reserved before it is used: a full disk shows
 *   here, and nowhere else. A file goes when nothing in it is needed any more, and what a block leaves is used again.
 * - What comes back from a file is compared by a checksum: a file that was tampered with is not_read.
 * - Failures: State; what was there stays as it was. Errors: bad_alloc. */
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "lp/cholesky/scratch_file.h"
#include "mip/search/slot_pool.h"

namespace tovik::mip {

class BlockStore {
 public:
  enum class State { done, not_opened, not_read, not_written };

  /* Of blocks that come from now on. */
  void configure(bool compressed, bool on_disk, const std::string& directory);
  [[nodiscard]] State put(const std::vector<char>& bytes, int* block);
  [[nodiscard]] State get(int block, std::vector<char>* bytes) const;
  void drop(int block);

  /* Of all blocks, and what is kept of them. */
  std::int64_t bytes() const { return bytes_; }
  std::int64_t stored_bytes() const { return stored_bytes_; }

 private:
  struct Block {
    std::vector<char> memory;
    int file = -1;  // -1: in memory
    std::int64_t at = 0, room = 0, stored = 0, bytes = 0;
    std::uint32_t checksum = 0;  // of what is in the file
  };
  struct File {
    lp::cholesky::ScratchFile file;
    std::int64_t size = 0, used = 0;                  // from `used` on it was never written
    int blocks = 0;                                   // in it
    std::multimap<std::int64_t, std::int64_t> holes;  // room, place
  };

  State write(const std::vector<char>& bytes, Block* block);
  State find_room(Block* block);
  bool take_hole(Block* block);
  State open_file(std::int64_t room, int* number);

  bool compressed_ = true, on_disk_ = false;
  std::string directory_;
  SlotPool<Block> blocks_;
  std::vector<std::unique_ptr<File>> files_;  // null: closed
  std::int64_t bytes_ = 0, stored_bytes_ = 0;
};

}  // namespace tovik::mip
