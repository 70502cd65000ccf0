#include "AlphaFunction.h"
#include "KVLCodeObjectRegisterer.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

Value Add(const AlphaArguments& arguments) {
  return AlphaResult<AlphaDouble>(arguments.Get<AlphaDouble>(0) + arguments.Get<AlphaDouble>(1));
}

const KVLCodeObjectRegisterer add(KVLCodeEnv::GetDefault(),
                                  new AlphaFunction("add", "double", {{"double"}, {"double"}},
                                                    "a, b", Add),
                                  "math/add", KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace
