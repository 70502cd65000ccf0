#ifndef KVL_BENCH_CURVE_H
#define KVL_BENCH_CURVE_H

#include <string>
#include <vector>

#include "Figures.h"

namespace kvlbench {

/// How the cost of a piece of work grows with N: from the figures whose workload ends in ", N = "
/// and a number, writes `folder`/curve.csv and `folder`/curve.svg. False when that fails.
bool WriteCurves(const std::vector<Figure>& figures, const std::string& folder);

}  // namespace kvlbench

#endif
