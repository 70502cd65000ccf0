#include "AlphaFunction.h"
#include "KVLCodeContext.h"
#include "KVLCodeFunctionWithContext.h"
#include "KVLCodeObjectRegisterer.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

Value DescribeType(const AlphaArguments& arguments) {
  // The two hidden arguments are pointers to what the caller was given.
  const auto* const context =
      static_cast<const KVLCodeContext*>(arguments.GetValue(0).GetValuePtr());
  const bool hasSession = arguments.GetValue(1).GetValuePtr() != nullptr;
  const MRBUnicodeString& typeName = arguments.Get<AlphaString>(2);
  const bool isKnown = !context->GetTypeFromName(typeName).IsNull();
  return AlphaResult<AlphaString>("type '" + typeName +
                                  (isKnown ? "' is known" : "' is not known") +
                                  (hasSession ? ", with a session" : ", without a session"));
}

// The caller's context and session come in without being asked for.
const KVLSmartPtr<AlphaFunction> describeType = new AlphaFunction(
    "describe_type", "string", {{"KVLCodeContext"}, {"KVLCodeSession"}, {"string"}},
    "context, session, type", DescribeType);
const KVLCodeObjectRegisterer describeTypeWithContext(KVLCodeEnv::GetDefault(),
                                                      new KVLCodeFunctionWithContext(*describeType),
                                                      "context/describe_type",
                                                      KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace
