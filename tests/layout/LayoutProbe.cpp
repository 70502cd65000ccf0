// Compiled for its debugging information only: there the compiler writes down where it puts each
// field and each virtual operation of the public classes.

#include "KVLKernel.h"

class LayoutProbe : public KVLRefCounted {};

template class KVLHashMap<MRBUnicodeString, LayoutProbe>;
template class KVLIter<LayoutProbe>;
template class KVLIterCursor<LayoutProbe>;
template struct KVLKeyValue<MRBUnicodeString, LayoutProbe>;
template class KVLSmartPtr<LayoutProbe>;
template class KVLVector<LayoutProbe>;
