// What does it cost to make a double of an int through the conversion registered for it, and of a
// value whose type is three steps below "int"?

#include <array>
#include <cstdint>

#ifdef KVL_BENCH_RTTR
#include <rttr/registration>
#include <rttr/registration_friend>
#endif

#include "Bench.h"
#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "Numbers.h"

namespace kvlbench {

namespace {

constexpr const char* Direct = "convert int to double";
constexpr const char* Climbing = "convert, three parents up";
constexpr int Whole = 42;

void ConvertOurs(benchmark::State& state, const MRBUnicodeString& typeName) {
  const KVLSmartPtr<KVLCodeEnv> types = new KVLCodeEnv("types");
  const auto registerType = [&types](KVLCodeType* type) {
    types->Add(KVLSmartPtr<KVLCodeObject>(type), "");
  };
  registerType(new NumberType<DoubleValue>(DoubleName));
  registerType(new NumberType<IntValue>(IntName));
  MRBUnicodeString parentName = IntName;
  for (const MRBUnicodeString& descendant : DescendantNames) {
    registerType(new NumberType<IntValue>(descendant, parentName));
    parentName = descendant;
  }
  const KVLSmartPtr<KVLCodeEnv> conversions = new KVLCodeEnv("conversions");
  conversions->Add(KVLSmartPtr<KVLCodeObject>(new IntToDouble), "int/double");
  const KVLCodeContext context(*types, *conversions);

  const IntValue from("from", Whole, typeName);
  DoubleValue to("to");
  bool right = true;
  for (auto _ : state) {
    right &= context.Convert(from, to) == KVLResult_Success;
    benchmark::DoNotOptimize(to);
  }
  Require(right && to.GetNumber() == Whole, "conversion");
}

/// Conversions and parents of types that are numbers already, in tables without collisions.
struct FloorTypes {
  using Convert = double (*)(int from);

  static constexpr std::size_t Size = 16;

  std::array<std::uint8_t, Size> parents{};
  std::array<std::array<Convert, Size>, Size> conversions{};
};

double ToDouble(int from) {
  return from;
}

void ConvertByHand(benchmark::State& state, std::size_t type) {
  constexpr std::size_t DoubleType = 5;
  FloorTypes types;
  for (std::size_t i = 1; i < DoubleType; ++i)
    types.parents[i] = static_cast<std::uint8_t>(i - 1);
  types.conversions[1][DoubleType] = ToDouble;

  double to = 0;
  for (auto _ : state) {
    std::size_t from = type;
    benchmark::DoNotOptimize(from);
    while (from != 0 && !types.conversions[from][DoubleType])
      from = types.parents[from];
    to = types.conversions[from][DoubleType](Whole);
    benchmark::DoNotOptimize(to);
  }
  Require(to == Whole, "conversion by hand");
}

#ifdef KVL_BENCH_RTTR

// Numbers of one's own: RTTR converts the language's without asking what is registered.
struct Number {
  int number = Whole;
  RTTR_ENABLE()
};
struct Count : Number {
  RTTR_ENABLE(Number)
};
struct Index : Count {
  RTTR_ENABLE(Count)
};
struct Position : Index {
  RTTR_ENABLE(Index)
};

void ConvertBuiltInRttr(benchmark::State& state) {
  const rttr::variant from = Whole;
  double sum = 0;
  std::int64_t nb = 0;
  for (auto _ : state) {
    bool converted = false;
    sum += from.convert<double>(&converted);
    ++nb;
  }
  Require(sum == static_cast<double>(nb * Whole), "conversion of RTTR");
}

void ConvertRegisteredRttr(benchmark::State& state) {
  Number number;
  const rttr::variant from = &number;
  double sum = 0;
  std::int64_t nb = 0;
  for (auto _ : state) {
    bool converted = false;
    sum += from.convert<double>(&converted);
    ++nb;
  }
  Require(sum == static_cast<double>(nb * Whole), "registered conversion of RTTR");
}

// RTTR asks for a conversion of the very type only: the pointer goes up to "Number" first.
void ConvertClimbingRttr(benchmark::State& state) {
  Position position;
  const rttr::variant from = &position;
  double sum = 0;
  std::int64_t nb = 0;
  for (auto _ : state) {
    bool converted = false;
    const rttr::variant above = from.convert<Number*>(&converted);
    sum += above.convert<double>(&converted);
    ++nb;
  }
  Require(sum == static_cast<double>(nb * Whole), "climbing conversion of RTTR");
}

RTTR_REGISTRATION {
  rttr::registration::class_<Number>("Number");
  rttr::registration::class_<Count>("Count");
  rttr::registration::class_<Index>("Index");
  rttr::registration::class_<Position>("Position");
  rttr::type::register_converter_func([](Number* from, bool& converted) -> double {
    converted = true;
    return from->number;
  });
}

#endif

}  // namespace

void RegisterBenches() {
  Add(Direct, Ours, [](benchmark::State& state) { ConvertOurs(state, IntName); });
  Add(Climbing, Ours, [](benchmark::State& state) { ConvertOurs(state, DescendantNames[2]); });
  Add(Direct, Floor, [](benchmark::State& state) { ConvertByHand(state, 1); });
  Add(Climbing, Floor, [](benchmark::State& state) { ConvertByHand(state, 4); });
#ifdef KVL_BENCH_RTTR
  Add(Direct, "RTTR, built in", ConvertBuiltInRttr);
  Add(Direct, "RTTR, registered", ConvertRegisteredRttr);
  Add(Climbing, "RTTR", ConvertClimbingRttr);
#endif
}

}  // namespace kvlbench
