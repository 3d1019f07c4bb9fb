#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "fileio/basis/card_file.h"
#include "fileio/stream/number.h"
#include "fileio/xml/solution_file.h"
#include "fileio/xml/xml_reader.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

constexpr std::size_t kFirstLook = std::size_t{1} << 16;

int status_of(std::string_view word) {
  constexpr std::string_view kWords[] = {"LL", "BS", "UL", "SB"};
  const auto found = std::ranges::find(kWords, word);
  return found == std::end(kWords) ? -1 : static_cast<int>(found - std::begin(kWords));
}

class Parser : public XmlReader {
 public:
  Parser(const model::Model& model, const SolutionReading& reading, ReaderLog& log,
         std::vector<SolutionFile>& solutions)
      : XmlReader(log), model_(model), reading_(reading), solutions_(solutions) {}

  int found() const { return found_; }

 private:
  enum class Part { none, rows, columns };
  struct Values : Identity {
    const char* value = nullptr;
    const char* dual = nullptr;
    const char* status = nullptr;
  };

  void start(std::string_view name, const XML_Char** attributes) override;
  void end(std::string_view name) override;
  void begin_solution();
  void keep_values();
  void header(const XML_Char** attributes);
  static Values values_of(const XML_Char** attributes);
  void variable(const Values& element);
  void constraint(const Values& element);
  int find(const Identity& element, const model::NameTable& names, int count, bool column);
  void note_met(std::vector<char>& met, int k, const Identity& element, bool column);
  bool counts() const { return depth_in_solution_ > 0 && (reading_.several || found_ - 1 == reading_.which); }

  const model::Model& model_;
  const SolutionReading& reading_;
  std::vector<SolutionFile>& solutions_;
  int found_ = 0;
  int depth_in_solution_ = 0;
  Part part_ = Part::none;
  std::vector<char> met_columns_, met_rows_;
  std::vector<double> spare_;  // where several solutions are read: a vector without values for the next one
  std::vector<int> columns_of_one_;  // met in the current solution
  std::int64_t kept_ = 0;            // what all solutions take, in values
};

void Parser::start(std::string_view name, const XML_Char** attributes) {
  if (depth_in_solution_ > 0) ++depth_in_solution_;
  if (name == "TOVIKSolution" && depth_in_solution_ == 0) {
    depth_in_solution_ = 1;
    ++found_;
    if (counts()) begin_solution();
    return;
  }
  if (!counts()) return;
  if (name == "header") return header(attributes);
  if (name == "linearConstraints") part_ = Part::rows;
  if (name == "variables") part_ = Part::columns;
  if (name == "variable" && part_ == Part::columns) variable(values_of(attributes));
  if (name == "constraint" && part_ == Part::rows && reading_.rows) constraint(values_of(attributes));
}

void Parser::end(std::string_view name) {
  if (depth_in_solution_ > 0 && --depth_in_solution_ == 0 && reading_.several) keep_values();
  if (name == "linearConstraints" || name == "variables") part_ = Part::none;
}

void Parser::begin_solution() {
  solutions_.emplace_back();
  SolutionFile& solution = solutions_.back();
  const auto columns = static_cast<std::size_t>(model_.num_columns());
  if (spare_.size() == columns) {
    solution.x.swap(spare_);
  } else {
    solution.x.assign(columns, kNoValue);
    met_columns_.assign(columns, 0);
  }
  if (!reading_.rows) return;
  const auto rows = static_cast<std::size_t>(model_.num_rows());
  solution.dj.assign(columns, kNoValue);
  solution.column_status.assign(columns, -1);
  solution.slack.assign(rows, kNoValue);
  solution.pi.assign(rows, kNoValue);
  solution.row_status.assign(rows, -1);
  met_rows_.assign(rows, 0);
}

