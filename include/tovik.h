/* TOVIK: a callable optimization library. Public interface; valid C99 and C++.
 *
 * Every routine returns 0 for success or a positive error code (TVKgeterrorstring gives its text), except where it says
 * otherwise. All indices count from 0; ranges begin..end are inclusive. */
#ifndef TOVIK_H
#define TOVIK_H

#include <stddef.h>
#include <stdio.h>

#if defined(__GNUC__)
#define TVK_API __attribute__((visibility("default")))
#else
#define TVK_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Where to look for what:
 *   begin and end         TVKopenTOVIK, TVKcloseTOVIK, TVKcreateprob, TVKcloneprob, TVKfreeprob
 *   a model, at once      TVKreadcopyprob, TVKcopylp, TVKcopylpwnames; TVKgetreadwarnings
 *   ... and in pieces     TVKnewcols, TVKnewrows, TVKaddcols, TVKaddrows, TVKchgcoef, TVKchgbds, TVKchgobj, TVKchgrhs
 *   integers and more     TVKcopyctype, TVKaddsos, TVKEaddindconstr, TVKaddlazyconstraints, TVKaddusercuts, TVKaddmipstarts
 *   solve                 TVKlpopt, TVKdualopt, TVKprimopt, TVKsiftopt, TVKbaropt; TVKmipopt; TVKNETprimopt; TVKpresolve
 *   many solutions        TVKpopulate, TVKgetsolnpoolnumsolns, TVKgetsolnpoolobjval, TVKgetsolnpoolx, TVKsolwritesolnpoolall,
 *                         TVKaddsolnpooldivfilter, TVKaddsolnpoolrngfilter
 *   the answer            TVKgetstat, TVKsolution, TVKgetobjval, TVKgetx, TVKgetpi, TVKgetdj, TVKgetslack, TVKsolninfo
 *   why there is none     TVKgetfarkas, TVKgetray, TVKgetquality, TVKgetrowinfeas, TVKgetcolinfeas
 *   what if               TVKgetobjsens, TVKgetrhssens, TVKgetboundsens, TVKgetsensobjval
 *   start and stop        TVKcopybase, TVKgetbase, TVKreadcopybase; TVKsetterminate, TVKsetlpcallbackfunc, TVKgetcallbackinfo
 *   settings              TVKsetintparam, TVKsetdblparam, TVKsetstrparam, TVKreadcopyparam, TVKgetchgparam
 *   files                 TVKwriteprob, TVKsolwrite, TVKreadsolution, TVKmbasewrite, TVKwriterestart
 *   messages              TVKgeterrorstring, TVKgetstatstring, TVKgetchannels, TVKaddfuncdest, TVKsetlogfile
 *   work done             TVKgetitcnt, TVKgetticks, TVKgetstatistics */

/* ---- Handles ---------------------------------------------------------------------------------------------------- */
typedef struct TVKenvironment *EnvHandle;
typedef const struct TVKenvironment *ConstEnvHandle;
typedef struct TVKproblem *ProbHandle;
typedef const struct TVKproblem *ConstProbHandle;
typedef struct TVKnetproblem *NetProbHandle;
typedef const struct TVKnetproblem *ConstNetProbHandle;
typedef struct TVKchannel *ChannelHandle;

/* Arrays of names that routines read and leave as they are: in C++ an array of const char* fits as well as one of char*.
 * C knows no such conversion, and there cast an array of constant strings: (char **)names. */
#ifdef __cplusplus
typedef const char *const *TVKnames;
#else
typedef char **TVKnames;
#endif

/* ---- Constants -------------------------------------------------------------------------------------------------- */
#define TVK_INFBOUND 1e20
#define TVK_MIN 1
#define TVK_MAX (-1)

/* ==== Section: environment, errors, channels ==== */

/* Everything happens inside an environment: it owns the parameter values, four message channels, the problem objects
 * created in it and their solver state. Two environments share nothing and may be used on two threads at once; one
 * environment (with its problems) is used by one thread at a time.
 *
 *     int status;
 *     EnvHandle env = TVKopenTOVIK(&status);
 *     ProbHandle lp = TVKcreateprob(env, &status, "example");
 *     ...
 *     TVKfreeprob(env, &lp);
 *     TVKcloseTOVIK(&env);
 *
 * Each routine checks its handles first, without following pointers that it does not know, so that a null, freed or
 * foreign handle yields a code and never a crash, however many objects have come since: no handle is given out twice in
 * the life of a process. 1002 no such environment, 1009 no such problem, 1806 a problem of another environment, 1804 a call
 * from inside the info callback that is not allowed there, or one from a callback or message function that would change,
 * optimize or free a problem that a routine is working on right then.
 * Then it checks its arguments. A failed routine changes nothing and writes one line to the environment's error channel:
 * "TOVIK Error %5d: ", the text of the code, a period and a newline. What fails while such a line is being delivered,
 * in a message function, gives its code, and its line goes to the files of the channel alone. */

/* Size in bytes of a buffer that holds any text of TVKgeterrorstring or TVKgetstatstring. */
#define TVK_TEXT_BUFFER_SIZE 256

/* Error codes. A text with conversions (%d, %s) is filled in the line that a failing routine writes. */
enum TVKerrorcode {
  TVK_ERROR_OUT_OF_MEMORY = 1001,
  TVK_ERROR_NO_ENVIRONMENT = 1002,
  TVK_ERROR_BAD_ARGUMENT = 1003,
  TVK_ERROR_NULL_POINTER = 1004,
  TVK_ERROR_CALLBACK = 1006,
  TVK_ERROR_NO_PROBLEM = 1009,
  TVK_ERROR_SIZE_LIMITS_TOO_LARGE = 1012,
  TVK_ERROR_PARAMETER_NUMBER = 1013,
  TVK_ERROR_PARAMETER_TOO_SMALL = 1014,
  TVK_ERROR_PARAMETER_TOO_BIG = 1015,
  TVK_ERROR_NOT_FOR_MIP = 1017,
  TVK_ERROR_NOT_FOR_QP = 1018,
  TVK_ERROR_CHILD_OF_CHILD = 1019,
  TVK_ERROR_THREAD_LIMIT = 1020,
  TVK_ERROR_CLOSE_CHILD = 1021,
  TVK_ERROR_PROBLEM_TYPE = 1022,
  TVK_ERROR_FIXED_PROBLEM = 1023,
  TVK_ERROR_NOT_MILP = 1024,
  TVK_ERROR_STRING_TOO_LONG = 1026,
  TVK_ERROR_DECOMPRESSION = 1027,
  TVK_ERROR_PARAMETER_NAME = 1028,
  TVK_ERROR_NOT_MIQP = 1029,
  TVK_ERROR_NOT_FOR_QCP = 1031,
  TVK_ERROR_NO_CHANNEL = 1051,
  TVK_ERROR_NO_FILE_DESTINATION = 1052,
  TVK_ERROR_NO_FUNCTION_DESTINATION = 1053,
  TVK_ERROR_PRESOLVE_INFEASIBLE_OR_UNBOUNDED = 1101,
  TVK_ERROR_NO_PRESOLVED_PROBLEM = 1103,
  TVK_ERROR_PRESOLVE_ABORTED = 1106,
  TVK_ERROR_BASIS_MEMORY = 1107,
  TVK_ERROR_COPY_SOS = 1108,
  TVK_ERROR_COPY_ORDER = 1109,
  TVK_ERROR_RECOVER_MIP_SOLUTION_MEMORY = 1110,
  TVK_ERROR_COMPUTE_QP_SOLUTION_MEMORY = 1111,
  TVK_ERROR_START_MEMORY = 1112,
  TVK_ERROR_LOAD_UNPRESOLVED_BASIS = 1114,
  TVK_ERROR_FIND_PRESOLVED_BASIS = 1115,
  TVK_ERROR_PRESOLVE_INFEASIBLE = 1117,
  TVK_ERROR_PRESOLVE_UNBOUNDED = 1118,
  TVK_ERROR_NOT_FOR_DUAL_FORMULATION = 1119,
  TVK_ERROR_UNCRUSH_FORM = 1120,
  TVK_ERROR_CRUSH_FORM = 1121,
  TVK_ERROR_PRESOLVE_PARAMETER = 1122,
  TVK_ERROR_PRESOLVE_TIME_LIMIT = 1123,
  TVK_ERROR_INDEX_RANGE = 1200,
  TVK_ERROR_COLUMN_INDEX_RANGE = 1201,
  TVK_ERROR_ROW_INDEX_RANGE = 1203,
  TVK_ERROR_BEGIN_TOO_SMALL = 1205,
  TVK_ERROR_END_TOO_BIG = 1206,
  TVK_ERROR_ARRAY_TOO_SHORT = 1207,
  TVK_ERROR_ARRAY_TOO_LONG = 1208,
  TVK_ERROR_DEFAULT_NAMES = 1209,
  TVK_ERROR_NAME_NOT_FOUND = 1210,
  TVK_ERROR_RHS_IN_OBJECTIVE = 1211,
  TVK_ERROR_RELAXATION_CONSTRAINT_TYPE = 1212,
  TVK_ERROR_PIECEWISE_LINEAR = 1213,
  TVK_ERROR_SENSE_ENTRY = 1215,
  TVK_ERROR_NO_RANGE_VALUES = 1216,
  TVK_ERROR_NO_SOLUTION = 1217,
  TVK_ERROR_NO_NAMES = 1219,
  TVK_ERROR_NOT_FIXED = 1221,
  TVK_ERROR_DUPLICATE_ENTRY = 1222,
  TVK_ERROR_NO_BARRIER_SOLUTION = 1223,
  TVK_ERROR_NULL_NAME = 1224,
  TVK_ERROR_NOT_A_NUMBER = 1225,
  TVK_ERROR_NOT_ASCENDING = 1226,
  TVK_ERROR_COUNT_ENTRY = 1227,
  TVK_ERROR_COUNT_OVERLAP = 1228,
  TVK_ERROR_BOUND_INDICATOR = 1229,
  TVK_ERROR_NODE_INDEX_RANGE = 1230,
  TVK_ERROR_ARC_INDEX_RANGE = 1231,
  TVK_ERROR_NO_DUAL_SOLUTION = 1232,
  TVK_ERROR_NUMBER_TOO_BIG = 1233,
  TVK_ERROR_PARALLEL_THREAD = 1234,
  TVK_ERROR_INDEX_NOT_BASIC = 1251,
  TVK_ERROR_NEED_OPTIMAL_SOLUTION = 1252,
  TVK_ERROR_BASIS_STATUS_ENTRY = 1253,
  TVK_ERROR_NEED_UNBOUNDED_SOLUTION = 1254,
  TVK_ERROR_SUPERBASIS_INCOMPATIBLE = 1255,
  TVK_ERROR_BASIS_SINGULAR = 1256,
  TVK_ERROR_PRICING_INDICATOR = 1257,
  TVK_ERROR_NO_FACTORIZATION = 1258,
  TVK_ERROR_NO_SENSITIVITY = 1260,
  TVK_ERROR_NO_BASIC_SOLUTION = 1261,
  TVK_ERROR_NO_BASIS = 1262,
  TVK_ERROR_STRONG_BRANCHING_ABORTED = 1263,
  TVK_ERROR_NO_NORMS = 1264,
  TVK_ERROR_NEED_DUAL_UNBOUNDED_SOLUTION = 1265,
  TVK_ERROR_STRONG_BRANCHING_TIME_LIMIT = 1266,
  TVK_ERROR_ILLEGAL_PIVOT = 1267,
  TVK_ERROR_CONDITION_NUMBER_TIME_LIMIT = 1268,
  TVK_ERROR_NO_KAPPA = 1269,
  TVK_ERROR_OPTIMIZATION_METHOD = 1292,
  TVK_ERROR_NO_FILE_NAME = 1421,
  TVK_ERROR_OPEN_FOR_WRITING = 1422,
  TVK_ERROR_OPEN_FOR_READING = 1423,
  TVK_ERROR_FILE_TYPE = 1424,
  TVK_ERROR_XML_PARSE = 1425,
  TVK_ERROR_TOO_MANY_ROWS = 1431,
  TVK_ERROR_TOO_MANY_COLUMNS = 1432,
  TVK_ERROR_TOO_MANY_COEFFICIENTS = 1433,
  TVK_ERROR_LINE_NUMBER_CONVERSION = 1434,
  TVK_ERROR_LINE_EXPONENT_RANGE = 1435,
  TVK_ERROR_NO_OBJECTIVE_SENSE = 1436,
  TVK_ERROR_LINE_QUADRATIC_SENSE = 1437,
  TVK_ERROR_LINE_LAZY_OR_CUT = 1438,
  TVK_ERROR_LINE_INDICATOR = 1439,
  TVK_ERROR_LINE_NO_NAME_SECTION = 1441,
  TVK_ERROR_LINE_SOS_TYPE = 1442,
  TVK_ERROR_COLUMN_REPEATS_ROW = 1443,
  TVK_ERROR_ENTRY_REPEATS_ROW = 1444,
  TVK_ERROR_ROW_REPEATS = 1445,
  TVK_ERROR_COLUMN_REPEATS = 1446,
  TVK_ERROR_LINE_ENTRY_REPEATS = 1447,
  TVK_ERROR_LINE_NOT_A_ROW = 1448,
  TVK_ERROR_LINE_NOT_A_COLUMN = 1449,
  TVK_ERROR_LINE_NO_ROW_SENSE = 1453,
  TVK_ERROR_LINE_FX_AFTER_BOUND = 1454,
  TVK_ERROR_LINE_FR_AFTER_BOUND = 1455,
  TVK_ERROR_LINE_BV_AFTER_BOUND = 1456,
  TVK_ERROR_LINE_BOUND_TYPE = 1457,
  TVK_ERROR_LINE_REPEATED_UPPER_BOUND = 1458,
  TVK_ERROR_LINE_REPEATED_LOWER_BOUND = 1459,
  TVK_ERROR_LINE_NO_BOUND_TYPE = 1460,
  TVK_ERROR_LINE_NO_QMATRIX_SECTION = 1461,
  TVK_ERROR_LINE_EXPECTED_ENDATA = 1462,
  TVK_ERROR_LINE_INTEGER_LIMIT = 1463,
  TVK_ERROR_LINE_NAME_TOO_LONG = 1464,
  TVK_ERROR_LINE_TOO_LONG = 1465,
  TVK_ERROR_LINE_NO_ROWS_SECTION = 1471,
  TVK_ERROR_LINE_NO_COLUMNS_SECTION = 1472,
  TVK_ERROR_LINE_EXPECTED_BOUND_SECTIONS = 1473,
  TVK_ERROR_LINE_RANGES_OUT_OF_ORDER = 1474,
  TVK_ERROR_LINE_EXPECTED_QMATRIX = 1475,
  TVK_ERROR_LINE_NO_OBJECTIVE_ROW = 1476,
  TVK_ERROR_MORE_ROW_REPEATS = 1477,
  TVK_ERROR_MORE_COLUMN_REPEATS = 1478,
  TVK_ERROR_LINE_PAIR_REPEATS = 1479,
  TVK_ERROR_LINE_INTORG = 1480,
  TVK_ERROR_LINE_INTEND = 1481,
  TVK_ERROR_LINE_SOSORG = 1482,
  TVK_ERROR_LINE_SOSEND = 1483,
  TVK_ERROR_TOO_MANY_RIM_VECTORS = 1484,
  TVK_ERROR_TOO_MANY_RIM_NONZEROS = 1485,
  TVK_ERROR_LINE_NO_ROW_NAME = 1486,
  TVK_ERROR_LINE_OBJECTIVE_SENSE = 1487,
  TVK_ERROR_NETWORK_FILE_INCONSISTENT = 1530,
  TVK_ERROR_NOT_MIN_COST_FLOW = 1531,
  TVK_ERROR_ROW_IDENTIFIER = 1532,
  TVK_ERROR_BAD_CHARACTER = 1537,
  TVK_ERROR_NETWORK_FILE_END = 1538,
  TVK_ERROR_BASIS_INCOMPLETE = 1550,
  TVK_ERROR_LINE_BASIS_INDICATOR = 1551,
  TVK_ERROR_NO_ENDATA = 1552,
  TVK_ERROR_LINE_ENTRY_COUNT = 1553,
  TVK_ERROR_NO_SUPERBASES = 1554,
  TVK_ERROR_BASIC_VARIABLE_COUNT = 1555,
  TVK_ERROR_NO_VECTOR_SOLUTION = 1556,
  TVK_ERROR_NOT_SAV_FILE = 1560,
  TVK_ERROR_SAV_FILE_TOO_SHORT = 1561,
  TVK_ERROR_SAV_FILE_WRITE = 1562,
  TVK_ERROR_FILE_FORMAT = 1563,
  TVK_ERROR_LINES_ADJACENT_SIGNS = 1602,
  TVK_ERROR_LINE_SENSE_IN_OBJECTIVE = 1603,
  TVK_ERROR_LINES_ADJACENT_SIGN_AND_SENSE = 1604,
  TVK_ERROR_LINE_QUADRATIC_IN_CONSTRAINT = 1605,
  TVK_ERROR_LINES_ADJACENT_SIGN_AND_QUADRATIC = 1606,
  TVK_ERROR_LINE_EXPECTED_SIGN = 1607,
  TVK_ERROR_LINE_EXPECTED_SIGN_OR_SENSE = 1608,
  TVK_ERROR_LINE_EXPECTED_IDENTIFIER_FIRST = 1609,
  TVK_ERROR_LINE_EXPECTED_RHS = 1610,
  TVK_ERROR_LINE_EXPECTED_NUMBER_FIRST = 1611,
  TVK_ERROR_LINE_EXPECTED_EXPONENT = 1612,
  TVK_ERROR_LINE_EXPONENT_NOT_2 = 1613,
  TVK_ERROR_LINE_EXPECTED_POWER_OR_PRODUCT = 1614,
  TVK_ERROR_LINE_EXPECTED_NUMBER = 1615,
  TVK_ERROR_LINE_EXPECTED_IDENTIFIER = 1616,
  TVK_ERROR_LINE_IDENTIFIER = 1617,
  TVK_ERROR_LINE_EXPONENT_WITH_NUMBER = 1618,
  TVK_ERROR_LINE_QUADRATIC_DIVISOR = 1619,
  TVK_ERROR_LINE_NO_BOUND_SENSE = 1621,
  TVK_ERROR_LINE_BOUND_SENSE = 1622,
  TVK_ERROR_LINE_NO_BOUND_NUMBER = 1623,
  TVK_ERROR_LINE_EXPECTED_COLON = 1627,
  TVK_ERROR_NUMBER_NOT_REPRESENTABLE = 1650,
  TVK_ERROR_LINE_TOO_FEW_ENTRIES = 1660,
  TVK_ERROR_LINE_HEADER = 1661,
  TVK_ERROR_NO_IIS = 1701,
  TVK_ERROR_IIS_NO_SOLUTION = 1702,
  TVK_ERROR_IIS_FEASIBLE = 1703,
  TVK_ERROR_IIS_MAYBE_FEASIBLE = 1704,
  TVK_ERROR_IIS_UNSCALED_INFEASIBILITIES = 1705,
  TVK_ERROR_IIS_FAILED = 1706,
  TVK_ERROR_IIS_NEEDS_BASIC_SOLUTION = 1707,
  TVK_ERROR_IIS_LOAD = 1709,
  TVK_ERROR_IIS_OBJECTIVE_LIMIT = 1710,
  TVK_ERROR_IIS_ITERATION_LIMIT = 1711,
  TVK_ERROR_IIS_TIME_LIMIT = 1712,
  TVK_ERROR_IIS_OPTIMIZE = 1713,
  TVK_ERROR_NO_CONFLICT = 1719,
  TVK_ERROR_CONFLICT_NOT_REPRODUCED = 1720,
  TVK_ERROR_TUNING_MIXED_SETS = 1730,
  TVK_ERROR_TEMPORARY_FILE_OPEN = 1801,
  TVK_ERROR_TEMPORARY_FILE_READ = 1802,
  TVK_ERROR_TEMPORARY_FILE_WRITE = 1803,
  TVK_ERROR_IN_INFO_CALLBACK = 1804,
  TVK_ERROR_SEARCH_VERSUS_CALLBACKS = 1805,
  TVK_ERROR_NOT_MEMBER = 1806,
  TVK_ERROR_INCOMPATIBLE_PARAMETERS = 1807,
  TVK_ERROR_NOT_MIP = 3003,
  TVK_ERROR_PRIORITY_ENTRY = 3006,
  TVK_ERROR_DIRECTION_ENTRY = 3007,
  TVK_ERROR_SOS_TYPE_ENTRY = 3009,
  TVK_ERROR_SOS_WEIGHTS_NOT_UNIQUE = 3010,
  TVK_ERROR_LINE_DIRECTION = 3012,
  TVK_ERROR_NO_SOS = 3015,
  TVK_ERROR_NO_ORDER = 3016,
  TVK_ERROR_INTEGER_MAGNITUDE = 3018,
  TVK_ERROR_MIP_SUBPROBLEM = 3019,
  TVK_ERROR_NO_MIP_START = 3020,
  TVK_ERROR_COLUMN_TYPE_ENTRY = 3021,
  TVK_ERROR_NO_INTEGER_VALUES = 3023,
  TVK_ERROR_NO_SOLUTION_POOL = 3024,
  TVK_ERROR_LINE_NO_SOS_TYPE = 3301,
  TVK_ERROR_NO_TREE = 3412,
  TVK_ERROR_TREE_MEMORY_LIMIT = 3413,
  TVK_ERROR_FILTER_NOT_BINARY = 3414,
  TVK_ERROR_NO_INFO_ON_STORED_NODES = 3504,
  TVK_ERROR_MUTEX = 3601,
  TVK_ERROR_THREAD = 3603,
  TVK_ERROR_PERMUTATION = 4005,
  TVK_ERROR_Q_NOT_SEMIDEFINITE = 5002,
  TVK_ERROR_NOT_QP = 5004,
  TVK_ERROR_DUPLICATE_PAIR = 5011,
  TVK_ERROR_Q_NOT_SYMMETRIC = 5012,
  TVK_ERROR_Q_NOT_INDEFINITE = 5014,
  TVK_ERROR_CUT_SENSE = 6002,
  TVK_ERROR_ROBUST_DATA = 9017,
  TVK_ERROR_NOT_MIQCP = 9019,
  TVK_ERROR_VARIABILITY_TEST_MODEL = 9024,
  TVK_ERROR_PRESOLVE_TICK_LIMIT = 9025,
  TVK_ERROR_IIS_TICK_LIMIT = 9026,
  TVK_ERROR_STRONG_BRANCHING_TICK_LIMIT = 9027,
  TVK_ERROR_TEAM_THREAD_COUNT = 9030,
  TVK_ERROR_TEAM_THREAD_STATE = 9031,
  TVK_ERROR_TEAM_TASK_SIGNALLED = 9033,
  TVK_ERROR_TEAM_TASK_RELATION = 9034,
  TVK_ERROR_TEAM_ROOT_TASK = 9035,
  TVK_ERROR_TEAM_SIGNALS_BLOCKED = 9036
};
/* Solution statuses: what the last optimization found out. Codes from 101 are those of mixed-integer problems.
 *
 * A continuous linear problem can end with these, and then has
 *   1   optimal: values, duals, basis
 *   2   unbounded: TVKgetray; values and objective where a feasible point was met (TVKsolninfo tells)
 *   3   infeasible: TVKgetfarkas; no values. 4 presolve knows only that it is 2 or 3: switch TVK_PARAM_PREIND off and repeat
 *   5   optimal in the scaled problem, with violations beyond the tolerances in the caller's units (TVKgetquality): as 1
 *   6   no claim could be confirmed: the last point and basis, feasible or not
 *   10, 11, 900, 13   a limit of iterations, seconds or ticks, or the callback or flag of TVKsetterminate: the last point and
 *       basis, from which the next optimization goes on; TVKsolninfo tells whether it is primal or dual feasible
 *   12, 21, 22   a limit of the objective value was passed: as 10
 * and with 0 before the first optimization and after a change. 14 to 19 and 120 to 126 come of relaxations of infeasible
 * problems, 20 of problems whose optimal points reach to infinity, 23 and 127 of feasibility that was asked for alone, 30 to 39
 * of the conflict refiner, 101 to 119 and 131 to 134 of a mixed-integer search (with NO_SOLUTION where it has no point), 128 to
 * 130 of filling the solution pool. */
