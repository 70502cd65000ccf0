#include "KVLStringOperations.h"

#include <new>

#include "KVLDepthScanner.h"

namespace {

/// Behind `Split`.
class KVLSplitIterImpl final : public KVLIterCursor<MRBUnicodeString> {
 public:
  KVLSplitIterImpl(const MRBUnicodeString& s, const MRBUnicodeString& sep)
      : text(s), separator(sep), position(0) {}

  long Next(MRBUnicodeString& piece) override {
    const int length = text.GetLengthInChar();
    if (position >= length) return KVLResult_False;
    int found = text.SearchSubString(separator, position, MRBUnicodeString::MRBSearchForward);
    if (found < 0) found = length;
    piece.AssignSubString(text, position, found - position);
    position = found + separator.GetLengthInChar();
    return KVLResult_Success;
  }

 private:
  const MRBUnicodeString text;
  const MRBUnicodeString separator;
  int position;
};

/// Behind `SplitWithDepth`.
class KVLSplitWithDepthIterImpl final : public KVLIterCursor<MRBUnicodeString> {
 public:
  KVLSplitWithDepthIterImpl(KVLStringOperations::DepthChars depthChars, const MRBUnicodeString& s,
                            char sep)
      : depth(depthChars),
        text(s),
        separator(sep),
        position(0),
        scanner(text.ConvertToChar(), text.GetLengthInChar(), separator, depth) {}

  long Next(MRBUnicodeString& piece) override {
    if (position >= text.GetLengthInChar()) return KVLResult_False;
    const int found = scanner.FindNext();
    piece.AssignSubString(text, position, found - position);
    position = found + 1;
    return KVLResult_Success;
  }

 private:
  const KVLStringOperations::DepthChars depth;
  const MRBUnicodeString text;
  const char separator;
  int position;
  KVLDepthScanner scanner;
};

template <class T>
MRBUnicodeString Format(T value, const char* format) {
  MRBUnicodeString text;
  text.BuildFromNum(value, format);
  return text;
}

// A signed comparison, whatever the signedness of `char`: bytes from 0x80 up are blanks as well.
bool IsBlank(char c) {
  return static_cast<signed char>(c) <= 32;
}

}  // namespace

bool KVLStringOperations::StartsWith(const MRBUnicodeString& s, const MRBUnicodeString& prefix) {
  return s.SubString(0, prefix.GetLengthInChar()) == prefix;
}

bool KVLStringOperations::EndsWith(const MRBUnicodeString& s, const MRBUnicodeString& suffix) {
  const int length = suffix.GetLengthInChar();
  return s.SubString(s.GetLengthInChar() - length, length) == suffix;
}

MRBUnicodeString KVLStringOperations::FromNum(int value) {
  return Format(value, "%d");
}

MRBUnicodeString KVLStringOperations::FromNum(unsigned int value) {
  return Format(value, "%u");
}

MRBUnicodeString KVLStringOperations::FromNum(long value) {
  return Format(value, "%ld");
}

MRBUnicodeString KVLStringOperations::FromNum(unsigned long value) {
  return Format(value, "%lu");
}

MRBUnicodeString KVLStringOperations::FromNum(float value) {
  return Format(static_cast<double>(value), "%g");
}

MRBUnicodeString KVLStringOperations::FromNum(double value) {
  return Format(value, "%g");
}

char KVLStringOperations::GetCharAt(const MRBUnicodeString& s, int i) {
  if (i < 0 || i >= s.GetLengthInChar()) return '\0';
  return s[static_cast<std::size_t>(i)];
}

MRBUnicodeString KVLStringOperations::Join(KVLIter<MRBUnicodeString> pieces,
                                           const MRBUnicodeString& sep) {
  MRBUnicodeString joined;
  bool first = true;
  for (const MRBUnicodeString& piece : pieces) {
    if (!first) joined.Append(sep);
    first = false;
    joined.Append(piece);
  }
  return joined;
}

KVLIter<MRBUnicodeString> KVLStringOperations::Split(const MRBUnicodeString& s,
                                                     const MRBUnicodeString& sep) {
  return KVLIter<MRBUnicodeString>(new (std::nothrow) KVLSplitIterImpl(s, sep));
}

KVLIter<MRBUnicodeString> KVLStringOperations::SplitWithDepth(const MRBUnicodeString& s, char sep,
                                                              DepthChars depth) {
  return KVLIter<MRBUnicodeString>(new (std::nothrow) KVLSplitWithDepthIterImpl(depth, s, sep));
}

MRBUnicodeString KVLStringOperations::SubStringBetween(const MRBUnicodeString& s, int from,
                                                       int to) {
  const int length = s.GetLengthInChar();
  int first = from < 0 ? from + length : from;
  if (first < 0) first = 0;
  int last = to < 0 ? to + length : to;
  if (last > length) last = length;
  if (last < first) last = first;
  return s.SubString(first, last - first);
}

MRBUnicodeString KVLStringOperations::Trim(const MRBUnicodeString& s) {
  const char* const text = s.ConvertToChar();
  const int length = s.GetLengthInChar();
  int first = 0;
  while (first < length && IsBlank(text[first]))
    ++first;
  int last = length - 1;
  while (last >= first && IsBlank(text[last]))
    --last;
  return s.SubString(first, last - first + 1);
}
