#include "KVLCodeEnv.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "KVLIterCursors.h"
#include "KVLKnownPaths.h"
#include "KVLLookupMemory.h"
#include "KVLLookups.h"
#include "KVLNameTable.h"
#include "KVLProcessState.h"
#include "KVLSplitPath.h"

namespace {

template <class Object>
using Table = KVLNameTable<KVLSmartPtr<Object>>;

template <class Object>
using Named = KVLKeyValue<MRBUnicodeString, KVLSmartPtr<Object>>;
template <class Object>
using NamedIter = KVLIter<Named<Object>>;

MRBUnicodeString StringOf(const KVLName& name) {
  return MRBUnicodeString(name.text, static_cast<int>(name.length));
}

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

/// The tables of an environment.
struct KVLCodeEnvImpl {
  explicit KVLCodeEnvImpl(KVLCodeEnv& owner) : env(&owner) {}

  static KVLCodeEnvImpl* Create(KVLCodeEnv& owner);
  static void Destroy(KVLCodeEnvImpl* impl);

  bool IsEmpty() const {
    return aggregatedEnvs.IsEmpty() && subEnvs.IsEmpty() && objects.IsEmpty();
  }
  void LetAllGo();
  void ForgetPaths();

  KVLCodeEnvImpl& GetSub(const KVLName& path, bool isToBeKnown) {
    if (path.length == 0) return *this;
    const KVLKnownPaths::Slot* const known = knownPaths.Find(path);
    return known ? knownPaths.GetEnv(*known) : Walk(path, isToBeKnown);
  }
  KVLCodeEnvImpl& Walk(const KVLName& path, bool isToBeKnown);

  void AddObject(MRBUnicodeString name, std::uint64_t hash, KVLCodeObject& object);

  KVLSmartPtr<KVLCodeObject> FindObject(const MRBUnicodeString& path);
  template <class Object>
  KVLSmartPtr<Object> Find(const KVLSplitPath& path, Table<Object> KVLCodeEnvImpl::*table) {
    if (const KVLSmartPtr<Object>* const found = FindOwn(path, table)) return *found;
    return aggregatedEnvs.IsEmpty() ? nullptr : FindAggregated(path, table);
  }
  template <class Object>
  const KVLSmartPtr<Object>* FindOwn(const KVLSplitPath& path,
                                     Table<Object> KVLCodeEnvImpl::*table) {
    if constexpr (std::is_same_v<Object, KVLCodeObject>) {
      const KVLKnownPaths::Slot* const known = knownPaths.Find(path.env);
      if (known && !known->objects.IsNone()) return known->objects.Find(path.name);
    }
    return (GetSub(path.env, false).*table).Find(path.name);
  }
  template <class Object>
  KVLSmartPtr<Object> FindAggregated(const KVLSplitPath& path,
                                     Table<Object> KVLCodeEnvImpl::*table);

  static KVLCodeObject* FindType(const KVLCodeEnv& env, const MRBUnicodeString& name) {
    KVLCodeEnvImpl& impl = *env.impl;
    const KVLLookupMemory::Entry* const known = impl.types ? &impl.types->At(name, name) : nullptr;
    if (known && known->IsOf(name, name) && impl.IsWhole(*known)) return known->GetObject();
    return impl.FindAndRemember(impl.types, nullptr, name);
  }
  static KVLConversionOrType FindConversionOrType(const KVLCodeEnv& env, const KVLCodeEnv& types,
                                                  const MRBUnicodeString& source,
                                                  const MRBUnicodeString& target) {
    KVLCodeEnvImpl& impl = *env.impl;
    const KVLLookupMemory::Entry* const known =
        impl.conversions ? &impl.conversions->At(source, target) : nullptr;
    if (known && known->IsOf(source, target)) {
      if (known->GetObject()) return {known->GetObject(), nullptr};
      if (impl.aggregatedEnvs.IsEmpty() && known->KnowsType(types.impl->objectsState)) {
        return {nullptr, known->GetType()};
      }
    }
    return impl.FindConversionOrTypeAndRemember(types, source, target);
  }
  // Kept apart, so that what is remembered costs little.
  [[gnu::noinline]] KVLConversionOrType FindConversionOrTypeAndRemember(
      const KVLCodeEnv& types, const MRBUnicodeString& source, const MRBUnicodeString& target);
  // What lies under `place`, "/" and `name`; without a place, under `name` alone.
  KVLCodeObject* FindAndRemember(std::unique_ptr<KVLLookupMemory>& memory,
                                 const MRBUnicodeString* place, const MRBUnicodeString& name);
  // Aggregated environments may have what the own tables have not.
  bool IsWhole(const KVLLookupMemory::Entry& entry) const {
    return entry.GetObject() || aggregatedEnvs.IsEmpty();
  }

