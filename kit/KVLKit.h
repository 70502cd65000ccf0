#ifndef KVL_KIT_H
#define KVL_KIT_H

#include "KVLKitPublish.h"

/// The kit for those who write modules: each macro publishes one object, by its own line, for as
/// long as the module is loaded. It stands at namespace scope and ends with a semicolon. Paths
/// begin at the default environment. A doc, a text for users, is published under "doc/", and
/// withdrawn, with its object; an empty one is not.
///
///     KVL_FUNCTION("math/lerp", "a, b, t = 0.5", "Between a and b.",
///                  [](double a, double b, double t) { return a + (b - a) * t; });
///
/// The C++ types of parameters and results:
///
/// - `bool`, `int`, `std::int64_t`, `kvl::Long`, `double`, `MRBUnicodeString` (or `std::string`),
///   and every type of `KVL_TYPE` and `KVL_ENUM`;
/// - `KVLVector<T>` or `std::vector<T>` of these; `KVLCodeListValue::Elements`, a list of any;
/// - `kvl::Any`, a value of whatever type; as a result, `void`.
///
/// `T` and `const T&` are given to the function, `T&` is given and comes back, `kvl::Out<T>` comes
/// back alone. `const KVLCodeContext&` and `KVLCodeSession*` are filled by the system, and are no
/// parameters for the caller. What the function throws passes through the call.

#define KVL_KIT_JOIN_(a, b) a##b
#define KVL_KIT_JOIN(a, b) KVL_KIT_JOIN_(a, b)
#define KVL_KIT_REGISTRATION(...)                                              \
  static const ::kvl::Registration KVL_KIT_JOIN(kvlRegistration, __COUNTER__)( \
      ::kvl::Here{__FILE__, __LINE__}, __VA_ARGS__)

/// KVL_FUNCTION(path, params, doc, callable): a function, a method or a lambda without captures.
/// `params` names the parameters and gives defaults: "a, b = 0". A method takes its object as the
/// first parameter, by custom named "this"; so does any function whose first parameter is.
#define KVL_FUNCTION(path, params, doc, ...) \
  KVL_KIT_REGISTRATION(path, params, doc, ::kvl::detail::Describe(__VA_ARGS__))

/// KVL_VARIABLE(path, data, doc): a constant; or, where `data` is the address of a variable of the
/// module, that variable, which may be written.
#define KVL_VARIABLE(path, data, doc) KVL_KIT_REGISTRATION(path, doc, data)

/// KVL_DOC(path, doc): the doc of what another line publishes, or of an environment.
#define KVL_DOC(path, doc) KVL_KIT_REGISTRATION(path, doc)

/// KVL_TYPE(T, name, parse, print): a type, at global scope. `bool parse(const MRBUnicodeString&,
/// T&)` (or `long`, a result code) leaves the datum alone when it fails; `MRBUnicodeString
/// print(const T&)` writes what it reads. A type used by several files has its traits in a header
/// (KVL_TYPE_TRAITS), and is published in one file (KVL_PUBLISH_TYPE).
#define KVL_TYPE(T, name, parse, print)   \
  KVL_TYPE_TRAITS(T, name, parse, print); \
  KVL_PUBLISH_TYPE(T)

/// KVL_SUBTYPE(T, name, parent, parse, print): a type whose parent type bears the name `parent`.
#define KVL_SUBTYPE(T, name, parent, parse, print)   \
  KVL_SUBTYPE_TRAITS(T, name, parent, parse, print); \
  KVL_PUBLISH_TYPE(T)

#define KVL_TYPE_TRAITS(T, name, parse, print) KVL_SUBTYPE_TRAITS(T, name, "", parse, print)
#define KVL_SUBTYPE_TRAITS(T, name, parent, parse, print)                                        \
  template <>                                                                                    \
  struct kvl::Traits<T> {                                                                        \
    static constexpr const char* Name = name;                                                    \
    static constexpr const char* Parent = parent;                                                \
    static long FromText(const MRBUnicodeString& text, T& data) {                                \
      static_assert(::kvl::detail::IsResultOfParsing<decltype(parse(text, data))>,               \
                    "kvl: a function that parses returns bool (true when the text was read) or " \
                    "long (0, or a failing code)");                                              \
      return ::kvl::detail::AsResult(parse(text, data));                                         \
    }                                                                                            \
    static MRBUnicodeString ToText(const T& data) { return print(data); }                        \
  }
