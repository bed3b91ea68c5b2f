#include "support/instructions.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_START_INSTRUMENTATION (void)0
#define CALLGRIND_STOP_INSTRUMENTATION (void)0
#endif

namespace voxa::bench {

void countBegin() {
  CALLGRIND_START_INSTRUMENTATION;
}

void countEnd() {
  CALLGRIND_STOP_INSTRUMENTATION;
}

}  // namespace voxa::bench
