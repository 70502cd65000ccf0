#ifndef KVL_TESTS_SUPPORT_TEST_OBJECTS_H
#define KVL_TESTS_SUPPORT_TEST_OBJECTS_H

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <utility>

#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeListValue.h"
#include "KVLCodePointerValue.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "KVLStringOperations.h"

/// Simple objects of every kind, whose answers a test sets and whose use it counts. All of them are
/// made with `new` and held by a `KVLSmartPtr`, but for values that a test puts on the stack on
/// purpose.
namespace kvltest {

constexpr unsigned int In = 1;
constexpr unsigned int Out = 2;
constexpr unsigned int InOut = 3;

using Values = KVLVector<KVLSmartPtr<KVLCodeValue>>;
using FixedValues = KVLVector<KVLSmartPtr<const KVLCodeValue>>;
using Texts = KVLVector<MRBUnicodeString>;

inline Texts MakeTexts(std::initializer_list<const char*> list) {
  Texts texts;
  for (const char* const text : list)
    texts.Append(MRBUnicodeString(text));
  return texts;
}

/// A value that holds text. Its operations return the codes set; a negative one fails before
/// anything is done.
class TextValue : public KVLCodeValue {
 public:
  TextValue(const MRBUnicodeString& valueName, const MRBUnicodeString& nameOfType,
            const MRBUnicodeString& initialText = "")
      : KVLCodeValue(valueName, nameOfType), content(initialText) {
    ++nbAlive;
  }
  TextValue(const TextValue& other) : KVLCodeValue(other), content(other.content) { ++nbAlive; }
  TextValue& operator=(const TextValue&) = delete;
  ~TextValue() override { --nbAlive; }

  void* GetValuePtr() const override { return valued ? data ? data : Address() : nullptr; }
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    ++nbReads;
    if (!KVLFailed(readResult)) text = content;
    return readResult;
  }
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) override {
    ++nbWrites;
    if (!KVLFailed(writeResult)) content = text;
    return writeResult;
  }
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override {
    ++nbAssigns;
    return KVLFailed(assignResult) ? assignResult : KVLCodeValue::AssignFrom(context, source);
  }

  MRBUnicodeString content;
  bool valued = true;    // whether it designates data at all
  void* data = nullptr;  // what it designates; null: its own content
  long readResult = KVLResult_Success;
  long writeResult = KVLResult_Success;
  long assignResult = KVLResult_Success;  // only a negative one has an effect

  mutable int nbReads = 0;
  int nbWrites = 0;
  int nbAssigns = 0;

  inline static int nbAlive = 0;

 private:
  void* Address() const { return const_cast<MRBUnicodeString*>(&content); }
};

using TextPtr = KVLSmartPtr<TextValue>;

inline TextPtr MakeText(const MRBUnicodeString& typeName, const MRBUnicodeString& content = "") {
  return new TextValue("value", typeName, content);
}

/// A value that designates a 32-bit signed number.
class NumberValue : public KVLCodeValue {
 public:
  NumberValue(const MRBUnicodeString& valueName, std::int32_t initialNumber,
              const MRBUnicodeString& nameOfType = "long")
      : KVLCodeValue(valueName, nameOfType), number(initialNumber) {}

  void* GetValuePtr() const override { return const_cast<std::int32_t*>(&number); }
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    text = KVLStringOperations::FromNum(static_cast<int>(number));
    return KVLResult_Success;
  }
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString&) override {
    return KVLResult_InvalidArgument;
  }

  std::int32_t number;
};

/// A type that answers as it is told, and makes text values.
class TestType : public KVLCodeType {
 public:
  explicit TestType(const MRBUnicodeString& typeName, const MRBUnicodeString& parentName = "")
      : KVLCodeType(typeName), parent(parentName) {}

