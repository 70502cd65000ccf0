#include "KVLShellOutput.h"

#include "KVLShellJson.h"

namespace {

constexpr int ExcerptReach = 60;  // bytes to each side of the culprit

constexpr char Red[] = "\x1B[1;31m";
constexpr char Plain[] = "\x1B[0m";

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

// The line around the culprit, and a caret below it.
MRBUnicodeString ExcerptOf(const MRBUnicodeString& text, int position, bool isColored) {
  const char* const bytes = text.ConvertToChar();
  const int length = text.GetLengthInByte();
  int first = position;
  while (first > 0 && bytes[first - 1] != '\n' && position - first < ExcerptReach)
    --first;
  int end = position;
  while (end < length && bytes[end] != '\n' && end - position < ExcerptReach)
    ++end;
  while (first < position && IsContinuation(bytes[first]))
    ++first;
  int column = 0;
  const MRBUnicodeString before = InColumns(Slice(text, first, position), &column);
  MRBUnicodeString excerpt = "  " + before + InColumns(Slice(text, position, end), nullptr) + "\n";
  for (int i = 0; i < 2 + column; ++i)
    excerpt += " ";
  return excerpt + (isColored ? MRBUnicodeString(Red) + "^" + Plain : MRBUnicodeString("^")) + "\n";
}

}  // namespace

void KVLShellOutput::Write(const MRBUnicodeString& text, const KVLShellAnswer& answer,
                           const KVLShellOutcome& outcome) const {
  if (IsJson()) {
    WriteText(KVLShellChannel_Output, KVLShellJsonOf(text, answer, outcome) + "\n");
    return;
  }
  WriteText(KVLShellChannel_Output, KVLShellTextOf(answer, IsColored()));
  WriteText(KVLShellChannel_Error, KVLShellReportOf(text, outcome, IsColored()));
}

void KVLShellOutput::WriteText(int channel, const MRBUnicodeString& lines) const {
  if (!lines.IsEmpty()) sink(receiver, channel, lines.ConvertToChar(), lines.GetLengthInByte());
}

KVLShellColumn KVLShellColumnOf(const MRBUnicodeString& text, int position) {
  const char* const bytes = text.ConvertToChar();
  KVLShellColumn place{1, 1};
  for (int i = 0; i < position && i < text.GetLengthInByte(); ++i) {
    if (bytes[i] == '\n') {
      ++place.line;
      place.column = 1;
    } else if (!IsContinuation(bytes[i])) {
      ++place.column;
    }
  }
  return place;
}

MRBUnicodeString KVLShellReportOf(const MRBUnicodeString& text, const KVLShellOutcome& outcome,
                                  bool isColored) {
  MRBUnicodeString report;
  if (outcome.message.IsEmpty()) return report;
  if (isColored) report += Red;
  report += "error:";
  if (isColored) report += Plain;
  report += " " + KVLShellMessageOf(outcome) + "\n";
  if (outcome.position >= 0) report += ExcerptOf(text, outcome.position, isColored);
  return report;
}
