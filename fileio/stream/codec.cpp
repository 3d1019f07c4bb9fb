#include "fileio/stream/codec.h"

#include <bzlib.h>
#include <zlib.h>

#include <algorithm>
#include <climits>
#include <new>

namespace tovik::fileio {
namespace {

template <class Count>
void* allocate(void*, Count items, Count size) {
  return ::operator new(static_cast<std::size_t>(items) * static_cast<std::size_t>(size), std::nothrow);
}
void release(void*, void* memory) {
  ::operator delete(memory);
}

/* Both libraries have the same members under the same names. */
template <class Stream>
void connect(Stream& stream, std::string_view input, char* output, std::size_t room) {
  using Byte = std::remove_reference_t<decltype(*stream.next_in)>;
  constexpr std::size_t kMost = INT_MAX;
  stream.next_in = reinterpret_cast<Byte*>(const_cast<char*>(input.data()));
  stream.avail_in = static_cast<unsigned>(std::min(input.size(), kMost));
  stream.next_out = reinterpret_cast<std::remove_reference_t<decltype(*stream.next_out)>*>(output);
  stream.avail_out = static_cast<unsigned>(std::min(room, kMost));
}

template <class Stream>
void advance(const Stream& stream, std::string_view& input, char*& output, std::size_t& room) {
  input.remove_prefix(static_cast<std::size_t>(reinterpret_cast<const char*>(stream.next_in) - input.data()));
  char* const end = reinterpret_cast<char*>(stream.next_out);
  room -= static_cast<std::size_t>(end - output);
  output = end;
}

void check_memory(bool short_of_memory) {
  if (short_of_memory) throw std::bad_alloc();
}

constexpr int kGzipWindow = 15 + 16;  // the largest window, gzip's header and trailer around

struct Gunzip {
  using Stream = z_stream;
  static constexpr int kEnd = Z_STREAM_END;
  static int begin(Stream& s) {
    s.zalloc = allocate<uInt>;
    s.zfree = release;
    return inflateInit2(&s, kGzipWindow);
  }
  static int step(Stream& s) { return inflate(&s, Z_NO_FLUSH); }
  static int again(Stream& s) { return inflateReset(&s); }
  static void end(Stream& s) { inflateEnd(&s); }
  static bool goes_on(int code) { return code == Z_OK || code == Z_BUF_ERROR; }
  static bool is_foreign(int) { return false; }
  static bool lacks_memory(int code) { return code == Z_MEM_ERROR; }
};

struct Bunzip2 {
  using Stream = bz_stream;
  static constexpr int kEnd = BZ_STREAM_END;
  static int begin(Stream& s) {
    s.bzalloc = allocate<int>;
    s.bzfree = release;
    return BZ2_bzDecompressInit(&s, 0, 0);
  }
  static int step(Stream& s) { return BZ2_bzDecompress(&s); }
  static int again(Stream& s) {
    BZ2_bzDecompressEnd(&s);
    return begin(s);
  }
  static void end(Stream& s) { BZ2_bzDecompressEnd(&s); }
  static bool goes_on(int code) { return code == BZ_OK; }
  static bool is_foreign(int code) { return code == BZ_DATA_ERROR_MAGIC; }
  static bool lacks_memory(int code) { return code == BZ_MEM_ERROR; }
};

template <class Library>
class LibraryDecoder final : public Decoder {
 public:
  LibraryDecoder() { check_memory(Library::begin(stream_) != 0); }
  ~LibraryDecoder() override { Library::end(stream_); }
  LibraryDecoder(const LibraryDecoder&) = delete;
  LibraryDecoder& operator=(const LibraryDecoder&) = delete;

  State step(std::string_view& input, char*& output, std::size_t& room, bool last) override {
    while (room > 0) {
      if (between_ && !begin_next(input)) return last ? State::ended : State::going_on;
      const std::size_t bytes_before = input.size(), room_before = room;
      connect(stream_, input, output, room);
      const int code = Library::step(stream_);
      advance(stream_, input, output, room);
      check_memory(Library::lacks_memory(code));
      if (code == Library::kEnd) {
        between_ = has_ended_ = true;
      } else if (has_ended_ && Library::is_foreign(code)) {
        between_ = foreign_ = true;
      } else if (!Library::goes_on(code)) {
        return State::damaged;
      } else if (input.size() == bytes_before && room == room_before) {
        return last ? State::damaged : State::going_on;  // in the middle of a stream
      }
    }
    return State::going_on;
  }

