#include "cli/outcome.h"

#include <sys/resource.h>

#include <cstdio>
#include <cstring>

#include "tovik.h"

namespace tovik::cli {

bool is_optimal(int status) {
  switch (status) {
    case TVK_STATUS_OPTIMAL:
    case TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE:
    case TVK_STATUS_OPTIMAL_FACE_UNBOUNDED:
    case TVK_STATUS_MIP_OPTIMAL:
    case TVK_STATUS_MIP_OPTIMAL_TOLERANCE:
    case TVK_STATUS_MIP_OPTIMAL_UNSCALED_INFEASIBLE:
    case TVK_STATUS_ALL_SOLUTIONS_FOUND:
    case TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE:
      return true;
    default:
      return false;
  }
}

ExitStatus exit_status_of(int status, bool feasible) {
  if (is_optimal(status)) return ExitStatus::solved;
  if (status == TVK_STATUS_POPULATE_SOLUTION_LIMIT) return ExitStatus::solved;  // as many as asked for
  switch (status) {
    case TVK_STATUS_INFEASIBLE:
    case TVK_STATUS_MIP_INFEASIBLE:
      return ExitStatus::infeasible;
    case TVK_STATUS_UNBOUNDED:
    case TVK_STATUS_MIP_UNBOUNDED:
      return ExitStatus::unbounded;
    case TVK_STATUS_UNBOUNDED_OR_INFEASIBLE:
    case TVK_STATUS_MIP_INFEASIBLE_OR_UNBOUNDED:
      return ExitStatus::infeasible_or_unbounded;
    case TVK_STATUS_USER_ABORT:  // the user's interrupt: nothing else aborts here
    case TVK_STATUS_MIP_USER_ABORT:
    case TVK_STATUS_MIP_USER_ABORT_NO_SOLUTION:
      return feasible ? ExitStatus::limit_with_solution : ExitStatus::interrupted;
    case TVK_STATUS_NONE:
    case TVK_STATUS_NON_OPTIMAL:
    case TVK_STATUS_MIP_ERROR:
    case TVK_STATUS_MIP_ERROR_NO_SOLUTION:
    case TVK_STATUS_MIP_ERROR_TREE:
    case TVK_STATUS_MIP_ERROR_NO_SOLUTION_NO_TREE:
      return ExitStatus::numerical_failure;
    default:
      return feasible ? ExitStatus::limit_with_solution : ExitStatus::limit_without_solution;
  }
}

ExitStatus exit_status_of_read_error(int code) {
  return code == TVK_ERROR_OUT_OF_MEMORY ? ExitStatus::out_of_memory : ExitStatus::bad_input;
}

ExitStatus exit_status_of_solve_error(int code) {
  switch (code) {
    case TVK_ERROR_OUT_OF_MEMORY:
      return ExitStatus::out_of_memory;
    case TVK_ERROR_NOT_FOR_MIP:
    case TVK_ERROR_NOT_MIP:
    case TVK_ERROR_NOT_FOR_QP:
    case TVK_ERROR_NOT_FOR_QCP:
      return ExitStatus::usage;
    default:
      return ExitStatus::numerical_failure;
  }
}

ExitStatus exit_status_of_write_error(int code) {
  return code == TVK_ERROR_OUT_OF_MEMORY ? ExitStatus::out_of_memory : ExitStatus::usage;
}

ExitStatus with_exit_zero(ExitStatus status) {
  const int code = static_cast<int>(status);
  return code == 1 || (code >= 3 && code <= 6) ? ExitStatus::solved : status;
}

double peak_memory_mb() {
  /* The kernel's own mark for this program: the resource usage also counts the process that started it. */
  double kilobytes = 0;
  if (FILE* file = std::fopen("/proc/self/status", "r")) {
    char line[256];
    while (std::fgets(line, sizeof line, file) != nullptr) {
      if (std::strncmp(line, "VmHWM:", 6) == 0) std::sscanf(line + 6, "%lf", &kilobytes);
    }
    std::fclose(file);
  }
  if (kilobytes == 0) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    kilobytes = static_cast<double>(usage.ru_maxrss);
  }
  return kilobytes / 1024;
}

}  // namespace tovik::cli
