#include "KVLCodeEnv.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "KVLHashMap.h"
#include "KVLIterCursors.h"
#include "KVLProcessState.h"

namespace {

template <class Object>
using Table = KVLHashMap<MRBUnicodeString, KVLSmartPtr<Object>>;
using SubEnvTable = Table<KVLCodeEnv>;

template <class Object>
using Named = KVLKeyValue<MRBUnicodeString, KVLSmartPtr<Object>>;
template <class Object>
using NamedIter = KVLIter<Named<Object>>;

constexpr char Separator = '/';

/// A stretch of a path, compared and hashed as the string of its bytes would be.
struct PathSlice {
  const char* text;
  int length;

  unsigned int ComputeHashKey() const { return MRBUnicodeString::ComputeHashKey(text, length); }
  bool operator==(const MRBUnicodeString& string) const {
    return length == string.GetLengthInByte() &&
           std::memcmp(text, string.ConvertToChar(), static_cast<std::size_t>(length)) == 0;
  }
};

bool operator==(const MRBUnicodeString& string, const PathSlice& slice) {
  return slice == string;
}

PathSlice SliceOf(const MRBUnicodeString& path) {
  return PathSlice{path.ConvertToChar(), path.GetLengthInByte()};
}

MRBUnicodeString StringOf(const PathSlice& slice) {
  return MRBUnicodeString(slice.text, slice.length);
}

/// A path cut at its last separator.
struct SplitPath {
  explicit SplitPath(const MRBUnicodeString& path) : env{path.ConvertToChar(), 0} {
    const PathSlice whole = SliceOf(path);
    int nameStart = whole.length;
    while (nameStart > 0 && whole.text[nameStart - 1] != Separator)
      --nameStart;
    env.length = nameStart > 0 ? nameStart - 1 : 0;
    name = PathSlice{whole.text + nameStart, whole.length - nameStart};
  }

  PathSlice env;   // before the last separator; empty when there is none
  PathSlice name;  // after it
};

MRBUnicodeString FirstRegistration(const KVLCodeObject& object) {
  const KVLVector<KVLSourceLocation>& locations = object.GetRegistrationLocations();
  return locations.IsEmpty() ? MRBUnicodeString("<unknown>") : locations[0].ToString();
}

/// The way from the environment whose contents are iterated, through aggregations, to one of them.
struct AggregationPath {
  const KVLCodeEnv* env;
  const AggregationPath* up;

  bool Contains(const KVLCodeEnv& wanted) const {
    for (const AggregationPath* step = this; step; step = step->up) {
      if (step->env == &wanted) return true;
    }
    return false;
  }
};

}  // namespace

/// The tables of an environment. Zero-filled memory is an empty record.
struct KVLCodeEnvImpl {
  static KVLCodeEnvImpl* Create();
  static void Destroy(KVLCodeEnvImpl* impl);

  bool IsEmpty() const {
    return aggregatedEnvs.IsEmpty() && subEnvs.GetCount() == 0 && objects.GetCount() == 0;
  }
  void LetAllGo();

  static KVLCodeEnv& GetSubEnv(const KVLCodeEnv& env, PathSlice path);
  template <class Object>
  static KVLSmartPtr<Object> Find(const KVLCodeEnv& env, const MRBUnicodeString& path,
                                  Table<Object> KVLCodeEnvImpl::*table);
  template <class Object>
  static NamedIter<Object> Iterate(const KVLCodeEnv& env, const AggregationPath* up,
                                   Table<Object> KVLCodeEnvImpl::*table);

  Table<KVLCodeObject> objects;
  SubEnvTable subEnvs;
  KVLVector<KVLSmartPtr<KVLCodeEnv>> aggregatedEnvs;
  bool isBeingSearched = false;           // set while its aggregated environments are
  KVLCodeEnvImpl* nextWaiting = nullptr;  // links records that wait for their destruction
};

namespace {

/// Marks an environment while a lookup goes through its aggregated environments: one that comes
/// back to it in a loop has been here, and finds nothing new.
class SearchMark {
 public:
  explicit SearchMark(KVLCodeEnvImpl& searched) : impl(searched) { impl.isBeingSearched = true; }
  ~SearchMark() { impl.isBeingSearched = false; }
  SearchMark(const SearchMark&) = delete;
  SearchMark& operator=(const SearchMark&) = delete;