enum TVKstatuscode {
  TVK_STATUS_NONE = 0,
  TVK_STATUS_OPTIMAL = 1,
  TVK_STATUS_UNBOUNDED = 2,
  TVK_STATUS_INFEASIBLE = 3,
  TVK_STATUS_UNBOUNDED_OR_INFEASIBLE = 4,
  TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE = 5,
  TVK_STATUS_NON_OPTIMAL = 6,
  TVK_STATUS_ITERATION_LIMIT = 10,
  TVK_STATUS_TIME_LIMIT = 11,
  TVK_STATUS_OBJECTIVE_LIMIT = 12,
  TVK_STATUS_USER_ABORT = 13,
  TVK_STATUS_RELAXED_SUM_FEASIBLE = 14,
  TVK_STATUS_RELAXED_SUM_OPTIMAL = 15,
  TVK_STATUS_RELAXED_NUMBER_FEASIBLE = 16,
  TVK_STATUS_RELAXED_NUMBER_OPTIMAL = 17,
  TVK_STATUS_RELAXED_SQUARES_FEASIBLE = 18,
  TVK_STATUS_RELAXED_SQUARES_OPTIMAL = 19,
  TVK_STATUS_OPTIMAL_FACE_UNBOUNDED = 20,
  TVK_STATUS_PRIMAL_OBJECTIVE_LIMIT = 21,
  TVK_STATUS_DUAL_OBJECTIVE_LIMIT = 22,
  TVK_STATUS_FEASIBLE = 23,
  TVK_STATUS_CONFLICT_FEASIBLE = 30,
  TVK_STATUS_CONFLICT_MINIMAL = 31,
  TVK_STATUS_CONFLICT_NON_MINIMAL = 32,
  TVK_STATUS_CONFLICT_TIME_LIMIT = 33,
  TVK_STATUS_CONFLICT_ITERATION_LIMIT = 34,
  TVK_STATUS_CONFLICT_NODE_LIMIT = 35,
  TVK_STATUS_CONFLICT_OBJECTIVE_LIMIT = 36,
  TVK_STATUS_CONFLICT_MEMORY_LIMIT = 37,
  TVK_STATUS_CONFLICT_USER_ABORT = 38,
  TVK_STATUS_CONFLICT_TICK_LIMIT = 39,
  TVK_STATUS_MIP_OPTIMAL = 101,
  TVK_STATUS_MIP_OPTIMAL_TOLERANCE = 102,
  TVK_STATUS_MIP_INFEASIBLE = 103,
  TVK_STATUS_MIP_SOLUTION_LIMIT = 104,
  TVK_STATUS_MIP_NODE_LIMIT = 105,
  TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION = 106,
  TVK_STATUS_MIP_TIME_LIMIT = 107,
  TVK_STATUS_MIP_TIME_LIMIT_NO_SOLUTION = 108,
  TVK_STATUS_MIP_ERROR = 109,
  TVK_STATUS_MIP_ERROR_NO_SOLUTION = 110,
  TVK_STATUS_MIP_MEMORY_LIMIT = 111,
  TVK_STATUS_MIP_MEMORY_LIMIT_NO_SOLUTION = 112,
  TVK_STATUS_MIP_USER_ABORT = 113,
  TVK_STATUS_MIP_USER_ABORT_NO_SOLUTION = 114,
  TVK_STATUS_MIP_OPTIMAL_UNSCALED_INFEASIBLE = 115,
  TVK_STATUS_MIP_ERROR_TREE = 116,
  TVK_STATUS_MIP_ERROR_NO_SOLUTION_NO_TREE = 117,
  TVK_STATUS_MIP_UNBOUNDED = 118,
  TVK_STATUS_MIP_INFEASIBLE_OR_UNBOUNDED = 119,
  TVK_STATUS_MIP_RELAXED_SUM_FEASIBLE = 120,
  TVK_STATUS_MIP_RELAXED_SUM_OPTIMAL = 121,
  TVK_STATUS_MIP_RELAXED_NUMBER_FEASIBLE = 122,
  TVK_STATUS_MIP_RELAXED_NUMBER_OPTIMAL = 123,
  TVK_STATUS_MIP_RELAXED_SQUARES_FEASIBLE = 124,
  TVK_STATUS_MIP_RELAXED_SQUARES_OPTIMAL = 125,
  TVK_STATUS_RELAXATION_ABORTED = 126,
  TVK_STATUS_MIP_FEASIBLE = 127,
  TVK_STATUS_POPULATE_SOLUTION_LIMIT = 128,
  TVK_STATUS_ALL_SOLUTIONS_FOUND = 129,
  TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE = 130,
  TVK_STATUS_MIP_ITERATION_LIMIT = 131,
  TVK_STATUS_MIP_ITERATION_LIMIT_NO_SOLUTION = 132,
  TVK_STATUS_MIP_TICK_LIMIT = 133,
  TVK_STATUS_MIP_TICK_LIMIT_NO_SOLUTION = 134,
  TVK_STATUS_TICK_LIMIT = 900
};
/* ---- Opening and closing ---- */

/* Opens an environment with default parameters. `*status_p` receives 0, or the error code with a null result: 1001 out
 * of memory. A null status_p opens nothing and gives null. When the process environment variable
 * MERU_TOVIK_PARAMETER_FILE is set, the parameter file that it names is read; a file that cannot be read is told on
 * standard output and does not fail the open. Set-user-id programs ignore the variable. */
TVK_API EnvHandle TVKopenTOVIK(int *status_p);

/* Closes the environment `*env_p` with all that is left in it (problems, channels, child environments; their handles
 * become invalid) and sets `*env_p` to null. Files attached to channels are flushed, not closed.
 * Errors: 1004 env_p null; 1002; 1804 from inside a callback or message function of a routine that is at work in it or
 * in what belongs to it; 1021 for a child environment, which stays usable. */
TVK_API int TVKcloseTOVIK(EnvHandle *env_p);

/* Creates a child environment for a parallel worker: parameters and callbacks are copied from `env`, the random
 * generator is seeded afresh, the channels have no destinations. The child lives until TVKfreeparenv or until `env` is
 * closed. Problems of `env` may be used with the child's handle and the other way round. `*status_p` receives 0, or the
 * code with a null result: 1004 status_p null (nothing is stored), 1019 `env` is a child itself, 1020 there are
 * TVKEgetmaxthreads children already, 1001. */
TVK_API EnvHandle TVKparenv(EnvHandle env, int *status_p);

/* Frees the child `*child_p` of `env` with all that is left in it and sets `*child_p` to null. Errors: 1004 child_p
 * null; 1002 `*child_p` is not a child of `env`; 1804 as for TVKcloseTOVIK. */
TVK_API int TVKfreeparenv(EnvHandle env, EnvHandle *child_p);

/* The version, "12.2.0.0"; null for an invalid handle. The text is constant. */
TVK_API const char *TVKversion(ConstEnvHandle env);

/* Stores in `*time_p` a time stamp in seconds; the difference of two stamps is the time between them. Parameter
 * TVK_PARAM_CLOCKTYPE selects processor time of the process (1) or wall-clock time (2, and 0). Errors: 1004. */
TVK_API int TVKgettime(ConstEnvHandle env, double *time_p);

/* Number of threads that the library may use: the processors available to the process, at least 1; 0 for an invalid
 * handle. Also the number of child environments that an environment can have. */
TVK_API int TVKEgetmaxthreads(ConstEnvHandle env);

/* Number of the thread that a child environment was made for (1 and up), 0 for an environment opened by TVKopenTOVIK
 * and for an invalid handle. */
TVK_API int TVKEgetThreadNumber(ConstEnvHandle env);

/* An opaque pointer that a language binding keeps with the environment; null unless set. Child environments inherit
 * it. TVKEgetJNI gives null for an invalid handle. */
TVK_API int TVKEsetJNI(EnvHandle env, void *handle);
TVK_API void *TVKEgetJNI(ConstEnvHandle env);

/* Enter and leave a critical section: `lock` points to an initialized pthread_mutex_t. Null does nothing. */
TVK_API void TVKEgeneric_lock(void *lock);
TVK_API void TVKEgeneric_unlock(void *lock);

/* ---- Callbacks and stopping ---- */

/* Registers the function that the continuous optimizers call while they run (null: none): `wherefrom` is 1 on each
 * simplex iteration, 3 on each of the network simplex in TVKhybnetopt, 4 and 5 during the primal and the dual pushes of
 * crossover, 6 on each barrier iteration and 7 during presolve, `handle` is the pointer given here. A result other than 0 stops the
 * optimization, which then ends with status TVK_STATUS_USER_ABORT. `cbdata` is opaque, for TVKgetcallbackinfo. The
 * function may ask the problem that is being optimized for what it holds; changing, optimizing or freeing it gives 1804,
 * and so does what needs a factored basis. */
TVK_API int TVKsetlpcallbackfunc(EnvHandle env,
                                 int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle),
                                 void *handle);
/* Reads it back; either address may be null. */
TVK_API int TVKgetlpcallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void *, int, void *),
                                 void **handle_p);

/* Registers functions that TVKmipopt calls to tell how it stands (null: none). `wherefrom` says where it is: one of
 * TVK_CALLBACK_MIP_PRESOLVE, TVK_CALLBACK_MIP (a node was processed, or some work has been done since the last call; in the
 * phases that have a code of their own it is that), TVK_CALLBACK_MIP_ROOT_CUTS (a round of cuts has been added) and
 * TVK_CALLBACK_MIP_INCUMBENT (a new solution was found). A result other than 0 stops the search with
 * TVK_STATUS_MIP_USER_ABORT or 114; the next call goes on with the tree. Both see the same; what they may call differs: from
 * the info callback everything gives 1804 but TVKgetcallbackincumbent and, of TVKgetcallbackinfo, the items 19, 101 to 106,
 * 109, 113, 114, 116, 118, 121, 123, 125 and 127 to 132. The mip callback may call what the LP callback may. */
TVK_API int TVKsetmipcallbackfunc(EnvHandle env,
                                  int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle),
                                  void *handle);
TVK_API int TVKgetmipcallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void *, int, void *),
                                  void **handle_p);
TVK_API int TVKsetinfocallbackfunc(EnvHandle env,
                                   int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle),
                                   void *handle);
TVK_API int TVKgetinfocallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void *, int, void *),
                                   void **handle_p);

/* TVKNETprimopt calls it at each iteration with `wherefrom` 3 and, as `cbdata`, what TVKgetcallbackinfo takes; the items are
 * those of the simplex. A result other than 0 stops the optimization with status TVK_STATUS_USER_ABORT. */
TVK_API int TVKsetnetcallbackfunc(EnvHandle env,
                                  int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle),
                                  void *handle);
TVK_API int TVKgetnetcallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void *, int, void *),
                                  void **handle_p);

/* Registered and read back only: no optimizer calls it. */
TVK_API int TVKsettuningcallbackfunc(EnvHandle env,
                                     int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle),
                                     void *handle);
TVK_API int TVKgettuningcallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void *, int, void *),
                                     void **handle_p);

/* Where TVKmipopt calls from. */
#define TVK_CALLBACK_MIP 101            /* informational: a node, or some work */
#define TVK_CALLBACK_MIP_PRESOLVE 107   /* informational: presolve has ended, before the search or for a restart */
#define TVK_CALLBACK_MIP_ROOT_CUTS 108  /* informational: a round of cuts at the root, or some work on it */
#define TVK_CALLBACK_MIP_ROOT 109       /* informational: some work on the root's relaxation */
#define TVK_CALLBACK_MIP_HEURISTICS 110 /* informational: some work of heuristics */
#define TVK_CALLBACK_MIP_INCUMBENT 111  /* a solution */

/* Items of TVKgetcallbackinfo, ints but where it says double. Numbers that the method does not have at that time are 1e20:
 * in the first phase of the dual simplex objective and primal infeasibility, in the first phase of the primal simplex dual
 * infeasibility. While sifting all are those of the working problem. From barrier come the items 1 to 3 (infeasibilities
 * being the largest of any row or column), 6 and 8, from crossover 6 and 7. */
#define TVK_CALLBACK_INFO_OBJECTIVE 1        /* double: of the point, or the bound that the dual simplex has reached */
#define TVK_CALLBACK_INFO_PRIMAL_INFEAS 2    /* double: sum of bound and row violations, scaled and presolved */
#define TVK_CALLBACK_INFO_DUAL_INFEAS 3      /* double: sum of reduced costs of the wrong sign, likewise */
#define TVK_CALLBACK_INFO_PHASE 4            /* 1 or 2; 0 where a claim is made sure of by auxiliary problems */
#define TVK_CALLBACK_INFO_METHOD 5           /* 1 primal, 2 dual simplex */
#define TVK_CALLBACK_INFO_ITERATIONS 6       /* of the simplex or barrier that is running; exchanges of crossover */
#define TVK_CALLBACK_INFO_PUSHES_LEFT 7      /* of crossover: of the kind that is at work */
#define TVK_CALLBACK_INFO_DUAL_OBJECTIVE 8   /* double: of barrier */
#define TVK_CALLBACK_INFO_ROWS_REMOVED 13    /* by presolve so far, substitutions included */
#define TVK_CALLBACK_INFO_COLUMNS_REMOVED 14
#define TVK_CALLBACK_INFO_SUBSTITUTIONS 15
#define TVK_CALLBACK_INFO_BOUNDS_IMPROVED 16
#define TVK_CALLBACK_INFO_SECONDS 17         /* double: since the optimization began, by TVK_PARAM_CLOCKTYPE */
#define TVK_CALLBACK_INFO_TICKS 19           /* double: deterministic work since then */

/* Of TVKmipopt, in its contexts (101 to 113); objective values have the sense of the problem. */
#define TVK_CALLBACK_INFO_BEST_INTEGER 101   /* double: of the incumbent; 1e75 without one, -1e75 in a maximization */
#define TVK_CALLBACK_INFO_BEST_BOUND 102     /* double: on every solution's objective; +-1e75 while there is none */
#define TVK_CALLBACK_INFO_NODE_COUNT 103     /* nodes processed */
#define TVK_CALLBACK_INFO_NODES_LEFT 104
#define TVK_CALLBACK_INFO_MIP_ITERATIONS 105 /* of the simplex, all relaxations together */
#define TVK_CALLBACK_INFO_CUTOFF 106         /* double: only solutions better than this are looked for */
#define TVK_CALLBACK_INFO_CURRENT_SEQUENCE 107 /* sequence number of the node that is processed; 1006 without one */
#define TVK_CALLBACK_INFO_CURRENT_DEPTH 108    /* its depth */
#define TVK_CALLBACK_INFO_HAS_INCUMBENT 109  /* 1 when there is an incumbent */
#define TVK_CALLBACK_INFO_THREADS 110        /* that search */
#define TVK_CALLBACK_INFO_RESTARTS 111       /* of the search after another presolve */
#define TVK_CALLBACK_INFO_OPEN_INTEGERS 112  /* searched integer columns that are not fixed at the node */
#define TVK_CALLBACK_INFO_GAP 113            /* double: |bound - incumbent| / (1e-10 + |incumbent|), 1e75 without either */
#define TVK_CALLBACK_INFO_SOLUTIONS 114      /* solutions found */
#define TVK_CALLBACK_INFO_SEARCHED_ROWS 115  /* of the problem that is searched, without cuts */
#define TVK_CALLBACK_INFO_CUT_ROWS 116       /* cuts that are rows of the relaxation now */
#define TVK_CALLBACK_INFO_SEARCHED_COLUMNS 117
#define TVK_CALLBACK_INFO_TREE_SIZE 118      /* double: megabytes of the open nodes */
#define TVK_CALLBACK_INFO_ROOT_BOUND 119     /* double: that the root's relaxation has proven; +-1e75 before it is solved */
#define TVK_CALLBACK_INFO_LARGEST_DEPTH 120  /* of a node processed */
/* Cuts that have become rows so far, by class. */
#define TVK_CALLBACK_INFO_COVER_CUTS 121
#define TVK_CALLBACK_INFO_GUB_COVER_CUTS 122
#define TVK_CALLBACK_INFO_FLOW_COVER_CUTS 123
#define TVK_CALLBACK_INFO_FLOW_PATH_CUTS 124
#define TVK_CALLBACK_INFO_CLIQUE_CUTS 125
#define TVK_CALLBACK_INFO_DISJUNCTIVE_CUTS 126
#define TVK_CALLBACK_INFO_FRACTIONAL_CUTS 127
#define TVK_CALLBACK_INFO_ROUNDING_CUTS 128
#define TVK_CALLBACK_INFO_IMPLIED_BOUND_CUTS 129
#define TVK_CALLBACK_INFO_ZERO_HALF_CUTS 130
#define TVK_CALLBACK_INFO_MULTI_COMMODITY_CUTS 131
#define TVK_CALLBACK_INFO_USER_CUTS 132 /* of callbacks and of the model */

/* For a callback while it runs, with its own `env`, `cbdata` and `wherefrom`: stores the item `whichinfo` in *result_p,
 * an int or a double. 1 to 6 are known in context 1, 13 to 16 in context 7, 101 and up in those of TVKmipopt, 17 and 19 in all. The infeasibilities cost a
 * pass over rows and columns at the first item of a call: ask now and then, not at each iteration. Errors: 1003 wherefrom is
 * not in 1..113 or does not have the item; 1006 cbdata is not that of a callback that is running in this context; 1004.
 *
 *     int progress(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle) {
 *       double infeasibility, seconds;
 *       if (wherefrom == 1 && TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_PRIMAL_INFEAS, &infeasibility) == 0
 *           && TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_SECONDS, &seconds) == 0)
 *         printf("%.1f s: infeasibility %g\n", seconds, infeasibility);
 *       return 0;                                         anything else stops the optimization
 *     } */
TVK_API int TVKgetcallbackinfo(ConstEnvHandle env, void *cbdata, int wherefrom, int whichinfo, void *result_p);

/* ---- Taking part in a mixed-integer search ----
 * Functions of the caller that TVKmipopt calls at fixed points and that may change what it does. All get `env`, an opaque
 * `cbdata` for the routines below, the code of the context in `wherefrom`, and the `handle` that they were registered with; a
 * result other than 0, or TVK_CALLBACK_FAIL in *useraction_p, ends the search with status 113 or 114 and TVKmipopt with 1006,
 * with the incumbent and the tree kept: the next call goes on, if the same functions are registered. What was registered when
 * TVKmipopt began is called until it ends. *useraction_p is TVK_CALLBACK_DEFAULT on entry; TVK_CALLBACK_SET tells that the
 * function has answered. While one of these is registered TVK_PARAM_MIPSEARCH may not be 2 (1805).
 *
 * Space: columns are counted as in the problem that is searched (TVKgetcallbacklp), of which presolve may have removed
 * columns, or, with TVK_PARAM_MIPCBREDLP 0, as in the problem itself: what is said of columns that left is then said of those
 * that stay. Functions for cuts, branching, heuristics and incumbents leave presolve what keeps every feasible point and makes
 * each column a linear function of those that stay; columns of TVKcopyprotected stay in any case. Objective values have the sense of the problem. The order at a node is: node selection; solve, in place of
 * each solve of the relaxation; cuts; heuristic; for each point that may become the incumbent, wherever it was found, cuts once
 * more, and incumbent; branch, or branch without a solution; node deletion.
 *
 * From inside, the problem that is optimized may be read, not changed, optimized or freed (1804); other problems may. Handles
 * that a callback gets live until it returns.
 *
 * Example: subtours of a tour are forbidden where they show
 *     int forbid(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle, int *useraction_p) {
 *       ...                                           TVKgetcallbacknodex (env, cbdata, wherefrom, x, 0, n - 1), find a set S
 *       *useraction_p = TVK_CALLBACK_SET;
 *       return TVKcutcallbackadd(env, cbdata, wherefrom, k, size - 1.0, 'L', ind, val, 0);
 *     } */
#define TVK_CALLBACK_DEFAULT 0
#define TVK_CALLBACK_FAIL 1
#define TVK_CALLBACK_SET 2

#define TVK_CALLBACK_MIP_BRANCH 102
#define TVK_CALLBACK_MIP_NODE 103
#define TVK_CALLBACK_MIP_HEURISTIC 104
#define TVK_CALLBACK_MIP_SOLVE 105
#define TVK_CALLBACK_MIP_CUT 106
#define TVK_CALLBACK_MIP_DELETE_NODE 112
#define TVK_CALLBACK_MIP_BRANCH_NO_SOLUTION 113

/* The setters return 0, or 1002 or 1804; the getters write both, null for a bad environment.
 *
 * Branch: called with the children that the search would make: `type` one of TVK_BRANCH_.., `sos` the set that is branched on or
 * -1, `nodecnt` children (0 where the search has none to propose, which drops the node), of which child k changes the
 * bounds nodebeg[k] up to nodebeg[k+1] (the last one up to bdcnt) of `indices`, `lu`, `bd`, with `nodeest[k]`. With
 * TVK_CALLBACK_SET the children that the function has created take their place, none of them closing the node. The one without
 * a node solution is called where the relaxation could not be solved. */
#define TVK_BRANCH_COLUMN 0
#define TVK_BRANCH_SOS1 1
#define TVK_BRANCH_SOS2 2
#define TVK_BRANCH_OTHER 3 /* several bounds: a semi-continuous column, an indicator */
TVK_API int TVKsetbranchcallbackfunc(EnvHandle env,
                                     int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle, int type,
                                                 int sos, int nodecnt, int bdcnt, const double *nodeest,
                                                 const int *nodebeg, const int *indices, const char *lu,
                                                 const double *bd, int *useraction_p),
                                     void *handle);
TVK_API void TVKgetbranchcallbackfunc(ConstEnvHandle env,
                                      int (**func_p)(ConstEnvHandle, void *, int, void *, int, int, int, int,
                                                     const double *, const int *, const int *, const char *,
                                                     const double *, int *),
                                      void **handle_p);
TVK_API int TVKsetbranchnosolncallbackfunc(EnvHandle env,
                                           int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle,
                                                       int type, int sos, int nodecnt, int bdcnt,
                                                       const double *nodeest, const int *nodebeg,
                                                       const int *indices, const char *lu, const double *bd,
                                                       int *useraction_p),
                                           void *handle);
TVK_API void TVKgetbranchnosolncallbackfunc(ConstEnvHandle env,
                                            int (**func_p)(ConstEnvHandle, void *, int, void *, int, int, int, int,
                                                           const double *, const int *, const int *, const char *,
                                                           const double *, int *),
                                            void **handle_p);
/* Cut: called at the optimum of each node's relaxation, and at each point that may become the incumbent: cuts that are added
 * there forbid it. TVKgetcallbacknodex tells the point, TVKgetcallbacknodestat which of the two it is (1 and 0). */
