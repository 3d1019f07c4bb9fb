/* SAV and restart files between a problem and the disk: messages, the load, the start that comes with it. */
#pragma once

#include <string_view>

#include "env/error.h"
#include "env/problem.h"
#include "fileio/sav/file.h"

namespace tovik::fileio {

/* Reads an opened SAV file; its name becomes the problem's, its basis the starting basis, with a warning that tells
 * so. Codes: 1423, 1560, 1561, 1563, and those of the load and, while TVK_PARAM_DATACHECK is 1, of the
 * checks of contents; the problem is then as before. */
Status read_saved_problem(Environment& env, Problem& problem, ByteSource& source, const char* name);

/* Codes: 1421, 1422, 1562; the old file is then as before. */
Status write_saved_problem(Environment& env, const Problem& problem, const char* name);

/* The same with starting values, the solution and the norms of the file, which become the problem's, and with
 * the name that the problem was written under. A status that is none is 1563. */
Status read_restart(Environment& env, Problem& problem, const char* name);
/* The norms by basis position, and the basis that they belong to; both empty where there are none. */
Status write_restart(Environment& env, const Problem& problem, const Norms& norms, const char* name);

}  // namespace tovik::fileio
