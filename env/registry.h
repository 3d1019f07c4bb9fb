/* The handles of the process: environments, problems, networks and channels.
 * A handle is no address but a number that is given out once in the life of the process: the place of the record in
 * a table, its kind and the generation of the place. What a caller passes in is looked up here and never followed,
 * so that a freed, foreign, mistyped or random pointer is told apart from a live one, however many records have come
 * since. The upper half of the address space, where no pointer of a program lies, holds all of them.
 *
 * Memory: a place is used again by the next record, so that what is made and freed in turn needs none; a place whose
 * generations are used up (2^34) is used no more.
 *
 * Cost: a look-up takes two loads and no lock.
 *
 * Threads: safe, as long as no thread uses a handle while another one frees it; a mutex guards making and freeing.
 *
 * Errors: bad_alloc when a handle is made. */
#pragma once

#include <cstdint>

namespace tovik {

enum class HandleKind : std::uint8_t { environment = 1, problem, network, channel };

/* The record behind a handle, null for one that is not live or of another kind. */
void* find_record(const void* handle, HandleKind kind) noexcept;

struct HandlePlace;

/* The handle of one record. As the record's last member it is made when the record is complete and withdrawn before the
 * record is taken apart. */
class LiveHandle {
 public:
  LiveHandle(void* record, HandleKind kind);
  ~LiveHandle();
  LiveHandle(const LiveHandle&) = delete;
  LiveHandle& operator=(const LiveHandle&) = delete;
  void* value() const;

 private:
  HandlePlace& place_;
};

}  // namespace tovik