TVK_API int TVKsetcutcallbackfunc(EnvHandle env,
                                  int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle,
                                              int *useraction_p),
                                  void *handle);
TVK_API void TVKgetcutcallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void *, int, void *, int *),
                                   void **handle_p);
/* Node selection: *nodeindex_p is the node that the search would take, among the open ones by age; with TVK_CALLBACK_SET it is
 * the one to be taken. */
TVK_API int TVKsetnodecallbackfunc(EnvHandle env,
                                   int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle,
                                               int *nodeindex_p, int *useraction_p),
                                   void *handle);
TVK_API void TVKgetnodecallbackfunc(ConstEnvHandle env,
                                    int (**func_p)(ConstEnvHandle, void *, int, void *, int *, int *),
                                    void **handle_p);
/* Heuristic: x is the optimum of the relaxation on entry; with TVK_CALLBACK_SET it is a point that may be a solution. It is
 * checked whatever *checkfeas_p says; continuous columns that do not fit are found anew. */
TVK_API int TVKsetheuristiccallbackfunc(EnvHandle env,
                                        int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle,
                                                    double *objval_p, double *x, int *checkfeas_p,
                                                    int *useraction_p),
                                        void *handle);
TVK_API void TVKgetheuristiccallbackfunc(ConstEnvHandle env,
                                         int (**func_p)(ConstEnvHandle, void *, int, void *, double *, double *,
                                                        int *, int *),
                                         void **handle_p);
/* Incumbent: the solution x is the next incumbent unless *isfeas_p is set to 0; the search then goes on without it. A node
 * whose relaxation was refused is split until all integer columns are fixed. */
TVK_API int TVKsetincumbentcallbackfunc(EnvHandle env,
                                        int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle,
                                                    double objval, double *x, int *isfeas_p, int *useraction_p),
                                        void *handle);
TVK_API void TVKgetincumbentcallbackfunc(ConstEnvHandle env,
                                         int (**func_p)(ConstEnvHandle, void *, int, void *, double, double *,
                                                        int *, int *),
                                         void **handle_p);
/* Solve: with TVK_CALLBACK_SET the function has optimized the problem of TVKgetcallbacknodelp. The search makes sure of the
 * answer from the basis that it has then; where it has none (a limit, status 6) it branches without a solution. */
TVK_API int TVKsetsolvecallbackfunc(EnvHandle env,
                                    int (*func)(ConstEnvHandle env, void *cbdata, int wherefrom, void *handle,
                                                int *useraction_p),
                                    void *handle);
TVK_API void TVKgetsolvecallbackfunc(ConstEnvHandle env, int (**func_p)(ConstEnvHandle, void *, int, void *, int *),
                                     void **handle_p);
/* Node deletion: called once for each node that was made, when it was processed or dropped, with its sequence number and
 * the handle that its creator gave it (null for those that the search made). While it is registered no tree is kept when TVKmipopt
 * ends, so that all handles are given back by then; a search that was stopped begins anew. */
TVK_API int TVKsetdeletenodecallbackfunc(EnvHandle env,
                                         void (*func)(ConstEnvHandle env, int wherefrom, void *handle, int seqnum,
                                                      void *userhandle),
                                         void *handle);
TVK_API void TVKgetdeletenodecallbackfunc(ConstEnvHandle env,
                                          void (**func_p)(ConstEnvHandle, int, void *, int, void *), void **handle_p);

/* Each routine from here on is for a callback of TVKmipopt while it runs, with its own `env`, `cbdata` and `wherefrom`. Errors
 * of all: 1002 cbdata is not that of a running callback; 3003 it is null or of another optimizer, or there is no node where one
 * is needed; 1003 wherefrom is not that of the call, or not one in which the routine may be called; 1004 a null address;
 * 1804 from inside the info callback. A failed routine changes nothing. */

/* *nodelp_p: the relaxation of the node, with its bounds and the cuts that are rows, in the columns that are searched; in the
 * contexts that see its optimum with that optimum. Contexts 101, 102, 104, 105, 106, 111 and 113; null after an error. It is a
 * copy: it may be changed and optimized, which means nothing to the search but in a solve callback; freeing it gives 1009. */
TVK_API int TVKgetcallbacknodelp(ConstEnvHandle env, void *cbdata, int wherefrom, ProbHandle *nodelp_p);
/* *lp_p: the problem in whose columns callbacks count: the caller's, or the one that is searched. It may be read. */
TVK_API int TVKgetcallbacklp(ConstEnvHandle env, void *cbdata, int wherefrom, ConstProbHandle *lp_p);

/* From a cut callback: adds a row that every solution satisfies (TVKcutcallbackadd), or every one below the node (..local).
 * `sense`: L, E or G. It is kept as long as the search lasts, as a row of the relaxation from when it is first violated on; with a
 * `cutclass` other than 0 it may leave the relaxation while it is slack. Errors besides: 1003 nzcnt < 0; 1012 nzcnt > 2100000000; 1215
 * sense; 1201 column; 1225, 1233 numbers; 1001. */
TVK_API int TVKcutcallbackadd(ConstEnvHandle env, void *cbdata, int wherefrom, int nzcnt, double rhs, int sense,
                              const int *cutind, const double *cutval, int cutclass);
TVK_API int TVKcutcallbackaddlocal(ConstEnvHandle env, void *cbdata, int wherefrom, int nzcnt, double rhs, int sense,
                                   const int *cutind, const double *cutval);

/* From a branch callback: creates a child of the node, by `cnt` bounds (lu[k] L, U or B: lower, upper or both become bd[k],
 * where that is tighter), by `rcnt` rows (as for TVKaddrows, without ranges), or by both. `nodeest`: an estimate of the best
 * objective value in it; `userhandle` goes with the child. *seqnum_p: its sequence number, -1 after an error. Errors besides: 1003 a
 * negative count; 1012 one above 2100000000; 1006 two children exist already; 1201 column; 1229 lu; 1215 sense; 1200 rmatbeg; 1225,
 * 1233 numbers; 1001. */
TVK_API int TVKbranchcallbackbranchbds(ConstEnvHandle env, void *cbdata, int wherefrom, double nodeest, int cnt,
                                       const int *indices, const char *lu, const double *bd, void *userhandle,
                                       int *seqnum_p);
TVK_API int TVKbranchcallbackbranchconstraints(ConstEnvHandle env, void *cbdata, int wherefrom, double nodeest, int rcnt,
                                               int nzcnt, const double *rhs, const char *sense, const int *rmatbeg,
                                               const int *rmatind, const double *rmatval, void *userhandle,
                                               int *seqnum_p);
TVK_API int TVKbranchcallbackbranchgeneral(ConstEnvHandle env, void *cbdata, int wherefrom, double nodeest, int varcnt,
                                           const int *varind, const char *varlu, const double *varbd, int rcnt,
                                           int nzcnt, const double *rhs, const char *sense, const int *rmatbeg,
                                           const int *rmatind, const double *rmatval, void *userhandle,
                                           int *seqnum_p);
/* Rows of the children that the search proposes: *cuts_p and *nzcnt_p are 0, for it branches by bounds. */
TVK_API int TVKgetcallbackbranchconstraints(ConstEnvHandle env, void *cbdata, int wherefrom, int *cuts_p, int *nzcnt_p,
                                            double *rhs, char *sense, int *rmatbeg, int *rmatind, double *rmatval,
                                            int rmatsz, int *surplus_p);

/* Of columns begin..end (1200 range): the point that the callback is about, the incumbent, whether integer columns are whole at
 * the point (TVK_INTEGER_..; 1217 without a point or incumbent); bounds in the node and in the whole tree; type letters; priority
 * and direction of branching (either array may be null); pseudo-costs, the gain per unit of the bound (likewise). */
#define TVK_INTEGER_FEASIBLE 0
#define TVK_INTEGER_INFEASIBLE 1
TVK_API int TVKgetcallbacknodex(ConstEnvHandle env, void *cbdata, int wherefrom, double *x, int begin, int end);
/* From the info callback as well. */
TVK_API int TVKgetcallbackincumbent(ConstEnvHandle env, void *cbdata, int wherefrom, double *x, int begin, int end);
TVK_API int TVKgetcallbacknodeintfeas(ConstEnvHandle env, void *cbdata, int wherefrom, int *feas, int begin, int end);
TVK_API int TVKgetcallbacknodelb(ConstEnvHandle env, void *cbdata, int wherefrom, double *lb, int begin, int end);
TVK_API int TVKgetcallbacknodeub(ConstEnvHandle env, void *cbdata, int wherefrom, double *ub, int begin, int end);
TVK_API int TVKgetcallbackgloballb(ConstEnvHandle env, void *cbdata, int wherefrom, double *lb, int begin, int end);
TVK_API int TVKgetcallbackglobalub(ConstEnvHandle env, void *cbdata, int wherefrom, double *ub, int begin, int end);
TVK_API int TVKgetcallbackctype(ConstEnvHandle env, void *cbdata, int wherefrom, char *ctype, int begin, int end);
TVK_API int TVKgetcallbackorder(ConstEnvHandle env, void *cbdata, int wherefrom, int *priority, int *direction,
                                int begin, int end);
TVK_API int TVKgetcallbackpseudocosts(ConstEnvHandle env, void *cbdata, int wherefrom, double *up, double *down,
                                      int begin, int end);

/* Objective value of the point (1217 without one); TVK_STATUS_OPTIMAL where it is the optimum of the node's relaxation, else 0. */
TVK_API int TVKgetcallbacknodeobjval(ConstEnvHandle env, void *cbdata, int wherefrom, double *objval_p);
TVK_API int TVKgetcallbacknodestat(ConstEnvHandle env, void *cbdata, int wherefrom, int *nodestat_p);

/* Items of a node. */
#define TVK_CALLBACK_INFO_NODE_INFEASIBILITY_SUM 201 /* double: of fractions of integer columns, in its parent's relaxation */
#define TVK_CALLBACK_INFO_NODE_INFEASIBILITIES 202   /* columns with a fraction, and sets and the like that do not hold, there */
#define TVK_CALLBACK_INFO_NODE_ESTIMATE 203          /* double: of its best solution's objective value */
#define TVK_CALLBACK_INFO_NODE_DEPTH 204
#define TVK_CALLBACK_INFO_NODE_BOUND 205    /* double: on the objective value of its solutions */
#define TVK_CALLBACK_INFO_NODE_COLUMN 207   /* that it was branched on; -1: no single one */
#define TVK_CALLBACK_INFO_NODE_SEQUENCE 209 /* its sequence number */
#define TVK_CALLBACK_INFO_NODE_HANDLE 210   /* void *: what its creator gave it */
/* An item of the node with this index (1200): in a node selection callback the open nodes by age; else 0 is the one that is
 * processed, if any, and the open ones follow. The other routine finds it by its sequence number. */
TVK_API int TVKgetcallbacknodeinfo(ConstEnvHandle env, void *cbdata, int wherefrom, int nodeindex, int whichinfo,
                                   void *result_p);
TVK_API int TVKgetcallbackseqinfo(ConstEnvHandle env, void *cbdata, int wherefrom, int seqid, int whichinfo,
                                  void *result_p);

/* Sets and indicators of the problem that is searched, all ints; 1200 for an index that there is not, 1217 where feasibility is
 * asked for and there is no point. An equation under an indicator counts as two. */
#define TVK_CALLBACK_INFO_SOS_COUNT 221
#define TVK_CALLBACK_INFO_SOS_TYPE 222 /* 1 or 2 */
#define TVK_CALLBACK_INFO_SOS_SIZE 223
#define TVK_CALLBACK_INFO_SOS_IS_FEASIBLE 224
#define TVK_CALLBACK_INFO_SOS_MEMBER 225 /* column of member `member`, by ascending weight */
TVK_API int TVKgetcallbacksosinfo(ConstEnvHandle env, void *cbdata, int wherefrom, int sosindex, int member, int whichinfo,
                                  void *result_p);
#define TVK_CALLBACK_INFO_INDICATOR_COUNT 231
#define TVK_CALLBACK_INFO_INDICATOR_COLUMN 232
#define TVK_CALLBACK_INFO_INDICATOR_COMPLEMENTED 233 /* 1: its row holds where the column is 0 */
#define TVK_CALLBACK_INFO_INDICATOR_IS_FEASIBLE 234
TVK_API int TVKgetcallbackindicatorinfo(ConstEnvHandle env, void *cbdata, int wherefrom, int iindex, int whichinfo,
                                        void *result_p);

/* Registers the function that is called around optimizations (null: none): with code 2 when a continuous optimizer
 * starts and 3 when it ends, with 0 before and 1 after branch-and-cut. For its calls the same holds. */
TVK_API int TVKsetprofcallbackfunc(EnvHandle env, void (*func)(ConstEnvHandle env, int code, void *handle),
                                   void *handle);

/* Optimizers ask this function now and then and stop when it returns something other than 0 (null: none). */
TVK_API void TVKEsetterminatefunc(EnvHandle env, int (*func)(void));

/* Gives the library an int that the caller owns: optimizers stop soon after it became non-zero (set it from another
 * thread or a signal handler). The int must stay valid until another one, or null for none, is set. */
TVK_API int TVKsetterminate(EnvHandle env, volatile int *terminate_p);

/* ---- Texts ---- */

/* Writes "TOVIK Error %5d: " with the code, the text of the code with its conversions left as they are, a period and a
 * newline to `buffer` (TVK_TEXT_BUFFER_SIZE bytes) and returns it. For an unknown code the buffer says "Unknown error
 * code" and the result is null; for a code outside 1..99999 the result is null and the buffer is left alone. `env` may
 * be null. */
TVK_API char *TVKgeterrorstring(ConstEnvHandle env, int errcode, char *buffer);

/* Copies the text of a solution status to `buffer` (TVK_TEXT_BUFFER_SIZE bytes) and returns it; for an unknown status
 * the text is "Unknown status value" and the result null. `env` may be null. */
TVK_API char *TVKgetstatstring(ConstEnvHandle env, int statind, char *buffer);

/* ---- Message channels ----
 * All text goes to channels: lists of destinations (files and functions). Each environment has four: results (logs and
 * results), warning, error and log. They have no destinations until the caller adds some, sets a log file, or sets
 * parameter TVK_PARAM_SCRIND to 1 (standard output for results, warning and error). A message reaches the destination
 * that was added last first; destinations may be added and removed while one is delivered: a removed one is not
 * reached any more, an added one first by the next message. Messages of any length are delivered whole and carry their
 * own newlines. The library flushes files but never closes them. Routines that take an environment too know the channels
 * of that environment, of its parent and of its parent's other children; any other one is no channel (1051). */

/* Creates a channel without destinations; null after an error (1001). */
TVK_API ChannelHandle TVKaddchannel(EnvHandle env);

/* Flushes the files of a channel, frees it and sets `*channel_p` to null. Deleting a standard channel silences it for
 * good. Errors: 1004 channel_p null; 1051 no such channel in this environment. */
TVK_API int TVKdelchannel(EnvHandle env, ChannelHandle *channel_p);

/* Flushes the files of a channel and removes all its destinations. Errors: 1051. */
TVK_API int TVKdisconnectchannel(EnvHandle env, ChannelHandle channel);

/* Flushes the files of a channel. Errors: 1051. */
TVK_API int TVKflushchannel(ConstEnvHandle env, ChannelHandle channel);

/* Adds or removes a file destination. A file that was added twice gets each message twice; one call removes the
 * newest, without flushing it. Errors: 1051 no channel; 1052 fp null, or no such destination; 1001. */
TVK_API int TVKaddfpdest(ConstEnvHandle env, ChannelHandle channel, FILE *fp);
TVK_API int TVKdelfpdest(ConstEnvHandle env, ChannelHandle channel, FILE *fp);

/* Adds or removes a function destination: the function gets `handle` (may be null) and the text. Removal wants the same
 * function and handle. Errors: 1051 no channel; 1053 function null, or no such destination; 1001. */
TVK_API int TVKaddfuncdest(ConstEnvHandle env, ChannelHandle channel, void *handle,
                           void (*msgfunction)(void *handle, const char *text));
TVK_API int TVKdelfuncdest(ConstEnvHandle env, ChannelHandle channel, void *handle,
                           void (*msgfunction)(void *handle, const char *text));

/* Formats by the rules of printf, delivers to every destination and returns the length of the text. A null channel (or
 * one that does not exist any more) delivers nothing. */
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
TVK_API int TVKmsg(ChannelHandle channel, const char *format, ...);

/* Delivers `text` as it is and returns its length. */
TVK_API int TVKmsgstr(ChannelHandle channel, const char *text);

/* The four standard channels; each address may be null. A channel that was deleted is null. */
TVK_API int TVKgetchannels(ConstEnvHandle env, ChannelHandle *results_p, ChannelHandle *warning_p,
                           ChannelHandle *error_p, ChannelHandle *log_p);

/* Flushes the files of the four standard channels. */
TVK_API int TVKflushstdchannels(ConstEnvHandle env);

/* Makes `fp` the log file, a destination of all four standard channels, in place of the one set before (which is
 * neither flushed nor closed); null for none. TVKgetlogfile returns it (null without one). Errors: 1001; 1004 fp_p
 * null. */
TVK_API int TVKsetlogfile(EnvHandle env, FILE *fp);
TVK_API int TVKgetlogfile(ConstEnvHandle env, FILE **fp_p);

/* ---- Run-time services ----
 * The standard library's routines of the same names, for callers that must share the library's run-time: what one of
 * them allocated or opened is freed or closed by its partner here. */
TVK_API FILE *TVKfopen(const char *filename, const char *mode);
TVK_API int TVKfclose(FILE *stream);
TVK_API int TVKfputs(const char *text, FILE *stream);
TVK_API void *TVKmalloc(size_t size);
TVK_API void *TVKrealloc(void *ptr, size_t size);
TVK_API void TVKfree(void *ptr);
TVK_API void *TVKmemcpy(void *dst, const void *src, size_t n);
TVK_API size_t TVKstrlen(const char *s);
TVK_API char *TVKstrcpy(char *dst, const char *src);
TVK_API int TVKputenv(char *assignment);

/* Sort `n` keys in ascending order: TVKEisort for any length, TVKEinsort by insertion for a few or nearly sorted
 * keys. */
TVK_API void TVKEisort(int n, int *keys);
TVK_API void TVKEinsort(int n, int *keys);

/* ==== Section: problem objects and solution query ==== */

/* A problem object holds one model (columns, rows, objective, names, column types) and what solving it left: a solution
 * with its status, a basis for the next start. Nearly every change of the model makes the solution unavailable (status
 * 0, queries 1217); changes of objective, bounds, ranges and right-hand sides keep the basis. */

/* Problem types. A problem of a fixed type cannot be modified (1023). */
#define TVK_PROBTYPE_LP 0
#define TVK_PROBTYPE_MILP 1
#define TVK_PROBTYPE_FIXED_MILP 3
#define TVK_PROBTYPE_QP 5
#define TVK_PROBTYPE_MIQP 7
#define TVK_PROBTYPE_FIXED_MIQP 8
#define TVK_PROBTYPE_QCP 10
#define TVK_PROBTYPE_MIQCP 11
#define TVK_PROBTYPE_FIXED_MIQCP 13

/* Creates an empty problem (no rows, no columns, minimize, type 0) with the name `probname`. `*status_p` (if not null)
 * receives 0 or the code that goes with a null result: 1002, 1004 probname null, 1001. */
TVK_API ProbHandle TVKcreateprob(ConstEnvHandle env, int *status_p, const char *probname);

/* Creates a copy of the model of `lp`, with all its names and data, in `env`. The solution and the basis are not
 * copied. `*status_p` as in TVKcreateprob, and 1009, 1806. */
TVK_API ProbHandle TVKcloneprob(ConstEnvHandle env, ConstProbHandle lp, int *status_p);

/* Frees the problem `*lp_p` with all that belongs to it and sets `*lp_p` to null. Errors: 1004 lp_p null, 1009, 1806,
 * 1804 a routine is working on it. */
TVK_API int TVKfreeprob(ConstEnvHandle env, ProbHandle *lp_p);

/* The problem type, -1 after an error. */
TVK_API int TVKgetprobtype(ConstEnvHandle env, ConstProbHandle lp);

/* Changes the problem type: frees what the new type cannot hold and keeps the rest. Mixed-integer data (column types, sets,
 * indicator constraints, cuts, lazy constraints, priority order, MIP starts) belong to 1, 7 and 11, which begin with types
 * of 'C'; a quadratic objective to 5, 7, 10, 11; quadratic constraints to 10 and 11. Columns of type 'S' and 'N', which may be
 * 0 whatever their bounds, become continuous ones whose bounds admit 0. Each change discards the solution and
 * the basis; asking for the present type changes nothing. While TVK_PARAM_DATACHECK is 1 a line on the warning channel
 * tells which data are freed.
 *
 * 3, 8 and 13 fix a mixed-integer problem of the matching kind at its solution, for the duals, the basis and the ranges of what
 * is left: integer columns and semi-continuous ones and members of sets that are 0 stand at their values, lazy constraints and
 * active indicator constraints stand as rows behind the others (TVKgetnumrows counts them). TVKlpopt and its kin solve it.
 * Going back to 1, 7 or 11 brings back rows and bounds; 0, 5 and 10 make a continuous problem of it that can be modified.
 * Asking for the fixed type again discards what was solved since. Errors: 1024, 1029, 9019 not of the matching kind, or no
 * solution; 1012; 1022 for any other number. */
TVK_API int TVKchgprobtype(ConstEnvHandle env, ProbHandle lp, int type);

/* Sets to zero each objective coefficient, right-hand side, range value, bound and matrix coefficient with an absolute
 * value less than `eps` and removes those matrix entries; the same in the quadratic objective and in constraints of every
 * other kind. Errors: 1023 for a fixed problem; 1001. */
TVK_API int TVKcleanup(ConstEnvHandle env, ProbHandle lp, double eps);

/* Drops the scaling that optimizers keep for the next start (model and solution are in the caller's units in any
 * case). */
TVK_API int TVKunscaleprob(ConstEnvHandle env, ProbHandle lp);

/* ---- Solution query ----
 * Which status each needs: TVKgetx, slack, ax, objval and the infeasibilities any with a point (1, 2, 5, 6, 10 to 13, 21, 22, 900;
 * 1217 else), TVKgetpi and dj the same where the point comes with duals (1232 else), TVKgetobjsens and its kin 1 or 5 with a
 * basis, TVKgetray 2, TVKgetfarkas 3.
 * All routines check in this order: handles; a null array that is required (1004); the range begin..end, inclusive,
 * of the rows or columns (a line 1205 and/or 1206, then 1200); 1017 dual values of a mixed-integer problem; 1217 no
 * solution; 1232 no dual values; 3023 a mixed-integer solution whose values are not available.
 * Signs, in the objective sense of the problem: slack = rhs - activity for every row, ranged rows included;
 * pi = change of the objective value per unit of right-hand side; dj = obj - A'pi. */

/* Status of the solution, TVK_STATUS_..., 0 without one or after an error. */
TVK_API int TVKgetstat(ConstEnvHandle env, ConstProbHandle lp);

/* Everything at once; each output may be null. x and dj hold one value for each column, pi and slack one for each row.
 *
 *     int status; double value; double *x = malloc(columns * sizeof(double));
 *     TVKlpopt(env, lp);
 *     if (TVKsolution(env, lp, &status, &value, x, NULL, NULL, NULL) == 0 && status == TVK_STATUS_OPTIMAL) ... */
TVK_API int TVKsolution(ConstEnvHandle env, ConstProbHandle lp, int *lpstat_p, double *objval_p, double *x, double *pi,
                        double *slack, double *dj);

