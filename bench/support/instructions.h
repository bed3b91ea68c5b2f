#pragma once

namespace voxa::bench {

/// Argument that makes this program run one side of one comparison to have its instructions counted:
/// countOption BENCHMARK ours|rival COMPARISON, the comparisons of a benchmark numbered from 0. Under
///   valgrind --tool=callgrind --instr-atstart=no
/// the total is that of the side's work alone.
inline constexpr const char* countOption = "--count";

/// Begin and end of what is counted. Without callgrind around them they do nothing.
void countBegin();
void countEnd();

}  // namespace voxa::bench
