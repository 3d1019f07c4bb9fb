#include "lp/cholesky/panels.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <limits>
#include <new>
#include <numeric>
#include <semaphore>
#include <system_error>
#include <thread>
#include <utility>

namespace tovik::lp::cholesky {
namespace {

constexpr std::int64_t kNumber = sizeof(double);
constexpr std::int64_t kAtOnce = std::int64_t{1}
                                 << 19;  // numbers that are written or read together where they fit
constexpr double kShareAtOnce = 0.0625;  // of the memory, at most

/* Sums of the numbers as integers and sums of these sums, in lanes that are added side by side: changed, moved and missing
 * numbers show. "An arithmetic checksum for serial transmissions", IEEE Trans. Communications 30 (1982). */
std::uint64_t checksum(const double* values, std::int64_t count) {
  constexpr int kLanes = 8;
  std::array<std::uint64_t, kLanes> sum = {}, sum_of_sums = {};
  std::int64_t k = 0;
  const auto add = [&](int lane, std::uint64_t word) {
    sum[lane] += word;
    sum_of_sums[lane] += sum[lane];
  };
  for (; k + kLanes <= count; k += kLanes) {
    std::array<std::uint64_t, kLanes> word;
    std::memcpy(word.data(), values + k, sizeof word);
    for (int lane = 0; lane < kLanes; ++lane) add(lane, word[lane]);
  }
  for (; k < count; ++k) {
    std::uint64_t word = 0;
    std::memcpy(&word, values + k, sizeof word);
    add(0, word);
  }
  constexpr std::uint64_t kOdd = 0x9e3779b97f4a7c15;
  std::uint64_t all = static_cast<std::uint64_t>(count);
  for (int lane = 0; lane < kLanes; ++lane) all = ((all ^ sum[lane]) * kOdd ^ sum_of_sums[lane]) * kOdd;
  return all ^ all >> 32;
}

}  // namespace

void PanelMemory::allocate(std::int64_t count) {
  constexpr std::align_val_t kAlignment{kLine * kNumber};
  memory_.reset(
      static_cast<double*>(::operator new(static_cast<std::size_t>((count + kLine) * kNumber), kAlignment)));
}

void PanelMemory::Free::operator()(double* memory) const {
  ::operator delete (memory, std::align_val_t{kLine * kNumber});
}

Panels::Panels(const Symbolic& symbolic, const Use& use) : symbolic_(symbolic), use_(use) {
  const std::int64_t total = kNumber * symbolic_.panel.back();
  storage_.work_memory = use_.work_memory;
  storage_.out_of_core = static_cast<double>(total) > use_.work_memory;
  in_file_.assign(static_cast<std::size_t>(symbolic_.supernodes()), storage_.out_of_core);
  if (storage_.out_of_core) {
    choose_residents();
  } else {
    kept_ = total;
  }
  give_places();
  storage_.needed = needed();
  storage_.file_bytes = static_cast<double>(kNumber * file_size_);
}

std::int64_t Panels::window_size(int worker) const {
  const std::int64_t together =
      std::min(kAtOnce, static_cast<std::int64_t>(kShareAtOnce * use_.work_memory) / kNumber);
  return std::max(together, worker == 0 ? largest_in_file_ : std::min(largest_in_file_, use_.largest_task));
}

std::int64_t Panels::buffers() const {
  if (!storage_.out_of_core) return 0;
  std::int64_t sum = 2 * window_size(0);  // a block is at most as large
  for (int worker = 0; worker < use_.workers; ++worker) sum += window_size(worker);
  return kNumber * sum;
}

void Panels::keep(int s) {
  in_file_[s] = false;
  kept_ += kNumber * size(s);
}

/* One is in the file in any case. */
void Panels::choose_residents() {
  const int n = symbolic_.supernodes();
  std::vector<int> by_size(static_cast<std::size_t>(n));
  std::iota(by_size.begin(), by_size.end(), 0);
  std::stable_sort(by_size.begin(), by_size.end(), [this](int a, int b) { return size(a) > size(b); });
  int best = 0;
  double least = std::numeric_limits<double>::infinity();
  for (int k = 0; k < n; ++k) {  // what is needed if the k largest ones stay
    largest_in_file_ = size(by_size[k]);
    if (needed() < least) {
      least = needed();
      best = k;
    }
    kept_ += kNumber * size(by_size[k]);
  }
  kept_ = 0;
  for (int k = 0; k < best; ++k) keep(by_size[k]);
  largest_in_file_ = size(by_size[best]);
  for (int s = n - 1; s > 0; --s) {
    if (!in_file_[s]) continue;
    if (needed() + static_cast<double>(kNumber * size(s)) > use_.work_memory) break;
    keep(s);
  }
}

void Panels::give_places() {
  constexpr std::int64_t kLine = PanelMemory::kLine;
  const std::int64_t most = window_size(0);
  place_.resize(in_file_.size());
  for (int s = 0; s < symbolic_.supernodes(); ++s) {
    std::int64_t& next = in_file_[s] ? file_size_ : resident_size_;
    next += ((symbolic_.panel[s] - next) % kLine + kLine) % kLine;
    place_[s] = next;
    next += size(s);
    if (!in_file_[s]) continue;
    if (blocks_.empty() || next - blocks_.back().first > most) blocks_.push_back({s, s, place_[s], 0});
    blocks_.back().end = s + 1;
    blocks_.back().last = next;
  }
}

State Panels::allocate(const std::string& directory) {
  resident_.allocate(resident_size_);
  if (!storage_.out_of_core) return State::done;
  checksum_.assign(in_file_.size(), 0);
  windows_.resize(static_cast<std::size_t>(use_.workers));
  for (int worker = 0; worker < use_.workers; ++worker) windows_[worker].memory.allocate(window_size(worker));
  const State state = file_.open(directory, kNumber * file_size_);
  storage_.directory = file_.directory();
  return state;
}

void Panels::restart() {
  for (Window& window : windows_) window.used = 0;
}

State Panels::begin(int s, int worker, double** panel) {
  if (!in_file_[s]) {
    *panel = resident(s);
    return State::done;
  }
  Window& window = windows_[worker];
  const std::int64_t gap = place_[s] - window.first - window.used;
  const bool follows = window.used > 0 && gap >= 0 && gap < PanelMemory::kLine;
  if (!follows || place_[s] + size(s) - window.first > window_size(worker)) {
    if (const State state = flush(worker); state != State::done) return state;
    window.first = place_[s];
  }
  double* const memory = window.memory.at(window.first);
  const std::int64_t offset = place_[s] - window.first;
  std::fill(memory + window.used, memory + offset, 0.0);
  window.used = offset + size(s);
  *panel = memory + offset;
  return State::done;
}

void Panels::finish(int s, const double* panel) {
  if (in_file_[s]) checksum_[s] = checksum(panel, size(s));
}

State Panels::flush(int worker) {
  if (!storage_.out_of_core) return State::done;
  Window& window = windows_[worker];
  const std::int64_t used = std::exchange(window.used, 0);
  return file_.write(kNumber * window.first, window.memory.at(window.first), kNumber * used);
}

State Panels::load(const Block& block, double* to) const {
  const State state = file_.read(kNumber * block.first, to, kNumber * (block.last - block.first));
  if (state != State::done) return state;
  for (int s = block.begin; s < block.end; ++s)
    if (in_file_[s] && checksum(to + (place_[s] - block.first), size(s)) != checksum_[s])
      return State::file_not_read;
  return State::done;
}

/* The way through the blocks: 0, 1, ... last, last - 1, ... 0. Step k is read into buffer k % 2 once step k - 2 is done with. */
struct PanelReader::Ahead {
  explicit Ahead(const Panels& of) : panels(of), blocks(static_cast<int>(of.blocks_.size())) {
    for (PanelMemory& buffer : memory) buffer.allocate(panels.window_size(0));
    try {
      thread = std::thread([this] {
        for (int k = 0; k < 2 * blocks - 1; ++k) {
          empty.acquire();
          if (closing) return;
          read(k);
          full.release();
        }
      });
    } catch (const std::system_error&) {  // no thread to be had: read when it is asked for
    }
  }
  ~Ahead() {
    if (!thread.joinable()) return;
    closing = true;
    empty.release(2);
    thread.join();
  }
  const Panels::Block& block(int k) const { return panels.blocks_[k < blocks ? k : 2 * blocks - 2 - k]; }
  double* numbers(int k) const { return memory[k % 2].at(block(k).first); }
  void read(int k) { state[k % 2] = panels.load(block(k), numbers(k)); }
  bool holds(int s) const { return step >= 0 && s >= block(step).begin && s < block(step).end; }

  /* To the block of s; State of what is there then. */
  State advance_to(int s) {
    while (!holds(s)) {
      if (++step > 0 && thread.joinable()) empty.release();
      if (thread.joinable()) {
        full.acquire();
      } else {
        read(step);
      }
      if (state[step % 2] != State::done) break;
    }
    return state[step % 2];
  }

  const Panels& panels;
  const int blocks;
  std::array<PanelMemory, 2> memory;
  std::array<State, 2> state = {};
  int step = -1;
  std::counting_semaphore<4> empty{2}, full{0};
  std::atomic<bool> closing = false;
  std::thread thread;
};

PanelReader::PanelReader(const Panels& panels) : panels_(panels) {
  if (!panels_.blocks_.empty()) ahead_ = std::make_unique<Ahead>(panels);
}

PanelReader::~PanelReader() = default;

const double* PanelReader::from_file(int s) {
  if (ahead_->advance_to(s) != State::done) throw FileError();
  return ahead_->numbers(ahead_->step) + (panels_.place_[s] - ahead_->block(ahead_->step).first);
}

}  // namespace tovik::lp::cholesky
