#include <KVLCodeContext.h>
#include <KVLCodeEnv.h>
#include <KVLCodeListValue.h>

#include <cstdio>

#include "Number.h"

namespace {

// Lists of numbers as text: "[1,2,3]".
class NumbersType : public KVLCodeListType {
 public:
  NumbersType() : KVLCodeListType("Numbers") {}

  bool IsList(MRBUnicodeString* elementTypeName) const override {
    if (elementTypeName) *elementTypeName = "Number";
    return true;
  }

  long Parse(const KVLCodeContext& context, const MRBUnicodeString& text,
             KVLCodeValue& value) const override {
    if (!KVLStringOperations::StartsWith(text, "[") || !KVLStringOperations::EndsWith(text, "]")) {
      return KVLResult_InvalidArgument;
    }
    KVLCodeListValue::Elements elements;
    for (const MRBUnicodeString& piece :
         KVLStringOperations::Split(KVLStringOperations::SubStringBetween(text, 1, -1), ",")) {
      const KVLSmartPtr<KVLCodeValue> number = new Number("");
      const long result = number->SetValueStr(context, piece);
      if (KVLFailed(result)) return result;
      elements.Append(number);
    }
    static_cast<KVLCodeListValue&>(value).MakeOwnElements() = elements;
    return KVLResult_Success;
  }

  long Render(const KVLCodeContext& context, const void* data,
              MRBUnicodeString& text) const override {
    text = "[";
    for (const auto& element : *static_cast<const KVLCodeListValue::Elements*>(data)) {
      MRBUnicodeString elementText;
      const long result = element->GetValueStr(context, elementText);
      if (KVLFailed(result)) return result;
      if (text != "[") text += ",";
      text += elementText;
    }
    text += "]";
    return KVLResult_Success;
  }
};

void Show(const KVLCodeContext& context, const KVLCodeValue& value) {
  MRBUnicodeString text;
  value.GetValueStr(context, text);
  std::printf("%s = %s\n", value.GetName().ConvertToChar(), text.ConvertToChar());
}

}  // namespace

int main() {
  const KVLSmartPtr<KVLCodeEnv> typesEnv = new KVLCodeEnv("types");
  typesEnv->Add(new NumberType, "");
  typesEnv->Add(new NumbersType, "");
  const KVLCodeContext context(*typesEnv);

  const KVLSmartPtr<KVLCodeValue> a = new KVLCodeListValue("a", "Numbers");
  Show(context, *a);
  a->SetValueStr(context, "[1,2,3]");

  // Assignment between lists shares the vector; it does not copy the elements.
  const KVLSmartPtr<KVLCodeValue> b = new KVLCodeListValue("b", "Numbers");
  b->AssignFrom(context, *a);
  static_cast<KVLCodeListValue::Elements*>(a->GetValuePtr())->Erase(0);
  Show(context, *b);

  KVLVector<MRBUnicodeString> texts;
  b->ListGetElementsStr(context, texts);
  texts.Append("4.5");
  b->ListSetElementsStr(context, texts);
  Show(context, *b);
  Show(context, *a);
}
