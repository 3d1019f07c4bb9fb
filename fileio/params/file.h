/* Parameter files: a header line with the library's version, then one line for each parameter that differs
 * from its default, by name (by number where it has none). '#' outside of double quotes begins a comment.
 *
 * Reading first takes the whole file, trying each setting on a set of parameters of its own, and changes the
 * environment only when all of it is sound. */
#pragma once

#include "env/error.h"

namespace tovik {
struct Environment;
}

namespace tovik::fileio {

/* What to leave out of a file beyond what is never written. */
enum class Omitted { nothing, screen_and_callback_form };

/* Codes: 1421, 1422, 1803. */
Status write_parameter_file(Environment& env, const char* name, Omitted omitted);

/* Every parameter gets its default and then what the file says. Codes: 1421, 1423, 1434, 1660, 1661, those of
 * the parameter routines. */
Status read_parameter_file(Environment& env, const char* name);

}  // namespace tovik::fileio
