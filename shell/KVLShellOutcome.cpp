#include "KVLShellOutcome.h"

#include "KVLShellResult.h"

namespace {

constexpr int LongestPrintable = 60;  // bytes

bool IsControl(char character) {
  return static_cast<unsigned char>(character) < 32 || character == 127;
}

bool IsContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0) == 0x80;
}

}  // namespace

KVLShellOutcome::KVLShellOutcome(long outcomeCode, const MRBUnicodeString& outcomeMessage,
                                 int outcomePosition)
    : code(outcomeCode), message(outcomeMessage), position(outcomePosition) {}

const char* KVLShellKindOf(long code) {
  switch (code) {
    case KVLShellResult_Usage:
      return "usage";
    case KVLShellResult_NotFound:
      return "not_found";
    case KVLShellResult_Argument:
      return "argument";
    case KVLShellResult_Load:
      return "load";
    case KVLShellResult_Interrupted:
      return "interrupted";
    case KVLResult_False:
      return "no";
    default:
      return "failed";
  }
}

MRBUnicodeString KVLShellMessageOf(const KVLShellOutcome& outcome) {
  MRBUnicodeString message = outcome.message;
  if (!outcome.suggestion.IsEmpty()) {
    message += "; did you mean '" + KVLShellPrintable(outcome.suggestion) + "'?";
  }
  if (!outcome.usage.IsEmpty()) message += "; usage: " + outcome.usage;
  return message;
}

MRBUnicodeString KVLShellPrintable(const MRBUnicodeString& text) {
  if (text.GetLengthInByte() <= LongestPrintable) return KVLShellEscaped(text);
  int end = LongestPrintable;
  while (end > 0 && IsContinuation(text.ConvertToChar()[end]))
    --end;
  return KVLShellEscaped(text.SubString(0, end)) + "...";
}

bool KVLShellNeedsEscapes(const MRBUnicodeString& text) {
  const char* const bytes = text.ConvertToChar();
  for (int i = 0; i < text.GetLengthInByte(); ++i)
    if (IsControl(bytes[i])) return true;
  return false;
}

MRBUnicodeString KVLShellEscaped(const MRBUnicodeString& text) {
  const char* const bytes = text.ConvertToChar();
  const int length = text.GetLengthInByte();
  MRBUnicodeString escaped;
  int start = 0;
  for (int i = 0; i < length; ++i) {
    if (!IsControl(bytes[i])) continue;
    MRBUnicodeString code;
    code.BuildFromNum(static_cast<unsigned int>(bytes[i]), "\\x%02x");
    escaped += MRBUnicodeString(bytes + start, i - start) + code;
    start = i + 1;
  }
  if (start == 0) return text;
  return escaped + MRBUnicodeString(bytes + start, length - start);
}

MRBUnicodeString KVLShellCodeText(long code) {
  MRBUnicodeString text;
  text.BuildFromNum(static_cast<unsigned int>(code), "0x%08X");
  return text;
}
