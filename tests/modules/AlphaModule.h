#ifndef KVL_TESTS_ALPHA_MODULE_H
#define KVL_TESTS_ALPHA_MODULE_H

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "MRBHost.h"

/// Loads the module for the length of a test.
class AlphaModule : public testing::Test {
 protected:
  using Value = KVLSmartPtr<KVLCodeValue>;

  void SetUp() override {
    handler = MRBGetEntryPoint("KVLCodeEnv_Alpha", nullptr, nullptr, 1, 1, 0);
    ASSERT_NE(handler.library, nullptr);
  }
  void TearDown() override { EXPECT_EQ(MRBCloseLibrary(handler), 0); }

  static Value Make(const MRBUnicodeString& typeName) {
    const KVLSmartPtr<const KVLCodeType> type = KVLCodeContext().GetTypeFromName(typeName);
    return type ? type->CreateValue("value") : nullptr;
  }

  static Value Make(const MRBUnicodeString& typeName, const MRBUnicodeString& text) {
    const Value value = Make(typeName);
    EXPECT_TRUE(value) << typeName;
    EXPECT_EQ(value->SetValueStr(KVLCodeContext(), text), KVLResult_Success)
        << typeName << " " << text;
    return value;
  }

  static std::string TextOf(const KVLCodeValue& value) {
    MRBUnicodeString text;
    EXPECT_EQ(value.GetValueStr(KVLCodeContext(), text), KVLResult_Success);
    return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
  }

  struct Answer {
    long code = 0;
    std::string result;
    KVLVector<MRBUnicodeString> texts;
  };

  static Answer Call(const MRBUnicodeString& path, std::initializer_list<const char*> texts) {
    const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
    Answer answer;
    if (!object || !object->AsFunction()) {
      ADD_FAILURE() << path << " is no function";
      return answer;
    }
    for (const char* const text : texts)
      answer.texts.Append(MRBUnicodeString(text));
    MRBUnicodeString result;
    answer.code = object->AsFunction()->ParseAndCall(KVLCodeContext(), answer.texts, result);
    answer.result = result.ConvertToChar();
    return answer;
  }

  static std::string Result(const MRBUnicodeString& path,
                            std::initializer_list<const char*> texts) {
    const Answer answer = Call(path, texts);
    EXPECT_EQ(answer.code, KVLResult_Success) << path;
    return answer.result;
  }

 private:
  LibraryHandler handler{nullptr, nullptr};
};

#endif
