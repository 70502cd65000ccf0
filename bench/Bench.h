#ifndef KVL_BENCH_H
#define KVL_BENCH_H

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

/// What the bench programs share. A program answers one question; a benchmark is named by its
/// workload and by who does the work: "call by text/Lua". "ours" and "floor" are not peers.
namespace kvlbench {

constexpr const char* Ours = "ours";
/// The least work that the workload asks for, written by hand.
constexpr const char* Floor = "floor";

constexpr unsigned int Seed = 20240229;

/// Registers a program's benchmarks; each program has its own.
void RegisterBenches();

template <class Body>
benchmark::internal::Benchmark* Add(const std::string& workload, const char* who, Body&& body) {
  return benchmark::RegisterBenchmark((workload + "/" + who).c_str(), std::forward<Body>(body));
}

/// A figure of a wrong result is worth nothing: ends the program unless `holds`.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "bench: wrong result: %s\n", what);
  std::exit(EXIT_FAILURE);
}

}  // namespace kvlbench

#endif