/* What a solution takes is in proportion to what the file says of it. */
void Parser::keep_values() {
  constexpr std::int64_t kOfEach = 32;  // a solution without its values
  SolutionFile& solution = solutions_.back();
  std::ranges::sort(columns_of_one_);
  for (const int j : columns_of_one_) {
    const auto at = static_cast<std::size_t>(j);
    met_columns_[at] = 0;
    const double value = std::exchange(solution.x[at], kNoValue);
    if (value == kNoValue) continue;
    solution.values.index.push_back(j);
    solution.values.value.push_back(value);
  }
  columns_of_one_.clear();
  spare_ = std::exchange(solution.x, {});
  kept_ += kOfEach + static_cast<std::int64_t>(solution.values.index.size());
  if (solution.values.index.empty()) solutions_.pop_back();
  if (kept_ > kMaxEntries) failure_ = ReadFailure::plain(TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
}

/* A number of the header that readers can do without: NaN when it is none. */
double stated(const char* digits) {
  double value = 0;
  return parse_whole_number(digits, digits + std::strlen(digits), value) ? value : std::nan("");
}

int status_number(double number) {
  return number >= 0 && number <= 9999 ? static_cast<int>(number) : 0;
}

WriteLevel level_of(double number) {
  if (!(number >= 1 && number <= 4)) return WriteLevel::all;
  return static_cast<WriteLevel>(static_cast<int>(number));
}

void Parser::header(const XML_Char** attributes) {
  SolutionFile& solution = solutions_.back();
  for (; *attributes != nullptr; attributes += 2) {
    const std::string_view key = attributes[0];
    if (key == "solutionName") solution.name = text(attributes[1]);
    if (key == "objectiveValue") solution.objective = stated(attributes[1]);
    if (key == "solutionStatusValue") solution.status = status_number(stated(attributes[1]));
    if (key == "writeLevel") solution.level = level_of(stated(attributes[1]));
    if (key == "MIPStartEffortLevel") {
      const double effort = number(attributes[1], 0);
      solution.effort = effort >= 0 && effort <= 4 ? static_cast<int>(effort) : 0;
    }
  }
}

Parser::Values Parser::values_of(const XML_Char** attributes) {
  Values element;
  for (; *attributes != nullptr; attributes += 2) {
    const std::string_view key = attributes[0];
    if (key == "name") element.name = attributes[1];
    if (key == "index") element.index = attributes[1];
    if (key == "value" || key == "slack") element.value = attributes[1];
    if (key == "reducedCost" || key == "dual") element.dual = attributes[1];
    if (key == "status") element.status = attributes[1];
  }
  return element;
}

int Parser::find(const Identity& element, const model::NameTable& names, int count, bool column) {
  const int k = resolve(element, names, count, column);
  if (k < 0) ++solutions_.back().unknown;
  return k;
}

void Parser::note_met(std::vector<char>& met, int k, const Identity& element, bool column) {
  char& seen = met[static_cast<std::size_t>(k)];
  if (std::exchange(seen, char{1}) == 0) {
    if (column && reading_.several) columns_of_one_.push_back(k);
    return;
  }
  if (!column) {
    warn("Warning, line %d: repeated entry for index %d.\n", line(), k);
  } else if (element.name != nullptr && !model_.column_names().empty()) {
    warn("Warning, line %d: repeated entry for '%.255s'.\n", line(), text(element.name).c_str());
  } else {
    warn("Warning, line %d: repeated entry for variable index %d.\n", line(), k);
  }
}

/* Of repeated elements the last one counts. */
void Parser::variable(const Values& element) {
  const int j = find(element, model_.column_names(), model_.num_columns(), true);
  if (j < 0) return;
  note_met(met_columns_, j, element, true);
  SolutionFile& solution = solutions_.back();
  const auto at = static_cast<std::size_t>(j);
  solution.x[at] = number(element.value, kNoValue);
  if (!reading_.rows) return;
  solution.dj[at] = number(element.dual, kNoValue);
  solution.column_status[at] = element.status == nullptr ? -1 : status_of(element.status);
}

void Parser::constraint(const Values& element) {
  const int i = find(element, model_.row_names(), model_.num_rows(), false);
  if (i < 0) return;
  note_met(met_rows_, i, element, false);
  SolutionFile& solution = solutions_.back();
  const auto at = static_cast<std::size_t>(i);
  solution.slack[at] = number(element.value, kNoValue);
  solution.pi[at] = number(element.dual, kNoValue);
  solution.row_status[at] = element.status == nullptr ? -1 : status_of(element.status);
}

}  // namespace

ReadFailure read_solutions(ByteSource& source, const model::Model& model, const SolutionReading& reading,
                           ReaderLog& log, std::vector<SolutionFile>& solutions, int& found) {
  Parser parser(model, reading, log, solutions);
  ReadFailure failure = parser.run(source);
  found = parser.found();
  return failure;
}

ReadFailure read_start_text(ByteSource& source, const model::Model& model, ReaderLog& log,
                            SolutionFile& solution) {
  const CardNames columns(model.column_names());
  solution.x.assign(static_cast<std::size_t>(model.num_columns()), kNoValue);
  CardFile cards(source, log);
  while (cards.next()) {
    double value = 0;
    if (cards.fields().size() != 2) cards.fail(TVK_ERROR_LINE_ENTRY_COUNT);
    if (cards.failure() || !cards.read_number(cards.fields()[1], value)) break;
    const int j = columns.find(cards.fields()[0]);
    if (j < 0) {
      cards.unknown_name(cards.fields()[0], "a variable");
      ++solution.unknown;
      continue;
    }
    solution.x[static_cast<std::size_t>(j)] = value;
  }
  cards.close();
  return cards.failure();
}

bool looks_like_xml(PeekSource& source) {
  const std::string_view first = source.look(kFirstLook);
  const auto decides =
      std::ranges::find_if(first, [](char c) { return c == '<' || c == ' ' || (c >= '\t' && c <= '\r'); });
  return decides != first.end() && *decides == '<';
}

}  // namespace tovik::fileio