 private:
  KVLCodeEnvImpl& impl;
};

/// Makes an iteration of an aggregated environment; an empty one for an environment further up on
/// the way to it. Lives in the cursor that calls it, so that the way keeps its address.
template <class Object>
struct AggregatedToIter {
  long operator()(const KVLSmartPtr<KVLCodeEnv>& env, NamedIter<Object>& iter) const {
    iter = path.Contains(*env) ? NamedIter<Object>(KVLResult_False)
                               : KVLCodeEnvImpl::Iterate(*env, &path, table);
    return KVLResult_Success;
  }

  AggregationPath path;
  Table<Object> KVLCodeEnvImpl::*table;
};

template <class Object>
struct EntryToNamed {
  long operator()(const typename Table<Object>::Entry& entry, Named<Object>& element) const {
    element.key = entry.key;
    element.value = entry.value;
    return KVLResult_Success;
  }
};

/// Destroys the content of a container that is empty meanwhile.
template <class Container>
void LetGo(Container& container) {
  Container going;
  going.Swap(container);
}

KVLCodeEnv& GetRoot(KVLSmartPtr<KVLCodeEnv>& root, const char* name) {
  if (!root) root = &KVLCodeEnv::GetDefault().GetSubEnv(name);
  return *root;
}

}  // namespace

KVLCodeEnvImpl* KVLCodeEnvImpl::Create() {
  void* const block = std::calloc(1, sizeof(KVLCodeEnvImpl));
  if (!block) throw std::bad_alloc();
  return ::new (block) KVLCodeEnvImpl();
}

// Environments may lie one below the other in any number, and each destroys those below it: from
// some depth on, records wait until the recursion has come back. Only environments below, and what
// holds them, are put off at first: objects die while their environment can still be called.
void KVLCodeEnvImpl::Destroy(KVLCodeEnvImpl* impl) {
  thread_local int depth = 0;
  thread_local KVLCodeEnvImpl* waiting = nullptr;

  const auto tearDown = [](KVLCodeEnvImpl* record) {
    constexpr int DeepestWhole = 200;
    constexpr int DeepestForObjects = 400;
    ++depth;
    if (depth <= DeepestWhole) {
      record->LetAllGo();
    } else if (depth <= DeepestForObjects) {
      LetGo(record->objects);
    }
    --depth;
    if (record->IsEmpty()) {
      record->~KVLCodeEnvImpl();
      std::free(record);
      return;
    }
    record->nextWaiting = waiting;
    waiting = record;
  };

  tearDown(impl);
  while (depth == 0 && waiting) {
    KVLCodeEnvImpl* const next = waiting;
    waiting = next->nextWaiting;
    tearDown(next);
  }
}

// What dies may call this very environment, and find it whole and without what is going: nothing
// is destroyed in its place. What such a call leaves here goes in a further round.
void KVLCodeEnvImpl::LetAllGo() {
  while (!IsEmpty()) {
    LetGo(aggregatedEnvs);
    LetGo(subEnvs);
    LetGo(objects);
  }
}

KVLCodeEnv& KVLCodeEnvImpl::GetSubEnv(const KVLCodeEnv& env, PathSlice path) {
  // Tables change through const environments: a lookup creates what its path names.
  KVLCodeEnv* current = const_cast<KVLCodeEnv*>(&env);
  const char* const end = path.text + path.length;
  for (const char* start = path.text; start < end;) {
    const void* const separator =
        std::memchr(start, Separator, static_cast<std::size_t>(end - start));
    const char* const stop = separator ? static_cast<const char*>(separator) : end;
    const PathSlice head{start, static_cast<int>(stop - start)};
    start = stop + 1;
    if (head.length == 0) continue;
    SubEnvTable& subEnvs = current->impl->subEnvs;
    KVLSmartPtr<KVLCodeEnv>* child = subEnvs.FindAs(head);
    if (!child) child = &subEnvs.Insert(StringOf(head), KVLSmartPtr<KVLCodeEnv>());
    if (child->IsNull()) *child = new KVLCodeEnv(StringOf(head));
    current = child->Get();
  }
  return *current;
}

