#ifndef KVL_LOOKUPS_H
#define KVL_LOOKUPS_H

#include "KVLCodeEnv.h"

// The lookups of a context. What they find is borrowed: the environment that holds it may let it
// go.

/// What `types.FindObject(name)` finds, and makes on its way.
KVLCodeObject* KVLFindType(const KVLCodeEnv& types, const MRBUnicodeString& name);

struct KVLConversionOrType {
  KVLCodeObject* conversion;
  KVLCodeObject* type;
};

/// What `conversions.FindObject(source + "/" + target)` finds, and makes on its way; where that is
/// nothing, what `types.FindObject(source)` finds and makes then.
KVLConversionOrType KVLFindConversionOrType(const KVLCodeEnv& conversions, const KVLCodeEnv& types,
                                            const MRBUnicodeString& source,
                                            const MRBUnicodeString& target);

#endif
