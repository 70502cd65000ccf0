#ifndef KVL_ITER_CURSORS_H
#define KVL_ITER_CURSORS_H

#include <utility>

#include "KVLIter.h"

/// The cursors from which the kernel builds its iterations.

/// Yields copies of the elements between two places of a contiguous storage, which must not change
/// meanwhile.
template <class T>
class KVLRangeCursor final : public KVLIterCursor<T> {
 public:
  KVLRangeCursor(const T* begin, const T* end) : place(begin), last(end) {}

  long Next(T& element) override {
    if (place == last) return KVLResult_False;
    element = *place;
    ++place;
    return KVLResult_Success;
  }

 private:
  const T* place;
  const T* last;
};

/// Yields what `convert(element, result)` makes of each element of a contiguous storage, which must
/// not change meanwhile. `Convert` is a function object that returns a result code.
template <class From, class To, class Convert>
class KVLMappingCursor final : public KVLIterCursor<To> {
 public:
  KVLMappingCursor(const From* begin, const From* end, Convert function)
      : place(begin), last(end), convert(std::move(function)) {}

  long Next(To& element) override {
    if (place == last) return KVLResult_False;
    const From& source = *place;
    ++place;
    return convert(source, element);
  }

 private:
  const From* place;
  const From* last;
  Convert convert;
};

/// Takes iterations one by one from an iteration of them and yields the elements of each in turn. A
/// failure, of either, is returned at once.
template <class T>
class KVLFlatteningCursor final : public KVLIterCursor<T> {
 public:
  explicit KVLFlatteningCursor(KVLIter<KVLIter<T>> iterations)
      : outer(std::move(iterations)), inner(KVLResult_False) {}

  long Next(T& element) override {
    for (;;) {
      const long result = inner.Next(element);
      if (result != KVLResult_False) return result;
      const long outerResult = outer.Next(inner);
      if (outerResult != KVLResult_Success) return outerResult;
    }
  }

 private:
  KVLIter<KVLIter<T>> outer;
  KVLIter<T> inner;
};

/// Yields everything of one iteration, then everything of another. A failure of the first is
/// returned at once, and the second is not begun.
template <class T>
class KVLConcatenationCursor final : public KVLIterCursor<T> {
 public:
  KVLConcatenationCursor(KVLIter<T> one, KVLIter<T> other)
      : first(std::move(one)), second(std::move(other)) {}

  long Next(T& element) override {
    if (!firstDone) {
      const long result = first.Next(element);
      if (result != KVLResult_False) return result;
      firstDone = true;
    }
    return second.Next(element);
  }

 private:
  KVLIter<T> first;
  KVLIter<T> second;
  bool firstDone = false;
};

#endif