  bool IsDummy() const override { return dummy; }
  MRBUnicodeString GetParentTypeName() const override { return parent; }
  bool GetEnumValues(Texts& values) const override {
    for (const MRBUnicodeString& value : enumValues)
      values.Append(value);
    return !enumValues.IsEmpty();
  }
  bool IsList(MRBUnicodeString* nameOfElementType) const override {
    if (list && nameOfElementType) *nameOfElementType = elementTypeName;
    return list;
  }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& valueName) const override {
    ++nbCreated;
    if (!makesValues) return nullptr;
    if (make) return make(valueName);
    return KVLSmartPtr<KVLCodeValue>(new TextValue(valueName, GetName(), defaultContent));
  }

  MRBUnicodeString parent;
  bool dummy = false;
  bool list = false;
  MRBUnicodeString elementTypeName;
  Texts enumValues;
  bool makesValues = true;
  MRBUnicodeString defaultContent;
  std::function<KVLSmartPtr<KVLCodeValue>(const MRBUnicodeString& valueName)> make;

  mutable int nbCreated = 0;
};

using TypePtr = KVLSmartPtr<TestType>;

/// A list type whose elements are text values: "[", the elements separated by ",", "]".
class TextListType : public KVLCodeListType {
 public:
  TextListType(const MRBUnicodeString& typeName, const MRBUnicodeString& nameOfElementType,
               const MRBUnicodeString& parentName = "")
      : KVLCodeListType(typeName), elementTypeName(nameOfElementType), parent(parentName) {}

  MRBUnicodeString GetParentTypeName() const override { return parent; }
  bool IsList(MRBUnicodeString* typeName) const override {
    if (typeName) *typeName = elementTypeName;
    return true;
  }
  long Parse(const KVLCodeContext&, const MRBUnicodeString& text,
             KVLCodeValue& value) const override {
    if (parseResult != KVLResult_Success) return parseResult;
    const int length = text.GetLengthInChar();
    if (length < 2 || text.SubString(0, 1) != "[" || text.SubString(length - 1, 1) != "]") {
      return KVLResult_InvalidArgument;
    }
    Values& elements = static_cast<KVLCodeListValue&>(value).MakeOwnElements();
    for (const MRBUnicodeString& piece : KVLStringOperations::SplitWithDepth(
             text.SubString(1, length - 2), ',', KVLStringOperations::DepthAll)) {
      elements.Append(KVLSmartPtr<KVLCodeValue>(new TextValue("", elementTypeName, piece)));
    }
    return KVLResult_Success;
  }
  long Render(const KVLCodeContext& context, const void* data,
              MRBUnicodeString& text) const override {
    if (renderResult != KVLResult_Success) return renderResult;
    text = "[";
    const Values& elements = *static_cast<const Values*>(data);
    for (int i = 0; i < elements.GetCount(); ++i) {
      MRBUnicodeString piece;
      const long result = elements[i]->GetValueStr(context, piece);
      if (KVLFailed(result)) return result;
      if (i > 0) text += ",";
      text += piece;
    }
    text += "]";
    return KVLResult_Success;
  }

  MRBUnicodeString elementTypeName;
  MRBUnicodeString parent;
  long parseResult = KVLResult_Success;  // any other is returned before anything is done
  long renderResult = KVLResult_Success;
};

struct TestParam {
  const char* paramName;
  const char* typeName;
  unsigned int direction = In;
  const char* defaultValue = "";
};

/// What a test function does: works on the arguments and returns a value, or null.
using TestBody = std::function<KVLSmartPtr<KVLCodeValue>(Values& args)>;

/// A function with the parameters and the body given.
class TestFunction : public KVLCodeFunction {
 public:
  TestFunction(const MRBUnicodeString& functionName, const MRBUnicodeString& nameOfReturnType,
               std::initializer_list<TestParam> parameters, TestBody functionBody = {})
      : KVLCodeFunction(functionName, static_cast<int>(parameters.size())),
        body(std::move(functionBody)) {
    ++nbAlive;
    returnTypeName = nameOfReturnType;
    int i = 0;
    for (const TestParam& parameter : parameters) {
      params[i].name = parameter.paramName;
      params[i].typeName = parameter.typeName;
      params[i].direction = parameter.direction;
      params[i].defaultValue = parameter.defaultValue;
      ++i;
    }
  }
  TestFunction(const TestFunction& other) : KVLCodeFunction(other), body(other.body) { ++nbAlive; }
  TestFunction& operator=(const TestFunction&) = delete;
  ~TestFunction() override { --nbAlive; }

