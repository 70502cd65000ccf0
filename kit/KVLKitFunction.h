#ifndef KVL_KIT_FUNCTION_H
#define KVL_KIT_FUNCTION_H

#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeSession.h"
#include "KVLKitValue.h"

#if !defined(_WIN32)
#pragma GCC visibility push(hidden)
#endif

namespace kvl {

/// A parameter that a function only gives back: assign the result to it.
template <class T>
class Out {
 public:
  explicit Out(T& outputTarget) : target(&outputTarget) {}
  Out(const Out&) = default;
  /// The other's datum, so that `a = b = datum` sets both.
  Out& operator=(const Out& other) {
    *target = *other.target;
    return *this;
  }
  /// Through a copy too the assignment reaches the argument.
  const Out& operator=(const T& data) const {
    *target = data;
    return *this;
  }
  const Out& operator=(T&& data) const {
    *target = std::move(data);
    return *this;
  }
  T& operator*() const { return *target; }
  T* operator->() const { return target; }

 private:
  T* target;
};

/// What the thunk of a signature is handed.
struct Frame {
  const KVLCodeContext& context;
  KVLVector<KVLSmartPtr<KVLCodeValue>>& args;  ///< one a visible parameter, made by the kit
  KVLSmartPtr<KVLCodeValue>& spare;            ///< a former result that no one holds, or null
};

namespace detail {

/// One visible parameter in the table of a signature.
struct ParamTable {
  const TypeTable* type;
  unsigned int direction;
};

// Throws when the element cannot be had as a `T`.
template <class T>
T ElementAs(const KVLCodeContext& context, const KVLCodeValue* element, int i) {
  if (element && element->GetTypeName() == Traits<T>::Name && element->GetValuePtr()) {
    return *static_cast<const T*>(element->GetValuePtr());
  }
  Value value(TableOf<T>, "");
  if (!element || KVLFailed(value.AssignFrom(context, *element))) {
    throw std::invalid_argument(std::string("element ") + std::to_string(i) + " is no " +
                                Traits<T>::Name);
  }
  return value.Get<T>();
}

template <class List>
struct ListAccess;
template <class T>
struct ListAccess<KVLVector<T>> {
  using Element = T;
  static int Count(const KVLVector<T>& list) { return list.GetCount(); }
  static void Append(KVLVector<T>& list, T&& element) { list.Append(std::move(element)); }
};
template <class T>
struct ListAccess<std::vector<T>> {
  using Element = T;
  static int Count(const std::vector<T>& list) { return static_cast<int>(list.size()); }
  static void Append(std::vector<T>& list, T&& element) { list.push_back(std::move(element)); }
};

template <class List>
List ReadList(const KVLCodeContext& context, const KVLCodeValue& value);
template <class List>
void FillList(const List& list, ListValue& value);

// A C++ type `T` that travels as a published type: which table it has, and how it is taken from an
// argument and put into one. Here: the argument's own datum.
template <class T>
struct Carrier {
  static constexpr const TypeTable* Table = &TableOf<T>;
  static constexpr bool IsDirect = true;
  static T& Refer(KVLCodeValue& arg) { return static_cast<Value&>(arg).template Get<T>(); }
  static KVLSmartPtr<KVLCodeValue> Make(const T& data) {
    return MakeValueOf(data, MRBUnicodeString());
  }
};

template <>
struct Carrier<std::string> {
  static constexpr const TypeTable* Table = &TableOf<MRBUnicodeString>;
  static constexpr bool IsDirect = false;
  static std::string Take(const KVLCodeContext&, KVLCodeValue& arg) {
    const MRBUnicodeString& text = static_cast<Value&>(arg).Get<MRBUnicodeString>();
    return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
  }
  static void Put(const std::string& data, KVLCodeValue& arg) {
    static_cast<Value&>(arg).Get<MRBUnicodeString>() = ToText(data);
  }
  static KVLSmartPtr<KVLCodeValue> Make(const std::string& data) {
    return MakeValueOf(ToText(data));
  }

