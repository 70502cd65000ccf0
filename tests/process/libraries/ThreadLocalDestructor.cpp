// A thread-local object with a destructor: the library stays mapped until every thread that used
// the object has ended.

namespace {

struct Scope {
  ~Scope() { ++ended; }
  int uses = 0;
  static int ended;
};
int Scope::ended = 0;

thread_local Scope scope;

}  // namespace

extern "C" __attribute__((visibility("default"))) int UseInThisThread() {
  return ++scope.uses;
}
