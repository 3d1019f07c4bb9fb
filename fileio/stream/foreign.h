/* What a file that a reader refused seems to be, told by the form of its first bytes: a solution of another program, an HTML
 * page, a model where a solution is wanted. A hint for people, never a decision. */
#pragma once

#include <string>
#include <string_view>

#include "env/environment.h"

namespace tovik::fileio {

enum class Wanted { model, solution };

/* "an XML solution file of another program (its first element is 'Answer')"; empty where the form tells nothing. */
std::string seems_to_be(std::string_view head, Wanted wanted);

/* Says on the warning channel what the file seems to be. Only regular files are looked at once more. */
void tell_what_it_seems(Environment& env, const char* name, Wanted wanted);

}  // namespace tovik::fileio
