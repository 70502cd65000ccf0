#include "KVLShellSession.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include "KVLShellSyntax.h"

namespace {

constexpr std::size_t LongestHistory = 1000;  // texts
constexpr int DeepestRun = 32;                // texts that run inside one another

std::atomic<int> nbRunning{0};
std::atomic<bool> isInterrupted{false};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "signal handlers use them");

// Holds the libraries at `addresses`, each once.
std::vector<KVLShellLibraryHold> HoldLibraries(std::vector<const void*> addresses) {
  std::sort(addresses.begin(), addresses.end());
  addresses.erase(std::unique(addresses.begin(), addresses.end()), addresses.end());
  std::vector<KVLShellLibraryHold> holds;
  for (const void* const address : addresses)
    holds.emplace_back(address);
  return holds;
}

// Lets go of an object first, and hands on what keeps its code in the process.
template <class Object>
void GiveUp(std::vector<KVLShellLibraryHold>& holds, KVLSmartPtr<Object>& object,
            std::vector<KVLShellLibraryHold>& released) {
  object = nullptr;
  for (KVLShellLibraryHold& hold : holds)
    released.push_back(std::move(hold));
}

}  // namespace

class KVLShellSession::HeldValue {
 public:
  HeldValue(KVLSmartPtr<KVLCodeValue> heldValue, std::vector<KVLShellLibraryHold>& releasedHolds)
      : released(releasedHolds),
        holds(HoldLibraries(KVLShellLibrariesOf(*heldValue))),
        value(heldValue) {}
  ~HeldValue() { GiveUp(holds, value, released); }

  const KVLSmartPtr<KVLCodeValue>& GetValue() const { return value; }

 private:
  std::vector<KVLShellLibraryHold>& released;
  std::vector<KVLShellLibraryHold> holds;
  KVLSmartPtr<KVLCodeValue> value;
};

class KVLShellSession::HeldBinding {
 public:
  HeldBinding(const MRBUnicodeString& path, KVLSmartPtr<KVLCodeFunction> heldFunction,
              std::vector<KVLShellLibraryHold>& releasedHolds)
      : released(releasedHolds),
        holds(HoldLibraries(KVLShellLibrariesOf(*heldFunction))),
        function(heldFunction),
        registerer(new KVLCodeObjectRegisterer(KVLCodeEnv::GetDefault(), heldFunction, path,
                                               KVLSourceLocation("", 0, "session"))) {}
  ~HeldBinding() {
    registerer = nullptr;
    GiveUp(holds, function, released);
  }

  const KVLSmartPtr<KVLCodeFunction>& GetFunction() const { return function; }

 private:
  std::vector<KVLShellLibraryHold>& released;
  std::vector<KVLShellLibraryHold> holds;
  KVLSmartPtr<KVLCodeFunction> function;
  std::unique_ptr<KVLCodeObjectRegisterer> registerer;
};

KVLShellSession::KVLShellSession() = default;

KVLShellSession::~KVLShellSession() {
  for (const Use& use : uses)
    (void)KVLCodeEnv::GetDefault().UnAggregateEnv(*use.env);  // nobody is left to be told
  uses.clear();
  bindings.clear();
  variables.clear();
  for (const Library& library : libraries)
    (void)MRBCloseLibrary(library.handler);  // likewise
}

KVLSmartPtr<KVLCodeValue> KVLShellSession::FindVariable(const MRBUnicodeString& name) const {
  const auto found = variables.find(name);
  return found == variables.end() ? nullptr : found->second->GetValue();
}

long KVLShellSession::SetVariable(const MRBUnicodeString& name, KVLSmartPtr<KVLCodeValue> value) {
  if (!value || !KVLShellIsIdentifier(name)) return KVLResult_InvalidArgument;
  variables[name] = std::make_unique<HeldValue>(value, released);
  return KVLResult_Success;
}

bool KVLShellSession::RemoveVariable(const MRBUnicodeString& name) {
  return variables.erase(name) > 0;
}

void KVLShellSession::GetVariableNames(KVLVector<MRBUnicodeString>& names) const {
  names.Resize(0);
  for (const auto& variable : variables)
    names.Append(variable.first);
}

void KVLShellSession::Bind(const MRBUnicodeString& path, KVLSmartPtr<KVLCodeFunction> function) {
  bindings.erase(path);
  bindings[path] = std::make_unique<HeldBinding>(path, function, released);
}

bool KVLShellSession::Unbind(const MRBUnicodeString& path) {
  return bindings.erase(path) > 0;
}

bool KVLShellSession::HasBinding(const MRBUnicodeString& path) const {
  return bindings.count(path) > 0;
}

std::vector<KVLShellSession::Binding> KVLShellSession::GetBindings() const {
  std::vector<Binding> all;
  for (const auto& binding : bindings)
    all.push_back(Binding{binding.first, binding.second->GetFunction()});
  return all;
}

bool KVLShellSession::AddUse(const MRBUnicodeString& path, KVLSmartPtr<KVLCodeEnv> env) {
  for (const Use& use : uses)
    if (use.env == env) return false;
  (void)KVLCodeEnv::GetDefault().AggregateEnv(*env);  // returns 0
  uses.push_back(Use{path, env});
  return true;
}

bool KVLShellSession::RemoveUse(const MRBUnicodeString& path) {
  for (std::size_t i = 0; i < uses.size(); ++i) {
    if (uses[i].path != path) continue;
    // It fails when somebody else has ended the aggregation, which is as well.
    (void)KVLCodeEnv::GetDefault().UnAggregateEnv(*uses[i].env);
    uses.erase(uses.begin() + static_cast<std::ptrdiff_t>(i));
    return true;
  }
  return false;
}

void KVLShellSession::AddLibrary(const MRBUnicodeString& name, LibraryHandler handler) {
  libraries.push_back(Library{name, handler});
}

bool KVLShellSession::CloseLibrary(const MRBUnicodeString& name) {
  for (std::size_t i = 0; i < libraries.size(); ++i) {
    if (libraries[i].name != name) continue;
    const LibraryHandler handler = libraries[i].handler;
    libraries.erase(libraries.begin() + static_cast<std::ptrdiff_t>(i));
    return MRBCloseLibrary(handler) == 0;
  }
  return false;
}

void KVLShellSession::ReleaseLibraries() {
  // Taken out first: the end of a library may run code that comes back here.
  std::vector<KVLShellLibraryHold> ending;
  ending.swap(released);
}

bool KVLShellSession::IsInterrupted() const {
  return KVLShellIsInterrupted();
}

void KVLShellSession::AddToHistory(const MRBUnicodeString& text) {
  if (text.Strip(MRBUnicodeString::MRBStripBoth).IsEmpty()) return;
  if (history.size() == LongestHistory) history.erase(history.begin());
  history.push_back(text);
}

KVLShellSession& KVLShellGetSession() {
  static KVLShellSession session;
  return session;
}

KVLShellTextRun::KVLShellTextRun() {
  if (nbRunning.fetch_add(1) == 0) isInterrupted = false;
}

KVLShellTextRun::~KVLShellTextRun() {
  --nbRunning;
}

bool KVLShellTextRun::IsOutermost() {
  return nbRunning == 1;
}

bool KVLShellTextRun::IsTooDeep() {
  return nbRunning > DeepestRun;
}

void KVLShellInterrupt() {
  if (nbRunning > 0) isInterrupted = true;
}

bool KVLShellIsInterrupted() {
  return isInterrupted;
}
