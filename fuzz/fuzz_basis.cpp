/* Feeds bytes to the readers of basis, vector and priority-order files, and checks what each promises. Seeds:
 * tests/fileio/corpus/basis. */
#include <algorithm>

#include "fileio/basis/basis_file.h"
#include "fileio/basis/order_file.h"
#include "fileio/basis/vector_values.h"
#include "fuzz/reader_harness.h"
#include "fuzz/small_model.h"

using namespace tovik::fileio;
using fuzz::require;

namespace {

void check_basis(std::string_view bytes, const tovik::model::Model& model) {
  fuzz::SlowSource source(bytes);
  fuzz::SilentLog log;
  BasisFile basis;
  if (read_basis(source, model, log, basis)) return;
  require(basis.column_status.size() == 6 && basis.row_status.size() == 4);
  require(basis.primal.empty() || basis.primal.size() == 6);
  const auto fine = [](int status) { return status >= 0 && status <= 3; };
  require(std::ranges::all_of(basis.column_status, fine) && std::ranges::all_of(basis.row_status, fine));
  require(std::ranges::count(basis.column_status, 1) + std::ranges::count(basis.row_status, 1) == 4);
}

void check_vector(std::string_view bytes, const tovik::model::Model& model) {
  fuzz::SlowSource source(bytes);
  fuzz::SilentLog log;
  VectorValues values;
  if (read_vector(source, model, log, values)) return;
  require(values.x.empty() || values.x.size() == 6);
  require(values.pi.empty() || values.pi.size() == 4);
}

void check_order(std::string_view bytes, const tovik::model::Model& model) {
  fuzz::SlowSource source(bytes);
  fuzz::SilentLog log;
  std::vector<tovik::model::OrderEntry> order;
  if (read_order(source, model, log, order)) return;
  require(order.size() <= 6);
  for (const auto& entry : order) require(entry.column >= 0 && entry.column < 6 && entry.priority >= 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const tovik::model::Model model = fuzz::small_model();
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  check_basis(bytes, model);
  check_vector(bytes, model);
  check_order(bytes, model);
  return 0;
}
