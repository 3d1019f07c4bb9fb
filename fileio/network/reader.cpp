#include <algorithm>
#include <limits>
#include <numeric>
#include <string>
#include <utility>

#include "fileio/network/fields.h"
#include "fileio/network/file.h"
#include "fileio/network/notes.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

using FieldStatus = NetworkFields::FieldStatus;

/* Nodes that a problem line may count although nothing in the file speaks of them. */
constexpr std::int64_t kSilentNodes = 1000000;

/* First capacity of the arcs: what the problem line says, as far as a file of that size can hold it. */
constexpr std::size_t kShortestArc = 12;  // bytes, "a 1 2 0 1 0\n"
constexpr std::size_t kFirstArcs = std::size_t{1} << 16;

/* Records of nodes in no order, after which they are looked through for the first time. */
constexpr std::size_t kFirstLook = std::size_t{1} << 16;

/* One file. Each function for a line returns false after a failure. */
class NetworkReader {
 public:
  NetworkReader(ByteSource& source, const ReadOptions& options, ReaderLog& log, model::NetworkData& data)
      : expected_size_(source.expected_size()), lines_(source, options.line_buffer), log_(log), data_(data) {}

  ReadFailure read() {
    while (lines_.next() && line()) {
    }
    if (!failure_) finish();
    return failure_;
  }

 private:
  struct NodeRecord {
    int node, line;
    double supply;
  };

  bool line();
  bool problem_line(NetworkFields& fields);
  bool node_line(NetworkFields& fields);
  bool check_nodes_come_once();
  bool arc_line(NetworkFields& fields);
  void note(std::string_view text);
  void finish();
  void set_supplies();

  bool node(NetworkFields& fields, int& node);
  bool accept(FieldStatus status);
  bool ended(const NetworkFields& fields) { return fields.at_end() || bad_line(); }
  bool bad_line() { return fail(ReadFailure::at(TVK_ERROR_BAD_CHARACTER, lines_.number())); }
  bool fail(ReadFailure failure) {
    failure_ = std::move(failure);
    return false;
  }
  bool inconsistent(int line, const std::string& reason) {
    log_.warn("Line %d:  %s\n", line, reason.c_str());
    return fail(ReadFailure::plain(TVK_ERROR_NETWORK_FILE_INCONSISTENT));
  }
  bool comes_twice(const NodeRecord& record) {
    return inconsistent(record.line, "Node " + std::to_string(record.node + 1) + " comes twice.");
  }
  std::string_view noted_name(std::string_view text);

  std::size_t expected_size_;
  LineReader lines_;
  ReaderLog& log_;
  model::NetworkData& data_;
  ReadFailure failure_;
  bool has_problem_line_ = false, maximize_ = false;
  int nodes_ = 0, arcs_ = 0;  // of the problem line
  std::vector<NodeRecord> node_records_;
  bool nodes_ascend_ = true;
  std::size_t look_at_ = kFirstLook;  // so many records: does a node come twice among them?
  CommentNames node_names_{'n'}, arc_names_{'a'};
  std::string text_;  // of the last note
  WarningLimit cut_names_;
};

bool NetworkReader::line() {
  const std::string_view text = lines_.line();
  if (text.starts_with('c')) {
    if (lines_.complete() && text.starts_with(kNoteStart)) note(text.substr(kNoteStart.size()));
    lines_.skip_rest_of_line();
    return true;
  }
  NetworkFields fields(text);
  if (fields.at_end() && lines_.complete()) return true;
  if (!lines_.complete()) return bad_line();
  const std::string_view kind = fields.field();
  if (kind.front() == 'c') return true;
  if (kind.size() != 1) return bad_line();
  fields.skip_field();
  switch (kind.front()) {
    case 'a':
      return arc_line(fields);
    case 'n':
      return node_line(fields);
    case 'p':
      return problem_line(fields);
    default:
      return bad_line();
  }
}

/* A line that ends too early is an unexpected end of the file when nothing follows it. */
bool NetworkReader::accept(FieldStatus status) {
  if (status == FieldStatus::value) return true;
  if (status == FieldStatus::bad) return bad_line();
  const int line = lines_.number();
  return fail(lines_.next() ? ReadFailure::at(TVK_ERROR_BAD_CHARACTER, line)
                            : ReadFailure::plain(TVK_ERROR_NETWORK_FILE_END));
}

bool NetworkReader::problem_line(NetworkFields& fields) {
  if (has_problem_line_ || !fields.at_word("min"))
    return fail(ReadFailure::plain(TVK_ERROR_NOT_MIN_COST_FLOW));
  fields.skip_field();
  std::int64_t nodes = 0, arcs = 0;
  if (!accept(fields.integer(nodes)) || !accept(fields.integer(arcs)) || !ended(fields)) return false;
  if (nodes < 0 || arcs < 0)
    return inconsistent(lines_.number(), "The problem line counts less than nothing.");
  if (nodes > kMaxEntries || arcs > kMaxEntries)
    return fail(ReadFailure::plain(TVK_ERROR_SIZE_LIMITS_TOO_LARGE));
  nodes_ = static_cast<int>(nodes);
  arcs_ = static_cast<int>(arcs);
  has_problem_line_ = true;
  const std::size_t room = std::max(kFirstArcs, expected_size_ / kShortestArc);
  const std::size_t first = std::min(static_cast<std::size_t>(arcs_), room);
  for (auto* ends : {&data_.tail, &data_.head}) ends->reserve(first);
  for (auto* values : {&data_.cost, &data_.lower, &data_.upper}) values->reserve(first);
  return true;
}

