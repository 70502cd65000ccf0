#include <algorithm>
#include <limits>

#include "RoundTrip.h"

namespace {

using namespace round_trip;

class ConversionRoundTrip : public LoadedModules {
 protected:
  ConversionRoundTrip() : LoadedModules({"Alpha", "Beta", "Gamma"}) {}

  // What is converted at all converts back to an equal datum: nothing was lost on the way.
  template <class T>
  void ExpectNoLoss(const char* from, const rc::Gen<T>& data) const {
    for (const char* const to : {"bool", "int", "int64", "long", "double", "string"}) {
      int converted = 0;
      EXPECT_TRUE(rc::check(std::string(from) + " to " + to + " and back", [&] {
        const T datum = *data;
        const auto source = round_trip::Make(context, from);
        *static_cast<T*>(source->GetValuePtr()) = datum;
        const auto target = round_trip::Make(context, to);
        if (KVLFailed(target->AssignFrom(context, *source))) return;
        ++converted;
        const auto back = round_trip::Make(context, from);
        RC_ASSERT(back->AssignFrom(context, *target) == KVLResult_Success);
        const T& returned = *static_cast<const T*>(back->GetValuePtr());
        // -0 comes back as 0 from types that have one zero.
        RC_ASSERT(IsSame(returned, datum) || returned == datum);
      }));
      EXPECT_GT(converted, 0) << from << " to " << to;
    }
  }
};

// Small numbers too, which every type has room for.
template <class T>
rc::Gen<T> Numbers() {
  return rc::gen::oneOf(
      rc::gen::arbitrary<T>(), rc::gen::element<T>(0, 1),
      rc::gen::element(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

TEST_F(ConversionRoundTrip, NothingIsLost) {
  ExpectNoLoss<bool>("bool", rc::gen::arbitrary<bool>());
  ExpectNoLoss<std::int32_t>("int", Numbers<std::int32_t>());
  ExpectNoLoss<std::int32_t>("long", Numbers<std::int32_t>());
  ExpectNoLoss<std::int64_t>("int64", Numbers<std::int64_t>());
  ExpectNoLoss<double>(
      "double",
      rc::gen::oneOf(Doubles(), rc::gen::map(Numbers<std::int64_t>(), [](std::int64_t number) {
                       return static_cast<double>(number);
                     })));
}

TEST_F(ConversionRoundTrip, ASortedListHoldsTheSameNumbersInOrder) {
  const KVLSmartPtr<KVLCodeObject> sort = KVLCodeEnv::GetDefault().FindObject("list/sort");
  ASSERT_TRUE(sort && sort->AsFunction());
  EXPECT_TRUE(rc::check("list/sort", [&] {
    std::vector<double> numbers = *rc::gen::container<std::vector<double>>(Doubles());
    const auto list = round_trip::Make(context, "KVLVector<double>");
    auto& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
    for (const double number : numbers)
      elements.Append(kvl::MakeValueOf(number));
    const auto caller = sort->AsFunction()->CreateCaller(context);
    RC_ASSERT(caller->SetArg(0, list) == KVLResult_Success);
    RC_ASSERT(caller->Call() == KVLResult_Success);
    std::stable_sort(numbers.begin(), numbers.end(),
                     [](double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; });
    AssertSame(ElementsOf<double>(context, *caller->GetReturnedValue(), "double"), numbers);
  }));
}

}  // namespace
