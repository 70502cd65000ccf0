// What the loader has the kernel do before `main`: five clean-ups are registered, in the order of
// the process-wide objects, and nothing else happens. The program stands in for the C library's
// registration of clean-ups and for its allocation functions, and so sees what the kernel asks of
// them.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "KVLCodeEnv.h"
#include "KVLCodeEnvAccess.h"
#include "KVLResult.h"
#include "MRBHost.h"

namespace {

struct CleanUp {
  void* object;
  void* library;  // the address of a variable in it
};

constexpr int MaxCleanUps = 256;
constexpr int MaxAllocations = 4096;

CleanUp cleanUps[MaxCleanUps];
int cleanUpCount;
void* allocators[MaxAllocations];
int allocationCount;

void NoteAllocation(void* caller) {
  if (allocationCount < MaxAllocations) allocators[allocationCount] = caller;
  ++allocationCount;
}

bool IsInKernel(void* address) {
  Dl_info info;
  return dladdr(address, &info) && info.dli_fname && std::strstr(info.dli_fname, "libKVLKernel");
}

int KernelAllocations() {
  int count = 0;
  for (int i = 0; i < allocationCount && i < MaxAllocations; ++i) {
    if (IsInKernel(allocators[i])) ++count;
  }
  return count;
}

int failures;

void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  ++failures;
}

// The process-wide pointers are one word each.
void* PointerIn(const void* object) {
  void* pointer;
  std::memcpy(&pointer, object, sizeof pointer);
  return pointer;
}

void IgnoreTrace(int, const char*, int) {}

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) {
  NoteAllocation(__builtin_return_address(0));
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  NoteAllocation(__builtin_return_address(0));
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) {
  NoteAllocation(__builtin_return_address(0));
  return __libc_realloc(block, size);
}

int __cxa_atexit(void (*function)(void*), void* object, void* library) {
  if (cleanUpCount < MaxCleanUps) cleanUps[cleanUpCount] = {object, library};
  ++cleanUpCount;
  using Register = int (*)(void (*)(void*), void*, void*);
  static Register next = nullptr;
  if (!next) next = reinterpret_cast<Register>(dlsym(RTLD_NEXT, "__cxa_atexit"));
  return next(function, object, library);
}

}  // extern "C"

void* operator new(std::size_t size) {
  NoteAllocation(__builtin_return_address(0));
  if (void* const block = __libc_malloc(size)) return block;
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

int main() {
  Check(cleanUpCount < MaxCleanUps && allocationCount < MaxAllocations, "all of it was noted");
  Check(KernelAllocations() == 0, "loading the kernel allocates nothing");

  void* objects[MaxCleanUps];
  int count = 0;
  for (int i = 0; i < cleanUpCount; ++i) {
    if (IsInKernel(cleanUps[i].library)) objects[count++] = cleanUps[i].object;
  }
  Check(count == 5, "loading the kernel registers five clean-ups");
  if (count != 5) return 1;

  for (int i = 0; i < 4; ++i)
    Check(PointerIn(objects[i]) == nullptr, "no environment is there before it is asked for");
  const char* const moduleState = static_cast<const char*>(objects[4]);
  Check(*moduleState == 0, "no module is loaded");

  const KVLCodeEnv& defaultEnv = KVLCodeEnv::GetDefault();
  Check(PointerIn(objects[0]) == &defaultEnv, "the first clean-up is the default environment's");
  Check(KernelAllocations() > 0, "what the kernel allocates is seen");
  for (int i = 1; i < 4; ++i)
    Check(PointerIn(objects[i]) == nullptr, "the default environment makes no root");
  Check(!defaultEnv.FindSubEnv("_types") && !defaultEnv.FindSubEnv("_members") &&
            !defaultEnv.FindSubEnv("_conversions"),
        "the default environment is empty");

  const KVLCodeEnv& types = KVLCodeEnv::GetDefaultTypeRoot();
  Check(PointerIn(objects[1]) == &types, "the second clean-up is the type root's");
  Check(PointerIn(objects[2]) == nullptr && PointerIn(objects[3]) == nullptr,
        "the type root makes no other root");
  const KVLCodeEnv& members = KVLCodeEnv::GetDefaultMembersRoot();
  Check(PointerIn(objects[2]) == &members, "the third clean-up is the members root's");
  Check(PointerIn(objects[3]) == nullptr, "the members root makes no other root");
  const KVLCodeEnv& conversions = KVLCodeEnv::GetDefaultConversionsRoot();
  Check(PointerIn(objects[3]) == &conversions, "the fourth clean-up is the conversions root's");

  MRBSetTraceSink(IgnoreTrace);
  Check(KVLCodeEnvAccess::Load() == KVLResult_Failure, "no module is found");
  Check(*moduleState == 1, "the fifth clean-up is that of the modules");
  Check(KVLCodeEnvAccess::Unload() == KVLResult_Success, "unloading succeeds");
  Check(*moduleState == 0, "the fifth clean-up is that of the modules");

  int later = 0;
  for (int i = 0; i < cleanUpCount && i < MaxCleanUps; ++i) {
    if (IsInKernel(cleanUps[i].library)) ++later;
  }
  Check(later == 5, "using the kernel registers no further clean-up");
  return failures == 0 ? 0 : 1;
}
