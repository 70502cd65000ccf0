#include <cstdint>
#include <stdexcept>
#include <string>

#include "AlphaFunction.h"
#include "AlphaList.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLResult.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;
using Elements = KVLCodeListValue::Elements;

constexpr int LongestRange = 1000000;

int Count(const Elements* elements) {
  return elements ? elements->GetCount() : 0;
}

KVLSmartPtr<KVLCodeListValue> NewList() {
  return new KVLCodeListValue("result", AlphaListTypeName);
}

Value Size(const AlphaArguments& arguments) {
  return AlphaResult<AlphaInt>(Count(arguments.GetElements(0)));
}

Value Get(const AlphaArguments& arguments) {
  const Elements* const elements = arguments.GetElements(0);
  const std::int32_t index = arguments.Get<AlphaInt>(1);
  if (index < 0 || index >= Count(elements)) {
    throw std::out_of_range("index " + std::to_string(index) + " is outside a list of " +
                            std::to_string(Count(elements)));
  }
  return (*elements)[index];
}

// A list of its own: the one in the argument may be shared.
Value Append(const AlphaArguments& arguments) {
  const Elements* const elements = arguments.GetElements(0);
  const KVLSmartPtr<KVLCodeListValue> list = NewList();
  Elements& result = list->MakeOwnElements();
  for (int i = 0; i < Count(elements); ++i)
    result.Append((*elements)[i]);
  result.Append(AlphaResult<AlphaString>(arguments.Get<AlphaString>(1)));
  return list;
}

Value Reverse(const AlphaArguments& arguments) {
  const Elements* const elements = arguments.GetElements(0);
  const KVLSmartPtr<KVLCodeListValue> list = NewList();
  Elements& result = list->MakeOwnElements();
  for (int i = Count(elements) - 1; i >= 0; --i)
    result.Append((*elements)[i]);
  return list;
}

// Each element is assigned to a number, through the conversion registered for its type.
Value Sum(const AlphaArguments& arguments) {
  const Elements* const elements = arguments.GetElements(0);
  double sum = 0;
  for (int i = 0; i < Count(elements); ++i) {
    AlphaScalarValue<AlphaDouble> number("");
    if (KVLFailed(number.AssignFrom(arguments.GetContext(), *(*elements)[i]))) {
      throw std::invalid_argument("element " + std::to_string(i) + " is no number");
    }
    sum += number.GetData();
  }
  return AlphaResult<AlphaDouble>(sum);
}

Value Range(const AlphaArguments& arguments) {
  const std::int64_t first = arguments.Get<AlphaInt>(0);
  const std::int64_t last = arguments.Get<AlphaInt>(1);
  const std::int64_t step = arguments.Get<AlphaInt>(2);
  if (step == 0) throw std::invalid_argument("step must not be 0");
  const KVLSmartPtr<KVLCodeListValue> list = NewList();
  Elements& result = list->MakeOwnElements();
  for (std::int64_t i = first; step > 0 ? i <= last : i >= last; i += step) {
    if (result.GetCount() == LongestRange) {
      throw std::length_error("the list would have more than 1000000 elements");
    }
    result.Append(AlphaResult<AlphaInt>(static_cast<std::int32_t>(i)));
  }
  return list;
}

KVLCodeObjectRegisterer Publish(AlphaFunction* function, int line) {
  return KVLCodeObjectRegisterer(KVLCodeEnv::GetDefault(), function, "list/" + function->GetName(),
                                 KVLSourceLocation(__FILE__, line, ""));
}

const KVLCodeObjectRegisterer size =
    Publish(new AlphaFunction("size", "int", {{AlphaListTypeName}}, "list", Size), __LINE__);
const KVLCodeObjectRegisterer get =
    Publish(new AlphaFunction("get", KVLTypeName_Unknown, {{AlphaListTypeName}, {"int"}},
                              "list, index = 0", Get),
            __LINE__);
const KVLCodeObjectRegisterer append =
    Publish(new AlphaFunction("append", AlphaListTypeName, {{AlphaListTypeName}, {"string"}},
                              "list, element", Append),
            __LINE__);
const KVLCodeObjectRegisterer reverse =
    Publish(new AlphaFunction("reverse", AlphaListTypeName, {{AlphaListTypeName}}, "list", Reverse),
            __LINE__);
const KVLCodeObjectRegisterer sum =
    Publish(new AlphaFunction("sum", "double", {{AlphaListTypeName}}, "list", Sum), __LINE__);
const KVLCodeObjectRegisterer range =
    Publish(new AlphaFunction("range", AlphaListTypeName, {{"int"}, {"int"}, {"int"}},
                              "first, last, step = 1", Range),
            __LINE__);

}  // namespace
