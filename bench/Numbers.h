#ifndef KVL_BENCH_NUMBERS_H
#define KVL_BENCH_NUMBERS_H

#include <charconv>
#include <system_error>

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

/// double add(double left, double right)
class AddFunction final : public KVLCodeFunction {
 public:
  explicit AddFunction(const MRBUnicodeString& functionName) : KVLCodeFunction(functionName, 2) {
    params[0] = Param{"left", DoubleName, "", 1};
    params[1] = Param{"right", DoubleName, "", 1};
    returnTypeName = DoubleName;
  }
  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new Caller(*this, context);
  }

 private:
  class Caller final : public KVLCodeFunctionCaller {
   public:
    Caller(const AddFunction& add, const KVLCodeContext& callContext)
        : KVLCodeFunctionCaller(add, callContext),
          left(new DoubleValue(add.GetParam(0).name)),
          right(new DoubleValue(add.GetParam(1).name)) {
      args.Reserve(2);
      args.Append(KVLSmartPtr<KVLCodeValue>(left));
      args.Append(KVLSmartPtr<KVLCodeValue>(right));
    }

   protected:
    KVLSmartPtr<KVLCodeValue> CallInternal() override {
      return new DoubleValue(MRBUnicodeString(), left->GetNumber() + right->GetNumber());
    }

   private:
    DoubleValue* const left;  // the two arguments
    DoubleValue* const right;
  };
};

/// double int_to_double(int from)
class IntToDouble final : public KVLCodeFunction {
 public:
  IntToDouble() : KVLCodeFunction(DoubleName, 1) {
    params[0] = Param{"from", IntName, "", 1};
    returnTypeName = DoubleName;
  }
  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new Caller(*this, context);
  }

 private:
  class Caller final : public KVLCodeFunctionCaller {
   public:
    Caller(const IntToDouble& conversion, const KVLCodeContext& callContext)
        : KVLCodeFunctionCaller(conversion, callContext),
          from(new IntValue(conversion.GetParam(0).name)) {
      args.Append(KVLSmartPtr<KVLCodeValue>(from));
    }

   protected:
    KVLSmartPtr<KVLCodeValue> CallInternal() override {
      return new DoubleValue(MRBUnicodeString(), from->GetNumber());
    }

   private:
    IntValue* const from;  // the argument
  };
};

}  // namespace kvlbench

#endif
