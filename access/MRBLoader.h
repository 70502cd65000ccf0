#ifndef MRB_LOADER_H
#define MRB_LOADER_H

#include "MRBUnicodeString.h"

/// The platform's library loader: one file a platform implements it.
namespace MRBLoader {

/// Loads the library that `name`, which is neither empty nor names a folder, stands for; null when
/// there is none or the platform refuses it.
void* Open(const MRBUnicodeString& name);

/// The address of `symbol` in `library`, or null.
void* FindSymbol(void* library, const char* symbol);

/// Gives back one load of `library`; false when the platform refuses.
bool Close(void* library);

}  // namespace MRBLoader

#endif
