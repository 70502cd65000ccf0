// Functions that run for long: one that ends when its user asks for it, and one that does not.

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>

#include "KVLCodeSession.h"
#include "KVLKernel.h"

namespace {

using Clock = std::chrono::steady_clock;

// A program that was not ended as it should have been does not stay for ever.
constexpr std::chrono::seconds Longest(60);

class Caller : public KVLCodeFunctionCaller {
 public:
  Caller(const KVLCodeFunction& called, const KVLCodeContext& callContext, bool asks)
      : KVLCodeFunctionCaller(called, callContext),
        session(asks ? callContext.GetSession() : nullptr) {}

 protected:
  KVLSmartPtr<KVLCodeValue> CallInternal() override {
    std::printf("started\n");
    std::fflush(stdout);
    for (const Clock::time_point end = Clock::now() + Longest; Clock::now() < end;) {
      if (session && session->IsInterrupted()) throw std::runtime_error("interrupted");
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    throw std::runtime_error("not interrupted");
  }

 private:
  const KVLCodeSession* const session;
};

class Function : public KVLCodeFunction {
 public:
  Function(const char* functionName, bool asksSession)
      : KVLCodeFunction(functionName, 0), asks(asksSession) {
    returnTypeName = "void";
    (void)Init("");
  }

  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new Caller(*this, context, asks);
  }

 private:
  const bool asks;
};

const KVLCodeObjectRegisterer registerers[] = {
    {KVLCodeEnv::GetDefault(), new Function("asking", true), "slow/asking",
     KVLSourceLocation(__FILE__, __LINE__, "")},
    {KVLCodeEnv::GetDefault(), new Function("deaf", false), "slow/deaf",
     KVLSourceLocation(__FILE__, __LINE__, "")},
};

}  // namespace
