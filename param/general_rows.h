/* Parameters of general settings, linear programs, presolve, simplex, reading limits, threads and tuning:
 * 1001-1127. */
#pragma once

#include "param/rows.h"

namespace tovik::param::rows {

inline constexpr auto kGeneral = std::to_array<Entry>({
    integer(NAMED(ADVIND), 1, 0, 2, "Starting basis: 0 ignored, 1 and 2 used"),
    unused(unused(integer(NAMED(AGGFILL), 10, 0, kUnlimited,
                          "Most entries that the aggregator may add to the matrix by one substitution"))),
    unused(unused(integer(NAMED(AGGIND), -1, -1, kUnlimited,
                          "Rounds of the presolve aggregator: -1 automatic, 0 none, k at most k"))),
    hidden_integer(1004),
    unused(unused(
        real(NAMED(CFILEMUL), 3, 1.1, 1e75,
             "First size of the column file of the basis factor, as a multiple of the basis entries"))),
    integer(NAMED(CLOCKTYPE), 2, 0, 2,
            "Clock for times and time limits: 0 and 2 wall clock, 1 processor time"),
    unused(unused(
        integer(NAMED(CRAIND), 1, -1, 1,
                "Crash ordering of the slack start: 0 none, -1 and 1 two ways to weigh the objective"))),
    unused(unused(integer(
        NAMED(DEPIND), -1, -1, 3,
        "Search for dependent rows: -1 automatic, 0 off, 1 at the start of presolve, 2 at its end, 3 both"))),
    integer(NAMED(DPRIIND), 0, 0, 5,
            "Dual pricing: 0 automatic, 1 largest infeasibility, 2 and 3 steepest edge, 4 steepest edge with "
            "unit first norms, 5 devex"),
    integer(NAMED(PRICELIM), 0, 0, kUnlimited,
            "Columns that the primal simplex adds to its working set at a time: 0 automatic"),
    real(NAMED(EPMRK), 0.01, 0.0001, 0.99999,
         "Least Markowitz threshold: smallest pivot relative to its row that the factorization accepts"),
    real(NAMED(EPOPT), 1e-6, 1e-9, 0.1,
         "Optimality tolerance: largest reduced-cost violation of a solution called optimal"),
    real(NAMED(EPPER), 1e-6, 1e-8, 1e75, "Size of the perturbations of costs or bounds against degeneracy"),
    real(NAMED(EPRHS), 1e-6, 1e-9, 0.1,
         "Feasibility tolerance: largest violation of a bound or row of a solution called feasible"),
    hidden_real(1017),
    hidden_real(1018),
    integer(NAMED(SIMDISPLAY), 1, 0, 2,
            "Simplex log: 0 none, 1 a line now and then, 2 a line for each iteration"),
    integer(NAMED(ITLIM), kUnlimited, 0, kUnlimited,
            "Largest number of simplex iterations of one optimization"),
    unused(
        unused(integer(NAMED(ROWREADLIM), 30000, 0, kReadLimit, "Rows that a reader is expected to meet"))),
    unused(unused(integer(
        NAMED(NETFIND), 2, 1, 3,
        "Which network the network method extracts: 1 natural, 2 with reflected rows, 3 with scaled rows"))),
    unused(unused(
        integer(NAMED(COLREADLIM), 60000, 0, kReadLimit, "Columns that a reader is expected to meet"))),
    unused(unused(integer(NAMED(NZREADLIM), 250000, 0, kReadLimit,
                          "Matrix entries that a reader is expected to meet"))),
    real(
        NAMED(OBJLLIM), -1e75, 0, 0,
        "Objective limit: a minimization stops once it lies below, a maximization once it cannot stay above"),
    real(
        NAMED(OBJULIM), 1e75, 0, 0,
        "Objective limit: a minimization stops once it cannot stay below, a maximization once it lies above"),
    integer(NAMED(PERIND), 0, 0, 1,
            "Perturbation in the primal simplex: 0 when it stalls, 1 from the first iteration"),
    integer(NAMED(PERLIM), 0, 0, kUnlimited,
            "Degenerate iterations after which the primal simplex perturbs: 0 automatic"),
    integer(
        NAMED(PPRIIND), 0, -1, 4,
        "Primal pricing: 1 devex, 2 steepest edge, 3 steepest edge with unit first norms, others automatic"),
    unused(unused(integer(NAMED(PREIND), 1, 0, 1, "Presolve: 0 off, 1 on"))),
    integer(NAMED(REINV), 0, 0, 10000, "Basis changes between factorizations: 0 automatic"),
    hidden_real(1032),
    unused(
        unused(real(NAMED(RFILEMUL), 3, 1.1, 1e75,
                    "First size of the row file of the basis factor, as a multiple of the basis entries"))),
    integer(NAMED(SCAIND), 0, -1, 1,
            "Scaling: -1 none, 0 geometric unless the entries are even, 1 more passes"),
    integer(NAMED(SCRIND), 0, 0, 1, "Results, warnings and errors on standard output: 0 off, 1 on"),
    integer(NAMED(SINGLIM), 10, 0, kUnlimited, "Repairs of a singular basis before an optimization gives up"),
    unused(unused(
        real(NAMED(SINGTOL), 1e-13, 1e-10, 0.9, "Smallest pivot that the factorization does not call zero"))),
    real(NAMED(TILIM), 1e75, 0, 1e75, "Largest time of one optimization, in seconds"),
    hidden_real(1041),
    hidden_real(1042),
    hidden_integer(kPresolveDisplay, 1, 0, 1),
    unused(unused(integer(NAMED(PREDUAL), 0, -1, 1,
                          "Hand the dual model to the optimizer: -1 never, 0 automatic, 1 always"))),
    hidden_real(1045),
    hidden_integer(kExpectedRows, -1, -1, kReadLimit),
    hidden_integer(kExpectedColumns, -1, -1, kReadLimit),
    hidden_integer(kExpectedNonzeros, -1, -1, kReadLimit),
    hidden_integer(1049),
    hidden_integer(1050),
    hidden_integer(1051),
    unused(unused(integer(NAMED(PREPASS), -1, -1, kUnlimited,
                          "Rounds of presolve: -1 automatic, 0 none, k at most k"))),
    hidden_integer(kNamesOnly, 0, 0, 1),
    hidden_real(1054),
    hidden_real(1055),
    integer(NAMED(DATACHECK), 0, 0, 1, "Check the content of model data that is passed in: 0 off, 1 on"),
    unused(unused(
        integer(NAMED(REDUCE), 3, 0, 3, "Presolve reductions: 0 none, 1 primal only, 2 dual only, 3 both"))),
    unused(unused(
        integer(NAMED(PRELINEAR), 1, 0, 1,
                "Presolve may substitute by general equations: 0 only what maps back term by term, 1 all"))),
    hidden_integer(1059),
    hidden_integer(1060),
    hidden_integer(1061),
    integer(NAMED(LPMETHOD), 0, 0, 6,
            "Method for linear programs: 0 and 6 automatic, 1 primal, 2 dual; 3 network, 4 barrier and 5 "
            "sifting are answered by the dual in this version"),
    unused(unused(integer(
        NAMED(QPMETHOD), 0, 0, 6,
        "Method for quadratic programs: 0 automatic, 1 primal, 2 dual, 3 network, 4 barrier, 5 sifting, "
        "6 concurrent"))),
    unused(unused(text(NAMED(WORKDIR), ".", "Directory for temporary files"))),
    unused(unused(
        real(NAMED(WORKMEM), 128, 0, 1e75, "Working storage before data moves to files, in megabytes"))),
    hidden_real(1066),
    unused(integer(NAMED(THREADS), 0, 0, Ceiling::threads,
                   "Threads of a parallel optimization: 0 as many as the machine has")),
    hidden_text(1068),
    hidden_integer(1069),
    hidden_integer(1070),
    hidden_integer(1071),
    hidden_integer(1072),
    hidden_integer(1073),
    unused(unused(
        integer(NAMED(CONFLICTDISPLAY), 1, 0, 2, "Conflict refiner log: 0 none, 1 summary, 2 detailed"))),
    hidden_integer(kEcho, 0, 0, 1),
    unused(unused(integer(NAMED(SIFTDISPLAY), 1, 0, 2,
                          "Sifting log: 0 none, 1 major iterations, 2 also the subproblems"))),
    unused(unused(
        integer(NAMED(SIFTALG), 0, 0, 4,
                "Method for sifting subproblems: 0 automatic, 1 primal, 2 dual, 3 network, 4 barrier"))),
    unused(
        unused(integer(NAMED(SIFTITLIM), kUnlimited, 0, kUnlimited, "Largest number of sifting iterations"))),
    hidden_integer(1079),
    unused(unused(
        integer(NAMED(MPSLONGNUM), 1, 0, 1, "Numbers in MPS files: 0 twelve columns, 1 full precision"))),
    unused(integer(NAMED(MEMORYEMPHASIS), 0, 0, 1, "Save memory where there is a choice: 0 no, 1 yes")),
    unused(unused(integer(NAMED(NUMERICALEMPHASIS), 0, 0, 1, "Prefer accuracy to speed: 0 no, 1 yes"))),
    unused(unused(
        integer(NAMED(FEASOPTMODE), 0, 0, 5,
                "Measure of a feasibility relaxation: 0-1 sum, 2-3 count, 4-5 sum of squares; odd ones then "
                "optimize"))),
    hidden_integer(1085),
    hidden_integer(1086),
    hidden_integer(1087),
    hidden_integer(kReadCheckFirst, 0, 0, 1),
    hidden_integer(1089),
    hidden_integer(1090),
    hidden_integer(1091),
    hidden_integer(1092),
    hidden_integer(1093),
    hidden_integer(1094),
    hidden_integer(1095),
    hidden_integer(1096),
    hidden_integer(1097),
    hidden_integer(1100),
    hidden_integer(1101),
    hidden_integer(1102),
    hidden_integer(1103),
    hidden_integer(1104),
    hidden_integer(1105),
    hidden_integer(1106),
    hidden_integer(1107),
    hidden_integer(kReadCheckSecond, 0, 0, 1),
    unused(unused(integer(NAMED(PARALLELMODE), 0, -1, 1,
                          "Parallel runs: -1 opportunistic, 0 automatic, 1 deterministic"))),
    unused(unused(integer(NAMED(TUNINGMEASURE), 1, 1, 2,
                          "Tuning goal over several models: 1 mean time, 2 largest time"))),
    unused(unused(integer(NAMED(TUNINGREPEAT), 1, 1, kUnlimited,
                          "Tuning repeats of each model with changed row and column orders"))),
    unused(unused(
        real(NAMED(TUNINGTILIM), 10000, 1, 1e75, "Tuning time for each model and setting, in seconds"))),
    unused(
        unused(integer(NAMED(TUNINGDISPLAY), 1, 0, 3, "Tuning log: 0 none, 1 summary, 2 settings, 3 full"))),
    unused(unused(
        integer(NAMED(WRITELEVEL), 0, 0, 4,
                "Columns in solution files: 0 and 1 all, 2 discrete, 3 nonzero, 4 nonzero and discrete"))),
    hidden_integer(1115),
    hidden_integer(1116),
    hidden_integer(1117),
    hidden_integer(1119),
    hidden_integer(1120),
    unused(unused(
        integer(NAMED(PERFVAR_RUNS), 10, 2, kUnlimited, "Runs of a performance-variability measurement"))),
    unused(unused(integer(NAMED(PERFVAR_DISPLAY), 1, 0, 2,
                          "Performance-variability log: 0 none, 1 summary, 2 each run"))),
    unused(unused(
        integer(NAMED(PERFVAR_MEASURE), 0, 0, 1, "Performance-variability measure: 0 time, 1 work ticks"))),
    hidden_integer(kRandomSeed, 201004084, 0, kUnlimited),
    hidden_text(1125),
    hidden_integer(1126),
    hidden_real(kTickLimit, 1e75, 0, 1e75),
});

}  // namespace tovik::param::rows
