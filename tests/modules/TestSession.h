#ifndef KVL_TESTS_TEST_SESSION_H
#define KVL_TESTS_TEST_SESSION_H

#include <map>
#include <string>

#include "KVLCodeSession.h"
#include "KVLResult.h"

/// A session as a shell's, for functions that use one.
class TestSession final : public KVLCodeSession {
 public:
  KVLSmartPtr<KVLCodeValue> FindVariable(const MRBUnicodeString& name) const override {
    const auto found = values.find(std::string(name.ConvertToChar()));
    return found == values.end() ? KVLSmartPtr<KVLCodeValue>() : found->second;
  }
  long SetVariable(const MRBUnicodeString& name, KVLSmartPtr<KVLCodeValue> value) override {
    const char first = *name.ConvertToChar();
    if (!value || first == '\0' || (first >= '0' && first <= '9') ||
        name.FindPosition(" ", 0) > 0) {
      return KVLResult_InvalidArgument;
    }
    values[std::string(name.ConvertToChar())] = value;
    return KVLResult_Success;
  }
  bool RemoveVariable(const MRBUnicodeString& name) override {
    return values.erase(std::string(name.ConvertToChar())) > 0;
  }
  void GetVariableNames(KVLVector<MRBUnicodeString>& names) const override {
    names.Resize(0);
    for (const auto& value : values)
      names.Append(MRBUnicodeString(value.first.c_str()));
  }
  bool IsInterrupted() const override { return polls++ >= pollsUntilInterrupted; }

  std::map<std::string, KVLSmartPtr<KVLCodeValue>> values;
  int pollsUntilInterrupted = 1 << 30;
  mutable int polls = 0;
};

#endif
