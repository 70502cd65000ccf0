#include <filesystem>

#include "RoundTrip.h"
#include "TestSession.h"

namespace {

using namespace round_trip;

class VariablesRoundTrip : public LoadedModules {
 protected:
  VariablesRoundTrip() : LoadedModules({"Alpha", "Beta", "Gamma", "Zeta", "Iota"}) {}
};

// A value of whatever type; a list of any holds lists of any, up to `depth` levels.
KVLSmartPtr<KVLCodeValue> RandomValue(const KVLCodeContext& context, int depth) {
  const int kind = *rc::gen::inRange(0, depth > 0 ? 8 : 6);
  const auto set = [&](const char* typeName, auto datum) {
    KVLSmartPtr<KVLCodeValue> value = Make(context, typeName);
    *static_cast<decltype(datum)*>(value->GetValuePtr()) = datum;
    return value;
  };
  switch (kind) {
    case 0:
      return set("double", *Doubles());
    case 1:
      return set("string", *UnicodeStrings());
    case 2:
      return set("long", *rc::gen::arbitrary<std::int32_t>());
    case 3:
      return set("int64", *rc::gen::arbitrary<std::int64_t>());
    case 4:
      return set("bool", *rc::gen::arbitrary<bool>());
    case 5:
      return Make(context, "Axis");
    case 6: {
      KVLSmartPtr<KVLCodeValue> any = Make(context, "any");
      RC_ASSERT(any->AssignFrom(context, *RandomValue(context, depth - 1)) == KVLResult_Success);
      return any;
    }
    default: {
      KVLSmartPtr<KVLCodeValue> list = Make(context, kvl::AnyListName);
      auto& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
      for (int count = *rc::gen::inRange(0, 4); count > 0; --count)
        elements.Append(RandomValue(context, depth - 1));
      return list;
    }
  }
}

void AssertSameValue(const KVLCodeContext& context, const KVLCodeValue& a, const KVLCodeValue& b) {
  RC_ASSERT(a.GetTypeName() == b.GetTypeName());
  RC_ASSERT(TextOf(context, a) == TextOf(context, b));
  if (a.GetTypeName() == "any") {
    const KVLCodeValue* const heldA = kvl::Unwrapped(a);
    const KVLCodeValue* const heldB = kvl::Unwrapped(b);
    RC_ASSERT((heldA == nullptr) == (heldB == nullptr));
    if (heldA) AssertSameValue(context, *heldA, *heldB);
  }
  if (a.IsList(context) != KVLResult_Success) return;
  const auto& elementsA = *static_cast<const KVLCodeListValue::Elements*>(a.GetValuePtr());
  const auto& elementsB = *static_cast<const KVLCodeListValue::Elements*>(b.GetValuePtr());
  RC_ASSERT(elementsA.GetCount() == elementsB.GetCount());
  for (int i = 0; i < elementsA.GetCount(); ++i)
    AssertSameValue(context, *elementsA[i], *elementsB[i]);
}

TEST_F(VariablesRoundTrip, WhatIsSavedIsRestored) {
  namespace fs = std::filesystem;
  const fs::path path = fs::temp_directory_path() / "kvl_variables_round_trip.txt";
  const std::string file = path.u8string();
  TestSession session;
  context.SetSession(&session);
  EXPECT_TRUE(rc::check("variables in a file", [&] {
    std::map<std::string, KVLSmartPtr<KVLCodeValue>> saved;
    for (int count = *rc::gen::inRange(0, 6); count > 0; --count)
      saved["v" + std::to_string(count)] = RandomValue(context, 3);
    session.values = saved;
    RC_ASSERT(Result("var/save", {file.c_str()}) == std::to_string(saved.size()));
    session.values.clear();
    RC_ASSERT(Result("var/restore", {file.c_str()}) == std::to_string(saved.size()));
    RC_ASSERT(session.values.size() == saved.size());
    for (const auto& variable : saved)
      AssertSameValue(context, *session.values[variable.first], *variable.second);
  }));
  session.values.clear();
  fs::remove(path);
}

}  // namespace
