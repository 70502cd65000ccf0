#ifndef KVL_VECTOR_H
#define KVL_VECTOR_H

#include <cassert>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

template <class T, class Told = typename T::MovesBitByBit>
constexpr bool KVLMovesBitByBit(int) {
  return std::is_void_v<Told>;
}
template <class T>
constexpr bool KVLMovesBitByBit(long) {
  return std::is_trivially_copyable_v<T>;
}
/// Whether growth moves elements bit by bit: numbers, pointers and plain records, and a class whose
/// member type `MovesBitByBit` is `void`.
template <class T>
constexpr bool KVLMovesBitByBit() {
  return KVLMovesBitByBit<T>(0);
}

/// Growable array on the process heap's raw allocation calls.
///
/// Growth takes max(needed, 2 x capacity) places: 1, 2, 4, 8, 16, ... under repeated appends.
/// `Erase` moves the later elements down bit by bit, hence an element must survive that: strings,
/// counted pointers, plain pointers and records of these do; a class that points into itself does
/// not. Growth moves elements so too where `KVLMovesBitByBit` tells so; others move or copy
/// themselves.
///
/// Growth, `Reserve`, `Resize`, `Append` and `Erase` invalidate pointers and references to
/// elements. Indexes are not checked. A failed raw allocation is not checked either: the places
/// pointer is null then.
///
/// Thread rule: as for a plain value; concurrent reads are fine, a write excludes all else.
template <class T>
class KVLVector {
  static_assert(alignof(T) <= alignof(std::max_align_t), "the raw heap aligns no further");

 public:
  constexpr KVLVector() noexcept : count(0), capacity(0), data(nullptr) {}
  /// Allocates exactly as many places as `other` has elements, none for an empty one.
  KVLVector(const KVLVector& other) : KVLVector() {
    Allocate(other.count);
    if constexpr (std::is_trivially_copyable_v<T>) {
      count = other.count;
      if (count > 0) std::memcpy(data, other.data, BytesFor(count));
    } else {
      for (const T& element : other)
        Place(element);
    }
  }
  /// Takes over the storage of `other`, which is left empty.
  KVLVector(KVLVector&& other) noexcept : KVLVector() { Swap(other); }
  ~KVLVector() {
    if (!data) return;
    DestroyDownTo(0);
    std::free(data);
  }

  KVLVector& operator=(const KVLVector& other) {
    if (this != &other) KVLVector(other).Swap(*this);
    return *this;
  }
  KVLVector& operator=(KVLVector&& other) noexcept {
    if (this != &other) KVLVector(std::move(other)).Swap(*this);
    return *this;
  }

  /// Exchanges the two contents in constant time.
  void Swap(KVLVector& other) noexcept {
    std::swap(count, other.count);
    std::swap(capacity, other.capacity);
    std::swap(data, other.data);
  }

  int GetCount() const noexcept { return count; }
  /// The number of element places allocated.
  int GetCapacity() const noexcept { return capacity; }
  bool IsEmpty() const noexcept { return count == 0; }

  T& operator[](int index) {
    assert(index >= 0 && index < count && "index outside the vector");
    return data[index];
  }
  const T& operator[](int index) const {
    assert(index >= 0 && index < count && "index outside the vector");
    return data[index];
  }

  /// Null when nothing is allocated.
  T* GetData() noexcept { return data; }
  const T* GetData() const noexcept { return data; }
  T* begin() noexcept { return data; }
  T* end() noexcept { return data + count; }
  const T* begin() const noexcept { return data; }
  const T* end() const noexcept { return data + count; }

  /// Adds a copy of `element`, which may be an element of this very vector, at the end.
  void Append(const T& element) { AppendFrom(element); }
  void Append(T&& element) { AppendFrom(std::move(element)); }

