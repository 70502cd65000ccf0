#include <cmath>

#include "AlphaFunction.h"
#include "KVLCodeContext.h"
#include "KVLCodeFunctionBinding.h"
#include "KVLCodeFunctionWithContext.h"
#include "KVLCodeObjectRegisterer.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

Value Distance(const AlphaArguments& arguments) {
  const AlphaPoint& from = arguments.Get<AlphaPlanePoint>(0);
  const AlphaPoint& to = arguments.Get<AlphaPlanePoint>(1);
  return AlphaResult<AlphaDouble>(std::hypot(to.x - from.x, to.y - from.y));
}

Value Move(const AlphaArguments& arguments) {
  AlphaPoint& point = arguments.Get<AlphaPlanePoint>(0);
  point.x += arguments.Get<AlphaDouble>(1);
  point.y += arguments.Get<AlphaDouble>(2);
  return new AlphaVoidValue("result");
}

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

const KVLSmartPtr<AlphaFunction> distance = new AlphaFunction(
    "Distance", "double", {{"Point"}, {"Point"}}, "this, other", Distance, AlphaFunction::Method);
const KVLCodeObjectRegisterer distanceMember(KVLCodeEnv::GetDefaultMembersRoot(), distance.Get(),
                                             "Point/Distance",
                                             KVLSourceLocation(__FILE__, __LINE__, ""));
const KVLCodeObjectRegisterer moveMember(
    KVLCodeEnv::GetDefaultMembersRoot(),
    new AlphaFunction("Move", "void", {{"Point", AlphaFunction::InOut}, {"double"}, {"double"}},
                      "this, dx, dy = 0", Move, AlphaFunction::Method),
    "Point/Move", KVLSourceLocation(__FILE__, __LINE__, ""));

// The method with its object fixed: a function of the other point alone.
const KVLCodeObjectRegisterer fromOrigin(
    KVLCodeEnv::GetDefault(),
    new KVLCodeFunctionBinding(*distance, KVLSmartPtr<const KVLCodeValue>(
                                              new AlphaScalarValue<AlphaPlanePoint>("origin"))),
    "geom/from_origin", KVLSourceLocation(__FILE__, __LINE__, ""));

// The caller's context and session come in without being asked for.
const KVLSmartPtr<AlphaFunction> describeType = new AlphaFunction(
    "describe_type", "string", {{"KVLCodeContext"}, {"KVLCodeSession"}, {"string"}},
    "context, session, type", DescribeType);
const KVLCodeObjectRegisterer describeTypeWithContext(KVLCodeEnv::GetDefault(),
                                                      new KVLCodeFunctionWithContext(*describeType),
                                                      "context/describe_type",
                                                      KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace
