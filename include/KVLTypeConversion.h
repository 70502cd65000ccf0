#ifndef KVL_TYPE_CONVERSION_H
#define KVL_TYPE_CONVERSION_H

#include "KVLCodeObject.h"

/// The downcasts of `KVLCodeObject` as plain function pointers, for generic code:
/// `KVLTypeConversion<KVLCodeObject*, KVLCodeType*>::convert(object)`. Each returns null for null
/// and otherwise what the object's own `As...` operation answers. The pointers are variables that a
/// host may replace.
template <class From, class To>
struct KVLTypeConversion;

template <>
struct KVL_EXPORT KVLTypeConversion<KVLCodeObject*, KVLCodeFunction*> {
  static KVLCodeFunction* (*convert)(KVLCodeObject*);
};

template <>
struct KVL_EXPORT KVLTypeConversion<const KVLCodeObject*, const KVLCodeFunction*> {
  static const KVLCodeFunction* (*convert)(const KVLCodeObject*);
};

template <>
struct KVL_EXPORT KVLTypeConversion<KVLCodeObject*, KVLCodeValue*> {
  static KVLCodeValue* (*convert)(KVLCodeObject*);
};

template <>
struct KVL_EXPORT KVLTypeConversion<const KVLCodeObject*, const KVLCodeValue*> {
  static const KVLCodeValue* (*convert)(const KVLCodeObject*);
};

template <>
struct KVL_EXPORT KVLTypeConversion<KVLCodeObject*, KVLCodeType*> {
  static KVLCodeType* (*convert)(KVLCodeObject*);
};

template <>
struct KVL_EXPORT KVLTypeConversion<const KVLCodeObject*, const KVLCodeType*> {
  static const KVLCodeType* (*convert)(const KVLCodeObject*);
};

template <>
struct KVL_EXPORT KVLTypeConversion<KVLCodeObject*, KVLCodeEnv*> {
  static KVLCodeEnv* (*convert)(KVLCodeObject*);
};

template <>
struct KVL_EXPORT KVLTypeConversion<const KVLCodeObject*, const KVLCodeEnv*> {
  static const KVLCodeEnv* (*convert)(const KVLCodeObject*);
};

#endif
