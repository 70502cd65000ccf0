#include "KVLCodeObject.h"

#include "KVLStandardOutput.h"

KVLCodeFunction* KVLCodeObject::AsFunction() {
  return nullptr;
}

const KVLCodeFunction* KVLCodeObject::AsFunction() const {
  return nullptr;
}

KVLCodeValue* KVLCodeObject::AsVariable() {
  return nullptr;
}

const KVLCodeValue* KVLCodeObject::AsVariable() const {
  return nullptr;
}

KVLCodeType* KVLCodeObject::AsType() {
  return nullptr;
}

const KVLCodeType* KVLCodeObject::AsType() const {
  return nullptr;
}

KVLCodeEnv* KVLCodeObject::AsEnv() {
  return nullptr;
}

const KVLCodeEnv* KVLCodeObject::AsEnv() const {
  return nullptr;
}

MRBUnicodeString KVLCodeObject::ToString() const {
  return "KVLCodeObject '" + name + "'";
}

MRBUnicodeString KVLCodeObject::ToStringCode() const {
  return name;
}

KVLVector<MRBUnicodeString> KVLCodeObject::Check() const {
  return messages;
}

void KVLCodeObject::Dump() const {
  KVLWriteLine(ToString());
}
