/* The files that a solve reads and writes beside the model. All are named on the command line; nothing else
 * is written. Errors: LibraryError; the console has then shown the text behind the file's name. */
#pragma once

#include "cli/solve/solve.h"

namespace tovik::cli {

/* Why the first of the files that are to be written cannot be, "FILE: No such file or directory"; "" when nothing speaks
 * against it. Asked before the solve: an answer that is nowhere written is lost. */
std::string unwritable_target(const Options& options);

/* Whether one of them is standard output, "-", which then belongs to it. */
bool writes_to_output(const Options& options);

/* The starting basis and the MIP start. */
void read_starts(const SolveContext& context, const Model& model);

/* The model as it is solved; the solution and the basis that were found. Each adds what it wrote to
 * outcome.written; where there is nothing to write the console says so. */
void write_model(const SolveContext& context, const Model& model, Outcome& outcome);
void write_results(const SolveContext& context, const Model& model, Outcome& outcome);

/* `tovik convert`: reads one model and writes it in another format. */
ExitStatus convert(const Environment& environment, const Options& options);

}  // namespace tovik::cli
