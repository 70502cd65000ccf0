#ifndef KIT_MODULE_H
#define KIT_MODULE_H

#include <initializer_list>
#include <string>

#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeValue.h"

/// What the sources of the test program publish through the kit, seen as any host sees it.

struct KitAnswer {
  long code;
  std::string result;
  KVLVector<MRBUnicodeString> texts;  ///< the arguments after the call
};

inline const KVLCodeFunction* KitFind(const char* path) {
  const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
  return object ? object->AsFunction() : nullptr;
}

/// Calls by texts. A path that leads to no function gives the code 1.
inline KitAnswer KitCall(const char* path, std::initializer_list<const char*> texts,
                         KVLCodeSession* session = nullptr) {
  KitAnswer answer{1, "", {}};
  const KVLCodeFunction* const function = KitFind(path);
  if (!function) return answer;
  for (const char* const text : texts)
    answer.texts.Append(text);
  KVLCodeContext context;
  context.SetSession(session);
  MRBUnicodeString result;
  answer.code = function->ParseAndCall(context, answer.texts, result);
  answer.result =
      std::string(result.ConvertToChar(), static_cast<std::size_t>(result.GetLengthInByte()));
  return answer;
}

inline std::string KitResult(const char* path, std::initializer_list<const char*> texts) {
  const KitAnswer answer = KitCall(path, texts);
  return answer.code == 0 ? answer.result : "code " + std::to_string(answer.code);
}

/// The text of argument `i` after a call that must succeed.
inline std::string KitArgument(const char* path, std::initializer_list<const char*> texts, int i) {
  const KitAnswer answer = KitCall(path, texts);
  return answer.code == 0 ? answer.texts[i].ConvertToChar() : "code " + std::to_string(answer.code);
}

inline std::string KitDeclaration(const char* path) {
  const KVLCodeFunction* const function = KitFind(path);
  return function ? function->ToStringCode().ConvertToChar() : "";
}

/// The text of the variable under `path`, or "none".
inline std::string KitVariable(const char* path) {
  const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
  if (!object || !object->AsVariable()) return "none";
  MRBUnicodeString text;
  const long result = object->AsVariable()->GetValueStr(KVLCodeContext(), text);
  return result == 0 ? text.ConvertToChar() : "code " + std::to_string(result);
}

#endif
