/* Message channels: lists of destinations, the newest first. */
#pragma once

#include <cstdio>
#include <string_view>
#include <vector>

namespace tovik {

struct Destination {
  enum class Kind { file = 1, file_slot = 2, function = 3 };
  Kind kind;
  FILE* file = nullptr;
  FILE** file_slot = nullptr;
  void* handle = nullptr;
  void (*function)(void*, const char*) = nullptr;
};

class Channel {
 public:
  /* Each returns 0 or the code 1052 / 1053. */
  int add_file(FILE* file);
  int remove_file(FILE* file);
  int add_file_slot(FILE** slot);
  int add_function(void* handle, void (*function)(void*, const char*));
  int remove_function(void* handle, void (*function)(void*, const char*));
  bool has_file(FILE* file) const;
  void disconnect();  // flushes the files, then empties the list
  void flush();
  void write(const char* text);  // delivers to every destination
  bool empty() const { return destinations_.empty(); }

 private:
  std::vector<Destination> destinations_;  // newest first
};

/* Formats by the printf rules, whatever the length, and delivers. A null channel delivers nothing. Returns the length. */
int message(Channel* channel, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace tovik