  template <class Object>
  static NamedIter<Object> Iterate(const KVLCodeEnv& env, const AggregationPath* up,
                                   Table<Object> KVLCodeEnvImpl::*table);

  Table<KVLCodeObject> objects;
  Table<KVLCodeEnv> subEnvs;
  // Paths to environments below; the first environment that knows this one so is told where its
  // objects are. A path is forgotten before a child on its way can go.
  KVLKnownPaths knownPaths;
  KVLCodeEnvImpl* knownTo = nullptr;
  std::uint64_t knownHash = 0;
  // What contexts looked for here lately: names, and names in the children of a name.
  std::unique_ptr<KVLLookupMemory> types;
  std::unique_ptr<KVLLookupMemory> conversions;
  unsigned int nbPlainLookups = 0;  // those without a memory
  // Grows with each change of the objects or of the aggregated environments; no two environments of
  // the process ever have the same.
  std::uint64_t objectsState = ++KVLProcessState::nbEnvironments << 32;
  KVLVector<KVLSmartPtr<KVLCodeEnv>> aggregatedEnvs;
  KVLCodeEnv* env;                        // dead when the record waits for its destruction
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

KVLCodeEnvImpl* KVLCodeEnvImpl::Create(KVLCodeEnv& owner) {
  void* const block = std::malloc(sizeof(KVLCodeEnvImpl));
  if (!block) throw std::bad_alloc();
  return ::new (block) KVLCodeEnvImpl(owner);
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
      ++record->objectsState;
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
    ForgetPaths();
    conversions.reset();  // it knows the children
    LetGo(subEnvs);
    ++objectsState;
    LetGo(objects);
  }
}

void KVLCodeEnvImpl::ForgetPaths() {
  for (const KVLKnownPaths::Known& known : knownPaths) {
    if (known.env->knownTo == this) known.env->knownTo = nullptr;
  }
  LetGo(knownPaths);
}

// Name by name; makes the environments that are missing.
KVLCodeEnvImpl& KVLCodeEnvImpl::Walk(const KVLName& path, bool isToBeKnown) {
  // A path written with further separators may be known in its plain form alone: there are no more
  // of those than there are environments.
  constexpr std::size_t LongestKnown = 128;
  bool isPlain = path.length <= LongestKnown;

  KVLCodeEnvImpl* current = this;
  const char* const end = path.text + path.length;
  for (const char* start = path.text; start <= end;) {
    const void* const separator =
        std::memchr(start, KVLPathSeparator, static_cast<std::size_t>(end - start));
    const char* const stop = separator ? static_cast<const char*>(separator) : end;
    const KVLName head(start, static_cast<std::size_t>(stop - start));
    start = stop + 1;
    if (head.length == 0) {
      isPlain = false;
      continue;
    }
    Table<KVLCodeEnv>& children = current->subEnvs;
    KVLSmartPtr<KVLCodeEnv>* child = children.Find(head);
    if (!child) child = &children.Insert(StringOf(head), head.hash, KVLSmartPtr<KVLCodeEnv>());
    if (child->IsNull()) {
      *child = new KVLCodeEnv(StringOf(head));
      isToBeKnown = true;
    }
    current = (*child)->impl;
  }
  if (!isToBeKnown || !isPlain) return *current;
  const bool isFirst = !current->knownTo;
  const bool isKnown = knownPaths.Add(
      path, *current, isFirst ? current->objects.GetStorage() : KVLKnownPaths::Objects());
  if (isFirst && isKnown) {
    current->knownTo = this;
    current->knownHash = path.hash;
  }
  return *current;
}

// For a name that is absent.
void KVLCodeEnvImpl::AddObject(MRBUnicodeString name, std::uint64_t hash, KVLCodeObject& object) {
  const KVLKnownPaths::Objects former = objects.GetStorage();
  ++objectsState;
  objects.Insert(std::move(name), hash, KVLSmartPtr<KVLCodeObject>(&object));
  if (knownTo && objects.GetStorage() != former) {
    knownTo->knownPaths.SetObjects(knownHash, *this, objects.GetStorage());
  }
}

KVLSmartPtr<KVLCodeObject> KVLCodeEnvImpl::FindObject(const MRBUnicodeString& path) {
  const KVLText text = KVLText::Of(path);
  const KVLKnownPaths::Slot* const known = knownPaths.FindLatest(text);
  if (known && !known->objects.IsNone()) {
    const std::size_t start = knownPaths.GetLengthOf(*known) + 1;
    const std::size_t length = text.length - start;
    if (KVLSplitPath::LengthOfName(text.text, text.length) == length) {
      const KVLName name(text.text + start, length);
      if (const KVLSmartPtr<KVLCodeObject>* const found = known->objects.Find(name)) return *found;
      if (aggregatedEnvs.IsEmpty()) return nullptr;
    }
  }
  return Find(KVLSplitPath(path), &KVLCodeEnvImpl::objects);
}

template <class Object>
KVLSmartPtr<Object> KVLCodeEnvImpl::FindAggregated(const KVLSplitPath& path,
                                                   Table<Object> KVLCodeEnvImpl::*table) {
  if (isBeingSearched) return nullptr;
  const SearchMark mark(*this);
  for (const KVLSmartPtr<KVLCodeEnv>& aggregated : aggregatedEnvs) {
    KVLSmartPtr<Object> found = aggregated->impl->Find(path, table);
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

KVLCodeObject* KVLCodeEnvImpl::FindAndRemember(std::unique_ptr<KVLLookupMemory>& memory,
                                               const MRBUnicodeString* place,
                                               const MRBUnicodeString& name) {
  const KVLSmartPtr<KVLCodeObject> found =
      place ? Find(KVLSplitPath(*place + "/" + name), &KVLCodeEnvImpl::objects)
            : Find(KVLSplitPath(name), &KVLCodeEnvImpl::objects);
  // A name that is a path leads on from there.
  const KVLSplitPath split(name);
  if (split.name.length != static_cast<std::size_t>(name.GetLengthInByte())) return found.Get();
  if (!memory) {
    // One that is asked now and then needs no memory.
    constexpr unsigned int EnoughLookups = 8;
    if (++nbPlainLookups % EnoughLookups == 0) memory.reset(new (std::nothrow) KVLLookupMemory());
    if (!memory) return found.Get();
  }
  KVLCodeEnvImpl& holder = place ? GetSub(KVLName(*place), false) : *this;
  const KVLSmartPtr<KVLCodeObject>* const own = holder.objects.Find(split.name);
  const MRBUnicodeString& key = place ? *place : name;
  memory->At(key, name).Set(key, name, own ? own->Get() : nullptr, holder.objectsState);
  return found.Get();
}

KVLConversionOrType KVLCodeEnvImpl::FindConversionOrTypeAndRemember(
    const KVLCodeEnv& typesEnv, const MRBUnicodeString& source, const MRBUnicodeString& target) {
  KVLCodeObject* const conversion = FindAndRemember(conversions, &source, target);
  if (conversion) return {conversion, nullptr};
  KVLCodeObject* const type = FindType(typesEnv, source);
  // What lies in an environment below, or in an aggregated one, may go without a change of the
  // table of types itself.
  const KVLCodeEnvImpl& typesImpl = *typesEnv.impl;
  const KVLSplitPath split(source);
  const bool isOwn = split.name.length == static_cast<std::size_t>(source.GetLengthInByte()) &&
                     typesImpl.aggregatedEnvs.IsEmpty();
  if (!isOwn || !conversions) return {nullptr, type};
  KVLLookupMemory::Entry& entry = conversions->At(source, target);
  if (entry.IsOf(source, target)) entry.SetType(type, typesImpl.objectsState);
  return {nullptr, type};
}

KVLCodeObject* KVLFindType(const KVLCodeEnv& types, const MRBUnicodeString& name) {
  return KVLCodeEnvImpl::FindType(types, name);
}

KVLConversionOrType KVLFindConversionOrType(const KVLCodeEnv& conversions, const KVLCodeEnv& types,
                                            const MRBUnicodeString& source,
                                            const MRBUnicodeString& target) {
  return KVLCodeEnvImpl::FindConversionOrType(conversions, types, source, target);
}

KVLCodeEnv::KVLCodeEnv() : KVLCodeEnv(MRBUnicodeString()) {}

KVLCodeEnv::KVLCodeEnv(const MRBUnicodeString& envName)
    : KVLCodeObject(envName), impl(KVLCodeEnvImpl::Create(*this)) {}

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
  const KVLName wanted(objectName);
  if (const KVLSmartPtr<KVLCodeObject>* first = env.impl->objects.Find(wanted)) {
    env.messages.Append("Tried to add two times object with name '" + objectName +
                        "'. First (effective) registration done at '" + FirstRegistration(**first) +
                        "'. Second (uneffective) registration done at '" +
                        FirstRegistration(object) + "'.");
    return KVLResult_Failure;
  }
  env.impl->AddObject(std::move(objectName), wanted.hash, object);
  return KVLResult_Success;
}

long KVLCodeEnv::Add(KVLSmartPtr<KVLCodeObject> object, const MRBUnicodeString& path) {
  return object ? Add(*object, path) : KVLResult_Failure;
}

long KVLCodeEnv::Remove(KVLCodeObject& object, const MRBUnicodeString& path) {
  MRBUnicodeString objectName;
  KVLCodeEnv& env = GetLocalEnvAndName(path, object, objectName);
  ++env.impl->objectsState;
  const bool removed = env.impl->objects.Remove(
      KVLName(objectName),
      [&object](const KVLSmartPtr<KVLCodeObject>& held) { return held == &object; });
  return removed ? KVLResult_Success : KVLResult_Failure;
}

long KVLCodeEnv::Remove(const MRBUnicodeString& path) {
  MRBUnicodeString objectName;
  KVLCodeEnv& env = GetLocalEnvAndName(path, objectName);
  ++env.impl->objectsState;
  const bool removed = env.impl->objects.Remove(
      KVLName(objectName), [](const KVLSmartPtr<KVLCodeObject>&) { return true; });
  return removed ? KVLResult_Success : KVLResult_Failure;
}

KVLSmartPtr<KVLCodeObject> KVLCodeEnv::FindObject(const MRBUnicodeString& path) const {
  return impl->FindObject(path);
}

KVLSmartPtr<KVLCodeEnv> KVLCodeEnv::FindSubEnv(const MRBUnicodeString& path) const {
  return impl->Find(KVLSplitPath(path), &KVLCodeEnvImpl::subEnvs);
}

KVLCodeEnv& KVLCodeEnv::GetSubEnv(const MRBUnicodeString& path) const {
  return *impl->GetSub(KVLName(path), false).env;
}

long KVLCodeEnv::AggregateEnv(KVLCodeEnv& env) {
  ++impl->objectsState;
  impl->aggregatedEnvs.Append(KVLSmartPtr<KVLCodeEnv>(&env));
  return KVLResult_Success;
}

long KVLCodeEnv::UnAggregateEnv(KVLCodeEnv& env) {
  KVLVector<KVLSmartPtr<KVLCodeEnv>>& aggregated = impl->aggregatedEnvs;
  for (int i = 0; i < aggregated.GetCount(); ++i) {
    if (aggregated[i] != &env) continue;
    // Held until the gap is closed: the last reference may run code that looks at this list.
    ++impl->objectsState;
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
  const KVLSplitPath split(path);
  localName = StringOf(split.name);
  return *impl->GetSub(split.env, true).env;
}

KVLCodeEnv& KVLCodeEnv::GetLocalEnvAndName(const MRBUnicodeString& path,
                                           const KVLCodeObject& object,
                                           MRBUnicodeString& localName) const {
  KVLCodeEnv& env = GetLocalEnvAndName(path, localName);
  return localName.IsEmpty() ? env.GetLocalEnvAndName(object.GetName(), localName) : env;
}
