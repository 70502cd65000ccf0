#include <chrono>

#include "KVLKit.h"
#include "LambdaFunctions.h"

namespace {

using Elements = KVLCodeListValue::Elements;

kvl::Any Call(const KVLCodeContext& context, const MRBUnicodeString& path, const Elements& args) {
  const lambda::Nesting nesting;
  const calls::FunctionPtr function = calls::FindOrThrow(path);
  const calls::CallerPtr caller = calls::CreateCaller(*function, context);
  calls::SetArgs(*caller, args);
  const calls::ValuePtr returned = calls::Call(*caller);
  return returned->GetTypeName() == "void" ? kvl::Any() : kvl::Any(returned);
}

double Time(const KVLCodeContext& context, KVLCodeSession* session, const MRBUnicodeString& path,
            const Elements& args, int repeats) {
  if (repeats < 1) throw std::invalid_argument("repeats must be at least 1");
  using Clock = std::chrono::steady_clock;
  const lambda::Nesting nesting;
  const calls::FunctionPtr function = calls::FindOrThrow(path);
  const calls::CallerPtr caller = calls::CreateCaller(*function, context);
  Clock::duration total{};
  for (int i = 0; i < repeats; ++i) {
    calls::PollInterruption(session);
    // The former call may have changed them.
    calls::SetArgs(*caller, args);
    const Clock::time_point start = Clock::now();
    (void)calls::Call(*caller);
    total += Clock::now() - start;
  }
  return std::chrono::duration<double>(total).count() / repeats;
}

}  // namespace

KVL_DOC("func", "Functions as values: called, bound, composed and renamed by their paths.");

KVL_FUNCTION("func/call", "path, args",
             "Calls the function with the arguments, each converted where its type differs, and "
             "returns what it returned; nothing for void. Fails when there is no such function, "
             "when an argument is missing or does not fit, and when calls nest deeper than 100.",
             Call);
KVL_FUNCTION("func/arity", "path",
             "How many parameters the function has, outputs included. Fails when there is none.",
             [](const MRBUnicodeString& path) {
               return calls::FindOrThrow(path)->GetNbParameters();
             });
KVL_FUNCTION("func/time", "path, args, repeats = 1",
             "Calls the function that many times with the arguments and returns the mean time of a "
             "call in seconds. Fails as func/call does.",
             Time);