template <class Object>
KVLSmartPtr<Object> KVLCodeEnvImpl::Find(const KVLCodeEnv& env, const MRBUnicodeString& path,
                                         Table<Object> KVLCodeEnvImpl::*table) {
  const SplitPath split(path);
  const Table<Object>& own = GetSubEnv(env, split.env).impl->*table;
  if (const KVLSmartPtr<Object>* found = own.FindAs(split.name)) return *found;

  KVLCodeEnvImpl& impl = *env.impl;
  if (impl.aggregatedEnvs.IsEmpty() || impl.isBeingSearched) return nullptr;
  const SearchMark mark(impl);
  for (const KVLSmartPtr<KVLCodeEnv>& aggregated : impl.aggregatedEnvs) {
    KVLSmartPtr<Object> found = Find(*aggregated, path, table);
    if (found) return found;
  }
  return nullptr;
}

template <class Object>
NamedIter<Object> KVLCodeEnvImpl::Iterate(const KVLCodeEnv& env, const AggregationPath* up,
                                          Table<Object> KVLCodeEnvImpl::*table) {
  const KVLCodeEnvImpl& impl = *env.impl;
  using Entry = typename Table<Object>::Entry;
  using Own = KVLMappingCursor<Entry, Named<Object>, EntryToNamed<Object>>;
  const Table<Object>& entries = impl.*table;
  NamedIter<Object> own(new (std::nothrow) Own(entries.begin(), entries.end(), {}));
  if (impl.aggregatedEnvs.IsEmpty() || KVLFailed(own.GetStatus())) return own;

  using Borrowed =
      KVLMappingCursor<KVLSmartPtr<KVLCodeEnv>, NamedIter<Object>, AggregatedToIter<Object>>;
  KVLIter<NamedIter<Object>> borrowed(new (std::nothrow) Borrowed(
      impl.aggregatedEnvs.begin(), impl.aggregatedEnvs.end(), {{&env, up}, table}));
  if (KVLFailed(borrowed.GetStatus())) return KVLResult_OutOfMemory;
  NamedIter<Object> flattened(new (std::nothrow)
                                  KVLFlatteningCursor<Named<Object>>(std::move(borrowed)));
  if (KVLFailed(flattened.GetStatus())) return KVLResult_OutOfMemory;
  return NamedIter<Object>(new (std::nothrow) KVLConcatenationCursor<Named<Object>>(
      std::move(own), std::move(flattened)));
}

KVLCodeEnv::KVLCodeEnv() : KVLCodeEnv(MRBUnicodeString()) {}

KVLCodeEnv::KVLCodeEnv(const MRBUnicodeString& envName)
    : KVLCodeObject(envName), impl(KVLCodeEnvImpl::Create()) {}

KVLCodeEnv::~KVLCodeEnv() {
  KVLCodeEnvImpl::Destroy(impl);
}

KVLCodeEnv* KVLCodeEnv::AsEnv() {
  return this;
}

const KVLCodeEnv* KVLCodeEnv::AsEnv() const {
  return this;
}

long KVLCodeEnv::Add(KVLCodeObject& object, const MRBUnicodeString& path) {
  MRBUnicodeString objectName;
  KVLCodeEnv& env = GetLocalEnvAndName(path, object, objectName);
  if (const KVLSmartPtr<KVLCodeObject>* first = env.impl->objects.Find(objectName)) {
    env.messages.Append("Tried to add two times object with name '" + objectName +
                        "'. First (effective) registration done at '" + FirstRegistration(**first) +
                        "'. Second (uneffective) registration done at '" +
                        FirstRegistration(object) + "'.");
    return KVLResult_Failure;
  }
  env.impl->objects.Insert(objectName, KVLSmartPtr<KVLCodeObject>(&object));
  return KVLResult_Success;
}

long KVLCodeEnv::Add(KVLSmartPtr<KVLCodeObject> object, const MRBUnicodeString& path) {
  return object ? Add(*object, path) : KVLResult_Failure;
}

