/* Parameters of the mixed-integer optimizer: 2000-2139. */
#pragma once

#include "param/rows.h"

namespace tovik::param::rows {

inline constexpr auto kMip = std::to_array<Entry>({
    unused(unused(integer(NAMED(BRDIR), 0, -1, 1, "First branch: -1 down, 0 automatic, 1 up"))),
    unused(unused(real(NAMED(BTTOL), 0.9999, 0, 1,
                       "Readiness to jump back in the tree: near 0 best bound, near 1 depth first"))),
    unused(unused(integer(NAMED(CLIQUES), 0, -1, 3, "Clique cuts: -1 none, 0 automatic, 1-3 ever more"))),
    unused(
        unused(integer(NAMED(COEREDIND), 2, 0, 2, "Coefficient tightening: 0 none, 1 integers only, 2 all"))),
    unused(unused(integer(NAMED(COVERS), 0, -1, 3, "Cover cuts: -1 none, 0 automatic, 1-3 ever more"))),
    unused(unused(real(NAMED(CUTLO), -1e75, 0, 0,
                       "Lower cutoff: in a maximization, nodes below this objective are dropped"))),
    unused(unused(real(NAMED(CUTUP), 1e75, 0, 0,
                       "Upper cutoff: in a minimization, nodes above this objective are dropped"))),
    unused(unused(real(NAMED(EPAGAP), 1e-6, 0, 1e20,
                       "Absolute gap between bound and incumbent that counts as optimal"))),
    unused(unused(
        real(NAMED(EPGAP), 0.0001, 0, 1, "Relative gap between bound and incumbent that counts as optimal"))),
    unused(unused(real(NAMED(EPINT), 1e-5, 0, 0.5,
                       "Integrality tolerance: largest distance of an integer column from a whole number"))),
    unused(unused(integer(
        NAMED(MIPDISPLAY), 2, 0, 5,
        "Node log: 0 none, 1 solutions only, 2 with nodes, 3 with cuts, 4 with root relaxation, 5 with "
        "all relaxations"))),
    unused(unused(integer(NAMED(MIPINTERVAL), 0, -kUnlimited, kUnlimited,
                          "Nodes between log rows: 0 automatic, k every k nodes, negative ever wider"))),
    hidden_real(2014),
    unused(unused(
        integer(NAMED(INTSOLLIM), kUnlimited, 1, kUnlimited, "Largest number of integer solutions found"))),
    unused(unused(integer(
        NAMED(NODEFILEIND), 1, 0, 3,
        "Node storage beyond the working memory: 0 none, 1 compressed in memory, 2 on disk, 3 on disk "
        "compressed"))),
    unused(unused(integer(NAMED(NODELIM), kUnlimited, 0, kUnlimited, "Largest number of nodes"))),
    unused(
        unused(integer(NAMED(NODESEL), 1, 0, 3,
                       "Next node: 0 depth first, 1 best bound, 2 best estimate, 3 another best estimate"))),
    unused(unused(real(NAMED(OBJDIF), 0, 0, 0,
                       "A new solution must be better than the incumbent by at least this amount"))),
    unused(unused(integer(NAMED(MIPORDIND), 1, 0, 1, "Use priority orders: 0 no, 1 yes"))),
    unused(unused(real(NAMED(RELOBJDIF), 0, 0, 1,
                       "A new solution must be better than the incumbent by this fraction of it"))),
    unused(unused(integer(
        NAMED(STARTALG), 0, 0, 6,
        "Method at the root: 0 automatic, 1 primal, 2 dual, 3 network, 4 barrier, 5 sifting, 6 concurrent"))),
    unused(unused(
        integer(NAMED(SUBALG), 0, 0, 5,
                "Method at the nodes: 0 automatic, 1 primal, 2 dual, 3 network, 4 barrier, 5 sifting"))),
    unused(unused(real(NAMED(TRELIM), 1e75, 0, 1e75, "Largest size of the tree, in megabytes"))),
    unused(unused(
        integer(NAMED(VARSEL), 0, -1, 4,
                "Branching variable: -1 least fractional, 0 automatic, 1 most fractional, 2 pseudo-costs, 3 "
                "strong branching, 4 pseudo reduced costs"))),
    unused(unused(integer(NAMED(BNDSTRENIND), -1, -1, 1, "Bound strengthening: -1 automatic, 0 off, 1 on"))),
    unused(unused(integer(NAMED(HEURFREQ), 0, -1, kUnlimited,
                          "Nodes between heuristics: -1 none, 0 automatic, k every k nodes"))),
    unused(unused(integer(NAMED(MIPORDTYPE), 0, 0, 3,
                          "Generated priority order: 0 none, 1 by cost, 2 by bounds, 3 by cost per entry"))),
    unused(unused(
        real(NAMED(CUTSFACTOR), 4, 0, 1e75, "Rows with cuts may reach this multiple of the original rows"))),
    unused(unused(integer(NAMED(RELAXPREIND), -1, -1, 1,
                          "Presolve of the root relaxation: -1 automatic, 0 off, 1 on"))),
    unused(unused(integer(NAMED(PRESLVND), 0, -1, 2,
                          "Presolve at nodes: -1 none, 0 automatic, 1 force, 2 with probing"))),
    hidden_real(2038),
    unused(unused(
        integer(NAMED(BBINTERVAL), 7, 0, kUnlimited,
                "Every how many nodes the best bound is taken when another node rule is in force: 0 never"))),
    unused(
        unused(integer(NAMED(FLOWCOVERS), 0, -1, 2, "Flow cover cuts: -1 none, 0 automatic, 1-2 ever more"))),
    unused(
        unused(integer(NAMED(IMPLBD), 0, -1, 2, "Implied bound cuts: -1 none, 0 automatic, 1-2 ever more"))),
    unused(unused(integer(NAMED(PROBE), 0, -1, 3, "Probing: -1 none, 0 automatic, 1-3 ever more"))),
    unused(unused(integer(NAMED(GUBCOVERS), 0, -1, 2,
                          "Generalized upper bound cover cuts: -1 none, 0 automatic, 1-2 ever more"))),
    unused(unused(integer(NAMED(STRONGCANDLIM), 10, 1, kUnlimited, "Candidates of strong branching"))),
    unused(unused(integer(NAMED(STRONGITLIM), 0, 0, kUnlimited,
                          "Simplex iterations for each strong branching candidate: 0 automatic"))),
    hidden_real(2047),
    unused(unused(integer(NAMED(FRACCAND), 200, 1, kUnlimited, "Candidate rows for fractional cuts"))),
    unused(
        unused(integer(NAMED(FRACCUTS), 0, -1, 2, "Fractional cuts: -1 none, 0 automatic, 1-2 ever more"))),
    unused(unused(integer(NAMED(FRACPASS), 0, 0, kUnlimited, "Rounds of fractional cuts: 0 automatic"))),
    unused(
        unused(integer(NAMED(FLOWPATHS), 0, -1, 2, "Flow path cuts: -1 none, 0 automatic, 1-2 ever more"))),
    unused(unused(integer(NAMED(MIRCUTS), 0, -1, 2,
                          "Mixed-integer rounding cuts: -1 none, 0 automatic, 1-2 ever more"))),
    unused(
        unused(integer(NAMED(DISJCUTS), 0, -1, 3, "Disjunctive cuts: -1 none, 0 automatic, 1-3 ever more"))),
    unused(unused(integer(NAMED(AGGCUTLIM), 3, 0, kUnlimited,
                          "Rows that may be aggregated for flow cover and rounding cuts"))),
    unused(unused(integer(NAMED(MIPCBREDLP), 1, 0, 1,
                          "Model that callbacks see: 0 the original, 1 the presolved one"))),
    unused(unused(integer(NAMED(CUTPASS), 0, -1, kUnlimited,
                          "Rounds of cuts at the root: -1 none, 0 automatic, k at most k"))),
    hidden_integer(2057),
    unused(unused(
        integer(NAMED(MIPEMPHASIS), 0, 0, 4,
                "Emphasis: 0 balance, 1 feasibility, 2 optimality, 3 best bound, 4 hidden solutions"))),
    unused(
        unused(integer(NAMED(SYMMETRY), -1, -1, 5, "Symmetry breaking: -1 automatic, 0 off, 1-5 ever more"))),
    unused(
        unused(integer(NAMED(DIVETYPE), 0, 0, 3, "Dives: 0 automatic, 1 traditional, 2 probing, 3 guided"))),
    unused(
        unused(integer(NAMED(RINSHEUR), 0, -1, kUnlimited,
                       "Nodes between neighbourhood searches around the incumbent: -1 none, 0 automatic"))),
    unused(unused(
        integer(NAMED(SUBMIPNODELIM), 500, 1, kUnlimited, "Nodes of a sub-search within a heuristic"))),
    unused(unused(integer(NAMED(LBHEUR), 0, 0, 1, "Local branching after each new incumbent: 0 off, 1 on"))),
    unused(unused(integer(
        NAMED(REPEATPRESOLVE), -1, -1, 3,
        "Presolve again after the root: -1 automatic, 0 no, 1 without cuts, 2 with cuts, 3 with new root "
        "cuts"))),
    unused(unused(real(NAMED(PROBETIME), 1e75, 0, 1e75, "Largest time of probing, in seconds"))),
    unused(
        unused(real(NAMED(POLISHTIME), 0, 0, 1e75,
                    "Time of polishing after the search, in seconds; excludes the polish-after conditions"))),
    unused(unused(integer(NAMED(REPAIRTRIES), 0, -1, kUnlimited,
                          "Attempts to repair an infeasible start: -1 none, 0 automatic"))),
    hidden_real(2068),
    hidden_real(2069),
    hidden_real(2070),
    hidden_real(2071),
    hidden_real(2072),
    unused(unused(real(NAMED(EPRELAX), 1e-6, 0, 1e20, "Smallest relaxation of a feasibility relaxation"))),
    hidden_integer(2074),
    hidden_integer(2075),
    hidden_integer(2076),
    hidden_integer(2077),
    hidden_integer(2078),
    hidden_integer(2080),
    hidden_integer(2081),
    hidden_integer(2082),
    hidden_integer(2083),
    hidden_integer(2084),
    hidden_integer(2085),
    hidden_integer(2086),
    hidden_integer(2087),
    hidden_integer(2088),
    hidden_integer(2089),
    hidden_integer(2090),
    hidden_integer(2091),
    hidden_integer(2092),
    hidden_integer(2093),
    hidden_integer(2095),
    hidden_integer(2096),
    hidden_integer(2097),
    unused(
        unused(integer(NAMED(FPHEUR), 0, -1, 2,
                       "Feasibility pump: -1 none, 0 automatic, 1 for feasibility, 2 for a good objective"))),
    hidden_integer(2099),
    hidden_integer(2100),
    hidden_integer(2101),
    unused(
        unused(integer(NAMED(EACHCUTLIM), kUnlimited, 0, kUnlimited, "Largest number of cuts of each kind"))),
    unused(
        unused(integer(NAMED(SOLNPOOLCAPACITY), kUnlimited, 0, kUnlimited, "Solutions that the pool keeps"))),
    unused(unused(integer(NAMED(SOLNPOOLREPLACE), 0, 0, 2,
                          "Solution that leaves a full pool: 0 oldest, 1 worst, 2 least diverse"))),
    unused(unused(real(NAMED(SOLNPOOLGAP), 1e75, 0, 1e75,
                       "Relative gap from the best solution beyond which the pool keeps none"))),
    unused(unused(real(NAMED(SOLNPOOLAGAP), 1e75, 0, 1e75,
                       "Absolute gap from the best solution beyond which the pool keeps none"))),
    unused(unused(integer(NAMED(SOLNPOOLINTENSITY), 0, 0, 4,
                          "Effort to fill the pool: 0 automatic, 1 mild to 4 all solutions"))),
    unused(unused(
        integer(NAMED(POPULATELIM), 20, 1, kUnlimited, "Solutions that one filling of the pool adds"))),
    unused(unused(integer(NAMED(MIPSEARCH), 0, 0, 2, "Search: 0 automatic, 1 branch and cut, 2 dynamic"))),
    unused(unused(integer(NAMED(MIQCPSTRAT), 0, 0, 2,
                          "Relaxation at nodes with quadratic rows: 0 automatic, 1 quadratic, 2 linear"))),
    unused(unused(
        integer(NAMED(ZEROHALFCUTS), 0, -1, 2, "Zero-half cuts: -1 none, 0 automatic, 1-2 ever more"))),
    hidden_integer(2112),
    hidden_integer(2113),
    hidden_integer(2114),
    hidden_integer(2115),
    hidden_integer(2116),
    hidden_integer(2117),
    hidden_integer(2118),
    hidden_integer(2119),
    hidden_integer(2120),
    hidden_integer(2121),
    hidden_integer(2122),
    hidden_integer(2123),
    hidden_integer(2124),
    hidden_integer(2125),
    unused(
        unused(real(NAMED(POLISHAFTEREPAGAP), 0, 0, 1e20, "Polishing starts at this absolute gap; 0 never"))),
    unused(unused(real(NAMED(POLISHAFTEREPGAP), 0, 0, 1, "Polishing starts at this relative gap; 0 never"))),
    unused(unused(integer(NAMED(POLISHAFTERNODE), kUnlimited, 0, kUnlimited,
                          "Polishing starts after this number of nodes"))),
    unused(unused(integer(NAMED(POLISHAFTERINTSOL), kUnlimited, 1, kUnlimited,
                          "Polishing starts after this number of integer solutions"))),
    unused(
        unused(real(NAMED(POLISHAFTERTIME), 1e75, 0, 1e75, "Polishing starts after this time, in seconds"))),
    hidden_integer(2131),
    hidden_integer(2132),
    hidden_integer(2133),
    unused(unused(
        integer(NAMED(MCFCUTS), 0, -1, 2, "Multi-commodity flow cuts: -1 none, 0 automatic, 1-2 ever more"))),
    hidden_integer(2135),
    hidden_integer(2136),
    unused(unused(integer(NAMED(MIPKAPPASTATS), 0, -1, 2,
                          "Condition numbers of node bases: -1 none, 0 automatic, 1 a sample, 2 all"))),
    hidden_integer(2138),
    unused(unused(integer(NAMED(AUXROOTTHREADS), 0, -1, Ceiling::threads_less_one,
                          "Threads for side tasks at the root: -1 none, 0 automatic"))),
});

}  // namespace tovik::param::rows