/* What there is; each output may be null. Method: of the optimizer that made the solution (1 primal simplex, 2 dual
 * simplex, 4 barrier; 11 or 12 for mixed-integer), -1 without solution. Type: 0 none, 1 basic (primal and dual values
 * and a basis), 2 primal and dual values, 3 primal values only. The indicators are 1 when the solution is primal or
 * dual feasible, else 0. A problem without solution is no error. */
TVK_API int TVKsolninfo(ConstEnvHandle env, ConstProbHandle lp, int *solnmethod_p, int *solntype_p, int *pfeasind_p,
                        int *dfeasind_p);

/* Objective value of the solution. */
TVK_API int TVKgetobjval(ConstEnvHandle env, ConstProbHandle lp, double *objval_p);

/* Entries begin..end of the solution, into positions 0..end-begin of the array: column values, row duals, row slacks,
 * reduced costs, row activities. */
TVK_API int TVKgetx(ConstEnvHandle env, ConstProbHandle lp, double *x, int begin, int end);
TVK_API int TVKgetpi(ConstEnvHandle env, ConstProbHandle lp, double *pi, int begin, int end);
TVK_API int TVKgetslack(ConstEnvHandle env, ConstProbHandle lp, double *slack, int begin, int end);
TVK_API int TVKgetdj(ConstEnvHandle env, ConstProbHandle lp, double *dj, int begin, int end);
TVK_API int TVKgetax(ConstEnvHandle env, ConstProbHandle lp, double *ax, int begin, int end);

/* By how much the point `x` (one value for each column; null: the current solution) violates each row, or the bounds
 * of each column: positive above the upper limit, negative below the lower one, 0 within. A value that is not a number
 * stays one. A semi-continuous or semi-integer column may also be 0; integrality is not looked at. */
TVK_API int TVKgetrowinfeas(ConstEnvHandle env, ConstProbHandle lp, const double *x, double *infeas, int begin, int end);
TVK_API int TVKgetcolinfeas(ConstEnvHandle env, ConstProbHandle lp, const double *x, double *infeas, int begin, int end);

/* Method of the solution as in TVKsolninfo; 0 after an error (1217 without solution). */
TVK_API int TVKgetmethod(ConstEnvHandle env, ConstProbHandle lp);

/* Counters of the last optimization: simplex iterations, those of them in phase 1, barrier iterations, and the primal
 * and dual pushes and exchanges of crossover. 0 before the first one and after an error. */
TVK_API int TVKgetitcnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetphase1cnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetbaritcnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetcrossppushcnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetcrosspexchcnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetcrossdpushcnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetcrossdexchcnt(ConstEnvHandle env, ConstProbHandle lp);

/* What the last optimization has counted, as the text of one JSON object on one line, terminating zero included; `space`
 * and `*surplus_p` as in TVKgetprobname. Versions to come may add members. All numbers are whole but for densities, fill and those
 * of `mip`.
 *
 * presolve  null where it did not run, else: rounds, aggregator_rounds; reductions, an object with a count for each rule;
 *           rows_eliminated and columns_eliminated, and substitutions, which take a row and a column each beside them;
 *           bounds_improved, coefficients_modified; before and after, each with rows, columns and nonzeros; dual_form, true
 *           where the dual of what was left was solved
 * simplex   iterations (TVKgetitcnt), which are those of dual, primal and sifting; dual and primal, each with
 *           phase1_iterations, phase2_iterations, bound_flips (the dual's within its iterations, the primal's are
 *           iterations), perturbations, restores (of costs or bounds that were perturbed or shifted), weight_resets, and of the
 *           dual rows_scanned and rows_rejected while it chose the leaving row; sifting, with rounds and iterations; shifts of
 *           single costs and bounds; factorizations: all, by reason (start no factor at hand, growth updates have made it
 *           long, update one was refused, pivot one was small or inaccurate, check of a claim or of values, accuracy once
 *           more with larger pivots), singular_bases and columns_replaced in them; densities, running averages of the shares
 *           of nonzeros in ftran, btran, row (of the tableau), dse (for weights) and flips
 * factor    of the last factorization basis_nonzeros, l_nonzeros, u_nonzeros (without diagonals), fill (entries of the factor
 *           by entries of the basis, null without a factor) and kernel (the order of what singletons leave); of all of them
 *           builds, updates, refused_updates; triangles solved with only where there are values (sparse_sweeps), as a whole
 *           (plain_sweeps) or in one way after the other (switched_sweeps), and joint_solves, vectors solved for several at once
 * barrier   only where it ran: iterations, factorizations, solves, rows of the system that was factored, factor_nonzeros,
 *           factor_flops (of one factorization), ordering_seconds, seconds; with it crossover: primal_pushes,
 *           primal_exchanges, dual_pushes, dual_exchanges, seconds
 * network   only of TVKhybnetopt and its method: nodes and arcs that were found, iterations, phase1_iterations,
 *           extraction_seconds, seconds
 * ticks     deterministic work by kind: presolve, sifting, factor_builds, factor_solves, factor_updates, barrier, network, and
 *           simplex, all the rest, crossover too. Sifting's working problems are counted under sifting alone
 * mip       only of a mixed-integer search, all runs of a tree together; objectives and bounds in the sense of the problem, null
 *           where there is none, seconds by the clock that TVK_PARAM_CLOCKTYPE names: seconds, nodes, nodes_left,
 *           nodes_per_second behind the root, largest_depth, tree_cut_rounds, solutions, best_bound; conflicts: learned (clauses
 *           from nodes without a better solution), bounds in them, propagations that they made; iterations: all, and those of
 *           strong_branching, heuristics and solution_check; root: seconds until it was branched on, bound_before_cuts,
 *           bound_after_cuts, cut_rounds, gap_closed (share of the gap between the first bound and the last incumbent);
 *           phases presolve, root_lp, cuts (and the solves after each round), heuristics, branching and tree (all the rest), each
 *           with seconds and ticks; separators and heuristics by name with calls, successes, cuts or points that they handed out,
 *           seconds; cuts, how many of each class became rows; symmetry: generators of the group that was found, orbitopes
 *           (matrices whose columns it permutes in every way), moved (binary columns where use is made of it), fixings (bounds at nodes that came of it), ticks, detection_ticks (those of them that the
 *           generators took); primal_integral: seconds, each weighed by the distance of the
 *           incumbent from the last one; incumbents, the first 999 and the last, with seconds, nodes, objective and found_by.
 *           The other members then tell of the relaxation of the tree
 * threads   how many threads have worked
 *
 * Errors: 1217 before the first optimization; 1207 space too small; 1004.
 *
 *     int surplus;
 *     TVKgetstatistics(env, lp, NULL, 0, &surplus);
 *     char *text = malloc(-surplus);
 *     TVKgetstatistics(env, lp, text, -surplus, &surplus); */
TVK_API int TVKgetstatistics(ConstEnvHandle env, ConstProbHandle lp, char *buffer, int space, int *surplus_p);

/* Deterministic work of the last optimization in ticks: the sum of the member `ticks` above, of a
 * mixed-integer search the sum over its phases. The same for the same problem,
 * parameters and start on every machine; roughly what the tick limit counts. Errors: 1217, 1004. */
TVK_API int TVKgetticks(ConstEnvHandle env, ConstProbHandle lp, double *ticks_p);

/* ==== Section: parameters ==== */

/* Parameter numbers, each with its type, default and range. What a parameter does: TVKgetparamdesc, or `tovik params --all`;
 * "stored only" has no effect in this version. Thread counts go up to what the machine has. Contents of arrays are looked at
 * while TVK_PARAM_DATACHECK is 1, which it is not by default: set it while developing. Numbers of parameters and codes of
 * errors are two different things that share digits. */
/* General, linear programs, presolve, simplex, reading limits, threads, tuning: 1001-1127 */
#define TVK_PARAM_ADVIND                 1001 /* int 1, 0 to 2 */
#define TVK_PARAM_AGGFILL                1002 /* int 10, 0 to 2100000000 */
#define TVK_PARAM_AGGIND                 1003 /* int -1, -1 to 2100000000 */
#define TVK_PARAM_CFILEMUL               1005 /* double 3, 1.1 to 1e75; stored only */
#define TVK_PARAM_CLOCKTYPE              1006 /* int 2, 0 to 2 */
#define TVK_PARAM_CRAIND                 1007 /* int 1, -1 to 1; stored only */
#define TVK_PARAM_DEPIND                 1008 /* int -1, -1 to 3 */
#define TVK_PARAM_DPRIIND                1009 /* int 0, 0 to 5 */
#define TVK_PARAM_PRICELIM               1010 /* int 0, 0 to 2100000000 */
#define TVK_PARAM_EPMRK                  1013 /* double 0.01, 1e-4 to 0.99999 */
#define TVK_PARAM_EPOPT                  1014 /* double 1e-6, 1e-9 to 0.1 */
#define TVK_PARAM_EPPER                  1015 /* double 1e-6, 1e-8 to 1e75 */
#define TVK_PARAM_EPRHS                  1016 /* double 1e-6, 1e-9 to 0.1 */
#define TVK_PARAM_SIMDISPLAY             1019 /* int 1, 0 to 2 */
#define TVK_PARAM_ITLIM                  1020 /* int 2100000000, 0 to 2100000000 */
#define TVK_PARAM_ROWREADLIM             1021 /* int 30000, 0 to 524999999; stored only */
#define TVK_PARAM_NETFIND                1022 /* int 2, 1 to 3 */
#define TVK_PARAM_COLREADLIM             1023 /* int 60000, 0 to 524999999; stored only */
#define TVK_PARAM_NZREADLIM              1024 /* int 250000, 0 to 524999999; stored only */
#define TVK_PARAM_OBJLLIM                1025 /* double -1e75, any */
#define TVK_PARAM_OBJULIM                1026 /* double 1e75, any */
#define TVK_PARAM_PERIND                 1027 /* int 0, 0 to 1 */
#define TVK_PARAM_PERLIM                 1028 /* int 0, 0 to 2100000000 */
#define TVK_PARAM_PPRIIND                1029 /* int 0, -1 to 4 */
#define TVK_PARAM_PREIND                 1030 /* int 1, 0 to 1 */
#define TVK_PARAM_REINV                  1031 /* int 0, 0 to 10000 */
#define TVK_PARAM_RFILEMUL               1033 /* double 3, 1.1 to 1e75; stored only */
#define TVK_PARAM_SCAIND                 1034 /* int 0, -1 to 1 */
#define TVK_PARAM_SCRIND                 1035 /* int 0, 0 to 1 */
#define TVK_PARAM_SINGLIM                1037 /* int 10, 0 to 2100000000 */
#define TVK_PARAM_SINGTOL                1038 /* double 1e-13, 1e-10 to 0.9; stored only */
#define TVK_PARAM_TILIM                  1039 /* double 1e75, 0 to 1e75 */
#define TVK_PARAM_PREDUAL                1044 /* int 0, -1 to 1 */
#define TVK_PARAM_PREPASS                1052 /* int -1, -1 to 2100000000 */
#define TVK_PARAM_DATACHECK              1056 /* int 0, 0 to 1 */
#define TVK_PARAM_REDUCE                 1057 /* int 3, 0 to 3 */
#define TVK_PARAM_PRELINEAR              1058 /* int 1, 0 to 1 */
#define TVK_PARAM_LPMETHOD               1062 /* int 0, 0 to 6 */
#define TVK_PARAM_QPMETHOD               1063 /* int 0, 0 to 6; stored only */
#define TVK_PARAM_WORKDIR                1064 /* string "." */
#define TVK_PARAM_WORKMEM                1065 /* double 128, 0 to 1e75 */
#define TVK_PARAM_THREADS                1067 /* int 0, from 0 */
#define TVK_PARAM_CONFLICTDISPLAY        1074 /* int 1, 0 to 2; stored only */
#define TVK_PARAM_SIFTDISPLAY            1076 /* int 1, 0 to 2; stored only */
#define TVK_PARAM_SIFTALG                1077 /* int 0, 0 to 4; stored only */
#define TVK_PARAM_SIFTITLIM              1078 /* int 2100000000, 0 to 2100000000; stored only */
#define TVK_PARAM_MPSLONGNUM             1081 /* int 1, 0 to 1 */
#define TVK_PARAM_MEMORYEMPHASIS         1082 /* int 0, 0 to 1 */
#define TVK_PARAM_NUMERICALEMPHASIS      1083 /* int 0, 0 to 1; stored only */
#define TVK_PARAM_FEASOPTMODE            1084 /* int 0, 0 to 5; stored only */
#define TVK_PARAM_PARALLELMODE           1109 /* int 0, -1 to 1 */
#define TVK_PARAM_TUNINGMEASURE          1110 /* int 1, 1 to 2; stored only */
#define TVK_PARAM_TUNINGREPEAT           1111 /* int 1, 1 to 2100000000; stored only */
#define TVK_PARAM_TUNINGTILIM            1112 /* double 10000, 1 to 1e75; stored only */
#define TVK_PARAM_TUNINGDISPLAY          1113 /* int 1, 0 to 3; stored only */
#define TVK_PARAM_WRITELEVEL             1114 /* int 0, 0 to 4 */
#define TVK_PARAM_PERFVAR_RUNS           1121 /* int 10, 2 to 2100000000; stored only */
#define TVK_PARAM_PERFVAR_DISPLAY        1122 /* int 1, 0 to 2; stored only */
#define TVK_PARAM_PERFVAR_MEASURE        1123 /* int 0, 0 to 1; stored only */
/* Mixed-integer optimizer: 2000-2139 */
#define TVK_PARAM_BRDIR                  2001 /* int 0, -1 to 1 */
#define TVK_PARAM_BTTOL                  2002 /* double 0.9999, 0 to 1 */
#define TVK_PARAM_CLIQUES                2003 /* int 0, -1 to 3 */
#define TVK_PARAM_COEREDIND              2004 /* int 2, 0 to 2 */
#define TVK_PARAM_COVERS                 2005 /* int 0, -1 to 3 */
#define TVK_PARAM_CUTLO                  2006 /* double -1e75, any */
#define TVK_PARAM_CUTUP                  2007 /* double 1e75, any */
#define TVK_PARAM_EPAGAP                 2008 /* double 1e-6, 0 to 1e20 */
#define TVK_PARAM_EPGAP                  2009 /* double 1e-4, 0 to 1 */
#define TVK_PARAM_EPINT                  2010 /* double 1e-5, 0 to 0.5 */
#define TVK_PARAM_MIPDISPLAY             2012 /* int 2, 0 to 5 */
#define TVK_PARAM_MIPINTERVAL            2013 /* int 0, -2100000000 to 2100000000 */
#define TVK_PARAM_INTSOLLIM              2015 /* int 2100000000, 1 to 2100000000 */
#define TVK_PARAM_NODEFILEIND            2016 /* int 1, 0 to 3 */
#define TVK_PARAM_NODELIM                2017 /* int 2100000000, 0 to 2100000000 */
#define TVK_PARAM_NODESEL                2018 /* int 1, 0 to 3 */
#define TVK_PARAM_OBJDIF                 2019 /* double 0, any */
#define TVK_PARAM_MIPORDIND              2020 /* int 1, 0 to 1 */
#define TVK_PARAM_RELOBJDIF              2022 /* double 0, 0 to 1 */
#define TVK_PARAM_STARTALG               2025 /* int 0, 0 to 6 */
#define TVK_PARAM_SUBALG                 2026 /* int 0, 0 to 5 */
#define TVK_PARAM_TRELIM                 2027 /* double 1e75, 0 to 1e75 */
#define TVK_PARAM_VARSEL                 2028 /* int 0, -1 to 4 */
#define TVK_PARAM_BNDSTRENIND            2029 /* int -1, -1 to 1 */
#define TVK_PARAM_HEURFREQ               2031 /* int 0, -1 to 2100000000 */
#define TVK_PARAM_MIPORDTYPE             2032 /* int 0, 0 to 3 */
#define TVK_PARAM_CUTSFACTOR             2033 /* double 4, 0 to 1e75 */
#define TVK_PARAM_RELAXPREIND            2034 /* int -1, -1 to 1 */
#define TVK_PARAM_PRESLVND               2037 /* int 0, -1 to 2 */
#define TVK_PARAM_BBINTERVAL             2039 /* int 7, 0 to 2100000000 */
#define TVK_PARAM_FLOWCOVERS             2040 /* int 0, -1 to 2 */
#define TVK_PARAM_IMPLBD                 2041 /* int 0, -1 to 2 */
#define TVK_PARAM_PROBE                  2042 /* int 0, -1 to 3 */
#define TVK_PARAM_GUBCOVERS              2044 /* int 0, -1 to 2 */
#define TVK_PARAM_STRONGCANDLIM          2045 /* int 10, 1 to 2100000000 */
#define TVK_PARAM_STRONGITLIM            2046 /* int 0, 0 to 2100000000 */
#define TVK_PARAM_FRACCAND               2048 /* int 200, 1 to 2100000000 */
#define TVK_PARAM_FRACCUTS               2049 /* int 0, -1 to 2 */
#define TVK_PARAM_FRACPASS               2050 /* int 0, 0 to 2100000000 */
#define TVK_PARAM_FLOWPATHS              2051 /* int 0, -1 to 2 */
#define TVK_PARAM_MIRCUTS                2052 /* int 0, -1 to 2 */
#define TVK_PARAM_DISJCUTS               2053 /* int 0, -1 to 3; stored only */
#define TVK_PARAM_AGGCUTLIM              2054 /* int 3, 0 to 2100000000 */
#define TVK_PARAM_MIPCBREDLP             2055 /* int 1, 0 to 1 */
#define TVK_PARAM_CUTPASS                2056 /* int 0, -1 to 2100000000 */
#define TVK_PARAM_MIPEMPHASIS            2058 /* int 0, 0 to 4 */
#define TVK_PARAM_SYMMETRY               2059 /* int -1, -1 to 5 */
#define TVK_PARAM_DIVETYPE               2060 /* int 0, 0 to 3 */
#define TVK_PARAM_RINSHEUR               2061 /* int 0, -1 to 2100000000 */
#define TVK_PARAM_SUBMIPNODELIM          2062 /* int 500, 1 to 2100000000 */
#define TVK_PARAM_LBHEUR                 2063 /* int 0, 0 to 1 */
#define TVK_PARAM_REPEATPRESOLVE         2064 /* int -1, -1 to 3 */
#define TVK_PARAM_PROBETIME              2065 /* double 1e75, 0 to 1e75 */
#define TVK_PARAM_POLISHTIME             2066 /* double 0, 0 to 1e75 */
#define TVK_PARAM_REPAIRTRIES            2067 /* int 0, -1 to 2100000000 */
#define TVK_PARAM_EPRELAX                2073 /* double 1e-6, 0 to 1e20; stored only */
#define TVK_PARAM_FPHEUR                 2098 /* int 0, -1 to 2 */
#define TVK_PARAM_EACHCUTLIM             2102 /* int 2100000000, 0 to 2100000000 */
#define TVK_PARAM_SOLNPOOLCAPACITY       2103 /* int 2100000000, 0 to 2100000000 */
#define TVK_PARAM_SOLNPOOLREPLACE        2104 /* int 0, 0 to 2 */
#define TVK_PARAM_SOLNPOOLGAP            2105 /* double 1e75, 0 to 1e75 */
#define TVK_PARAM_SOLNPOOLAGAP           2106 /* double 1e75, 0 to 1e75 */
#define TVK_PARAM_SOLNPOOLINTENSITY      2107 /* int 0, 0 to 4 */
#define TVK_PARAM_POPULATELIM            2108 /* int 20, 1 to 2100000000 */
#define TVK_PARAM_MIPSEARCH              2109 /* int 0, 0 to 2 */
#define TVK_PARAM_MIQCPSTRAT             2110 /* int 0, 0 to 2; stored only */
#define TVK_PARAM_ZEROHALFCUTS           2111 /* int 0, -1 to 2 */
#define TVK_PARAM_POLISHAFTEREPAGAP      2126 /* double 0, 0 to 1e20 */
#define TVK_PARAM_POLISHAFTEREPGAP       2127 /* double 0, 0 to 1 */
#define TVK_PARAM_POLISHAFTERNODE        2128 /* int 2100000000, 0 to 2100000000 */
#define TVK_PARAM_POLISHAFTERINTSOL      2129 /* int 2100000000, 1 to 2100000000 */
#define TVK_PARAM_POLISHAFTERTIME        2130 /* double 1e75, 0 to 1e75 */
#define TVK_PARAM_MCFCUTS                2134 /* int 0, -1 to 2; stored only */
#define TVK_PARAM_MIPKAPPASTATS          2137 /* int 0, -1 to 2; stored only */
#define TVK_PARAM_AUXROOTTHREADS         2139 /* int 0, from -1; stored only */
/* Barrier optimizer: 3001-3034 */
#define TVK_PARAM_BAREPCOMP              3002 /* double 1e-8, 1e-12 to 1e75 */
#define TVK_PARAM_BARGROWTH              3003 /* double 1e12, 1 to 1e75 */
#define TVK_PARAM_BAROBJRNG              3004 /* double 1e20, 0 to 1e75 */
#define TVK_PARAM_BARALG                 3007 /* int 0, 0 to 3 */
#define TVK_PARAM_BARCOLNZ               3009 /* int 0, 0 to 2100000000 */
#define TVK_PARAM_BARDISPLAY             3010 /* int 1, 0 to 2 */
#define TVK_PARAM_BARITLIM               3012 /* int 2100000000, 0 to 2100000000 */
#define TVK_PARAM_BARMAXCOR              3013 /* int -1, -1 to 2100000000 */
#define TVK_PARAM_BARORDER               3014 /* int 0, 0 to 3 */
#define TVK_PARAM_BARSTARTALG            3017 /* int 1, 1 to 4 */
#define TVK_PARAM_BARCROSSALG            3018 /* int 0, -1 to 2 */
#define TVK_PARAM_BARQCPEPCOMP           3020 /* double 1e-7, 1e-12 to 1e75; stored only */
/* Quadratic programs: 4001-4010 */
#define TVK_PARAM_QPNZREADLIM            4001 /* int 5000, 0 to 524999999; stored only */
#define TVK_PARAM_QPMAKEPSDIND           4010 /* int 1, 0 to 1; stored only */
/* Network optimizer: 5001-5005 */
#define TVK_PARAM_NETITLIM               5001 /* int 2100000000, 0 to 2100000000 */
#define TVK_PARAM_NETEPOPT               5002 /* double 1e-6, 1e-11 to 0.1 */
#define TVK_PARAM_NETEPRHS               5003 /* double 1e-6, 1e-11 to 0.1 */
#define TVK_PARAM_NETPPRIIND             5004 /* int 0, 0 to 3 */
#define TVK_PARAM_NETDISPLAY             5005 /* int 2, 0 to 2 */

/* Type codes that TVKgetparamtype answers. */
#define TVK_PARAMTYPE_NONE 0   /* no parameter has this number */
#define TVK_PARAMTYPE_INT 1    /* TVKsetintparam, TVKgetintparam, TVKinfointparam */
#define TVK_PARAMTYPE_DOUBLE 2 /* TVKsetdblparam, TVKgetdblparam, TVKinfodblparam */
#define TVK_PARAMTYPE_STRING 3 /* TVKsetstrparam, TVKgetstrparam, TVKinfostrparam */

/* Sizes of caller's buffers, terminating zero included. */
#define TVK_STR_PARAM_MAX 512  /* TVKgetstrparam, TVKinfostrparam; texts set have at most 511 bytes */
#define TVK_PARAM_NAME_MAX 64  /* TVKgetparamname */
#define TVK_PARAM_DESC_MAX 256 /* TVKgetparamdesc */

