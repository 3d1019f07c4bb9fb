/* File descriptors that close themselves, whole writes, and programs that decode as child processes.
 *
 * A child is started from the search path with an argument vector, never through a shell, with standard error
 * on the null device, the search path alone as its environment (others change what such programs do) and the default
 * reaction to a closed pipe, whatever the calling program chose for itself. */
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tovik::fileio {

class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { close(); }
  bool close();  // false when the system reports a failure
  int get() const { return number_; }
  bool valid() const { return number_ >= 0; }

 private:
  int number_;
};

Descriptor open_descriptor(const char* name, int flags, mode_t mode = 0666);

/* Both ends of a new pipe, away from the numbers of the three standard streams; invalid on failure. */
struct Pipe {
  Descriptor reading, writing;
  bool valid() const { return reading.valid() && writing.valid(); }
};
Pipe make_pipe();

/* -1 on failure, 0 at the end. */
ssize_t read_some(int descriptor, char* buffer, std::size_t capacity);

/* Writes all bytes; a reader that has gone and a limit of the file's size are failures and raise no
 * signal. */
bool write_all(int descriptor, const char* bytes, std::size_t count);

class Child {
 public:
  Child() = default;
  /* Input and output are descriptors above 2, or -1 for the null device. */
  Child(std::vector<std::string> arguments, int input, int output);
  Child(Child&& other) noexcept : id_(std::exchange(other.id_, -1)), lost_(other.lost_) {}
  Child& operator=(Child&& other) noexcept {
    std::swap(id_, other.id_);
    std::swap(lost_, other.lost_);
    return *this;
  }
  ~Child() { wait(); }
  bool started() const { return id_ >= 0; }
  /* Waits for its end; true when it was running and ended well. */
  bool wait();
  /* Its end came, but somebody else took what it had to tell: SIGCHLD is ignored, or the calling program waits for any
   * child. */
  bool lost() const { return lost_; }

 private:
  pid_t id_ = -1;
  bool lost_ = false;
};

}  // namespace tovik::fileio
