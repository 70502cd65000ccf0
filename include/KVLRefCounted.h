#ifndef KVL_REF_COUNTED_H
#define KVL_REF_COUNTED_H

#include "KVLExport.h"

/// Base of every object that is shared through `KVLSmartPtr`.
///
/// The count lives in the object and starts at 0; the first `KVLSmartPtr` makes it 1, and the
/// release that brings it back to 0 destroys the object. A copy starts at 0 as well, and assignment
/// leaves the target's count alone: counts are never copied.
///
/// Thread rule: the count is not atomic. An object and all pointers to it belong to one thread at a
/// time; sharing needs the host's own locking.
class KVL_EXPORT KVLRefCounted {
 public:
  KVLRefCounted() noexcept : referenceCount(0) {}
  KVLRefCounted(const KVLRefCounted&) noexcept : referenceCount(0) {}
  KVLRefCounted& operator=(const KVLRefCounted&) noexcept { return *this; }
  virtual ~KVLRefCounted();

  /// Adds one reference.
  void AddRef() const { ++referenceCount; }

  /// Gives back one reference and destroys the object with the last. A release too many destroys
  /// nothing: it is reported to the trace sink at level 100, and the count stays below 0, so that
  /// every further one is reported too.
  void Release() const {
    if (--referenceCount <= 0) ReleaseLast();
  }

  /// How many references there are. Who holds them all may use the object for something else.
  int GetNbReferences() const { return referenceCount; }

 private:
  void ReleaseLast() const;

  mutable int referenceCount;
};

#endif
