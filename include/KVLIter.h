#ifndef KVL_ITER_H
#define KVL_ITER_H

#include <utility>

#include "KVLResult.h"

/// Where an iteration stands: what hosts derive from to write an iteration of their own.
template <class T>
class KVLIterCursor {
 public:
  /// Writes the next element to `element` and returns 0; returns 1 at the end, and a failure's
  /// code when the element cannot be had. `element` is then untouched.
  virtual long Next(T& element) = 0;
  virtual ~KVLIterCursor() = default;
};

/// Handle of a lazy iteration: owns a cursor and remembers its last result.
///
/// `Next` fetches the elements one by one. A range-based `for` does the same and ends at any result
/// but 0; whether that was the end (1) or a failure is what `GetStatus` then answers:
///
///     for (const MRBUnicodeString& piece : iter) Use(piece);
///     if (KVLFailed(iter.GetStatus())) ...
///
/// What is iterated over must neither change nor die meanwhile, unless the operation that returned
/// the handle says otherwise. `T` is default-constructible and copyable.
///
/// Thread rule: an iteration belongs to one thread at a time.
template <class T>
class KVLIter {
 public:
  /// An iteration without elements, whose `Next` returns `result` each time.
  KVLIter(long result) noexcept : status(result), cursor(nullptr) {}
  /// Takes `owned`, and the status 0; null stands for a cursor that could not be made and gives the
  /// status 0x80004005.
  explicit KVLIter(KVLIterCursor<T>* owned) noexcept
      : status(owned ? KVLResult_Success : KVLResult_Failure), cursor(owned) {}
  /// Takes the cursor of `other`, which is left at its end (status 1).
  KVLIter(KVLIter&& other) noexcept : status(other.status), cursor(other.cursor) {
    other.status = KVLResult_False;
    other.cursor = nullptr;
  }
  KVLIter& operator=(KVLIter&& other) noexcept {
    if (this == &other) return *this;
    // The former cursor dies last: it may hold `other`.
    KVLIter taken(std::move(other));
    std::swap(status, taken.status);
    std::swap(cursor, taken.cursor);
    return *this;
  }
  KVLIter(const KVLIter&) = delete;
  KVLIter& operator=(const KVLIter&) = delete;
  ~KVLIter() { delete cursor; }

  /// As `KVLIterCursor::Next`, and keeps the result as the status. Without a cursor, returns the
  /// status.
  long Next(T& element) {
    if (cursor) status = cursor->Next(element);
    return status;
  }

  /// The last result of `Next`; before that, what the handle was made with.
  long GetStatus() const noexcept { return status; }

  /// The end of a range-based `for`.
  struct End {};

  /// The place of a range-based `for`; holds the current element.
  class Place {
   public:
    explicit Place(KVLIter& source) : iter(source), element() { Advance(); }

    T& operator*() { return element; }
    Place& operator++() {
      Advance();
      return *this;
    }
    bool operator!=(const End&) const { return valid; }

   private:
    // A handle without a cursor has no elements, whatever its status.
    void Advance() { valid = iter.cursor && iter.Next(element) == KVLResult_Success; }

    KVLIter& iter;
    T element;
    bool valid = false;
  };

  /// Fetches the first element; one iteration, one loop.
  Place begin() { return Place(*this); }
  End end() const noexcept { return End(); }

 private:
  long status;
  KVLIterCursor<T>* cursor;
};

#endif
