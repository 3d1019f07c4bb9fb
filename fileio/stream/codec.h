/* Compression in the process: gzip's and bzip2's formats, by the libraries that those programs are made of.
 *
 * A file may hold several streams one behind the other, as those programs read it. Memory comes from operator new, and
 * a lack of it is bad_alloc like any other. */
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

namespace tovik::fileio {

enum class Codec { none, gzip, bzip2, lzw, xz, zstd };

/* By the first bytes of a file. */
Codec codec_of(std::string_view first_bytes);

/* One compressed file, in pieces. */
class Decoder {
 public:
  enum class State { going_on, ended, damaged };
  virtual ~Decoder() = default;
  /* Takes bytes from `input` and puts some into the output, advancing both. `last`: no more input will come; ended means
   * that all of it made sense. */
  virtual State step(std::string_view& input, char*& output, std::size_t& room, bool last) = 0;
};
std::unique_ptr<Decoder> make_decoder(Codec codec);  // gzip and bzip2 only

class Encoder {
 public:
  virtual ~Encoder() = default;
  /* Takes bytes, puts some; with `last` call until it is true: all is in the output. */
  virtual bool step(std::string_view& input, char*& output, std::size_t& room, bool last) = 0;
};
std::unique_ptr<Encoder> make_encoder(Codec codec);  // gzip and bzip2 only

}  // namespace tovik::fileio
