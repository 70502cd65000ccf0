#include "MRBHost.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "KVLProcessState.h"

namespace {

// Null stands for the default sink.
std::atomic<MRBTraceSink> traceSink{nullptr};

void WriteToStandardError(const char* text) {
  std::fprintf(stderr, "%s\n", text);
}

}  // namespace

const char* MRBGetEnv(const char* name) {
  const char* const value = name ? std::getenv(name) : nullptr;
  // The host may change the variable in place.
  return value ? KVLProcessState::modules.environmentTexts.Keep(value) : nullptr;
}

void MRBSysBftier(int level, const char* text, int flags) {
  const MRBTraceSink sink = traceSink.load();
  const char* const report = text ? text : "";
  if (sink) {
    sink(level, report, flags);
  } else {
    WriteToStandardError(report);
  }
}

MRBTraceSink MRBSetTraceSink(MRBTraceSink sink) {
  return traceSink.exchange(sink);
}

MRBBaseUnknown::~MRBBaseUnknown() = default;

void MRBBaseUnknown::AddRef() {
  ++referenceCount;
}

void MRBBaseUnknown::Release() {
  if (--referenceCount == 0) delete this;
}

MRBBaseUnknown_var::MRBBaseUnknown_var(MRBBaseUnknown* shared) : object(shared) {
  if (object) object->AddRef();
}

MRBBaseUnknown_var::MRBBaseUnknown_var(const MRBBaseUnknown_var& other)
    : MRBBaseUnknown_var(other.object) {}

MRBBaseUnknown_var::~MRBBaseUnknown_var() {
  if (object) object->Release();
}

MRBBaseUnknown_var& MRBBaseUnknown_var::operator=(const MRBBaseUnknown_var& other) {
  // The new object first: releasing the old one may destroy what holds it.
  MRBBaseUnknown* const old = object;
  if (other.object) other.object->AddRef();
  object = other.object;
  if (old) old->Release();
  return *this;
}