/// KVL_PUBLISH_TYPE(T): also for the types that the kit knows already.
#define KVL_PUBLISH_TYPE(T) KVL_KIT_REGISTRATION(::kvl::TypeTag<T>())

/// KVL_ENUM(T, name, values...): an enumeration, at global scope, with up to 32 values; their texts
/// are their names.
#define KVL_ENUM(T, name, ...)           \
  KVL_ENUM_TRAITS(T, name, __VA_ARGS__); \
  KVL_PUBLISH_TYPE(T)
#define KVL_ENUM_TRAITS(T, name, ...)                                                             \
  template <>                                                                                     \
  struct kvl::Traits<T> {                                                                         \
    static constexpr const char* Name = name;                                                     \
    static constexpr const char* Parent = "";                                                     \
    static constexpr T Enumerators[] = {KVL_KIT_EACH(T, __VA_ARGS__)};                            \
    static constexpr ::kvl::detail::EnumEntries<T> Values = {                                     \
        #__VA_ARGS__, Enumerators, static_cast<int>(sizeof(Enumerators) / sizeof(*Enumerators))}; \
    static long FromText(const MRBUnicodeString& text, T& data) {                                 \
      return ::kvl::detail::EnumFromText(Values, text, data);                                     \
    }                                                                                             \
    static MRBUnicodeString ToText(const T& data) {                                               \
      return ::kvl::detail::EnumToText(Values, data);                                             \
    }                                                                                             \
  }

/// KVL_LIST(T): the type of lists of `T`, with a conversion from lists of any.
#define KVL_LIST(T)                                                                      \
  KVL_PUBLISH_TYPE(KVLVector<T>);                                                        \
  KVL_KIT_REGISTRATION(::kvl::ConversionTag<KVLCodeListValue::Elements, KVLVector<T>>(), \
                       ::kvl::detail::Described{&::kvl::detail::ListConversion<T>::Table, {}})

/// KVL_CONVERSION(From, To): converts as C++ does; to and from `MRBUnicodeString`, by the other
/// type's text form. KVL_CONVERSION_WITH(From, To, callable): by a function `To(const From&)`, or,
/// where it may refuse, `bool(const From&, To&)` or `long(const From&, To&)`.
#define KVL_CONVERSION(From, To)                           \
  KVL_KIT_REGISTRATION((::kvl::ConversionTag<From, To>()), \
                       (::kvl::detail::DescribeConversion<From, To>()))
#define KVL_CONVERSION_WITH(From, To, ...)                 \
  KVL_KIT_REGISTRATION((::kvl::ConversionTag<From, To>()), \
                       (::kvl::detail::DescribeGivenConversion<From, To>(__VA_ARGS__)))

// T::a, T::b, ... for up to 32 names.
#define KVL_KIT_EACH_1(T, a) T::a
#define KVL_KIT_EACH_2(T, a, ...) T::a, KVL_KIT_EACH_1(T, __VA_ARGS__)
#define KVL_KIT_EACH_3(T, a, ...) T::a, KVL_KIT_EACH_2(T, __VA_ARGS__)
#define KVL_KIT_EACH_4(T, a, ...) T::a, KVL_KIT_EACH_3(T, __VA_ARGS__)
#define KVL_KIT_EACH_5(T, a, ...) T::a, KVL_KIT_EACH_4(T, __VA_ARGS__)
#define KVL_KIT_EACH_6(T, a, ...) T::a, KVL_KIT_EACH_5(T, __VA_ARGS__)
#define KVL_KIT_EACH_7(T, a, ...) T::a, KVL_KIT_EACH_6(T, __VA_ARGS__)
#define KVL_KIT_EACH_8(T, a, ...) T::a, KVL_KIT_EACH_7(T, __VA_ARGS__)
#define KVL_KIT_EACH_9(T, a, ...) T::a, KVL_KIT_EACH_8(T, __VA_ARGS__)
#define KVL_KIT_EACH_10(T, a, ...) T::a, KVL_KIT_EACH_9(T, __VA_ARGS__)
#define KVL_KIT_EACH_11(T, a, ...) T::a, KVL_KIT_EACH_10(T, __VA_ARGS__)
#define KVL_KIT_EACH_12(T, a, ...) T::a, KVL_KIT_EACH_11(T, __VA_ARGS__)
#define KVL_KIT_EACH_13(T, a, ...) T::a, KVL_KIT_EACH_12(T, __VA_ARGS__)
#define KVL_KIT_EACH_14(T, a, ...) T::a, KVL_KIT_EACH_13(T, __VA_ARGS__)
#define KVL_KIT_EACH_15(T, a, ...) T::a, KVL_KIT_EACH_14(T, __VA_ARGS__)
#define KVL_KIT_EACH_16(T, a, ...) T::a, KVL_KIT_EACH_15(T, __VA_ARGS__)
#define KVL_KIT_EACH_17(T, a, ...) T::a, KVL_KIT_EACH_16(T, __VA_ARGS__)
#define KVL_KIT_EACH_18(T, a, ...) T::a, KVL_KIT_EACH_17(T, __VA_ARGS__)
#define KVL_KIT_EACH_19(T, a, ...) T::a, KVL_KIT_EACH_18(T, __VA_ARGS__)
#define KVL_KIT_EACH_20(T, a, ...) T::a, KVL_KIT_EACH_19(T, __VA_ARGS__)
#define KVL_KIT_EACH_21(T, a, ...) T::a, KVL_KIT_EACH_20(T, __VA_ARGS__)
#define KVL_KIT_EACH_22(T, a, ...) T::a, KVL_KIT_EACH_21(T, __VA_ARGS__)
#define KVL_KIT_EACH_23(T, a, ...) T::a, KVL_KIT_EACH_22(T, __VA_ARGS__)
#define KVL_KIT_EACH_24(T, a, ...) T::a, KVL_KIT_EACH_23(T, __VA_ARGS__)
#define KVL_KIT_EACH_25(T, a, ...) T::a, KVL_KIT_EACH_24(T, __VA_ARGS__)
#define KVL_KIT_EACH_26(T, a, ...) T::a, KVL_KIT_EACH_25(T, __VA_ARGS__)
#define KVL_KIT_EACH_27(T, a, ...) T::a, KVL_KIT_EACH_26(T, __VA_ARGS__)
#define KVL_KIT_EACH_28(T, a, ...) T::a, KVL_KIT_EACH_27(T, __VA_ARGS__)
#define KVL_KIT_EACH_29(T, a, ...) T::a, KVL_KIT_EACH_28(T, __VA_ARGS__)
#define KVL_KIT_EACH_30(T, a, ...) T::a, KVL_KIT_EACH_29(T, __VA_ARGS__)
#define KVL_KIT_EACH_31(T, a, ...) T::a, KVL_KIT_EACH_30(T, __VA_ARGS__)
#define KVL_KIT_EACH_32(T, a, ...) T::a, KVL_KIT_EACH_31(T, __VA_ARGS__)
#define KVL_KIT_NTH(a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, a16, a17, \
                    a18, a19, a20, a21, a22, a23, a24, a25, a26, a27, a28, a29, a30, a31, a32,  \
                    a33, n, ...)                                                                \
  n
