#include "fileio/basis/order_file.h"

#include <charconv>

#include "fileio/basis/card_file.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

constexpr int kLargestPriority = 2100000000;

bool read_priority(CardFile& cards, std::string_view field, int& priority) {
  const char* const end = field.data() + field.size();
  const auto parsed = std::from_chars(field.data(), end, priority);
  if (parsed.ec == std::errc::invalid_argument || parsed.ptr != end)
    return cards.fail(TVK_ERROR_LINE_NUMBER_CONVERSION, field);
  if (parsed.ec == std::errc::result_out_of_range || priority > kLargestPriority)
    return cards.fail(ReadFailure::at(TVK_ERROR_LINE_INTEGER_LIMIT, cards.line(), kLargestPriority));
  return priority >= 0 || cards.fail(ReadFailure::at(TVK_ERROR_PRIORITY_ENTRY, priority));
}

bool read_direction(CardFile& cards, std::string_view word, int& direction) {
  direction = starts_with_keyword(word, "UP") ? 1 : starts_with_keyword(word, "DN") ? -1 : 0;
  if (direction != 0 && word.size() == 2) return true;
  return cards.fail(
      ReadFailure::at(TVK_ERROR_LINE_DIRECTION, cards.line(), word[0], word.size() > 1 ? word[1] : ' '));
}

}  // namespace

void write_order(const WriteSource& source, ReaderLog& log, TextWriter& out) {
  const model::Model& model = source.model;
  const WriterNames columns =
      card_names(model.column_names(), model::kColumnFamily, model.num_columns(), log);
  out.put("NAME          " + title(source.name) + '\n');
  for (const model::OrderEntry& entry : model.families().order.entries()) {
    out.put(entry.direction > 0 ? " UP " : entry.direction < 0 ? " DN " : "    ");
    out.put(columns[entry.column]);
    out.print("  %d\n", entry.priority);
  }
  out.put("ENDATA\n");
}

ReadFailure read_order(ByteSource& source, const model::Model& model, ReaderLog& log,
                       std::vector<model::OrderEntry>& order) {
  const CardNames columns(model.column_names());
  std::vector<char> met(static_cast<std::size_t>(model.num_columns()), 0);
  CardFile cards(source, log);
  while (cards.next()) {
    const auto& fields = cards.fields();
    model::OrderEntry entry{};
    const bool directed = fields.size() == 3;
    if (!directed && fields.size() != 2) {
      cards.fail(TVK_ERROR_LINE_ENTRY_COUNT);
      break;
    }
    if (directed && !read_direction(cards, fields[0], entry.direction)) break;
    if (!read_priority(cards, fields.back(), entry.priority)) break;
    const std::string_view name = fields[fields.size() - 2];
    entry.column = columns.find(name);
    if (entry.column < 0) {
      cards.unknown_name(name, "a variable");
      continue;
    }
    char& seen = met[static_cast<std::size_t>(entry.column)];
    if (seen != 0) {
      cards.fail(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, cards.line(), "Order", name));
      break;
    }
    seen = 1;
    order.push_back(entry);
  }
  cards.close();
  return cards.failure();
}

}  // namespace tovik::fileio
