/* Doubles as text, independent of the locale. Each function writes at most kNumberText bytes to `to` and
 * returns the end of the text. Values that are not finite come out as nan, inf or -inf; writers of files that
 * cannot hold them refuse them beforehand. */
#pragma once

#include <cstddef>

namespace tovik::fileio {

inline constexpr std::size_t kNumberText = 32;

/* As few digits as read back as the same value: 3, 0.1, 1e+20, 5e-324. */
char* write_shortest(char* to, double value);

/* At most 15 significant digits, as printf's %.15g has them; a value that fewer digits denote gets those. */
char* write_general15(char* to, double value);

/* The form of printf's %.<digits>e, digits from 0 to 20. */
char* write_exponent(char* to, double value, int digits);

/* As many significant digits as fit into `width` columns (8 or more), rounded to nearest. */
char* write_fitting(char* to, double value, int width);

}  // namespace tovik::fileio
