#include "KVLTypeConversion.h"

#include <type_traits>

namespace {

template <class From, class To, To (std::remove_pointer_t<From>::*As)()>
To Downcast(From object) {
  return object ? (object->*As)() : nullptr;
}

template <class From, class To, To (std::remove_pointer_t<From>::*As)() const>
To DowncastConst(From object) {
  return object ? (object->*As)() : nullptr;
}

}  // namespace

KVLCodeFunction* (*KVLTypeConversion<KVLCodeObject*, KVLCodeFunction*>::convert)(KVLCodeObject*) =
    Downcast<KVLCodeObject*, KVLCodeFunction*, &KVLCodeObject::AsFunction>;

const KVLCodeFunction* (*KVLTypeConversion<const KVLCodeObject*, const KVLCodeFunction*>::convert)(
    const KVLCodeObject*) =
    DowncastConst<const KVLCodeObject*, const KVLCodeFunction*, &KVLCodeObject::AsFunction>;

KVLCodeValue* (*KVLTypeConversion<KVLCodeObject*, KVLCodeValue*>::convert)(KVLCodeObject*) =
    Downcast<KVLCodeObject*, KVLCodeValue*, &KVLCodeObject::AsVariable>;

const KVLCodeValue* (*KVLTypeConversion<const KVLCodeObject*, const KVLCodeValue*>::convert)(
    const KVLCodeObject*) =
    DowncastConst<const KVLCodeObject*, const KVLCodeValue*, &KVLCodeObject::AsVariable>;

KVLCodeType* (*KVLTypeConversion<KVLCodeObject*, KVLCodeType*>::convert)(KVLCodeObject*) =
    Downcast<KVLCodeObject*, KVLCodeType*, &KVLCodeObject::AsType>;

const KVLCodeType* (*KVLTypeConversion<const KVLCodeObject*, const KVLCodeType*>::convert)(
    const KVLCodeObject*) =
    DowncastConst<const KVLCodeObject*, const KVLCodeType*, &KVLCodeObject::AsType>;

KVLCodeEnv* (*KVLTypeConversion<KVLCodeObject*, KVLCodeEnv*>::convert)(KVLCodeObject*) =
    Downcast<KVLCodeObject*, KVLCodeEnv*, &KVLCodeObject::AsEnv>;

const KVLCodeEnv* (*KVLTypeConversion<const KVLCodeObject*, const KVLCodeEnv*>::convert)(
    const KVLCodeObject*) =
    DowncastConst<const KVLCodeObject*, const KVLCodeEnv*, &KVLCodeObject::AsEnv>;
