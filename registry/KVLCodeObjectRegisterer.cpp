#include "KVLCodeObjectRegisterer.h"

#include <utility>

namespace {

bool Contains(const KVLVector<KVLSourceLocation>& locations, const KVLSourceLocation& wanted) {
  for (const KVLSourceLocation& location : locations) {
    if (location == wanted) return true;
  }
  return false;
}

}  // namespace

KVLCodeObjectRegisterer::KVLCodeObjectRegisterer(KVLCodeEnv& targetEnv,
                                                 KVLSmartPtr<KVLCodeObject> registered,
                                                 const MRBUnicodeString& path,
                                                 const KVLSourceLocation& location)
    : env(targetEnv), object(std::move(registered)), name(path) {
  if (!object) return;
  // Recorded before the registration is tried: the message about a refused one names this place.
  if (!Contains(object->registrationLocations, location)) {
    object->registrationLocations.Append(location);
  }
  if (KVLFailed(env.Add(*object, name))) object = nullptr;
}

KVLCodeObjectRegisterer::~KVLCodeObjectRegisterer() {
  // The result does not matter: somebody else may have withdrawn or replaced the object.
  if (object) (void)env.Remove(*object, name);
}
