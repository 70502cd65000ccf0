#include <KVLHashMap.h>

#include <cstdio>

int main() {
  KVLVector<MRBUnicodeString> names;
  for (const char* name : {"b", "a", "c"}) {
    names.Append(name);
    std::printf("%d of %d places\n", names.GetCount(), names.GetCapacity());
  }
  names.Erase(0);
  for (const MRBUnicodeString& name : names)
    std::puts(name);

  KVLHashMap<MRBUnicodeString, int> ages;
  for (int i = 0; i < 9; ++i) {
    const MRBUnicodeString key = "key" + MRBUnicodeString(&"012345678"[i], 1);
    // Insert adds at the end without looking: ask first.
    if (!ages.Find(key)) ages.Insert(key, 10 * i);
  }
  std::printf("%d entries, %d buckets\n", ages.GetCount(), ages.GetNbBuckets());

  // Removal from a map that hashes moves the last entry into the hole.
  ages.Remove("key0");
  std::printf("%s comes first now, with %d\n", ages.begin()->key.ConvertToChar(),
              ages.begin()->value);
}
