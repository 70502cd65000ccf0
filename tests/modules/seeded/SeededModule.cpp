// A module with every mistake that the anomaly check knows.

#include "KVLKernel.h"

namespace {

class Function : public KVLCodeFunction {
 public:
  Function(const char* functionName, const char* thisType, const char* initText)
      : KVLCodeFunction(functionName, 1) {
    params[0].typeName = thisType;
    params[0].direction = 1;
    Init(initText);
  }

  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext&) const override {
    return nullptr;
  }
};

KVLSourceLocation Line(int line) {
  return KVLSourceLocation("seeded.cpp", line, "");
}

const KVLCodeObjectRegisterer registerers[] = {
    {KVLCodeEnv::GetDefault(), new Function("twice", "double", "x"), "seeded/twice", Line(1)},
    {KVLCodeEnv::GetDefault(), new Function("twice", "double", "x"), "seeded/twice", Line(2)},
    {KVLCodeEnv::GetDefault(), new Function("many", "double", "a, b, c"), "seeded/many", Line(3)},
    {KVLCodeEnv::GetDefault(), new Function("empty", "double", "a="), "seeded/empty", Line(4)},
    {KVLCodeEnv::GetDefaultMembersRoot(), new Function("Wrong", "Seed", "this"), "Plant/Wrong",
     Line(5)},
    {KVLCodeEnv::GetDefaultMembersRoot(), new KVLCodeObject("Thing"), "Plant/Thing", Line(6)},
    {KVLCodeEnv::GetDefaultMembersRoot(), new Function("Right", "Plant", "this"), "Plant/Right",
     Line(7)},
    {KVLCodeEnv::GetDefaultTypeRoot(), new Function("NoType", "", ""), "NoType", Line(8)},
    {KVLCodeEnv::GetDefault(), new Function("f", "double", "x"), "_hidden/f", Line(9)},
};

}  // namespace
