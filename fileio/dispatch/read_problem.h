/* Reading a model file of any format into a problem: choice of the format, reading, loading.
 *
 * The file is read completely and its data made ready beside the problem; the problem changes only by the
 * final load, so a failure of any kind leaves it as it was. */
#pragma once

#include <string_view>

#include "env/error.h"
#include "fileio/record/model_reader.h"

namespace tovik {
struct Problem;
}

namespace tovik::fileio {

enum class Format { unknown, lp, mps, sav, network };

Format format_of_type(std::string_view type);  // LP, MPS, SAV, MIN, NET, each as a prefix in either case
/* "NET" or "MIN", in either case. */
bool is_network_type(std::string_view type);
Format format_of_name(std::string_view name);  // by extension, one compression suffix aside
Format format_of_first_byte(char byte);

/* `type` may be null: then the name, and where that tells nothing the file's first byte, chooses the format.
 * The file name becomes the problem's name. Codes: 1421, 1423, 1424, those of the readers and of the load;
 * 1018, 1031 and 1022 for a file whose model needs what a problem object does not hold. */
Status read_problem(Environment& env, Problem& problem, const char* name, const char* type);

/* Reads an LP model from standard input in a dialogue (fileio/lp_format/dialogue.h) with prompts on the
 * results channel. The problem's name becomes "<stdin>". Codes as above. */
Status read_problem_from_stdin(Environment& env, Problem& problem);

}  // namespace tovik::fileio