 private:
  static MRBUnicodeString ToText(const std::string& data) {
    return MRBUnicodeString(data.data(), static_cast<int>(data.size()));
  }
};

// The C++ type that `T` travels as.
template <class T>
struct PublishedAs {
  using Type = T;
};
template <>
struct PublishedAs<std::string> {
  using Type = MRBUnicodeString;
};
template <class T>
struct PublishedAs<std::vector<T>> {
  using Type = KVLVector<typename PublishedAs<T>::Type>;
};

template <class List>
struct ListCarrier {
  using Element = typename ListAccess<List>::Element;
  static constexpr const TypeTable* Table =
      &TableOf<KVLVector<typename PublishedAs<Element>::Type>>;
  static constexpr bool IsDirect = false;
  static List Take(const KVLCodeContext& context, KVLCodeValue& arg) {
    return ReadList<List>(context, arg);
  }
  static void Put(const List& data, KVLCodeValue& arg) {
    FillList(data, static_cast<ListValue&>(arg));
  }
  static KVLSmartPtr<KVLCodeValue> Make(const List& data) {
    KVLSmartPtr<KVLCodeValue> value = MakeValue(*Table, MRBUnicodeString());
    Put(data, *value);
    return value;
  }
};
template <class T>
struct Carrier<KVLVector<T>> : ListCarrier<KVLVector<T>> {};
template <class T>
struct Carrier<std::vector<T>> : ListCarrier<std::vector<T>> {};

// A list of any: the elements as they are. What is changed is a list of its own, since assignment
// shares the elements' vector.
template <>
struct Carrier<KVLCodeListValue::Elements> {
  using List = KVLCodeListValue::Elements;
  static constexpr const TypeTable* Table = &TableOf<List>;
  static constexpr bool IsDirect = false;
  static List Take(const KVLCodeContext&, KVLCodeValue& arg) {
    const List* const elements = static_cast<ListValue&>(arg).Get();
    return elements ? *elements : List();
  }
  static void Put(List data, KVLCodeValue& arg) {
    static_cast<ListValue&>(arg).MakeOwnElements() = std::move(data);
  }
  static KVLSmartPtr<KVLCodeValue> Make(List data) {
    KVLSmartPtr<KVLCodeValue> value = MakeValue(*Table, MRBUnicodeString());
    Put(std::move(data), *value);
    return value;
  }
};

template <>
struct Carrier<Any> {
  static constexpr const TypeTable* Table = &TableOf<Any>;
  static constexpr bool IsDirect = false;
  static Any Take(const KVLCodeContext&, KVLCodeValue& arg) {
    return static_cast<AnyValue&>(arg).Get();
  }
  static void Put(Any data, KVLCodeValue& arg) { static_cast<AnyValue&>(arg).Set(std::move(data)); }
  static KVLSmartPtr<KVLCodeValue> Make(Any data) {
    return KVLSmartPtr<KVLCodeValue>(new AnyValue(MRBUnicodeString(), std::move(data)));
  }
};

template <class List>
List ReadList(const KVLCodeContext& context, const KVLCodeValue& value) {
  using Access = ListAccess<List>;
  using Element = typename Access::Element;
  List list;
  const auto* const elements = static_cast<const KVLCodeListValue&>(value).GetValuePtr();
  if (!elements) return list;
  int i = 0;
  for (const KVLSmartPtr<KVLCodeValue>& element :
       *static_cast<const KVLCodeListValue::Elements*>(elements)) {
    if constexpr (Carrier<Element>::IsDirect) {
      Access::Append(list, ElementAs<Element>(context, element.Get(), i));
    } else {
      // Another carrier's own argument takes the element, whatever its type.
      const KVLSmartPtr<KVLCodeValue> taken = MakeValue(*Carrier<Element>::Table, "");
      if (!element || KVLFailed(taken->AssignFrom(context, *element))) {
        throw std::invalid_argument("element " + std::to_string(i) + " is no " +
                                    NameOf(*Carrier<Element>::Table).ConvertToChar());
      }
      Access::Append(list, Carrier<Element>::Take(context, *taken));
    }
    ++i;
  }
  return list;
}

template <class List>
void FillList(const List& list, ListValue& value) {
  using Access = ListAccess<List>;
  KVLCodeListValue::Elements elements;
  elements.Reserve(Access::Count(list));
  for (const auto& element : list)
    elements.Append(Carrier<typename Access::Element>::Make(element));
  value.MakeOwnElements() = std::move(elements);
}

enum class Passing { Hidden, In, InOut, Out };

// How a parameter of the C++ type `P` is passed, and as what.
template <class P>
struct Passed {
  using Data = P;
  static constexpr Passing How = Passing::In;
};
template <class T>
struct Passed<const T> : Passed<T> {};
template <class T>
struct Passed<const T&> : Passed<T> {};
template <class T>
struct Passed<T&> {
  using Data = T;
  static constexpr Passing How = Passing::InOut;
};
template <class T>
struct Passed<T&&> {
  static_assert(IsNever<T>, "kvl: a parameter cannot be T&&. Take T or const T&.");
};
template <class T>
struct Passed<T*> {
  static_assert(IsNever<T>,
                "kvl: a parameter cannot be a pointer. Take T, const T& (in), T& (in and out) or "
                "kvl::Out<T>; and MRBUnicodeString or std::string instead of const char*.");
};
template <class T>
struct Passed<Out<T>> {
  using Data = T;
  static constexpr Passing How = Passing::Out;
};
template <class T>
struct Passed<Out<T>&> : Passed<Out<T>> {};
template <class T>
struct Passed<const Out<T>&> : Passed<Out<T>> {};
template <>
struct Passed<const KVLCodeContext&> {
  using Data = KVLCodeContext;
  static constexpr Passing How = Passing::Hidden;
};
template <>
struct Passed<KVLCodeSession*> {
  using Data = KVLCodeSession;
  static constexpr Passing How = Passing::Hidden;
};

inline constexpr unsigned int DirectionOf(Passing how) {
  return how == Passing::In    ? static_cast<unsigned int>(KVLCodeFunction::Input)
         : how == Passing::Out ? static_cast<unsigned int>(KVLCodeFunction::Output)
                               : static_cast<unsigned int>(KVLCodeFunction::Input) |
                                     static_cast<unsigned int>(KVLCodeFunction::Output);
}

// One argument during a call: what is handed to the function, and what comes back from it.
template <class P, Passing How = Passed<P>::How, bool IsDirect = true>
struct Handed;

template <class P>
struct Handed<P, Passing::Hidden, true> {
  static P From(const Frame& frame) {
    if constexpr (std::is_pointer_v<P>) {
      return frame.context.GetSession();
    } else {
      return frame.context;
    }
  }
};

template <class P, Passing How>
struct Handed<P, How, true> {
  using T = typename Passed<P>::Data;
  Handed(const KVLCodeContext&, KVLCodeValue& arg) : data(Carrier<T>::Refer(arg)) {}
  decltype(auto) Get() {
    if constexpr (How == Passing::Out) {
      return Out<T>(data);
    } else {
      return (data);
    }
  }

