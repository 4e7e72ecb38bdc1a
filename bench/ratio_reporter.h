// Copyright 2026 The Veltmark authors.
//
// RunWithRatios runs the registered benchmarks and then prints, for every
// benchmark named "<case>/candidate" with a partner "<case>/baseline", the
// ratio of their CPU times per iteration. Machines are shared and noisy;
// the ratio of two measurements taken in the same run is what we compare
// across runs, never an absolute time.

#ifndef RZ_BENCH_RATIO_REPORTER_H_
#define RZ_BENCH_RATIO_REPORTER_H_

namespace rz {

// Returns the process exit status.
int RunWithRatios(int argc, char** argv);

}  // namespace rz

#endif  // RZ_BENCH_RATIO_REPORTER_H_
