/* Sections on their way into a SAV file: headers, padding, checksum. Large arrays go to the sink as they are.
 *
 *   Output out(sink);
 *   out.array(kind("CCST"), model.objective());
 *   out.begin<int>(kind("MIDX"), entries); out.add(some); out.add(more);   // elements in several pieces
 *   if (!out.close()) ...
 */
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "fileio/sav/crc32c.h"
#include "fileio/sav/format.h"
#include "fileio/stream/output.h"

namespace tovik::fileio::sav {

class Output {
 public:
  /* Begins the file with its prologue. */
  explicit Output(ByteSink& sink);

  template <class T>
  void begin(std::uint32_t kind, std::uint64_t count, std::uint8_t flags = 0) {
    header(kind, kTypeLetter<T>, flags, count);
  }
  /* T: char, std::int32_t, std::int64_t, double. */
  template <class T>
  void add(std::span<const T> values);
  template <class T>
  void array(std::uint32_t kind, std::span<const T> values, std::uint8_t flags = 0) {
    begin<T>(kind, values.size(), flags);
    add(values);
  }
  /* The last section; true when the sink has taken everything. */
  bool close();

 private:
  void header(std::uint32_t kind, char type, std::uint8_t flags, std::uint64_t count);
  template <class T>
  void put_number(T value);
  void put(const void* bytes, std::size_t count);
  void pad();
  void flush();
  void emit(const char* bytes, std::size_t count);

  ByteSink& sink_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
  std::uint64_t position_ = 0;  // in the file
  bool failed_ = false;
  Crc32c crc_;  // of what was handed over
};

}  // namespace tovik::fileio::sav