/* Every routine of this section returns 0, or 1002 for a bad environment, 1804 from inside an info callback, 1013 for a
 * number that is no parameter (of the routine's type), 1004 for a null argument that is not optional, or what stands
 * with it. A failed routine changes nothing. Settings belong to one environment; do not change them while an
 * optimization runs in it. Numbers without a name are internal switches: they can be set, but are never listed.
 * Double parameters whose minimum equals their maximum take any value.
 *
 *   TVKsetintparam (env, TVK_PARAM_ITLIM, 5000);
 *   TVKsetdblparam (env, TVK_PARAM_TILIM, 60.0); */

/* Set a value. 1014 and 1015: value below or above the range; 1026: text longer than 511 bytes; 1807: polishing is to
 * start both by its own time (TVK_PARAM_POLISHTIME) and by one of the TVK_PARAM_POLISHAFTER conditions.
 * TVK_PARAM_SCRIND connects (1) and disconnects (0) standard output with the results, warning and error channels. */
TVK_API int TVKsetintparam(EnvHandle env, int number, int value);
TVK_API int TVKsetdblparam(EnvHandle env, int number, double value);
TVK_API int TVKsetstrparam(EnvHandle env, int number, const char *text);

/* Current value; buffer holds TVK_STR_PARAM_MAX bytes. */
TVK_API int TVKgetintparam(ConstEnvHandle env, int number, int *value_p);
TVK_API int TVKgetdblparam(ConstEnvHandle env, int number, double *value_p);
TVK_API int TVKgetstrparam(ConstEnvHandle env, int number, char *buffer);

/* Default and range; each output may be null. default_text holds TVK_STR_PARAM_MAX bytes. The largest thread counts
 * depend on the machine. */
TVK_API int TVKinfointparam(ConstEnvHandle env, int number, int *default_p, int *min_p, int *max_p);
TVK_API int TVKinfodblparam(ConstEnvHandle env, int number, double *default_p, double *min_p, double *max_p);
TVK_API int TVKinfostrparam(ConstEnvHandle env, int number, char *default_text);

/* Name of a number, TVK_PARAM_NAME_MAX bytes: "TVK_PARAM_ITLIM" for 1020; empty for a number without a name. */
TVK_API int TVKgetparamname(ConstEnvHandle env, int number, char *name);

/* Number of an exact name, or 1028 and -1 for a name that there is not. */
TVK_API int TVKgetparamnum(ConstEnvHandle env, const char *name, int *number_p);

/* One of TVK_PARAMTYPE_..; type_p may be null. */
TVK_API int TVKgetparamtype(ConstEnvHandle env, int number, int *type_p);

/* What the parameter does, one line of less than TVK_PARAM_DESC_MAX bytes; it says so when a parameter is only stored.
 * Empty for a number without a name. */
TVK_API int TVKgetparamdesc(ConstEnvHandle env, int number, char *buffer);

/* Numbers of the named parameters that differ from their defaults, ascending. Stores at most `space` of them, their
 * count in *count_p and in *surplus_p space minus the number of changed ones. 1207 if that is negative; with space 0
 * (numbers may be null then) this 1207 prints no message, and -surplus numbers are wanted:
 *
 *   int count, surplus;
 *   TVKgetchgparam (env, &count, NULL, 0, &surplus); */
TVK_API int TVKgetchgparam(ConstEnvHandle env, int *count_p, int *numbers, int space, int *surplus_p);

/* Every parameter back to its default, standard output disconnected, the random seed renewed. */
TVK_API int TVKsetdefaults(EnvHandle env);

/* ==== Section: models, copy, modification, names, query ==== */

/* A model has columns (variables) with objective coefficients, bounds, and types if it is a mixed-integer one, and rows
 * (constraints) with senses and right-hand sides:
 *
 *     minimize or maximize  offset + obj'x   subject to   each row,   lb <= x <= ub
 *
 * Senses   'L': ax <= rhs.  'G': ax >= rhs.  'E': ax = rhs.  'R': ranged by a range value r:
 *          rhs <= ax <= rhs + r when r >= 0, rhs + r <= ax <= rhs when r < 0.
 * Infinity a bound of 1e20 or more is no upper bound, of -1e20 or less no lower bound; such bounds come back as +-1e20.
 * Matrix   sparse, by vectors: entries of vector k at positions beg[k] to beg[k] + cnt[k] - 1 of ind (indices) and val
 *          (values). Where a routine takes no counts, a vector ends where the next one begins, the last at nzcnt. The
 *          model stores no zeros: entries with the value 0 are dropped.
 * Null     optional vectors may be null; then obj is 0, lb 0, ub 1e20, rhs 0, sense 'E', range 0, type 'C'.
 * Names    a family has names for all items or for none. Where only some are given, the others get the family's letter and
 *          their number from 1 (x7), or the next free number when that name is taken. Letters: x columns, c rows, s sets,
 *          i indicator constraints, u user cuts, l lazy constraints, q quadratic constraints, m MIP starts.
 *
 * While TVK_PARAM_DATACHECK is 1, contents are checked too; the line of the first bad entry tells its position:
 * 1215 sense, 1229 bound indicator, 3021 type, 1225 not a number, 1233 infinite number, 1224 null name, and for a matrix
 * 1226 beginnings that descend, 1227 a bad count, 1228 overlapping vectors, 1222 an index twice in one vector. While it is
 * 0 such data are accepted (values of a repeated index are added up). Indices (1201 columns, 1203 rows, with the
 * position) and what would be read outside the arrays (1200, 1227, 1228) are checked in any case.
 *
 * Routines that modify return 1023 for a problem of a fixed type, 1003 for a negative count, 1004 for a null pointer
 * that is required, 1012 for a count above 2100000000 (before anything is read) and when the model would exceed that many
 * rows, columns or entries, and 1001 without memory. What
 * a change discards stands at "problem objects": nearly all make the solution unavailable. Added rows and columns join a
 * starting basis (slack basic; column non-basic). Deletions that leave it a basis keep it; after others the next
 * optimization starts from what is left, with a pivot for each tight row or basic column, and until then there is no
 * basis (1262). */

/* ---- Copying a whole model ---- */

/* Replaces the model of `lp`: a continuous problem (type 0) without solution and basis, whatever it was. numcols values in
 * obj, matbeg, matcnt, lb, ub, colname; numrows in rhs, sense, rngval, rowname. The matrix is by columns with row indices
 * in matind; space may be left between columns. objsense: TVK_MIN or TVK_MAX. rngval counts for 'R' rows only. Only
 * rngval, colname and rowname may be null, also when a count is 0. With TVK_PARAM_DATACHECK 1: 1003 for another
 * objsense or for an 'R' row without rngval.
 *
 *     // maximize 2x + 3y  subject to  c1: x + y <= 4,  x <= 3
 *     double obj[] = {2, 3}, rhs[] = {4}, val[] = {1, 1}, lb[] = {0, 0}, ub[] = {3, TVK_INFBOUND};
 *     int beg[] = {0, 1}, cnt[] = {1, 1}, ind[] = {0, 0};
 *     TVKcopylp(env, lp, 2, 1, TVK_MAX, obj, rhs, "L", beg, cnt, ind, val, lb, ub, NULL); */
TVK_API int TVKcopylp(ConstEnvHandle env, ProbHandle lp, int numcols, int numrows, int objsense, const double *obj,
                      const double *rhs, const char *sense, const int *matbeg, const int *matcnt, const int *matind,
                      const double *matval, const double *lb, const double *ub, const double *rngval);
TVK_API int TVKcopylpwnames(ConstEnvHandle env, ProbHandle lp, int numcols, int numrows, int objsense,
                            const double *obj, const double *rhs, const char *sense, const int *matbeg,
                            const int *matcnt, const int *matind, const double *matval, const double *lb,
                            const double *ub, const double *rngval, TVKnames colname, TVKnames rowname);

/* ---- Adding and deleting ---- */

/* Appends rcnt rows and, before them, ccnt empty columns (obj 0, bounds [0, 1e20]) that the rows may use. The matrix is by
 * rows with column indices in rmatind; its three arrays may be null when nzcnt is 0. New 'R' rows have the range 0. With
 * rcnt 0 nothing is added, no columns either. */
TVK_API int TVKaddrows(ConstEnvHandle env, ProbHandle lp, int ccnt, int rcnt, int nzcnt, const double *rhs,
                       const char *sense, const int *rmatbeg, const int *rmatind, const double *rmatval,
                       TVKnames colname, TVKnames rowname);

/* Appends ccnt columns. The matrix is by columns with indices of existing rows in cmatind; its three arrays may be null
 * when nzcnt is 0. */
TVK_API int TVKaddcols(ConstEnvHandle env, ProbHandle lp, int ccnt, int nzcnt, const double *obj, const int *cmatbeg,
                       const int *cmatind, const double *cmatval, const double *lb, const double *ub, TVKnames colname);

/* Appends rows or columns without matrix entries. Columns with ctype make the problem a mixed-integer one. */
TVK_API int TVKnewrows(ConstEnvHandle env, ProbHandle lp, int rcnt, const double *rhs, const char *sense,
                       const double *rngval, TVKnames rowname);
TVK_API int TVKnewcols(ConstEnvHandle env, ProbHandle lp, int ccnt, const double *obj, const double *lb,
                       const double *ub, const char *ctype, TVKnames colname);

/* Deletes rows (columns) begin..end; later ones move down. begin > end deletes nothing. Errors: 1205/1206 and 1200. */
TVK_API int TVKdelrows(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKdelcols(ConstEnvHandle env, ProbHandle lp, int begin, int end);

/* Deletes the rows (columns) whose entry of delstat, one for each, is exactly 1. On return delstat holds the new index of
 * each, -1 for a deleted one. */
TVK_API int TVKdelsetrows(ConstEnvHandle env, ProbHandle lp, int *delstat);
TVK_API int TVKdelsetcols(ConstEnvHandle env, ProbHandle lp, int *delstat);

/* ---- Changing values: cnt entries each, for the rows or columns in `indices` ---- */

/* Sets the coefficient of row i and column j; 0 removes it. Row -1 is the objective, column -1 the right-hand side, column
 * -2 the range value. Errors: 1211 row -1 with a negative column; 1200 outside; 1216 column -2 without ranged rows. */
TVK_API int TVKchgcoef(ConstEnvHandle env, ProbHandle lp, int i, int j, double value);

/* Sets numcoefs coefficients. Errors: 1222 a (row, column) pair twice. With one or two coefficients otherwise as
 * TVKchgcoef; with three or more only rows and columns of the matrix (1203, 1201). */
TVK_API int TVKchgcoeflist(ConstEnvHandle env, ProbHandle lp, int numcoefs, const int *rowlist, const int *collist,
                           const double *vallist);

/* Changes bounds: lu[k] 'L' the lower one, 'U' the upper one, 'B' both. A value of 1e17 or more (-1e17 or less) is an
 * infinite bound; +infinity as lower and -infinity as upper bound are ignored with a warning; less than 1e-10 in magnitude
 * is 0. */
TVK_API int TVKchgbds(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const char *lu,
                      const double *bd);

/* As TVKchgbds, but a value looser than the present bound leaves it as it is. */
TVK_API int TVKtightenbds(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const char *lu,
                          const double *bd);

TVK_API int TVKchgrhs(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const double *values);
/* A row that becomes ranged has the range 0 until TVKchgrngval; one that no longer is loses its range. */
TVK_API int TVKchgsense(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const char *sense);
/* Rows of other senses than 'R' are left as they are. Error: 1216 no ranged rows at all. */
TVK_API int TVKchgrngval(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const double *values);
TVK_API int TVKchgobj(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const double *values);
/* A negative sense is TVK_MAX, any other TVK_MIN. */
TVK_API int TVKchgobjsen(ConstEnvHandle env, ProbHandle lp, int objsense);
/* The constant of the objective, 0 in a new model. */
TVK_API int TVKchgobjoffset(ConstEnvHandle env, ProbHandle lp, double offset);

/* ---- Column types: 'C' continuous, 'B' binary, 'I' integer, 'S' semi-continuous, 'N' semi-integer ---- */

/* Sets the types of all columns (one letter each; no terminating zero needed) or of those listed. A continuous problem
 * becomes a mixed-integer one; bounds do not change. A semi-continuous (semi-integer) column is 0 or between its bounds
 * (and then integer). */
TVK_API int TVKcopyctype(ConstEnvHandle env, ProbHandle lp, const char *ctype);
TVK_API int TVKchgctype(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const char *ctype);

/* ---- Names. Changing them keeps the solution. ---- */

/* Names one item. key: 'c' column ij, 'r' row ij, 'b' the bound set (as in the BOUNDS section of a file; ij is not used),
 * 's' set, 'i' indicator constraint, 'u' user cut, 'l' lazy constraint, 'q' quadratic constraint, 'm' MIP start ij.
 * Errors: 1003 another key; 1200 ij outside. */
TVK_API int TVKchgname(ConstEnvHandle env, ProbHandle lp, int key, int ij, const char *newname);
/* Names cnt items of a kind at once, all or none: the keys of TVKchgname without 'b'. Errors: 1003 another key, 1224 a null
 * name; 1201, 1203 or (other kinds) 1200 an index outside. */
TVK_API int TVKchgnames(ConstEnvHandle env, ProbHandle lp, int key, int cnt, const int *indices, TVKnames newname);
/* Name cnt columns (rows). When the model had no names, the others get generated ones. Error: 1224 a null name. */
TVK_API int TVKchgcolname(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, TVKnames newname);
TVK_API int TVKchgrowname(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, TVKnames newname);
/* Removes the names of columns, rows, sets, indicator constraints, cuts, lazy and quadratic constraints. */
TVK_API int TVKdelnames(ConstEnvHandle env, ProbHandle lp);
TVK_API int TVKchgprobname(ConstEnvHandle env, ProbHandle lp, const char *probname);
TVK_API int TVKcopyobjname(ConstEnvHandle env, ProbHandle lp, const char *objname);

/* ---- Queries. Sparse and name queries follow the surplus protocol:
 * With space 0 and a surplus pointer a query only sets *surplus_p to minus the space that it needs and returns 1207 without
 * printing (0 when nothing is needed). Otherwise it fills the arrays as far as they go; *surplus_p is the space left, or
 * minus the space missing with 1207. All ranges: 1205/1206 and 1200 when outside; begin > end is empty. ----
 *
 *     int nz, surplus;
 *     TVKgetcols(env, lp, &nz, NULL, NULL, NULL, 0, &surplus, 0, n - 1);
 *     int *ind = malloc(-surplus * sizeof(int)); double *val = malloc(-surplus * sizeof(double));
 *     TVKgetcols(env, lp, &nz, beg, ind, val, -surplus, &surplus, 0, n - 1); */

/* 0 after an error. */
TVK_API int TVKgetnumcols(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnumrows(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnumnz(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetobjsen(ConstEnvHandle env, ConstProbHandle lp);
/* Columns of type 'I', 'B', 'S', 'N'; 0 in a continuous problem. */
TVK_API int TVKgetnumint(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnumbin(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnumsemicont(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnumsemiint(ConstEnvHandle env, ConstProbHandle lp);

/* Entries begin..end into positions 0..end-begin of the array. Range values of rows other than 'R' are 0. */
TVK_API int TVKgetobj(ConstEnvHandle env, ConstProbHandle lp, double *obj, int begin, int end);
TVK_API int TVKgetrhs(ConstEnvHandle env, ConstProbHandle lp, double *rhs, int begin, int end);
TVK_API int TVKgetsense(ConstEnvHandle env, ConstProbHandle lp, char *sense, int begin, int end);
TVK_API int TVKgetlb(ConstEnvHandle env, ConstProbHandle lp, double *lb, int begin, int end);
TVK_API int TVKgetub(ConstEnvHandle env, ConstProbHandle lp, double *ub, int begin, int end);
TVK_API int TVKgetrngval(ConstEnvHandle env, ConstProbHandle lp, double *rngval, int begin, int end);
/* Error: 3003 for a continuous problem. */
TVK_API int TVKgetctype(ConstEnvHandle env, ConstProbHandle lp, char *ctype, int begin, int end);
TVK_API int TVKgetobjoffset(ConstEnvHandle env, ConstProbHandle lp, double *offset_p);

/* One coefficient, 0 where there is none; i and j and their errors as in TVKchgcoef. */
TVK_API int TVKgetcoef(ConstEnvHandle env, ConstProbHandle lp, int i, int j, double *value_p);

/* Columns (rows) begin..end: their number of entries, the position of each one's first entry, row (column) indices and
 * values. The entries of a row come by ascending column. After a 1207 the beginnings are complete and the first
 * cmatspace entries are there. Errors: 1004 any null pointer unless only the size is asked for. */
TVK_API int TVKgetcols(ConstEnvHandle env, ConstProbHandle lp, int *nzcnt_p, int *cmatbeg, int *cmatind,
                       double *cmatval, int cmatspace, int *surplus_p, int begin, int end);
TVK_API int TVKgetrows(ConstEnvHandle env, ConstProbHandle lp, int *nzcnt_p, int *rmatbeg, int *rmatind,
                       double *rmatval, int rmatspace, int *surplus_p, int begin, int end);

/* Names of columns (rows) begin..end, one after another with their zeros in namestore (storespace bytes); name[k] points to
 * the k-th. Errors: 1219 no names; 1004 as above. */
TVK_API int TVKgetcolname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore, int storespace,
                          int *surplus_p, int begin, int end);
TVK_API int TVKgetrowname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore, int storespace,
                          int *surplus_p, int begin, int end);
/* Index of the (first) column or row with this name. Error: 1210 there is none. */
TVK_API int TVKgetcolindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);
TVK_API int TVKgetrowindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);
/* Name of the problem; of the objective (1219 when it has none). `space` bytes with the terminating zero. */
TVK_API int TVKgetprobname(ConstEnvHandle env, ConstProbHandle lp, char *buffer, int space, int *surplus_p);
TVK_API int TVKgetobjname(ConstEnvHandle env, ConstProbHandle lp, char *buffer, int space, int *surplus_p);

/* ---- Special ordered sets ----
 * A set lists columns with weights. Type '1': at most one of them is not zero. Type '2': at most two, neighbours in the
 * order of the weights. A problem that receives sets becomes a mixed-integer one. Deleting a column takes it out of its
 * sets; a set stays when it becomes empty. */

/* Replaces all sets (TVKcopysos) or appends some (TVKaddsos): sostype and sosname one for each of numsos sets; columns and
 * weights of set k at positions sosbeg[k] to sosbeg[k+1] - 1 of sosind and soswt, of the last one up to numsosnz - 1.
 * sosname may be null, sosind and soswt too when there are no members. With TVK_PARAM_DATACHECK 1: 3009 a bad type, 1222
 * a column twice in a set, 3010 a weight twice in a set; else the last weight of a column counts, and equal weights leave
 * the order to the positions. */
TVK_API int TVKcopysos(ConstEnvHandle env, ProbHandle lp, int numsos, int numsosnz, const char *sostype,
                       const int *sosbeg, const int *sosind, const double *soswt, TVKnames sosname);
TVK_API int TVKaddsos(ConstEnvHandle env, ProbHandle lp, int numsos, int numsosnz, const char *sostype,
                      const int *sosbeg, const int *sosind, const double *soswt, TVKnames sosname);
/* Delete sets begin..end, or those whose entry of delstat is exactly 1 (as TVKdelsetcols). Error: 3015 no sets. */
TVK_API int TVKdelsos(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKdelsetsos(ConstEnvHandle env, ProbHandle lp, int *delstat);

/* 0 after an error. */
TVK_API int TVKgetnumsos(ConstEnvHandle env, ConstProbHandle lp);
/* Sets begin..end by the surplus protocol; sosspace is the length of sosind and soswt. Members come in the order in which
 * they were given. sostype may be null. Error: 3015 no sets. */
TVK_API int TVKgetsos(ConstEnvHandle env, ConstProbHandle lp, int *numsosnz_p, char *sostype, int *sosbeg, int *sosind,
                      double *soswt, int sosspace, int *surplus_p, int begin, int end);
/* Names and look-up as for columns. */
TVK_API int TVKgetsosname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore, int storespace,
                          int *surplus_p, int begin, int end);
TVK_API int TVKgetsosindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);

/* ---- Indicator constraints: a linear row that must hold while a binary column is 1 (or, complemented, 0) ----
 * They make the problem a mixed-integer one. Deleting a column takes its terms out; deleting the column that switches a
 * row deletes that constraint. The prefix is TVKE. */

/* Appends one: while column indvar is 1 (0 when complemented is not zero), the row with nzcnt terms must hold. sense:
 * 'L', 'G' or 'E', else 1215. indname may be null. Error: 1200 indvar outside.
 *
 *     // b = 1 -> x + y <= 4
 *     int ind[] = {x, y}; double val[] = {1, 1};
 *     TVKEaddindconstr(env, lp, b, 0, 2, 4.0, 'L', ind, val, NULL); */
TVK_API int TVKEaddindconstr(ConstEnvHandle env, ProbHandle lp, int indvar, int complemented, int nzcnt, double rhs,
                             int sense, const int *linind, const double *linval, const char *indname);
TVK_API int TVKEdelindconstrs(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKEgetnumindconstrs(ConstEnvHandle env, ConstProbHandle lp);
/* One of them; indvar_p, complemented_p (0 or 1), rhs_p and sense_p may be null; the terms by the surplus protocol. Error:
 * 1200 `which` outside. */
TVK_API int TVKEgetindconstr(ConstEnvHandle env, ConstProbHandle lp, int *indvar_p, int *complemented_p, int *nzcnt_p,
                             double *rhs_p, char *sense_p, int *linind, double *linval, int space, int *surplus_p,
                             int which);
TVK_API int TVKEgetindconstrname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore, int storespace,
                                 int *surplus_p, int begin, int end);
TVK_API int TVKEgetindconstrindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);

/* ---- User cuts and lazy constraints ----
 * Rows beside the matrix. A user cut holds at every integer point of the model and only helps the search; a lazy constraint
 * is part of the model, which the search looks at when a candidate violates it. They make the problem a mixed-integer
 * one. */

/* Append rcnt rows as TVKaddrows does; the senses are 'L', 'G' and 'E' ('R' is 1215 under TVK_PARAM_DATACHECK, else 'E'). */
TVK_API int TVKaddusercuts(ConstEnvHandle env, ProbHandle lp, int rcnt, int nzcnt, const double *rhs, const char *sense,
                           const int *rmatbeg, const int *rmatind, const double *rmatval, TVKnames rowname);
TVK_API int TVKaddlazyconstraints(ConstEnvHandle env, ProbHandle lp, int rcnt, int nzcnt, const double *rhs,
                                  const char *sense, const int *rmatbeg, const int *rmatind, const double *rmatval,
                                  TVKnames rowname);
/* Delete those from begin to end, or all. */
TVK_API int TVKdelusercuts(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKdellazyconstraints(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKfreeusercuts(ConstEnvHandle env, ProbHandle lp);
TVK_API int TVKfreelazyconstraints(ConstEnvHandle env, ProbHandle lp);

TVK_API int TVKgetnumusercuts(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnumlazyconstraints(ConstEnvHandle env, ConstProbHandle lp);
/* Rows begin..end by the surplus protocol; rhs and sense (one each) may be null. */
TVK_API int TVKgetusercuts(ConstEnvHandle env, ConstProbHandle lp, int *nzcnt_p, double *rhs, char *sense, int *rmatbeg,
                           int *rmatind, double *rmatval, int rmatspace, int *surplus_p, int begin, int end);
TVK_API int TVKgetlazyconstraints(ConstEnvHandle env, ConstProbHandle lp, int *nzcnt_p, double *rhs, char *sense,
                                  int *rmatbeg, int *rmatind, double *rmatval, int rmatspace, int *surplus_p, int begin,
                                  int end);
TVK_API int TVKgetusercutname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore, int storespace,
                              int *surplus_p, int begin, int end);
TVK_API int TVKgetlazyconstraintname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore,
                                     int storespace, int *surplus_p, int begin, int end);
TVK_API int TVKgetusercutindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);
TVK_API int TVKgetlazyconstraintindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);

