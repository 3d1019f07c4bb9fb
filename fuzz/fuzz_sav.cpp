/* Feeds bytes to the SAV reader. So that changed bytes get past the checksum, the target puts the right one
 * where it stands in the file; what is read must then be loadable, and written and read again be the same.
 *
 * There are no seeds to begin with but the one that is made here: an empty input, and each input is tried as
 * it is and as a list of changes to that file. */
#include <algorithm>
#include <string>

#include "fileio/sav/crc32c.h"
#include "fileio/sav/file.h"
#include "fuzz/reader_harness.h"
#include "tests/support/text_sink.h"

namespace {

using namespace tovik;
using namespace tovik::fileio;
using fuzz::require;
using support::TextSink;

/* A model with something in every family. */
std::string whole_file() {
  model::ModelData data;
  data.start.push_back(0);
  for (int j = 0; j < 4; ++j) {
    data.objective.push_back(j);
    data.lower.push_back(0);
    data.upper.push_back(j % 2 == 0 ? 1e20 : 1);
    data.types.push_back("CBIS"[j]);
    data.index.push_back(j % 2);
    data.value.push_back(j + 1);
    data.start.push_back(j + 1);
    data.column_names.add("x" + std::to_string(j));
  }
  for (int i = 0; i < 2; ++i) {
    data.rhs.push_back(i);
    data.range.push_back(i);
    data.sense.push_back("LR"[i]);
    data.row_names.add("row" + std::to_string(i));
  }
  const int columns[] = {1, 3};
  const double values[] = {2, -1};
  const model::VectorView terms{columns, values, 2};
  const model::QuadraticTerm products[] = {{0, 0, 1}, {0, 2, 3}};
  model::Families& families = data.families;
  families.sets.add({'1', terms, "set"});
  families.indicators.add({{terms, 'L', 1, "if"}, 1, true});
  families.user_cuts.add({terms, 'G', 1, "cut"});
  families.lazy_constraints.add({terms, 'E', 1, nullptr});
  families.starts.add({terms, 2, "start"});
  families.order.assign({{1, 5, 1}, {3, 7, -1}});
  families.quadratic_objective = model::QuadraticObjective(products);
  families.quadratic_rows.add({{terms, 'L', 4, "q"}, products});
  const model::Model model(std::move(data));
  const int column_status[] = {1, 0, 1, 0}, row_status[] = {0, 2}, head[] = {0, 2};
  const double norms[] = {1, 2}, numbers[] = {3, 0}, x[] = {1, 0, 1, 0}, y[] = {0, 1};
  const std::vector<std::int64_t> counts(SavState::kCounts, 1);
  SavStateView state;
  state.column_status = column_status;
  state.row_status = row_status;
  state.primal = state.x = x;
  state.pi = state.slack = y;
  state.norm_head = head;
  state.dual_norms = norms;
  state.counts = counts;
  state.numbers = numbers;
  TextSink sink;
  require(write_sav({model, 11, "seed", state}, sink));
  return sink.text;
}

void set_checksum(std::string& bytes) {
  if (bytes.size() < 24) return;
  Crc32c crc;
  crc.add(bytes.data(), bytes.size() - 8);
  for (std::size_t k = 0; k < 8; ++k)
    bytes[bytes.size() - 8 + k] = static_cast<char>(k < 4 ? crc.value() >> 8 * k & 255 : 0);
}

std::string written(const model::Model& model, int type, const std::string& name) {
  TextSink sink;
  require(write_sav({model, type, name, {}}, sink));
  return sink.text;
}

void read(const std::string& bytes) {
  fuzz::SlowSource source(bytes);
  SavFile file;
  if (const int code = read_sav(source, file); code != 0) {
    require(code == 1560 || code == 1561 || code == 1563);
    return;
  }
  model::ModelData data = model_data(std::move(file));
  const int type = data.problem_type;
  const std::string name = data.problem_name;
  const model::Model model(std::move(data));
  const std::string once = written(model, type, name);
  fuzz::SlowSource again(once);
  SavFile second;
  require(read_sav(again, second) == 0);
  require(written(model::Model(model_data(std::move(second))), type, name) == once);
}

/* Four bytes a change: place, what, value. */
std::string changed(const std::string& file, const std::uint8_t* data, std::size_t size) {
  std::string bytes = file;
  for (; size >= 4; data += 4, size -= 4) {
    const std::size_t place = (data[0] + 256u * data[1]) % bytes.size();
    switch (data[2] % 4) {
      case 0:
        bytes[place] = static_cast<char>(data[3]);
        break;
      case 1:  // an array grows or shrinks by whole words
        bytes.insert(place / 8 * 8, 8, static_cast<char>(data[3]));
        break;
      case 2:
        if (bytes.size() > 64) bytes.erase(place / 8 * 8, 8);
        break;
      default:
        bytes[place] = static_cast<char>(bytes[place] + (data[3] % 2 == 0 ? 1 : -1));
    }
  }
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string file = whole_file();
  std::string as_it_is(reinterpret_cast<const char*>(data), size);
  read(as_it_is);
  set_checksum(as_it_is);
  read(as_it_is);
  std::string bytes = changed(file, data, std::min<std::size_t>(size, 64));
  set_checksum(bytes);
  read(bytes);
  return 0;
}
