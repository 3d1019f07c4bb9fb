/* The LP writer: names for the file, and what else stands in it beside the items of the model. */
#include <cmath>
#include <string>

#include "fileio/lp_format/items.h"
#include "fileio/lp_format/names.h"
#include "fileio/record/model_writer.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace lp_format {
namespace {

constexpr std::string_view kRangePrefix = "Rg";

/* One kind of names: its generated letter, and its word in the announcement of generated names. */
struct Kind {
  char letter;
  const char* words;
};
constexpr Kind kColumns{'x', "variable names"}, kRows{'c', "row names"}, kSets{'s', "sos names"},
    kQuadratic{'q', "quadratic constraint names"}, kIndicators{'i', "indicator names"},
    kUserCuts{'u', "user cut names"}, kLazy{'l', "lazy constraint names"};

class Writer {
 public:
  Writer(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out)
      : source_(source),
        model_(source.model),
        families_(source.model.families()),
        options_(options),
        log_(log),
        items_(source.model, names_, out) {}

  int run() {
    name_everything();
    items_.header("\\Problem name: " + title(source_.name));
    items_.header("");
    items_.whole();
    return items_.finite() ? 0 : TVK_ERROR_NUMBER_NOT_REPRESENTABLE;
  }

 private:
  void name_everything();
  WriterNames names_of(const model::NameTable& table, Kind kind, int count, const NameRules& rules);
  void find_range_columns();

  const WriteSource& source_;
  const model::Model& model_;
  const model::Families& families_;
  const WriteOptions& options_;
  ReaderLog& log_;
  ItemNames names_;
  ItemWriter items_;
  bool rewritten_ = false;
};

WriterNames Writer::names_of(const model::NameTable& table, Kind kind, int count, const NameRules& rules) {
  if (options_.generic_names || count == 0) return WriterNames::generated(kind.letter, count);
  WriterNames names = WriterNames::from(table, kind.letter, count, rules);
  if (names.origin() == WriterNames::Origin::generated)
    log_.warn("Default %s %c1, %c2 ... being created.\n", kind.words, kind.letter, kind.letter);
  rewritten_ = rewritten_ || names.origin() == WriterNames::Origin::rewritten;
  return names;
}

void Writer::name_everything() {
  const bool minimize = model_.objective_sense() >= 0;
  const LpLabelRules label(Section::constraints);
  names_.columns = names_of(model_.column_names(), kColumns, model_.num_columns(), LpColumnRules());
  names_.rows = names_of(model_.row_names(), kRows, model_.num_rows(), label);
  names_.sets = names_of(families_.sets.names(), kSets, families_.sets.size(), LpNameRules());
  names_.quadratic =
      names_of(families_.quadratic_rows.names(), kQuadratic, families_.quadratic_rows.size(), label);
  names_.indicators = names_of(families_.indicators.names(), kIndicators, families_.indicators.size(), label);
  names_.user_cuts = names_of(families_.user_cuts.names(), kUserCuts, families_.user_cuts.size(), label);
  names_.lazy = names_of(families_.lazy_constraints.names(), kLazy, families_.lazy_constraints.size(), label);
  const std::string& own = model_.objective_name();
  const LpLabelRules objective_rules(minimize ? Section::minimize : Section::maximize);
  names_.objective =
      own.empty() || options_.generic_names ? "obj" : single_name(own, objective_rules, rewritten_);
  if (rewritten_) log_.warning("Warning:  Output names have been modified to conform to LP format.\n");
  find_range_columns();
}

/* A ranged row becomes an equation with a bounded column of its own where the name of that column is free. */
void Writer::find_range_columns() {
  if (!model_.has_ranges()) return;
  NameTable taken;
  for (int j = 0; j < names_.columns.size(); ++j) {
    if (names_.columns[j].starts_with(kRangePrefix)) taken.intern(names_.columns[j]);
  }
  names_.range_columns.resize(static_cast<std::size_t>(model_.num_rows()));
  for (int i = 0; i < model_.num_rows(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (model_.sense()[at] != 'R' || !(std::fabs(model_.range()[at]) < kInfinity)) continue;
    const std::string name = std::string(kRangePrefix) + std::string(names_.rows[i]);
    if (name.size() <= kMaxNameLength && taken.find(name) == NameTable::kNone)
      names_.range_columns[at] = name;
  }
}

}  // namespace
}  // namespace lp_format

int write_lp(const WriteSource& source, const WriteOptions& options, ReaderLog& log, TextWriter& out) {
  return lp_format::Writer(source, options, log, out).run();
}

}  // namespace tovik::fileio
