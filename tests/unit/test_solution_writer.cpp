/* Solution files of problems that no optimizer of the library solves yet: what the writer says of the slacks
 * of indicator and quadratic constraints. */
#include <gtest/gtest.h>

#include "fileio/xml/solution_file.h"
#include "model/store/load.h"
#include "support/text_sink.h"

namespace {

using namespace tovik;
using namespace tovik::fileio;

/* Columns x y b: b = 1 -> x + y <= 4, b = 0 -> x >= 1, x y + 2 x^2 + y <= 20. */
model::Model sample() {
  model::ModelData data;
  data.objective = data.lower = {0, 0, 0};
  data.upper = {9, 9, 1};
  data.types = {'C', 'C', 'B'};
  data.start = {0, 0, 0, 0};
  const int both[] = {0, 1};
  const double ones[] = {1, 1};
  model::Families& families = data.families;
  families.indicators.add({{{both, ones, 2}, 'L', 4, nullptr}, 2, false});
  families.indicators.add({{{both, ones, 1}, 'G', 1, nullptr}, 2, true});
  const model::QuadraticTerm terms[] = {{0, 1, 1}, {0, 0, 2}};
  families.quadratic_rows.add({{{both + 1, ones, 1}, 'L', 20, "q<"}, terms});
  return model::Model(std::move(data));
}

TEST(SolutionWriter, SlacksOfIndicatorAndQuadraticConstraints) {
  const model::Model model = sample();
  Solution solution;
  solution.x = {2, 3, 1};
  SolutionReport report;
  report.solution = &solution;
  report.mixed_integer = true;
  support::TextSink sink;
  TextWriter out(sink);
  ASSERT_EQ(write_solution({model, "p"}, report, out), 0);
  ASSERT_TRUE(out.close());
  EXPECT_NE(sink.text.find(" </linearConstraints>\n"
                           " <indicatorConstraints>\n"
                           "  <constraint index=\"0\" slack=\"-1\"/>\n"
                           "  <constraint index=\"1\" slack=\"1e+20\"/>\n"
                           " </indicatorConstraints>\n"
                           " <quadraticConstraints>\n"
                           "  <constraint name=\"q&lt;\" index=\"0\" slack=\"3\"/>\n"
                           " </quadraticConstraints>\n"
                           " <variables>\n"),
            std::string::npos)
      << sink.text;
}

}  // namespace
