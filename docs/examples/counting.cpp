#include <KVLSmartPtr.h>

#include <cstdio>

class Noisy : public KVLRefCounted {
 public:
  ~Noisy() override { std::puts("destroyed"); }
};

int main() {
  KVLSmartPtr<Noisy> first = new Noisy;  // the count goes from 0 to 1
  {
    const KVLSmartPtr<const KVLRefCounted> second = first;  // 2
    std::puts(second == first ? "same object" : "another object");
  }                 // 1 again
  first = nullptr;  // 0: the release destroys it
  std::puts(first ? "held" : "empty");
}
