/* Parameters of the barrier, quadratic and network optimizers: 3001-3034, 4001-4010, 5001-5005. */
#pragma once

#include "param/rows.h"

namespace tovik::param::rows {

inline constexpr auto kEngines = std::to_array<Entry>({
    hidden_real(3001),
    real(NAMED(BAREPCOMP), 1e-8, 1e-12, 1e75, "Complementarity at which barrier stops"),
    real(NAMED(BARGROWTH), 1e12, 1, 1e75, "Growth of the barrier iterates that is taken for unboundedness"),
    real(NAMED(BAROBJRNG), 1e20, 0, 1e75, "Objective size beyond which barrier calls the model unbounded"),
    hidden_real(3005),
    integer(NAMED(BARALG), 0, 0, 3,
            "Barrier variant: 0 automatic, 1 infeasibility estimate, 2 infeasibility constant, 3 standard"),
    integer(NAMED(BARCOLNZ), 0, 0, kUnlimited,
            "Entries from which barrier treats a column as dense: 0 automatic"),
    integer(NAMED(BARDISPLAY), 1, 0, 2, "Barrier log: 0 none, 1 normal, 2 detailed"),
    integer(NAMED(BARITLIM), kUnlimited, 0, kUnlimited, "Largest number of barrier iterations"),
    integer(NAMED(BARMAXCOR), -1, -1, kUnlimited,
            "Centrality corrections of each barrier iteration: -1 automatic"),
    integer(NAMED(BARORDER), 0, 0, 3,
            "Barrier ordering: 0 automatic, 1 approximate minimum degree, 2 approximate minimum fill, 3 "
            "nested dissection"),
    hidden_real(3015),
    hidden_integer(kBarrierThreads, 0, 0, Ceiling::threads),
    integer(NAMED(BARSTARTALG), 1, 1, 4,
            "Barrier starting point: 1 and 2 dual 0, 3 and 4 dual estimated; odd ones primal estimated from "
            "the rows"),
    integer(NAMED(BARCROSSALG), 0, -1, 2, "Crossover after barrier: -1 none, 0 automatic, 1 primal, 2 dual"),
    unused(real(NAMED(BARQCPEPCOMP), 1e-7, 1e-12, 1e75,
                "Complementarity at which barrier stops for quadratic rows")),
    hidden_real(3021),
    hidden_real(3022),
    hidden_real(3023),
    hidden_real(3024),
    hidden_integer(3025),
    hidden_integer(3026),
    hidden_integer(3027),
    hidden_integer(3028),
    hidden_integer(3029),
    hidden_integer(3030),
    hidden_integer(3031),
    hidden_integer(3032),
    hidden_integer(3033),
    hidden_integer(3034),
    unused(integer(NAMED(QPNZREADLIM), 5000, 0, kReadLimit,
                   "Quadratic entries that a reader is expected to meet")),
    hidden_integer(4002),
    unused(integer(NAMED(QPMAKEPSDIND), 1, 0, 1,
                   "Make indefinite binary quadratic objectives convex: 0 no, 1 yes")),
    integer(NAMED(NETITLIM), kUnlimited, 0, kUnlimited, "Largest number of network simplex iterations"),
    real(NAMED(NETEPOPT), 1e-6, 1e-11, 0.1, "Optimality tolerance of the network simplex"),
    real(NAMED(NETEPRHS), 1e-6, 1e-11, 0.1, "Feasibility tolerance of the network simplex"),
    integer(NAMED(NETPPRIIND), 0, 0, 3,
            "Network pricing: 0 automatic, 1 partial, 2 multiple partial, 3 multiple partial with sorting"),
    integer(NAMED(NETDISPLAY), 2, 0, 2, "Network log: 0 none, 1 true objective, 2 penalized objective"),
});

}  // namespace tovik::param::rows
