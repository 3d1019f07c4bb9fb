/* The live handles of the process: environments, problems, networks and channels.
 * A handle that a caller passes in is looked up here before anything behind it is read, so that a freed,
 * foreign or random pointer is told apart from a live one without being followed.
 *
 * Threads: a mutex guards the table. Each thread remembers the handles that it looked up last; removing any
 * handle makes all threads forget. A look-up that is remembered takes a few nanoseconds and no lock.
 *
 * Errors: bad_alloc when a handle is entered. */
#pragma once

namespace tovik {

enum class HandleKind { environment, problem, network, channel };

bool is_live(const void* handle, HandleKind kind) noexcept;

/* Entry of one record. As the record's last member it is entered when the record is complete and removed
 * before the record is taken apart. */
class LiveHandle {
 public:
  LiveHandle(const void* record, HandleKind kind);
  ~LiveHandle();
  LiveHandle(const LiveHandle&) = delete;
  LiveHandle& operator=(const LiveHandle&) = delete;

 private:
  const void* record_;
};

}  // namespace tovik
