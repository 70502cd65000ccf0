#ifndef TEXT_H
#define TEXT_H

#include <KVLCodeValue.h>
#include <KVLResult.h>

// A value that holds a text.
class Text : public KVLCodeValue {
 public:
  explicit Text(const MRBUnicodeString& valueName, const MRBUnicodeString& start = "")
      : KVLCodeValue(valueName, "Text"), content(start) {}

  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    text = content;
    return KVLResult_Success;
  }
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) override {
    content = text;
    return KVLResult_Success;
  }

  MRBUnicodeString content;
};

#endif
