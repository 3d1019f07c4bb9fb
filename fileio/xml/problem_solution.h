/* Solution and MIP-start files of a problem: the stored solution as a file says it, and what a file says
 * brought back as MIP starts of the problem or as a start, which the caller installs. */
#pragma once

#include <functional>
#include <vector>

#include "env/error.h"
#include "env/problem.h"
#include "fileio/xml/solution_file.h"

namespace tovik::fileio {

/* The stored solution: values, kind, status and basis, without measures of its quality. The report refers to
 * the problem. 1217 without a solution. */
Status describe_solution(const Environment& env, const Problem& problem, SolutionReport& report);
/* Codes of write_file() and write_solution(). */
Status write_solution_file(Environment& env, const Problem& problem, const SolutionReport& report,
                           const char* name);
/* One document for all of them, as solutions or as MIP starts. */
enum class SeveralAs { solutions, starts };
Status write_several_solutions(Environment& env, const Problem& problem, const char* name, SeveralAs form,
                               int count, const std::function<SolutionReport(int)>& report);
/* The level that the parameters ask for. */
WriteLevel write_level(const Environment& env);
/* MIP starts begin..end. 3020 there are none; 1200 with 1205 or 1206 for a range outside of them. */
Status write_start_file(Environment& env, const Problem& problem, const char* name, int begin, int end);

/* A file to read: its name, and the extension to try where the name has none. */
struct SolutionSource {
  const char* name;
  const char* extension;
};

/* The solutions of an XML document, or the one MIP start of a text; `found` tells how many the file holds.
 * 1423, 1219 for text without names of columns to compare with, those of the readers. */
Status read_solution_file(Environment& env, const Problem& problem, const SolutionSource& file,
                          const SolutionReading& reading, std::vector<SolutionFile>& solutions, int& found);

/* The first solution of a file: MIP starts of a mixed-integer problem; of others the basis and the values, as
 * far as they are complete, come back in `start`, which stays empty with a warning where nothing is. */
Status read_solution(Environment& env, Problem& problem, const char* name, Start& start);
/* MIP starts of a file, all or the first; a warning when no solution has a value. 3003 for a continuous
 * problem. */
Status read_starts(Environment& env, Problem& problem, const char* name, bool several);
/* Writes zeros for columns that the file's write level left out because they are 0. */
void fill_zeros(const Problem& problem, SolutionFile& solution);

}  // namespace tovik::fileio
