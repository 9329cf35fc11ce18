// What the benchmarks share. Each file compares a body over ours with the same body over its peer, and registers a
// check that both give the same answer, which runs before anything is timed.
#pragma once

#include <benchmark/benchmark.h>

/// Registers `check` from a global's constructor.
struct cBenchCheck {
    cBenchCheck(const char* name, bool (*check)());
};
