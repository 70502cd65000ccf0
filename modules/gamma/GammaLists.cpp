#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "KVLKit.h"
#include "shared/Scalar.h"

namespace {

using Elements = KVLCodeListValue::Elements;

constexpr int LongestList = 1000000;

void ExpectRoom(int count) {
  if (count < LongestList) return;
  throw std::length_error("the list would have more than 1000000 elements");
}

kvl::Any Get(const Elements& list, int index) {
  if (index < 0 || index >= list.GetCount()) {
    throw std::out_of_range("index " + std::to_string(index) + " is outside a list of " +
                            std::to_string(list.GetCount()));
  }
  return list[index];
}

Elements Append(const Elements& list, const kvl::Any& element) {
  if (!element) throw std::invalid_argument("there is no element");
  ExpectRoom(list.GetCount());
  Elements result = list;
  result.Append(element.GetValue());
  return result;
}

// A position that is negative counts from the end; what lies outside is left out.
int PositionIn(const Elements& list, int position) {
  const std::int64_t count = list.GetCount();
  const std::int64_t counted = position < 0 ? count + position : position;
  return static_cast<int>(std::min(std::max<std::int64_t>(counted, 0), count));
}

Elements Slice(const Elements& list, int from, int to) {
  Elements result;
  const int end = PositionIn(list, to);
  for (int i = PositionIn(list, from); i < end; ++i)
    result.Append(list[i]);
  return result;
}

Elements Sort(const Elements& list, bool isDescending) {
  struct Entry {
    scalar::Scalar key;
    int index;
  };
  std::vector<Entry> entries;
  entries.reserve(static_cast<std::size_t>(list.GetCount()));
  for (int i = 0; i < list.GetCount(); ++i) {
    entries.push_back(Entry{scalar::Read(list[i].Get()), i});
    if (!scalar::AreAlike(entries[0].key, entries.back().key)) {
      throw scalar::NotAlike(list[0].Get(), list[i].Get());
    }
  }
  // Stable, also when descending.
  std::stable_sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
    const int order = scalar::Compare(a.key, b.key);
    return isDescending ? order > 0 : order < 0;
  });
  Elements result;
  result.Reserve(list.GetCount());
  for (const Entry& entry : entries)
    result.Append(list[entry.index]);
  return result;
}

Elements Reverse(const Elements& list) {
  Elements result;
  result.Reserve(list.GetCount());
  for (int i = list.GetCount() - 1; i >= 0; --i)
    result.Append(list[i]);
  return result;
}

// Each element is assigned to a number, through the conversion registered for its type.
double Sum(const KVLCodeContext& context, const Elements& list) {
  double sum = 0;
  for (int i = 0; i < list.GetCount(); ++i) {
    kvl::Value number(kvl::TableOf<double>, "");
    if (!list[i] || KVLFailed(number.AssignFrom(context, *list[i]))) {
      throw std::invalid_argument("element " + std::to_string(i) + " is no number");
    }
    sum += number.Get<double>();
  }
  return sum;
}

KVLVector<std::int32_t> Range(std::int64_t first, std::int64_t last, std::int64_t step) {
  if (step == 0) throw std::invalid_argument("step must not be 0");
  KVLVector<std::int32_t> range;
  for (std::int64_t i = first; step > 0 ? i <= last : i >= last; i += step) {
    ExpectRoom(range.GetCount());
    range.Append(static_cast<std::int32_t>(i));
  }
  return range;
}

}  // namespace

KVL_DOC("list", "Lists. No function changes the list that it is given.");
KVL_FUNCTION("list/size", "list", "The number of elements.",
             [](const Elements& list) { return list.GetCount(); });
KVL_FUNCTION("list/get", "list, index = 0",
             "The element at the index, which counts from 0. Fails outside the list.", Get);
KVL_FUNCTION(
    "list/slice", "list, from = 0, to = 2147483647",
    "The elements from one position up to, not including, another. Positions count from 0, "
    "negative ones from the end; what lies outside is left out.",
    Slice);
KVL_FUNCTION(
    "list/append", "list, element",
    "The list with the element behind it. Fails where there is no element, and for more than "
    "1000000.",
    Append);
KVL_FUNCTION("list/reverse", "list", "The elements in the opposite order.", Reverse);
KVL_FUNCTION(
    "list/sort", "list, descending = false",
    "The elements in order: numbers by their exact values, whatever their types, nan "
    "last (first when descending); false before true; texts by their bytes. Equal ones keep their "
    "order. Fails for other elements, and where numbers and texts are mixed, say.",
    Sort);
KVL_FUNCTION("list/sum", "list",
             "The sum of the elements, each converted to a number. Fails where one is none.", Sum);
KVL_FUNCTION("list/range", "first, last, step = 1",
             "The numbers from first to last, both included, in steps. Fails for the step 0, and "
             "for more than 1000000 numbers.",
             [](int first, int last, int step) { return Range(first, last, step); });