/* ---- Priority order: which columns the search should branch on first ----
 * Order and MIP starts guide the search of a mixed-integer problem (else 3003) and are no part of what it states: changing
 * them keeps the solution. Columns that are deleted leave them. Where a problem has no order TVK_PARAM_MIPORDTYPE may
 * generate one for a search; with TVK_PARAM_MIPORDIND 0 there is none at all. */

/* Replaces the order by cnt columns (0: none). Larger priorities come first; direction -1 down, 1 up, 0 no preference.
 * priority and direction may be null (all 0). With TVK_PARAM_DATACHECK 1: 3006 a negative priority, 3007 another
 * direction. Of a column listed twice the last entry counts. */
TVK_API int TVKcopyorder(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices, const int *priority,
                         const int *direction);
/* The order by the surplus protocol, by ascending column; priority and direction may be null. Error: 3016 no order. */
TVK_API int TVKgetorder(ConstEnvHandle env, ConstProbHandle lp, int *cnt_p, int *indices, int *priority, int *direction,
                        int space, int *surplus_p);

/* ---- MIP starts: points, whole or in part, to start the search from ---- */

/* Effort levels: what TVKmipopt does with a start. Discrete are integer columns, semi-continuous ones, members of sets; values of
 * integer columns that are no integers count as not given.
 * AUTO (-1 too)  CHECKFEAS for a start with all values that holds, else SOLVEMIP
 * CHECKFEAS      a point with all values that holds within the tolerances, as it is
 * SOLVEFIXED     all discrete columns must be given; the others are found by an LP
 * SOLVEMIP       the discrete columns that are given are fixed, the others are searched for (TVK_PARAM_SUBMIPNODELIM)
 * REPAIR         SOLVEMIP; what makes it infeasible is freed, as often as TVK_PARAM_REPAIRTRIES says */
#define TVK_MIPSTART_AUTO 0
#define TVK_MIPSTART_CHECKFEAS 1
#define TVK_MIPSTART_SOLVEFIXED 2
#define TVK_MIPSTART_SOLVEMIP 3
#define TVK_MIPSTART_REPAIR 4

/* Appends mcnt starts: columns and values of start k at positions beg[k] to beg[k+1] - 1 of varindices and values, of the
 * last one up to nzcnt - 1. effortlevel (null: 0) and mipstartname may be null. With TVK_PARAM_DATACHECK 1: 1003 an effort
 * level outside -1..4. */
TVK_API int TVKaddmipstarts(ConstEnvHandle env, ProbHandle lp, int mcnt, int nzcnt, const int *beg,
                            const int *varindices, const double *values, const int *effortlevel, TVKnames mipstartname);
/* Changes the starts in mipstartindices: each gets the given values, its other values stay; effortlevel null keeps the
 * levels. Errors: 3020 no starts, 1200 an index outside. */
TVK_API int TVKchgmipstarts(ConstEnvHandle env, ProbHandle lp, int mcnt, const int *mipstartindices, int nzcnt,
                            const int *beg, const int *varindices, const double *values, const int *effortlevel);
/* Delete starts begin..end, or those whose entry of delstat is exactly 1. Error: 3020 no starts. */
TVK_API int TVKdelmipstarts(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKdelsetmipstarts(ConstEnvHandle env, ProbHandle lp, int *delstat);

TVK_API int TVKgetnummipstarts(ConstEnvHandle env, ConstProbHandle lp);
/* Starts begin..end by the surplus protocol; effortlevel (one each) may be null. Error: 3020 no starts. */
TVK_API int TVKgetmipstarts(ConstEnvHandle env, ConstProbHandle lp, int *nzcnt_p, int *beg, int *varindices,
                            double *values, int *effortlevel, int startspace, int *surplus_p, int begin, int end);
TVK_API int TVKgetmipstartname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore, int storespace,
                               int *surplus_p, int begin, int end);
TVK_API int TVKgetmipstartindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);

/* ---- Quadratic objective: obj'x + x'Qx / 2 with a symmetric matrix Q ----
 * A linear problem becomes a quadratic one (type 5, mixed-integer 7). No optimizer solves quadratic problems yet. */

/* Replaces Q by the full matrix, both halves, by columns: numcols values in qmatbeg and qmatcnt. Where Q is not symmetric:
 * 5012 under TVK_PARAM_DATACHECK, else it stands for (Q + Q') / 2, the same function. */
TVK_API int TVKcopyquad(ConstEnvHandle env, ProbHandle lp, const int *qmatbeg, const int *qmatcnt, const int *qmatind,
                        const double *qmatval);
/* Replaces Q by the diagonal matrix of these numcols values. */
TVK_API int TVKcopyqpsep(ConstEnvHandle env, ProbHandle lp, const double *qsepvec);
/* Sets the entries (i, j) and (j, i) of Q; reads one (0 where there is none). Error: 1200 outside. */
TVK_API int TVKchgqpcoef(ConstEnvHandle env, ProbHandle lp, int i, int j, double value);
TVK_API int TVKgetqpcoef(ConstEnvHandle env, ConstProbHandle lp, int i, int j, double *value_p);
/* Columns that Q has entries in; entries of Q, both halves counted. */
TVK_API int TVKgetnumquad(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnumqpnz(ConstEnvHandle env, ConstProbHandle lp);
/* Columns begin..end of Q as TVKgetcols. Error: 5004 not a quadratic problem. */
TVK_API int TVKgetquad(ConstEnvHandle env, ConstProbHandle lp, int *nzcnt_p, int *qmatbeg, int *qmatind,
                       double *qmatval, int qmatspace, int *surplus_p, int begin, int end);

/* ---- Quadratic constraints: a'x + x'Qx <= rhs or >= rhs (no factor 1/2) ----
 * The problem becomes a quadratically constrained one (type 10, mixed-integer 11), also one with a quadratic objective. */

/* Appends one with linnzcnt linear terms and quadnzcnt products quadval[k] * x[quadrow[k]] * x[quadcol[k]]; a pair may stand
 * in either order, also in both, which adds up. name may be null. Errors: 6002 a sense other than 'L' and 'G'; under
 * TVK_PARAM_DATACHECK 5011 a pair twice in the same order. */
TVK_API int TVKaddqconstr(ConstEnvHandle env, ProbHandle lp, int linnzcnt, int quadnzcnt, double rhs, int sense,
                          const int *linind, const double *linval, const int *quadrow, const int *quadcol,
                          const double *quadval, const char *name);
TVK_API int TVKdelqconstrs(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKgetnumqconstrs(ConstEnvHandle env, ConstProbHandle lp);
/* One of them: linear terms and products each by the surplus protocol (1207 when either is too short). Each pair comes once,
 * quadrow[k] <= quadcol[k]. rhs_p and sense_p may be null. Error: 1200 `which` outside. */
TVK_API int TVKgetqconstr(ConstEnvHandle env, ConstProbHandle lp, int *linnzcnt_p, int *quadnzcnt_p, double *rhs_p,
                          char *sense_p, int *linind, double *linval, int linspace, int *linsurplus_p, int *quadrow,
                          int *quadcol, double *quadval, int quadspace, int *quadsurplus_p, int which);
TVK_API int TVKgetqconstrname(ConstEnvHandle env, ConstProbHandle lp, char **name, char *namestore, int storespace,
                              int *surplus_p, int begin, int end);
TVK_API int TVKgetqconstrindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);

/* ---- Networks: minimum-cost flow problems as objects of their own ----
 * A network has nodes with supplies and arcs, each from its tail to its head, with costs and bounds:
 *
 *     minimize or maximize  obj'flow   subject to   flow out of i - flow into i = supply[i] for every node i,
 *                                                   lb <= flow <= ub
 *
 * A negative supply is a demand. Parallel arcs and loops (tail = head) are allowed, and crossed bounds as in a model.
 * Handles, ranges, DATACHECK, infinity, names and the surplus protocol are those of problems and models: 1009 for a handle
 * that is no network, 1230 a node index and 1231 an arc index that is out of range (always checked, with the position in
 * its list), 1012 more than 2100000000 nodes or 1050000000 arcs. Generated names are n1, n2 ... and a1, a2 ....
 * Closing the environment frees its networks.
 *
 *     // Ship 4 units from node 0 to node 2, directly or through node 1.
 *     double supply[] = {4, 0, -4}, cost[] = {1, 1, 5}, ub[] = {3, 3, TVK_INFBOUND};
 *     int tail[] = {0, 1, 0}, head[] = {1, 2, 2};
 *     NetProbHandle net = TVKNETcreateprob(env, &status, "shipping");
 *     TVKNETcopynet(env, net, TVK_MIN, 3, supply, NULL, 3, tail, head, cost, NULL, ub, NULL);
 *     TVKNETprimopt(env, net);       // 3 units through node 1, 1 unit directly: 11
 *     TVKNETgetx(env, net, flow, 0, 2);
 *     TVKNETfreeprob(env, &net); */

/* Creates an empty network (minimize); frees one and sets `*net_p` to null. Codes as in TVKcreateprob, TVKfreeprob. */
TVK_API NetProbHandle TVKNETcreateprob(ConstEnvHandle env, int *status_p, const char *probname);
TVK_API int TVKNETfreeprob(ConstEnvHandle env, NetProbHandle *net_p);

/* Replaces the whole network. supply and nodename hold one entry for each of numnodes nodes, the others one for each of
 * numarcs arcs. supply and obj may be null (0), lb (0), ub (1e20) and the names too. Errors: 1003 a negative count, or
 * under DATACHECK another objsense than 1 and -1; 1004 tail or head null. */
TVK_API int TVKNETcopynet(ConstEnvHandle env, NetProbHandle net, int objsense, int numnodes, const double *supply,
                          TVKnames nodename, int numarcs, const int *tail, const int *head, const double *obj,
                          const double *lb, const double *ub, TVKnames arcname);

/* Replaces the model of `lp` by that of the network: a continuous problem with one column for each arc (its cost, bounds
 * and name; +1 in the row of its tail and -1 in that of its head, a loop has no entries) and one row for each node
 * (sense 'E', the supply as right-hand side, its name). The problem takes the network's name. Errors: 1009, 1806 also for
 * `net`; 1023. */
TVK_API int TVKcopynettolp(ConstEnvHandle env, ProbHandle lp, ConstNetProbHandle net);

/* Append nodes, or arcs between present nodes. Null arrays as in TVKNETcopynet. */
TVK_API int TVKNETaddnodes(ConstEnvHandle env, NetProbHandle net, int ncnt, const double *supply, TVKnames nodename);
TVK_API int TVKNETaddarcs(ConstEnvHandle env, NetProbHandle net, int acnt, const int *tail, const int *head,
                          const double *obj, const double *lb, const double *ub, TVKnames arcname);

/* Delete nodes or arcs begin..end, or those whose entry of delstat is 1, as TVKdelrows and TVKdelsetrows do. The arcs of a
 * deleted node go with it; the remaining ones keep their order. */
TVK_API int TVKNETdelnodes(ConstEnvHandle env, NetProbHandle net, int begin, int end);
TVK_API int TVKNETdelarcs(ConstEnvHandle env, NetProbHandle net, int begin, int end);
TVK_API int TVKNETdelsetnodes(ConstEnvHandle env, NetProbHandle net, int *delstat);
TVK_API int TVKNETdelsetarcs(ConstEnvHandle env, NetProbHandle net, int *delstat);

/* Change cnt values, for the nodes (supply, names) or arcs (all others) in `indices`. TVKNETchgbds follows the rules of
 * TVKchgbds; a negative objsense is TVK_MAX. TVKNETdelnames removes the names of nodes and arcs. */
TVK_API int TVKNETchgsupply(ConstEnvHandle env, NetProbHandle net, int cnt, const int *indices, const double *values);
TVK_API int TVKNETchgobj(ConstEnvHandle env, NetProbHandle net, int cnt, const int *indices, const double *values);
TVK_API int TVKNETchgbds(ConstEnvHandle env, NetProbHandle net, int cnt, const int *indices, const char *lu,
                         const double *bd);
TVK_API int TVKNETchgarcends(ConstEnvHandle env, NetProbHandle net, int cnt, const int *indices, const int *tail,
                             const int *head);
TVK_API int TVKNETchgobjsen(ConstEnvHandle env, NetProbHandle net, int objsense);
TVK_API int TVKNETchgnodename(ConstEnvHandle env, NetProbHandle net, int cnt, const int *indices, TVKnames newname);
TVK_API int TVKNETchgarcname(ConstEnvHandle env, NetProbHandle net, int cnt, const int *indices, TVKnames newname);
TVK_API int TVKNETdelnames(ConstEnvHandle env, NetProbHandle net);
TVK_API int TVKNETchgprobname(ConstEnvHandle env, NetProbHandle net, const char *probname);

/* Counts and objective sense; 0 after an error. */
TVK_API int TVKNETgetnumnodes(ConstEnvHandle env, ConstNetProbHandle net);
TVK_API int TVKNETgetnumarcs(ConstEnvHandle env, ConstNetProbHandle net);
TVK_API int TVKNETgetobjsen(ConstEnvHandle env, ConstNetProbHandle net);
/* Entries begin..end. One of tail and head may be null. */
TVK_API int TVKNETgetsupply(ConstEnvHandle env, ConstNetProbHandle net, double *supply, int begin, int end);
TVK_API int TVKNETgetarcends(ConstEnvHandle env, ConstNetProbHandle net, int *tail, int *head, int begin, int end);
TVK_API int TVKNETgetobj(ConstEnvHandle env, ConstNetProbHandle net, double *obj, int begin, int end);
TVK_API int TVKNETgetlb(ConstEnvHandle env, ConstNetProbHandle net, double *lb, int begin, int end);
TVK_API int TVKNETgetub(ConstEnvHandle env, ConstNetProbHandle net, double *ub, int begin, int end);
/* The arcs that begin or end at nodes begin..end: their number, the position in `arc` of each node's first one, and the
 * arcs, ascending within a node, by the surplus protocol (arcspace entries). A loop comes once with its node. */
TVK_API int TVKNETgetnodearcs(ConstEnvHandle env, ConstNetProbHandle net, int *arccnt_p, int *arcbeg, int *arc,
                              int arcspace, int *surplus_p, int begin, int end);
/* Names and look-up as for columns and rows. */
TVK_API int TVKNETgetnodename(ConstEnvHandle env, ConstNetProbHandle net, char **name, char *namestore, int storespace,
                              int *surplus_p, int begin, int end);
TVK_API int TVKNETgetarcname(ConstEnvHandle env, ConstNetProbHandle net, char **name, char *namestore, int storespace,
                             int *surplus_p, int begin, int end);
TVK_API int TVKNETgetnodeindex(ConstEnvHandle env, ConstNetProbHandle net, const char *name, int *index_p);
TVK_API int TVKNETgetarcindex(ConstEnvHandle env, ConstNetProbHandle net, const char *name, int *index_p);
TVK_API int TVKNETgetprobname(ConstEnvHandle env, ConstNetProbHandle net, char *buffer, int space, int *surplus_p);

/* Solves the network by the network simplex, from its basis where it has one and TVK_PARAM_ADVIND is not 0. Parameters:
 * TVK_PARAM_NETPPRIIND, NETEPOPT, NETEPRHS, NETITLIM, NETDISPLAY, TILIM; TVKsetterminate and TVKsetnetcallbackfunc stop it.
 * Flows are whole where supplies and bounds are whole and costs too. Errors: 1225, 1233 data that are no numbers.
 *
 *     TVKNETprimopt(env, net);
 *     if (TVKNETgetstat(env, net) == TVK_STATUS_OPTIMAL) TVKNETgetx(env, net, flow, 0, TVKNETgetnumarcs(env, net) - 1); */
TVK_API int TVKNETprimopt(ConstEnvHandle env, NetProbHandle net);

/* The answer, as TVKgetstat, TVKsolution, TVKsolninfo and their kin for problems: statuses 1, 2, 3, 6, 10, 11, 900 and 13. Values
 * are there after every optimization until the network changes (1217 else): x is the flow of each arc, pi the potential of
 * each node (change of the objective value per unit of supply), slack what a node's balance misses of its supply,
 * dj = obj - pi[tail] + pi[head]. */
TVK_API int TVKNETgetstat(ConstEnvHandle env, ConstNetProbHandle net);
TVK_API int TVKNETsolution(ConstEnvHandle env, ConstNetProbHandle net, int *netstat_p, double *objval_p, double *x,
                           double *pi, double *slack, double *dj);
TVK_API int TVKNETsolninfo(ConstEnvHandle env, ConstNetProbHandle net, int *pfeasind_p, int *dfeasind_p);
TVK_API int TVKNETgetobjval(ConstEnvHandle env, ConstNetProbHandle net, double *objval_p);
TVK_API int TVKNETgetx(ConstEnvHandle env, ConstNetProbHandle net, double *x, int begin, int end);
TVK_API int TVKNETgetpi(ConstEnvHandle env, ConstNetProbHandle net, double *pi, int begin, int end);
TVK_API int TVKNETgetslack(ConstEnvHandle env, ConstNetProbHandle net, double *slack, int begin, int end);
TVK_API int TVKNETgetdj(ConstEnvHandle env, ConstNetProbHandle net, double *dj, int begin, int end);
/* Iterations of the last optimization, and those until its flow was feasible; 0 after an error. */
TVK_API int TVKNETgetitcnt(ConstEnvHandle env, ConstNetProbHandle net);
TVK_API int TVKNETgetphase1cnt(ConstEnvHandle env, ConstNetProbHandle net);

/* The basis that the next optimization starts from, one status for each arc (astat) and node (nstat), as for columns and
 * rows: a basic node is one without an arc above it in the tree. It stays while nodes and arcs and their ends do. Any
 * statuses are accepted; the optimizer completes what is no tree. Errors: 1262 no basis; 1004; 1253 an entry outside
 * 0..3. The arrays of TVKNETgetbase may be null. */
TVK_API int TVKNETgetbase(ConstEnvHandle env, ConstNetProbHandle net, int *astat, int *nstat);
TVK_API int TVKNETcopybase(ConstEnvHandle env, NetProbHandle net, const int *astat, const int *nstat);

/* ==== Section: files ==== */

/* Reads a model file into an existing problem, whose data it replaces.
 *
 * filename  the file; it becomes the problem's name. Compression is told by the first bytes, whatever the name: gzip and
 *           bzip2 are decoded by the library itself, xz, zstd and the old compress through the programs xz, zstd and gzip
 *           where they are on the search path (a process that ignores SIGCHLD, or waits for every child, takes their result
 *           away: the file then counts as broken). A name that ends in .gz or .bz2 (either case) or .Z must be compressed.
 *           All readers open files like this. 1423 follows a line on the warning channel that tells the cause. Waiting for
 *           a pipe or a terminal, and reading what never ends, stop with 1423 when the flag of TVKsetterminate is set.
 * filetype  "LP", "MPS", "SAV" or "NET" (or "MIN"; either case; what follows these letters is ignored), or NULL to let the
 *           name's extension (.lp, .mps, .qps, .sav, .net, .min) decide and, where it tells nothing, the file's first
 *           bytes: '*', 'N' or 'n' mean MPS; a blank, a line feed, a backslash, 'M' or 'm' mean LP; the signature behind a
 *           line feed and other control characters mean SAV.
 *
 * With the type given, a file that does not exist is looked for once more with .lp, .mps, .sav or .net appended.
 *
 * LP format: an objective after Minimize or Maximize (constants are allowed there), rows after Subject To as
 * "name: 3 x - 2 y <= 4", with two senses ("1 <= x + y <= 4") for ranged rows and "b = 1 -> x + y <= 4" for indicator
 * constraints, then Lazy Constraints, User Cuts, Bounds, Generals, Binaries, Semi-Continuous, SOS and End. Quadratic terms
 * stand in brackets: "[ x ^ 2 + 2 x * y ] / 2" in the objective, without "/ 2" in rows. The problem's type follows from
 * what the file holds. A name that comes twice in one expression counts as the sum of its terms. Columns lie
 * between 0 and infinity where the file says nothing; rows without a name are called c1, c2 ... by their position.
 *
 * A SAV file brings back the problem that it was written from, to the last bit, with all families, MIP starts, priority
 * order and problem type. A basis in it becomes the starting basis (TVKcopybase), with a line on the warning channel.
 *
 * Errors: 1004 filename is NULL; 1421 it is empty; 1423 the file, or its compressor, cannot be read to the end; 1424 the
 * format is unknown; 1436-1623 the text is not understood, with the line; 1560 no SAV file, 1561 a SAV file that ends too
 * early, 1563 one that is damaged or of a later version; 1012, 1530-1538 of network files (see there); 5011, 5012 a
 * quadratic term twice, a matrix that is not symmetric; 1023 the problem is a fixed one. On every error the problem is as it
 * was before.
 *
 *     status = TVKreadcopyprob(env, lp, "diet.lp.gz", NULL);
 */
TVK_API int TVKreadcopyprob(ConstEnvHandle env, ProbHandle lp, const char *filename, const char *filetype);

/* What the last successful TVKreadcopyprob or TVKreadcopystdin had to say about the model that it brought: *warnings_p, how
 * many warnings it gave; *dropped_p, how many of them tell that text of the file is missing in the model (characters after
 * a right-hand side, a constraint without an end), so that solving it would answer another question; either may be null.
 * buffer: their lines, as the warning channel had them, and behind "Note:" what may mean something else to other programs;
 * terminating zero included; `space` and `*surplus_p` as in TVKgetprobname, all three 0 where only the numbers are asked
 * for. Beyond 64 KB lines are counted, not kept. All is 0 and empty before the first reading and after any other routine
 * that brings a whole model. Errors: 1004, 1207.
 *
 *     int dropped;
 *     status = TVKreadcopyprob(env, lp, "diet.lp", NULL);
 *     if (status == 0) status = TVKgetreadwarnings(env, lp, NULL, &dropped, NULL, 0, NULL);
 *     if (status == 0 && dropped > 0) puts("diet.lp does not say what it means"); */
TVK_API int TVKgetreadwarnings(ConstEnvHandle env, ConstProbHandle lp, int *warnings_p, int *dropped_p, char *buffer,
                               int space, int *surplus_p);

/* Reads a problem in LP format that a person types on standard input into an existing problem, whose data it replaces.
 * The problem's name becomes "<stdin>".
 *
 * Asks for the problem on the results channel and reads up to a line that holds "end" alone; what follows on stdin is
 * left there. A line with an error does not end the entry: the error's text, with the line's number, goes to the error
 * channel, and the line is asked for again and read in its place as if the wrong one had never been. A statement over
 * several lines may show its error only on a later line than the one named; the lines behind that one then stay as they
 * were typed. A row ends with the line of its right-hand side. When the input ends without "end", the problem is taken
 * as it is, with a warning.
 *
 * Errors, after which the problem is as it was before: the code of the last line's error when the input ends instead of
 * bringing that line again; 1436 "end", or the end of the input, comes before any objective; 1423 standard input cannot
 * be read; 1023 the problem is a fixed one.
 *
 *     status = TVKreadcopystdin(env, lp);
 */
TVK_API int TVKreadcopystdin(ConstEnvHandle env, ProbHandle lp);

/* Writes the problem to a model file.
 *
 * filename  the file. A name that ends in .gz (either case) or .Z is compressed as gzip does, one in .bz2 as bzip2 does.
 *           The new file replaces an old one only when all of it is on the disk; otherwise the old one stays. Only where
 *           no new file can take its place (in a folder that is not the user's own) the old one is overwritten. Names of
 *           open streams (/dev/stdout, /dev/fd/3) write to where these stand.
 * filetype  one of "LP", "MPS", "SAV", "RLP", "RMP", "REW" (either case; at most three characters), or NULL to let the
 *           extension decide, with .gz and its like put aside. R.. writes the names x1, x2 ... and c1, c2 ... in place
 *           of the model's own; REW is RMP.
 *
 * Families of names that the model lacks are generated for the file, with a line on the warning channel. When a name
 * cannot stand in the format, or stands twice, all names of its family are rewritten for the file: forbidden characters
 * replaced and "#" and the position (from 0) appended, with a warning.
 *
 * MPS numbers read back as the same numbers (with TVK_PARAM_MPSLONGNUM 0 they have at most 12 columns); LP numbers have
 * 15 significant digits. In both formats binary columns whose bounds differ count as bounded by 0 and 1; MPS holds no
 * constant of the objective, which becomes a column OBJCONST fixed at 1 (reading the file turns it back).
 *
 * SAV is binary (docs/sav-format.md): the fastest to write and read, with every number to the last bit, every name and
 * everything that a problem is made of, and the starting basis or that of the last optimization.
 *
 * Errors: 1421 no file name; 1422 the file cannot be created; 1424 the type or extension is unknown; 1650 the model holds a
 * number that is not finite (LP and MPS); 1803 not all of the file could be written, 1562 the same of a SAV file.
 *
 *     status = TVKwriteprob(env, lp, "diet.mps.gz", NULL);
 */
TVK_API int TVKwriteprob(ConstEnvHandle env, ConstProbHandle lp, const char *filename, const char *filetype);

/* The same as MPS file; as LP file; as LP file with the names x1 ... and c1 .... */
TVK_API int TVKmpswrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
TVK_API int TVKlpwrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
TVK_API int TVKlprewrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);

