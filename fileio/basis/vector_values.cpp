#include "fileio/basis/vector_values.h"

#include "fileio/basis/card_file.h"
#include "fileio/stream/number_text.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

void write_records(TextWriter& out, char key, const WriterNames& names, std::span<const double> values) {
  constexpr int kDigits = 15, kWidth = 23;
  for (std::size_t k = 0; k < values.size(); ++k) {
    char* p = out.room(kMaxNameLength + 64);
    *p++ = ' ';
    *p++ = key;
    p = copy_text(copy_text(copy_text(p, "  "), names[static_cast<int>(k)]), "  ");
    char number[kNumberText];
    const auto length = write_exponent(number, values[k], kDigits) - number;
    for (auto blanks = kWidth - length; blanks > 0; --blanks) *p++ = ' ';
    p = copy_text(p, {number, static_cast<std::size_t>(length)});
    *p++ = '\n';
    out.advance_to(p);
  }
}

/* The vector and the names that a key stands for. */
struct Target {
  std::vector<double>* values;
  const CardNames* names;
  std::size_t size;
  const char* kind;
};

}  // namespace

void write_vector(const WriteSource& source, const VectorView& values, ReaderLog& log, TextWriter& out) {
  const model::Model& model = source.model;
  const WriterNames columns =
      card_names(model.column_names(), model::kColumnFamily, model.num_columns(), log);
  const WriterNames rows = card_names(model.row_names(), model::kRowFamily, model.num_rows(), log);
  out.put("NAME          " + title(source.name) + '\n');
  write_records(out, 'X', columns, values.x);
  write_records(out, 'S', rows, values.slack);
  write_records(out, 'P', rows, values.pi);
  write_records(out, 'D', columns, values.dj);
  out.put("ENDATA\n");
}

ReadFailure read_vector(ByteSource& source, const model::Model& model, ReaderLog& log, VectorValues& values) {
  const CardNames columns(model.column_names()), rows(model.row_names());
  const auto column_count = static_cast<std::size_t>(model.num_columns());
  const auto row_count = static_cast<std::size_t>(model.num_rows());
  const auto target_of = [&](char key) -> Target {
    switch (key) {
      case 'X':
        return {&values.x, &columns, column_count, "a variable"};
      case 'D':
        return {&values.dj, &columns, column_count, "a variable"};
      case 'S':
        return {&values.slack, &rows, row_count, "a row"};
      case 'P':
        return {&values.pi, &rows, row_count, "a row"};
      default:
        return {nullptr, nullptr, 0, nullptr};
    }
  };
  CardFile cards(source, log);
  WarningLimit unknown_keys;
  while (cards.next()) {
    const std::string_view key = cards.fields()[0];
    const Target target = target_of(key.size() == 1 ? key[0] : '\0');
    if (target.values == nullptr) {
      if (unknown_keys.admit()) log.warn("Warning, line %d: Unrecognized key '%c'.\n", cards.line(), key[0]);
      continue;
    }
    double value = 0;
    if (cards.fields().size() != 3) cards.fail(TVK_ERROR_LINE_ENTRY_COUNT);
    if (cards.failure() || !cards.read_number(cards.fields()[2], value)) break;
    const int k = target.names->find(cards.fields()[1]);
    if (k < 0) {
      cards.unknown_name(cards.fields()[1], target.kind);
      continue;
    }
    target.values->resize(target.size, 0.0);
    (*target.values)[static_cast<std::size_t>(k)] = value;
  }
  cards.close();
  if (!cards.failure() && values.pi.empty() && values.dj.empty()) log.warning("Warning: No dual values.\n");
  return cards.failure();
}

}  // namespace tovik::fileio
