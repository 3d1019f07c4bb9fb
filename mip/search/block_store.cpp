#include "mip/search/block_store.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <utility>

namespace tovik::mip {
namespace {

using FileState = lp::cholesky::State;

constexpr std::int64_t kPage = 512;  // room is given in multiples of it
constexpr std::int64_t kFirstFile = std::int64_t{1} << 20, kLargestFile = std::int64_t{1} << 30;
constexpr std::int64_t kWasteful =
    2;  // times the room that a block needs: larger holes are left for larger ones

std::int64_t rounded(std::int64_t bytes) {
  return (bytes + kPage - 1) / kPage * kPage;
}

BlockStore::State state_of(FileState state) {
  switch (state) {
    case FileState::done:
      return BlockStore::State::done;
    case FileState::file_not_opened:
      return BlockStore::State::not_opened;
    case FileState::file_not_read:
      return BlockStore::State::not_read;
    case FileState::out_of_memory:
      throw std::bad_alloc();
    default:
      return BlockStore::State::not_written;
  }
}

std::uint32_t checksum(const std::vector<char>& bytes) {
  return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

/* Empty where that does not make it shorter. */
std::vector<char> compressed(const std::vector<char>& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::vector<char> packed(size);
  const int result =
      compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
                static_cast<uLong>(bytes.size()), Z_BEST_SPEED);
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  if (result != Z_OK || size >= bytes.size()) return {};
  return {packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(size)};
}

}  // namespace

void BlockStore::configure(bool compressed, bool on_disk, const std::string& directory) {
  compressed_ = compressed;
  on_disk_ = on_disk;
  directory_ = directory;
}

bool BlockStore::take_hole(Block* block) {
  for (std::size_t number = 0; number < files_.size(); ++number) {
    if (files_[number] == nullptr) continue;
    auto& holes = files_[number]->holes;
    const auto hole = holes.lower_bound(block->room);
    if (hole == holes.end() || hole->first > kWasteful * block->room) continue;
    block->file = static_cast<int>(number);
    block->room = hole->first;
    block->at = hole->second;
    holes.erase(hole);
    return true;
  }
  return false;
}

/* Where the disk has no room for a large one, a smaller one has to do. */
BlockStore::State BlockStore::open_file(std::int64_t room, int* number) {
  std::int64_t largest = kFirstFile / 2;
  for (const auto& file : files_) largest = file == nullptr ? largest : std::max(largest, file->size);
  auto file = std::make_unique<File>();
  const auto free = std::find(files_.begin(), files_.end(), nullptr);
  *number = static_cast<int>(free - files_.begin());
  if (free == files_.end()) files_.emplace_back();
  FileState state = FileState::done;
  for (file->size = std::max(room, std::min(2 * largest, kLargestFile));;
       file->size = std::max(room, file->size / 2)) {
    state = file->file.open(directory_, file->size);
    if (state != FileState::file_not_written || file->size == room) break;
  }
  if (state == FileState::done) files_[static_cast<std::size_t>(*number)] = std::move(file);
  return state_of(state);
}

BlockStore::State BlockStore::find_room(Block* block) {
  if (take_hole(block)) return State::done;
  for (std::size_t number = 0; number < files_.size() && block->file < 0; ++number) {
    const File* file = files_[number].get();
    if (file != nullptr && file->size - file->used >= block->room) block->file = static_cast<int>(number);
  }
  if (block->file < 0) {
    if (const State state = open_file(block->room, &block->file); state != State::done) return state;
  }
  File& file = *files_[static_cast<std::size_t>(block->file)];
  block->at = file.used;
  file.used += block->room;
  return State::done;
}

BlockStore::State BlockStore::write(const std::vector<char>& bytes, Block* block) {
  block->room = rounded(block->stored);
  if (const State state = find_room(block); state != State::done) return state;
  File& file = *files_[static_cast<std::size_t>(block->file)];
  ++file.blocks;
  return state_of(file.file.write(block->at, bytes.data(), block->stored));
}

BlockStore::State BlockStore::put(const std::vector<char>& bytes, int* block) {
  std::vector<char> packed;
  if (compressed_) packed = compressed(bytes);
  std::vector<char> copy;
  if (!on_disk_) copy = packed.empty() ? bytes : std::move(packed);
  const std::vector<char>& stored = !on_disk_ ? copy : packed.empty() ? bytes : packed;
  const int number = blocks_.take();
  Block& made = blocks_[number];
  made = {};
  made.bytes = static_cast<std::int64_t>(bytes.size());
  made.stored = static_cast<std::int64_t>(stored.size());
  bytes_ += made.bytes;
  stored_bytes_ += made.stored;
  if (on_disk_) {
    made.checksum = checksum(stored);
    const State state = write(stored, &made);
    if (state != State::done) {
      drop(number);
      return state;
    }
  } else {
    made.memory = std::move(copy);
  }
  *block = number;
  return State::done;
}

BlockStore::State BlockStore::get(int block, std::vector<char>* bytes) const {
  const Block& from = blocks_[block];
  std::vector<char> read;
  if (from.file >= 0) {
    read.resize(static_cast<std::size_t>(from.stored));
    const File& file = *files_[static_cast<std::size_t>(from.file)];
    const State state = state_of(file.file.read(from.at, read.data(), from.stored));
    if (state != State::done) return state;
    if (checksum(read) != from.checksum) return State::not_read;
  }
  const std::vector<char>& stored = from.file >= 0 ? read : from.memory;
  bytes->resize(static_cast<std::size_t>(from.bytes));
  if (from.stored == from.bytes) {
    std::copy(stored.begin(), stored.end(), bytes->begin());
    return State::done;
  }
  auto size = static_cast<uLongf>(from.bytes);
  const int result =
      uncompress(reinterpret_cast<Bytef*>(bytes->data()), &size,
                 reinterpret_cast<const Bytef*>(stored.data()), static_cast<uLong>(stored.size()));
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  return result == Z_OK && size == static_cast<uLongf>(from.bytes) ? State::done : State::not_read;
}

void BlockStore::drop(int block) {
  Block& gone = blocks_[block];
  bytes_ -= gone.bytes;
  stored_bytes_ -= gone.stored;
  if (gone.file >= 0 && files_[static_cast<std::size_t>(gone.file)] != nullptr) {
    std::unique_ptr<File>& file = files_[static_cast<std::size_t>(gone.file)];
    if (--file->blocks == 0) {
      file.reset();
    } else {
      file->holes.emplace(gone.room, gone.at);
    }
  }
  gone = {};
  blocks_.give_back(block);
}

}  // namespace tovik::mip
