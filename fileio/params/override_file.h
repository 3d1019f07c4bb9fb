/* The parameter file that every environment reads when it is opened. */
#pragma once

namespace tovik {
struct Environment;
}

namespace tovik::fileio {

/* The file named by the process environment, if it names one, overrides the defaults. The environment's
 * screen output is switched on for the lines that tell, and is off afterwards. What is wrong with the file
 * stays unseen. */
void read_override_file(Environment& env);

}  // namespace tovik::fileio
