#include "KVLShellOutcome.h"

namespace {

constexpr int LongestPrintable = 60;  // bytes
constexpr int ExcerptReach = 60;      // bytes to each side of the culprit

bool IsControl(char character) {
  return static_cast<unsigned char>(character) < 32 || character == 127;
}

bool IsContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0) == 0x80;
}

// The bytes first .. end - 1 of `text`, without cutting a character of several bytes at `end`.
MRBUnicodeString Slice(const MRBUnicodeString& text, int first, int end) {
  const char* const bytes = text.ConvertToChar();
  while (end > first && end < text.GetLengthInByte() && IsContinuation(bytes[end]))
    --end;
  return MRBUnicodeString(bytes + first, end - first);
}

MRBUnicodeString Blanks(int count) {
  MRBUnicodeString blanks;
  for (int i = 0; i < count; ++i)
    blanks += " ";
  return blanks;
}

// `text` with one column a character: control characters become "?".
MRBUnicodeString InColumns(const MRBUnicodeString& text, int* columns) {
  MRBUnicodeString shown;
  int count = 0;
  const char* const bytes = text.ConvertToChar();
  for (int i = 0; i < text.GetLengthInByte(); ++i) {
    shown += MRBUnicodeString(IsControl(bytes[i]) ? "?" : bytes + i, 1);
    if (!IsContinuation(bytes[i])) ++count;
  }
  if (columns) *columns = count;
  return shown;
}

}  // namespace

void KVLShellOutput::Print(const MRBUnicodeString& line) {
  Write(KVLShellChannel_Output, line);
}

void KVLShellOutput::Report(const MRBUnicodeString& text, const KVLShellOutcome& outcome) {
  if (outcome.message.IsEmpty()) return;
  Write(KVLShellChannel_Error, "error: " + outcome.message);
  if (outcome.position < 0) return;

  const char* const bytes = text.ConvertToChar();
  const int length = text.GetLengthInByte();
  int first = outcome.position;
  while (first > 0 && bytes[first - 1] != '\n' && outcome.position - first < ExcerptReach)
    --first;
  int end = outcome.position;
  while (end < length && bytes[end] != '\n' && end - outcome.position < ExcerptReach)
    ++end;
  while (first < outcome.position && IsContinuation(bytes[first]))
    ++first;
  int column = 0;
  const MRBUnicodeString before = InColumns(Slice(text, first, outcome.position), &column);
  const MRBUnicodeString after = InColumns(Slice(text, outcome.position, end), nullptr);
  Write(KVLShellChannel_Error, "  " + before + after);
  Write(KVLShellChannel_Error, Blanks(2 + column) + "^");
}

void KVLShellOutput::Write(int channel, const MRBUnicodeString& line) {
  const MRBUnicodeString whole = line + "\n";
  sink(receiver, channel, whole.ConvertToChar(), whole.GetLengthInByte());
}

MRBUnicodeString KVLShellPrintable(const MRBUnicodeString& text) {
  const bool isCut = text.GetLengthInByte() > LongestPrintable;
  const MRBUnicodeString start = isCut ? Slice(text, 0, LongestPrintable) : text;
  MRBUnicodeString printable;
  const char* const bytes = start.ConvertToChar();
  for (int i = 0; i < start.GetLengthInByte(); ++i) {
    if (IsControl(bytes[i])) {
      MRBUnicodeString escaped;
      escaped.BuildFromNum(static_cast<unsigned int>(bytes[i]), "\\x%02x");
      printable += escaped;
    } else {
      printable += MRBUnicodeString(bytes + i, 1);
    }
  }
  return isCut ? printable + "..." : printable;
}

MRBUnicodeString KVLShellCodeText(long code) {
  MRBUnicodeString text;
  text.BuildFromNum(static_cast<unsigned int>(code), "0x%08X");
  return text;
}
