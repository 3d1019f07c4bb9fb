/* Writing a problem to a file of any format: choice of the format and of the names. */
#pragma once

#include <string_view>

#include "env/error.h"

namespace tovik {
struct Problem;
}

namespace tovik::fileio {

enum class WriteFormat { unknown, lp, generic_lp, mps, generic_mps, sav };

/* LP, RLP, MPS, RMP, REW, SAV as prefixes in either case, of at most three characters. */
WriteFormat write_format_of_type(std::string_view type);
/* By the extension; of a compressed name by the one before. */
WriteFormat write_format_of_name(std::string_view name);

/* `type` may be null: then the name decides. Codes: 1421, 1422, 1424, 1650, 1803; of SAV files 1562 in place
 * of 1803. */
Status write_problem(Environment& env, const Problem& problem, const char* name, const char* type);
Status write_problem(Environment& env, const Problem& problem, const char* name, WriteFormat format);

}  // namespace tovik::fileio