long KVLCodeEnv::Remove(KVLCodeObject& object, const MRBUnicodeString& path) {
  MRBUnicodeString objectName;
  KVLCodeEnv& env = GetLocalEnvAndName(path, object, objectName);
  return env.impl->objects.Remove(objectName, &object) ? KVLResult_Success : KVLResult_Failure;
}

long KVLCodeEnv::Remove(const MRBUnicodeString& path) {
  MRBUnicodeString objectName;
  KVLCodeEnv& env = GetLocalEnvAndName(path, objectName);
  return env.impl->objects.Remove(objectName) ? KVLResult_Success : KVLResult_Failure;
}

KVLSmartPtr<KVLCodeObject> KVLCodeEnv::FindObject(const MRBUnicodeString& path) const {
  return KVLCodeEnvImpl::Find(*this, path, &KVLCodeEnvImpl::objects);
}

KVLSmartPtr<KVLCodeEnv> KVLCodeEnv::FindSubEnv(const MRBUnicodeString& path) const {
  return KVLCodeEnvImpl::Find(*this, path, &KVLCodeEnvImpl::subEnvs);
}

KVLCodeEnv& KVLCodeEnv::GetSubEnv(const MRBUnicodeString& path) const {
  return KVLCodeEnvImpl::GetSubEnv(*this, SliceOf(path));
}

long KVLCodeEnv::AggregateEnv(KVLCodeEnv& env) {
  impl->aggregatedEnvs.Append(KVLSmartPtr<KVLCodeEnv>(&env));
  return KVLResult_Success;
}

long KVLCodeEnv::UnAggregateEnv(KVLCodeEnv& env) {
  KVLVector<KVLSmartPtr<KVLCodeEnv>>& aggregated = impl->aggregatedEnvs;
  for (int i = 0; i < aggregated.GetCount(); ++i) {
    if (aggregated[i] != &env) continue;
    // Held until the gap is closed: the last reference may run code that looks at this list.
    const KVLSmartPtr<KVLCodeEnv> released = std::move(aggregated[i]);
    aggregated.Erase(i);
    return KVLResult_Success;
  }
  return KVLResult_InvalidArgument;
}

KVLCodeEnv::ObjectIter KVLCodeEnv::IterOnObjects() const {
  return KVLCodeEnvImpl::Iterate(*this, nullptr, &KVLCodeEnvImpl::objects);
}

KVLCodeEnv::SubEnvIter KVLCodeEnv::IterOnSubEnvs() const {
  return KVLCodeEnvImpl::Iterate(*this, nullptr, &KVLCodeEnvImpl::subEnvs);
}

KVLCodeEnv& KVLCodeEnv::GetDefault() {
  KVLSmartPtr<KVLCodeEnv>& env = KVLProcessState::defaultEnv;
  if (!env) env = new KVLCodeEnv();
  return *env;
}

KVLCodeEnv& KVLCodeEnv::GetDefaultTypeRoot() {
  return GetRoot(KVLProcessState::typeRoot, "_types");
}

KVLCodeEnv& KVLCodeEnv::GetDefaultMembersRoot() {
  return GetRoot(KVLProcessState::membersRoot, "_members");
}

KVLCodeEnv& KVLCodeEnv::GetDefaultConversionsRoot() {
  return GetRoot(KVLProcessState::conversionsRoot, "_conversions");
}

KVLCodeEnv& KVLCodeEnv::GetLocalEnvAndName(const MRBUnicodeString& path,
                                           MRBUnicodeString& localName) const {
  const SplitPath split(path);
  localName = StringOf(split.name);
  return KVLCodeEnvImpl::GetSubEnv(*this, split.env);
}

KVLCodeEnv& KVLCodeEnv::GetLocalEnvAndName(const MRBUnicodeString& path,
                                           const KVLCodeObject& object,
                                           MRBUnicodeString& localName) const {
  KVLCodeEnv& env = GetLocalEnvAndName(path, localName);
  return localName.IsEmpty() ? env.GetLocalEnvAndName(object.GetName(), localName) : env;
}
