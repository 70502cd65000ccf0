#ifndef KVL_KIT_CONVERSION_H
#define KVL_KIT_CONVERSION_H

#include "KVLKitFunction.h"

#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

namespace kvl {

namespace detail {

// Reports as conversions do: through a returned "long".
inline KVLSmartPtr<KVLCodeValue> ReportedBy(long result) {
  return MakeValueOf(Long(static_cast<std::int32_t>(result)));
}

template <class From, class To>
struct ConversionParams {
  static constexpr ParamTable Params[] = {{Carrier<From>::Table, DirectionOf(Passing::In)},
                                          {Carrier<To>::Table, DirectionOf(Passing::Out)}};
};

// A conversion that may refuse: `Result(const From&, To&)`.
template <class From, class To, class Result>
struct CheckedConversion {
  using Pointer = Result (*)(const From&, To&);
  static KVLSmartPtr<KVLCodeValue> Thunk(const Callable& callable, const Frame& frame) {
    return ReportedBy(AsResult(PointerIn<Pointer>(callable)(HandedFrom<const From&, 0>(frame).Get(),
                                                            *HandedFrom<Out<To>, 1>(frame).Get())));
  }
  static constexpr SignatureTable Table = {&Thunk, &TableOf<Long>,
                                           ConversionParams<From, To>::Params, 2, false};
};

// Each element of a list of any is assigned to one of a list's own type.
template <class T>
struct ListConversion {
  using From = KVLCodeListValue::Elements;
  static KVLSmartPtr<KVLCodeValue> Thunk(const Callable&, const Frame& frame) {
    const From* const elements = static_cast<const ListValue&>(*frame.args[0]).Get();
    From converted;
    for (int i = 0; elements && i < elements->GetCount(); ++i) {
      converted.Append(MakeValue(*Carrier<T>::Table, MRBUnicodeString()));
      const long result = (*elements)[i] ? converted[i]->AssignFrom(frame.context, *(*elements)[i])
                                         : KVLResult_InvalidArgument;
      if (KVLFailed(result)) return ReportedBy(result);
    }
    static_cast<ListValue&>(*frame.args[1]).MakeOwnElements() = std::move(converted);
    return ReportedBy(KVLResult_Success);
  }
  static constexpr SignatureTable Table = {&Thunk, &TableOf<Long>,
                                           ConversionParams<From, KVLVector<T>>::Params, 2, false};
};

template <class From, class To>
To Cast(const From& from) {
  static_assert(std::is_constructible_v<To, const From&>,
                "kvl: C++ does not convert these types by itself. Say how: "
                "KVL_CONVERSION_WITH(From, To, a function of const From& that returns To, or of "
                "const From& and To& that returns bool)");
  return static_cast<To>(from);
}

template <class From>
MRBUnicodeString ToText(const From& from) {
  return Traits<From>::ToText(from);
}

template <class To>
long FromText(const MRBUnicodeString& from, To& to) {
  return Traits<To>::FromText(from, to);
}

template <class From, class To, class R, class P>
Described DescribeGivenConversion(R (*function)(P)) {
  static_assert(std::is_same_v<std::remove_cv_t<R>, To> &&
                    std::is_same_v<std::remove_cv_t<std::remove_reference_t<P>>, From>,
                "kvl: the function of a conversion takes const From& and returns To");
  return Describe(function);
}
template <class From, class To, class R>
Described DescribeGivenConversion(R (*function)(const From&, To&)) {
  return DescribedBy(CheckedConversion<From, To, R>::Table, function);
}
template <class From, class To, class R>
Described DescribeGivenConversion(R (*function)(From, To&)) {
  static_assert(IsNever<R>, "kvl: the function of a conversion takes const From&, not From");
  return DescribedBy(CheckedConversion<From, To, R>::Table, function);
}
template <class From, class To, class Lambda, std::enable_if_t<!std::is_pointer_v<Lambda>, int> = 0>
Described DescribeGivenConversion(Lambda lambda) {
  return DescribeGivenConversion<From, To>(FunctionOf(lambda));
}

// To and from text by the types' own forms, else as C++ converts.
template <class From, class To>
Described DescribeConversion() {
  if constexpr (std::is_same_v<To, MRBUnicodeString>) {
    return Describe(&ToText<From>);
  } else if constexpr (std::is_same_v<From, MRBUnicodeString>) {
    return DescribedBy(CheckedConversion<From, To, long>::Table, &FromText<To>);
  } else {
    return Describe(&Cast<From, To>);
  }
}

}  // namespace detail

}  // namespace kvl

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

#endif
