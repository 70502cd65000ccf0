#include "KVLRefCounted.h"

#include "MRBHost.h"

KVLRefCounted::~KVLRefCounted() = default;

void KVLRefCounted::ReleaseLast() const {
  if (referenceCount == 0) {
    delete this;
    return;
  }
  MRBSysBftier(100, "KVLRefCounted::Release -> too many releases", 0);
}