  bool IsMethod() const override { return method; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;

  TestBody body;  // none: returns a text value of the return type
  bool method = false;
  bool makesCallers = true;
  int nbArgs = -1;  // the number of arguments that a caller gets; negative: one a parameter
  /// Makes the argument of a parameter; none: a value of the registered type of that name, else a
  /// pointer value for the two hidden types, else a text value.
  std::function<KVLSmartPtr<KVLCodeValue>(const Param& param)> makeArg;

  long initResult = KVLResult_Success;  // what `InitImpl` returns

  int nbInits = 0;
  mutable int nbCallersMade = 0;
  mutable int nbCalls = 0;
  mutable KVLCodeFunctionCaller* lastCaller = nullptr;  // borrowed

  inline static int nbAlive = 0;

 protected:
  long InitImpl() override {
    ++nbInits;
    return initResult;
  }
};

using FunctionPtr = KVLSmartPtr<TestFunction>;
using CallerPtr = KVLSmartPtr<KVLCodeFunctionCaller>;

/// Calls a test function.
class TestCaller : public KVLCodeFunctionCaller {
 public:
  TestCaller(const TestFunction& calledFunction, const KVLCodeContext& callContext)
      : KVLCodeFunctionCaller(calledFunction, callContext), called(calledFunction) {
    ++nbAlive;
    const int nbParameters = calledFunction.GetNbParameters();
    const int nb = calledFunction.nbArgs < 0 ? nbParameters : calledFunction.nbArgs;
    for (int i = 0; i < nb; ++i)
      args.Append(MakeArg(calledFunction.GetParam(i)));
  }
  TestCaller(const TestCaller& other) : KVLCodeFunctionCaller(other), called(other.called) {
    ++nbAlive;
  }
  ~TestCaller() override { --nbAlive; }

  inline static int nbAlive = 0;

 protected:
  KVLSmartPtr<KVLCodeValue> CallInternal() override {
    ++called.nbCalls;
    if (called.body) return called.body(args);
    return KVLSmartPtr<KVLCodeValue>(new TextValue("", called.GetReturnTypeName(), "returned"));
  }

 private:
  KVLSmartPtr<KVLCodeValue> MakeArg(const KVLCodeFunction::Param& param) const {
    if (called.makeArg) return called.makeArg(param);
    const KVLSmartPtr<const KVLCodeType> type = context->GetTypeFromName(param.typeName);
    if (type) return type->CreateValue(param.name);
    if (param.typeName == "KVLCodeContext" || param.typeName == "KVLCodeSession") {
      return KVLSmartPtr<KVLCodeValue>(new KVLCodePointerValue(param.name, param.typeName));
    }
    return KVLSmartPtr<KVLCodeValue>(new TextValue(param.name, param.typeName));
  }

  const TestFunction& called;  // shared through the base
};

inline KVLSmartPtr<KVLCodeFunctionCaller> TestFunction::CreateCaller(
    const KVLCodeContext& context) const {
  ++nbCallersMade;
  if (!makesCallers) return nullptr;
  lastCaller = new TestCaller(*this, context);
  return KVLSmartPtr<KVLCodeFunctionCaller>(lastCaller);
}

inline FunctionPtr MakeFunction(const MRBUnicodeString& functionName,
                                const MRBUnicodeString& returnTypeName,
                                std::initializer_list<TestParam> parameters, TestBody body = {}) {
  return new TestFunction(functionName, returnTypeName, parameters, std::move(body));
}

/// The content of a text value that is held as a plain value.
inline MRBUnicodeString ContentOf(const KVLSmartPtr<KVLCodeValue>& value) {
  return static_cast<const TextValue&>(*value).content;
}

/// Environments of a test's own and a context on them.
class World {
 public:
  World()
      : types(new KVLCodeEnv("types")),
        conversions(new KVLCodeEnv("conversions")),
        context(*types, *conversions) {}

  /// Registers a type under its own name.
  template <class T>
  KVLSmartPtr<T> Register(T* type) {
    const KVLSmartPtr<T> held = type;
    types->Add(*held, "");
    return held;
  }
  TypePtr RegisterType(const MRBUnicodeString& typeName, const MRBUnicodeString& parentName = "") {
    return Register(new TestType(typeName, parentName));
  }

  const KVLSmartPtr<KVLCodeEnv> types;
  const KVLSmartPtr<KVLCodeEnv> conversions;
  const KVLCodeContext context;
};

}  // namespace kvltest

#endif
