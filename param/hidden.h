/* Numbers of the parameters without a public name that the library itself reads or that users meet in
 * parameter files. Types, defaults and ranges stand with all others in the table. */
#pragma once

namespace tovik::param {

inline constexpr int kPresolveDisplay =
    1043;  // int 0..1, default 1: 0 silences presolve lines and presolve outcomes
inline constexpr int kExpectedRows =
    1046;  // int, default -1: first row capacity of a reader, negative = its own
inline constexpr int kExpectedColumns = 1047;   // int, default -1: likewise for columns
inline constexpr int kExpectedNonzeros = 1048;  // int, default -1: likewise for matrix entries
inline constexpr int kPresolveOff =
    1049;  // int >= 0, default 0: bit mask of presolve rules that are switched off
inline constexpr int kUnlimitedSteps = 2100000000;
inline constexpr int kPresolveSteps =
    1050;  // int >= 0, default 2100000000: presolve ends after so many reductions
inline constexpr int kNamesOnly =
    1053;  // int 0..1, default 0: 1 = words in a parameter file are never numbers
inline constexpr int kEcho =
    1075;  // int 0..1, default 0: 1 echoes every successful set on the results channel
inline constexpr int kReadCheckFirst =
    1088;  // int, default 0: positive runs a model check after a successful read
inline constexpr int kReadCheckSecond = 1108;  // int, default 0: likewise
inline constexpr int kRandomSeed =
    1124;  // int, default 201004084: copied into the random state when set or reset
inline constexpr int kTickLimit =
    1127;  // double >= 0, default 1e75: work ticks that one optimization may use
inline constexpr int kBarrierThreads = 3016;  // int, default 0 = automatic, at most the processor count

}  // namespace tovik::param
