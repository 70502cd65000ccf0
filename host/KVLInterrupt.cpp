#include "KVLInterrupt.h"

#include <atomic>

#include "KVLPlatform.h"
#include "KVLShellResult.h"

namespace {

using Ask = void (*)();

// A handler of signals may use what takes no lock.
static_assert(std::atomic<Ask>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

std::atomic<bool> isTelling{false};
std::atomic<bool> isPrompting{false};
std::atomic<bool> wasInterrupted{false};  // at the prompt
std::atomic<Ask> running{nullptr};        // null while no text runs
std::atomic<bool> wasAsked{false};        // the text that runs

void OnInterrupt() {
  const Ask ask = running;
  if (!ask && isPrompting) {
    wasInterrupted = true;
    return;
  }
  if (!ask || wasAsked.exchange(true)) KVLEndNow(KVLExit_Interrupted);
  if (isTelling) KVLWriteErrorNow("\nkvl: asked to end; Ctrl-C again ends the program\n");
  ask();
}

}  // namespace

void KVLInterrupt::Install(bool tellsUser) {
  isTelling = tellsUser;
  KVLOnInterrupt(OnInterrupt);
}

KVLInterrupt::Prompting::Prompting() {
  isPrompting = true;
}

KVLInterrupt::Prompting::~Prompting() {
  isPrompting = false;
}

KVLInterrupt::Running::Running(void (*ask)()) {
  wasAsked = false;
  running = ask;
}

KVLInterrupt::Running::~Running() {
  running = nullptr;
}

bool KVLInterrupt::Take() {
  return wasInterrupted.exchange(false);
}
