#include "lp/cholesky/panels.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <new>
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

Panels::Panels(const Symbolic& symbolic, const Use& use)
    : symbolic_(symbolic), use_(use), total_(kNumber * symbolic.panel.back()) {
  storage_.work_memory = use_.work_memory;
  storage_.out_of_core = static_cast<double>(total_) > use_.work_memory;
  storage_.needed = static_cast<double>(total_ + use_.beside);
  if (!storage_.out_of_core) return;
  choose_residents();
  make_blocks();
  const std::int64_t file = kNumber * symbolic_.panel[first_resident_];
  storage_.file_bytes = static_cast<double>(file);
  storage_.needed = static_cast<double>(total_ - file + buffers() + use_.beside);
}

std::int64_t Panels::window_size(int worker) const {
  const std::int64_t together =
      std::min(kAtOnce, static_cast<std::int64_t>(kShareAtOnce * use_.work_memory) / kNumber);
  return std::max(together, worker == 0 ? largest_in_file_ : std::min(largest_in_file_, use_.largest_task));
}

std::int64_t Panels::buffers() const {
  std::int64_t sum = 2 * window_size(0);  // a block is at most as large
  for (int worker = 0; worker < use_.workers; ++worker) sum += window_size(worker);
  return kNumber * sum;
}

/* From the last on, as many as fit. */
void Panels::choose_residents() {
  const int n = symbolic_.supernodes();
  std::vector<std::int64_t> largest_before(static_cast<std::size_t>(n) + 1, 0);
  for (int s = 0; s < n; ++s) largest_before[s + 1] = std::max(largest_before[s], size(s));
  for (first_resident_ = n; first_resident_ > 0; --first_resident_) {
    largest_in_file_ = largest_before[first_resident_ - 1];
    const std::int64_t kept = total_ - kNumber * symbolic_.panel[first_resident_ - 1];
    if (static_cast<double>(kept + buffers() + use_.beside) > use_.work_memory) break;
  }
  largest_in_file_ = largest_before[first_resident_];
}

void Panels::make_blocks() {
  const std::int64_t most = window_size(0);
  for (int s = 0; s < first_resident_; ++s)
    if (block_.empty() || symbolic_.panel[s + 1] - symbolic_.panel[block_.back()] > most) block_.push_back(s);
  block_.push_back(first_resident_);
}

State Panels::allocate(const std::string& directory) {
  resident_.allocate(symbolic_.panel.back() - symbolic_.panel[first_resident_]);
  if (!storage_.out_of_core) return State::done;
  checksum_.assign(static_cast<std::size_t>(first_resident_), 0);
  windows_.resize(static_cast<std::size_t>(use_.workers));
  for (int worker = 0; worker < use_.workers; ++worker) windows_[worker].memory.allocate(window_size(worker));
  const State state = file_.open(directory, kNumber * symbolic_.panel[first_resident_]);
  storage_.directory = file_.directory();
  return state;
}

void Panels::restart() {
  for (Window& window : windows_) window.used = 0;
}

State Panels::begin(int s, int worker, double** panel) {
  if (!in_file(s)) {
    *panel = resident(s);
    return State::done;
  }
  Window& window = windows_[worker];
  const std::int64_t first = symbolic_.panel[s];
  if (window.first + window.used != first || window.used + size(s) > window_size(worker)) {
    if (const State state = flush(worker); state != State::done) return state;
    window.first = first;
  }
  *panel = window.memory.at(window.first) + window.used;
  window.used += size(s);
  return State::done;
}

void Panels::finish(int s, const double* panel) {
  if (in_file(s)) checksum_[s] = checksum(panel, size(s));
}

State Panels::flush(int worker) {
  if (!storage_.out_of_core) return State::done;
  Window& window = windows_[worker];
  const std::int64_t used = std::exchange(window.used, 0);
  return file_.write(kNumber * window.first, window.memory.at(window.first), kNumber * used);
}

State Panels::load(int block, double* to) const {
  const int begin = block_[block], end = block_[block + 1];
  const std::int64_t first = symbolic_.panel[begin];
  const State state = file_.read(kNumber * first, to, kNumber * (symbolic_.panel[end] - first));
  if (state != State::done) return state;
  for (int s = begin; s < end; ++s)
    if (checksum(to + (symbolic_.panel[s] - first), size(s)) != checksum_[s]) return State::file_not_read;
  return State::done;
}

/* The way through the blocks: 0, 1, ... last, last - 1, ... 0. Step k is read into buffer k % 2 once step k - 2 is done with. */
struct PanelReader::Ahead {
  explicit Ahead(const Panels& of) : panels(of), blocks(static_cast<int>(of.block_.size()) - 1) {
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
  int block(int k) const { return k < blocks ? k : 2 * blocks - 2 - k; }
  void read(int k) { state[k % 2] = panels.load(block(k), numbers(k)); }
  double* numbers(int k) const { return memory[k % 2].at(first(k)); }
  std::int64_t first(int k) const { return panels.symbolic_.panel[panels.block_[block(k)]]; }

  /* To the block of s; State of what is there then. */
  State advance_to(int s) {
    while (step < 0 || s < panels.block_[block(step)] || s >= panels.block_[block(step) + 1]) {
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
  if (panels_.first_resident_ > 0) ahead_ = std::make_unique<Ahead>(panels);
}

PanelReader::~PanelReader() = default;

const double* PanelReader::from_file(int s) {
  if (ahead_->advance_to(s) != State::done) throw FileError();
  return ahead_->numbers(ahead_->step) + (panels_.symbolic_.panel[s] - ahead_->first(ahead_->step));
}

}  // namespace tovik::lp::cholesky
