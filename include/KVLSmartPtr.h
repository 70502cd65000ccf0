#ifndef KVL_SMART_PTR_H
#define KVL_SMART_PTR_H

#include <cstddef>
#include <type_traits>

#include "KVLRefCounted.h"

/// Counted pointer to a `T` derived from `KVLRefCounted`: holds one reference, or nothing.
///
/// Survives being moved bit by bit. Assignment lets the old object go before it takes the new one;
/// the pointer is empty in between, so that code which runs while the old object dies never meets
/// it here. The new object outlives the assignment even when only the old one held it, as in
/// `node = node->next`. Assigning the pointer already held does nothing.
///
/// Thread rule: see `KVLRefCounted`.
template <class T>
class KVLSmartPtr {
 public:
  constexpr KVLSmartPtr() noexcept : pointer(nullptr) {}
  constexpr KVLSmartPtr(std::nullptr_t) noexcept : pointer(nullptr) {}
  /// Shares `object`, which may be null.
  KVLSmartPtr(T* object) : pointer(object) {
    if (pointer) pointer->AddRef();
  }
  KVLSmartPtr(const KVLSmartPtr& other) : KVLSmartPtr(other.pointer) {}
  KVLSmartPtr(KVLSmartPtr&& other) noexcept : pointer(other.pointer) { other.pointer = nullptr; }
  /// Shares what a pointer to a derived class, or to a non-const object, holds.
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  KVLSmartPtr(const KVLSmartPtr<U>& other) : KVLSmartPtr(static_cast<T*>(other.Get())) {}
  ~KVLSmartPtr() {
    if (pointer) pointer->Release();
  }

  KVLSmartPtr& operator=(T* object) {
    if (object == pointer) return *this;
    // Releasing the old object may destroy what holds `object`.
    const Pin pin(object);
    Clear();
    pointer = object;
    if (pointer) pointer->AddRef();
    return *this;
  }
  KVLSmartPtr& operator=(const KVLSmartPtr& other) { return *this = other.pointer; }
  KVLSmartPtr& operator=(KVLSmartPtr&& other) noexcept {
    if (this == &other) return *this;
    T* const incoming = other.pointer;
    other.pointer = nullptr;
    Clear();
    pointer = incoming;
    return *this;
  }
  KVLSmartPtr& operator=(std::nullptr_t) {
    Clear();
    return *this;
  }

  /// Borrowed; valid while a reference is held.
  T* Get() const noexcept { return pointer; }
  T* operator->() const noexcept { return pointer; }
  T& operator*() const noexcept { return *pointer; }
  explicit operator bool() const noexcept { return pointer != nullptr; }
  bool IsNull() const noexcept { return pointer == nullptr; }

 private:
  // Holds a reference on the counted base itself, for the length of an assignment.
  class Pin {
   public:
    explicit Pin(const KVLRefCounted* counted) : object(counted) {
      if (object) object->AddRef();
    }
    ~Pin() {
      if (object) object->Release();
    }
    Pin(const Pin&) = delete;
    Pin& operator=(const Pin&) = delete;

   private:
    const KVLRefCounted* object;
  };

  // Repeated for what the dying object may have put here.
  void Clear() {
    while (T* const old = pointer) {
      pointer = nullptr;
      old->Release();
    }
  }

  T* pointer;
};

template <class T, class U>
bool operator==(const KVLSmartPtr<T>& left, const KVLSmartPtr<U>& right) {
  return left.Get() == right.Get();
}
template <class T, class U>
bool operator!=(const KVLSmartPtr<T>& left, const KVLSmartPtr<U>& right) {
  return left.Get() != right.Get();
}
template <class T, class U>
bool operator==(const KVLSmartPtr<T>& left, U* right) {
  return left.Get() == right;
}
template <class T, class U>
bool operator!=(const KVLSmartPtr<T>& left, U* right) {
  return left.Get() != right;
}
template <class T, class U>
bool operator==(T* left, const KVLSmartPtr<U>& right) {
  return left == right.Get();
}
template <class T, class U>
bool operator!=(T* left, const KVLSmartPtr<U>& right) {
  return left != right.Get();
}
template <class T>
bool operator==(const KVLSmartPtr<T>& left, std::nullptr_t) {
  return left.IsNull();
}
template <class T>
bool operator!=(const KVLSmartPtr<T>& left, std::nullptr_t) {
  return !left.IsNull();
}
template <class T>
bool operator==(std::nullptr_t, const KVLSmartPtr<T>& right) {
  return right.IsNull();
}
template <class T>
bool operator!=(std::nullptr_t, const KVLSmartPtr<T>& right) {
  return !right.IsNull();
}

#endif
