#ifndef KVL_KIT_PUBLISH_H
#define KVL_KIT_PUBLISH_H

#include <optional>

#include "KVLCodeEnv.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLKitConversion.h"
#include "KVLKitFunction.h"
#include "KVLKitType.h"

#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

namespace kvl {

/// The line of source text that publishes something.
struct Here {
  const char* file;
  int line;
};

template <class T>
struct TypeTag {};
template <class From, class To>
struct ConversionTag {};

namespace detail {

inline MRBUnicodeString LastNameOf(const MRBUnicodeString& path) {
  const int slash = path.SearchSubString("/", 0, MRBUnicodeString::MRBSearchBackward);
  return path.SubString(slash + 1, path.GetLengthInByte());
}

// The environment that `path` begins in, and the rest of the path. The three reserved ones are made
// as what they are, not as children like any other.
inline KVLCodeEnv& RootOf(const MRBUnicodeString& path, MRBUnicodeString& rest) {
  const int slash = path.SearchSubString("/", 0, MRBUnicodeString::MRBSearchForward);
  const MRBUnicodeString first = path.SubString(0, slash);
  rest = path.SubString(slash + 1, path.GetLengthInByte());
  if (first == "_types") return KVLCodeEnv::GetDefaultTypeRoot();
  if (first == "_members") return KVLCodeEnv::GetDefaultMembersRoot();
  if (first == "_conversions") return KVLCodeEnv::GetDefaultConversionsRoot();
  rest = path;
  return KVLCodeEnv::GetDefault();
}

// "_members/Point/Move" has its doc under "doc/members/Point/Move".
inline MRBUnicodeString DocPathOf(const MRBUnicodeString& path) {
  int first = 0;
  while (first < path.GetLengthInByte() && path.ConvertToChar()[first] == '_')
    ++first;
  return "doc/" + path.SubString(first, path.GetLengthInByte());
}

// The names of an enumeration's values, null for any other type.
template <class T, class = void>
inline constexpr const char* EnumNames = nullptr;
template <class T>
inline constexpr const char* EnumNames<T, std::void_t<decltype(Traits<T>::Values)>> =
    Traits<T>::Values.names;

template <class T>
KVLSmartPtr<KVLCodeObject> MakeType() {
  if constexpr (TableOf<T>.kind == TypeTable::List) {
    return KVLSmartPtr<KVLCodeObject>(new ListType(TableOf<T>));
  } else if constexpr (TableOf<T>.kind == TypeTable::Data) {
    return KVLSmartPtr<KVLCodeObject>(new Type(TableOf<T>, EnumNames<T>));
  } else {
    return KVLSmartPtr<KVLCodeObject>(new Type(TableOf<T>));
  }
}

template <class T>
inline constexpr bool IsPlain = TableOf<T>.kind == TypeTable::Data;

template <class T>
KVLSmartPtr<KVLCodeObject> MakeVariable(const MRBUnicodeString& name, const T& data) {
  static_assert(IsPlain<T>,
                "kvl: a variable is of a plain type. Publish a function that returns the list or "
                "the value of any type.");
  Value* const value = new Value(TableOf<T>, name);
  const KVLSmartPtr<KVLCodeObject> object(value);
  value->template Get<T>() = data;
  value->MakeReadOnly();
  return object;
}
inline KVLSmartPtr<KVLCodeObject> MakeVariable(const MRBUnicodeString& name, const char* text) {
  return MakeVariable(name, MRBUnicodeString(text));
}
inline KVLSmartPtr<KVLCodeObject> MakeVariable(const MRBUnicodeString& name,
                                               const std::string& text) {
  return MakeVariable(name, MRBUnicodeString(text.data(), static_cast<int>(text.size())));
}
template <class T, std::enable_if_t<!std::is_const_v<T>, int> = 0>
KVLSmartPtr<KVLCodeObject> MakeVariable(const MRBUnicodeString& name, T* variable) {
  static_assert(IsPlain<T>,
                "kvl: a variable is of a plain type. Publish functions that get and set it.");
  return KVLSmartPtr<KVLCodeObject>(new Value(TableOf<T>, name, variable));
}

}  // namespace detail

/// Publishes an object, and a doc with it, for as long as it lives: what the macros of the kit
/// define. Nothing is thrown: without the memory for it, the object or its doc is missing.
class Registration {
 public:
  // Called once a published object: out of line, a module of hundreds stays small.

  /// A function, a method or a lambda.
  [[gnu::noinline]] Registration(Here here, const char* path, const char* params, const char* doc,
                                 const detail::Described& described) noexcept {
    Try([&] {
      const MRBUnicodeString objectPath = path;
      Publish(here, objectPath,
              KVLSmartPtr<KVLCodeObject>(
                  new Function(detail::LastNameOf(objectPath), described, params)),
              doc);
    });
  }
  /// The doc of something that another line publishes.
  [[gnu::noinline]] Registration(Here here, const char* path, const char* doc) noexcept {
    Try([&] { PublishDoc(here, path, doc); });
  }
  /// A constant, or where `data` is a pointer to one, a variable of the module.
  template <class T>
  [[gnu::noinline]] Registration(Here here, const char* path, const char* doc,
                                 const T& data) noexcept {
    Try([&] {
      const MRBUnicodeString objectPath = path;
      Publish(here, objectPath, detail::MakeVariable(detail::LastNameOf(objectPath), data), doc);
    });
  }
  /// A type.
  template <class T>
  [[gnu::noinline]] Registration(Here here, TypeTag<T>) noexcept {
    Try([&] { Publish(here, "_types/" + NameOf(TableOf<T>), detail::MakeType<T>(), nullptr); });
  }
  /// A conversion.
  template <class From, class To>
  [[gnu::noinline]] Registration(Here here, ConversionTag<From, To>,
                                 const detail::Described& described) noexcept {
    Try([&] {
      const MRBUnicodeString from = NameOf(*detail::Carrier<From>::Table);
      const MRBUnicodeString to = NameOf(*detail::Carrier<To>::Table);
      const MRBUnicodeString doc = "Converts " + from + " to " + to + ".";
      Publish(here, "_conversions/" + from + "/" + to,
              KVLSmartPtr<KVLCodeObject>(new Function(
                  to, described, described.signature->count == 1 ? "from" : "from, to")),
              doc);
    });
  }
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration() = default;

 private:
  template <class Action>
  static void Try(const Action& action) noexcept {
    try {
      action();
    } catch (...) {
      // A static object's constructor has nobody who could catch.
    }
  }

  void Publish(Here here, const MRBUnicodeString& path, const KVLSmartPtr<KVLCodeObject>& object,
               const char* doc) {
    Register(here, path, object, objectRegisterer);
    if (doc && *doc) PublishDoc(here, path, doc);
  }

  void PublishDoc(Here here, const MRBUnicodeString& path, const char* doc) {
    const MRBUnicodeString docPath = detail::DocPathOf(path);
    Register(here, docPath, detail::MakeVariable(detail::LastNameOf(docPath), doc), docRegisterer);
  }

  static void Register(Here here, const MRBUnicodeString& path,
                       const KVLSmartPtr<KVLCodeObject>& object,
                       std::optional<KVLCodeObjectRegisterer>& registerer) {
    MRBUnicodeString rest;
    KVLCodeEnv& root = detail::RootOf(path, rest);
    registerer.emplace(root, object, rest, KVLSourceLocation(here.file, here.line, ""));
  }

  std::optional<KVLCodeObjectRegisterer> objectRegisterer;
  std::optional<KVLCodeObjectRegisterer> docRegisterer;
};

}  // namespace kvl

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

#endif
