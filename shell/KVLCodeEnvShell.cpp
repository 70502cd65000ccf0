#include <cstdio>

#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLExport.h"
#include "KVLShellLine.h"
#include "KVLShellResult.h"

extern "C" KVL_ENTRY_EXPORT long KVLCodeShellStaticRun(const MRBUnicodeString& text) {
  KVLVector<KVLShellCommandWords> commands;
  KVLShellSyntaxError error;
  if (!KVLShellParseLine(text, commands, error)) return KVLShellResult_Usage;
  for (const KVLShellCommandWords& words : commands) {
    if (words[0].text != "call" || words.GetCount() < 2) return KVLShellResult_Usage;
    const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(words[1].text);
    if (!object || !object->AsFunction()) return KVLShellResult_NotFound;
    KVLVector<MRBUnicodeString> texts;
    for (int i = 2; i < words.GetCount(); ++i)
      texts.Append(words[i].text);
    MRBUnicodeString result;
    const KVLCodeContext context;
    const long code = object->AsFunction()->ParseAndCall(context, texts, result);
    if (KVLFailed(code)) return KVLShellResult_Argument;
    std::printf("%s\n", result.ConvertToChar());
  }
  return KVLResult_Success;
}
