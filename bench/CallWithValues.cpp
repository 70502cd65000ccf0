// What does a call cost whose caller, or method, and whose values are at hand?

#ifdef KVL_BENCH_RTTR
#include <rttr/registration>
#endif
#ifdef KVL_BENCH_QT
#include <QMetaMethod>

#include "QtAdder.h"
#endif

#include "Bench.h"
#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "Numbers.h"

namespace kvlbench {

namespace {

constexpr const char* Workload = "call with values";
constexpr double Left = 3.5;
constexpr double Right = 4.25;
constexpr double Sum = 7.75;

double AddNumbers(double left, double right) {
  return left + right;
}

void CallOurs(benchmark::State& state) {
  const KVLSmartPtr<KVLCodeEnv> types = new KVLCodeEnv("types");
  types->Add(KVLSmartPtr<KVLCodeObject>(new NumberType<DoubleValue>(DoubleName)), "");
  const KVLSmartPtr<KVLCodeEnv> conversions = new KVLCodeEnv("conversions");
  const KVLCodeContext context(*types, *conversions);
  const KVLSmartPtr<KVLCodeFunction> function = new AddFunction("add");
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = function->CreateCaller(context);
  const KVLSmartPtr<const KVLCodeValue> left = new DoubleValue("left", Left);
  const KVLSmartPtr<const KVLCodeValue> right = new DoubleValue("right", Right);

  bool isRight = true;
  for (auto _ : state) {
    isRight &= caller->SetArg(0, left) == KVLResult_Success;
    isRight &= caller->SetArg(1, right) == KVLResult_Success;
    isRight &= caller->Call() == KVLResult_Success;
    const KVLSmartPtr<KVLCodeValue> returned = caller->GetReturnedValue();
    isRight &= *static_cast<const double*>(returned->GetValuePtr()) == Sum;
  }
  Require(isRight, "call with values");
}

void CallByHand(benchmark::State& state) {
  double (*function)(double, double) = AddNumbers;
  bool isRight = true;
  for (auto _ : state) {
    benchmark::DoNotOptimize(function);
    isRight &= function(Left, Right) == Sum;
  }
  Require(isRight, "call by hand");
}

#ifdef KVL_BENCH_RTTR
void CallRttr(benchmark::State& state) {
  const rttr::method method = rttr::type::get_global_method("add");
  Require(method.is_valid(), "method of RTTR");
  bool isRight = true;
  for (auto _ : state) {
    const rttr::variant result = method.invoke({}, Left, Right);
    isRight &= result.get_value<double>() == Sum;
  }
  Require(isRight, "call of RTTR");
}
#endif

#ifdef KVL_BENCH_QT
void CallQt(benchmark::State& state) {
  QtAdder adder;
  const QMetaObject* const meta = adder.metaObject();
  const QMetaMethod method = meta->method(meta->indexOfMethod("add(double,double)"));
  Require(method.isValid(), "method of Qt");
  bool isRight = true;
  for (auto _ : state) {
    double result = 0;
    isRight &= method.invoke(&adder, Qt::DirectConnection, Q_RETURN_ARG(double, result),
                             Q_ARG(double, Left), Q_ARG(double, Right));
    isRight &= result == Sum;
  }
  Require(isRight, "call of Qt");
}
#endif

#ifdef KVL_BENCH_RTTR
RTTR_REGISTRATION {
  rttr::registration::method("add", &AddNumbers);
}
#endif

}  // namespace

void RegisterBenches() {
  Add(Workload, Ours, CallOurs);
  Add(Workload, Floor, CallByHand);
#ifdef KVL_BENCH_RTTR
  Add(Workload, "RTTR", CallRttr);
#endif
#ifdef KVL_BENCH_QT
  Add(Workload, "Qt", CallQt);
#endif
}

}  // namespace kvlbench
