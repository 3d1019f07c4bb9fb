#include "fileio/mps/rim.h"
#include "include/tovik.h"

#include <cmath>

namespace tovik::fileio::mps {

void ChosenSet::choose(Context& context, const Field& name) {
  if (chosen_) return;
  chosen_ = true;
  file_name_ = name.view();
  name_ = file_name_;
  if (name_.empty() && std::string_view(word_) == "RHS") {
    if (context.model.columns.find("rhs") == NameTable::kNone) {
      name_ = "rhs";
      context.log.warning("Warning:  Blank RHS name changed to 'rhs'.\n");
    } else {
      context.log.warning("Warning:  Blank RHS name unchanged.  Column with name 'rhs' already exists.\n");
    }
  }
  context.log.print("Selected %-10s name:  %.255s\n", word_, name_.c_str());
}

void ChosenSet::skip(Context& context) {
  if (!warned_more_)
    context.log.warn("Warning:  More than one %s set specified. Only the first set is used.\n", word_);
  warned_more_ = true;
}

RimSection::RimSection(Context& context, RowDirectory& rows, Kind kind)
    : context_(context), rows_(rows), kind_(kind), set_(kind == Kind::rhs ? "RHS" : "range") {}

bool RimSection::record(const Record& record) {
  Resolved resolved{};
  Pairs pairs;
  ParseError why;
  const auto attempt = [&](const Pairs& read, ParseError& error) { return resolve(read, resolved, error); };
  if (!try_readings(record, rows_.reading_cards(), Naming::optional, attempt, pairs, why))
    return why.report(context_, record.line);
  if (has_blank_name(pairs)) rows_.read_cards();
  if (!resolved.counts) {
    set_.skip(context_);
    return true;
  }
  set_.choose(context_, pairs.name);
  for (std::size_t pair = 0; pair < static_cast<std::size_t>(pairs.count); ++pair) {
    if (pairs.value[pair].empty()) context_.empty_number_read();
    if (!apply(resolved.row[pair].id, resolved.value[pair], record.line)) return false;
  }
  return true;
}

/* Lines of other sets are not looked into, unless the set has no name: then rows must show that this is what
 * it is. */
bool RimSection::resolve(const Pairs& pairs, Resolved& resolved, ParseError& why) const {
  resolved.counts = set_.counts(pairs.name);
  if (!resolved.counts && !pairs.name.empty()) return true;
  for (std::size_t pair = 0; pair < static_cast<std::size_t>(pairs.count); ++pair) {
    resolved.row[pair] = rows_.find(pairs.row[pair]);
    resolved.value[pair] = 0;
    if (!resolved.row[pair]) {
      why = {TVK_ERROR_LINE_NOT_A_ROW, pairs.row[pair]};
      return false;
    }
    const Field& number = pairs.value[pair];
    if (!number.empty() && !read_number(number, Infinite::accepted, resolved.value[pair], why)) return false;
  }
  return true;
}

bool RimSection::apply(std::int32_t row, double value, int line) {
  if (rows_.is_objective(row)) {
    if (objective_warnings_.admit())
      context_.log.warn("Warning, line %d:  OBJ coefficient in %s section ignored.\n", line,
                        kind_ == Kind::rhs ? "RHS" : "RANGES");
    return true;
  }
  if (row < 0) {
    if (free_row_warnings_.admit())
      context_.log.warn("Warning:  %s '%.255s' value for free row '%.255s' ignored.\n", set_.word(),
                        set_.name().c_str(), std::string(rows_.text_of(row)).c_str());
    return true;
  }
  const auto i = static_cast<std::size_t>(row);
  if (given_.empty()) given_.assign(context_.model.rhs.size(), false);
  if (given_[i]) {
    repeats_.add(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, line, set_.word(), rows_.text_of(row)));
    return true;
  }
  given_[i] = true;
  if (kind_ == Kind::rhs) {
    context_.model.rhs[i] = value;
  } else {
    if (rows_.kind_of(row) != RowKind::linear) return context_.fail(TVK_ERROR_LINE_LAZY_OR_CUT, line);
    set_range(i, value);
  }
  return true;
}

/* An infinite range leaves one side only. */
void RimSection::set_range(std::size_t row, double value) {
  char& sense = context_.model.sense[row];
  double& range = context_.model.range[row];
  const bool infinite = std::fabs(value) >= kInfinity;
  if (sense == 'E') {
    if (value == 0) return;
    sense = !infinite ? 'R' : value > 0 ? 'G' : 'L';
    if (!infinite) range = value;
  } else if (!infinite) {
    range = sense == 'G' ? std::fabs(value) : 0.0 - std::fabs(value);
    sense = 'R';
  }
}

bool RimSection::close() {
  if (objective_warnings_.suppressed() > 0)
    context_.log.warn("%d OBJ warnings not printed.\n", objective_warnings_.suppressed());
  return !repeats_.any() || repeats_.report(context_);
}

}  // namespace tovik::fileio::mps
