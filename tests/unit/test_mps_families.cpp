/* What the MPS reader makes of the families beyond rows and columns, and that its result does not depend
 * on how the bytes arrive. */
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "fileio/record/model_reader.h"

namespace {

using namespace tovik::fileio;

class KeepingLog final : public ReaderLog {
 public:
  void warning(std::string_view line) override { text += line; }
  void result(std::string_view line) override { text += line; }
  std::string text;
};

/* Hands out at most `step` bytes at a time. */
class SteppedSource final : public ByteSource {
 public:
  SteppedSource(std::string_view bytes, std::size_t step) : bytes_(bytes), step_(step) {}
  std::size_t read(char* buffer, std::size_t capacity) override {
    return bytes_.read(buffer, std::min(capacity, step_));
  }
  bool finish() override { return true; }

 private:
  MemorySource bytes_;
  std::size_t step_;
};

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", value);
  return text;
}

std::string terms(const FileModel& model, const SparseTerms& sparse) {
  std::string text;
  for (std::size_t k = 0; k < sparse.index.size(); ++k)
    text += ' ' + std::string(model.columns.name(sparse.index[k])) + ':' + number(sparse.value[k]);
  return text;
}

std::string row(const FileModel& model, const NamedRow& r) {
  return r.name + ' ' + r.sense + ' ' + number(r.rhs) + terms(model, r.terms);
}

std::string quadratic(const FileModel& model, const std::vector<QuadraticTerm>& list) {
  std::string text;
  for (const QuadraticTerm& t : list)
    text += ' ' + std::string(model.columns.name(t.column)) + '*' + std::string(model.columns.name(t.other)) +
            ':' + number(t.value);
  return text;
}

/* Rows and columns as counts, then a line per member of each family. */
std::string describe(const FileModel& model) {
  std::string text =
      std::to_string(model.rows.size()) + " rows, " + std::to_string(model.index.size()) + " entries:";
  for (int i = 0; i < model.rows.size(); ++i) text += ' ' + std::string(model.rows.name(i));
  for (std::size_t k = 0; k < model.index.size(); ++k)
    text += ' ' + std::to_string(model.index[k]) + '=' + number(model.value[k]);
  text += "\n";
  if (!model.quadratic_objective.empty())
    text += "objective" + quadratic(model, model.quadratic_objective) + "\n";
  for (const QuadraticRow& q : model.quadratic_rows)
    text += "quadratic " + row(model, q.linear) + " |" + quadratic(model, q.quadratic) + "\n";
  for (const IndicatorRow& i : model.indicators)
    text += "if " + std::string(model.columns.name(i.column)) + (i.active_at_one ? " " : " not ") +
            row(model, i.row) + "\n";
  for (const SpecialOrderedSet& s : model.sets)
    text += "set " + s.name + ' ' + s.type + terms(model, s.members) + "\n";
  for (const NamedRow& r : model.user_cuts) text += "cut " + row(model, r) + "\n";
  for (const NamedRow& r : model.lazy_constraints) text += "lazy " + row(model, r) + "\n";
  return text;
}

const std::string kRows = "NAME\nROWS\n N o\n L a\n G b\n E c\n";
const std::string kColumns = "COLUMNS\n x a 1 b 2\n x c 3\n y a 4 c 5\n z b 6\n";
const std::string kPlain = "3 rows, 6 entries: a b c 0=1 1=2 2=3 0=4 2=5 1=6\n";

struct Case {
  const char* what;
  std::string text;
  std::string families;
  std::string log = {};
};

