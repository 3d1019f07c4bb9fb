/* Message channels: lists of destinations, the newest first.
 * A message reaches the destinations that the channel had when it was sent, newest first. A destination
 * function may add and remove destinations, and delete the channel, while a message is delivered: what is
 * removed is not reached any more, what is added waits for the next message. What a destination function
 * throws is dropped.
 *
 * Threads: not locked; a channel is changed by one thread at a time and not while another one writes. */
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include "env/registry.h"

namespace tovik {

using MessageFunction = void (*)(void* handle, const char* text);

struct Destination {
  enum class Kind { file = 1, file_slot = 2, function = 3 };
  Kind kind;
  FILE* file = nullptr;
  FILE** file_slot = nullptr;  // skipped while it holds null
  void* handle = nullptr;
  MessageFunction function = nullptr;
  std::uint64_t number = 0;  // ascending in the order of adding
  FILE* current_file() const { return kind == Kind::file_slot ? *file_slot : file; }
};

struct Environment;

class Channel {
 public:
  explicit Channel(const Environment& environment);
  ~Channel();
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  /* Each returns 0 or the code 1052 / 1053 and changes nothing on failure. Adding may throw bad_alloc, but
   * not after reserve(). */
  int add_file(FILE* file);
  int remove_file(FILE* file);
  int add_file_slot(FILE** slot);
  int add_function(void* handle, MessageFunction function);
  int remove_function(void* handle, MessageFunction function);
  void reserve();  // room for one more destination
  bool has_file(FILE* file) const;
  void disconnect() noexcept;  // flushes the files, then empties the list
  void retire() noexcept;      // disconnects, and its handle names nothing any more
  void flush() noexcept;
  void write(const char* text) noexcept;  // delivers to every destination
  void write_to_files(const char* text) noexcept;
  bool empty() const;
  bool delivering() const;  // a message is on its way: called from a destination function
  const Environment& environment() const { return environment_; }
  void* handle() const { return live_ ? live_->value() : nullptr; }

 private:
  struct List {
    std::vector<Destination> destinations;  // oldest first
    std::uint64_t next_number = 1;
    std::atomic<int> deliveries{0};
  };
  void add(Destination destination);
  template <class Matches>
  bool remove_newest(Matches matches);

  const Environment& environment_;  // that it belongs to
  std::shared_ptr<List> list_;      // shared with the deliveries that are on their way
  std::optional<LiveHandle> live_;
};

/* Formats by the printf rules, whatever the length, and delivers. A null channel delivers nothing. Returns
 * the length. */
int message(Channel* channel, const char* format, ...) __attribute__((format(printf, 2, 3)));
int message_list(Channel* channel, const char* format, std::va_list arguments)
    __attribute__((format(printf, 2, 0)));

}  // namespace tovik
