#include "KVLKnownPaths.h"

#include <cstring>
#include <new>

#include "KVLSplitPath.h"

bool KVLKnownPaths::Add(const KVLName& path, KVLCodeEnvImpl& env, const Objects& objects) {
  constexpr int MostTexts = 1 << 30;  // bytes
  if (texts.GetCount() > MostTexts) return false;
  // A free slot for each three that are taken.
  const std::size_t count = static_cast<std::size_t>(known.GetCount());
  if (!slots || count >= GetNbSlots() / 4 * 3) Grow();
  const int start = texts.GetCount();
  const int length = static_cast<int>(path.length);
  texts.Resize(start + length + 1);
  std::memcpy(&texts[start], path.text, path.length);
  texts[start + length] = KVLPathSeparator;
  known.Append(Known{&env, static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(length)});
  Enter(path.hash, Slot{TagOf(path.hash), static_cast<std::uint32_t>(count + 1), objects});
  return true;
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
    Enter(KVLName(TextOf(former[i])).hash, former[i]);
  }
  std::free(former);
  latest = Latest();
}
