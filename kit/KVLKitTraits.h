#ifndef KVL_KIT_TRAITS_H
#define KVL_KIT_TRAITS_H

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

#include "KVLCodeListValue.h"
#include "KVLKitText.h"

#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

namespace kvl {

template <class T>
inline constexpr bool IsNever = false;

/// What the kit knows of a C++ type that is published under a name. `KVL_TYPE` and `KVL_ENUM` write
/// it; by hand, at global scope:
///
///     template <>
///     struct kvl::Traits<Colour> {
///       static constexpr const char* Name = "Colour";    // as registered under "_types"
///       static constexpr const char* Parent = "";        // the parent type's name, or ""
///       static long FromText(const MRBUnicodeString& text, Colour& data);  // 0, or a failing code
///       static MRBUnicodeString ToText(const Colour& data);
///     };
///
/// The default of a type is `T()`. `FromText` leaves `data` untouched when it fails, and reads what
/// `ToText` writes. Where the same name is published by several modules, they must mean the same
/// C++ type: values of equal type names are copied as such.
template <class T>
struct Traits {
  static_assert(!std::is_arithmetic_v<T>,
                "kvl: this C++ type is not the same on every platform, or has no type in the "
                "registry. Take int, std::int64_t, kvl::Long (32 bits) or double instead.");
  static_assert(std::is_arithmetic_v<T>,
                "kvl: this C++ type has no name and no text form yet. Add, at global scope before "
                "its first use: KVL_TYPE(T, \"T\", ParseT, PrintT); or, for an enumeration: "
                "KVL_ENUM(T, \"T\", First, Second);");
};

namespace detail {

template <class T>
struct PlainTraits {
  static constexpr const char* Parent = "";
  static long FromText(const MRBUnicodeString& text, T& data) { return Parse(text, data); }
  static MRBUnicodeString ToText(const T& data) { return Print(data); }
};

}  // namespace detail

/// The type "long": 32 bits wherever the module runs, since what a conversion reports by returning
/// a "long" is read so.
struct Long {
  constexpr Long(std::int32_t longNumber = 0) : number(longNumber) {}
  constexpr operator std::int32_t() const { return number; }

  std::int32_t number;
};

inline long Parse(const MRBUnicodeString& text, Long& data) {
  return Parse(text, data.number);
}
inline MRBUnicodeString Print(const Long& data) {
  return Print(data.number);
}

template <>
struct Traits<bool> : detail::PlainTraits<bool> {
  static constexpr const char* Name = "bool";
};
template <>
struct Traits<std::int32_t> : detail::PlainTraits<std::int32_t> {
  static constexpr const char* Name = "int";
};
template <>
struct Traits<std::int64_t> : detail::PlainTraits<std::int64_t> {
  static constexpr const char* Name = "int64";
};
template <>
struct Traits<Long> : detail::PlainTraits<Long> {
  static constexpr const char* Name = "long";
};
template <>
struct Traits<double> : detail::PlainTraits<double> {
  static constexpr const char* Name = "double";
};
template <>
struct Traits<MRBUnicodeString> : detail::PlainTraits<MRBUnicodeString> {
  static constexpr const char* Name = "string";
};

/// The name of the type of lists whose elements are of any type.
inline constexpr const char* AnyListName = "KVLVector<KVLCodeValue_var>";

/// What is to be known about a published type at run time: one table a type, shared by everything
/// that works with it. The data operations are null for a list, and for "any".
struct TypeTable {
  const char* name;          ///< of the type; of the elements' type for a list
  const char* parent;        ///< the parent type's name, or ""
  const TypeTable* element;  ///< of a list: the table of its elements' type, null for any
  enum Kind : unsigned char { Data, List, Any, Void } kind;
  bool isTrivial;  ///< nothing is held by a datum
  std::size_t size;
  void (*construct)(void* data);
  void (*destroy)(void* data);
  void (*assign)(void* data, const void* source);
  long (*parse)(const MRBUnicodeString& text, void* data);
  MRBUnicodeString (*print)(const void* data);
};

/// The type's name, as registered.
inline MRBUnicodeString NameOf(const TypeTable& table) {
  if (table.kind != TypeTable::List) return table.name;
  if (!table.element) return AnyListName;
  return "KVLVector<" + NameOf(*table.element) + ">";
}

namespace detail {

template <class T>
void Construct(void* data) {
  ::new (data) T();
}
template <class T>
void Destroy(void* data) {
  static_cast<T*>(data)->~T();
}
template <class T>
void Assign(void* data, const void* source) {
  *static_cast<T*>(data) = *static_cast<const T*>(source);
}
template <class T>
long ParseData(const MRBUnicodeString& text, void* data) {
  return Traits<T>::FromText(text, *static_cast<T*>(data));
}
template <class T>
MRBUnicodeString PrintData(const void* data) {
  return Traits<T>::ToText(*static_cast<const T*>(data));
}

}  // namespace detail

/// The table of the C++ type `T`, which is to be a plain type without `const` and reference.
template <class T>
inline constexpr TypeTable TableOf = {Traits<T>::Name,
                                      Traits<T>::Parent,
                                      nullptr,
                                      TypeTable::Data,
                                      std::is_trivially_destructible_v<T>,
                                      sizeof(T),
                                      &detail::Construct<T>,
                                      &detail::Destroy<T>,
                                      &detail::Assign<T>,
                                      &detail::ParseData<T>,
                                      &detail::PrintData<T>};

template <>
inline constexpr TypeTable TableOf<void> = {"void",  "",      nullptr, TypeTable::Void, true,   0,
                                            nullptr, nullptr, nullptr, nullptr,         nullptr};

/// Lists: `KVLVector<T>`, and for elements of any type `KVLCodeListValue::Elements`.
template <class T>
inline constexpr TypeTable TableOf<KVLVector<T>> = {
    "",      AnyListName, &TableOf<T>, TypeTable::List, false,  sizeof(KVLVector<T>),
    nullptr, nullptr,     nullptr,     nullptr,         nullptr};
template <>
inline constexpr TypeTable TableOf<KVLCodeListValue::Elements> = {
    "",      "",      nullptr, TypeTable::List, false,  sizeof(KVLCodeListValue::Elements),
    nullptr, nullptr, nullptr, nullptr,         nullptr};

}  // namespace kvl

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

#endif