 private:
  /* False when there is nothing to begin with: zeros behind a stream, and for bzip2 what is no stream, are skipped as the
   * programs do. */
  bool begin_next(std::string_view& input) {
    input.remove_prefix(foreign_ ? input.size() : std::min(input.find_first_not_of('\0'), input.size()));
    if (input.empty()) return false;
    const int code = Library::again(stream_);
    check_memory(Library::lacks_memory(code));
    between_ = false;
    return true;
  }

  typename Library::Stream stream_{};
  bool between_ = false;  // the last stream has ended, the next one has not begun
  bool has_ended_ = false, foreign_ = false;
};

class Gzip final : public Encoder {
 public:
  Gzip() {
    constexpr int kMemory = 8;
    stream_.zalloc = allocate<uInt>;
    stream_.zfree = release;
    check_memory(deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, kMemory,
                              Z_DEFAULT_STRATEGY) != Z_OK);
  }
  ~Gzip() override { deflateEnd(&stream_); }
  Gzip(const Gzip&) = delete;
  Gzip& operator=(const Gzip&) = delete;
  bool step(std::string_view& input, char*& output, std::size_t& room, bool last) override {
    connect(stream_, input, output, room);
    const int code = deflate(&stream_, last ? Z_FINISH : Z_NO_FLUSH);
    advance(stream_, input, output, room);
    return code == Z_STREAM_END;
  }

 private:
  z_stream stream_{};
};

class Bzip2 final : public Encoder {
 public:
  Bzip2() {
    constexpr int kBlock = 9;
    stream_.bzalloc = allocate<int>;
    stream_.bzfree = release;
    check_memory(BZ2_bzCompressInit(&stream_, kBlock, 0, 0) != BZ_OK);
  }
  ~Bzip2() override { BZ2_bzCompressEnd(&stream_); }
  Bzip2(const Bzip2&) = delete;
  Bzip2& operator=(const Bzip2&) = delete;
  bool step(std::string_view& input, char*& output, std::size_t& room, bool last) override {
    connect(stream_, input, output, room);
    const int code = BZ2_bzCompress(&stream_, last ? BZ_FINISH : BZ_RUN);
    advance(stream_, input, output, room);
    return code == BZ_STREAM_END;
  }

 private:
  bz_stream stream_{};
};

bool is_bzip2(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.size() < 10 || !bytes.starts_with("BZh") || bytes[3] < '1' || bytes[3] > '9') return false;
  const std::string_view block = bytes.substr(4, 6);
  return block == "\x31\x41\x59\x26\x53\x59"sv || block == "\x17\x72\x45\x38\x50\x90"sv;
}

}  // namespace

Codec codec_of(std::string_view first_bytes) {
  using namespace std::string_view_literals;
  if (first_bytes.starts_with("\x1f\x8b\x08"sv)) return Codec::gzip;
  if (is_bzip2(first_bytes)) return Codec::bzip2;
  if (first_bytes.starts_with("\x1f\x9d"sv)) return Codec::lzw;
  if (first_bytes.starts_with("\xfd"
                              "7zXZ\0"sv))
    return Codec::xz;
  return first_bytes.starts_with("\x28\xb5\x2f\xfd"sv) ? Codec::zstd : Codec::none;
}

std::unique_ptr<Decoder> make_decoder(Codec codec) {
  if (codec == Codec::gzip) return std::make_unique<LibraryDecoder<Gunzip>>();
  return std::make_unique<LibraryDecoder<Bunzip2>>();
}

std::unique_ptr<Encoder> make_encoder(Codec codec) {
  if (codec == Codec::gzip) return std::make_unique<Gzip>();
  return std::make_unique<Bzip2>();
}

}  // namespace tovik::fileio
