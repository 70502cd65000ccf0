#include <stdexcept>
#include <string>

#include "KVLCodeType.h"
#include "KVLKit.h"
#include "shared/RegistryWalk.h"

namespace {

using Texts = KVLVector<MRBUnicodeString>;
using TypePtr = KVLSmartPtr<const KVLCodeType>;

// A name with "/" would lead deeper, and a lookup would make what it leads through.
TypePtr FindType(const KVLCodeContext& context, const MRBUnicodeString& name) {
  if (name.IsEmpty() || name.FindPosition("/", 0) > 0) return nullptr;
  const KVLSmartPtr<KVLCodeObject> object = context.GetTypesCodeEnv().FindObject(name);
  return TypePtr(object ? object->AsType() : nullptr);
}

TypePtr FindTypeOrThrow(const KVLCodeContext& context, const MRBUnicodeString& name) {
  const TypePtr type = FindType(context, name);
  if (!type) {
    throw std::invalid_argument(std::string("there is no type '") + name.ConvertToChar() + "'");
  }
  return type;
}

bool Holds(const Texts& texts, const MRBUnicodeString& sought) {
  for (const MRBUnicodeString& text : texts)
    if (text == sought) return true;
  return false;
}

// Names lead from type to type, and may lead round.
Texts Parents(const KVLCodeContext& context, const MRBUnicodeString& typeName) {
  Texts parents;
  for (TypePtr type = FindTypeOrThrow(context, typeName); type;) {
    const MRBUnicodeString parent = type->GetParentTypeName();
    if (parent.IsEmpty() || parent == typeName || Holds(parents, parent)) break;
    parents.Append(parent);
    type = FindType(context, parent);
  }
  return parents;
}

void AppendMembers(const MRBUnicodeString& typeName, Texts& members) {
  const MRBUnicodeString path = "_members/" + typeName + "/";
  for (const registry::Child& child : registry::ChildrenOf(registry::Find(path).envs))
    if (child.object) members.Append(path + child.label);
}

Texts Members(const KVLCodeContext& context, const MRBUnicodeString& typeName, bool isInherited) {
  (void)FindTypeOrThrow(context, typeName);
  Texts members;
  AppendMembers(typeName, members);
  if (!isInherited) return members;
  for (const MRBUnicodeString& parent : Parents(context, typeName))
    AppendMembers(parent, members);
  return members;
}

Texts Values(const KVLCodeContext& context, const MRBUnicodeString& typeName) {
  Texts values;
  if (!FindTypeOrThrow(context, typeName)->GetEnumValues(values)) {
    throw std::invalid_argument(std::string("'") + typeName.ConvertToChar() +
                                "' is no enumeration");
  }
  return values;
}

MRBUnicodeString DescribeType(const KVLCodeContext& context, KVLCodeSession* session,
                              const MRBUnicodeString& typeName) {
  return "type '" + typeName + (FindType(context, typeName) ? "' is known" : "' is not known") +
         (session ? ", with a session" : ", without a session");
}

}  // namespace

KVL_FUNCTION(
    "reg/parents", "type",
    "The names of the type's parent, of its parent, and so on; of parents that lead round, "
    "each once. Fails when there is no such type.",
    Parents);
KVL_FUNCTION(
    "reg/members", "type, inherited = true",
    "The paths of the type's methods, then those of its parents, nearest first. Fails when "
    "there is no such type.",
    Members);
KVL_FUNCTION(
    "reg/values", "type",
    "The names of an enumeration's values. Fails when there is no such type, or it is none.",
    Values);

KVL_DOC("context", "What a call brings along unasked.");
KVL_FUNCTION("context/describe_type", "type",
             "Whether the type is known where the call is made, and whether there is a session.",
             DescribeType);