/* ---- Display: a model on a channel, for people to read ----
 * The words are those of the LP format, and the numbers have 15 significant digits; names stand as they are, and where there
 * are none, generated ones. Each call sends one message to `channel` (TVKgetchannels, TVKaddchannel), however long.
 *
 * pattern     of the names that are shown: '*' stands for any characters, '?' for one; NULL shows every one
 * begin, end  range of indices, as in the queries; of these, what the pattern fits is shown
 *
 * Where there is nothing the channel is told so ("There are no constraints.", "No constraints match 'x*'."). Errors: 1051 the
 * channel is none; 1205/1206 and 1200 the range.
 *
 *     TVKdisplaysummary(env, lp, results);
 *     TVKdisplayrows(env, lp, results, "cap_*", 0, TVKgetnumrows(env, lp) - 1);
 *     TVKdisplayctype(env, lp, results, 'B', NULL, 0, TVKgetnumcols(env, lp) - 1); */

/* Rows of the matrix, quadratic and indicator constraints, cuts, lazy constraints, sets: one statement each, ranged rows with
 * both ends. */
TVK_API int TVKdisplayrows(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char *pattern, int begin,
                           int end);
TVK_API int TVKdisplayqconstrs(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char *pattern,
                               int begin, int end);
TVK_API int TVKEdisplayindconstrs(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char *pattern,
                                  int begin, int end);
TVK_API int TVKdisplayusercuts(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char *pattern,
                               int begin, int end);
TVK_API int TVKdisplaylazyconstraints(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char *pattern,
                                      int begin, int end);
TVK_API int TVKdisplaysos(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char *pattern, int begin,
                          int end);
/* The bounds of columns, a line each, 0 and infinity too. */
TVK_API int TVKdisplaybounds(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, const char *pattern, int begin,
                             int end);
/* The names of the columns of type `ctype`: 'C', 'B', 'I', 'S' or 'N', else 1003. */
TVK_API int TVKdisplayctype(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel, int ctype, const char *pattern,
                            int begin, int end);
/* The objective; all of the problem; its name, type, sizes and how large its numbers are. */
TVK_API int TVKdisplayobj(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel);
TVK_API int TVKdisplayprob(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel);
TVK_API int TVKdisplaysummary(ConstEnvHandle env, ConstProbHandle lp, ChannelHandle channel);

/* A restart file: a SAV file that holds, beside the problem, where its optimization stands: basis, pricing norms of the dual
 * simplex, starting values, and the solution with its status and counters. Read into a problem, in the same process or
 * another one, it makes that the problem that was written, name included: its solution can be queried, and the next
 * optimization goes on from the basis, after an optimal one without an iteration. Parameters are not part of it
 * (TVKwriteparam).
 *
 * The file may be compressed; .xxx may be left out of its name when it is read. A SAV file serves as well. Reading prints
 * "Load of restart from file succeeded." on the results channel or "Load of restart from file failed." on the error channel,
 * behind the reason; the problem is then as it was before. Errors: writing 1421, 1422, 1562; reading 1004, 1421, 1423, 1560,
 * 1561, 1563, and 1023 into a fixed problem.
 *
 *     status = TVKwriterestart(env, lp, "night.xxx");
 */
TVK_API int TVKwriterestart(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
TVK_API int TVKreadcopyrestart(ConstEnvHandle env, ProbHandle lp, const char *filename);

/* ---- Network files: the DIMACS format for minimum-cost flow problems ----
 *
 *     c a comment
 *     p min 3 3          3 nodes, 3 arcs; before all other records
 *     n 1 4              node 1 supplies 4; a node without a record has the supply 0
 *     n 3 -4
 *     a 1 2 0 3 1        arc from node 1 to node 2: bounds 0 and 3, cost 1
 *     a 2 3 0 3 1
 *     a 1 3 0 -1 5
 *
 * Nodes count from 1 in the file, from 0 in the network. More is read than the format knows: fractions, negative lower
 * bounds, empty lines. Infinite bounds are "inf" with or without a sign, numbers of 1e20 and beyond, and the upper bound
 * "-1" (just so) of an arc whose lower bound is not negative. Comments written by TVKNETwriteprob bring back what the
 * format cannot tell: "c @problem NAME", "c @maximize" (the costs are then negated in the file, so that every other
 * program has the right problem, too), "c @node NODE NAME" and, before the arc's record, "c @arc NAME". Arcs keep their
 * order; finite numbers read back as the same numbers.
 *
 * TVKNETreadcopyprob replaces the network; .net may be left out of the name, and the file may be compressed. The name of
 * the problem is the one in the file, or else the file's. TVKreadcopyprob reads such a file as a linear problem (see
 * TVKcopynettolp) whose rows are called n1 ... and columns a1 ... where the file has no names. TVKNETwriteprob writes one;
 * filetype is "NET", "MIN" or NULL, whatever the name's extension.
 *
 * Errors, after which nothing is changed: 1004 filename is NULL (reading); 1421 no file name; 1423, 1422, 1803 as for model
 * files; 1424 another filetype; 1531 no problem line before the first record, a second one, or one that does not begin with
 * "p min"; 1530 nodes outside the problem line's count, a node twice, too many arcs, or a million nodes more than the file
 * speaks of (a warning tells what and where); 1538 the file ends before its last arc; 1537 a line that is not understood;
 * 1012 more than 524999999 nodes or arcs; 1650 a number that is not finite (writing). */
TVK_API int TVKNETreadcopyprob(ConstEnvHandle env, NetProbHandle net, const char *filename);
TVK_API int TVKNETwriteprob(ConstEnvHandle env, ConstNetProbHandle net, const char *filename, const char *filetype);

/* ---- Parameter files ---- */

/* Writes the parameters that differ from their defaults, one on a line, by name. TVKEwriteparam leaves out
 * TVK_PARAM_SCRIND and TVK_PARAM_MIPCBREDLP. Numbers have 15 significant digits. Errors: 1421, 1422, 1803. */
TVK_API int TVKwriteparam(ConstEnvHandle env, const char *filename);
TVK_API int TVKEwriteparam(EnvHandle env, const char *filename);

/* Reads such a file: every parameter gets the file's value, or its default where the file does not name it. The file may be
 * compressed, and .prm may be left out of its name. '#' begins a comment. On every error the parameters are as before.
 * Errors: 1421, 1423; with the line: 1434 not a number, 1660 incomplete line, 1661 no header; and those of the setters
 * (1013, 1014, 1015, 1026, 1028, 1807), behind a line on the warning channel with line and name.
 *
 *     TOVIK Parameter File Version 12.2.0.0
 *     TVK_PARAM_TILIM   60      # seconds
 *     TVK_PARAM_WORKDIR "/var/tmp"
 */
TVK_API int TVKreadcopyparam(EnvHandle env, const char *filename);

/* ---- Files about a problem: basis, values, priority order ----
 * They speak of columns and rows by name: reading one into a problem without names is 1219. Names that cannot stand in such
 * a file are written as in an MPS file, and found again. Unknown names are warned about and skipped. Each read may leave
 * out the extension (.bas, .vec, .ord) and changes nothing when it fails. Errors of all: 1421, 1422, 1803 when writing;
 * 1423, 1434, 1465, 1551, 1553 when reading. */

/* The basis (TVKgetbase), with a line on the results channel. When there are starting values of the columns (TVKcopystart)
 * and the problem is not mixed-integer it is written with values, the slacks of rows too, and what lies between its bounds
 * comes back; else non-basic free columns are left to the reader. Errors: 1262 no basis, 1555 not one basic variable for each
 * row, 1650 a starting value is not finite. */
TVK_API int TVKmbasewrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);

/* Makes the file's basis, and its values when it tells those of all basic columns, the start of the next optimization
 * (TVKcopystart). Rows of sense 'G' come back as "at upper". Errors: 1550 a value is missing, 1554 a non-basic variable between
 * its bounds in a mixed-integer problem, 1555. */
TVK_API int TVKreadcopybase(ConstEnvHandle env, ProbHandle lp, const char *filename);

/* The values of the solution: of the columns, slacks, and duals and reduced costs where there are any. Reading makes them
 * starting values (TVKcopystart). Errors: 1556 no solution, no values in the file. */
TVK_API int TVKvecwrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
TVK_API int TVKreadcopyvec(ConstEnvHandle env, ProbHandle lp, const char *filename);

/* The priority order (TVKcopyorder). Errors: 3016 no order to write; reading: 1447 a column twice, 1463, 3003, 3006,
 * 3012 an unknown direction. */
TVK_API int TVKordwrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
TVK_API int TVKreadcopyorder(ConstEnvHandle env, ProbHandle lp, const char *filename);

/* ---- Solution and MIP-start files: XML ----
 * A file has a header, measures of quality, and the values of rows and columns by name and index; TVK_PARAM_WRITELEVEL chooses
 * the columns: 1 all, 2 those with a type other than 'C', 3 those that are not zero, 4 both. Numbers have 15 significant
 * digits. Names of bytes that are no UTF-8 make the file declare iso-8859-1 and come back as they were. Reading finds
 * a column by its name, where the problem has names and the file tells it, else by its index; unknown ones are skipped
 * with a warning. A file without '<' before its first blank is read as text: a NAME line, "column value" records that
 * begin with a blank, ENDATA. Each read changes nothing when it fails; .sol and .mst may be left out. Errors of all:
 * 1421, 1422, 1803 when writing; 1423, 1425 no XML, 1434 when reading. What a refused file seems to be (a solution of another
 * program, a model) is told by a line on the warning channel. */

/* Writes the current solution, with the basis and the duals that it has. Errors: 1217, 3023 no solution. */
TVK_API int TVKsolwrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
/* The same with as many digits, up to 17, as read back as the very numbers. */
TVK_API int TVKsolwriteexact(ConstEnvHandle env, ConstProbHandle lp, const char *filename);

/* A member of the solution pool, with its name and number in the header; member -1, the incumbent, is called "incumbent". All
 * members as one file with several solutions, which TVKreadsolution reads one by one; the same as MIP starts, which
 * TVKreadcopymipstarts reads. Errors: 3024 no pool, 1200 no such member, 1217 no member at all. */