  T& data;
};

// Put back where the call ends, but not where it throws.
template <class P, Passing How>
struct Handed<P, How, false> {
  using T = typename Passed<P>::Data;
  Handed(const KVLCodeContext& context, KVLCodeValue& argument)
      : arg(argument), pending(std::uncaught_exceptions()) {
    if constexpr (How != Passing::Out) data = Carrier<T>::Take(context, argument);
  }
  Handed(const Handed&) = delete;
  Handed& operator=(const Handed&) = delete;
  ~Handed() noexcept(false) {
    if constexpr (How != Passing::In) {
      if (std::uncaught_exceptions() == pending) Carrier<T>::Put(std::move(data), arg);
    }
  }
  decltype(auto) Get() {
    if constexpr (How == Passing::Out) {
      return Out<T>(data);
    } else {
      return (data);
    }
  }

  KVLCodeValue& arg;
  T data{};
  const int pending;
};

template <class P, bool IsHidden = Passed<P>::How == Passing::Hidden>
struct IsDirectParam {
  static constexpr bool Value = true;
};
template <class P>
struct IsDirectParam<P, false> {
  static constexpr bool Value = Carrier<typename Passed<P>::Data>::IsDirect;
};

// Which argument the parameter `i` is, hidden ones not counted.
template <class... P>
constexpr int ArgumentOf(int i) {
  constexpr bool isHidden[] = {(Passed<P>::How == Passing::Hidden)..., false};
  int argument = 0;
  for (int j = 0; j < i; ++j)
    if (!isHidden[j]) ++argument;
  return argument;
}

template <class P, int Argument>
struct AsArgument {
  using HandedType = Handed<P, Passed<P>::How, IsDirectParam<P>::Value>;
};

// The bytes of a callable: a pointer to a function or to a method.
struct Callable {
  alignas(std::max_align_t) unsigned char bytes[2 * sizeof(void*)];
};

using Thunk = KVLSmartPtr<KVLCodeValue> (*)(const Callable& callable, const Frame& frame);

/// What is to be known about a C++ signature at run time: one table a signature, shared by all
/// functions that have it.
struct SignatureTable {
  Thunk thunk;
  const TypeTable* returned;
  const ParamTable* params;
  int count;
  bool isMethod;
};

template <int Count>
struct ParamArray {
  ParamTable params[Count > 0 ? Count : 1];
};

template <class P>
constexpr void AddParam(ParamTable*& next) {
  if constexpr (Passed<P>::How != Passing::Hidden) {
    *next = ParamTable{Carrier<typename Passed<P>::Data>::Table, DirectionOf(Passed<P>::How)};
    ++next;
  }
}

template <class... P>
constexpr auto MakeParams() {
  ParamArray<ArgumentOf<P...>(static_cast<int>(sizeof...(P)))> array{};
  [[maybe_unused]] ParamTable* next = array.params;
  (AddParam<P>(next), ...);
  return array;
}

template <class... P>
inline constexpr auto ParamsOf = MakeParams<P...>();

template <class P, int Argument>
decltype(auto) HandedFrom(const Frame& frame) {
  if constexpr (Passed<P>::How == Passing::Hidden) {
    struct Hidden {
      P handed;
      P Get() { return handed; }
    };
    return Hidden{Handed<P>::From(frame)};
  } else {
    return typename AsArgument<P, Argument>::HandedType(frame.context, *frame.args[Argument]);
  }
}

template <class R, class Invoke>
KVLSmartPtr<KVLCodeValue> Returned(const Frame& frame, Invoke&& invoke) {
  using Data = std::remove_cv_t<std::remove_reference_t<R>>;
  if constexpr (std::is_void_v<R>) {
    invoke();
    if (frame.spare) return std::move(frame.spare);
    return KVLSmartPtr<KVLCodeValue>(new Value(TableOf<void>, MRBUnicodeString()));
  } else if constexpr (Carrier<Data>::IsDirect) {
    // Computed first: a call that throws must leave the former result to whom it belongs.
    decltype(auto) data = invoke();
    if (!frame.spare) return Carrier<Data>::Make(data);
    static_cast<Value&>(*frame.spare).template Get<Data>() = std::forward<R>(data);
    return std::move(frame.spare);
  } else {
    return Carrier<Data>::Make(invoke());
  }
}

template <class R>
constexpr const TypeTable* ReturnedTable() {
  using Data = std::remove_cv_t<std::remove_reference_t<R>>;
  static_assert(!std::is_pointer_v<Data>,
                "kvl: a function cannot return a pointer. Return T, and MRBUnicodeString or "
                "std::string instead of const char*.");
  if constexpr (std::is_void_v<R>) {
    return &TableOf<void>;
  } else {
    return Carrier<Data>::Table;
  }
}

template <class Pointer>
Pointer PointerIn(const Callable& callable) {
  Pointer pointer;
  std::memcpy(&pointer, callable.bytes, sizeof(pointer));
  return pointer;
}

template <class R, class... P>
struct FunctionSignature {
  template <int... I>
  static KVLSmartPtr<KVLCodeValue> Call(R (*function)(P...), const Frame& frame,
                                        std::integer_sequence<int, I...>) {
    return Returned<R>(
        frame, [&]() -> R { return function(HandedFrom<P, ArgumentOf<P...>(I)>(frame).Get()...); });
  }
  static KVLSmartPtr<KVLCodeValue> Thunk(const Callable& callable, const Frame& frame) {
    return Call(PointerIn<R (*)(P...)>(callable), frame,
                std::make_integer_sequence<int, static_cast<int>(sizeof...(P))>());
  }
  static constexpr SignatureTable Table = {&Thunk, ReturnedTable<R>(), ParamsOf<P...>.params,
                                           ArgumentOf<P...>(static_cast<int>(sizeof...(P))), false};
};

// `Object` is `C&` or `const C&`.
template <class Method, class R, class Object, class... P>
struct MethodSignature {
  template <int... I>
  static KVLSmartPtr<KVLCodeValue> Call(Method method, const Frame& frame,
                                        std::integer_sequence<int, I...>) {
    return Returned<R>(frame, [&]() -> R {
      return (HandedFrom<Object, 0>(frame).Get().*
              method)(HandedFrom<P, ArgumentOf<Object, P...>(I + 1)>(frame).Get()...);
    });
  }
  static KVLSmartPtr<KVLCodeValue> Thunk(const Callable& callable, const Frame& frame) {
    return Call(PointerIn<Method>(callable), frame,
                std::make_integer_sequence<int, static_cast<int>(sizeof...(P))>());
  }
  static constexpr SignatureTable Table = {
      &Thunk, ReturnedTable<R>(), ParamsOf<Object, P...>.params,
      ArgumentOf<Object, P...>(1 + static_cast<int>(sizeof...(P))), true};
};

/// A callable and its signature.
struct Described {
  const SignatureTable* signature;
  Callable callable;
};

template <class Pointer>
Described DescribedBy(const SignatureTable& signature, Pointer pointer) {
  static_assert(sizeof(pointer) <= sizeof(Callable), "pointers are one or two machine words");
  Described described{&signature, {}};
  std::memcpy(described.callable.bytes, &pointer, sizeof(pointer));
  return described;
}

template <class R, class... P>
Described Describe(R (*function)(P...)) {
  return DescribedBy(FunctionSignature<R, P...>::Table, function);
}
template <class R, class C, class... P>
Described Describe(R (C::*method)(P...)) {
  return DescribedBy(MethodSignature<R (C::*)(P...), R, C&, P...>::Table, method);
}
template <class R, class C, class... P>
Described Describe(R (C::*method)(P...) const) {
  return DescribedBy(MethodSignature<R (C::*)(P...) const, R, const C&, P...>::Table, method);
}

template <class Call>
struct FunctionPointerOf;
template <class R, class C, class... P>
struct FunctionPointerOf<R (C::*)(P...) const> {
  using Type = R (*)(P...);
};
template <class R, class C, class... P>
struct FunctionPointerOf<R (C::*)(P...)> {
  using Type = R (*)(P...);
};
template <class R, class C, class... P>
struct FunctionPointerOf<R (C::*)(P...) const noexcept> {
  using Type = R (*)(P...);
};
template <class R, class C, class... P>
struct FunctionPointerOf<R (C::*)(P...) noexcept> {
  using Type = R (*)(P...);
};

template <class Lambda, class = void>
inline constexpr bool HasOneSignature = false;
template <class Lambda>
inline constexpr bool HasOneSignature<Lambda, std::void_t<decltype(&Lambda::operator())>> = true;

// The function that a lambda without captures is.
template <class Lambda>
auto FunctionOf(Lambda lambda) {
  static_assert(std::is_class_v<Lambda>, "kvl: Publish a function, a method or a lambda.");
  if constexpr (std::is_class_v<Lambda>) {
    static_assert(HasOneSignature<Lambda>,
                  "kvl: a lambda with auto parameters has no signature of its own: write the types "
                  "of its parameters.");
    if constexpr (HasOneSignature<Lambda>) {
      using Pointer = typename FunctionPointerOf<decltype(&Lambda::operator())>::Type;
      static_assert(std::is_convertible_v<Lambda, Pointer>,
                    "kvl: a lambda that captures cannot be published: it has no function to point "
                    "to. Publish one without captures.");
      return static_cast<Pointer>(lambda);
    } else {
      return static_cast<void (*)()>(nullptr);
    }
  } else {
    return static_cast<void (*)()>(nullptr);
  }
}

// A pointer that cannot throw is left to the forms above, which take it as one that may.
template <
    class Lambda,
    std::enable_if_t<!std::is_pointer_v<Lambda> && !std::is_member_pointer_v<Lambda>, int> = 0>
Described Describe(Lambda lambda) {
  return Describe(FunctionOf(lambda));
}

}  // namespace detail

/// Chooses one of several overloads: `kvl::Overload<double(double)>(&std::sin)`.
template <class Signature>
constexpr Signature* Overload(Signature* function) {
  return function;
}

/// A published C++ function or method.
///
/// What a caller was made of, its memory, its arguments and its last result, goes to the next
/// caller of the function, where nobody else holds it.
class Function final : public KVLCodeFunction {
 public:
  /// `params` names the parameters, hidden ones left out, and gives their defaults, as
  /// `KVLCodeFunction::Init` reads it. A default that its type does not read leaves a message for
  /// `Check`.
  Function(const MRBUnicodeString& functionName, const detail::Described& described,
           const char* params);
  Function(const Function&) = delete;
  Function& operator=(const Function&) = delete;
  ~Function() override { ::operator delete(spareBlock); }

