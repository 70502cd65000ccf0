#ifndef KVL_BENCH_NUMBERS_H
#define KVL_BENCH_NUMBERS_H

#include <charconv>
#include <cstddef>
#include <new>
#include <system_error>
#include <utility>

#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"

/// Numbers and a function of them, written as the author of a module would.
namespace kvlbench {

/// A value that holds a number of the type that `Name` names.
template <class Number, const MRBUnicodeString& Name>
class NumberValue final : public KVLCodeValue {
 public:
  explicit NumberValue(const MRBUnicodeString& valueName, Number initial = Number(),
                       const MRBUnicodeString& nameOfType = Name)
      : KVLCodeValue(valueName, nameOfType), number(initial) {}

  void* GetValuePtr() const override { return const_cast<Number*>(&number); }
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    char buffer[32];
    const std::to_chars_result written = std::to_chars(buffer, buffer + sizeof(buffer), number);
    text = MRBUnicodeString(buffer, static_cast<int>(written.ptr - buffer));
    return KVLResult_Success;
  }
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) override {
    const char* const first = text.ConvertToChar();
    const char* const end = first + text.GetLengthInByte();
    Number read{};
    const std::from_chars_result result = std::from_chars(first, end, read);
    if (result.ec != std::errc() || result.ptr != end) return KVLResult_InvalidArgument;
    number = read;
    return KVLResult_Success;
  }
  /// A number of the same type, or of a type that descends from it, has the same representation
  /// and needs neither a conversion nor a text.
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override {
    if (!Holds(source.GetTypeName())) return KVLCodeValue::AssignFrom(context, source);
    number = *static_cast<const Number*>(source.GetValuePtr());
    return KVLResult_Success;
  }

  Number GetNumber() const { return number; }
  void SetNumber(Number newNumber) { number = newNumber; }

 private:
  static bool Holds(const MRBUnicodeString& nameOfType);

  Number number;
};

extern const MRBUnicodeString IntName;
extern const MRBUnicodeString DoubleName;
/// Each the child of the one before; "int" is the parent of the first.
extern const MRBUnicodeString DescendantNames[3];

using IntValue = NumberValue<int, IntName>;
using DoubleValue = NumberValue<double, DoubleName>;

template <>
inline bool IntValue::Holds(const MRBUnicodeString& nameOfType) {
  if (nameOfType == IntName) return true;
  for (const MRBUnicodeString& descendant : DescendantNames)
    if (nameOfType == descendant) return true;
  return false;
}
template <>
inline bool DoubleValue::Holds(const MRBUnicodeString& nameOfType) {
  return nameOfType == DoubleName;
}

template <class Value>
class NumberType final : public KVLCodeType {
 public:
  explicit NumberType(const MRBUnicodeString& typeName, const MRBUnicodeString& nameOfParent = "")
      : KVLCodeType(typeName), parentName(nameOfParent) {}

  MRBUnicodeString GetParentTypeName() const override { return parentName; }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& valueName) const override {
    return new Value(valueName, {}, GetName());
  }

 private:
  const MRBUnicodeString parentName;
};

/// A function of numbers. What a caller was made of, its memory, its arguments and the value that
/// it returned, goes to the next caller of the function, unless someone still shares it.
template <class Function, class Result, class... Args>
class NumberFunction : public KVLCodeFunction {
 public:
  ~NumberFunction() override { ::operator delete(spareBlock); }
  NumberFunction(const NumberFunction&) = delete;
  NumberFunction& operator=(const NumberFunction&) = delete;

  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new (*this) Caller(*this, context);
  }

 protected:
  explicit NumberFunction(const MRBUnicodeString& functionName)
      : KVLCodeFunction(functionName, NbArgs) {}

 private:
  static constexpr int NbArgs = sizeof...(Args);
  using Values = KVLVector<KVLSmartPtr<KVLCodeValue>>;

  class Caller final : public KVLCodeFunctionCaller {
   public:
    Caller(const NumberFunction& called, const KVLCodeContext& callContext)
        : KVLCodeFunctionCaller(called, callContext) {
      args.Swap(called.spareArgs);
      if (!TakeUp(std::index_sequence_for<Args...>())) {
        args.Resize(0);
        args.Reserve(NbArgs);
        int i = 0;
        (args.Append(KVLSmartPtr<KVLCodeValue>(new Args(called.GetParam(i++).name))), ...);
      }
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;
    ~Caller() override {
      const NumberFunction& called = GetCalled();
      args.Swap(called.spareArgs);
      // A function that dies with its last caller keeps nothing.
      Header(this) = called.GetNbReferences() > 1 && !called.spareBlock ? &called : nullptr;
    }

    static void* operator new(std::size_t size, const NumberFunction& called) {
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
      if (const NumberFunction* const keeper = Header(caller)) {
        keeper->spareBlock = block;
      } else {
        ::operator delete(block);
      }
    }
    static void operator delete(void* caller, const NumberFunction&) {
      ::operator delete(static_cast<char*>(caller) - HeaderSize);
    }

   protected:
    KVLSmartPtr<KVLCodeValue> CallInternal() override {
      const auto number = Call(std::index_sequence_for<Args...>());
      KVLSmartPtr<Result>& result = GetCalled().result;
      // Only the function and, from its last call, this caller know the value.
      if (!result || result->GetNbReferences() > (returnedValue == result ? 2 : 1)) {
        result = new Result(MRBUnicodeString());
      }
      result->SetNumber(number);
      return result;
    }

   private:
    static constexpr std::size_t HeaderSize = alignof(std::max_align_t);

    static const NumberFunction*& Header(void* caller) {
      return *reinterpret_cast<const NumberFunction**>(static_cast<char*>(caller) - HeaderSize);
    }
    const NumberFunction& GetCalled() const {
      return static_cast<const NumberFunction&>(*function);
    }
    template <std::size_t... I>
    bool TakeUp(std::index_sequence<I...>) {
      if (args.IsEmpty() || ((args[I]->GetNbReferences() > 1) || ...)) return false;
      (static_cast<Args&>(*args[I]).SetNumber({}), ...);
      return true;
    }
    template <std::size_t... I>
    auto Call(std::index_sequence<I...>) const {
      return Function::Compute(static_cast<const Args&>(*args[I]).GetNumber()...);
    }
  };

  mutable Values spareArgs;
  mutable KVLSmartPtr<Result> result;
  mutable void* spareBlock = nullptr;
};

/// double add(double left, double right)
class AddFunction final
    : public NumberFunction<AddFunction, DoubleValue, DoubleValue, DoubleValue> {
 public:
  explicit AddFunction(const MRBUnicodeString& functionName) : NumberFunction(functionName) {
    params[0] = Param{"left", DoubleName, "", 1};
    params[1] = Param{"right", DoubleName, "", 1};
    returnTypeName = DoubleName;
  }
  static double Compute(double left, double right) { return left + right; }
};

/// double int_to_double(int from)
class IntToDouble final : public NumberFunction<IntToDouble, DoubleValue, IntValue> {
 public:
  IntToDouble() : NumberFunction(DoubleName) {
    params[0] = Param{"from", IntName, "", 1};
    returnTypeName = DoubleName;
  }
  static double Compute(int from) { return from; }
};

}  // namespace kvlbench

#endif
