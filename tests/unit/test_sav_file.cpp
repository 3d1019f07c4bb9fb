/* SAV files whose checksum is right but whose contents are not, and the checksum itself. */
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "fileio/sav/crc32c.h"
#include "fileio/sav/file.h"
#include "fileio/sav/output.h"
#include "include/tovik.h"
#include "support/text_sink.h"

namespace {

using namespace tovik;
using namespace tovik::fileio;
using sav::kind;

/* Two columns, one row, one item of every family. */
SavFile small_file() {
  SavFile file;
  file.sizes = {2, 1, 2, 11, 1};
  file.offset = {0};
  file.objective = file.lower = {0, 0};
  file.upper = {1, 1};
  file.types = {'B', 'C'};
  file.column_names = {'a', '\0', 'b', '\0'};
  file.rhs = {1};
  file.sense = {'L'};
  file.row_names = {'r', '\0'};
  file.matrix = {{0, 1, 2}, {0, 0}, {1, 2}};
  file.sets = {{0, 2}, {0, 1}, {1, 2}};
  file.set_types = {'1'};
  file.indicators = {{{0, 1}, {1}, {3}}, {4}, {'L'}, {'i', '\0'}};
  file.switches = {0};
  file.complemented = {1};
  file.quadratic_rows = {{{0, 1}, {1}, {3}}, {4}, {'L'}, {}};
  file.products = {{0, 2}, {0, 0}, {0, 1}, {1, 2}};
  file.form_column = {0, 1};
  file.form_row = {0, 1};
  file.form_value = {2, 2};
  file.order_column = {0, 1};
  file.order_priority = file.order_direction = {1, 0};
  file.starts = {{0, 1}, {1}, {0}};
  file.start_efforts = {0};
  file.state.column_status = {1, 0};
  file.state.row_status = {9};  // whether it means something is for the load to say
  file.state.norm_head = {-1};
  file.state.dual_norms = {1};
  file.state.counts.assign(SavState::kCounts, 1);
  file.state.numbers = {0, 1};
  file.state.x = file.state.dj = {0, 0};
  file.state.slack = file.state.pi = file.state.farkas = {1};
  return file;
}

TEST(SavFileCheck, ContradictionsAreFound) {
  ASSERT_EQ(check_sav(small_file()), 0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::pair<const char*, std::function<void(SavFile&)>> cases[] = {
      {"no sizes", [](SavFile& f) { f.sizes.clear(); }},
      {"negative size", [](SavFile& f) { f.sizes[0] = -2; }},
      {"huge size", [](SavFile& f) { f.sizes[1] = std::int64_t{1} << 40; }},
      {"number of entries", [](SavFile& f) { f.sizes[2] = 3; }},
      {"unknown problem type", [](SavFile& f) { f.sizes[3] = 2; }},
      {"type without the data", [](SavFile& f) { f.sizes[3] = 1; }},
      {"mixed-integer without column types", [](SavFile& f) { f.types.clear(); }},
      {"objective sense", [](SavFile& f) { f.sizes[4] = 0; }},
      {"no offset", [](SavFile& f) { f.offset.clear(); }},
      {"short array", [](SavFile& f) { f.lower.pop_back(); }},
      {"long array", [](SavFile& f) { f.rhs.push_back(0); }},
      {"names of too few", [](SavFile& f) { f.column_names.resize(2); }},
      {"name without end", [](SavFile& f) { f.column_names.back() = 'x'; }},
      {"zero in a text",
       [](SavFile& f) {
         f.problem_name = {'a', '\0'};
       }},
      {"start not 0", [](SavFile& f) { f.matrix.start[0] = 1; }},
      {"descending starts",
       [](SavFile& f) {
         f.matrix.start = {0, 3, 2};
       }},
      {"negative start", [](SavFile& f) { f.matrix.start[1] = -1; }},
      {"end of starts", [](SavFile& f) { f.matrix.start[2] = 1; }},
      {"row out of range", [](SavFile& f) { f.matrix.index[1] = 1; }},
      {"negative row", [](SavFile& f) { f.matrix.index[1] = -1; }},
      {"row twice",
       [](SavFile& f) {
         f.matrix.start = {0, 2, 2};
       }},
      {"entry of zero", [](SavFile& f) { f.matrix.value[0] = 0; }},
      {"values missing", [](SavFile& f) { f.matrix.value.pop_back(); }},
      {"column of a set", [](SavFile& f) { f.sets.index[0] = 2; }},
      {"column twice in a set", [](SavFile& f) { f.sets.index[0] = 1; }},
      {"types of sets", [](SavFile& f) { f.set_types.clear(); }},
      {"switch", [](SavFile& f) { f.switches[0] = 2; }},
      {"no switch", [](SavFile& f) { f.switches.clear(); }},
      {"row beside the matrix", [](SavFile& f) { f.indicators.rhs.clear(); }},
      {"product twice", [](SavFile& f) { f.products.other[1] = 0; }},
      {"product of larger first", [](SavFile& f) { f.products.column[0] = 1; }},
      {"product out of range", [](SavFile& f) { f.products.other[1] = 7; }},
      {"starts of products",
       [](SavFile& f) {
         f.products.start = {0, 1, 2};
       }},
      {"no starts of products", [](SavFile& f) { f.products = {}; }},
      {"form out of range", [](SavFile& f) { f.form_row[1] = 2; }},
      {"form not in order", [](SavFile& f) { f.form_column[1] = 0, f.form_row[1] = 0; }},
      {"values of columns alone", [](SavFile& f) { f.state.slack = f.state.pi = f.state.dj = {}; }},
      {"duals of rows alone", [](SavFile& f) { f.state.dj.clear(); }},
      {"duals without values", [](SavFile& f) { f.state.x = f.state.slack = {}; }},
      {"solution of a basis that is not there",
       [](SavFile& f) { f.state.column_status = f.state.row_status = {}; }},
      {"proof that is not there", [](SavFile& f) { f.state.farkas.clear(); }},
      {"order not in order",
       [](SavFile& f) {
         f.order_column = {1, 1};
       }},
      {"order out of range",
       [](SavFile& f) {
         f.order_column = {0, 2};
       }},
      {"efforts", [](SavFile& f) { f.start_efforts.clear(); }},
      {"statuses of rows only",
       [](SavFile& f) { f.state.column_status.clear(), f.state.counts[SavState::kHasBasis] = 0; }},
      {"head of norms", [](SavFile& f) { f.state.norm_head[0] = -2; }},
      {"norm of zero", [](SavFile& f) { f.state.dual_norms[0] = 0; }},
      {"norm that is no number", [nan](SavFile& f) { f.state.dual_norms[0] = nan; }},
      {"norms without head", [](SavFile& f) { f.state.norm_head.clear(); }},
      {"starting values", [](SavFile& f) { f.state.primal = {1}; }},
      {"solution without status", [](SavFile& f) { f.state.counts.clear(); }},
      {"status that is no int",
       [](SavFile& f) { f.state.counts[SavState::kStatus] = std::int64_t{1} << 33; }},
  };
  for (const auto& [what, spoil] : cases) {
    SavFile file = small_file();
    spoil(file);
    EXPECT_EQ(check_sav(file), TVK_ERROR_FILE_FORMAT) << what;
  }
}

/* An empty problem and what `more` adds to its sections. */
std::string file_with(const std::function<void(sav::Output&)>& more) {
  support::TextSink sink;
  sav::Output out(sink);
  const std::int64_t sizes[] = {0, 0, 0, 0, 1, 99};  // the last one is of a later version
  const double offset = 2.5;
  const std::int64_t start = 0;
  out.array<std::int64_t>(kind("PROB"), sizes);
  out.array<double>(kind("POFF"), {&offset, 1});
  out.array<std::int64_t>(kind("MSTA"), {&start, 1});
  more(out);
  EXPECT_TRUE(out.close());
  return sink.text;
}

int code_of(const std::string& bytes) {
  MemorySource source(bytes);
  SavFile file;
  return read_sav(source, file);
}

TEST(SavFileCheck, SectionsOfLaterVersions) {
  const std::string_view text = "abc";
  const std::span<const char> three(text);
  EXPECT_EQ(code_of(file_with([](sav::Output&) {})), 0);
  EXPECT_EQ(code_of(file_with([&](sav::Output& out) { out.array(kind("ZZZZ"), three, sav::kOptional); })), 0);
  EXPECT_EQ(code_of(file_with([&](sav::Output& out) { out.array(kind("ZZZZ"), three); })), 1563);
  EXPECT_EQ(code_of(file_with([&](sav::Output& out) { out.array(kind("CCST"), three); })), 1563);
  EXPECT_EQ(code_of(file_with([](sav::Output& out) { out.array<double>(kind("POFF"), {}); })), 1563)
      << "twice";
  EXPECT_EQ(code_of(file_with([](sav::Output&) {}) + '\0'), 1563) << "more behind the end";
}

/* What a file claims is not believed: nothing is allocated for it. */
TEST(SavFileCheck, HugeCounts) {
  class Unknown final : public ByteSource {  // as from a compressor
   public:
    explicit Unknown(std::string_view bytes) : bytes_(bytes) {}
    std::size_t read(char* buffer, std::size_t capacity) override { return bytes_.read(buffer, capacity); }
    bool finish() override { return true; }

   private:
    MemorySource bytes_;
  };
  for (const std::uint64_t count : {std::uint64_t{1} << 30, std::uint64_t{1} << 45, ~std::uint64_t{0}}) {
    for (const std::uint32_t which : {kind("CCST"), kind("ZZZZ")}) {
      const std::string bytes =
          file_with([&](sav::Output& out) { out.begin<double>(which, count, sav::kOptional); });
      EXPECT_EQ(code_of(bytes), 1561);
      Unknown source(bytes);
      SavFile file;
      EXPECT_EQ(read_sav(source, file), 1561);
    }
  }
}

TEST(Crc32c, KnownValuesAndBothWays) {
  const auto by_instruction = [](std::string_view bytes) {
    Crc32c crc;
    crc.add(bytes.data(), bytes.size() / 3);
    crc.add(bytes.data() + bytes.size() / 3, bytes.size() - bytes.size() / 3);
    return crc.value();
  };
  const auto by_tables = [](std::string_view bytes) {
    return ~crc32c_by_tables(~std::uint32_t{0}, reinterpret_cast<const unsigned char*>(bytes.data()),
                             bytes.size());
  };
  EXPECT_EQ(by_instruction("123456789"), 0xE3069283u);
  EXPECT_EQ(by_tables(std::string(32, '\0')), 0x8A9136AAu);
  std::string bytes;
  for (int k = 0; k < 100; ++k) {
    EXPECT_EQ(by_instruction(bytes), by_tables(bytes)) << k;
    bytes.push_back(static_cast<char>(k * 37));
  }
}

}  // namespace