  /// True for a pointer to a method, and where the first parameter is named "this".
  bool IsMethod() const override { return isMethod; }
  /// A caller whose arguments hold the defaults.
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;

 protected:
  long InitImpl() override;

 private:
  class Caller;
  using Values = KVLVector<KVLSmartPtr<KVLCodeValue>>;

  static bool IsParsed(const TypeTable& type, const MRBUnicodeString& text, void* data);

  const detail::SignatureTable& signature;
  const detail::Callable callable;
  Values defaults;  // of plain types; null where there is none
  bool isMethod;

  mutable Values spareArgs;
  mutable KVLSmartPtr<KVLCodeValue> spareResult;
  mutable void* spareBlock = nullptr;
};

class Function::Caller final : public KVLCodeFunctionCaller {
 public:
  Caller(const Function& called, const KVLCodeContext& callContext)
      : KVLCodeFunctionCaller(called, callContext) {
    args.Swap(called.spareArgs);
    std::swap(formerResult, called.spareResult);
    const bool areUsed = !args.IsEmpty();
    if (!areUsed) args.Reserve(called.signature.count);
    for (int i = 0; i < called.signature.count; ++i) {
      const TypeTable& type = *called.signature.params[i].type;
      if (!areUsed) args.Append(MakeValue(type, called.params[i].name));
      if (const KVLSmartPtr<KVLCodeValue>& preset = called.defaults[i]) {
        type.assign(args[i]->GetValuePtr(), preset->GetValuePtr());
        continue;
      }
      if (areUsed && type.isTrivial) args[i]->Reset();
      // A default that cannot be read leaves the argument fresh; the strict check tells it.
      const MRBUnicodeString& text = called.params[i].defaultValue;
      if (!text.IsEmpty()) (void)args[i]->SetValueStr(callContext, text);
    }
  }
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;
  ~Caller() override {
    const Function& called = GetCalled();
    Give(called);
    // A function that dies with its last caller keeps nothing.
    Keeper(this) = called.GetNbReferences() > 1 && !called.spareBlock ? &called : nullptr;
  }

