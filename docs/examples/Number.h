#ifndef NUMBER_H
#define NUMBER_H

#include <KVLCodeType.h>
#include <KVLCodeValue.h>
#include <KVLResult.h>
#include <KVLStringOperations.h>

#include <cstdlib>

// A value that holds a double.
class Number : public KVLCodeValue {
 public:
  explicit Number(const MRBUnicodeString& valueName, double start = 0)
      : KVLCodeValue(valueName, "Number"), content(start) {}

  void* GetValuePtr() const override { return const_cast<double*>(&content); }

  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    text = KVLStringOperations::FromNum(content);
    return KVLResult_Success;
  }

  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) override {
    char* end = nullptr;
    const double number = std::strtod(text, &end);
    if (end == text.ConvertToChar() || *end != '\0') return KVLResult_InvalidArgument;
    content = number;
    return KVLResult_Success;
  }

  double content;
};

// Its type, to be registered under "_types".
class NumberType : public KVLCodeType {
 public:
  NumberType() : KVLCodeType("Number") {}

  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString& valueName) const override {
    return new Number(valueName);
  }
};

#endif