const Case kCases[] = {
    {"full objective matrix: half the squares, each pair once",
     kRows + kColumns + "QMATRIX\n x x 2\n x y 3\n y x 3\n z z -1\nENDATA\n",
     kPlain + "objective x*x:1 x*y:3 z*z:-0.5\n"},
    {"half the objective matrix, either half, two entries a line",
     kRows + kColumns + "QUADOBJ\n y x 3 z 0\n x x 2\nENDATA\n", kPlain + "objective x*x:1 x*y:3\n"},
    {"quadratic rows leave the linear ones and take their coefficients along",
     kRows + kColumns + "RHS\n r a 7 c 8\nQCMATRIX b\n x y 1\n y x 1\nQCMATRIX   a\n z z 2\nENDATA\n",
     "1 rows, 2 entries: c 0=3 0=5\nquadratic b G 0 x:2 z:6 | x*y:2\nquadratic a L 7 x:1 y:4 | z*z:2\n"},
    {"indicators in their own order, doubtful bounds told",
     kRows + kColumns +
         "RHS\n r c 8\nBOUNDS\n UP bd y 1\n FX bd z 2\nINDICATORS\n IF c y 1\n IF a z 0\n if b x 1\nENDATA\n",
     "0 rows, 0 entries:\nif y c E 8 x:3 y:5\nif z not a L 0 x:1 y:4\nif x b G 0 x:2 z:6\n",
     "Warning: indicator variable 'z' is fixed to other than 0.0 or 1.0.\n"
     "Warning: indicator variable 'x' has upper bound other than 1.0.\n"},
    {"user cuts and lazy constraints among the rows",
     kRows + "USERCUTS\n L u\nLAZYCONS\n G v\n E w\n" + kColumns +
         " z u 7 v 8\n z w 9\nRHS\n r v 1 a 2\nENDATA\n",
     kPlain + "cut u L 0 z:7\nlazy v G 1 z:8\nlazy w E 0 z:9\n"},
    {"sets in their own section",
     kRows + kColumns + "SOS\n S1 one 3\n    x 1\n    one y 2\n s2\n    z 0.5\nENDATA\n",
     kPlain + "set one 1 x:1 y:2\nset  2 z:0.5\n"},
    {"sets by markers: weights from the reference row, or positions",
     "NAME\nREFROW\n b\n" + kRows.substr(5) +
         "COLUMNS\n S2 s 'MARKER' 'SOSORG'\n x a 1 b 2\n x c 3\n y a 4 c 5\n"
         " s 'MARKER' 'SOSEND'\n t 'MARKER' 'SOSORG'\n z b 6\n t 'MARKER' 'SOSEND'\nENDATA\n",
     kPlain + "set s 2 x:2 y:2\nset t 1 z:6\n"},
};

TEST(MpsFamilies, ReachTheFileModel) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.what);
    for (const std::size_t step : {std::size_t{1}, std::size_t{7}, std::size_t{1000}}) {
      SteppedSource source(c.text, step);
      KeepingLog log;
      FileModel model;
      const ReadFailure failure = read_mps(source, {}, log, model);
      ASSERT_EQ(failure.code, 0) << failure.first << ' ' << failure.text;
      EXPECT_EQ(describe(model), c.families);
      const std::size_t warnings = log.text.find("Warning");
      EXPECT_EQ(warnings == std::string::npos ? "" : log.text.substr(warnings), c.log);
    }
  }
}

/* Whatever the bytes, a failure or a model, and the lines told, are the same however they arrive. */
TEST(MpsBytes, LeadToTheSameResultHoweverTheyArrive) {
  std::string text = kRows + "USERCUTS\n L u\n" + kColumns +
                     "RHS\n r a 7\nBOUNDS\n UP bd y -1\n* comment\n MI bd z\nENDATA\n";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    std::string first;
    for (const std::size_t step : {std::size_t{1}, std::size_t{13}, std::size_t{4096}}) {
      SteppedSource source(std::string_view(text).substr(0, length), step);
      KeepingLog log;
      FileModel model;
      const ReadFailure failure = read_mps(source, {}, log, model);
      const std::string outcome = log.text + std::to_string(failure.code) + ' ' +
                                  std::to_string(failure.first) + failure.text +
                                  (failure ? "" : describe(model));
      if (step == 1) first = outcome;
      EXPECT_EQ(outcome, first) << "the first " << length << " bytes";
    }
  }
}

}  // namespace
