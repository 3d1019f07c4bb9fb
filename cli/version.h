/* The commit that the program was built from, made at each build by cmake/write_commit.cmake. */
#pragma once

namespace tovik::cli {

extern const char* const kCommit;  // "unknown" outside a checkout

}  // namespace tovik::cli
