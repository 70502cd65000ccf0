#ifndef KVL_BENCH_FIGURES_H
#define KVL_BENCH_FIGURES_H

#include <string>
#include <vector>

namespace kvlbench {

/// What one of those who did a workload needed for it.
struct Figure {
  std::string workload;
  std::string who;
  double value;  // in `isBytes ? bytes : nanoseconds` a piece of work
  bool isBytes;
};

/// Reads the figures from a CSV file that Google Benchmark wrote: medians where repetitions were
/// made. Workloads come in their natural order, in which 100 follows 20. False when the file cannot
/// be read or holds a benchmark that failed; `figures` is then as it was.
bool ReadFigures(const char* path, std::vector<Figure>& figures);

}  // namespace kvlbench

#endif
