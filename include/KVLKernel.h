#ifndef KVL_KERNEL_H
#define KVL_KERNEL_H

/// The whole public interface.

#include "KVLAlgoMatching.h"
#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeEnvAccess.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionBinding.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeFunctionCallerBinding.h"
#include "KVLCodeFunctionCallerWithContext.h"
#include "KVLCodeFunctionWithContext.h"
#include "KVLCodeListValue.h"
#include "KVLCodeObject.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLCodePointerValue.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLExport.h"
#include "KVLHashMap.h"
#include "KVLIter.h"
#include "KVLKeyValue.h"
#include "KVLRefCounted.h"
#include "KVLResult.h"
#include "KVLSmartPtr.h"
#include "KVLSourceLocation.h"
#include "KVLStringOperations.h"
#include "KVLTypeConversion.h"
#include "KVLVector.h"
#include "MRBHost.h"
#include "MRBUnicodeString.h"

#endif