#define KVL_KIT_TOO_MANY(T, ...) (::kvl::detail::RefuseValues<T>(), T())
#define KVL_KIT_EACH(T, ...)                                                                       \
  KVL_KIT_NTH(__VA_ARGS__, KVL_KIT_TOO_MANY, KVL_KIT_EACH_32, KVL_KIT_EACH_31, KVL_KIT_EACH_30,    \
              KVL_KIT_EACH_29, KVL_KIT_EACH_28, KVL_KIT_EACH_27, KVL_KIT_EACH_26, KVL_KIT_EACH_25, \
              KVL_KIT_EACH_24, KVL_KIT_EACH_23, KVL_KIT_EACH_22, KVL_KIT_EACH_21, KVL_KIT_EACH_20, \
              KVL_KIT_EACH_19, KVL_KIT_EACH_18, KVL_KIT_EACH_17, KVL_KIT_EACH_16, KVL_KIT_EACH_15, \
              KVL_KIT_EACH_14, KVL_KIT_EACH_13, KVL_KIT_EACH_12, KVL_KIT_EACH_11, KVL_KIT_EACH_10, \
              KVL_KIT_EACH_9, KVL_KIT_EACH_8, KVL_KIT_EACH_7, KVL_KIT_EACH_6, KVL_KIT_EACH_5,      \
              KVL_KIT_EACH_4, KVL_KIT_EACH_3, KVL_KIT_EACH_2, KVL_KIT_EACH_1, 0)                   \
  (T, __VA_ARGS__)

#endif
