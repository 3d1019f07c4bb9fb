#include <charconv>
#include <cmath>

#include "fileio/network/file.h"
#include "fileio/network/notes.h"
#include "fileio/stream/number_text.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

constexpr std::size_t kIntegerText = 12;

char* put_integer(char* to, int value) {
  return std::to_chars(to, to + kIntegerText, value).ptr;
}

char* put_field(char* to, double value) {
  *to++ = ' ';
  return write_shortest(to, value);
}

char* put_bound(char* to, double bound) {
  if (std::fabs(bound) < kInfinity) return put_field(to, bound);
  return copy_text(to, bound > 0 ? " inf" : " -inf");
}

/* Other programs take -1 for "no upper bound"; an upper bound that is -1 must not look like that. */
char* put_upper(char* to, double lower, double upper) {
  if (upper == -1) return copy_text(to, " -1.0");
  return upper >= kInfinity && lower >= 0 ? copy_text(to, " -1") : put_bound(to, upper);
}

class NetworkWriter {
 public:
  NetworkWriter(const model::Network& network, TextWriter& out) : network_(network), out_(out) {}

  int write(std::string_view problem_name) {
    if (!problem_name.empty()) {
      start_note("problem ");
      put_note_text(out_, problem_name);
    }
    if (network_.objective_sense() < 0) {
      start_note("maximize\n");
    }
    out_.print("p min %d %d\n", network_.num_nodes(), network_.num_arcs());
    const int code = write_nodes();
    return code != 0 ? code : write_arcs();
  }

 private:
  void start_note(std::string_view kind) {
    out_.put(kNoteStart);
    out_.put(kind);
  }
  int write_nodes() const;
  int write_arcs() const;

  const model::Network& network_;
  TextWriter& out_;
};

int NetworkWriter::write_nodes() const {
  const std::span<const double> supply = network_.supply();
  const model::NameTable& names = network_.node_names();
  for (int i = 0; i < network_.num_nodes(); ++i) {
    const double value = supply[static_cast<std::size_t>(i)];
    if (!std::isfinite(value)) return TVK_ERROR_NUMBER_NOT_REPRESENTABLE;
    char* to = out_.room(2 * kIntegerText + kNumberText);
    if (!names.empty()) {
      to = put_integer(copy_text(copy_text(to, kNoteStart), "node "), i + 1);
      *to++ = ' ';
      out_.advance_to(to);
      put_note_text(out_, names.name(i));
      to = out_.room(kIntegerText + kNumberText);
    }
    if (value != 0) {
      to = put_field(put_integer(copy_text(to, "n "), i + 1), value);
      *to++ = '\n';
      out_.advance_to(to);
    }
  }
  return 0;
}

int NetworkWriter::write_arcs() const {
  const std::span<const int> tail = network_.tail(), head = network_.head();
  const std::span<const double> cost = network_.cost(), lower = network_.lower(), upper = network_.upper();
  const model::NameTable& names = network_.arc_names();
  const bool negate = network_.objective_sense() < 0;
  for (std::size_t a = 0; a < tail.size(); ++a) {
    if (!std::isfinite(cost[a]) || std::isnan(lower[a]) || std::isnan(upper[a]))
      return TVK_ERROR_NUMBER_NOT_REPRESENTABLE;
    if (!names.empty()) {
      out_.put(kNoteStart);
      out_.put("arc ");
      put_note_text(out_, names.name(static_cast<int>(a)));
    }
    char* to = copy_text(out_.room(3 * kIntegerText + 4 * kNumberText), "a ");
    to = put_integer(to, tail[a] + 1);
    *to++ = ' ';
    to = put_integer(to, head[a] + 1);
    to = put_bound(to, lower[a]);
    to = put_upper(to, lower[a], upper[a]);
    to = put_field(to, negate && cost[a] != 0 ? -cost[a] : cost[a]);
    *to++ = '\n';
    out_.advance_to(to);
  }
  return 0;
}

}  // namespace

int write_network(const model::Network& network, std::string_view problem_name, TextWriter& out) {
  return NetworkWriter(network, out).write(problem_name);
}

}  // namespace tovik::fileio
