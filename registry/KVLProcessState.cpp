#include "KVLProcessState.h"

#include <cstdlib>
#include <cstring>
#include <new>

#if defined(__clang__)
#define KVL_CONSTANT_INITIALISED [[clang::require_constant_initialization]]
#else
#define KVL_CONSTANT_INITIALISED
#endif

KVL_CONSTANT_INITIALISED KVLSmartPtr<KVLCodeEnv> KVLProcessState::defaultEnv;
KVL_CONSTANT_INITIALISED KVLSmartPtr<KVLCodeEnv> KVLProcessState::typeRoot;
KVL_CONSTANT_INITIALISED KVLSmartPtr<KVLCodeEnv> KVLProcessState::membersRoot;
KVL_CONSTANT_INITIALISED KVLSmartPtr<KVLCodeEnv> KVLProcessState::conversionsRoot;
KVL_CONSTANT_INITIALISED KVLCodeEnvAccessImpl KVLProcessState::modules;
KVL_CONSTANT_INITIALISED std::atomic<std::uint64_t> KVLProcessState::nbEnvironments{0};

// A node is pushed at the front and never taken out before the end, so that a reader may walk the
// list while another thread adds to it.
struct KVLKeptTexts::Node {
  Node* next;

  char* Text() { return reinterpret_cast<char*>(this + 1); }
};

KVLKeptTexts::~KVLKeptTexts() {
  for (Node* node = first.load(); node;) {
    Node* const next = node->next;
    std::free(node);
    node = next;
  }
}

const char* KVLKeptTexts::Keep(const char* text) {
  Node* head = first.load();
  for (Node* node = head; node; node = node->next) {
    if (std::strcmp(node->Text(), text) == 0) return node->Text();
  }
  const std::size_t size = std::strlen(text) + 1;
  void* const block = std::malloc(sizeof(Node) + size);
  if (!block) throw std::bad_alloc();
  Node* const node = ::new (block) Node{head};
  std::memcpy(node->Text(), text, size);
  while (!first.compare_exchange_weak(node->next, node)) {
  }
  return node->Text();
}
