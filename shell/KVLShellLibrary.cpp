#include "KVLShellLibrary.h"

#include <typeinfo>

#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeFunctionBinding.h"
#include "KVLCodeListValue.h"
#include "KVLCodePointerValue.h"
#include "KVLShellPath.h"
#include "KVLShellValue.h"

namespace {

constexpr int DeepestList = 64;

// The address of an object's class description lies in the library that defines the class.
const void* ClassOf(const KVLCodeObject& object) {
  return &typeid(object);
}

void AddTypes(std::vector<const void*>& addresses) {
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind("_types/").envs))
    addresses.push_back(ClassOf(*child.object));
}

void AddValue(const KVLCodeValue& value, int depth, std::vector<const void*>& addresses) {
  addresses.push_back(ClassOf(value));
  const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(value.GetTypeName());
  if (type) addresses.push_back(ClassOf(*type));
  const bool isOpaque = dynamic_cast<const KVLCodePointerValue*>(&value) || depth > DeepestList ||
                        KVLShellHoldsAny(KVLCodeContext(), value.GetTypeName());
  if (isOpaque) {
    AddTypes(addresses);
    return;
  }
  const KVLCodeListValue* const list = dynamic_cast<const KVLCodeListValue*>(&value);
  const void* const data = list ? list->GetValuePtr() : nullptr;
  if (!data) return;
  for (const auto& element : *static_cast<const KVLCodeListValue::Elements*>(data))
    if (element) AddValue(*element, depth + 1, addresses);
}

}  // namespace

std::vector<const void*> KVLShellLibrariesOf(const KVLCodeValue& value) {
  std::vector<const void*> addresses;
  AddValue(value, 0, addresses);
  return addresses;
}

std::vector<const void*> KVLShellLibrariesOf(const KVLCodeFunction& function) {
  std::vector<const void*> addresses;
  const KVLCodeFunction* inner = &function;
  while (inner) {
    addresses.push_back(ClassOf(*inner));
    const KVLCodeFunctionBinding* const binding =
        dynamic_cast<const KVLCodeFunctionBinding*>(inner);
    inner = binding ? &binding->GetBindedFunc() : nullptr;
    if (!binding) continue;
    for (const KVLSmartPtr<const KVLCodeValue>& value : binding->GetBindedValues())
      if (value) AddValue(*value, 0, addresses);
  }
  return addresses;
}

MRBUnicodeString KVLShellLibraryOf(const KVLCodeObject& object) {
  const KVLCodeObject* inner = &object;
  while (const KVLCodeFunctionBinding* const binding =
             dynamic_cast<const KVLCodeFunctionBinding*>(inner)) {
    inner = &binding->GetBindedFunc();
  }
  return KVLShellLibraryAt(ClassOf(*inner));
}
