#include <cstdint>
#include <stdexcept>
#include <string>

#include "KVLKit.h"

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
    if (KVLFailed(number.AssignFrom(context, *list[i]))) {
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
KVL_FUNCTION("list/append", "list, element", "The list with the element behind it.", Append);
KVL_FUNCTION("list/reverse", "list", "The elements in the opposite order.", Reverse);
KVL_FUNCTION("list/sum", "list",
             "The sum of the elements, each converted to a number. Fails where one is none.", Sum);
KVL_FUNCTION("list/range", "first, last, step = 1",
             "The numbers from first to last, both included, in steps. Fails for the step 0, and "
             "for more than 1000000 numbers.",
             [](int first, int last, int step) { return Range(first, last, step); });