TVK_API int TVKsolwritesolnpool(ConstEnvHandle env, ConstProbHandle lp, int soln, const char *filename);
TVK_API int TVKsolwritesolnpoolall(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
TVK_API int TVKmstwritesolnpoolall(ConstEnvHandle env, ConstProbHandle lp, const char *filename);

/* Reads the first solution of a file: a start of the next optimization for a continuous problem (TVKcopystart; basis and
 * values as far as the file has them for all rows and columns), a MIP start for a mixed-integer one. */
TVK_API int TVKreadcopysol(ConstEnvHandle env, ProbHandle lp, const char *filename);

/* What solution `which` (from 0) of a solution or MIP-start file says about lp, which stays as it is: for checking a file,
 * or for using its values elsewhere. Arrays as in TVKsolution and TVKgetbase; each output may be null. What the file does not
 * say is 1e20, a status -1; a column that is left out because it is zero (write levels 3 and 4) is 0.
 *
 * count_p    number of solutions in the file      unknown_p  elements about columns or rows that lp does not have
 * lpstat_p   the solution status that the file states, 0 none
 * objval_p   the objective value that it states: 1e20 none, NaN no number
 *
 * Errors: 1200 there is no solution `which`; 1219 a text file and lp has no names.
 *
 *     double *x = malloc(TVKgetnumcols(env, lp) * sizeof(double));
 *     TVKreadsolution(env, lp, "plan.sol.gz", 0, NULL, NULL, NULL, NULL, x, NULL, NULL, NULL, NULL, NULL); */
TVK_API int TVKreadsolution(ConstEnvHandle env, ConstProbHandle lp, const char *filename, int which, int *count_p,
                            int *unknown_p, int *lpstat_p, double *objval_p, double *x, double *pi, double *slack,
                            double *dj, int *cstat, int *rstat);

/* Writes MIP starts begin..end. Errors: 3020 there are none; 1205/1206 and 1200. */
TVK_API int TVKwritemipstarts(ConstEnvHandle env, ConstProbHandle lp, const char *filename, int begin, int end);

/* Adds the first MIP start of a file, or all of them. Errors: 3003 not a mixed-integer problem, 1012 too many values. */
TVK_API int TVKreadcopymipstart(ConstEnvHandle env, ProbHandle lp, const char *filename);
TVK_API int TVKreadcopymipstarts(ConstEnvHandle env, ProbHandle lp, const char *filename);

/* ==== Section: optimizers, bases, rays, sensitivity, quality ==== */

/* Optimizes a continuous linear problem by the method that TVK_PARAM_LPMETHOD names: 0 automatic, 1 primal simplex, 2 dual
 * simplex, 4 barrier with the crossover of TVK_PARAM_BARCROSSALG, 5 sifting, 6 several at once, each on a thread, of which the first
 * to come to a conclusion counts; 3 as TVKhybnetopt with 'd'. With two threads or more (TVK_PARAM_THREADS; by default as many as
 * the machine has) automatic is 6, unless TVK_PARAM_MEMORYEMPHASIS is 1: a simplex begins, and barrier joins it after a while;
 * TVK_PARAM_PARALLELMODE 0 and 1 repeat digit for digit, -1 is faster by the clock. Leaves a solution and its
 * status in the problem (TVKgetstat, TVKsolution): a limit, infeasibility and unboundedness are statuses, not errors. Starts
 * from the problem's basis when TVK_PARAM_ADVIND is not 0. Without one, or with TVK_PARAM_ADVIND 0 or 2, and while
 * TVK_PARAM_PREIND is 1, a smaller problem is made and solved first (see Presolve); solution and basis are those of the problem
 * itself. Errors: 1017 mixed-integer, 1018 and 1031 quadratic problems, 1225 and 1233 data that is not a number or infinite
 * (found here when the data check was off), 1256 singular beyond repair, 1234 no thread for 6, 1801 to 1803 as TVKbaropt for 4,
 * 1001. */
TVK_API int TVKlpopt(ConstEnvHandle env, ProbHandle lp);

/* Primal and dual simplex; otherwise as TVKlpopt. */
TVK_API int TVKprimopt(ConstEnvHandle env, ProbHandle lp);
TVK_API int TVKdualopt(ConstEnvHandle env, ProbHandle lp);

/* Sifting: a small working problem of the most promising columns is solved and enlarged until its duals leave no column
 * out, then the primal simplex makes sure of the answer; otherwise as TVKlpopt. For problems with many more columns than
 * rows; TVKlpopt begins like this by itself where it promises much. */
TVK_API int TVKsiftopt(ConstEnvHandle env, ProbHandle lp);

/* Interior point method, without crossover whatever TVK_PARAM_BARCROSSALG says: the solution has values and duals (type 2 of
 * TVKsolninfo) and no basis, so that routines that need one fail with 1262 (1550 for basis files). Presolves while
 * TVK_PARAM_PREIND is 1. Statuses besides those of TVKlpopt: 20 unbounded optimal face, 21 and 22 objective beyond
 * TVK_PARAM_BAROBJRNG, 5 optimal but for violations of absolute size; 6 where no progress was made, with the best point.
 * A Cholesky factor of more than TVK_PARAM_WORKMEM megabytes is kept in a temporary file in a directory that is made for it in
 * TVK_PARAM_WORKDIR; both are invisible as soon as they are open and gone when the call ends, however it ends. Errors besides
 * those of TVKlpopt: 1801 the directory or file cannot be made, 1802 it cannot be read, 1803 it cannot be written or the disk has
 * not room enough; the problem is as it was, without a solution. Otherwise as TVKlpopt. */
TVK_API int TVKbaropt(ConstEnvHandle env, ProbHandle lp);

/* The same, and then the crossover that `method` asks for: -1 or 'n' none; 1, 'o', 'O', 'p' or 'P' primal; 2, 'd', 'D', 't'
 * or 'T' dual; 0 as TVK_PARAM_BARCROSSALG says, whose 0 is primal. With crossover the solution is basic. Errors besides
 * those of TVKlpopt: 1292 another method. */
TVK_API int TVKhybbaropt(ConstEnvHandle env, ProbHandle lp, int method);

/* The network in the problem, as TVK_PARAM_NETFIND says what counts as one, is solved by the network simplex, and the simplex
 * algorithm `method` goes on from its basis with the whole problem: 1, 'o', 'O', 'p', 'P' primal; 2, 'd', 'D', 't', 'T' dual.
 * The parameters of the network optimizer steer the first part, which reports how it ended where TVK_PARAM_NETDISPLAY is not 0.
 * Otherwise as TVKlpopt, and 1292 for any other method. */
TVK_API int TVKhybnetopt(ConstEnvHandle env, ProbHandle lp, int method);

/* Solves a mixed-integer linear problem (type 1; else 3003, 1018 or 9002 for quadratic parts) by branch and cut, with the
 * node log on the results channel (TVK_PARAM_MIPDISPLAY, TVK_PARAM_MIPINTERVAL). Integer columns, semi-continuous and
 * semi-integer ones, special ordered sets, indicator and lazy constraints are branched on and propagated as they are.
 *
 * Ends with 0 and one of the statuses 101 to 134. Limits are no errors: time (TVK_PARAM_TILIM), nodes (TVK_PARAM_NODELIM),
 * solutions (TVK_PARAM_INTSOLLIM), tree size (TVK_PARAM_TRELIM), iterations (TVK_PARAM_ITLIM), deterministic time, the
 * caller's terminate flag; the best solution found is kept, and the next call goes on with the tree where the model has not
 * changed. It is optimal (101) when no better one exists, or (102) when none is better by more than TVK_PARAM_EPAGAP
 * or, in relation to its value, TVK_PARAM_EPGAP. What a solution holds: integer columns are whole, rows and bounds hold
 * within TVK_PARAM_EPRHS, whatever presolve or scaling did.
 *
 * Where what open nodes hold (bases, most of all) takes more than TVK_PARAM_WORKMEM megabytes, the nodes with the worst bounds put
 * theirs away: TVK_PARAM_NODEFILEIND 1 compressed in memory, 2 in temporary files, 3 compressed in such files, 0 not at all. Files
 * are made as TVKbaropt makes them, in TVK_PARAM_WORKDIR; nodes and answers are the same for each of the four. A file
 * that fails ends the call with 1801, 1802 or 1803 and status 109 or 110: the best solution is kept, and the next call goes on,
 * or begins anew after 1802. TVK_PARAM_TRELIM limits all of the tree, wherever it is.
 *
 * With TVK_PARAM_THREADS above 1, or 0 on a machine with more processors, that many threads share the tree once the root and some
 * nodes are done; by TVK_PARAM_PARALLELMODE 0 and 1 on the same path in every run, by -1 as the clock has it. One searches
 * alone where control callbacks take part, where TVK_PARAM_NODELIM, TVK_PARAM_ITLIM or TVK_PARAM_INTSOLLIM is a limit, and where
 * TVK_PARAM_MEMORYEMPHASIS is 1. Informational callbacks hear of one thread's nodes and of what all together have done.
 *
 * The solution of an earlier call, as far as its columns are still there, and MIP starts are tried first, and new starts when a
 * search goes on. With TVK_PARAM_ADVIND 0 neither the tree nor the solution of an earlier call is used.
 * User cuts become rows of the relaxation where they are violated; what they cut off may be left out of the search, but no
 * solution that is found otherwise is refused for them. Errors: 1225, 1233 data that are no numbers; 1001. */
TVK_API int TVKmipopt(ConstEnvHandle env, ProbHandle lp);

/* Of the last TVKmipopt, while its status stands (1217 else): the bound on every solution's objective, +-1e75 while there is
 * none; the gap |bound - objective| / (1e-10 + |objective|) (1217 without a solution). */
TVK_API int TVKgetbestobjval(ConstEnvHandle env, ConstProbHandle lp, double *bound_p);
TVK_API int TVKgetmiprelgap(ConstEnvHandle env, ConstProbHandle lp, double *gap_p);
/* Nodes processed, nodes left, solutions found; 0 without a search. */
TVK_API int TVKgetnodecnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetnodeleftcnt(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetmipsolcnt(ConstEnvHandle env, ConstProbHandle lp);

/* ---- Solution pool: solutions that the search has met besides the incumbent ----
 * TVKmipopt fills the pool of its problem with what it meets: incumbents, MIP starts that hold, and points of heuristics that are no
 * better. Each holds as an incumbent does. Members differ in the value of an integer column (where there is none, in which
 * columns are zero); of the solutions that differ in other columns only the best stays. TVK_PARAM_SOLNPOOLGAP and
 * TVK_PARAM_SOLNPOOLAGAP say how much worse than the best a member may be: relative to 1e-10 + |best|, and absolute; both must
 * allow it. Where TVK_PARAM_SOLNPOOLCAPACITY members are there, TVK_PARAM_SOLNPOOLREPLACE says which of them leaves for one more: 0 the
 * oldest, 1 the one with the worst objective, unless the new one is no better, 2 the one that is nearest to another, by the sum of
 * the differences of integer columns; the new one itself may be it.
 *
 * A search that begins anew begins with an empty pool; one that goes on keeps it. A change of the model that discards the solution
 * discards the pool. Members have numbers 0 .. TVKgetsolnpoolnumsolns - 1 in the order in which they came; those behind a
 * member that goes move up, while names stay. Member -1 is the incumbent, which may have left the pool, or been deleted.
 * Errors of all that follow: 3024 there is no pool; 1200 there is no such member; of member -1: 1217 no solution. */

/* 0 without a pool. The second one: members that left a full pool for others. */
TVK_API int TVKgetsolnpoolnumsolns(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetsolnpoolnumreplaced(ConstEnvHandle env, ConstProbHandle lp);

/* As TVKgetobjval, TVKgetx, TVKgetslack and TVKgetquality of a member; measures of dual values and of a basis: 1017. */
TVK_API int TVKgetsolnpoolobjval(ConstEnvHandle env, ConstProbHandle lp, int soln, double *objval_p);
TVK_API int TVKgetsolnpoolx(ConstEnvHandle env, ConstProbHandle lp, int soln, double *x, int begin, int end);
TVK_API int TVKgetsolnpoolslack(ConstEnvHandle env, ConstProbHandle lp, int soln, double *slack, int begin, int end);
TVK_API int TVKgetsolnpoolquality(ConstEnvHandle env, ConstProbHandle lp, int soln, int what, double *value_p,
                                  int *index_p);
/* Mean of the members' objective values. Error: 1217 there is none. */
TVK_API int TVKgetsolnpoolmeanobjval(ConstEnvHandle env, ConstProbHandle lp, double *meanobjval_p);

/* Names are p1, p2, .. by the order in which members came; no name is given twice while the pool lives. The name by the surplus
 * protocol; the index: 1210 there is none. */
TVK_API int TVKgetsolnpoolsolnname(ConstEnvHandle env, ConstProbHandle lp, char *buffer, int space, int *surplus_p,
                                   int soln);
TVK_API int TVKgetsolnpoolsolnindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *soln_p);

/* Delete members begin..end, or those whose entry of delstat is exactly 1. The incumbent stays. */
TVK_API int TVKdelsolnpoolsolns(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKdelsetsolnpoolsolns(ConstEnvHandle env, ProbHandle lp, int *delstat);

/* Fills the pool. Solves the problem first, as TVKmipopt does, or goes on with the tree that it left; where that is done, and the
 * model has not changed, it is not repeated. Then a search of its own goes on until TVK_PARAM_POPULATELIM solutions have come into
 * the pool in this call, or none is left that the gaps of the pool allow; the next call goes on where this one ended, unless a gap was
 * made wider or the intensity changed. TVK_PARAM_SOLNPOOLINTENSITY: 1 looks for solutions where the
 * search comes upon them; 2 (and 0) follows every branch to all solutions that are left by presolve, which drops columns
 * and values that no best solution needs; 3 and 4 keep all: in the end, with TVK_PARAM_SOLNPOOLCAPACITY large enough, the pool holds one
 * solution for every assignment of the integer columns that has any within the gaps, and the best that this assignment
 * has. What user cuts cut off may be missing.
 *
 * Statuses: 128 the limit was met; 129 all that can be reached were found, 130 all of them within a finite gap; 105 to 134 as TVKmipopt
 * where another limit ended the call, in either part, and 103, 118, 119 where there is nothing to fill it with. The incumbent is the
 * best solution of all. Limits and errors as TVKmipopt; nodes and iterations of both parts count together. */
TVK_API int TVKpopulate(ConstEnvHandle env, ProbHandle lp);

/* ---- Filters of the solution pool ----
 * The pool takes only solutions that pass all filters; the incumbent need not pass them, and gaps count from the best solution all
 * the same. A diversity filter bounds the distance from a reference point, the sum of weight[k] * |x[ind[k]] - refval[k]|
 * over binary columns; a range filter bounds the sum of val[k] * x[ind[k]] over columns of any type; both with a tolerance of
 * 1e-6, relative to 1 + |bound|. Bounds from TVK_INFBOUND on are none; where the lower one is above the upper one nothing passes.
 * Members that are there when a filter comes are looked through too. TVKpopulate looks only for solutions that pass: it finds for each
 * assignment of the integer columns the best one that does. It begins anew where filters came or went. Its incumbent is the best
 * solution of all as far as the gaps of TVKmipopt (TVK_PARAM_EPGAP) tell.
 * Filters stay until they are deleted, until columns are deleted, the problem becomes continuous or a whole problem is copied; a
 * clone has none. A column that is no longer binary counts by its distance all the same.
 * Errors: 1003 a negative count, a name with control characters that no file can hold; 1004 a null array where the count is
 * not 0; 1201 a column outside; 1222 one twice; 1225 a bound, coefficient or value that is no number, 1233 an infinite one of the latter; 3003 not a
 * mixed-integer problem; 3414 a diversity filter with a column that is not binary (type 'B', or 'I' with bounds within 0 and 1).
 * A call that fails changes nothing. Queries: 1200 no such filter; 1003 one of the other kind; 1004 a null pointer. */
#define TVK_FILTER_DIVERSITY 1
#define TVK_FILTER_RANGE 2
/* weight null: all 1; name null or empty: f1, f2, .. by a count of all filters that came. */
TVK_API int TVKaddsolnpooldivfilter(ConstEnvHandle env, ProbHandle lp, double lower, double upper, int nzcnt,
                                    const int *ind, const double *weight, const double *refval, const char *name);
TVK_API int TVKaddsolnpoolrngfilter(ConstEnvHandle env, ProbHandle lp, double lower, double upper, int nzcnt,
                                    const int *ind, const double *val, const char *name);
TVK_API int TVKgetsolnpoolnumfilters(ConstEnvHandle env, ConstProbHandle lp);
TVK_API int TVKgetsolnpoolfiltertype(ConstEnvHandle env, ConstProbHandle lp, int *type_p, int which);
/* By the surplus protocol: with too little space 1207, and *surplus_p is negative; bounds are written anyway, where their
 * pointers are not null. */
TVK_API int TVKgetsolnpooldivfilter(ConstEnvHandle env, ConstProbHandle lp, double *lower_p, double *upper_p,
                                    int *nzcnt_p, int *ind, double *weight, double *refval, int space, int *surplus_p,
                                    int which);
TVK_API int TVKgetsolnpoolrngfilter(ConstEnvHandle env, ConstProbHandle lp, double *lower_p, double *upper_p,
                                    int *nzcnt_p, int *ind, double *val, int space, int *surplus_p, int which);
TVK_API int TVKgetsolnpoolfiltername(ConstEnvHandle env, ConstProbHandle lp, char *buffer, int space, int *surplus_p,
                                     int which);
TVK_API int TVKgetsolnpoolfilterindex(ConstEnvHandle env, ConstProbHandle lp, const char *name, int *index_p);
/* Delete filters begin..end, or those whose entry of delstat is exactly 1. */
TVK_API int TVKdelsolnpoolfilters(ConstEnvHandle env, ProbHandle lp, int begin, int end);
TVK_API int TVKdelsetsolnpoolfilters(ConstEnvHandle env, ProbHandle lp, int *delstat);
/* Filters as an XML file, which holds numbers and names exactly, and those of a file behind the ones that are there, all or none;
 * columns by name, where the problem has names and the file tells them, else by index; unknown ones are left out with a warning.
 * Errors of writing: 1421, 1422, 1803; of reading: 1423, 1425 no XML or no filter file, 1434, and those above. The extension .flt
 * may be left out. */
TVK_API int TVKfltwrite(ConstEnvHandle env, ConstProbHandle lp, const char *filename);
TVK_API int TVKreadcopysolnpoolfilters(ConstEnvHandle env, ProbHandle lp, const char *filename);

/* Tests the starting basis for primal feasibility within TVK_PARAM_EPRHS: *infeas_p receives the index of the most
 * infeasible basic variable (column j, or number of columns + i for the slack of row i), or 2100000000 when there is none.
 * Errors: 1004, 1262 no starting basis, 1256 singular basis. */
TVK_API int TVKcheckpfeas(ConstEnvHandle env, ProbHandle lp, int *infeas_p);

/* ---- Presolve ----
 * Makes a smaller problem (the reduced problem) that is equivalent: rows and columns go, columns are substituted out, bounds
 * become tighter. The optimizers do this by themselves and forget it; these routines are for those who want to see or use
 * the reduced problem, or to map vectors between the two. What TVKpresolve makes stays with the problem, and the optimizers
 * use it, until TVKfreepresolve, TVKpresolve or a change of the model. A change of bounds, right-hand sides or objective is
 * carried into the reduced problem when that is safe; otherwise a warning tells that the reduced problem is gone.
 *
 * What may be done is set by TVK_PARAM_PREPASS, REDUCE, PRELINEAR, AGGIND, AGGFILL, DEPIND (TVK_PARAM_ each). While hidden
 * parameter 1043 is 1 (default) the results channel is told what was done; with 0 neither lines nor the error lines of 1101,
 * 1106, 1117, 1118, 1123 and 9025 are written. The LP callback is called with 7, limits are those of an optimizer.
 *
 * For hunting a wrong answer two hidden integer parameters help: 1050 ends presolve after so many reductions (default
 * 2100000000), 1049 switches rules off, a bit each (default 0).
 *
 * Example: the reduced problem of lp, and a point of it in lp's space
 *   ConstProbHandle small = NULL;
 *   if (TVKpresolve(env, lp, 0) == 0 && TVKgetredlp(env, lp, &small) == 0 && small != NULL)
 *     TVKuncrushx(env, lp, x, prex);                      prex: TVKgetnumcols(env, small) values, x: TVKgetnumcols(env, lp) */

/* Presolves a continuous linear problem and keeps the result. method: what will solve the reduced problem, a code of
 * TVK_PARAM_LPMETHOD (0..6) or one of the letters of TVKhybbaropt and TVKhybnetopt; today it changes nothing. The solution of
 * the problem is not touched. Errors: 1017, 1018, 1031 not a continuous linear problem, 1292 method, 1225, 1233 data; 1117
 * proven infeasible, 1118 unbounded, 1101 infeasible or unbounded; 1106 stopped by callback or flag, 1123 and 9025 limits;
 * 1001 ("Insufficient memory for presolve." on the warning channel). After an error nothing is kept. */
TVK_API int TVKpresolve(ConstEnvHandle env, ProbHandle lp, int method);

/* Forgets what TVKpresolve made, if anything. Its reduced problem's handle is invalid from then on. */
TVK_API int TVKfreepresolve(ConstEnvHandle env, ProbHandle lp);

/* *redlp_p: the reduced problem, with the names of the rows and columns that were kept; null when there is none (no
 * TVKpresolve, or everything was removed). It belongs to lp: it may be queried, written and cloned, but changing, optimizing
 * or freeing it is refused (1804, 1009); while it is read, lp cannot be changed or freed either. Error: 1004. */
TVK_API int TVKgetredlp(ConstEnvHandle env, ConstProbHandle lp, ConstProbHandle *redlp_p);

/* What became of rows and columns: an index >= 0 in the reduced problem, or one of */
#define TVK_PRESTAT_REDUNDANT (-1)   /* row that holds anyway */
#define TVK_PRESTAT_FIXED (-2)       /* column at a known value */
#define TVK_PRESTAT_SUBSTITUTED (-3) /* equation that was used up, and the column that it gave */
#define TVK_PRESTAT_MERGED (-4)      /* parallel to one that stands for both */
#define TVK_PRESTAT_OTHER (-5)
/* *prestat_p: 0 not presolved, 1 there is a reduced problem, 2 everything was removed. pcstat, prstat: by column and row of
 * lp; ocstat, orstat: original index of each column and row of the reduced problem. Any pointer may be null. Error: 1103
 * when arrays are asked for without TVKpresolve. */
TVK_API int TVKgetprestat(ConstEnvHandle env, ConstProbHandle lp, int *prestat_p, int *pcstat, int *prstat, int *ocstat,
                          int *orstat);

/* Original to reduced. x and pi have an entry for each column and row of lp, prex and prepi for each of the reduced problem;
 * values of what was removed are lost. TVKcrushform: a linear form of len entries becomes *plen_p entries and the constant
 * *poffset_p, with the same value at x and at its image for every x that TVKuncrushx can give; pind and pval have room for
 * an entry for each reduced column; 1121 when the form has no image. Errors: 1103 not presolved, 1004, 1003, 1201. */
TVK_API int TVKcrushx(ConstEnvHandle env, ConstProbHandle lp, const double *x, double *prex);
TVK_API int TVKcrushpi(ConstEnvHandle env, ConstProbHandle lp, const double *pi, double *prepi);
TVK_API int TVKcrushform(ConstEnvHandle env, ConstProbHandle lp, int len, const int *ind, const double *val, int *plen_p,
                         double *poffset_p, int *pind, double *pval);

/* Reduced to original, sizes as above: a feasible prex gives a feasible x of the same objective, optimal prepi give optimal
 * pi (those of removed rows follow from the signs of the others; for the basis itself optimize lp). TVKqpuncrushpi also
 * takes the point x of lp, on which the duals of a linear problem do not depend. ind and val have room for an entry for
 * each column of lp. Errors: 1103, 1004, 1003, 1201. */
TVK_API int TVKuncrushx(ConstEnvHandle env, ConstProbHandle lp, double *x, const double *prex);
TVK_API int TVKuncrushpi(ConstEnvHandle env, ConstProbHandle lp, double *pi, const double *prepi);
TVK_API int TVKqpuncrushpi(ConstEnvHandle env, ConstProbHandle lp, double *pi, const double *prepi, const double *x);
TVK_API int TVKuncrushform(ConstEnvHandle env, ConstProbHandle lp, int plen, const int *pind, const double *pval, int *len_p,
                           double *offset_p, int *ind, double *val);

/* Columns that presolve must not remove, for all later runs: replaces the list, cnt 0 empties it. Deleting columns renumbers
 * it, a new model empties it. The query follows the surplus protocol. Errors: 1003, 1004, 1201, 1207. */
TVK_API int TVKcopyprotected(ConstEnvHandle env, ProbHandle lp, int cnt, const int *indices);
TVK_API int TVKgetprotected(ConstEnvHandle env, ConstProbHandle lp, int *cnt_p, int *indices, int space, int *surplus_p);

/* Return the index in lp of column j or row i of the reduced problem; -1 after an error (1103, 1201, 1203), which is
 * reported. */
TVK_API int TVKEgetorigcolind(ConstEnvHandle env, ConstProbHandle lp, int j);
TVK_API int TVKEgetorigrowind(ConstEnvHandle env, ConstProbHandle lp, int i);

/* ---- Bases ----
 * Statuses of columns (cstat, one per column) and of rows (rstat, one per row): */
#define TVK_AT_LOWER 0   /* nonbasic at the lower bound; a row: at its right-hand side, a ranged row at its lower end */
#define TVK_BASIC 1      /* basic; a row: its slack is basic */
#define TVK_AT_UPPER 2   /* nonbasic at the upper bound; a ranged row at its upper end (other rows: as TVK_AT_LOWER) */
#define TVK_FREE_SUPER 3 /* nonbasic and free, standing at 0 */

/* The basis that the next optimization would start from: the last optimization's, or what TVKcopybase set. cstat and rstat
 * may each be null. Error: 1262 no basis. */
TVK_API int TVKgetbase(ConstEnvHandle env, ConstProbHandle lp, int *cstat, int *rstat);

/* Sets the starting basis (used when TVK_PARAM_ADVIND is not 0). Any number of basic entries is accepted: an optimizer
 * completes or repairs the basis with slacks. The status of the problem is reset. Errors: 1004; 1253 with the position of
 * an entry outside 0..3. */
TVK_API int TVKcopybase(ConstEnvHandle env, ProbHandle lp, const int *cstat, const int *rstat);

/* As TVKcopybase with starting values: primal values of columns, row slacks, reduced costs and row duals. Each array may be
 * null, cstat and rstat only together. Values are stored for the optimizers that can use them; simplex starts from the
 * basis. */
TVK_API int TVKcopystart(ConstEnvHandle env, ProbHandle lp, const int *cstat, const int *rstat, const double *cprim,
                         const double *rprim, const double *cdual, const double *rdual);

/* Dual steepest-edge norms of the basis, one per basis position, with the basic variable of each position in head: column
 * j, or -i-1 for the slack of row i. norm and head hold one entry per row; *len_p receives their number. 1264: none; so after
 * a primal run, and after one through presolve, which has those of the reduced problem's basis only. */
TVK_API int TVKgetdnorms(ConstEnvHandle env, ConstProbHandle lp, double *norm, int *head, int *len_p);
TVK_API int TVKcopydnorms(ConstEnvHandle env, ProbHandle lp, const double *norm, const int *head, int len);

/* A basis together with its norms: dnorm holds one entry per basic variable, columns first, then slacks, each in index
 * order. 1003 when the number of basic entries is not the number of rows. */
TVK_API int TVKcopybasednorms(ConstEnvHandle env, ProbHandle lp, const int *cstat, const int *rstat, const double *dnorm);

/* ---- The factored basis ----
 * The basis matrix B has the column of A for a basic column and the unit column of row i for the slack of row i (slack =
 * rhs - ax). Positions 0..rows-1 number the basic variables in the order of TVKgetbasehead. The routines work on the basis
 * of TVKgetbase, optimal or not. Errors: 1004, 1201 / 1203 index out of range, 1262 no basis, 1256 singular basis. */

/* head[p]: basic variable of position p (column j, or -i-1 for the slack of row i); x[p]: its value. Either may be null. */
TVK_API int TVKgetbasehead(ConstEnvHandle env, ConstProbHandle lp, int *head, double *x);

/* Row `position` (by row index) and column i (by position) of the inverse of B; rows entries each. */
TVK_API int TVKgetbaseinvrow(ConstEnvHandle env, ConstProbHandle lp, int position, double *row);
TVK_API int TVKgetbaseinvcol(ConstEnvHandle env, ConstProbHandle lp, int i, double *column);

/* Row `position` of the tableau: B^-1 A by column, and B^-1 (the slacks' part) by row; either may be null. Column j of the
 * tableau: B^-1 a_j by position. */
TVK_API int TVKgettableaurow(ConstEnvHandle env, ConstProbHandle lp, int position, double *columns, double *slacks);
TVK_API int TVKgettableaucol(ConstEnvHandle env, ConstProbHandle lp, int j, double *column);

/* In place: TVKftran solves B x = v (v by row, x by position), TVKbtran solves B'y = v (v by position, y by row). */
TVK_API int TVKftran(ConstEnvHandle env, ConstProbHandle lp, double *vector);
TVK_API int TVKbtran(ConstEnvHandle env, ConstProbHandle lp, double *vector);

/* ---- Certificates ---- */

/* Direction of unboundedness after status 2, one entry per column, largest entry 1 in size: every feasible point may move
 * along it for ever, with the objective improving. 1254 for another status. */
TVK_API int TVKgetray(ConstEnvHandle env, ConstProbHandle lp, double *ray);

/* Proof of infeasibility after status 3: one multiplier per row, largest 1 in size, such that the combination y'(ax) of the
 * rows' activities, as far as the column bounds let it vary, stays below what the rows demand of it; *proof_p receives
 * the gap (positive). All multipliers are 0 when a column's own bounds cross. y or proof_p may be null. 1265 for another
 * status or when no proof is stored. */
TVK_API int TVKgetfarkas(ConstEnvHandle env, ConstProbHandle lp, double *y, double *proof_p);

/* ---- Sensitivity of an optimal basis ----
 * Range of one datum, the others kept, within which the basis stays optimal; infinite ends are +-1e20. begin..end inclusive;
 * arrays of end - begin + 1 entries, each may be null but not all. Errors: 1004, 1200, 1260 not optimal, 1262. */
TVK_API int TVKgetobjsens(ConstEnvHandle env, ConstProbHandle lp, int begin, int end, double *lower, double *upper);
TVK_API int TVKgetrhssens(ConstEnvHandle env, ConstProbHandle lp, int begin, int end, double *lower, double *upper);
TVK_API int TVKgetboundsens(ConstEnvHandle env, ConstProbHandle lp, int begin, int end, double *lblower, double *lbupper,
                            double *ublower, double *ubupper);

/* The objective value at the two ends of those ranges: `what` tells of which datum, begin..end of which columns or rows.
 * Between the ends it is proportional; at an infinite end that the objective follows it is +-1e20. Errors as above; 1003 what. */
#define TVK_SENS_OBJ 1 /* ranges of TVKgetobjsens */
#define TVK_SENS_RHS 2 /* of TVKgetrhssens */
#define TVK_SENS_LB 3  /* of TVKgetboundsens: lblower and lbupper */
#define TVK_SENS_UB 4  /* ublower and ubupper */
TVK_API int TVKgetsensobjval(ConstEnvHandle env, ConstProbHandle lp, int what, int begin, int end, double *lower,
                             double *upper);

/* ---- Quality of the solution, recomputed in the model's own units ---- */
#define TVK_QUALITY_MAX_PRIMAL_INFEAS 1   /* bound and row violations */
#define TVK_QUALITY_SUM_PRIMAL_INFEAS 2
#define TVK_QUALITY_MAX_DUAL_INFEAS 3     /* wrong-signed reduced costs and duals */
#define TVK_QUALITY_SUM_DUAL_INFEAS 4
#define TVK_QUALITY_MAX_PRIMAL_RESIDUAL 5 /* rhs - ax - slack */
#define TVK_QUALITY_SUM_PRIMAL_RESIDUAL 6
#define TVK_QUALITY_MAX_DUAL_RESIDUAL 7   /* obj - A'pi - dj */
#define TVK_QUALITY_SUM_DUAL_RESIDUAL 8
#define TVK_QUALITY_MAX_COMP_SLACK 9      /* distance to the bound times dual value */
#define TVK_QUALITY_SUM_COMP_SLACK 10
#define TVK_QUALITY_MAX_X 11
#define TVK_QUALITY_MAX_PI 12
#define TVK_QUALITY_MAX_SLACK 13
#define TVK_QUALITY_MAX_RED_COST 14
#define TVK_QUALITY_KAPPA 15              /* estimated condition number of the scaled basis */
#define TVK_QUALITY_MAX_INT_INFEAS 16     /* distance of integer columns from whole numbers; 0 without types */
#define TVK_QUALITY_SUM_INT_INFEAS 17

/* *value_p: the measure `what`; *index_p (may be null): where a largest one stands, column j or -i-1 for row i; -1 for sums
 * and when there is none. Errors: 1004, 1003 unknown measure, 1217 no solution, 1232 no dual values, 1017 dual values of a
 * mixed-integer problem; kappa: 1262, 1256. */
TVK_API int TVKgetquality(ConstEnvHandle env, ConstProbHandle lp, int what, double *value_p, int *index_p);

/* ---- User-requested pivots ---- */

/* Forces the slacks of the rlen listed rows into the basis, and the clen listed fixed columns out of it, as far as a
 * numerically safe pivot exists. The basis becomes the start of the next optimization; the solution is discarded. Errors:
 * 1003, 1004, 1201 / 1203, 1221 a listed column is not fixed, 1262, 1256. */
TVK_API int TVKpivotin(ConstEnvHandle env, ProbHandle lp, const int *rlist, int rlen);
TVK_API int TVKpivotout(ConstEnvHandle env, ProbHandle lp, const int *clist, int clen);

/* For each of cnt columns: the objective reached by at most itlim dual simplex iterations from the optimal basis with the
 * column's upper bound at floor(x) (downobj) and with its lower bound at ceil(x) (upobj); a bound on the optimum of that
 * branch. An infeasible branch gives 1e75 (minimize) or -1e75 (maximize). The problem is left as it was. Errors: 1003, 1004,
 * 1201, 1252 no optimal basis, 1262, 1263 aborted, 1266 and 9027 time limits. */
TVK_API int TVKstrongbranch(ConstEnvHandle env, ProbHandle lp, const int *indices, int cnt, double *downobj, double *upobj,
                            int itlim);

/* ==== End of sections ==== */

#ifdef __cplusplus
}
#endif
#endif