bool NetworkReader::node(NetworkFields& fields, int& node) {
  std::int64_t number = 0;
  if (!accept(fields.integer(number))) return false;
  if (number < 1 || number > nodes_) {
    return inconsistent(lines_.number(), "Node " + std::to_string(number) + " is not one of 1 to " +
                                             std::to_string(nodes_) + ".");
  }
  node = static_cast<int>(number - 1);
  return true;
}

bool NetworkReader::node_line(NetworkFields& fields) {
  if (!has_problem_line_) return fail(ReadFailure::plain(TVK_ERROR_NOT_MIN_COST_FLOW));
  NodeRecord record{0, lines_.number(), 0};
  if (!node(fields, record.node) || !accept(fields.number(record.supply)) || !ended(fields)) return false;
  if (!node_records_.empty() && record.node <= node_records_.back().node) nodes_ascend_ = false;
  if (!nodes_ascend_ && node_records_.size() >= look_at_) {
    look_at_ = 2 * node_records_.size();
    if (!check_nodes_come_once()) return false;
  }
  node_records_.push_back(record);
  return true;
}

bool NetworkReader::check_nodes_come_once() {
  std::vector<std::size_t> order(node_records_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [this](std::size_t k) { return node_records_[k].node; });
  std::size_t first = order.size();
  for (std::size_t k = 1; k < order.size(); ++k) {
    if (node_records_[order[k]].node == node_records_[order[k - 1]].node) first = std::min(first, order[k]);
  }
  return first == order.size() || comes_twice(node_records_[first]);
}

bool NetworkReader::arc_line(NetworkFields& fields) {
  if (!has_problem_line_) return fail(ReadFailure::plain(TVK_ERROR_NOT_MIN_COST_FLOW));
  int tail = 0, head = 0;
  double lower = 0, upper = 0, cost = 0;
  if (!node(fields, tail) || !node(fields, head) || !accept(fields.bound(lower))) return false;
  const bool minus_one = fields.at_word("-1");
  if (!accept(fields.bound(upper)) || !accept(fields.number(cost)) || !ended(fields)) return false;
  if (minus_one && lower >= 0) upper = kInfinity;
  if (data_.tail.size() == static_cast<std::size_t>(arcs_))
    return inconsistent(lines_.number(),
                        "More arcs than the " + std::to_string(arcs_) + " of the problem line.");
  data_.tail.push_back(tail);
  data_.head.push_back(head);
  data_.lower.push_back(lower);
  data_.upper.push_back(upper);
  data_.cost.push_back(cost);
  return true;
}

/* The name in a note, cut to the length that a name may have. */
std::string_view NetworkReader::noted_name(std::string_view text) {
  text_ = note_text(text);
  if (text_.size() > kMaxNameLength) {
    text_.resize(kMaxNameLength);
    if (cut_names_.admit())
      log_.warn("Line %d:  Name cut to %d characters.\n", lines_.number(), static_cast<int>(kMaxNameLength));
  }
  return text_;
}

void NetworkReader::note(std::string_view text) {
  if (text.ends_with('\r')) text.remove_suffix(1);
  if (text.find('\0') != std::string_view::npos) return;
  const std::size_t blank = std::min(text.find(' '), text.size());
  const std::string_view kind = text.substr(0, blank);
  std::string_view rest = text.substr(std::min(blank + 1, text.size()));
  if (kind == "arc") {
    arc_names_.add(static_cast<int>(data_.tail.size()), noted_name(rest));
  } else if (kind == "node") {
    int number = 0;
    const char* const end = rest.data() + rest.size();
    const auto parsed = std::from_chars(rest.data(), end, number);
    if (parsed.ec != std::errc() || number < 1 || number > kMaxEntries ||
        (parsed.ptr != end && *parsed.ptr != ' '))
      return;
    if (has_problem_line_ && number > nodes_) return;
    rest.remove_prefix(std::min(static_cast<std::size_t>(parsed.ptr - rest.data()) + 1, rest.size()));
    node_names_.add(number - 1, noted_name(rest));
  } else if (kind == "problem") {
    data_.problem_name = noted_name(rest);
  } else if (kind == "maximize" && rest.empty()) {
    maximize_ = true;
  }
}

void NetworkReader::set_supplies() {
  data_.supply.assign(static_cast<std::size_t>(nodes_), 0.0);
  std::vector<char> met(data_.supply.size(), 0);
  for (const NodeRecord& record : node_records_) {
    const auto node = static_cast<std::size_t>(record.node);
    if (met[node] != 0) {
      comes_twice(record);
      return;
    }
    met[node] = 1;
    data_.supply[node] = record.supply;
  }
}

void NetworkReader::finish() {
  if (!has_problem_line_ || data_.tail.size() < static_cast<std::size_t>(arcs_)) {
    fail(ReadFailure::plain(TVK_ERROR_NETWORK_FILE_END));
    return;
  }
  const std::size_t spoken_of = 2 * data_.tail.size() + node_records_.size() + node_names_.size();
  if (nodes_ > static_cast<std::int64_t>(spoken_of) + kSilentNodes) {
    inconsistent(lines_.number(), "The problem line counts far more nodes than the file speaks of.");
    return;
  }
  set_supplies();
  if (failure_) return;
  if (maximize_) {
    data_.objective_sense = -1;
    for (double& cost : data_.cost) cost = cost == 0 ? 0 : -cost;
  }
  data_.node_names = node_names_.collect(nodes_);
  data_.arc_names = arc_names_.collect(arcs_);
}

}  // namespace

ReadFailure read_network(ByteSource& source, const ReadOptions& options, ReaderLog& log,
                         model::NetworkData& data) {
  return NetworkReader(source, options, log, data).read();
}

}  // namespace tovik::fileio
