#include "AlphaList.h"
#include "AlphaScalars.h"
#include "KVLCodeObjectRegisterer.h"

namespace {

const KVLCodeObjectRegisterer boolType(KVLCodeEnv::GetDefaultTypeRoot(),
                                       new AlphaScalarType<AlphaBool>(), "bool",
                                       KVLSourceLocation(__FILE__, __LINE__, ""));
const KVLCodeObjectRegisterer intType(KVLCodeEnv::GetDefaultTypeRoot(),
                                      new AlphaScalarType<AlphaInt>(), "int",
                                      KVLSourceLocation(__FILE__, __LINE__, ""));
const KVLCodeObjectRegisterer longType(KVLCodeEnv::GetDefaultTypeRoot(),
                                       new AlphaScalarType<AlphaLong>(), "long",
                                       KVLSourceLocation(__FILE__, __LINE__, ""));
const KVLCodeObjectRegisterer doubleType(KVLCodeEnv::GetDefaultTypeRoot(),
                                         new AlphaScalarType<AlphaDouble>(), "double",
                                         KVLSourceLocation(__FILE__, __LINE__, ""));
const KVLCodeObjectRegisterer stringType(KVLCodeEnv::GetDefaultTypeRoot(),
                                         new AlphaScalarType<AlphaString>(), "string",
                                         KVLSourceLocation(__FILE__, __LINE__, ""));
const KVLCodeObjectRegisterer voidType(KVLCodeEnv::GetDefaultTypeRoot(), new AlphaVoidType(),
                                       "void", KVLSourceLocation(__FILE__, __LINE__, ""));
const KVLCodeObjectRegisterer listType(KVLCodeEnv::GetDefaultTypeRoot(), new AlphaListType(),
                                       AlphaListTypeName,
                                       KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace
