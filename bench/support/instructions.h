#pragma once

namespace voxa::bench {

/// With this argument the program runs one side of one comparison, so that its instructions can be counted:
///   countOption BENCHMARK ours|rival COMPARISON
/// The comparisons of a benchmark are numbered from 0. Under
///   valgrind --tool=callgrind --instr-atstart=no
/// the total is that of the side's work alone.
inline constexpr const char* countOption = "--count";

/// These two begin and end the counting. Without callgrind they do nothing.
void countBegin();
void countEnd();

}  // namespace voxa::bench
