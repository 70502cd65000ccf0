#include "RoundTrip.h"

namespace {

using namespace round_trip;

class ScalarRoundTrip : public LoadedModules {
 protected:
  ScalarRoundTrip() : LoadedModules({"Alpha", "Beta", "Gamma", "Epsilon", "Kappa"}) {}

  // What the call returns, for arguments that are handed over as they are.
  KVLSmartPtr<KVLCodeValue> Called(const MRBUnicodeString& path,
                                   std::initializer_list<KVLSmartPtr<KVLCodeValue>> args) const {
    const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
    RC_ASSERT(object && object->AsFunction());
    const auto caller = object->AsFunction()->CreateCaller(context);
    int i = 0;
    for (const KVLSmartPtr<KVLCodeValue>& arg : args)
      RC_ASSERT(caller->SetArg(i++, arg) == KVLResult_Success);
    RC_ASSERT(caller->Call() == KVLResult_Success);
    return caller->GetReturnedValue();
  }
};

TEST_F(ScalarRoundTrip, Types) {
  ExpectRoundTrips<bool>("bool", rc::gen::arbitrary<bool>());
  ExpectRoundTrips<std::int32_t>("int", rc::gen::arbitrary<std::int32_t>());
  ExpectRoundTrips<std::int64_t>("int64", rc::gen::arbitrary<std::int64_t>(), InAny::KeepsText);
  ExpectRoundTrips<std::int32_t>("long", rc::gen::arbitrary<std::int32_t>(), InAny::KeepsText);
  ExpectRoundTrips<double>("double", Doubles());
  ExpectRoundTrips<MRBUnicodeString>("string", UnicodeStrings());
}

enum class Align { left, right, center };

TEST_F(ScalarRoundTrip, Align) {
  ExpectRoundTrips<Align>("Align", rc::gen::element(Align::left, Align::right, Align::center));
}

TEST_F(ScalarRoundTrip, ListsOfLists) {
  EXPECT_TRUE(rc::check("KVLVector<KVLVector<int>> by its text", [&] {
    const auto all = *rc::gen::arbitrary<std::vector<std::vector<std::int32_t>>>();
    const KVLSmartPtr<KVLCodeValue> list = Make("KVLVector<KVLVector<int>>");
    auto& lists = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
    for (const std::vector<std::int32_t>& numbers : all) {
      const KVLSmartPtr<KVLCodeValue> inner = Make("KVLVector<int>");
      auto& innerElements = static_cast<KVLCodeListValue&>(*inner).MakeOwnElements();
      for (const std::int32_t number : numbers) {
        const KVLSmartPtr<KVLCodeValue> element = Make("int");
        *static_cast<std::int32_t*>(element->GetValuePtr()) = number;
        innerElements.Append(element);
      }
      lists.Append(inner);
    }
    const KVLSmartPtr<KVLCodeValue> read = Reread(context, *list);
    const auto& elements = *static_cast<const KVLCodeListValue::Elements*>(read->GetValuePtr());
    RC_ASSERT(elements.GetCount() == static_cast<int>(all.size()));
    for (int i = 0; i < elements.GetCount(); ++i) {
      RC_ASSERT(elements[i]->GetTypeName() == "KVLVector<int>");
      AssertSame(ElementsOf<std::int32_t>(context, *elements[i], "int"),
                 all[static_cast<std::size_t>(i)]);
    }
  }));
}

TEST_F(ScalarRoundTrip, JoinedPiecesAreTheTextAgain) {
  EXPECT_TRUE(rc::check("text/join of text/split", [&] {
    const MRBUnicodeString text = *UnicodeStrings();
    const MRBUnicodeString separator = *rc::gen::suchThat(
        UnicodeStrings(), [](const MRBUnicodeString& part) { return !part.IsEmpty(); });
    const auto pieces = Called("text/split", {kvl::MakeValueOf(text), kvl::MakeValueOf(separator)});
    const auto joined = Called("text/join", {pieces, kvl::MakeValueOf(separator)});
    RC_ASSERT(*static_cast<const MRBUnicodeString*>(joined->GetValuePtr()) == text);
  }));
}

}  // namespace
