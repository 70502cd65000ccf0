#include <cmath>
#include <limits>

#include "AlphaFunction.h"
#include "AlphaText.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLResult.h"

// A conversion that always succeeds takes the source and returns the target. One that may refuse
// gives the target back through its second parameter and returns a "long": 0, or a failing code.

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

template <class From, class To>
typename To::Data Exactly(const typename From::Data& from) {
  return static_cast<typename To::Data>(from);
}

template <class From>
MRBUnicodeString AsText(const typename From::Data& from) {
  MRBUnicodeString text;
  AlphaWrite(from, text);
  return text;
}

// Only what keeps the number is a conversion.
long WithoutLoss(double from, std::int32_t& to) {
  using Limits = std::numeric_limits<std::int32_t>;
  // Written so that a NaN is refused.
  if (!(from >= Limits::min() && from <= Limits::max()) || std::trunc(from) != from) {
    return KVLResult_InvalidArgument;
  }
  to = static_cast<std::int32_t>(from);
  return KVLResult_Success;
}

long WithoutLoss(double from, bool& to) {
  if (from != 0 && from != 1) return KVLResult_InvalidArgument;
  to = from != 0;
  return KVLResult_Success;
}

long WithoutLoss(std::int32_t from, bool& to) {
  if (from != 0 && from != 1) return KVLResult_InvalidArgument;
  to = from != 0;
  return KVLResult_Success;
}

template <class Data>
long WithoutLoss(const MRBUnicodeString& from, Data& to) {
  return AlphaRead(from, to);
}

template <class From, class To>
Value CarryExact(const AlphaArguments& arguments) {
  return AlphaResult<To>(Exactly<From, To>(arguments.Get<From>(0)));
}

template <class From>
Value CarryText(const AlphaArguments& arguments) {
  return AlphaResult<AlphaString>(AsText<From>(arguments.Get<From>(0)));
}

template <class From, class To>
Value CarryChecked(const AlphaArguments& arguments) {
  const long result = WithoutLoss(arguments.Get<From>(0), arguments.Get<To>(1));
  return AlphaResult<AlphaLong>(static_cast<std::int32_t>(result));
}

template <class From, class To>
KVLCodeObjectRegisterer Publish(AlphaFunction* function, int line) {
  return KVLCodeObjectRegisterer(KVLCodeEnv::GetDefaultConversionsRoot(), function,
                                 MRBUnicodeString(From::TypeName) + "/" + To::TypeName,
                                 KVLSourceLocation(__FILE__, line, ""));
}

template <class From, class To>
KVLCodeObjectRegisterer Exact(int line) {
  return Publish<From, To>(new AlphaFunction(To::TypeName, To::TypeName, {{From::TypeName}}, "from",
                                             &CarryExact<From, To>),
                           line);
}

template <class From>
KVLCodeObjectRegisterer Text(int line) {
  return Publish<From, AlphaString>(
      new AlphaFunction("string", "string", {{From::TypeName}}, "from", &CarryText<From>), line);
}

template <class From, class To>
KVLCodeObjectRegisterer Checked(int line) {
  return Publish<From, To>(new AlphaFunction(To::TypeName, "long",
                                             {{From::TypeName}, {To::TypeName, AlphaFunction::Out}},
                                             "from, to", &CarryChecked<From, To>),
                           line);
}

const KVLCodeObjectRegisterer boolToInt = Exact<AlphaBool, AlphaInt>(__LINE__);
const KVLCodeObjectRegisterer boolToLong = Exact<AlphaBool, AlphaLong>(__LINE__);
const KVLCodeObjectRegisterer boolToDouble = Exact<AlphaBool, AlphaDouble>(__LINE__);
const KVLCodeObjectRegisterer boolToString = Text<AlphaBool>(__LINE__);

const KVLCodeObjectRegisterer intToBool = Checked<AlphaInt, AlphaBool>(__LINE__);
const KVLCodeObjectRegisterer intToLong = Exact<AlphaInt, AlphaLong>(__LINE__);
const KVLCodeObjectRegisterer intToDouble = Exact<AlphaInt, AlphaDouble>(__LINE__);
const KVLCodeObjectRegisterer intToString = Text<AlphaInt>(__LINE__);

const KVLCodeObjectRegisterer longToBool = Checked<AlphaLong, AlphaBool>(__LINE__);
const KVLCodeObjectRegisterer longToInt = Exact<AlphaLong, AlphaInt>(__LINE__);
const KVLCodeObjectRegisterer longToDouble = Exact<AlphaLong, AlphaDouble>(__LINE__);
const KVLCodeObjectRegisterer longToString = Text<AlphaLong>(__LINE__);

const KVLCodeObjectRegisterer doubleToBool = Checked<AlphaDouble, AlphaBool>(__LINE__);
const KVLCodeObjectRegisterer doubleToInt = Checked<AlphaDouble, AlphaInt>(__LINE__);
const KVLCodeObjectRegisterer doubleToLong = Checked<AlphaDouble, AlphaLong>(__LINE__);
const KVLCodeObjectRegisterer doubleToString = Text<AlphaDouble>(__LINE__);

const KVLCodeObjectRegisterer stringToBool = Checked<AlphaString, AlphaBool>(__LINE__);
const KVLCodeObjectRegisterer stringToInt = Checked<AlphaString, AlphaInt>(__LINE__);
const KVLCodeObjectRegisterer stringToLong = Checked<AlphaString, AlphaLong>(__LINE__);
const KVLCodeObjectRegisterer stringToDouble = Checked<AlphaString, AlphaDouble>(__LINE__);

}  // namespace
