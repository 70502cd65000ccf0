#ifndef KVL_TESTS_LOADED_MODULES_H
#define KVL_TESTS_LOADED_MODULES_H

#include <gtest/gtest.h>

#include <exception>
#include <initializer_list>
#include <string>
#include <vector>

#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "MRBHost.h"

/// Loads shipped modules for the length of a test, and works with what they publish as a caller
/// does who knows only paths and texts.
class LoadedModules : public testing::Test {
 protected:
  using Value = KVLSmartPtr<KVLCodeValue>;

  explicit LoadedModules(std::initializer_list<const char*> moduleNames) : names(moduleNames) {}

  void SetUp() override {
    for (const char* const moduleName : names) {
      const std::string library = std::string("KVLCodeEnv_") + moduleName;
      handlers.push_back(MRBGetEntryPoint(library.c_str(), nullptr, nullptr, 1, 1, 0));
      ASSERT_NE(handlers.back().library, nullptr) << library;
    }
  }
  void TearDown() override {
    for (const LibraryHandler& handler : handlers)
      EXPECT_EQ(MRBCloseLibrary(handler), 0);
  }

  Value Make(const MRBUnicodeString& typeName) const {
    const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(typeName);
    return type ? type->CreateValue("value") : nullptr;
  }
  Value Make(const MRBUnicodeString& typeName, const MRBUnicodeString& text) const {
    const Value value = Make(typeName);
    EXPECT_TRUE(value) << typeName;
    EXPECT_EQ(value->SetValueStr(context, text), KVLResult_Success) << typeName << " " << text;
    return value;
  }

  static std::string Bytes(const MRBUnicodeString& text) {
    return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
  }
  std::string TextOf(const KVLCodeValue& value) const {
    MRBUnicodeString text;
    EXPECT_EQ(value.GetValueStr(context, text), KVLResult_Success);
    return Bytes(text);
  }

  /// What `text` is written as once it was read; "refused", which must change nothing.
  std::string Through(const MRBUnicodeString& typeName, const MRBUnicodeString& text) const {
    const Value value = Make(typeName);
    const std::string before = TextOf(*value);
    const long code = value->SetValueStr(context, text);
    if (code == KVLResult_Success) return TextOf(*value);
    EXPECT_EQ(code, KVLResult_InvalidArgument) << typeName << " " << text;
    EXPECT_EQ(TextOf(*value), before) << "a refused text must change nothing";
    return "refused";
  }

  /// The text of `text`, of the type `from`, converted to `to`; "refused".
  std::string Converted(const MRBUnicodeString& from, const MRBUnicodeString& text,
                        const MRBUnicodeString& to) const {
    const Value target = Make(to);
    EXPECT_TRUE(target) << to;
    if (KVLFailed(target->AssignFrom(context, *Make(from, text)))) return "refused";
    return TextOf(*target);
  }

  struct Answer {
    long code = 0;
    std::string result;
    KVLVector<MRBUnicodeString> texts;
  };

  Answer Call(const MRBUnicodeString& path, std::initializer_list<const char*> texts) const {
    const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
    Answer answer;
    if (!object || !object->AsFunction()) {
      ADD_FAILURE() << path << " is no function";
      return answer;
    }
    for (const char* const text : texts)
      answer.texts.Append(MRBUnicodeString(text));
    MRBUnicodeString result;
    answer.code = object->AsFunction()->ParseAndCall(context, answer.texts, result);
    answer.result = Bytes(result);
    return answer;
  }
  std::string Result(const MRBUnicodeString& path, std::initializer_list<const char*> texts) const {
    const Answer answer = Call(path, texts);
    EXPECT_EQ(answer.code, KVLResult_Success) << path;
    return answer.result;
  }
  /// The text that comes back for parameter `i`.
  std::string OutputOf(const MRBUnicodeString& path, std::initializer_list<const char*> texts,
                       int i) const {
    const Answer answer = Call(path, texts);
    EXPECT_EQ(answer.code, KVLResult_Success) << path;
    return Bytes(answer.texts[i]);
  }
  /// What the call throws.
  std::string Thrown(const MRBUnicodeString& path, std::initializer_list<const char*> texts) const {
    try {
      const Answer answer = Call(path, texts);
      return "nothing, but " + std::to_string(answer.code) + " " + answer.result;
    } catch (const std::exception& exception) {
      return exception.what();
    }
  }
  /// The code of a call that is refused before it is made.
  long Refused(const MRBUnicodeString& path, std::initializer_list<const char*> texts) const {
    return Call(path, texts).code;
  }

  KVLCodeContext context;

 private:
  const std::vector<const char*> names;
  std::vector<LibraryHandler> handlers;
};

#endif