  static void* operator new(std::size_t size, const Function& called) {
    void* block = called.spareBlock;
    if (block) {
      called.spareBlock = nullptr;
    } else {
      block = ::operator new(HeaderSize + size);
    }
    return static_cast<char*>(block) + HeaderSize;
  }
  static void operator delete(void* caller) {
    void* const block = static_cast<char*>(caller) - HeaderSize;
    if (const Function* const keeper = Keeper(caller)) {
      keeper->spareBlock = block;
    } else {
      ::operator delete(block);
    }
  }
  static void operator delete(void* caller, const Function&) {
    ::operator delete(static_cast<char*>(caller) - HeaderSize);
  }

 protected:
  KVLSmartPtr<KVLCodeValue> CallInternal() override {
    const Function& called = GetCalled();
    // The former result is written over where only this caller knows it.
    KVLSmartPtr<KVLCodeValue> spare = std::move(formerResult);
    if (!spare && IsMine(returnedValue)) spare = returnedValue;
    return called.signature.thunk(called.callable, Frame{*context, args, spare});
  }

 private:
  static constexpr std::size_t HeaderSize = alignof(std::max_align_t);

  // The function that takes the block of a caller back: in the block's header.
  static const Function*& Keeper(void* caller) {
    return *reinterpret_cast<const Function**>(static_cast<char*>(caller) - HeaderSize);
  }
  const Function& GetCalled() const { return static_cast<const Function&>(*function); }

