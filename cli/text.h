/* Pieces of text that several reports are made of. */
#pragma once

#include <string>

namespace tovik::cli {

__attribute__((format(printf, 1, 2))) std::string format(const char* pattern, ...);

/* Edits (insert, delete, replace, swap neighbours) that turn one word into the other. */
std::size_t edit_distance(const std::string& a, const std::string& b);

/* "MILP" for TVK_PROBTYPE_MILP. */
std::string type_name(int type);

/* "1 row", "2 rows". */
std::string counted(long count, const char* word);

}  // namespace tovik::cli
