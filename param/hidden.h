/* Numbers of the parameters without a public name that the library itself reads or that users meet in
 * parameter files. Types, defaults and ranges stand with all others in the table. */
#pragma once

namespace tovik::param {

/* int 0..1, default 1: 0 silences presolve lines and presolve outcomes. */
inline constexpr int kPresolveDisplay = 1043;
/* int, default -1: first row capacity of a reader, negative = its own; likewise for columns and for matrix
 * entries. */
inline constexpr int kExpectedRows = 1046;
inline constexpr int kExpectedColumns = 1047;
inline constexpr int kExpectedNonzeros = 1048;
/* int >= 0, default 0: bit mask of presolve rules that are switched off. */
inline constexpr int kPresolveOff = 1049;
/* int >= 0, default kUnlimitedSteps: presolve ends after so many reductions. */
inline constexpr int kPresolveSteps = 1050;
inline constexpr int kUnlimitedSteps = 2100000000;
/* int 0..1, default 0: 1 = words in a parameter file are never numbers. */
inline constexpr int kNamesOnly = 1053;
/* int 0..1, default 0: 1 echoes every successful set on the results channel. */
inline constexpr int kEcho = 1075;
/* int, default 0: either one positive runs a model check after a successful read. */
inline constexpr int kReadCheckFirst = 1088;
inline constexpr int kReadCheckSecond = 1108;
/* int, default 201004084: where the engines' random numbers begin. */
inline constexpr int kRandomSeed = 1124;
/* int 0..1, default 0: 1 = a search does not use the first MIP start, which is complete and feasible, but tells on the
 * warning channel which reduction, cut, bound or node loses it. For those who look for a fault in the search. */
inline constexpr int kFollowStart = 1126;
/* double >= 0, default 1e75: work ticks that one optimization may use. */
inline constexpr int kTickLimit = 1127;
/* int, default 0 = automatic, at most the processor count. */
inline constexpr int kBarrierThreads = 3016;

}  // namespace tovik::param