  static bool IsMine(const KVLSmartPtr<KVLCodeValue>& value) {
    return value && value->GetNbReferences() == 1;
  }

  // Hands on what nobody else holds, without what it holds itself: it may be of other modules.
  void Give(const Function& called) {
    const detail::SignatureTable& table = called.signature;
    KVLSmartPtr<KVLCodeValue>& result = returnedValue ? returnedValue : formerResult;
    if (IsMine(result) && !called.spareResult &&
        (table.returned->kind == TypeTable::Data || table.returned->kind == TypeTable::Void)) {
      if (!table.returned->isTrivial) result->Reset();
      std::swap(called.spareResult, result);
    }
    if (!called.spareArgs.IsEmpty()) return;
    for (int i = 0; i < args.GetCount(); ++i) {
      if (!IsMine(args[i])) return;
      if (!table.params[i].type->isTrivial) Renew(*table.params[i].type, *args[i]);
    }
    args.Swap(called.spareArgs);
  }

  KVLSmartPtr<KVLCodeValue> formerResult;  // of a former caller, or null
};

inline Function::Function(const MRBUnicodeString& functionName, const detail::Described& described,
                          const char* paramText)
    : KVLCodeFunction(functionName, described.signature->count),
      signature(*described.signature),
      callable(described.callable),
      isMethod(described.signature->isMethod) {
  returnTypeName = NameOf(*signature.returned);
  for (int i = 0; i < signature.count; ++i) {
    params[i].typeName = NameOf(*signature.params[i].type);
    params[i].direction = signature.params[i].direction;
  }
  // What is wrong with the text is among the messages.
  (void)Init(paramText);
}

inline KVLSmartPtr<KVLCodeFunctionCaller> Function::CreateCaller(
    const KVLCodeContext& context) const {
  return KVLSmartPtr<KVLCodeFunctionCaller>(new (*this) Caller(*this, context));
}

// A parser that throws has not read the text either: nobody could catch while a module loads.
inline bool Function::IsParsed(const TypeTable& type, const MRBUnicodeString& text, void* data) {
  try {
    return !KVLFailed(type.parse(text, data));
  } catch (...) {
    return false;
  }
}

inline long Function::InitImpl() {
  isMethod = signature.isMethod || (signature.count > 0 && params[0].name == "this");
  spareArgs.Resize(0);
  defaults.Resize(0);
  defaults.Resize(signature.count);
  for (int i = 0; i < signature.count; ++i) {
    const Param& param = params[i];
    const TypeTable& type = *signature.params[i].type;
    // Texts of lists and of any are read where there is a context, with each caller.
    if (param.defaultValue.IsEmpty() || type.kind != TypeTable::Data) continue;
    Value* const value = new Value(type, MRBUnicodeString());
    const KVLSmartPtr<KVLCodeValue> held(value);
    if (!IsParsed(type, param.defaultValue, value->GetValuePtr())) {
      messages.Append("Default value '" + param.defaultValue + "' of parameter '" + param.name +
                      "' is no " + param.typeName + ".");
      continue;
    }
    defaults[i] = held;
  }
  return KVLResult_Success;
}

}  // namespace kvl

#if !defined(_WIN32)
#pragma GCC visibility pop
#endif

#endif
