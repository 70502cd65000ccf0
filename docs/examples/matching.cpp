#include <KVLAlgoMatching.h>

#include <cstdio>

namespace {

// Plug 1 fits sockets 1 and 2, plug 2 only socket 1, plug 3 none.
bool Fits(int plug, int socket, void* data) {
  ++*static_cast<int*>(data);
  return (plug == 1 && socket <= 2) || (plug == 2 && socket == 1);
}

}  // namespace

int main() {
  int nbQuestions = 0;
  KVLAlgoMatching matching(3, 3, Fits, &nbQuestions);
  std::puts(matching.HasFullMatching() ? "all" : "not all");
  std::printf("%d pairs\n", matching.GetBestNbMatching());
  for (int plug = 1; plug <= 3; ++plug)
    std::printf("plug %d: socket %d\n", plug, matching.GetMatching(plug));
  std::puts(nbQuestions <= 9 ? "each pair asked at most once" : "a pair asked twice");
}
