#include "KVLHashMap.h"

int KVLHash_UpToNiceModulo(int n) {
  constexpr unsigned int SmallPrimes[] = {2, 3, 5, 7, 11, 13, 17, 19};
  for (unsigned int candidate = static_cast<unsigned int>(n);; ++candidate) {
    bool divisible = false;
    for (const unsigned int prime : SmallPrimes) {
      if (candidate % prime != 0) continue;
      divisible = true;
      break;
    }
    if (!divisible) return static_cast<int>(candidate);
  }
}
