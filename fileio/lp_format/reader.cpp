/* The reader of the row-oriented, algebraic LP text format: the order of the sections. */
#include <optional>

#include "fileio/lp_format/bounds.h"
#include "fileio/lp_format/constraints.h"
#include "fileio/lp_format/expression.h"
#include "fileio/lp_format/lists.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace lp_format {
namespace {

class Reader {
 public:
  Reader(ByteSource& source, const ReadOptions& options, Messages& messages)
      : messages_(messages),
        scanner_(source, options.line_buffer, messages),
        builder_(options, source.expected_size(), messages),
        expressions_(scanner_, builder_, messages),
        constraints_(scanner_, builder_, messages, options.rows_end_with_line),
        bounds_(scanner_, builder_, messages),
        types_(scanner_, builder_, messages),
        sets_(scanner_, builder_, messages) {}

  bool read(FileModel& model);

 private:
  bool read_section(Section section);
  bool read_objective(int sense);

  Messages& messages_;
  Scanner scanner_;
  Builder builder_;
  ExpressionReader expressions_;
  ConstraintReader constraints_;
  BoundReader bounds_;
  TypeReader types_;
  SetReader sets_;
  Expression objective_;
};

bool Reader::read(FileModel& model) {
  const bool content = scanner_.more();
  if (messages_.failed()) return false;
  std::optional<Section> section = scanner_.open_next_section();
  if (content || (section != Section::minimize && section != Section::maximize)) {
    return messages_.fail(ReadFailure::plain(TVK_ERROR_NO_OBJECTIVE_SENSE));
  }
  for (; section && section != Section::end; section = scanner_.open_next_section()) {
    if (!read_section(*section)) return false;
  }
  if (!section) messages_.log().warning("Warning: 'End' missing.\n");
  builder_.finish(model);
  messages_.count_suppressed();
  return true;
}

bool Reader::read_section(Section section) {
  switch (section) {
    case Section::minimize:
      return read_objective(1);
    case Section::maximize:
      return read_objective(-1);
    case Section::constraints:
    case Section::user_cuts:
    case Section::lazy_constraints:
      return constraints_.read_section(section);
    case Section::bounds:
      return bounds_.read_section();
    case Section::integers:
    case Section::binaries:
    case Section::generals:
    case Section::semicontinuous:
      return types_.read_section(section);
    case Section::sets:
      return sets_.read_section();
    case Section::none:
    case Section::end:
      break;
  }
  return true;
}

/* A second header is accepted only while the objective is still empty. */
bool Reader::read_objective(int sense) {
  if (builder_.has_objective()) {
    return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, scanner_.line(), "objective",
                                          builder_.objective_name()));
  }
  builder_.set_objective_sense(sense);
  ExpressionReader::Rules rules;
  rules.place = Place::objective;
  if (expressions_.read(rules, objective_) == ExpressionReader::Stop::failed) return false;
  if (expressions_.is_dangling()) {
    messages_.log().warn_dropped("Warning, line %d: Objective ended unexpectedly.\n", scanner_.line());
  }
  const bool empty = expressions_.label().empty() && objective_.columns.empty() &&
                     objective_.quadratic.empty() && objective_.constant == 0;
  return empty || builder_.set_objective(expressions_.label(), objective_, expressions_.last_line());
}

}  // namespace
}  // namespace lp_format

ReadFailure read_lp(ByteSource& source, const ReadOptions& options, ReaderLog& log, FileModel& model) {
  lp_format::Messages messages(log);
  lp_format::Reader reader(source, options, messages);
  reader.read(model);
  return messages.take_failure();
}

}  // namespace tovik::fileio
