// What does a script pay for one call by the program kvl, from its start to its exit? The floor is
// the same program that loads and unloads its modules and does nothing else.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include "Bench.h"

extern char** environ;

namespace kvlbench {

namespace {

constexpr const char* Workload = "start, call and exit";

// Standard output leads to nowhere: who reads it is no part of the work.
class Quiet {
 public:
  Quiet() {
    (void)posix_spawn_file_actions_init(&actions);
    (void)posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  }
  ~Quiet() { (void)posix_spawn_file_actions_destroy(&actions); }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

  const posix_spawn_file_actions_t* Get() const { return &actions; }

 private:
  posix_spawn_file_actions_t actions;
};

void RunKvl(benchmark::State& state, const char* option, const char* value) {
  const Quiet quiet;
  char* const words[] = {const_cast<char*>(KVL_PROGRAM), const_cast<char*>(option),
                         const_cast<char*>(value), nullptr};
  bool right = true;
  for (auto _ : state) {
    pid_t process = 0;
    int status = -1;
    right &= posix_spawn(&process, KVL_PROGRAM, quiet.Get(), nullptr, words, environ) == 0 &&
             waitpid(process, &status, 0) == process && status == 0;
  }
  Require(right, Workload);
  state.SetItemsProcessed(state.iterations());
}

}  // namespace

void RegisterBenches() {
  Add(Workload, Ours, [](benchmark::State& state) {
    RunKvl(state, "-c", "math/hypot(3, 4)");
  })->UseRealTime();
  Add(Workload, Floor, [](benchmark::State& state) {
    RunKvl(state, "--modules", "--quiet");
  })->UseRealTime();
}

}  // namespace kvlbench