  /// Makes the capacity exactly `places`, also when that is smaller than before; does nothing when
  /// `places` is below the count or is the capacity already.
  void Reserve(int places) {
    if (places < count || places == capacity) return;
    if constexpr (KVLMovesBitByBit<T>()) {
      if (BytesFor(capacity) >= LargeStorage() && places > 0) {
        Reallocate(places);
        return;
      }
    }
    KVLVector fresh;
    fresh.Allocate(places);
    fresh.TakeElementsOf(*this);
    Swap(fresh);
  }

  /// Destroys elements from the last down to index `newCount`, or appends default-constructed ones
  /// (numbers and pointers are 0) until there are `newCount`. A negative number means 0.
  void Resize(int newCount) {
    if (newCount <= count) {
      DestroyDownTo(newCount < 0 ? 0 : newCount);
      return;
    }
    if constexpr (IsZeroByDefault()) {
      if (!data) {
        AllocateZeroes(newCount);
        return;
      }
    }
    if (newCount > capacity) Reserve(GrownCapacity(newCount));
    while (count < newCount)
      Place();
  }

  /// Removes the element at `index`; the later ones move down by one place and keep their order.
  /// The element dies in its place: its destructor must not look at this vector.
  void Erase(int index) {
    assert(index >= 0 && index < count && "index outside the vector");
    T* const place = data + index;
    place->~T();
    std::memmove(static_cast<void*>(place), static_cast<const void*>(place + 1),
                 BytesFor(count - index - 1));
    --count;
  }

 private:
  static constexpr bool IsZeroByDefault() {
    return std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_pointer_v<T>;
  }

  // From these bytes on the heap is asked to let a storage grow where it is, or to move its pages;
  // a smaller block is quicker exchanged for another.
  static constexpr std::size_t LargeStorage() { return 4096; }

  static std::size_t BytesFor(int places) { return static_cast<std::size_t>(places) * sizeof(T); }

  int GrownCapacity(int needed) const {
    const int doubled = capacity > INT_MAX / 2 ? INT_MAX : 2 * capacity;
    return needed > doubled ? needed : doubled;
  }

  // For a vector without storage.
  void Allocate(int places) {
    if (places < 1) return;
    data = static_cast<T*>(std::malloc(BytesFor(places)));
    capacity = places;
  }

  // The same, with an element of zero bits in each place: a large storage comes so from the system,
  // and what is never looked at costs nothing.
  void AllocateZeroes(int places) {
    data = static_cast<T*>(std::calloc(static_cast<std::size_t>(places), sizeof(T)));
    capacity = places;
    count = places;
  }

  // For a vector with storage whose elements may be moved bit by bit.
  void Reallocate(int places) {
    void* const block = std::realloc(static_cast<void*>(data), BytesFor(places));
    if (!block) std::free(data);
    data = static_cast<T*>(block);
    capacity = places;
  }

  // Constructs an element at the end; there must be a place for it.
  template <class... Source>
  void Place(Source&&... source) {
    ::new (static_cast<void*>(data + count)) T(std::forward<Source>(source)...);
    ++count;
  }

  // Moves the elements where that cannot throw, else copies them; either way `source` is left to
  // destroy what it has then.
  void TakeElementsOf(KVLVector& source) {
    if constexpr (KVLMovesBitByBit<T>()) {
      if (source.count <= 0) return;
      std::memcpy(static_cast<void*>(data), static_cast<const void*>(source.data),
                  BytesFor(source.count));
      count = source.count;
      source.count = 0;
    } else {
      for (T& element : source)
        Place(std::move_if_noexcept(element));
    }
  }

  template <class Source>
  void AppendFrom(Source&& element) {
    if (count < capacity) {
      Place(std::forward<Source>(element));
      return;
    }
    // Taken before the storage changes: it may be an element of this vector.
    T incoming(std::forward<Source>(element));
    Reserve(GrownCapacity(count + 1));
    Place(std::move(incoming));
  }

  void DestroyDownTo(int newCount) {
    while (count > newCount) {
      // The count goes first: a destructor that looks at this vector must not meet its element.
      --count;
      data[count].~T();
    }
  }

  int count;
  int capacity;
  T* data;
};

#endif
