#include "KVLKnownPaths.h"

#include <new>

void KVLKnownPaths::Add(const KVLName& path, KVLCodeEnvImpl& env, const Objects& objects) {
  // A free slot for each three that are taken.
  const std::size_t count = static_cast<std::size_t>(known.GetCount());
  if (!slots || count >= GetNbSlots() / 4 * 3) Grow();
  const int start = texts.GetCount();
  texts.Resize(start + static_cast<int>(path.length));
  std::memcpy(&texts[start], path.text, path.length);
  known.Append(
      Known{&env, static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(path.length)});
  Enter(path.hash, Slot{TagOf(path.hash), static_cast<std::uint32_t>(count + 1), objects});
}

void KVLKnownPaths::SetObjects(std::uint64_t hash, const KVLCodeEnvImpl& env,
                               const Objects& objects) {
  std::size_t place = FirstPlaceOf(hash);
  while (slots[place].tag != TagOf(hash) || &GetEnv(slots[place]) != &env)
    place = NextPlace(place);
  slots[place].objects = objects;
}

void KVLKnownPaths::Enter(std::uint64_t hash, const Slot& slot) {
  std::size_t place = FirstPlaceOf(hash);
  while (slots[place].known != 0)
    place = NextPlace(place);
  slots[place] = slot;
}

void KVLKnownPaths::Grow() {
  const unsigned int log2OfFresh = slots ? log2 + 1 : 2;
  void* const fresh = std::calloc(std::size_t{1} << log2OfFresh, sizeof(Slot));
  if (!fresh) throw std::bad_alloc();
  Slot* const former = slots;
  const std::size_t nbFormer = slots ? GetNbSlots() : 0;
  slots = static_cast<Slot*>(fresh);
  log2 = log2OfFresh;
  for (std::size_t i = 0; i < nbFormer; ++i) {
    if (former[i].known == 0) continue;
    const Known& moved = known[static_cast<int>(former[i].known) - 1];
    Enter(KVLName(texts.GetData() + moved.start, moved.length).hash, former[i]);
  }
  std::free(former);
}
